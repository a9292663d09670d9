#include "platform/nodes/kinds.h"
#include "platform/nodes/neighbourhood/detail.h"
#include "platform/nodes/rows.h"

#include <algorithm>

namespace vellor::nodes {
namespace {

void highPassArea(const AreaJob& job)
{
    if (detailPass(job))
        return;
    const float factor = static_cast<const DetailState&>(*job.state).factor;
    for (int c = 0; c < job.result.channels; ++c) {
        for (int y = job.y0; y < job.y1; ++y) {
            const float *in = rowOf(job.operands[0], c, y), *mean = rowOf(job.scratch[job.pass - 1], c, y);
            float* result = rowOf(job.result, c, y);
            if (c == 3)
                std::copy_n(in, job.result.width, result);
            else
                for (int x = 0; x < job.result.width; ++x)
                    result[x] = 0.5f + (in[x] - mean[x]) * factor;
        }
    }
}

} // namespace

const NodeDeclaration highpassNode{
    "highpass",
    "High Pass",
    "Neighbourhood",
    "What a picture has beyond its own Gaussian blur, around 0.5: evens out light and large forms. Alpha is "
    "kept. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture."}},
    {{"radius",
      ParameterType::Float,
      {20.0},
      0,
      250,
      "Standard deviation of the blur in thousandths of the picture's width: forms larger than this go."},
     {"contrast", ParameterType::Float, {1.0}, 0, 10, "Factor of what is left."}},
    prepareDetail,
    nullptr,
    highPassArea,
    detailScratch};

} // namespace vellor::nodes
