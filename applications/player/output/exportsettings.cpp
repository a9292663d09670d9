#include "applications/player/output/exportsettings.h"

#include <QStringList>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cmath>

namespace Zph::Applications::Player {

namespace {

const QString secondName = QStringLiteral("second");
const QString frameName = QStringLiteral("frame");

void readNumber(const QDomElement& element, const char* name, double lowest, double& number)
{
    bool isNumber = false;
    const double read = element.attribute(QLatin1String(name)).toDouble(&isNumber);
    if (isNumber && std::isfinite(read))
        number = std::max(read, lowest);
}

QString numberText(double number)
{
    return QString::number(number, 'g', 6);
}

} // namespace

ExportSettings ExportSettings::fromElement(const QDomElement& element)
{
    ExportSettings settings;
    if (element.attribute(QStringLiteral("timeunit")) == secondName)
        settings.timeUnit = TimeUnit::Second;
    readNumber(element, "timeend", 0.0, settings.timeEnd);
    readNumber(element, "timestart", 0.0, settings.timeStart);
    readNumber(element, "fps", 0.001, settings.fps);
    settings.dir = element.attribute(QStringLiteral("dir"));
    settings.format = element.attribute(QStringLiteral("format"), settings.format);
    settings.pattern = element.attribute(QStringLiteral("pattern"));
    settings.metadataOptions = element.attribute(QStringLiteral("metaopt")).toUInt();
    bool isNumber = false;
    const int quality = element.attribute(QStringLiteral("quality")).toInt(&isNumber);
    if (isNumber)
        settings.quality = std::clamp(quality, 0, 100);
    for (const QString& uid : element.attribute(QStringLiteral("disabled")).split(',', Qt::SkipEmptyParts)) {
        const quint32 number = uid.toUInt(&isNumber);
        if (isNumber)
            settings.disabled.insert(number);
    }
    return settings;
}

void ExportSettings::write(QXmlStreamWriter& xml) const
{
    QStringList uids;
    for (const quint32 uid : disabled)
        uids.append(QString::number(uid));
    xml.writeEmptyElement(QStringLiteral("export"));
    xml.writeAttribute(QStringLiteral("timeunit"), timeUnit == TimeUnit::Second ? secondName : frameName);
    xml.writeAttribute(QStringLiteral("timeend"), numberText(timeEnd));
    xml.writeAttribute(QStringLiteral("timestart"), numberText(timeStart));
    xml.writeAttribute(QStringLiteral("fps"), numberText(fps));
    xml.writeAttribute(QStringLiteral("dir"), dir);
    xml.writeAttribute(QStringLiteral("format"), format);
    xml.writeAttribute(QStringLiteral("pattern"), pattern);
    xml.writeAttribute(QStringLiteral("metaopt"), QString::number(metadataOptions));
    xml.writeAttribute(QStringLiteral("quality"), QString::number(quality));
    xml.writeAttribute(QStringLiteral("disabled"), uids.join(','));
}

bool operator==(const ExportSettings& a, const ExportSettings& b)
{
    return a.timeUnit == b.timeUnit && a.timeEnd == b.timeEnd && a.timeStart == b.timeStart &&
           a.fps == b.fps && a.dir == b.dir && a.format == b.format && a.pattern == b.pattern &&
           a.metadataOptions == b.metadataOptions && a.quality == b.quality && a.disabled == b.disabled;
}

} // namespace Zph::Applications::Player
