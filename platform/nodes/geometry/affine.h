#pragma once

// A picture scaled, turned, slanted and moved, planned once and carried out in passes over bands of rows.
//
// A pixel of the result covers a parallelogram of the source. Along its shorter side a level of a pyramid of
// halved pictures fits it (L. Williams 1983); along its longer side several samples are averaged. The passes
// before the last make the levels.

#include "platform/nodes/resampling.h"

#include <vector>

namespace vellor::nodes {

/// The place in the source that a pixel of the result comes from: x' = xx x + xy y + x0, y' = yx x + yy y +
/// y0, in pixels; whole numbers are centres of pixels.
struct AffineMap
{
    double xx = 1.0, xy = 0.0, yx = 0.0, yy = 1.0;
    double x0 = 0.0, y0 = 0.0;
};

struct AffinePlan
{
    AffineMap map;
    Reading reading;
    int levels = 0;     // halved pictures
    float blend = 0.0f; // of the last level over the one before
    int samples = 1;
    double stepX = 0.0, stepY = 0.0; // from one sample to the next
    bool shift = false;              // by whole pixels and nothing else
    int width = 0, height = 0;
};

/// Plans for pictures of the given size. `averaged`: what becomes smaller is averaged, and the filter counts
/// where nothing does.
AffinePlan planAffine(const AffineMap& map, const Reading& reading, bool averaged, int width, int height);

/// The shapes of all passes but the last.
std::vector<ScratchShape> affineScratch(const AffinePlan& plan, int channels);

/// Rows of one pass, from operand 0.
void runAffine(const AffinePlan& plan, const AreaJob& job);

} // namespace vellor::nodes
