#include "orncommon/colormanagement/linearsrgbtosrgbcolorspacetransform.h"

#include "orncommon/surfaces/pixelrows.h"

#include <cmath>
#include <vector>

namespace Orn::ColorManagement {

namespace {

float encode(float value)
{
    return value <= 0.0031308f ? value * 12.92f : 1.055f * std::pow(value, 1.0f / 2.4f) - 0.055f;
}

/// A pixel of alpha 0 has no colour to divide out, and is encoded as it stands.
void encodePixel(float* pixel, bool isPremultiplied)
{
    float const alpha = isPremultiplied && pixel[3] != 0.0f ? pixel[3] : 1.0f;
    for (int c = 0; c < 3; ++c)
        pixel[c] = encode(pixel[c] / alpha) * alpha;
}

} // namespace

SharedColorSpaceTransform LinearsRGBTosRGBColorSpaceTransform::create()
{
    return std::make_shared<LinearsRGBTosRGBColorSpaceTransform>();
}

void LinearsRGBTosRGBColorSpaceTransform::doApply(unsigned int width, unsigned int height, PixelFormat format,
                                                  AlphaMode alphaMode, long rowStride,
                                                  unsigned char* data) const
{
    Surfaces::PixelFormat const pixels = toSurfaceFormat(format);
    unsigned int const channels = Surfaces::getChannelsCount(pixels);
    bool const isPremultiplied = alphaMode == AlphaMode::Premultiplied && channels == 4;
    std::vector<float> row(std::size_t(width) * channels);
    for (unsigned int y = 0; y < height; ++y, data += rowStride) {
        Surfaces::loadRow(pixels, data, width, row.data());
        for (std::size_t i = 0; i < row.size(); i += channels)
            encodePixel(&row[i], isPremultiplied);
        Surfaces::storeRow(pixels, row.data(), width, data);
    }
}

} // namespace Orn::ColorManagement
