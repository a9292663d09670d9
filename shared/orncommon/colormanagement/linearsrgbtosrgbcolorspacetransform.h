#pragma once

#include "orncommon/colormanagement/colorspacetransform.h"

namespace Orn::ColorManagement {

/// Encodes linear values of the sRGB primaries with the sRGB curve.
class LinearsRGBTosRGBColorSpaceTransform : public ColorSpaceTransform
{
public:
    static SharedColorSpaceTransform create();

protected:
    void doApply(unsigned int width, unsigned int height, PixelFormat format, AlphaMode alphaMode,
                 long rowStride, unsigned char* data) const override;
};

} // namespace Orn::ColorManagement
