#include "platform/nodes/kinds.h"
#include "platform/nodes/neighbourhood/detail.h"
#include "platform/nodes/rows.h"

namespace vellor::nodes {
namespace {

void sharpenArea(const AreaJob& job)
{
    if (detailPass(job))
        return;
    const float amount = static_cast<const DetailState&>(*job.state).factor;
    for (int c = 0; c < job.result.channels; ++c) {
        for (int y = job.y0; y < job.y1; ++y) {
            const float *in = rowOf(job.operands[0], c, y), *mean = rowOf(job.scratch[job.pass - 1], c, y);
            float* result = rowOf(job.result, c, y);
            const float factor = c == 3 ? 0.0f : amount;
            for (int x = 0; x < job.result.width; ++x)
                result[x] = in[x] + (in[x] - mean[x]) * factor;
        }
    }
}

} // namespace

const NodeDeclaration sharpenNode{
    "sharpen",
    "Sharpen",
    "Neighbourhood",
    "Unsharp mask: adds what a picture has beyond its own Gaussian blur. Alpha is kept. Wraps around.",
    ResultChannels::FromOperands,
    Chance::None,
    {{"input", OperandChannels::Result, true, "The picture to sharpen."}},
    {{"radius",
      ParameterType::Float,
      {2.0},
      0,
      100,
      "Standard deviation of the blur in thousandths of the picture's width: the size of the detail."},
     {"amount", ParameterType::Float, {1.0}, 0, 10, "How much is added: 1 doubles the detail."}},
    prepareDetail,
    nullptr,
    sharpenArea,
    detailScratch};

} // namespace vellor::nodes
