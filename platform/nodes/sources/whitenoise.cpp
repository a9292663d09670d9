#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/scalar.h"

#ifndef VELLOR_WHITENOISE_STATE
#define VELLOR_WHITENOISE_STATE
namespace vellor::nodes {
namespace {

struct WhiteNoiseState : State
{
    std::array<std::uint32_t, 3> seeds{};
    bool normal = false;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/sources/whitenoise.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

template<bool normal> void fillRow(U x, U y, U seed, int count, float* result)
{
    for (int i = 0; i < count; i += kLanes) {
        const U hash = hashLattice(x, y, seed);
        F value = unitOf(hash);
        if constexpr (normal) {
            // G. Box and M. Muller: a normal deviate of two even ones; 1 - value is above 0.
            const F radius = sqrtOf(F(-2.0f) * logOf(F(1.0f) - value));
            value = F(0.5f) + F(1.0f / 6.0f) * radius * sinCosOfTurns(unitOf(nextHash(hash))).cosine;
        }
        store(value, result + i);
        x = x + U(static_cast<std::uint32_t>(kLanes));
    }
}

void whiteNoiseRow(const RowJob& job)
{
    const auto& state = static_cast<const WhiteNoiseState&>(*job.state);
    const U x = countFrom(static_cast<std::uint32_t>(job.x)), y(static_cast<std::uint32_t>(job.y));
    for (int c = 0; c < std::min(job.channels, 3); ++c) {
        if (state.normal)
            fillRow<true>(x, y, U(state.seeds[c]), job.count, job.result[c]);
        else
            fillRow<false>(x, y, U(state.seeds[c]), job.count, job.result[c]);
    }
    if (job.channels == 4)
        std::fill_n(job.result[3], job.count, 1.0f);
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(whiteNoiseRow)

static std::unique_ptr<State> prepareWhiteNoise(const Setup& setup)
{
    auto state = std::make_unique<WhiteNoiseState>();
    std::uint32_t seed = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0x243f6a88u);
    for (std::uint32_t& channel : state->seeds)
        channel = seed = scalar::nextHash(seed);
    state->normal = setup.parameters[0].i[0] == 1;
    return state;
}

const NodeDeclaration whitenoiseNode{
    "whitenoise",
    "White Noise",
    "Sources",
    "A random value for every pixel. Its grain is the pixel, so it is finer in larger pictures.",
    ResultChannels::Chosen,
    Chance::Seeded,
    {},
    {{"distribution",
      ParameterType::Choice,
      {0},
      0,
      1,
      "even: 0 to 1, all alike; normal: around 0.5 with a standard deviation of 1/6.",
      {"even", "normal"}}},
    prepareWhiteNoise,
    runwhiteNoiseRow};

} // namespace vellor::nodes
#endif
