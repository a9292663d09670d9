#pragma once

// Grey morphology: the greatest or the least value under a disc or a square of whole pixels around each
// pixel. Wraps around.

#include "platform/nodes/node.h"

namespace vellor::nodes {

struct MorphologyState : State
{
    int radius = 0; // pixels
    bool square = false;
    bool least = false;
};

/// Parameter 0 is the radius in thousandths of the picture's width, parameter 1 the shape: disc, square.
std::unique_ptr<State> prepareMorphology(const Setup& setup, bool least);

/// The kernel: state MorphologyState, one operand with the result's channels. May throw std::bad_alloc.
void runMorphology(const AreaJob& job);

} // namespace vellor::nodes
