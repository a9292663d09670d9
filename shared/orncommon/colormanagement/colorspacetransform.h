#pragma once

#include "orncommon/colormanagement/pixelformat.h"

#include <memory>

namespace Orn::ColorManagement {

/// Takes colours from one colour space to another. Immutable and re-entrant: one object serves many threads.
class ColorSpaceTransform
{
public:
    virtual ~ColorSpaceTransform() = default;

    /// Converts width x height pixels in place. `rowStride` is the bytes from one row to the next. Alpha
    /// stays.
    void apply(unsigned int width, unsigned int height, PixelFormat format, AlphaMode alphaMode,
               long rowStride, unsigned char* data) const
    {
        doApply(width, height, format, alphaMode, rowStride, data);
    }

    /// Converts one colour of three floats, in place.
    void applyRGB(float* rgb) const
    {
        doApply(1, 1, PixelFormat::RGB32F, AlphaMode::Straight, 0, bytesOf(rgb));
    }

protected:
    virtual void doApply(unsigned int width, unsigned int height, PixelFormat format, AlphaMode alphaMode,
                         long rowStride, unsigned char* data) const = 0;

private:
    static unsigned char* bytesOf(float* values) { return reinterpret_cast<unsigned char*>(values); }
};

using SharedColorSpaceTransform = std::shared_ptr<ColorSpaceTransform const>;

} // namespace Orn::ColorManagement
