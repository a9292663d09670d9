#pragma once

// Distances to the edges of an antialiased mask, whose values are the shares of pixels that lie inside.
//
// Each pixel that an edge runs through gets a piece of a straight line: its direction from the gradient, its
// place from the share (S. Gustavson and R. Strand, "Anti-aliased Euclidean distance transform", 2011). Where
// white meets black without a grey pixel between, the edge is the side that the two pixels share. A pixel's
// distance is that to the nearest of the pieces in and around the nearest pixel that has one.

#include "platform/nodes/node.h"
#include "platform/nodes/surface/distancetransform.h"

#include <cstdint>
#include <vector>

namespace vellor::nodes {

/// Rows y0 to y1 - 1 of the pieces, four planes: 1 in pixels that have one and else 0; the unit normal
/// towards the inside, x and y; how far the line lies from the pixel's centre along the normal, in pixels.
/// The edge is where the mask is `threshold`.
void findEdgeLines(const ImageView& mask, float threshold, const MutableImage& lines, int y0, int y1);

/// Reads rows of distances. One thread; any number of them side by side.
class EdgeDistanceRows
{
public:
    /// `columns` is what findDistanceColumns makes of the first plane of `lines`.
    EdgeDistanceRows(const ImageView& mask, float threshold, const ImageView& lines,
                     const ImageView& columns);

    /// Distances from pixels' centres of row y to the edges in pixels, negative outside; kFar without any.
    void read(int y, float* distances);

private:
    float distanceFrom(int x, int y, int column, int rows) const;

    ImageView m_mask, m_lines;
    float m_threshold;
    DistanceRows m_rows;
    std::vector<std::int32_t> m_columns;
    std::vector<float> m_rowsAway;
};

} // namespace vellor::nodes
