#pragma once

// Medians over large windows.

#include "platform/nodes/node.h"

namespace vellor::nodes {

constexpr int kMostMedianRadius = 16;
/// Rows of a result that are worked on together.
constexpr int kLargeMedianRows = 64;

/// The median of each channel over the square that reaches `radius` pixels (1 to kMostMedianRadius) beyond
/// each pixel of the job's rows. Looks at the job's stop. May throw std::bad_alloc.
void largeMedian(int radius, const AreaJob& job);

} // namespace vellor::nodes
