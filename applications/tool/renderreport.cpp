#include "applications/tool/renderreport.h"

#include "applications/player/description/valuetype.h"
#include "applications/tool/identifiers.h"
#include "applications/tool/valuetext.h"

#include <QJsonArray>

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

bool isNumber(const RenderedOutput& rendered)
{
    return componentCount(rendered.output.type) > 0;
}

QString sizeText(qint64 bytes)
{
    return bytes < 1000000 ? QStringLiteral("%1 kB").arg(double(bytes) * 1e-3, 0, 'f', 1)
                           : QStringLiteral("%1 MB").arg(double(bytes) * 1e-6, 0, 'f', 1);
}

} // namespace

QString outputName(const RenderedOutput& rendered)
{
    const QString name =
        rendered.packed ? pathOf(rendered.output.graphKey, rendered.packed->name) : pathOf(rendered.output);
    return name + (rendered.frame ? '#' + QString::number(*rendered.frame) : QString());
}

QString reportLine(const RenderedOutput& rendered)
{
    if (isNumber(rendered))
        return outputName(rendered) + " = " + valueText(rendered.output.type, rendered.value);
    return QStringLiteral("%1  %2x%3 %4  %5  %6 s")
        .arg(rendered.file)
        .arg(rendered.width)
        .arg(rendered.height)
        .arg(rendered.format, sizeText(rendered.fileBytes))
        .arg(rendered.seconds, 0, 'f', 3);
}

QString hashLine(const RenderedOutput& rendered)
{
    return QString::fromLatin1(rendered.hash.toHex()) + "  " + outputName(rendered);
}

namespace {

QJsonObject identityJson(const RenderedOutput& rendered)
{
    const PackageOutput& output = rendered.output;
    if (!rendered.packed)
        return {{"graph", output.graphKey},
                {"identifier", output.identifier},
                {"uid", double(output.uid)},
                {"type", typeName(output.type)},
                {"usages", QJsonArray::fromStringList(output.usages)}};
    QJsonArray outputs;
    for (const PlannedSource& source : rendered.packed->sources)
        outputs.append(source.output.identifier);
    return {{"graph", output.graphKey}, {"name", rendered.packed->name}, {"outputs", outputs}};
}

} // namespace

QJsonObject reportJson(const RenderedOutput& rendered)
{
    const PackageOutput& output = rendered.output;
    QJsonObject json = identityJson(rendered);
    json.insert("hash", QString::fromLatin1(rendered.hash.toHex()));
    json.insert("seconds", rendered.seconds);
    if (rendered.frame)
        json.insert("frame", *rendered.frame);
    if (isNumber(rendered)) {
        json.insert("value", valueJson(output.type, rendered.value));
        return json;
    }
    json.insert("format", rendered.format);
    json.insert("size", QJsonArray{double(rendered.width), double(rendered.height)});
    if (!rendered.file.isEmpty()) {
        json.insert("file", rendered.file);
        json.insert("bytes", double(rendered.fileBytes));
        json.insert("encodingSeconds", rendered.encodingSeconds);
    }
    return json;
}

} // namespace vellor::tool
