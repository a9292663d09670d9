#include "platform/nodes/gradient.h"

#include "platform/nodes/curve.h"

#include <algorithm>
#include <cmath>

namespace vellor::nodes {

Gradient::Gradient(std::vector<Stop> stops) : m_stops(std::move(stops))
{
    std::stable_sort(m_stops.begin(), m_stops.end(),
                     [](const Stop& a, const Stop& b) { return a.position < b.position; });
    if (m_stops.empty())
        m_stops.push_back({});
}

Gradient Gradient::fromBlob(const std::uint8_t* blob, std::size_t size)
{
    const std::vector<float> values = floatsOfBlob(blob, size);
    std::vector<Stop> stops;
    for (std::size_t i = 0; i + 5 <= values.size(); i += 5) {
        if (std::all_of(values.begin() + i, values.begin() + i + 5, [](float v) { return std::isfinite(v); }))
            stops.push_back({values[i], {values[i + 1], values[i + 2], values[i + 3], values[i + 4]}});
    }
    if (stops.empty())
        stops = {{0.0f, {0.0f, 0.0f, 0.0f, 1.0f}}, {1.0f, {1.0f, 1.0f, 1.0f, 1.0f}}};
    return Gradient(std::move(stops));
}

std::array<float, 4> Gradient::at(float position) const
{
    const auto next = std::upper_bound(m_stops.begin(), m_stops.end(), position,
                                       [](float value, const Stop& stop) { return value < stop.position; });
    if (next == m_stops.begin())
        return m_stops.front().colour;
    if (next == m_stops.end())
        return m_stops.back().colour;
    const Stop &a = *(next - 1), &b = *next;
    const float t = (position - a.position) / (b.position - a.position);
    std::array<float, 4> colour;
    for (int c = 0; c < 4; ++c)
        colour[c] = a.colour[c] + (b.colour[c] - a.colour[c]) * t;
    return colour;
}

} // namespace vellor::nodes
