// Blurs and other filters of neighbourhoods beside OpenCV's.

#include "benchmarks/operations/rivals.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace {

/// Widths of three boxes whose variances add up to sigma squared as nearly as odd widths can.
std::array<int, 3> boxesOf(double sigma)
{
    int low = int(std::floor(std::sqrt(4 * sigma * sigma + 1)));
    low -= low % 2 == 0 ? 1 : 0;
    const double small = (12 * sigma * sigma - 3.0 * low * low - 12.0 * low - 9) / (-4.0 * low - 4);
    std::array<int, 3> widths{};
    for (int i = 0; i < 3; ++i)
        widths[i] = i < int(std::lround(small)) ? low : low + 2;
    return widths;
}

void threeBoxes(const cv::Mat& source, cv::Mat& result, cv::Mat& between, double sigma)
{
    const std::array<int, 3> widths = boxesOf(sigma);
    cv::blur(source, result, cv::Size(widths[0], widths[0]), cv::Point(-1, -1), cv::BORDER_REFLECT);
    cv::blur(result, between, cv::Size(widths[1], widths[1]), cv::Point(-1, -1), cv::BORDER_REFLECT);
    cv::blur(between, result, cv::Size(widths[2], widths[2]), cv::Point(-1, -1), cv::BORDER_REFLECT);
}

template<int sigma> void gaussian(benchmark::State& state)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat source = testPicture(1);
    const int node =
        graph.addNode("gaussianblur", 1, {addMatrix(graph, source)}, {{"sigma", sigma * 1000.0 / kSide}});
    cv::Mat result, between;
    compare(
        state, "OpenCV blur, three boxes", Aim::AtLeast, state.range(0) == 1 ? 2.2 : 1.8,
        [&] { graph.run(node); }, [&] { threeBoxes(source, result, between, sigma); });
}

void directGaussian(benchmark::State& state)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat source = testPicture(1);
    const int node =
        graph.addNode("gaussianblur", 1, {addMatrix(graph, source)}, {{"sigma", 4 * 1000.0 / kSide}});
    cv::Mat result;
    compare(
        state, "OpenCV GaussianBlur", Aim::AtLeast, state.range(0) == 1 ? 2.2 : 1.8, [&] { graph.run(node); },
        [&] { cv::GaussianBlur(source, result, cv::Size(33, 33), 4, 4, cv::BORDER_REFLECT); });
}

const bool registered = [] {
    registerOperation("gaussian blur, sigma 4, grey float", gaussian<4>);
    registerOperation("gaussian blur, sigma 8, grey float", gaussian<8>);
    registerOperation("gaussian blur, sigma 16, grey float", gaussian<16>);
    registerOperation("gaussian blur, sigma 32, grey float", gaussian<32>);
    registerOperation("gaussian blur, sigma 64, grey float", gaussian<64>);
    registerOperation("gaussian blur, sigma 4, grey float, direct rival", directGaussian);
    return true;
}();

} // namespace
