#include "platform/engines/cpu/image.h"

#include <utility>

namespace vellor::cpu {

namespace {

/// Floats from plane to plane. Where rows fill pages, planes would all start at the same place within a page,
/// and at the same lines of the caches: each starts 17 lines further on.
std::ptrdiff_t planeStride(int width, int height)
{
    const std::ptrdiff_t floats = rowStride(width) * height;
    return floats % 1024 == 0 ? floats + 17 * 16 : floats;
}

} // namespace

std::ptrdiff_t rowStride(int width)
{
    const std::ptrdiff_t stride = (static_cast<std::ptrdiff_t>(width) + 15) / 16 * 16;
    return stride % 1024 == 0 ? stride + 16 : stride;
}

std::size_t Image::byteSize(int width, int height, int channels)
{
    return static_cast<std::size_t>(planeStride(width, height)) * static_cast<std::size_t>(channels) *
           sizeof(float);
}

Image::Image(BufferPool& pool, int width, int height, int channels)
    : width_(width), height_(height), channels_(channels),
      buffer_(pool.acquire(byteSize(width, height, channels)))
{
}

Image::~Image()
{
    charge(nullptr);
}

void Image::charge(Account account) const
{
    if (account_)
        *account_ -= byteSize();
    account_ = std::move(account);
    if (account_)
        *account_ += byteSize();
}

float* Image::plane(int channel) const
{
    return buffer_.floats() + planeStride(width_, height_) * channel;
}

nodes::ImageView Image::view() const
{
    nodes::ImageView view;
    for (int channel = 0; channel < channels_; ++channel)
        view.planes[channel] = plane(channel);
    view.stride = rowStride(width_);
    view.width = width_;
    view.height = height_;
    view.channels = channels_;
    return view;
}

nodes::MutableImage Image::mutableView() const
{
    nodes::MutableImage view;
    for (int channel = 0; channel < channels_; ++channel)
        view.planes[channel] = plane(channel);
    view.stride = rowStride(width_);
    view.width = width_;
    view.height = height_;
    view.channels = channels_;
    return view;
}

} // namespace vellor::cpu
