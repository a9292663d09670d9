// A dense table of functions, indexed by the codes of both types. Each cell is made from one template, which
// sees every payload as a number of components.

#include "orncommon/gui3d/basetypeconverter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace Orn::Gui3D {

using Module::ColorRGB;
using Module::ColorRGBA;
using Module::Type;
using Module::Value;

namespace {

template<class T> struct Components
{
    using Array = std::array<T, 1>;
    static Array split(T value) { return {value}; }
    static T join(const Array& components) { return components[0]; }
};

template<class T, std::size_t N> struct Components<std::array<T, N>>
{
    using Array = std::array<T, N>;
    static const Array& split(const Array& value) { return value; }
    static const Array& join(const Array& components) { return components; }
};

template<> struct Components<ColorRGB>
{
    using Array = std::array<float, 3>;
    static Array split(const ColorRGB& color) { return {color.r, color.g, color.b}; }
    static ColorRGB join(const Array& c) { return {c[0], c[1], c[2]}; }
};

template<> struct Components<ColorRGBA>
{
    using Array = std::array<float, 4>;
    static Array split(const ColorRGBA& color) { return {color.r, color.g, color.b, color.a}; }
    static ColorRGBA join(const Array& c) { return {c[0], c[1], c[2], c[3]}; }
};

template<class To, class From> To convertComponent(From component)
{
    if constexpr (std::is_same_v<To, bool>) {
        return component != From(0);
    } else if constexpr (std::is_same_v<To, int> && std::is_floating_point_v<From>) {
        using Limits = std::numeric_limits<int>;
        const double number = component;
        return std::isnan(number) ? 0 : int(std::clamp(number, double(Limits::min()), double(Limits::max())));
    } else {
        return static_cast<To>(component);
    }
}

template<class From, class To> Value convertPayload(const Value& value)
{
    using Target = typename Components<To>::Array;
    using Item = typename Target::value_type;
    const auto source = Components<From>::split(*value.get<From>());
    using SourceItem = typename decltype(source)::value_type;
    Target target{};
    if constexpr (std::is_same_v<To, bool> && std::is_same_v<SourceItem, bool>) {
        target[0] = std::find(source.begin(), source.end(), true) != source.end();
    } else {
        for (std::size_t i = 0; i < target.size(); ++i)
            if (source.size() == 1 || i < source.size())
                target[i] = convertComponent<Item>(source[source.size() == 1 ? 0 : i]);
        if (std::is_same_v<To, ColorRGBA> && source.size() < 4)
            target.back() = Item(1);
    }
    return Value(To(Components<To>::join(target)));
}

using Cell = Value (*)(const Value&);
constexpr std::size_t codeCount = Type::ColorRgba + 1;
using Row = std::array<Cell, codeCount>;

/// Whether the payloads of a type code take part.
constexpr bool takesPart(std::size_t code)
{
    return code >= Type::Bool && code < codeCount && !(code >= Type::UInt && code < Type::Float);
}

template<std::size_t Code>
using PayloadOf = std::tuple_element_t<Code - Module::firstPlainCode, Module::PlainPayloads>;

template<std::size_t From, std::size_t To> constexpr Cell makeCell()
{
    if constexpr (takesPart(From) && takesPart(To) && From != To)
        return &convertPayload<PayloadOf<From>, PayloadOf<To>>;
    else
        return nullptr;
}

template<std::size_t From, std::size_t... To> constexpr Row makeRow(std::index_sequence<To...>)
{
    return {makeCell<From, To>()...};
}

template<std::size_t... From>
constexpr std::array<Row, codeCount> makeTable(std::index_sequence<From...> codes)
{
    return {makeRow<From>(codes)...};
}

constexpr std::array<Row, codeCount> table = makeTable(std::make_index_sequence<codeCount>{});

} // namespace

Value BaseTypeConverter::convert(const Value& value, const Type& wanted) const
{
    const Type type = value.type();
    if (type == wanted)
        return value;
    if (type.code() >= codeCount || wanted.code() >= codeCount)
        return {};
    const Cell cell = table[type.code()][wanted.code()];
    return cell ? cell(value) : Value();
}

} // namespace Orn::Gui3D
