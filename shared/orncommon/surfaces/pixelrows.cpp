#include "orncommon/surfaces/pixelrows.h"

#include "orncommon/surfaces/half.h"
#include "orncommon/surfaces/widerows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

/// Compiled twice, the wider vectors being taken where the processor has them. The values are the same.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define WITH_WIDE_VECTORS __attribute__((target_clones("avx2", "default")))
#else
#define WITH_WIDE_VECTORS
#endif

namespace Orn::Surfaces {

namespace {

template<typename T> T const* as(void const* pixels)
{
    return static_cast<T const*>(pixels);
}

template<typename T> T* as(void* pixels)
{
    return static_cast<T*>(pixels);
}

/// 0..1, NaN being 0. Written so that a compiler makes the two vector instructions of it.
inline float clampToUnit(float value)
{
    float const above = value > 0.0f ? value : 0.0f;
    return above < 1.0f ? above : 1.0f;
}

void swapRedAndBlue(float* pixels, unsigned int channels, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        std::swap(pixels[i * channels], pixels[i * channels + 2]);
}

/// Three or four components of type T from as many or one, red and blue changing places with `swap`. `alpha`
/// is what a fourth gets that was not there.
template<typename T, unsigned int From, unsigned int To, bool swap>
void reorder(void const* source, std::size_t pixels, void* target, T alpha)
{
    constexpr unsigned int red = From == 1 ? 0 : swap ? 2 : 0;
    constexpr unsigned int green = From == 1 ? 0 : 1;
    constexpr unsigned int blue = From == 1 ? 0 : swap ? 0 : 2;
    auto const* in = as<T>(source);
    auto* out = as<T>(target);
    for (std::size_t i = 0; i < pixels; ++i, in += From, out += To) {
        out[0] = in[red];
        out[1] = in[green];
        out[2] = in[blue];
        if constexpr (To == 4)
            out[3] = From == 4 ? in[From - 1] : alpha;
    }
}

template<unsigned int From, unsigned int To, bool swap = false>
WITH_WIDE_VECTORS void reorder8(void const* source, std::size_t pixels, void* target, std::uint8_t alpha)
{
    reorder<std::uint8_t, From, To, swap>(source, pixels, target, alpha);
}

template<unsigned int From, unsigned int To>
WITH_WIDE_VECTORS void reorder16(void const* source, std::size_t pixels, void* target, std::uint8_t alpha)
{
    reorder<std::uint16_t, From, To, false>(source, pixels, target, std::uint16_t(alpha * 257u));
}

template<unsigned int From, unsigned int To>
WITH_WIDE_VECTORS void reorder16F(void const* source, std::size_t pixels, void* target, std::uint8_t alpha)
{
    reorder<ORNHalf16, From, To, false>(source, pixels, target, floatToHalf(alpha / 255.0f));
}

template<unsigned int From, unsigned int To>
WITH_WIDE_VECTORS void reorder32F(void const* source, std::size_t pixels, void* target, std::uint8_t alpha)
{
    reorder<float, From, To, false>(source, pixels, target, alpha / 255.0f);
}

WITH_WIDE_VECTORS void swap32(void const* source, std::size_t pixels, void* target, std::uint8_t)
{
    auto const* in = as<std::uint32_t>(source);
    auto* out = as<std::uint32_t>(target);
    for (std::size_t i = 0; i < pixels; ++i)
        out[i] = (in[i] & 0xFF00FF00u) | ((in[i] >> 16) & 0xFFu) | ((in[i] & 0xFFu) << 16);
}

std::uint8_t to8Bits(float value)
{
    return std::uint8_t(int(clampToUnit(value) * 255.0f + 0.5f));
}

std::uint16_t to16Bits(float value)
{
    return std::uint16_t(int(clampToUnit(value) * 65535.0f + 0.5f));
}

float from16Bits(std::uint16_t value)
{
    return value / 65535.0f;
}

/// floor((v + 128) / 257) in 16 bits: v / 257 rounded to the nearest.
std::uint8_t narrow16(std::uint16_t value)
{
    auto const raised = std::uint16_t((value < 65407 ? value : 65407) + 128);
    return std::uint8_t(std::uint16_t(raised - (raised >> 8)) >> 8);
}

std::uint16_t widen8(std::uint8_t value)
{
    return std::uint16_t(value * 257u);
}

/// What each of the 65536 half patterns is in 8 bits.
std::array<std::uint8_t, 65536> const& halvesTo8Bits()
{
    static auto const table = [] {
        std::array<std::uint8_t, 65536> made;
        for (std::uint32_t bits = 0; bits < made.size(); ++bits)
            made[bits] = to8Bits(halfToFloat(ORNHalf16(bits)));
        return made;
    }();
    return table;
}

template<unsigned int Channels>
void narrow16F(void const* source, std::size_t pixels, void* target, std::uint8_t)
{
    auto const& table = halvesTo8Bits();
    auto const* in = as<ORNHalf16>(source);
    auto* out = as<std::uint8_t>(target);
    for (std::size_t i = 0; i < pixels * Channels; ++i)
        out[i] = table[in[i]];
}

/// Component by component, the channels staying where they are.
template<unsigned int Channels, typename From, typename To, To convert(From)>
WITH_WIDE_VECTORS void each(void const* source, std::size_t pixels, void* target, std::uint8_t)
{
    auto const* in = as<From>(source);
    auto* out = as<To>(target);
    for (std::size_t i = 0; i < pixels * Channels; ++i)
        out[i] = convert(in[i]);
}

struct DirectWay
{
    PixelFormat from;
    PixelFormat to;
    DirectRow row;
};

using U8 = std::uint8_t;
using U16 = std::uint16_t;

constexpr DirectWay reorderings[] = {
    {RGBA8, BGRA8, swap32},
    {BGRA8, RGBA8, swap32},
    {RGB8, BGR8, reorder8<3, 3, true>},
    {BGR8, RGB8, reorder8<3, 3, true>},
    {RGBA8, RGB8, reorder8<4, 3>},
    {BGRA8, BGR8, reorder8<4, 3>},
    {RGBA8, BGR8, reorder8<4, 3, true>},
    {BGRA8, RGB8, reorder8<4, 3, true>},
    {RGB8, RGBA8, reorder8<3, 4>},
    {BGR8, BGRA8, reorder8<3, 4>},
    {RGB8, BGRA8, reorder8<3, 4, true>},
    {BGR8, RGBA8, reorder8<3, 4, true>},
    {L8, RGB8, reorder8<1, 3>},
    {L8, BGR8, reorder8<1, 3>},
    {L8, RGBA8, reorder8<1, 4>},
    {L8, BGRA8, reorder8<1, 4>},
    {RGB16, RGBA16, reorder16<3, 4>},
    {RGBA16, RGB16, reorder16<4, 3>},
    {L16, RGB16, reorder16<1, 3>},
    {L16, RGBA16, reorder16<1, 4>},
    {RGB16F, RGBA16F, reorder16F<3, 4>},
    {RGBA16F, RGB16F, reorder16F<4, 3>},
    {RGB32F, RGBA32F, reorder32F<3, 4>},
    {RGBA32F, RGB32F, reorder32F<4, 3>},
    {L32F, RGB32F, reorder32F<1, 3>},
    {L32F, RGBA32F, reorder32F<1, 4>},
};

/// Between depths, for as many channels as both formats have, in the order red first.
struct DepthWay
{
    PixelFormat from; // the formats of one channel
    PixelFormat to;
    DirectRow rows[3]; // one, three and four channels
};

template<typename From, typename To, To convert(From)>
constexpr DepthWay depthWay(PixelFormat from, PixelFormat to)
{
    return {from, to, {each<1, From, To, convert>, each<3, From, To, convert>, each<4, From, To, convert>}};
}

constexpr DepthWay depthWays[] = {
    depthWay<U8, U16, widen8>(L8, L16),
    depthWay<U16, U8, narrow16>(L16, L8),
    depthWay<U16, float, from16Bits>(L16, L32F),
    {L16F, L8, {narrow16F<1>, narrow16F<3>, narrow16F<4>}},
    depthWay<ORNHalf16, float, halfToFloat>(L16F, L32F),
    depthWay<float, U8, to8Bits>(L32F, L8),
    depthWay<float, U16, to16Bits>(L32F, L16),
    depthWay<float, ORNHalf16, floatToHalf>(L32F, L16F),
};

DirectRow depthRow(PixelFormat from, PixelFormat to)
{
    unsigned int const channels = getChannelsCount(from);
    if (channels != getChannelsCount(to) || isBlueFirst(from) || isBlueFirst(to))
        return nullptr;
    PixelFormat const oneFrom = withChannels(from, 1), oneTo = withChannels(to, 1);
    for (DepthWay const& way : depthWays)
        if (way.from == oneFrom && way.to == oneTo)
            return way.rows[channels == 1 ? 0 : channels - 2];
    return nullptr;
}

template<typename In, typename Convert>
void convertComponents(void const* in, std::size_t count, float* out, Convert convert)
{
    auto const* values = as<In>(in);
    for (std::size_t i = 0; i < count; ++i)
        out[i] = convert(values[i]);
}

template<typename Out, typename Convert>
void storeComponents(float const* in, std::size_t count, void* out, Convert convert)
{
    auto* values = as<Out>(out);
    for (std::size_t i = 0; i < count; ++i)
        values[i] = convert(in[i]);
}

void loadUnsigned16(void const* pixels, std::size_t count, float* out)
{
    convertComponents<std::uint16_t>(pixels, count, out, from16Bits);
}

void loadSigned16(void const* pixels, std::size_t count, float* out)
{
    convertComponents<std::int16_t>(pixels, count, out,
                                    [](std::int16_t v) { return std::max(v / 32767.0f, -1.0f); });
}

void storeUnsigned16(float const* in, std::size_t count, void* pixels)
{
    storeComponents<std::uint16_t>(in, count, pixels, to16Bits);
}

void storeSigned16(float const* in, std::size_t count, void* pixels)
{
    storeComponents<std::int16_t>(in, count, pixels, [](float v) {
        float const clamped = v >= -1.0f ? std::min(v, 1.0f) : v < -1.0f ? -1.0f : 0.0f;
        return std::int16_t(std::lrint(clamped * 32767.0f));
    });
}

float grey(float const* colour)
{
    return 0.2126f * colour[0] + 0.7152f * colour[1] + 0.0722f * colour[2];
}

} // namespace

void loadRow(PixelFormat format, void const* pixels, std::size_t count, float* out, bool isSigned)
{
    unsigned int const channels = getChannelsCount(format);
    std::size_t const values = count * channels;
    switch (getBitsPerChannel(format)) {
    case 8:
        convertComponents<std::uint8_t>(pixels, values, out, [](std::uint8_t v) { return v / 255.0f; });
        break;
    case 16:
        if (isFloatFormat(format))
            convertComponents<ORNHalf16>(pixels, values, out, halfToFloat);
        else if (isSigned)
            loadSigned16(pixels, values, out);
        else
            loadUnsigned16(pixels, values, out);
        break;
    case 32:
        std::copy_n(as<float>(pixels), values, out);
        break;
    }
    if (isBlueFirst(format))
        swapRedAndBlue(out, channels, count);
}

void storeRow(PixelFormat format, float const* in, std::size_t count, void* pixels, bool isSigned)
{
    unsigned int const channels = getChannelsCount(format);
    std::size_t const values = count * channels;
    switch (getBitsPerChannel(format)) {
    case 8:
        storeComponents<std::uint8_t>(in, values, pixels, to8Bits);
        break;
    case 16:
        if (isFloatFormat(format))
            storeComponents<ORNHalf16>(in, values, pixels, floatToHalf);
        else if (isSigned)
            storeSigned16(in, values, pixels);
        else
            storeUnsigned16(in, values, pixels);
        break;
    case 32:
        std::copy_n(in, values, as<float>(pixels));
        break;
    }
    if (isBlueFirst(format))
        for (std::size_t i = 0; i < count; ++i)
            std::swap(as<std::uint8_t>(pixels)[i * channels], as<std::uint8_t>(pixels)[i * channels + 2]);
}

void reshapeRow(float const* in, unsigned int from, float* out, unsigned int to, std::size_t count,
                float alpha)
{
    for (std::size_t i = 0; i < count; ++i, in += from, out += to) {
        if (to == 1) {
            out[0] = from == 1 ? in[0] : grey(in);
            continue;
        }
        out[0] = in[0];
        out[1] = from == 1 ? in[0] : in[1];
        out[2] = from == 1 ? in[0] : in[2];
        if (to == 4)
            out[3] = from == 4 ? in[3] : alpha;
    }
}

DirectRow directRow(PixelFormat from, PixelFormat to)
{
    if (DirectRow const wide = wideRow(from, to))
        return wide;
    for (DirectWay const& way : reorderings)
        if (way.from == from && way.to == to)
            return way.row;
    return depthRow(from, to);
}

} // namespace Orn::Surfaces
