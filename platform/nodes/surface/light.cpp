#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_LIGHT_STATE
#define VELLOR_LIGHT_STATE
namespace vellor::nodes {
namespace {

struct LightState : State
{
    float x = 0.0f, y = 0.0f, z = 1.0f;             // towards the light
    float halfX = 0.0f, halfY = 0.0f, halfZ = 1.0f; // half way between the light and the eye above
    float ambient = 0.0f, diffuse = 1.0f, specular = 0.0f, shininess = 1.0f;
    float signY = 2.0f;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/light.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void lightRow(const RowJob& job)
{
    const auto& state = static_cast<const LightState&>(*job.state);
    const F half(0.5f), zero(0.0f), limit(1e6f);
    const auto component = [&](int c, int i, float gain) {
        return clampOf((load(job.operands[c] + i) - half) * F(gain), -limit, limit);
    };
    for (int i = 0; i < job.count; i += kLanes) {
        const F x = component(0, i, 2.0f), y = component(1, i, state.signY), z = component(2, i, 2.0f);
        const F length = maxOf(sqrtOf(x * x + y * y + z * z), F(1e-6f));
        const F facing = maxOf((x * F(state.x) + y * F(state.y) + z * F(state.z)) / length, zero);
        F light = F(state.ambient) + F(state.diffuse) * facing;
        if (state.specular > 0.0f) {
            const F cosine =
                maxOf((x * F(state.halfX) + y * F(state.halfY) + z * F(state.halfZ)) / length, zero);
            light += F(state.specular) *
                     choose(facing > zero, powOf(minOf(cosine, F(1.0f)), F(state.shininess)), zero);
        }
        store(light, job.result[0] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(lightRow)

static std::unique_ptr<State> prepareLight(const Setup& setup)
{
    auto state = std::make_unique<LightState>();
    const ParameterValue* p = setup.parameters;
    const scalar::SinCos turn = scalar::sinCosOfTurns(held(p[0].f[0], -1e4f, 1e4f));
    const scalar::SinCos up = scalar::sinCosOfTurns(held(p[1].f[0], 0.0f, 0.25f));
    state->x = turn.cosine * up.cosine;
    state->y = turn.sine * up.cosine;
    state->z = up.sine;
    const float length = scalar::sqrtOf(2.0f + 2.0f * state->z); // of the light and (0, 0, 1) together
    state->halfX = state->x / length;
    state->halfY = state->y / length;
    state->halfZ = (state->z + 1.0f) / length;
    state->ambient = held(p[2].f[0], -10.0f, 10.0f);
    state->diffuse = held(p[3].f[0], -10.0f, 10.0f);
    state->specular = held(p[4].f[0], 0.0f, 10.0f);
    // Exponents from 2 to 2048.
    state->shininess = scalar::exp2Of(1.0f + 10.0f * held(p[5].f[0], 0.0f, 1.0f));
    state->signY = p[6].i[0] != 0 ? -2.0f : 2.0f;
    return state;
}

const NodeDeclaration lightNode{
    "light",
    "Light",
    "Surface",
    "How bright a surface with these normals is in the light of a distant lamp, seen from above: J. "
    "Lambert's "
    "diffuse reflection and a highlight after J. Blinn (1977).",
    ResultChannels::Grey,
    Chance::None,
    {{"normal", OperandChannels::Colour, true, "Tangent space normals, as normal gives them in format 0."}},
    {{"angle",
      ParameterType::Float,
      {0.625},
      -1,
      1,
      "Where the light comes from, in turns clockwise from the right; 0.625 is the upper left."},
     {"elevation",
      ParameterType::Float,
      {0.125},
      0,
      0.25,
      "How high the light stands, in turns: 0 at the horizon, 0.25 overhead."},
     {"ambient", ParameterType::Float, {0.0}, 0, 1, "Light that comes from everywhere."},
     {"diffuse", ParameterType::Float, {1.0}, 0, 2, "How strong the diffuse reflection is."},
     {"specular", ParameterType::Float, {0.0}, 0, 2, "How strong the highlight is."},
     {"glossiness", ParameterType::Float, {0.5}, 0, 1, "How small and sharp the highlight is."},
     {"inverty", ParameterType::Bool, {0}, 0, 1, "Takes green as pointing up the picture."}},
    prepareLight,
    runlightRow};

} // namespace vellor::nodes
#endif
