#include "applications/player/description/valuetype.h"

namespace Zph::Applications::Player {

QString valueTypeName(quint32 type)
{
    switch (type) {
    case ValueType::Float:
        return QStringLiteral("Float");
    case ValueType::Float2:
        return QStringLiteral("Float2");
    case ValueType::Float3:
        return QStringLiteral("Float3");
    case ValueType::Float4:
        return QStringLiteral("Float4");
    case ValueType::Int:
        return QStringLiteral("Int");
    case ValueType::Int2:
        return QStringLiteral("Int2");
    case ValueType::Int3:
        return QStringLiteral("Int3");
    case ValueType::Int4:
        return QStringLiteral("Int4");
    default:
        return QStringLiteral("Unknown");
    }
}

} // namespace Zph::Applications::Player
