#pragma once

#include <array>

namespace vellor::nodes {

/// Powers with one exponent for all pixels: x^y = 2^(e y) * m^y, with e and m for the exponent and mantissa
/// of x. The first factor is looked up, the second is a polynomial through Chebyshev nodes. Kernels read it
/// by raised of pointrow-inl.h.
struct PowerTable
{
    static constexpr int kDegree = 7;

    PowerTable() : PowerTable(1.0f) {}
    explicit PowerTable(float exponent);

    float exponent;
    bool exact;                                    // within 4 ulp; where it isn't, powOfPositive serves
    std::array<float, kDegree + 1> coefficients{}; // of (m - 1)^k; the first is 1
    std::array<float, 256> scales{};               // by the bits of the exponent
};

} // namespace vellor::nodes
