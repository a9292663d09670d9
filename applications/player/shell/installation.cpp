#include "installation.h"

#include "applications/player/session/sessionsettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <ctime>
#include <unistd.h>

namespace Zph::Applications::Player::Installation {

QString samplesFolder()
{
    const QString binaries = QCoreApplication::applicationDirPath();
    const QString parent = QDir::cleanPath(binaries + "/..");
    for (const QString& root : {binaries, parent, binaries + "/resources", parent + "/resources"}) {
        const QString folder = QDir::cleanPath(root + "/data");
        if (QDir(folder).exists())
            return folder;
    }
    return {};
}

QString openFolder()
{
    const QString last = SessionSettings::openFilePath.read();
    if (!last.isEmpty())
        return last;
    const QString samples = samplesFolder();
    if (!samples.isEmpty())
        return samples;
    QDir documents(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    documents.cd("Vellors");
    documents.cd("Player");
    return documents.absolutePath();
}

QUrl makerSite()
{
    return QUrl("https://vellor.example/");
}

QUrl documentationSite()
{
    return QUrl("https://docs.vellor.example/player/");
}

QUrl feedbackSite()
{
    return QUrl("https://vellor.example/feedback/");
}

qint64 processAge()
{
    QFile file("/proc/self/stat");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    // The 22nd field is the start in clock ticks since boot; the name in field 2 may hold blanks, but ends at
    // ")".
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    timespec now{};
    if (fields.size() < 20 || clock_gettime(CLOCK_BOOTTIME, &now) != 0)
        return 0;
    const qint64 started = fields[19].toLongLong() * 1000 / sysconf(_SC_CLK_TCK);
    return qint64(now.tv_sec) * 1000 + now.tv_nsec / 1000000 - started;
}

} // namespace Zph::Applications::Player::Installation
