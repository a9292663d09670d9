#pragma once

// How rows are shifted against each other.

#include "platform/nodes/scalar.h"

#include <algorithm>

namespace vellor::nodes {

/// The shift of each row against the one above, in cells, such that after all rows it comes to whole cells:
/// the bond then goes on across the picture's edge. At least one cell in all for any shift that is not 0.
inline float bondOffset(float offset, int rows)
{
    const float whole = scalar::floorOf(offset);
    const float part = offset - whole;
    if (!(part > 0.0f) || rows < 2)
        return whole;
    const auto count = static_cast<float>(rows);
    return whole + std::min(std::max(scalar::roundOf(part * count), 1.0f), count - 1.0f) / count;
}

} // namespace vellor::nodes
