#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vellor::nodes {

/// Colours at positions, straight lines between, level outside. Stops are sorted by position; of stops at one
/// place, the first ends what lies before it and the last starts what comes after.
class Gradient
{
public:
    struct Stop
    {
        float position = 0.0f;
        std::array<float, 4> colour{0.0f, 0.0f, 0.0f, 1.0f};
    };

    explicit Gradient(std::vector<Stop> stops);

    /// From groups of little-endian floats position, red, green, blue, alpha. No whole group, or null, gives
    /// black at 0 and white at 1. Stops that hold what is no number are left out.
    static Gradient fromBlob(const std::uint8_t* blob, std::size_t size);

    std::array<float, 4> at(float position) const;

private:
    std::vector<Stop> m_stops; // at least one
};

} // namespace vellor::nodes
