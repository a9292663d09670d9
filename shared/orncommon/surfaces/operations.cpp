#include "orncommon/surfaces/operations.h"

#include "orncommon/surfaces/pixelrows.h"
#include "orncommon/surfaces/rowbands.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace Orn::Surfaces {

namespace {

bool isUsable(Surface const& surface)
{
    return !surface.isEmpty() && getPixelSize(surface.format()) != 0;
}

bool isSigned(Surface const& surface)
{
    return (surface.description().flags & SurfaceDescription::SignedComponents) != 0;
}

bool haveSameSize(Surface const& a, Surface const& b)
{
    return a.width() == b.width() && a.height() == b.height();
}

/// A packed description like the source's, in another format. Signedness belongs to the source's integers.
SurfaceDescription describeAs(Surface const& source, PixelFormat format)
{
    SurfaceDescription description = source.description();
    description.pitch = 0;
    if (description.format != format)
        description.flags &= ~std::uint32_t(SurfaceDescription::SignedComponents);
    description.format = format;
    return description;
}

/// Makes an empty target; accepts one with pixels when it fits.
bool prepare(Surface const& source, Surface& target, PixelFormat format)
{
    if (!isUsable(source))
        return false;
    if (target.isEmpty())
        target = Surface(describeAs(source, format));
    if (target.isEmpty()) {
        target = Surface();
        return false;
    }
    return haveSameSize(source, target) && target.format() == format;
}

/// Calls `convert(source row, target row)` for all rows, those of the target in the opposite order if
/// `isMirrored`. Every band of rows that is worked on at once has a copy of `convert`.
template<typename Convert>
void forRows(Surface const& source, Surface& target, bool isMirrored, Convert const& convert)
{
    unsigned int const height = source.height();
    auto const convertBand = [&](unsigned int first, unsigned int end) {
        Convert own = convert;
        for (unsigned int y = first; y < end; ++y)
            own(source.row(y), target.row(isMirrored ? height - 1 - y : y));
    };
    forRowBands(height, (source.lineSize() + target.lineSize()) * height, convertBand);
}

void convertOverFloats(Surface const& source, Surface& target, float alpha, bool isMirrored)
{
    std::size_t const width = source.width();
    unsigned int const from = getChannelsCount(source.format());
    unsigned int const to = getChannelsCount(target.format());
    std::vector<float> loaded(width * from);
    std::vector<float> reshaped(from == to ? 0 : width * to);
    forRows(source, target, isMirrored,
            [=, &source, &target](std::uint8_t const* in, std::uint8_t* out) mutable {
                loadRow(source.format(), in, width, loaded.data(), isSigned(source));
                if (from != to)
                    reshapeRow(loaded.data(), from, reshaped.data(), to, width, alpha);
                storeRow(target.format(), from == to ? loaded.data() : reshaped.data(), width, out,
                         isSigned(target));
            });
}

void copyRows(Surface const& source, Surface& target, bool isMirrored)
{
    std::size_t const bytes = source.lineSize();
    forRows(source, target, isMirrored,
            [bytes](std::uint8_t const* in, std::uint8_t* out) { std::memcpy(out, in, bytes); });
}

bool convertInto(Surface const& source, Surface& target, std::uint8_t alpha, bool isMirrored)
{
    if (!isUsable(source) || !isUsable(target) || !haveSameSize(source, target))
        return false;
    bool const isAnySigned = isSigned(source) || isSigned(target);
    if (source.format() == target.format() && isSigned(source) == isSigned(target)) {
        copyRows(source, target, isMirrored);
    } else if (DirectRow const direct = isAnySigned ? nullptr : directRow(source.format(), target.format())) {
        std::size_t const width = source.width();
        forRows(source, target, isMirrored,
                [=](std::uint8_t const* in, std::uint8_t* out) { direct(in, width, out, alpha); });
    } else {
        convertOverFloats(source, target, alpha / 255.0f, isMirrored);
    }
    return true;
}

/// Runs `change(pixels, count, channels)` over the rows as floats, in the source's format.
template<typename Change> bool changeRows(Surface const& source, Surface& target, Change change)
{
    if (!prepare(source, target, source.format()))
        return false;
    unsigned int const channels = getChannelsCount(source.format());
    std::vector<float> values(std::size_t(source.width()) * channels);
    for (unsigned int y = 0; y < source.height(); ++y) {
        loadRow(source.format(), source.row(y), source.width(), values.data(), isSigned(source));
        change(values.data(), source.width(), channels);
        storeRow(target.format(), values.data(), source.width(), target.row(y), isSigned(target));
    }
    return true;
}

float sRGBToLinear(float value)
{
    return value <= 0.04045f ? value / 12.92f : std::pow((value + 0.055f) / 1.055f, 2.4f);
}

/// Where a channel stands in a pixel, counted in components; -1 where there is none.
int channelPlace(PixelFormat format, Channel channel)
{
    unsigned int const channels = getChannelsCount(format);
    if (channel == Channel::Alpha)
        return channels == 4 ? 3 : -1;
    if (channels == 1)
        return 0;
    int const place = int(channel);
    return isBlueFirst(format) ? 2 - place : place;
}

/// The rectangle as a surface that borrows the pixels; it must lie within.
Surface borrow(Surface const& surface, std::uint64_t x, std::uint64_t y, std::uint64_t width,
               std::uint64_t height)
{
    SurfaceDescription description = surface.description();
    description.width = std::uint32_t(width);
    description.height = std::uint32_t(height);
    auto const* first = surface.row(unsigned(y)) + x * getPixelSize(surface.format());
    return Surface(const_cast<std::uint8_t*>(first), description);
}

PixelFormat otherOrder(PixelFormat format)
{
    switch (format) {
    case RGB8:
        return BGR8;
    case BGR8:
        return RGB8;
    case RGBA8:
        return BGRA8;
    case BGRA8:
        return RGBA8;
    default:
        return format;
    }
}

} // namespace

bool convertTo(Surface const& source, Surface& target, ConversionParameters const& parameters)
{
    return convertInto(source, target, parameters.alpha, false);
}

bool convertMirrored(Surface const& source, Surface& target, ConversionParameters const& parameters)
{
    return convertInto(source, target, parameters.alpha, true);
}

bool convertTo(Surface const& source, Surface& target, PixelFormat format,
               ConversionParameters const& parameters)
{
    target = Surface();
    return prepare(source, target, format) && convertTo(source, target, parameters);
}

bool convertTo8Bits(Surface const& source, Surface& target, ConversionParameters const& parameters)
{
    unsigned int const channels = getChannelsCount(source.format());
    PixelFormat const format =
        getBitsPerChannel(source.format()) == 8 ? source.format() : withChannels(L8, channels);
    return prepare(source, target, format) && convertTo(source, target, parameters);
}

bool convertsRGBToLinearRGB(Surface const& source, Surface& target)
{
    return changeRows(source, target, [](float* values, std::size_t count, unsigned int channels) {
        unsigned int const colours = std::min(channels, 3u);
        for (std::size_t i = 0; i < count; ++i)
            for (unsigned int c = 0; c < colours; ++c)
                values[i * channels + c] = sRGBToLinear(values[i * channels + c]);
    });
}

bool extractChannel(Surface const& source, Surface& target, Channel channel)
{
    int const place = channelPlace(source.format(), channel);
    if (place < 0 || !prepare(source, target, withChannels(source.format(), 1)))
        return false;
    std::size_t const component = getPixelSize(target.format());
    std::size_t const step = getPixelSize(source.format());
    for (unsigned int y = 0; y < source.height(); ++y) {
        std::uint8_t const* in = source.row(y) + std::size_t(place) * component;
        std::uint8_t* out = target.row(y);
        for (unsigned int x = 0; x < source.width(); ++x, in += step, out += component)
            std::memcpy(out, in, component);
    }
    return true;
}

bool deepCopy(Surface const& source, Surface& target)
{
    if (!prepare(source, target, source.format()))
        return false;
    copyRows(source, target, false);
    return true;
}

bool swizzleAlloc(Surface const& source, Surface& target)
{
    return convertTo(source, target, otherOrder(source.format()), ConversionParameters());
}

bool premultiply(Surface const& source, Surface& target)
{
    if (getChannelsCount(source.format()) != 4)
        return deepCopy(source, target);
    return changeRows(source, target, [](float* values, std::size_t count, unsigned int) {
        for (float* pixel = values; pixel != values + count * 4; pixel += 4)
            for (unsigned int c = 0; c < 3; ++c)
                pixel[c] *= pixel[3];
    });
}

bool embedWithCrop(Surface const& source, Surface& target, int x, int y)
{
    if (!isUsable(source) || !isUsable(target))
        return false;
    std::int64_t const left = std::max<std::int64_t>(x, 0);
    std::int64_t const top = std::max<std::int64_t>(y, 0);
    std::int64_t const right = std::min(std::int64_t(x) + source.width(), std::int64_t(target.width()));
    std::int64_t const bottom = std::min(std::int64_t(y) + source.height(), std::int64_t(target.height()));
    if (left >= right || top >= bottom)
        return true;
    Surface const from = borrow(source, left - x, top - y, right - left, bottom - top);
    Surface to = borrow(target, left, top, right - left, bottom - top);
    return convertTo(from, to, ConversionParameters{255});
}

Surface crop(Surface const& source, unsigned int x, unsigned int y, unsigned int width, unsigned int height)
{
    Surface result;
    if (!isUsable(source) || x >= source.width() || y >= source.height() || width == 0 || height == 0)
        return result;
    Surface const part =
        borrow(source, x, y, std::min(width, source.width() - x), std::min(height, source.height() - y));
    deepCopy(part, result);
    return result;
}

bool fill(Surface& surface, float r, float g, float b, float a)
{
    if (!isUsable(surface))
        return false;
    float const colour[4] = {r, g, b, a};
    float shaped[4];
    std::uint8_t pixel[16];
    reshapeRow(colour, 4, shaped, getChannelsCount(surface.format()), 1, a);
    storeRow(surface.format(), shaped, 1, pixel);
    std::size_t const size = getPixelSize(surface.format());
    for (std::size_t x = 0; x < surface.width(); ++x)
        std::memcpy(surface.row(0) + x * size, pixel, size);
    for (unsigned int y = 1; y < surface.height(); ++y)
        std::memcpy(surface.row(y), surface.row(0), surface.lineSize());
    return true;
}

} // namespace Orn::Surfaces
