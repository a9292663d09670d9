#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vellor::nodes {

/// A function through keys that rises and falls only where they do: cubic between two keys, with the slopes
/// of F. Fritsch and R. Carlson's method, level before the first key and after the last. Keys out of order
/// are sorted; of keys at one place the last counts.
class Curve
{
public:
    struct Key
    {
        float x = 0.0f, y = 0.0f;
    };

    explicit Curve(std::vector<Key> keys);

    /// From pairs of little-endian floats x, y. No whole pair, or null, gives the line from (0, 0) to (1, 1).
    /// Keys that are no numbers are left out.
    static Curve fromBlob(const std::uint8_t* blob, std::size_t size);

    float at(float x) const;

    /// Values at 0, 1 / steps, ... 1.
    std::vector<float> table(int steps) const;

private:
    std::vector<Key> m_keys; // at least one
    std::vector<float> m_slopes;
};

/// The floats of a blob of little-endian floats.
std::vector<float> floatsOfBlob(const std::uint8_t* blob, std::size_t size);

} // namespace vellor::nodes
