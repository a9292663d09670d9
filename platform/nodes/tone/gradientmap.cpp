#include "platform/nodes/dispatch.h"
#include "platform/nodes/gradient.h"
#include "platform/nodes/kinds.h"

#ifndef VELLOR_GRADIENTMAP_STATE
#define VELLOR_GRADIENTMAP_STATE
namespace vellor::nodes {
namespace {

constexpr int kGradientSteps = 4096;

struct GradientMapState : State
{
    std::array<std::vector<float>, kMaxChannels> tables; // kGradientSteps + 1 values, and the last once more
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/gradientmap.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resultrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void gradientMapRow(const RowJob& job)
{
    const auto& state = static_cast<const GradientMapState&>(*job.state);
    const ResultRow to[kMaxChannels] = {{job, 0}, {job, 1}, {job, 2}, {job, 3}};
    for (int i = 0; i < job.count; i += kLanes) {
        const F x =
            clampOf(load(job.operands[0] + i), F(0.0f), F(1.0f)) * F(static_cast<float>(kGradientSteps));
        const F step = floorOf(x), t = x - step;
        const U index = toInteger(step);
        for (int c = 0; c < kMaxChannels; ++c) {
            const float* table = state.tables[c].data();
            to[c].put(i, lerpOf(gather(table, index), gather(table + 1, index), t));
        }
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_PUTTING_ROW_KERNEL(gradientMapRow)

static std::unique_ptr<State> prepareGradientMap(const Setup& setup)
{
    auto state = std::make_unique<GradientMapState>();
    const Gradient gradient = Gradient::fromBlob(setup.parameters[0].blob, setup.parameters[0].blobSize);
    for (int i = 0; i <= kGradientSteps + 1; ++i) {
        const float position =
            static_cast<float>(std::min(i, kGradientSteps)) / static_cast<float>(kGradientSteps);
        const std::array<float, 4> colour = gradient.at(position);
        for (int c = 0; c < kMaxChannels; ++c)
            state->tables[c].push_back(colour[c]);
    }
    return state;
}

const NodeDeclaration gradientmapNode{
    "gradientmap",
    "Gradient Map",
    "Tone",
    "Gives each grey the colour that a gradient has there.",
    ResultChannels::Colour,
    Chance::None,
    {{"input", OperandChannels::Grey, true, "The grey picture."}},
    {{"gradient", ParameterType::Gradient, {}, 0, 1, "The colours; black to white when there are none."}},
    prepareGradientMap,
    rungradientMapRow};

} // namespace vellor::nodes
#endif
