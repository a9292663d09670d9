#pragma once

// A Gaussian blur whose cost does not grow with its width, planned once and carried out in passes over bands
// of rows.
//
// A blur of less than four pixels is taken straight. A wider one is taken on a picture reduced by a power of
// two, at most half of sigma: reduction by B-splines of fifth order (a sum over `factor` pixels, five times
// over), the rest of the blur on the small picture, and a cubic B-spline back up (M. Unser, "Splines: a
// perfect fit for signal and image processing", 1999). Variances of the three add up to the one that is
// wanted. What the splines lack in fourth order, the blur between them adds by the first term of Edgeworth's
// series, so that the three together differ from a Gaussian by less than 2e-4 of full scale. Everything wraps
// around.
//
// Each pass works in both directions: reductions by two or four, the blur, and the way back up at once. A
// blur that is taken straight is a single pass.

#include "platform/nodes/node.h"

#include <algorithm>
#include <vector>

namespace vellor::nodes {

/// How one axis is blurred.
struct GaussianAxis
{
    int factor = 1;            // reduction, a power of two that divides the size
    std::vector<int> stages;   // reductions by 2 or 4 one after another, whose product is factor
    std::vector<float> blur;   // tap 0 in the middle, the others on both sides
    std::vector<float> expand; // for each of four taps its weights at each of `factor` places
};

struct GaussianPlan
{
    GaussianAxis x, y;
    int reductions() const { return static_cast<int>(std::max(x.stages.size(), y.stages.size())); }
    int passes() const { return reductions() ? reductions() + 2 : 1; }
};

/// Sigmas in pixels; what is negative or no number counts as 0, and what is beyond the size of the picture as
/// that.
GaussianPlan planGaussian(float sigmaX, float sigmaY, int width, int height);

/// The shapes of all passes but the last.
std::vector<ScratchShape> gaussianScratch(const GaussianPlan& plan, int width, int height, int channels);

/// Rows y0 to y1 - 1 of one pass: from `source`, the pass before (the picture itself for pass 0), to
/// `result`. May throw std::bad_alloc.
void runGaussian(const GaussianPlan& plan, int pass, const ImageView& source, const MutableImage& result,
                 int y0, int y1);

} // namespace vellor::nodes
