#include "platform/nodes/curve.h"
#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#include <algorithm>

#ifndef VELLOR_CURVE_STATE
#define VELLOR_CURVE_STATE
namespace vellor::nodes {
namespace {

constexpr int kCurveSteps = 4096;

struct CurveState : State
{
    std::vector<float> table; // kCurveSteps + 1 values, and the last once more
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/curvemap.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void curveRow(const RowJob& job)
{
    const float* table = static_cast<const CurveState&>(*job.state).table.data();
    for (int c = 0; c < std::min(job.channels, 3); ++c) {
        for (int i = 0; i < job.count; i += kLanes) {
            const F x =
                clampOf(load(job.operands[c] + i), F(0.0f), F(1.0f)) * F(static_cast<float>(kCurveSteps));
            const F step = floorOf(x);
            const U index = toInteger(step);
            store(lerpOf(gather(table, index), gather(table + 1, index), x - step), job.result[c] + i);
        }
    }
    if (job.channels == 4)
        std::copy_n(job.operands[3], job.count, job.result[3]);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(curveRow)

static std::unique_ptr<State> prepareCurve(const Setup& setup)
{
    auto state = std::make_unique<CurveState>();
    state->table = Curve::fromBlob(setup.parameters[0].blob, setup.parameters[0].blobSize).table(kCurveSteps);
    state->table.push_back(state->table.back());
    return state;
}

const NodeDeclaration curveNode{"curve",
                                "Curve",
                                "Tone",
                                "Maps values by a curve through keys: cubics that do not overshoot, after F. "
                                "Fritsch and R. Carlson (1980). Alpha stays.",
                                ResultChannels::FromOperands,
                                Chance::None,
                                {{"input", OperandChannels::Result, true, "The picture to change."}},
                                {{"curve",
                                  ParameterType::Curve,
                                  {},
                                  0,
                                  1,
                                  "The keys; the straight line from (0, 0) to (1, 1) when there are none."}},
                                prepareCurve,
                                runcurveRow};

} // namespace vellor::nodes
#endif
