#include "platform/nodes/kinds.h"

namespace vellor::nodes {
namespace {

struct GreyState : State
{
    std::array<float, kMaxChannels> weights{};
};

std::unique_ptr<State> prepareGrey(const Setup& setup)
{
    auto state = std::make_unique<GreyState>();
    state->weights = setup.parameters[0].f;
    return state;
}

void greyRow(const RowJob& job)
{
    const auto& w = static_cast<const GreyState&>(*job.state).weights;
    const float *r = job.operands[0], *g = job.operands[1], *b = job.operands[2], *a = job.operands[3];
    for (int i = 0; i < job.count; ++i)
        job.result[0][i] = (r[i] * w[0] + g[i] * w[1]) + (b[i] * w[2] + a[i] * w[3]);
}

} // namespace

const NodeDeclaration greyconversionNode{"greyconversion",
                                         "Colour to Grey",
                                         "Tone",
                                         "Adds up the channels of a colour picture by weights. The weights' "
                                         "defaults are the luminance of ITU-R BT.709.",
                                         ResultChannels::Grey,
                                         Chance::None,
                                         {{"input", OperandChannels::Colour, true, "The colour picture."}},
                                         {{"weights",
                                           ParameterType::Float4,
                                           {0.2126, 0.7152, 0.0722, 0.0},
                                           -2,
                                           2,
                                           "Factors of red, green, blue and alpha."}},
                                         prepareGrey,
                                         greyRow};

} // namespace vellor::nodes
