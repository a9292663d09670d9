// What fusing nodes is worth: a chain beside its dearest node alone.

#include "benchmarks/operations/rivals.h"

namespace {

/// Levels, multiply with opacity and mask, channel shuffle on RGBA, beside the multiply.
void chain(benchmark::State& state)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat colour = testPicture(4);
    const int upper = addMatrix(graph, colour), lower = addMatrix(graph, colour);
    const int mask = addMatrix(graph, testPicture(1));
    const std::vector<Setting> multiply{{"mode", 3}, {"opacity", 0.7}};
    const int alone = graph.addNode("blend", 4, {upper, lower, mask}, multiply);
    const int levels = graph.addNode("levels", 4, {upper}, {{"inlow", 0.1}, {"inhigh", 0.9}});
    const int blended = graph.addNode("blend", 4, {levels, lower, mask}, multiply);
    const int shuffled = graph.addNode("channelshuffle", 4, {blended}, {{"red", 2}, {"blue", 0}});
    compare(
        state, "the multiply alone", Aim::AtMost, 1.3, [&] { graph.run(shuffled); },
        [&] { graph.run(alone); });
}

const bool registered = [] {
    registerOperation("levels, multiply with opacity and mask, channel shuffle, fused", chain);
    return true;
}();

} // namespace
