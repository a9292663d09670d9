#pragma once

#include <cstddef>
#include <cstdint>

namespace Orn::Image::Codec {

/// How a block of 4 x 4 pixels is packed.
enum class BlockFormat
{
    Bc1, ///< DXT1: two colours and 2-bit indices, or three colours and transparent black
    Bc2, ///< DXT2, DXT3: 4-bit alpha, then colours
    Bc3, ///< DXT4, DXT5: interpolated alpha, then colours
    Bc4, ///< ATI1: one interpolated channel
    Bc5, ///< ATI2: two of them, red then green
};

/// Bytes of one block.
constexpr std::size_t blockSize(BlockFormat format)
{
    return format == BlockFormat::Bc1 || format == BlockFormat::Bc4 ? 8 : 16;
}

/// Bytes of one decoded pixel: grey for Bc4, red, green, blue and alpha for the others.
constexpr std::size_t decodedPixelSize(BlockFormat format)
{
    return format == BlockFormat::Bc4 ? 1 : 4;
}

/// Decodes one block into 16 pixels, row by row from the top. Bc5 has blue 0 and alpha 255.
void decodeBlock(BlockFormat format, std::uint8_t const* block, std::uint8_t* pixels);

} // namespace Orn::Image::Codec
