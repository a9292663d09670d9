#pragma once

#include "orncommon/colormanagement/colorspacetransform.h"

namespace Orn::ColorManagement {

/// Leaves every colour as it is.
class NoOpColorSpaceTransform : public ColorSpaceTransform
{
public:
    static SharedColorSpaceTransform create() { return std::make_shared<NoOpColorSpaceTransform>(); }

protected:
    void doApply(unsigned int, unsigned int, PixelFormat, AlphaMode, long, unsigned char*) const override {}
};

} // namespace Orn::ColorManagement
