#pragma once

#include <vellor/engine.h>

#include <QString>

namespace Zph::Applications::Player {

// The engine's type codes, for inputs and outputs alike. They travel as plain numbers because a foreign
// engine may hand out any of them.
namespace ValueType {
constexpr quint32 Float = VELLOR_TYPE_FLOAT;
constexpr quint32 Float2 = VELLOR_TYPE_FLOAT2;
constexpr quint32 Float3 = VELLOR_TYPE_FLOAT3;
constexpr quint32 Float4 = VELLOR_TYPE_FLOAT4;
constexpr quint32 Int = VELLOR_TYPE_INTEGER;
constexpr quint32 Image = VELLOR_TYPE_IMAGE;
constexpr quint32 Text = VELLOR_TYPE_STRING;
constexpr quint32 Reserved = 7;
constexpr quint32 Int2 = VELLOR_TYPE_INTEGER2;
constexpr quint32 Int3 = VELLOR_TYPE_INTEGER3;
constexpr quint32 Int4 = VELLOR_TYPE_INTEGER4;
} // namespace ValueType

// How many 32-bit components a value of `type` has; 0 for images, texts and unknown codes.
constexpr int componentCount(quint32 type)
{
    constexpr int counts[] = {1, 2, 3, 4, 1, 0, 0, 0, 2, 3, 4};
    return type < sizeof counts / sizeof counts[0] ? counts[type] : 0;
}

// True for the floating family. Every other code counts as integer where a number is expected.
constexpr bool isFloatType(quint32 type)
{
    return type < ValueType::Int;
}

// "Float", "Int3"...; "Unknown" for texts and codes without a name. Images are named by their format, see
// outputFormatName().
QString valueTypeName(quint32 type);

} // namespace Zph::Applications::Player
