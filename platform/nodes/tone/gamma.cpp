#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/powertable.h"

#ifndef VELLOR_GAMMA_STATE
#define VELLOR_GAMMA_STATE
namespace vellor::nodes {
namespace {

struct GammaState : State
{
    PowerTable power;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/tone/gamma.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/pointrow-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

void gammaRow(const RowJob& job)
{
    withPower(static_cast<const GammaState&>(*job.state).power, [&](auto power) { mapTones(job, power); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_ROW_KERNEL(gammaRow)

static std::unique_ptr<State> prepareGamma(const Setup& setup)
{
    auto state = std::make_unique<GammaState>();
    state->power = PowerTable(1.0f / held(setup.parameters[0].f[0], 1e-3f, 1e3f));
    return state;
}

const NodeDeclaration gammaNode{"gamma",
                                "Gamma",
                                "Tone",
                                "Gives x^(1 / gamma); what is below 0 becomes 0. Alpha stays.",
                                ResultChannels::FromOperands,
                                Chance::None,
                                {{"input", OperandChannels::Result, true, "The picture to change."}},
                                {{"gamma",
                                  ParameterType::Float,
                                  {2.2},
                                  0.1,
                                  10,
                                  "Above 1 lightens the middle tones, below 1 darkens them."}},
                                prepareGamma,
                                rungammaRow};

} // namespace vellor::nodes
#endif
