#include "orncommon/surfaces/pixelrows.h"

#include "orncommon/surfaces/half.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

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

/// round(v / 257), exact for all 16-bit v.
inline std::uint8_t narrow(std::uint16_t value)
{
    return std::uint8_t((std::uint32_t(value) * 255u + 32895u) >> 16);
}

template<unsigned int Channels> void narrow16(void const* source, std::size_t pixels, void* target)
{
    auto const* in = as<std::uint16_t>(source);
    auto* out = as<std::uint8_t>(target);
    for (std::size_t i = 0; i < pixels * Channels; ++i)
        out[i] = narrow(in[i]);
}

template<unsigned int Channels> void narrow32F(void const* source, std::size_t pixels, void* target)
{
    auto const* in = as<float>(source);
    auto* out = as<std::uint8_t>(target);
    for (std::size_t i = 0; i < pixels * Channels; ++i)
        out[i] = std::uint8_t(int(clampToUnit(in[i]) * 255.0f + 0.5f));
}

/// What each of the 65536 half patterns is in 8 bits.
std::array<std::uint8_t, 65536> const& halfTo8Bits()
{
    static auto const table = [] {
        std::array<std::uint8_t, 65536> made;
        for (std::uint32_t bits = 0; bits < made.size(); ++bits)
            made[bits] = std::uint8_t(int(clampToUnit(halfToFloat(ORNHalf16(bits))) * 255.0f + 0.5f));
        return made;
    }();
    return table;
}

template<unsigned int Channels> void narrow16F(void const* source, std::size_t pixels, void* target)
{
    auto const& table = halfTo8Bits();
    auto const* in = as<ORNHalf16>(source);
    auto* out = as<std::uint8_t>(target);
    for (std::size_t i = 0; i < pixels * Channels; ++i)
        out[i] = table[in[i]];
}

void swap32(void const* source, std::size_t pixels, void* target)
{
    auto const* in = as<std::uint32_t>(source);
    auto* out = as<std::uint32_t>(target);
    for (std::size_t i = 0; i < pixels; ++i)
        out[i] = (in[i] & 0xFF00FF00u) | ((in[i] >> 16) & 0xFFu) | ((in[i] & 0xFFu) << 16);
}

void swap24(void const* source, std::size_t pixels, void* target)
{
    auto const* in = as<std::uint8_t>(source);
    auto* out = as<std::uint8_t>(target);
    for (std::size_t i = 0; i < pixels * 3; i += 3) {
        out[i] = in[i + 2];
        out[i + 1] = in[i + 1];
        out[i + 2] = in[i];
    }
}

struct DirectWay
{
    PixelFormat from;
    PixelFormat to;
    DirectRow row;
};

constexpr DirectWay directWays[] = {
    {RGBA8, BGRA8, swap32},         {BGRA8, RGBA8, swap32},   {RGB8, BGR8, swap24},
    {BGR8, RGB8, swap24},           {L16, L8, narrow16<1>},   {RGB16, RGB8, narrow16<3>},
    {RGBA16, RGBA8, narrow16<4>},   {L16F, L8, narrow16F<1>}, {RGB16F, RGB8, narrow16F<3>},
    {RGBA16F, RGBA8, narrow16F<4>}, {L32F, L8, narrow32F<1>}, {RGB32F, RGB8, narrow32F<3>},
    {RGBA32F, RGBA8, narrow32F<4>},
};

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
    convertComponents<std::uint16_t>(pixels, count, out, [](std::uint16_t v) { return v / 65535.0f; });
}

void loadSigned16(void const* pixels, std::size_t count, float* out)
{
    convertComponents<std::int16_t>(pixels, count, out,
                                    [](std::int16_t v) { return std::max(v / 32767.0f, -1.0f); });
}

void storeUnsigned16(float const* in, std::size_t count, void* pixels)
{
    storeComponents<std::uint16_t>(
        in, count, pixels, [](float v) { return std::uint16_t(int(clampToUnit(v) * 65535.0f + 0.5f)); });
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
        storeComponents<std::uint8_t>(
            in, values, pixels, [](float v) { return std::uint8_t(int(clampToUnit(v) * 255.0f + 0.5f)); });
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
    auto const* way =
        std::find_if(std::begin(directWays), std::end(directWays), [=](DirectWay const& candidate) {
            return candidate.from == from && candidate.to == to;
        });
    return way == std::end(directWays) ? nullptr : way->row;
}

} // namespace Orn::Surfaces
