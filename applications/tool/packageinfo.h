#pragma once

#include <QJsonObject>
#include <QString>

namespace vellor::tool {

class Package;

/// What a package holds, for people: a table of inputs, of outputs and of presets for each graph.
QString packageText(const Package& package);

/// The same for machines, as docs/commandline.md describes it.
QJsonObject packageJson(const Package& package);

} // namespace vellor::tool
