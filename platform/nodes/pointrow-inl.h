// Loops of point kernels over the pixels of a row, for the instruction set that is being compiled. Includes
// simd.h.

#if defined(VELLOR_NODES_POINTROW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_POINTROW_INL_H
#undef VELLOR_NODES_POINTROW_INL_H
#else
#define VELLOR_NODES_POINTROW_INL_H
#endif

#include "platform/nodes/powertable.h"
#include "platform/nodes/resultrow-inl.h"
#include "platform/nodes/simd.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// Channels of the job's result that tones apply to: all but alpha.
HWY_INLINE int toneChannels(const RowJob& job)
{
    return std::min(job.channels, 3);
}

/// Channel c of the result is the function of channel c of the first operand.
template<class Function> HWY_INLINE void mapChannel(const RowJob& job, int c, Function function)
{
    const float* from = job.operands[c];
    float* to = job.result[c];
    for (int i = 0; i < job.count; i += kLanes)
        store(function(load(from + i)), to + i);
}

/// Channel c of the result is channel c of the first operand.
HWY_INLINE void copyChannel(const RowJob& job, int c)
{
    std::copy_n(job.operands[c], job.count, job.result[c]);
}

/// The result is the function of the first operand; alpha stays.
template<class Function> HWY_INLINE void mapTones(const RowJob& job, Function function)
{
    for (int c = 0; c < toneChannels(job); ++c)
        mapChannel(job, c, function);
    if (job.channels == 4)
        copyChannel(job, 3);
}

struct Rgb
{
    F r, g, b;
};

/// Red, green and blue of the result are the function of the first operand's; alpha stays.
template<class Function> HWY_INLINE void mapColours(const RowJob& job, Function function)
{
    const float *r = job.operands[0], *g = job.operands[1], *b = job.operands[2];
    const float* a = job.operands[3];
    const ResultRow toR(job, 0), toG(job, 1), toB(job, 2), toA(job, 3);
    for (int i = 0; i < job.count; i += kLanes) {
        const Rgb mapped = function(Rgb{load(r + i), load(g + i), load(b + i)});
        toR.put(i, mapped.r);
        toG.put(i, mapped.g);
        toB.put(i, mapped.b);
        toA.put(i, load(a + i));
    }
}

/// Luminance of linear light by ITU-R BT.709.
HWY_INLINE F luminanceOf(Rgb colour)
{
    return colour.r * F(0.2126f) + colour.g * F(0.7152f) + colour.b * F(0.0722f);
}

/// x^exponent of a table that is exact; 0 for what is below 2^-126.
HWY_INLINE F raised(const PowerTable& table, F x)
{
    const U bits = bitsOf(maxOf(x, F(0.0f)));
    const F t = floatOfBits((bits & U(0x007fffffu)) | U(0x3f800000u)) - F(1.0f);
    F p(table.coefficients[PowerTable::kDegree]);
    for (int k = PowerTable::kDegree - 1; k >= 0; --k)
        p = p * t + F(table.coefficients[k]);
    return p * gather(table.scales.data(), bits >> 23);
}

/// Calls use with the function that raises to the table's exponent.
template<class Use> HWY_INLINE void withPower(const PowerTable& table, Use use)
{
    if (table.exact) {
        const PowerTable& exact = table;
        use([&exact](F x) { return raised(exact, x); });
    } else {
        const F exponent(table.exponent);
        use([exponent](F x) { return powOfPositive(x, exponent); });
    }
}

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
