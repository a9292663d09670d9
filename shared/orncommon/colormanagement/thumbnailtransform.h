#pragma once

#include "orncommon/colormanagement/colorspacetransform.h"

#include <utility>

namespace Orn::ColorManagement {

/// What brings a thumbnail to the display. Whoever has one skips it when `isNoOp()`.
class ThumbnailTransform
{
public:
    /// Without a transform it does nothing.
    explicit ThumbnailTransform(SharedColorSpaceTransform transform = nullptr)
        : m_transform(std::move(transform))
    {
    }

    bool isNoOp() const { return m_transform == nullptr; }

    /// As ColorSpaceTransform::apply, with straight alpha.
    void apply(unsigned int width, unsigned int height, PixelFormat format, long rowStride,
               unsigned char* data) const
    {
        if (m_transform)
            m_transform->apply(width, height, format, AlphaMode::Straight, rowStride, data);
    }

private:
    SharedColorSpaceTransform m_transform;
};

} // namespace Orn::ColorManagement
