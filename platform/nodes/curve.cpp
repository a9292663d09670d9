#include "platform/nodes/curve.h"

#include "platform/nodes/scalar.h"

#include <algorithm>
#include <cmath>

namespace vellor::nodes {

std::vector<float> floatsOfBlob(const std::uint8_t* blob, std::size_t size)
{
    std::vector<float> values;
    if (!blob)
        return values;
    for (std::size_t i = 0; i + 4 <= size; i += 4) {
        const std::uint32_t bits =
            blob[i] | blob[i + 1] << 8 | blob[i + 2] << 16 | std::uint32_t(blob[i + 3]) << 24;
        values.push_back(scalar::floatOfBits(bits));
    }
    return values;
}

Curve::Curve(std::vector<Key> keys)
{
    std::stable_sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) { return a.x < b.x; });
    for (const Key& key : keys) {
        if (!m_keys.empty() && m_keys.back().x == key.x)
            m_keys.back() = key;
        else
            m_keys.push_back(key);
    }
    if (m_keys.empty())
        m_keys.push_back({});
    const std::size_t last = m_keys.size() - 1;
    std::vector<float> secants(last);
    for (std::size_t i = 0; i < last; ++i)
        secants[i] = (m_keys[i + 1].y - m_keys[i].y) / (m_keys[i + 1].x - m_keys[i].x);
    m_slopes.assign(m_keys.size(), 0.0f);
    for (std::size_t i = 0; i <= last && last > 0; ++i) {
        const float before = secants[i > 0 ? i - 1 : 0], after = secants[std::min(i, last - 1)];
        // Peaks and dips are level.
        m_slopes[i] = before * after <= 0.0f ? 0.0f : 0.5f * (before + after);
    }
    for (std::size_t i = 0; i < last; ++i) {
        if (secants[i] == 0.0f)
            continue;
        // Within a circle of radius 3 around the secant the cubic does not overshoot.
        const float a = m_slopes[i] / secants[i], b = m_slopes[i + 1] / secants[i];
        const float length = a * a + b * b;
        if (length > 9.0f) {
            const float scale = 3.0f / scalar::sqrtOf(length);
            m_slopes[i] = scale * a * secants[i];
            m_slopes[i + 1] = scale * b * secants[i];
        }
    }
}

Curve Curve::fromBlob(const std::uint8_t* blob, std::size_t size)
{
    const std::vector<float> values = floatsOfBlob(blob, size);
    std::vector<Key> keys;
    for (std::size_t i = 0; i + 2 <= values.size(); i += 2)
        if (std::isfinite(values[i]) && std::isfinite(values[i + 1]))
            keys.push_back({values[i], values[i + 1]});
    if (keys.empty())
        keys = {{0.0f, 0.0f}, {1.0f, 1.0f}};
    return Curve(std::move(keys));
}

float Curve::at(float x) const
{
    if (!(x > m_keys.front().x))
        return m_keys.front().y;
    if (x >= m_keys.back().x)
        return m_keys.back().y;
    const auto next = std::upper_bound(m_keys.begin(), m_keys.end(), x,
                                       [](float value, const Key& key) { return value < key.x; });
    const std::size_t i = static_cast<std::size_t>(next - m_keys.begin()) - 1;
    const float span = m_keys[i + 1].x - m_keys[i].x;
    const float t = (x - m_keys[i].x) / span, s = 1.0f - t;
    return s * s * (1.0f + 2.0f * t) * m_keys[i].y + t * t * (3.0f - 2.0f * t) * m_keys[i + 1].y +
           span * t * s * (s * m_slopes[i] - t * m_slopes[i + 1]);
}

std::vector<float> Curve::table(int steps) const
{
    std::vector<float> values;
    for (int i = 0; i <= steps; ++i)
        values.push_back(at(static_cast<float>(i) / static_cast<float>(steps)));
    return values;
}

} // namespace vellor::nodes
