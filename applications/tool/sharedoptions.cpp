#include "applications/tool/sharedoptions.h"

#include "applications/tool/failure.h"

#include <vellor/cpuengine.h>

#include <QFileInfo>
#include <QStringList>

#include <cstdio>

namespace vellor::tool {

using Zph::Applications::Player::CookingAlias;
using Zph::Applications::Player::EngineOptions;

namespace {

constexpr int kMostThreads = 256;
constexpr float kProgressInterval = 0.1f;

struct InstructionSetName
{
    const char* name;
    VellorCpuInstructionSet set;
};

constexpr InstructionSetName kInstructionSets[] = {
    {"ssse3", VELLOR_CPU_SSSE3}, {"avx2", VELLOR_CPU_AVX2}, {"avx512", VELLOR_CPU_AVX512}};

} // namespace

const Option kAlias{"--alias", nullptr, "NAME=DIR",
                    "the folder that includes like NAME://file.vlr are looked up in; may be repeated"};
const Option kEngine{"--engine", nullptr, "FILE",
                     "the engine to use; the best one of plugins/engines by default"};

const std::vector<Option>& engineOptions()
{
    static const std::vector<Option> options{
        {"--threads", nullptr, "N", "threads of the engine; all processors by default"},
        kEngine,
        {"--instruction-set", nullptr, "ssse3|avx2|avx512",
         "the highest that the project's own engine may use, for tests: the pictures are the same"},
        kAlias};
    return options;
}

std::vector<Option> joined(std::initializer_list<std::vector<Option>> lists)
{
    std::vector<Option> all;
    for (const std::vector<Option>& list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

EngineOptions readEngineOptions(const Arguments& arguments)
{
    EngineOptions options;
    options.progressInterval = kProgressInterval;
    if (arguments.has("--threads")) {
        const QString text = QString::fromStdString(arguments.value("--threads"));
        bool valid = false;
        options.threads = text.toUInt(&valid);
        if (!valid || options.threads < 1 || options.threads > kMostThreads)
            throw UsageError("--threads: expected a number from 1 to " + std::to_string(kMostThreads) +
                             ", not '" + text.toStdString() + "'");
    }
    if (!arguments.has("--instruction-set"))
        return options;
    const std::string wanted = arguments.value("--instruction-set");
    for (const InstructionSetName& known : kInstructionSets)
        if (wanted == known.name)
            options.flags = quint32(known.set) << VELLOR_CPU_INSTRUCTION_SET_SHIFT;
    if (options.flags == 0)
        throw UsageError("--instruction-set: expected ssse3, avx2 or avx512, not '" + wanted + "'");
    return options;
}

QString onlyFile(const Arguments& arguments)
{
    if (arguments.files.empty())
        throw UsageError("no file given");
    if (arguments.files.size() > 1)
        throw UsageError("one file at a time; '" + arguments.files[1] + "' is too much");
    return QString::fromStdString(arguments.files.front());
}

QStringList allValues(const Arguments& arguments, const char* option)
{
    QStringList values;
    const auto given = arguments.options.find(option);
    for (std::size_t i = 0; given != arguments.options.end() && i < given->second.size(); ++i)
        values.append(QString::fromStdString(given->second[i]));
    return values;
}

QVector<CookingAlias> readAliases(const Arguments& arguments)
{
    QVector<CookingAlias> aliases;
    for (const QString& alias : allValues(arguments, "--alias")) {
        const int equals = alias.indexOf('=');
        if (equals <= 0)
            throw UsageError("'" + alias.toStdString() + "' is no alias; expected NAME=DIR");
        aliases.append({alias.left(equals), alias.mid(equals + 1)});
        if (!QFileInfo(aliases.last().path).isDir())
            throw Failure(UnreadableFile, aliases.last().path + ": no such folder");
    }
    return aliases;
}

int printOut(const QByteArray& text)
{
    const bool isWritten =
        std::fwrite(text.constData(), 1, std::size_t(text.size()), stdout) == std::size_t(text.size());
    if (isWritten && std::fflush(stdout) == 0)
        return Done;
    std::fputs("vellor: standard output can't be written\n", stderr);
    return Unwritable;
}

} // namespace vellor::tool
