#pragma once

#include <QDomElement>
#include <QString>

#include <set>

class QXmlStreamWriter;

namespace Zph::Applications::Player {

// What an export was set to, as a preset carries it: one `export` element, written and read nowhere else.
struct ExportSettings
{
    enum class TimeUnit
    {
        Frame,
        Second
    };

    TimeUnit timeUnit = TimeUnit::Frame;
    double timeEnd = 0; // both in the unit, and both belong to the range: 0 to 9 are ten frames
    double timeStart = 0;
    double fps = 30;
    QString dir;                            // empty: where the last export went
    QString format = QStringLiteral("tga"); // an extension
    QString pattern;                        // empty: the usual one
    quint32 metadataOptions = 0;            // the three choices of metadata: bits 0 to 7, 8 to 15, 16 and up
    int quality = 75;                       // 0 to 100
    std::set<quint32> disabled;             // uids of outputs that are left out

    // An attribute that is missing or can't be read leaves the default.
    static ExportSettings fromElement(const QDomElement& element);
    void write(QXmlStreamWriter& xml) const;
};

bool operator==(const ExportSettings& a, const ExportSettings& b);

} // namespace Zph::Applications::Player
