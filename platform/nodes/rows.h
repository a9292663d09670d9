#pragma once

// Rows of pictures that wrap around.

#include "platform/nodes/node.h"

#include <algorithm>

namespace vellor::nodes {

/// Pixels that kernels which read around a pixel work on at once: what they read then stays in the first
/// cache.
constexpr int kChunk = 512;

/// x modulo size, in [0, size).
inline int wrapped(int x, int size)
{
    const int r = x % size;
    return r < 0 ? r + size : r;
}

inline const float* rowOf(const ImageView& image, int channel, int y)
{
    return image.planes[channel] + wrapped(y, image.height) * image.stride;
}

inline float* rowOf(const MutableImage& image, int channel, int y)
{
    return image.planes[channel] + y * image.stride;
}

/// Whether a result is too large for any cache to hold: writing it past them saves reading the lines that are
/// filled.
inline bool goesPastCaches(const MutableImage& result)
{
    constexpr std::size_t kCached = std::size_t(8) << 20; // floats
    return std::size_t(result.stride) * result.height * result.channels >= kCached;
}

/// Copies count pixels of a row of the given width from x on, which may lie anywhere, going around as often
/// as it takes.
inline void copyWrapped(const float* row, int width, int x, int count, float* result)
{
    int from = wrapped(x, width);
    while (count > 0) {
        const int run = std::min(count, width - from);
        result = std::copy_n(row + from, run, result);
        count -= run;
        from = 0;
    }
}

/// A chunk of a row with `margin` pixels of its surroundings on either side. at(i) is pixel x + i of the
/// picture, for i from -margin to count + margin - 1; whole vectors may be read from any of these.
template<int margin> class RowWindow
{
public:
    void fill(const ImageView& image, int channel, int x, int y, int count)
    {
        copyWrapped(rowOf(image, channel, y), image.width, x - margin, count + 2 * margin, m_pixels.data());
    }
    const float* at(int i) const { return m_pixels.data() + margin + i; }

private:
    std::array<float, kChunk + 2 * margin + 16> m_pixels{};
};

} // namespace vellor::nodes
