#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vellor::nodes {

/// A picture inside a package: four little-endian 32-bit words "VPIC", width, height, and channels (1 or 4)
/// in the low half with bits per channel (8 or 16) in the high half; then the rows from the top, channels
/// interleaved, 16 bits in little-endian order. A view: the blob must live as long.
struct PictureBlob
{
    static constexpr std::uint32_t kMaxSide = 16384;

    const std::uint8_t* pixels = nullptr; // null: no picture
    int width = 0, height = 0, channels = 0, bits = 0;

    /// No picture when the bytes aren't one.
    static PictureBlob read(const std::uint8_t* blob, std::size_t size);
    /// The blob of a picture with these rows.
    static std::vector<std::uint8_t> make(int width, int height, int channels, int bits,
                                          const std::vector<std::uint8_t>& rows);

    /// 0 to 1.
    float at(int x, int y, int channel) const
    {
        const std::size_t index = (static_cast<std::size_t>(y) * width + x) * channels + channel;
        if (bits == 8)
            return static_cast<float>(pixels[index]) * (1.0f / 255.0f);
        return static_cast<float>(pixels[2 * index] | pixels[2 * index + 1] << 8) * (1.0f / 65535.0f);
    }
};

} // namespace vellor::nodes
