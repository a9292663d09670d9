// `vellor`: the work on packages without a window.

#include "applications/tool/failure.h"
#include "applications/tool/interrupter.h"
#include "applications/tool/options.h"

#include <QCoreApplication>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>

namespace {

using namespace vellor::tool;

const Command* const kCommands[] = {&cookCommand, &renderCommand, &infoCommand, &profileCommand,
                                    &nodesCommand};

void printOverview(std::FILE* file)
{
    std::fprintf(file, "usage: vellor COMMAND ...\n\n");
    for (const Command* command : kCommands)
        std::fprintf(file, "  %-8s %s\n", command->name, command->help);
    std::fprintf(file, "\n\"vellor COMMAND --help\" tells more.\n");
}

int run(const Command& command, const std::vector<std::string>& words)
{
    if (std::find(words.begin(), words.end(), "--help") != words.end()) {
        std::fputs(helpOf(command).c_str(), stdout);
        return Done;
    }
    try {
        return command.run(parseArguments(command, words));
    } catch (const UsageError& error) {
        std::fprintf(stderr, "vellor %s: %s\n", command.name, error.what());
        return WrongUsage;
    } catch (const Failure& failure) {
        if (*failure.what())
            std::fprintf(stderr, "vellor: %s\n", failure.what());
        return failure.code;
    } catch (const Interrupted&) {
        std::fputs("vellor: interrupted\n", stderr);
        return std::raise(Interrupter::signal());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vellor %s: %s\n", command.name, error.what());
        return Failed;
    }
}

/// Standard error belongs to the commands' own lines, and these say why; what libraries log comes on top.
void dropLogLines(QtMsgType, const QMessageLogContext&, const QString&)
{
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(dropLogLines);
    const QCoreApplication application(argc, argv);
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    if (words.empty() || words.front() == "--help") {
        printOverview(words.empty() ? stderr : stdout);
        return words.empty() ? WrongUsage : Done;
    }
    for (const Command* command : kCommands) {
        if (words.front() == command->name)
            return run(*command, {words.begin() + 1, words.end()});
    }
    std::fprintf(stderr, "vellor: unknown command '%s'\n", words.front().c_str());
    return WrongUsage;
}
