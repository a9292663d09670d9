#pragma once

// What kinds share that put a picture beside its own Gaussian blur: parameter 0 is the blur's sigma in
// thousandths of the picture's width, parameter 1 a factor.

#include "platform/nodes/gaussian.h"

#include <memory>
#include <vector>

namespace vellor::nodes {

struct DetailState : State
{
    GaussianPlan plan;
    float factor = 1.0f;
};

std::unique_ptr<State> prepareDetail(const Setup& setup);
std::vector<ScratchShape> detailScratch(const State* state, const Setup& setup);

/// Carries out a pass of the blur of operand 0. False for the pass after them, which finds the blur in the
/// last scratch image.
bool detailPass(const AreaJob& job);

} // namespace vellor::nodes
