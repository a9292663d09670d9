#pragma once

// Pixels between planes of floats and the packed formats of hosts: vector kernels, compiled once for each
// instruction set, with the same bytes from each of them.

#include "platform/engines/cpu/pixelformat.h"

#include <cstddef>
#include <cstdint>

namespace vellor::cpu {

/// Pixels that a caller does at once: what lies between two steps then stays in the first cache.
constexpr int kPixelBlock = 1024;
/// Bytes that packPixels may write, and unpackPixels may read, beyond the last pixel.
constexpr int kPixelSlack = 256;

/// The first `count` pixels of planes, packed at `out`, which has kPixelSlack bytes to spare. `in` has as
/// many planes as the format stores channels, aligned to 64 bytes; whole vectors of them are read. Integers:
/// clamped to 0 to 1, NaN is 0, rounded to the nearest, halves up. Half floats: the nearest, ties to even;
/// infinity beyond the range; NaN stays NaN.
void packPixels(const RawFormat& format, const float* const* in, int count, std::uint8_t* out);

/// The reverse: stored channel c goes to plane to[c], where that is not null. kPixelSlack bytes behind the
/// last pixel are readable, and whole vectors of the planes are written. Integers: over their greatest value,
/// correctly rounded.
void unpackPixels(const RawFormat& format, const std::uint8_t* in, int count, float* const* to);

/// 0.2126 r + 0.7152 g + 0.0722 b.
void luminance(const float* const* in, int count, float* out);

/// count means of the 2 x 2 pixels from `above` and `below` on, which may be the same row.
void halvePixels(const float* above, const float* below, int count, float* out);

/// What is read next while something is written: so many bytes of each of these rows are fetched into the
/// first cache, an even part with every line written. Rows may end early: what lies behind is fetched, never
/// looked at.
struct Ahead
{
    const void* const* rows = nullptr;
    int count = 0;
    std::size_t bytes = 0;
};

/// Fetches all of it at once, into the second cache, which waits for more lines than the first.
void fetch(const Ahead& ahead);

/// Copies past the caches, for results that are not read again soon. Whoever has written like this calls
/// endStreaming before another thread may read. Memory reads and writes at the same time if it is asked to:
/// work that only reads, and then only writes, takes as long as both.
void streamBytes(void* to, const void* from, std::size_t bytes, const Ahead& ahead = {});
void endStreaming();

/// packPixels past the caches, with no more than the pixels themselves written, where format and place lend
/// themselves to it: whole lines of RGBA of 8 bits. False: they don't, and nothing was written.
bool streamPixels(const RawFormat& format, const float* const* in, int count, std::uint8_t* out);

/// Whether a result of so many bytes had better be written past the caches: plainly so from 64 MiB on, and
/// no longer worse from about 16.
constexpr bool worthStreaming(std::size_t bytes)
{
    return bytes >= (std::size_t(16) << 20);
}

} // namespace vellor::cpu
