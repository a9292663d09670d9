#pragma once

#include "applications/player/description/inputvalue.h"

#include <QJsonValue>
#include <QString>

namespace vellor::tool {

/// What authoring files call a type: "float3", "int", "image", "text"...; "unknown" for a code without a
/// name.
QString typeName(quint32 type);

/// The shortest text that reads back as the same float.
QString numberText(float number);

/// The components with "," between them; empty for a type that has none.
QString valueText(quint32 type, const Zph::Applications::Player::InputValue& value);

/// A number, or an array of them for a type of several components; null for a type that has none.
QJsonValue valueJson(quint32 type, const Zph::Applications::Player::InputValue& value);

} // namespace vellor::tool
