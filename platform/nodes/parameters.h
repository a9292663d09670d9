#pragma once

// Parameter values held to what kernels can take.

#include "platform/nodes/node.h"

namespace vellor::nodes {

/// value held to low and high; low for what is no number.
inline float held(float value, float low, float high)
{
    return value > low ? (value < high ? value : high) : low;
}

inline int held(int value, int low, int high)
{
    return value > low ? (value < high ? value : high) : low;
}

/// A count of cells across and down. 0 down takes as many as keep the cells square in a picture of this size.
struct CellCount
{
    int across = 1, down = 1;
};

inline CellCount cellCount(const ParameterValue& parameter, const Setup& setup, int most = 4096)
{
    CellCount count;
    count.across = held(parameter.i[0], 1, most);
    const double square = static_cast<double>(count.across) * setup.height / setup.width;
    count.down = held(parameter.i[1] > 0 ? parameter.i[1] : static_cast<int>(square + 0.5), 1, most);
    return count;
}

} // namespace vellor::nodes
