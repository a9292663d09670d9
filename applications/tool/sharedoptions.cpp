#include "applications/tool/sharedoptions.h"

#include "applications/tool/failure.h"

#include <QFileInfo>
#include <QStringList>

#include <cstdio>

namespace vellor::tool {

using Zph::Applications::Player::CookingAlias;

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
