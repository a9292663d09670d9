#pragma once

#include "orncommon/module/plugin.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>

namespace Orn::Module {

struct ColorRGB
{
    float r = 0, g = 0, b = 0;
};

struct ColorRGBA
{
    float r = 0, g = 0, b = 0, a = 0;
};

/// Three rows of three.
struct Matrix3f
{
    std::array<float, 9> values{};
};

/// A 3 by 3 part and then a translation.
struct Transform
{
    Matrix3f linear;
    std::array<float, 3> translation{};
};

inline bool operator==(const ColorRGB& a, const ColorRGB& b)
{
    return a.r == b.r && a.g == b.g && a.b == b.b;
}

inline bool operator==(const ColorRGBA& a, const ColorRGBA& b)
{
    return a.r == b.r && a.g == b.g && a.b == b.b && a.a == b.a;
}

inline bool operator==(const Matrix3f& a, const Matrix3f& b)
{
    return a.values == b.values;
}

inline bool operator==(const Transform& a, const Transform& b)
{
    return a.linear == b.linear && a.translation == b.translation;
}

/// The payloads that need no description. The order is that of the type codes, from firstPlainCode on.
using PlainPayloads =
    std::tuple<bool, std::array<bool, 2>, std::array<bool, 3>, std::array<bool, 4>, //
               int, std::array<int, 2>, std::array<int, 3>, std::array<int, 4>,     //
               unsigned int, std::array<unsigned int, 2>, std::array<unsigned int, 3>,
               std::array<unsigned int, 4>, float, std::array<float, 2>, std::array<float, 3>,
               std::array<float, 4>,                                                        //
               double, std::array<double, 2>, std::array<double, 3>, std::array<double, 4>, //
               ColorRGB, ColorRGBA, Matrix3f, Transform, std::string, std::shared_ptr<Plugin>>;

constexpr int firstPlainCode = 2;
constexpr int plainPayloadCount = int(std::tuple_size_v<PlainPayloads>);

template<class T> struct PayloadTag
{
    using Payload = T;
};

namespace Detail {

template<class T, std::size_t... Index> constexpr int plainCode(std::index_sequence<Index...>)
{
    int code = 0;
    ((std::is_same_v<T, std::tuple_element_t<Index, PlainPayloads>> ? void(code = firstPlainCode + int(Index))
                                                                    : void()),
     ...);
    return code;
}

template<class Visitor, std::size_t... Index>
bool visit(int code, Visitor& visitor, std::index_sequence<Index...>)
{
    return ((code == firstPlainCode + int(Index) &&
             (visitor(PayloadTag<std::tuple_element_t<Index, PlainPayloads>>{}), true)) ||
            ...);
}

} // namespace Detail

/// The type code of a plain payload; 0 for any other class.
template<class T>
constexpr int plainCodeOf = Detail::plainCode<T>(std::make_index_sequence<std::size_t(plainPayloadCount)>{});

/// Calls `visitor(PayloadTag<T>{})` for the payload class of a type code; false if the code is not plain.
template<class Visitor> bool visitPlainPayload(int code, Visitor&& visitor)
{
    return Detail::visit(code, visitor, std::make_index_sequence<std::size_t(plainPayloadCount)>{});
}

} // namespace Orn::Module
