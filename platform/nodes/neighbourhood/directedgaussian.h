#pragma once

// A Gaussian along a line through each pixel, whose direction and width maps may change from place to place.
// After a round Gaussian it makes an oval one: variances along the line add up.

#include "platform/nodes/node.h"

#include <vector>

namespace vellor::nodes {

struct DirectedGaussian
{
    std::vector<float> places, weights; // of the samples: in standard deviations, and shares of 1
    float sigma = 0.0f;                 // in pixels, where the width map is 1
    float turns = 0.0f;                 // clockwise from the right
};

/// Samples lie close enough for a picture that a round Gaussian of `sigmaBefore` pixels has smoothed, at
/// least a sixteenth of `sigma`.
DirectedGaussian planDirectedGaussian(float sigma, float sigmaBefore, float turns);

/// Rows y0 to y1 - 1. `widths` (grey, held to 0 to 1) scales sigma; `directions` (grey, or not connected)
/// adds to the turns. Wraps around.
void runDirectedGaussian(const DirectedGaussian& gaussian, const ImageView& source, const ImageView& widths,
                         const ImageView& directions, const AreaJob& job);

} // namespace vellor::nodes
