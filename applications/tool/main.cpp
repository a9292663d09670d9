// `vellor`: the work on packages without a window.

#include "applications/player/session/programidentity.h"
#include "applications/tool/failure.h"
#include "applications/tool/interrupter.h"
#include "applications/tool/manual.h"
#include "applications/tool/sharedoptions.h"

#include <QCoreApplication>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>

namespace {

using namespace vellor::tool;

int run(const Command& command, const std::vector<std::string>& words)
{
    if (std::find(words.begin(), words.end(), "--help") != words.end())
        return printOut(QByteArray::fromStdString(helpOf(command)));
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

/// What an option in the place of a command prints.
std::optional<std::string> textOf(const std::string& option)
{
    if (option == "--help")
        return overview();
    if (option == "--version")
        return std::string("vellor " VELLOR_VERSION "\n");
    if (option == "--man")
        return manualPage();
    if (option == "--bash-completion")
        return bashCompletion();
    return std::nullopt;
}

/// Standard error belongs to the commands' own lines, and these say why; what libraries log comes on top.
void dropLogLines(QtMsgType, const QMessageLogContext&, const QString&)
{
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(dropLogLines);
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is one that can't be written
    const QCoreApplication application(argc, argv);
    Zph::Applications::Player::setProgramIdentity();
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    const std::string first = words.empty() ? std::string() : words.front();
    if (first.empty()) {
        std::fputs(overview().c_str(), stderr);
        return WrongUsage;
    }
    if (const auto text = textOf(first))
        return printOut(QByteArray::fromStdString(*text));
    for (const Command* command : allCommands()) {
        if (first == command->name)
            return run(*command, {words.begin() + 1, words.end()});
    }
    std::fprintf(stderr, "vellor: unknown command '%s'\n", first.c_str());
    return WrongUsage;
}
