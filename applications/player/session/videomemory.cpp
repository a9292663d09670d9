#include "applications/player/session/videomemory.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>

namespace Zph::Applications::Player::VideoMemory {

namespace {

constexpr int toolTimeout = 30000; // ms

quint64 notNegative(qint64 number, bool isNumber)
{
    return isNumber && number >= 0 ? quint64(number) : 0;
}

quint64 askDriverTool()
{
    QProcess tool;
    tool.start(QStringLiteral("nvidia-settings"), {QStringLiteral("-t"), QStringLiteral("-q"),
                                                   QStringLiteral("[gpu:0]/TotalDedicatedGPUMemory")});
    if (!tool.waitForFinished(toolTimeout) || tool.exitStatus() != QProcess::NormalExit ||
        tool.exitCode() != 0)
        return 0;
    return fromDriverTool(tool.readAll());
}

quint64 find()
{
    if (const quint64 bytes = askDriverTool())
        return bytes;
    QFile log(QStringLiteral("/var/log/Xorg.0.log"));
    return log.open(QIODevice::ReadOnly) ? fromServerLog(log) : 0;
}

} // namespace

quint64 total()
{
    static const quint64 found = find();
    return found;
}

quint64 fromDriverTool(const QByteArray& answer)
{
    bool isNumber = false;
    const qint64 megabytes = answer.trimmed().toLongLong(&isNumber);
    return notNegative(megabytes, isNumber) << 20;
}

quint64 fromServerLog(QIODevice& log)
{
    static const QRegularExpression pattern(QRegularExpression::anchoredPattern(QStringLiteral(
                                                ".*(Memory|VideoRam|Video RAM)\\D*(\\d+)\\s*kB.*")),
                                            QRegularExpression::DotMatchesEverythingOption);
    while (!log.atEnd()) {
        const auto match = pattern.match(QString::fromLatin1(log.readLine()));
        if (!match.hasMatch())
            continue;
        bool isNumber = false;
        const qint64 number = match.captured(2).toLongLong(&isNumber);
        return notNegative(number, isNumber);
    }
    return 0;
}

} // namespace Zph::Applications::Player::VideoMemory
