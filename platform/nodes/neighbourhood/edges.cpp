#include "platform/nodes/kinds.h"
#include "platform/nodes/neighbourhood/detail.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

/// Slopes weighted 3, 10, 3 (H. Scharr) of a row of a channel, of which the steepest are kept.
void raiseSlopes(const ImageView& picture, int channel, int y, float factor, float* steepest)
{
    RowWindow<1> rows[3];
    for (int x = 0; x < picture.width; x += kChunk) {
        const int count = std::min(kChunk, picture.width - x);
        for (int r = 0; r < 3; ++r)
            rows[r].fill(picture, channel, x, y + r - 1, count);
        const float *above = rows[0].at(0), *here = rows[1].at(0), *below = rows[2].at(0);
        for (int i = 0; i < count; ++i) {
            const float across = ((above[i + 1] - above[i - 1]) + (below[i + 1] - below[i - 1])) * 3.0f +
                                 (here[i + 1] - here[i - 1]) * 10.0f;
            const float down = ((below[i - 1] - above[i - 1]) + (below[i + 1] - above[i + 1])) * 3.0f +
                               (below[i] - above[i]) * 10.0f;
            const float slope = scalar::sqrtOf(across * across + down * down) * factor;
            steepest[x + i] = std::max(steepest[x + i], slope);
        }
    }
}

void edgesArea(const AreaJob& job)
{
    if (detailPass(job))
        return;
    const ImageView& blurred = job.scratch[job.pass - 1];
    const float factor = static_cast<const DetailState&>(*job.state).factor;
    for (int y = job.y0; y < job.y1; ++y) {
        float* result = rowOf(job.result, 0, y);
        std::fill_n(result, job.result.width, 0.0f);
        for (int c = 0; c < std::min(blurred.channels, 3); ++c)
            raiseSlopes(blurred, c, y, factor, result);
    }
}

std::unique_ptr<State> prepareEdges(const Setup& setup)
{
    std::unique_ptr<State> state = prepareDetail(setup);
    // The slope of a step blurred with sigma is 1 / (sqrt(2 pi) sigma) at most, and half of the step across
    // two pixels where it is sharp. Slopes come 32 times too large.
    const float sigma =
        std::min(held(setup.parameters[0].f[0], 0.0f, 1000.0f) * 0.001f * static_cast<float>(setup.width),
                 static_cast<float>(setup.width));
    static_cast<DetailState&>(*state).factor *=
        scalar::sqrtOf(4.0f + 2.0f * scalar::kPi * sigma * sigma) / 32.0f;
    return state;
}

} // namespace

const NodeDeclaration edgesNode{
    "edges",
    "Edges",
    "Neighbourhood",
    "How steep a picture is after a Gaussian blur: 1 along a sharp edge from black to white. Of colours the "
    "steepest channel counts. Wraps around.",
    ResultChannels::Grey,
    Chance::None,
    {{"input", OperandChannels::Any, true, "The picture whose edges are wanted."}},
    {{"width",
      ParameterType::Float,
      {2.0},
      0,
      100,
      "Standard deviation of the blur in thousandths of the picture's width: half of an edge's width."},
     {"intensity", ParameterType::Float, {1.0}, 0, 20, "Factor of the slope."}},
    prepareEdges,
    nullptr,
    edgesArea,
    detailScratch};

} // namespace vellor::nodes
