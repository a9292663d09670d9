#pragma once

// What Fourier transforms of one length need to know. fourier-inl.h carries them out.

#include <vector>

namespace vellor::nodes {

struct FourierPlan
{
    int length = 1;
    int steps = 1;                     // of the transforms by powers of two: length, or more than twice that
    std::vector<float> cosines, sines; // of 0, 1, ... steps / 2 - 1 parts of a turn cut in `steps`
    std::vector<float> chirpRe, chirpIm; // where length is no power of two: e^(i pi n^2 / length)
    bool chirped() const { return steps != length; }
};

/// For lengths from 1 to 16384.
FourierPlan planFourier(int length);

} // namespace vellor::nodes
