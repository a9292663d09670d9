#include "platform/engines/cpu/image.h"

#include "platform/engines/cpu/pixelformat.h"

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

std::size_t ImageShape::byteSize() const
{
    return packed ? static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                        RawFormat::of(format).pixelBytes()
                  : Image::byteSize(width, height, channels);
}

Image::Image(BufferPool& pool, int width, int height, int channels)
    : Image(pool, ImageShape{width, height, channels})
{
}

Image::Image(BufferPool& pool, const ImageShape& shape)
    : shape_(shape), buffer_(pool.acquire(shape.byteSize()))
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
    return buffer_.floats() + planeStride(shape_.width, shape_.height) * channel;
}

nodes::ImageView Image::view() const
{
    const nodes::MutableImage planes = mutableView();
    nodes::ImageView view;
    for (int channel = 0; channel < planes.channels; ++channel)
        view.planes[channel] = planes.planes[channel];
    view.stride = planes.stride;
    view.width = planes.width;
    view.height = planes.height;
    view.channels = planes.channels;
    return view;
}

nodes::MutableImage Image::mutableView() const
{
    nodes::MutableImage view;
    if (shape_.packed)
        return view;
    for (int channel = 0; channel < shape_.channels; ++channel)
        view.planes[channel] = plane(channel);
    view.stride = rowStride(shape_.width);
    view.width = shape_.width;
    view.height = shape_.height;
    view.channels = shape_.channels;
    return view;
}

} // namespace vellor::cpu
