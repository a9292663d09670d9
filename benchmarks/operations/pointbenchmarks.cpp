// Point operations beside OpenCV's and beside the memory traffic of the same run.

#include "benchmarks/operations/rivals.h"

#include <opencv2/core.hpp>

namespace {

void levels(benchmark::State& state)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat source = testPicture(1);
    const int node =
        graph.addNode("levels", 1, {addMatrix(graph, source)}, {{"inlow", 0.2}, {"inhigh", 0.9}});
    cv::Mat result, clamped;
    compare(
        state, "OpenCV subtract, scale, min, max", Aim::AtLeast, 1.0, [&] { graph.run(node); },
        [&] {
            source.convertTo(result, CV_32F, 1 / 0.7, -0.2 / 0.7);
            cv::max(result, 0.0f, clamped);
            cv::min(clamped, 1.0f, result);
        });
}

const bool registered = [] {
    registerOperation("levels, grey float", levels);
    return true;
}();

} // namespace
