#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/resampling.h"

#ifndef VELLOR_MIRROR_STATE
#define VELLOR_MIRROR_STATE
namespace vellor::nodes {
namespace {

/// A line across one axis, in pixels from the picture's edge.
struct MirrorLine
{
    bool used = false, keepsFirst = true;
    float place = 0.0f;
};

struct MirrorState : State
{
    Reading reading;
    MirrorLine x, y;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/mirror.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// From pixel x to the pixel that it shows.
HWY_INLINE F towards(const MirrorLine& line, F x)
{
    if (!line.used)
        return F(0.0f);
    const F across = F(line.place + line.place - 1.0f) - (x + x);
    return line.keepsFirst ? minOf(across, F(0.0f)) : maxOf(across, F(0.0f));
}

void mirrorArea(const AreaJob& job)
{
    const auto& state = static_cast<const MirrorState&>(*job.state);
    displace(
        job, job.operands[0], state.reading, [](const Tile&) {},
        [&](const Tile& tile, int i, int row) {
            return Spot{towards(state.x, countFrom(static_cast<float>(tile.x + i))),
                        towards(state.y, F(static_cast<float>(tile.y + row)))};
        });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(mirrorArea)

static std::unique_ptr<State> prepareMirror(const Setup& setup)
{
    enum class Mode
    {
        Horizontal,
        Vertical,
        Both
    };
    auto state = std::make_unique<MirrorState>();
    const ParameterValue* p = setup.parameters;
    const auto mode = static_cast<Mode>(held(p[0].i[0], 0, 2));
    const bool keepsFirst = held(p[1].i[0], 0, 1) == 0;
    state->x = {mode != Mode::Vertical, keepsFirst,
                held(p[2].f[0], 0.0f, 1.0f) * static_cast<float>(setup.width)};
    state->y = {mode != Mode::Horizontal, keepsFirst,
                held(p[2].f[1], 0.0f, 1.0f) * static_cast<float>(setup.height)};
    state->reading.filter = static_cast<PixelFilter>(held(p[3].i[0], 0, 2));
    return state;
}

const NodeDeclaration mirrorNode{"mirror",
                                 "Mirror",
                                 "Geometry",
                                 "Shows one side of a picture on the other side too, reflected. Through the "
                                 "middle, the result tiles even if "
                                 "the picture does not.",
                                 ResultChannels::FromOperands,
                                 Chance::None,
                                 {{"input", OperandChannels::Result, true, "The picture to reflect."}},
                                 {{"mode",
                                   ParameterType::Choice,
                                   {0},
                                   0,
                                   2,
                                   "What is reflected: left and right, top and bottom, or both.",
                                   {"horizontal", "vertical", "both"}},
                                  {"keep",
                                   ParameterType::Choice,
                                   {0},
                                   0,
                                   1,
                                   "The side that stays: left and top, or right and bottom.",
                                   {"first", "second"}},
                                  {"position",
                                   ParameterType::Float2,
                                   {0.5, 0.5},
                                   0,
                                   1,
                                   "Where the mirrors stand, in shares of width and height."},
                                  filterParameter()},
                                 prepareMirror,
                                 nullptr,
                                 runmirrorArea};

} // namespace vellor::nodes
#endif
