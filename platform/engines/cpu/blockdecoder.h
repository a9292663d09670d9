#pragma once

#include <cstddef>
#include <cstdint>

namespace vellor::cpu {

/// Bytes of one block of 4 x 4 pixels in a block-compressed format of the engine interface; 0 for any other
/// format.
std::size_t blockBytes(std::uint8_t format);

/// Channels that the format holds: 1 for BC4, else 4 (BC5 gives red and green; blue is 0, alpha 255).
int blockChannels(std::uint8_t format);

/// Decodes one block to 16 RGBA pixels of 8 bits, row by row from the top. BC4 gives its value in red.
void decodeBlock(std::uint8_t format, const std::uint8_t* block, std::uint8_t* pixels);

} // namespace vellor::cpu
