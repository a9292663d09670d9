#pragma once

#include "platform/program/program.h"

#include <cstring>

namespace vellor::program {

/// Number of 32-bit components of a value of this type; 0 for images, texts and codes that stand for no type.
constexpr int componentCount(ValueType type)
{
    switch (type) {
    case ValueType::Float:
    case ValueType::Int:
        return 1;
    case ValueType::Float2:
    case ValueType::Int2:
        return 2;
    case ValueType::Float3:
    case ValueType::Int3:
        return 3;
    case ValueType::Float4:
    case ValueType::Int4:
        return 4;
    case ValueType::Image:
    case ValueType::String:
        break;
    }
    return 0;
}

constexpr bool isNumeric(ValueType type)
{
    return componentCount(type) != 0;
}
constexpr bool isFloat(ValueType type)
{
    return static_cast<std::uint32_t>(type) < 4;
}

inline std::uint32_t floatBits(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

inline float bitsFloat(std::uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace vellor::program
