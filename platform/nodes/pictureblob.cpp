#include "platform/nodes/pictureblob.h"

namespace vellor::nodes {
namespace {

constexpr std::uint32_t kMark = 0x43495056; // "VPIC"
constexpr std::size_t kHeader = 16;

std::uint32_t wordAt(const std::uint8_t* bytes)
{
    return std::uint32_t(bytes[0]) | std::uint32_t(bytes[1]) << 8 | std::uint32_t(bytes[2]) << 16 |
           std::uint32_t(bytes[3]) << 24;
}

} // namespace

PictureBlob PictureBlob::read(const std::uint8_t* blob, std::size_t size)
{
    if (!blob || size < kHeader || wordAt(blob) != kMark)
        return {};
    const std::uint32_t width = wordAt(blob + 4), height = wordAt(blob + 8), form = wordAt(blob + 12);
    const std::uint32_t channels = form & 0xffff, bits = form >> 16;
    const bool good = width >= 1 && width <= kMaxSide && height >= 1 && height <= kMaxSide &&
                      (channels == 1 || channels == 4) && (bits == 8 || bits == 16);
    if (!good || size - kHeader != std::uint64_t(width) * height * channels * (bits / 8))
        return {};
    return {blob + kHeader, static_cast<int>(width), static_cast<int>(height), static_cast<int>(channels),
            static_cast<int>(bits)};
}

std::vector<std::uint8_t> PictureBlob::make(int width, int height, int channels, int bits,
                                            const std::vector<std::uint8_t>& rows)
{
    std::vector<std::uint8_t> blob;
    blob.reserve(kHeader + rows.size());
    const auto words = {kMark, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                        static_cast<std::uint32_t>(channels | bits << 16)};
    for (const std::uint32_t word : words)
        for (int shift = 0; shift < 32; shift += 8)
            blob.push_back(static_cast<std::uint8_t>(word >> shift));
    blob.insert(blob.end(), rows.begin(), rows.end());
    return blob;
}

} // namespace vellor::nodes
