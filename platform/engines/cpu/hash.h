#pragma once

// The name of a result: 128 bits over everything that it was made from. Two results with the same key are the
// same bytes, so a kept result is found by its key alone, whichever node, generation or handle made it.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vellor::cpu {

struct Key
{
    std::uint64_t high = 0, low = 0;
    friend bool operator==(const Key& a, const Key& b) { return a.high == b.high && a.low == b.low; }
    friend bool operator!=(const Key& a, const Key& b) { return !(a == b); }
};

struct KeyHash
{
    std::size_t operator()(const Key& key) const { return static_cast<std::size_t>(key.low); }
};

/// Gathers words and bytes into a key. Not cryptographic: nobody attacks a cache of his own results.
class Hasher
{
public:
    explicit Hasher(std::uint64_t domain) { add(domain); }

    void add(std::uint64_t word)
    {
        a_ = rotate((a_ ^ word) * 0x9E3779B97F4A7C15ull, 29) + 0x52DCE729ull;
        b_ = (rotate(b_ + word, 37) ^ a_) * 0xC2B2AE3D27D4EB4Full;
    }

    void add(const Key& key)
    {
        add(key.high);
        add(key.low);
    }

    /// The bytes and their number. Four independent lanes, so that pictures hash at memory speed.
    void add(const void* data, std::size_t size)
    {
        const auto* bytes = static_cast<const unsigned char*>(data);
        std::uint64_t lanes[4] = {1, 2, 3, 4};
        std::size_t at = 0;
        for (; at + 32 <= size; at += 32) {
            for (int lane = 0; lane < 4; ++lane) {
                std::uint64_t word;
                std::memcpy(&word, bytes + at + 8 * lane, 8);
                lanes[lane] = rotate((lanes[lane] ^ word) * 0x9E3779B97F4A7C15ull, 31);
            }
        }
        for (; at < size; at += 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes + at, size - at < 8 ? size - at : 8);
            add(word);
        }
        for (std::uint64_t lane : lanes)
            add(lane);
        add(size);
    }

    Key key() const { return {finish(a_ + b_), finish(b_ ^ rotate(a_, 17))}; }

private:
    static std::uint64_t rotate(std::uint64_t v, int bits) { return (v << bits) | (v >> (64 - bits)); }
    static std::uint64_t finish(std::uint64_t v)
    {
        v = (v ^ (v >> 33)) * 0xFF51AFD7ED558CCDull;
        v = (v ^ (v >> 33)) * 0xC4CEB9FE1A85EC53ull;
        return v ^ (v >> 33);
    }

    std::uint64_t a_ = 0x243F6A8885A308D3ull, b_ = 0x13198A2E03707344ull;
};

} // namespace vellor::cpu
