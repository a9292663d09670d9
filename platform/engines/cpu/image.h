#pragma once

#include "platform/engines/cpu/bufferpool.h"
#include "platform/nodes/node.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace vellor::cpu {

/// Floats that a row of `width` pixels takes: whole vectors of 64 bytes, and never a multiple of 4 KiB, so
/// that the rows of a column don't fall on the same cache lines.
std::ptrdiff_t rowStride(int width);

/// Bytes that somebody's pictures take. Any thread.
using Account = std::shared_ptr<std::atomic<std::uint64_t>>;

/// What a picture is: planes of floats, or the pixels of a host's raw format in rows without padding.
struct ImageShape
{
    int width = 0, height = 0;
    int channels = 1;        // 1 or 4; of packed pixels, those of the planes that they were made from
    bool packed = false;     // pixels, not planes
    std::uint8_t format = 0; // of the pixels

    std::size_t byteSize() const;
};

/// A whole picture in one block, planes one after the other. Not cleared.
class Image
{
public:
    /// Bytes that planes of this shape take.
    static std::size_t byteSize(int width, int height, int channels);

    /// Throws std::bad_alloc.
    Image(BufferPool& pool, int width, int height, int channels);
    Image(BufferPool& pool, const ImageShape& shape);
    Image(Image&&) noexcept = default;
    Image& operator=(Image&&) = delete;
    ~Image();

    /// Counts the picture's bytes in this account from now on, and in no other. Null: in none.
    void charge(Account account) const;

    const ImageShape& shape() const { return shape_; }
    int width() const { return shape_.width; }
    int height() const { return shape_.height; }
    int channels() const { return shape_.channels; }
    std::size_t byteSize() const { return shape_.byteSize(); }
    std::byte* bytes() const { return buffer_.bytes(); }

    /// The planes; without any for packed pixels.
    nodes::ImageView view() const;
    nodes::MutableImage mutableView() const;

private:
    float* plane(int channel) const;

    ImageShape shape_;
    Buffer buffer_;
    mutable Account account_;
};

} // namespace vellor::cpu
