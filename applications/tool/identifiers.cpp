#include "applications/tool/identifiers.h"

namespace vellor::tool {

using namespace Zph::Applications::Player;

namespace {

QString idOr(const QString& identifier, quint32 uid)
{
    return identifier.isEmpty() ? "uid:" + QString::number(uid) : identifier;
}

} // namespace

QString idOf(const PackageInput& input)
{
    return idOr(input.element.attribute(QStringLiteral("identifier")), input.uid);
}

QString idOf(const PackageOutput& output)
{
    return idOr(output.identifier, output.uid);
}

QString pathOf(const PackageOutput& output)
{
    return pathOf(output.graphKey, idOf(output));
}

QString pathOf(const QString& graphKey, const QString& name)
{
    return QString(graphKey).remove(QLatin1String("pkg://")) + '/' + name;
}

} // namespace vellor::tool
