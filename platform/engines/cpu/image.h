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

/// A whole picture: 1 or 4 planes of floats in one block, channel after channel. Not cleared.
class Image
{
public:
    /// Bytes that a picture of this shape takes.
    static std::size_t byteSize(int width, int height, int channels);

    /// Throws std::bad_alloc.
    Image(BufferPool& pool, int width, int height, int channels);
    Image(Image&&) noexcept = default;
    Image& operator=(Image&&) = delete;
    ~Image();

    /// Counts the picture's bytes in this account from now on, and in no other. Null: in none.
    void charge(Account account) const;

    int width() const { return width_; }
    int height() const { return height_; }
    int channels() const { return channels_; }
    std::size_t byteSize() const { return byteSize(width_, height_, channels_); }
    std::byte* bytes() const { return buffer_.bytes(); }

    nodes::ImageView view() const;
    nodes::MutableImage mutableView() const;

private:
    float* plane(int channel) const;

    int width_, height_, channels_;
    Buffer buffer_;
    mutable Account account_;
};

} // namespace vellor::cpu
