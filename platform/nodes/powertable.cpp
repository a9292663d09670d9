#include "platform/nodes/powertable.h"

#include <cmath>

namespace vellor::nodes {
namespace {

// The series below give the same bits with every C library.

constexpr double kLn2 = 0.693147180559945309417;

double exponential(double x)
{
    double sum = 1.0, term = 1.0;
    for (int k = 1; k < 40; ++k) {
        term *= x / k;
        sum += term;
    }
    return sum;
}

/// m from 1 to 2.
double logarithm(double m)
{
    const double s = (m - 1.0) / (m + 1.0);
    double sum = 0.0, power = s;
    for (int k = 1; k < 40; k += 2) {
        sum += power / k;
        power *= s * s;
    }
    return 2.0 * sum;
}

float powerOfTwo(double exponent)
{
    if (exponent < -126.0)
        return 0.0f;
    const double held = std::fmin(exponent, 127.5), whole = std::floor(held);
    return static_cast<float>(std::ldexp(exponential((held - whole) * kLn2), static_cast<int>(whole)));
}

} // namespace

PowerTable::PowerTable(float exponent) : exponent(exponent), exact(exponent >= 0.05f && exponent <= 3.2f)
{
    if (!exact)
        return;
    for (int e = 1; e < 256; ++e)
        scales[e] = powerOfTwo(double(e - 127) * double(exponent));
    // (m^y - 1) / t with t = m - 1, by Newton's divided differences, so that powers of two are exact.
    constexpr int kNodes = kDegree;
    constexpr double kCosines[kNodes] = {
        0.974927912181823607,  0.781831482468029809,  0.433883739117558120, 0.0,
        -0.433883739117558120, -0.781831482468029809, -0.974927912181823607};
    std::array<double, kNodes> t{}, difference{};
    for (int i = 0; i < kNodes; ++i) {
        t[i] = 0.5 + 0.5 * kCosines[i];
        difference[i] = (exponential(double(exponent) * logarithm(1.0 + t[i])) - 1.0) / t[i];
    }
    for (int order = 1; order < kNodes; ++order)
        for (int i = kNodes - 1; i >= order; --i)
            difference[i] = (difference[i] - difference[i - 1]) / (t[i] - t[i - order]);
    std::array<double, kNodes> polynomial{};
    for (int i = kNodes - 1; i >= 0; --i) {
        for (int k = kNodes - 1; k > 0; --k)
            polynomial[k] = polynomial[k - 1] - t[i] * polynomial[k];
        polynomial[0] = difference[i] - t[i] * polynomial[0];
    }
    coefficients[0] = 1.0f;
    for (int k = 0; k < kNodes; ++k)
        coefficients[k + 1] = static_cast<float>(polynomial[k]);
}

} // namespace vellor::nodes
