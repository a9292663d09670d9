#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

struct EmbossState : State
{
    float across = 0.0f, down = 0.0f; // light for a difference over two pixels, times 32
    bool onGrey = false;
};

std::unique_ptr<State> prepareEmboss(const Setup& setup)
{
    auto state = std::make_unique<EmbossState>();
    const ParameterValue* p = setup.parameters;
    const scalar::SinCos turn = scalar::sinCosOfTurns(p[1].f[0]);
    // A slope of 1 rises from black to white over the picture's width.
    const float scale = held(p[0].f[0], -1000.0f, 1000.0f) * 0.01f * static_cast<float>(setup.width) / 32.0f;
    // The side that faces the light rises away from it.
    state->across = -scale * turn.cosine;
    state->down = -scale * turn.sine;
    state->onGrey = held(p[2].i[0], 0, 1) == 1;
    return state;
}

/// The light on a row of a height map, by slopes weighted 3, 10, 3 (H. Scharr).
void lightRow(const EmbossState& state, const ImageView& height, int x, int y, int count, float* light)
{
    RowWindow<1> rows[3];
    for (int r = 0; r < 3; ++r)
        rows[r].fill(height, 0, x, y + r - 1, count);
    const float *above = rows[0].at(0), *here = rows[1].at(0), *below = rows[2].at(0);
    for (int i = 0; i < count; ++i) {
        const float across = ((above[i + 1] - above[i - 1]) + (below[i + 1] - below[i - 1])) * 3.0f +
                             (here[i + 1] - here[i - 1]) * 10.0f;
        const float down = ((below[i - 1] - above[i - 1]) + (below[i + 1] - above[i + 1])) * 3.0f +
                           (below[i] - above[i]) * 10.0f;
        light[i] = across * state.across + down * state.down;
    }
}

void embossArea(const AreaJob& job)
{
    const auto& state = static_cast<const EmbossState&>(*job.state);
    float light[kChunk];
    for (int y = job.y0; y < job.y1; ++y) {
        for (int x = 0; x < job.result.width; x += kChunk) {
            const int count = std::min(kChunk, job.result.width - x);
            lightRow(state, job.operands[1], x, y, count, light);
            for (int c = 0; c < job.result.channels; ++c) {
                const float* in = rowOf(job.operands[0], c, y) + x;
                float* result = rowOf(job.result, c, y) + x;
                if (c == 3)
                    std::copy_n(in, count, result);
                else
                    for (int i = 0; i < count; ++i)
                        result[i] = (state.onGrey ? 0.5f : in[i]) + light[i];
            }
        }
    }
}

} // namespace

const NodeDeclaration embossNode{
    "emboss",
    "Emboss",
    "Neighbourhood",
    "Puts light and shadow of a height map, lit from one side, on a picture or on even grey. Alpha is kept. "
    "Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture that is lit."},
     {"height", OperandChannels::Grey, true, "The height map; may be the same picture."}},
    {{"intensity",
      ParameterType::Float,
      {2.0},
      -50,
      50,
      "Light in hundredths for a slope that rises from black to white over the picture's width."},
     {"angle",
      ParameterType::Float,
      {0.625},
      0,
      1,
      "Where the light comes from, clockwise from the right in turns."},
     {"base",
      ParameterType::Choice,
      {0},
      0,
      1,
      "What light and shadow are added to: the picture, or even grey.",
      {"picture", "grey"}}},
    prepareEmboss,
    nullptr,
    embossArea};

} // namespace vellor::nodes
