#pragma once

// The mean over a rectangle around each pixel, at a cost that hardly grows with its size, planned once and
// carried out over bands of rows.
//
// Down, a running sum takes one row in and one out. It starts anew at every multiple of kBoxTile rows, so
// that rounding has no time to gather and a band can begin anywhere with the same bytes; wide windows take
// that start from sums of whole tiles, which a pass before has made. Where the rows of a window would not
// stay in the cache, a band goes down the picture block of columns by block. Across, windows are put together
// from sums of 4, 16, 64... pixels, each made of four smaller ones. Fractions of a pixel weigh the outermost
// pixels. Everything wraps around.

#include "platform/nodes/node.h"

#include <vector>

namespace vellor::nodes {

constexpr int kBoxTile = 64;

/// Half the width of the window along one axis, less half a pixel: whole pixels and the share of the next.
struct BoxRadius
{
    int whole = 0;
    float share = 0.0f;
};

struct BoxPlan
{
    BoxRadius x, y;
    bool tiled() const { return y.whole > 2 * kBoxTile; }
    int passes() const { return tiled() ? 2 : 1; }
};

/// Radii in pixels, held to 0 and half of the width; what is no number counts as 0.
BoxPlan planBox(float radiusX, float radiusY, int width);

/// The shapes of all passes but the last.
std::vector<ScratchShape> boxScratch(const BoxPlan& plan, int width, int height, int channels);

/// Rows y0 to y1 - 1 of one pass of `picture`; `tiles` is the result of pass 0 where there are two. May throw
/// std::bad_alloc.
void runBox(const BoxPlan& plan, int pass, const ImageView& picture, const ImageView& tiles,
            const MutableImage& result, int y0, int y1);

} // namespace vellor::nodes
