#pragma once

// Exact Euclidean distances between the pixels of a mask and the pixels outside of it, wrapping around.
//
// First, columns: how far each pixel is from the nearest pixel of the other kind above or below it, for many
// columns at once. Then rows: the squared distance at x is the least of (x - q)^2 + column(q)^2 over all q of
// the row, whose lower envelope a stack of parabolas gives (A. Meijster et al., 2000; P. Felzenszwalb and D.
// Huttenlocher, 2012). Its comparisons are in whole numbers, so the nearest pixel is always the nearest.
//
// Where column(q) is least, at m, nothing beyond m matters on its other side: there m is nearer in both
// directions. So a row that wraps around is cut open at such a place, and stretches between pixels at
// distance 0 are worked through one by one.

#include "platform/nodes/node.h"

#include <cstdint>
#include <vector>

namespace vellor::nodes {

/// Distance in pixels where there is nothing to be distant from.
constexpr float kFar = 1e6f;

/// The shape of the scratch picture for the columns of a mask. One row of it holds a strip of columns.
ScratchShape distanceColumnsShape(int width, int height);

/// Rows y0 to y1 - 1 of that picture. Pixels of at least `threshold` belong to the mask.
void findDistanceColumns(const ImageView& mask, float threshold, const MutableImage& columns, int y0, int y1);

/// Reads rows of distances. One thread; any number of them side by side.
class DistanceRows
{
public:
    DistanceRows(const ImageView& columns, int width, int height);

    /// Distances from pixels' centres of row y to the nearest centre of a pixel of the mask: 0 in the mask.
    void outside(int y, float* distances) { find(y, false, distances); }
    /// Distances to the nearest centre of a pixel outside of the mask: 0 outside.
    void inside(int y, float* distances) { find(y, true, distances); }
    /// Distances to the mask's edges, half a pixel off the outermost centres: negative outside.
    void both(int y, float* distances);
    /// For each pixel of row y the nearest pixel of the mask: its column, or -1 without any, and how many
    /// rows it lies above or below, kFar without any.
    void nearest(int y, std::int32_t* columns, float* rows);

private:
    void find(int y, bool inside, float* distances, std::int32_t* nearest = nullptr);

    ImageView m_columns;
    int m_width, m_height;
    std::vector<float> m_own, m_turned, m_squares, m_other;
    std::vector<std::int32_t> m_places, m_rises;
};

} // namespace vellor::nodes
