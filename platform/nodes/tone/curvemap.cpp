#include "platform/nodes/curve.h"
#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#include <algorithm>

#ifndef VELLOR_CURVEMAP_STATE
#define VELLOR_CURVEMAP_STATE
namespace vellor::nodes {
namespace {

constexpr int kCurveSteps = 4096;

/// Tables of kCurveSteps + 1 values, and the last once more. No table: the channel stays.
struct CurveState : State
{
    std::array<std::vector<float>, kMaxChannels> tables;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/curvemap.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void curveRow(const RowJob& job)
{
    const auto& state = static_cast<const CurveState&>(*job.state);
    for (int c = 0; c < job.channels; ++c) {
        if (state.tables[c].empty()) {
            copyChannel(job, c);
            continue;
        }
        const float* table = state.tables[c].data();
        mapChannel(job, c, [=](F value) {
            const F x = clampOf(value, F(0.0f), F(1.0f)) * F(static_cast<float>(kCurveSteps));
            const F step = floorOf(x);
            const U index = toInteger(step);
            return lerpOf(gather(table, index), gather(table + 1, index), x - step);
        });
    }
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
    const ParameterValue* p = setup.parameters;
    const Curve all = Curve::fromBlob(p[0].blob, p[0].blobSize);
    for (int c = 0; c < setup.channels; ++c) {
        const ParameterValue& own = p[1 + c];
        const bool bent = own.blob && setup.channels > 1;
        if (c == 3 && !bent)
            continue;
        std::vector<float>& table = state->tables[c];
        table = (bent ? Curve::fromBlob(own.blob, own.blobSize) : all).table(kCurveSteps);
        if (bent && c < 3)
            std::transform(table.begin(), table.end(), table.begin(),
                           [&](float value) { return all.at(value); });
        table.push_back(table.back());
    }
    return state;
}

const NodeDeclaration curveNode{
    "curve",
    "Curve",
    "Tone",
    "Maps values by a curve through keys: cubics that do not overshoot, after F. Fritsch and R. Carlson "
    "(1980). "
    "Channels of a colour picture may have curves of their own ahead of the one for all.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to change."}},
    {{"curve",
      ParameterType::Curve,
      {},
      0,
      1,
      "The keys for all channels but alpha; the straight line from (0, 0) to (1, 1) when there are none."},
     {"red", ParameterType::Curve, {}, 0, 1, "The keys for red, ahead of the curve for all."},
     {"green", ParameterType::Curve, {}, 0, 1, "The keys for green, ahead of the curve for all."},
     {"blue", ParameterType::Curve, {}, 0, 1, "The keys for blue, ahead of the curve for all."},
     {"alpha", ParameterType::Curve, {}, 0, 1, "The keys for alpha; it stays when there are none."}},
    prepareCurve,
    runcurveRow};

} // namespace vellor::nodes
#endif
