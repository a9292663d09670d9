#include "orncommon/image/surfaceoperations.h"

#include "orncommon/surfaces/half.h"
#include "orncommon/surfaces/rowbands.h"

#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace Orn::Image::Core {

using Surfaces::ORNHalf16;
using Surfaces::SurfaceDescription;

namespace {

/// The uniform handling of targets: made when null, reset to null when `operation` fails.
template<typename Operation> bool into(SharedSurface& target, Operation operation)
{
    if (target.isNull())
        target = makeEmpty();
    if (operation(*target) && !target->isEmpty())
        return true;
    target.reset();
    return false;
}

SharedSurface makeLike(Surface const& source)
{
    SurfaceDescription description = source.description();
    description.pitch = 0;
    return SharedSurface::create(description, Surfaces::surfaceAlignment);
}

/// Row by row, without a way out within one: so the rows are read as fast as memory gives them.
template<typename T, typename IsOpaque> bool hasOtherAlpha(Surface const& surface, IsOpaque isOpaque)
{
    std::atomic<bool> isFound{false};
    auto const search = [&](unsigned int first, unsigned int end) {
        for (unsigned int y = first; y < end && !isFound; ++y) {
            auto const* pixels = reinterpret_cast<T const*>(surface.row(y));
            unsigned int others = 0;
            for (unsigned int x = 0; x < surface.width(); ++x)
                others += isOpaque(pixels[std::size_t(x) * 4 + 3]) ? 0 : 1;
            if (others != 0)
                isFound = true;
        }
    };
    Surfaces::forRowBands(surface.height(), surface.lineSize() * surface.height(), search);
    return isFound;
}

float encodeSRGB(float value)
{
    return value <= 0.0031308f ? 12.92f * value : powf(value, 0.41666666f) * 1.055f - 0.055f;
}

/// The encoding of each value of an integer type, or of each pattern of halves.
template<typename T> std::vector<T> encodedIntegers()
{
    constexpr unsigned int maximum = std::numeric_limits<T>::max();
    std::vector<T> table(maximum + 1);
    for (unsigned int i = 0; i <= maximum; ++i)
        table[i] = T(roundf(encodeSRGB(float(i) / float(maximum)) * float(maximum)));
    return table;
}

std::vector<ORNHalf16> encodedHalves()
{
    std::vector<ORNHalf16> table(65536);
    for (unsigned int i = 0; i < table.size(); ++i)
        table[i] = Surfaces::floatToHalf(encodeSRGB(Surfaces::halfToFloat(ORNHalf16(i))));
    return table;
}

template<typename T, typename Encode> void encodeRows(Surface const& source, Surface& target, Encode encode)
{
    std::size_t const values = std::size_t(source.width()) * Surfaces::getChannelsCount(source.format());
    for (unsigned int y = 0; y < source.height(); ++y) {
        auto const* in = reinterpret_cast<T const*>(source.row(y));
        auto* out = reinterpret_cast<T*>(target.row(y));
        for (std::size_t i = 0; i < values; ++i)
            out[i] = encode(in[i]);
    }
}

bool encodeSurface(Surface const& source, Surface& target)
{
    unsigned int const bits = Surfaces::getBitsPerChannel(source.format());
    if (bits == 8) {
        static auto const table = encodedIntegers<std::uint8_t>();
        encodeRows<std::uint8_t>(source, target, [](std::uint8_t v) { return table[v]; });
    } else if (bits == 16 && Surfaces::isFloatFormat(source.format())) {
        static auto const table = encodedHalves();
        encodeRows<ORNHalf16>(source, target, [](ORNHalf16 v) { return table[v]; });
    } else if (bits == 16) {
        static auto const table = encodedIntegers<std::uint16_t>();
        encodeRows<std::uint16_t>(source, target, [](std::uint16_t v) { return table[v]; });
    } else {
        encodeRows<float>(source, target, encodeSRGB);
    }
    return true;
}

} // namespace

SharedSurface makeEmpty()
{
    return SharedSurface::create();
}

SharedSurface makeShared(Surface&& surface)
{
    return surface.isEmpty() ? SharedSurface() : SharedSurface::create(std::move(surface));
}

SharedSurface clone(Surface const& surface)
{
    SharedSurface copy;
    deepCopy(surface, copy);
    return copy;
}

bool deepCopy(Surface const& source, SharedSurface& target)
{
    return into(target, [&](Surface& made) { return Surfaces::deepCopy(source, made); });
}

bool deepCopyMirrored(Surface const& source, SharedSurface& target)
{
    if (target.isNull())
        target = makeLike(source);
    return into(target, [&](Surface& made) {
        return made.format() == source.format() && Surfaces::convertMirrored(source, made, {});
    });
}

bool convertTo(Surface const& source, SharedSurface& target, ConversionParameters const* parameters)
{
    ConversionParameters const used = parameters != nullptr ? *parameters : ConversionParameters();
    return into(target, [&](Surface& made) { return Surfaces::convertTo(source, made, used); });
}

bool convertTo(Surface const& source, SharedSurface& target, PixelFormat format,
               ConversionParameters const* parameters)
{
    ConversionParameters const used = parameters != nullptr ? *parameters : ConversionParameters();
    return into(target, [&](Surface& made) { return Surfaces::convertTo(source, made, format, used); });
}

bool extractChannel(Surface const& source, SharedSurface& target, Channel channel)
{
    return into(target, [&](Surface& made) { return Surfaces::extractChannel(source, made, channel); });
}

bool swizzle(Surface const& source, SharedSurface& target)
{
    return into(target, [&](Surface& made) { return Surfaces::swizzleAlloc(source, made); });
}

bool premultiply(Surface const& source, SharedSurface& target)
{
    return into(target, [&](Surface& made) { return Surfaces::premultiply(source, made); });
}

bool embed(Surface const& source, SharedSurface& target, QPoint const& point)
{
    if (target.isNull()) {
        target = makeLike(source);
        Surfaces::fill(*target, 0.0f, 0.0f, 0.0f, 0.0f);
    }
    return into(target,
                [&](Surface& made) { return Surfaces::embedWithCrop(source, made, point.x(), point.y()); });
}

SharedSurface crop(Surface const& surface, QRect const& rectangle)
{
    QRect const whole(0, 0, int(surface.width()), int(surface.height()));
    QRect const part = rectangle.intersected(whole);
    if (part.isEmpty())
        return {};
    return makeShared(Surfaces::crop(surface, unsigned(part.left()), unsigned(part.top()),
                                     unsigned(part.right() - part.left() + 1),
                                     unsigned(part.bottom() - part.top() + 1)));
}

bool clear(Surface& surface, float r, float g, float b, float a)
{
    return Surfaces::fill(surface, r, g, b, a);
}

bool hasPixelWithAlpha(Surface const& surface)
{
    if (surface.isEmpty())
        return false;
    switch (surface.format()) {
    case Surfaces::RGBA8:
    case Surfaces::BGRA8:
        return hasOtherAlpha<std::uint8_t>(surface, [](std::uint8_t alpha) { return alpha == 255; });
    case Surfaces::RGBA16:
        return hasOtherAlpha<std::uint16_t>(surface, [](std::uint16_t alpha) { return alpha == 65535; });
    case Surfaces::RGBA16F:
        return hasOtherAlpha<ORNHalf16>(surface, [](ORNHalf16 alpha) { return alpha == 0x3C00; });
    case Surfaces::RGBA32F:
        return hasOtherAlpha<float>(surface, [](float alpha) { return alpha == 1.0f; });
    default:
        return false;
    }
}

bool linearToSRGB(Surface const& source, SharedSurface& target)
{
    if (source.isEmpty() || Surfaces::getPixelSize(source.format()) == 0) {
        target.reset();
        return false;
    }
    if (target.isNull())
        target = makeLike(source);
    return into(target, [&](Surface& made) {
        bool const fits = !made.isEmpty() && made.format() == source.format() &&
                          made.width() == source.width() && made.height() == source.height();
        return fits && encodeSurface(source, made);
    });
}

PixelFormat removeAlpha(PixelFormat format)
{
    if (Surfaces::getChannelsCount(format) != 4)
        return format;
    return Surfaces::isBlueFirst(format) ? Surfaces::BGR8 : Surfaces::withChannels(format, 3);
}

} // namespace Orn::Image::Core
