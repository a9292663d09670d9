#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"

#ifndef VELLOR_NORMALBLEND_STATE
#define VELLOR_NORMALBLEND_STATE
namespace vellor::nodes {
namespace {

enum class NormalMethod
{
    Reoriented,
    Whiteout,
    PartialDerivative
};

struct NormalblendState : State
{
    NormalMethod method = NormalMethod::Reoriented;
    float intensity = 1.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/combining/normalblend.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

struct Normal
{
    F x, y, z;
};

HWY_INLINE Normal normalised(Normal n)
{
    const F length = sqrtOf(n.x * n.x + n.y * n.y + n.z * n.z);
    const M none = length <= F(1e-12f);
    const F factor = F(1.0f) / choose(none, F(1.0f), length);
    return {choose(none, F(0.0f), n.x * factor), choose(none, F(0.0f), n.y * factor),
            choose(none, F(1.0f), n.z * factor)};
}

/// Slopes times amount.
HWY_INLINE Normal flattened(Normal n, F amount)
{
    return {n.x * amount, n.y * amount, n.z};
}

template<NormalMethod method> HWY_INLINE Normal combined(Normal base, Normal detail)
{
    if (method == NormalMethod::Whiteout)
        return {base.x + detail.x, base.y + detail.y, base.z * detail.z};
    if (method == NormalMethod::PartialDerivative)
        return {base.x * detail.z + detail.x * base.z, base.y * detail.z + detail.y * base.z,
                base.z * detail.z};
    // t = (bx, by, bz + 1), u = (-dx, -dy, dz): t dot(t, u) / tz - u. A base that looks straight down has no
    // way.
    const F tz = maxOf(base.z + F(1.0f), F(1e-4f));
    const F along = (tz * detail.z - (base.x * detail.x + base.y * detail.y)) / tz;
    return {base.x * along + detail.x, base.y * along + detail.y, tz * along - detail.z};
}

/// Normals of a row; flat where there is no picture.
struct NormalOperand
{
    NormalOperand(const RowJob& job, int operand)
        : x(job.operands[operand * kMaxChannels]), y(job.operands[operand * kMaxChannels + 1]),
          z(job.operands[operand * kMaxChannels + 2])
    {
    }

    HWY_INLINE Normal at(int i) const
    {
        const auto signedOf = [i](const float* p) { return load(p + i) * F(2.0f) - F(1.0f); };
        return normalised({signedOf(x), signedOf(y), signedOf(z)});
    }

    const float *x, *y, *z;
};

template<NormalMethod method> void combineNormals(const RowJob& job, float intensity)
{
    const NormalOperand base(job, 0), detail(job, 1);
    const float* mask = job.operands[2 * kMaxChannels];
    const float* alpha = job.operands[3];
    const ResultRow toX(job, 0), toY(job, 1), toZ(job, 2), toA(job, 3);
    const int count = job.count;
    for (int i = 0; i < count; i += kLanes) {
        const F amount = mask ? load(mask + i) * F(intensity) : F(intensity);
        const Normal n =
            normalised(combined<method>(base.at(i), normalised(flattened(detail.at(i), amount))));
        toX.put(i, n.x * F(0.5f) + F(0.5f));
        toY.put(i, n.y * F(0.5f) + F(0.5f));
        toZ.put(i, n.z * F(0.5f) + F(0.5f));
        toA.put(i, load(alpha + i));
    }
}

void normalblendRow(const RowJob& job)
{
    const auto& state = static_cast<const NormalblendState&>(*job.state);
    switch (state.method) {
    case NormalMethod::Whiteout:
        return combineNormals<NormalMethod::Whiteout>(job, state.intensity);
    case NormalMethod::PartialDerivative:
        return combineNormals<NormalMethod::PartialDerivative>(job, state.intensity);
    default:
        return combineNormals<NormalMethod::Reoriented>(job, state.intensity);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(normalblendRow)

static std::unique_ptr<State> prepareNormalblend(const Setup& setup)
{
    auto state = std::make_unique<NormalblendState>();
    state->method = static_cast<NormalMethod>(held(setup.parameters[0].i[0], 0, 2));
    state->intensity = held(setup.parameters[1].f[0], -100.0f, 100.0f);
    return state;
}

const NodeDeclaration normalblendNode{
    "normalblend",
    "Normal Blend",
    "Combining",
    "Lays the detail of one normal map onto another. Both have green up, or both down; the result is the "
    "same. Alpha is "
    "the base's.",
    ResultChannels::Colour,
    Chance::None,
    {{"base", OperandChannels::Colour, true, "The normal map below."},
     {"detail", OperandChannels::Colour, true, "The normal map laid on."},
     {"mask", OperandChannels::Grey, false, "Multiplies the intensity, pixel by pixel."}},
    {{"method",
      ParameterType::Choice,
      {0},
      0,
      2,
      "How the two are combined: the detail is turned to stand on the base, which keeps most of it "
      "(reoriented normal "
      "mapping, C. Barre-Brisebois and S. Hill, 2012); slopes are added and heights multiplied (whiteout); "
      "or slopes are "
      "added as those of heights would be (partial derivatives).",
      {"reoriented", "whiteout", "partialderivative"}},
     {"intensity",
      ParameterType::Float,
      {1.0},
      0,
      2,
      "How much of the detail shows: its slopes are multiplied by this."}},
    prepareNormalblend,
    runnormalblendRow};

} // namespace vellor::nodes
#endif
