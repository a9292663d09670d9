#pragma once

// A Gaussian blur whose cost does not grow with its width, planned once and carried out in passes over bands
// of rows.
//
// A blur of up to six pixels is taken straight. A wider one is taken on a picture reduced by a power of two:
// a Gaussian narrow enough for the reduced grid, samples at every n-th place, the rest of the blur there, and
// a cubic B-spline back up. The variances of the three add up to the one that is wanted, and what they leave
// of other frequencies stays below 1e-4 of full scale. Everything wraps around.
//
// Passes of a wide blur: reduce down, reduce across, blur across, blur down, expand across, expand down.
// Passes of a narrow one: across, down.

#include "platform/nodes/node.h"

#include <vector>

namespace vellor::nodes {

/// How one axis is blurred.
struct GaussianAxis
{
    int factor = 1;            // reduction, a power of two that divides the size
    std::vector<float> reduce; // an even number of taps around the middle of `factor` pixels
    std::vector<float> blur;   // tap 0 in the middle, the others on both sides
    std::vector<float> expand; // four taps for each of `factor` places
};

struct GaussianPlan
{
    GaussianAxis x, y;
    bool reduced() const { return x.factor > 1 || y.factor > 1; }
    int passes() const { return reduced() ? 6 : 2; }
};

/// Sigmas in pixels; what is negative or no number counts as 0, and what is beyond the size of the picture as
/// that.
GaussianPlan planGaussian(float sigmaX, float sigmaY, int width, int height);

/// The shapes of all passes but the last.
std::vector<ScratchShape> gaussianScratch(const GaussianPlan& plan, int width, int height, int channels);

/// Rows y0 to y1 - 1 of one pass: from `source`, the pass before (the picture itself for pass 0), to
/// `result`.
void runGaussian(const GaussianPlan& plan, int pass, const ImageView& source, const MutableImage& result,
                 int y0, int y1);

} // namespace vellor::nodes
