#pragma once

#include "orncommon/surfaces/operations.h"

#include <QPoint>
#include <QRect>
#include <QSharedPointer>

/// Operations on shared surfaces. A null pointer means no image. A null target is made by the function; after
/// a failure, which gives false, the target is null and never an empty surface. Safe on any thread for
/// distinct targets.
namespace Orn::Image::Core {

using Surfaces::Channel;
using Surfaces::ConversionParameters;
using Surfaces::PixelFormat;
using Surfaces::Surface;

using SharedSurface = QSharedPointer<Surface>;

/// The filters of `rescaleCopy`; 1 is the one that the program asks for.
enum class ScaleFilter
{
    Box = 0,
    Bicubic = 1,
    Bilinear = 2,
    BSpline = 3,
    CatmullRom = 4,
    Lanczos3 = 5,
};

/// A shared pointer to a surface without pixels.
SharedSurface makeEmpty();

/// Moves into a new shared surface; null for a surface without pixels.
SharedSurface makeShared(Surface&& surface);

/// A shared copy of the pixels; null for a surface without pixels.
SharedSurface clone(Surface const& surface);

/// A null target gets the source's description without the padding of its rows.
bool deepCopy(Surface const& source, SharedSurface& target);

/// The same with the rows in the opposite order. The source stays as it is.
bool deepCopyMirrored(Surface const& source, SharedSurface& target);

/// Into the format of a target that has pixels and the source's size. No parameters mean alpha 0 where one is
/// gained.
bool convertTo(Surface const& source, SharedSurface& target,
               ConversionParameters const* parameters = nullptr);

/// Into `format`, with fresh pixels.
bool convertTo(Surface const& source, SharedSurface& target, PixelFormat format,
               ConversionParameters const* parameters = nullptr);

bool extractChannel(Surface const& source, SharedSurface& target, Channel channel);
bool swizzle(Surface const& source, SharedSurface& target);
bool premultiply(Surface const& source, SharedSurface& target);

/// Pastes the source at the point and clips it. A null target is made with the source's description,
/// transparent black where the source does not reach.
bool embed(Surface const& source, SharedSurface& target, QPoint const& point);

/// The part of the rectangle that lies within the surface; null when none does.
SharedSurface crop(Surface const& surface, QRect const& rectangle);

bool clear(Surface& surface, float r, float g, float b, float a);

/// Whether some pixel is not opaque. For halves and floats, any alpha that is not exactly 1.0 counts.
bool hasPixelWithAlpha(Surface const& surface);

/// Encodes every channel, alpha too, with the sRGB curve, in the source's format.
bool linearToSRGB(Surface const& source, SharedSurface& target);

/// The format of the same depth and order with three channels; a format without alpha is given back as it is.
PixelFormat removeAlpha(PixelFormat format);

/// Resizes to `width` x `height` pixels, in the source's format.
bool rescaleCopy(Surface const& source, SharedSurface& target, unsigned int width, unsigned int height,
                 ScaleFilter filter);

} // namespace Orn::Image::Core
