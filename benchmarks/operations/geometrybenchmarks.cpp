// Pictures read at places that vary from pixel to pixel, beside OpenCV's, which rounds places to 1/32 pixel.

#include "benchmarks/operations/rivals.h"

#include <opencv2/imgproc.hpp>

namespace {

constexpr double kTurn = 30.0 / 360.0, kScale = 1.1;

cv::Mat asDepth(const cv::Mat& source, int depth)
{
    cv::Mat result;
    source.convertTo(result, depth, depth == CV_16U ? 65535.0 : 1.0);
    return result;
}

void affine(benchmark::State& state, int channels, int depth, double aim)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat source = testPicture(channels);
    const int node =
        graph.addNode("transform", channels, {addMatrix(graph, source)},
                      {{"rotation", kTurn}, {"scale", std::array<double, 4>{kScale, kScale}}, {"filter", 2}});
    const cv::Mat given = asDepth(source, depth);
    const cv::Mat map =
        cv::getRotationMatrix2D({(kSide - 1) / 2.0f, (kSide - 1) / 2.0f}, -360.0 * kTurn, kScale);
    cv::Mat result;
    compare(
        state, "OpenCV warpAffine", Aim::AtLeast, aim, [&] { graph.run(node); },
        [&] { cv::warpAffine(given, result, map, given.size(), cv::INTER_LINEAR, cv::BORDER_WRAP); });
}

void byMap(benchmark::State& state, int channels, int depth, double aim)
{
    constexpr double kReach = 0.05; // of the width
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat source = testPicture(channels), field = testPicture(4);
    const int node =
        graph.addNode("vectorwarp", channels, {addMatrix(graph, source), addMatrix(graph, field)},
                      {{"intensity", 50.0 * kReach}});
    cv::Mat places(kSide, kSide, CV_32FC2), result;
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const auto vector = field.at<cv::Vec4f>(y, x);
            places.at<cv::Vec2f>(y, x) = {float(x + (vector[0] - 0.5) * kReach * kSide),
                                          float(y + (vector[1] - 0.5) * kReach * kSide)};
        }
    const cv::Mat given = asDepth(source, depth);
    compare(
        state, "OpenCV remap", Aim::AtLeast, aim, [&] { graph.run(node); },
        [&] { cv::remap(given, result, places, {}, cv::INTER_LINEAR, cv::BORDER_WRAP); });
}

const bool registered = [] {
    registerOperation("affine transform, grey float",
                      [](benchmark::State& state) { affine(state, 1, CV_32F, 1.3); });
    registerOperation("affine transform, RGBA float",
                      [](benchmark::State& state) { affine(state, 4, CV_32F, 2.0); });
    registerOperation("affine transform, RGBA float beside 16 bits",
                      [](benchmark::State& state) { affine(state, 4, CV_16U, 2.0); });
    registerOperation("warp by a map, grey float",
                      [](benchmark::State& state) { byMap(state, 1, CV_32F, 1.3); });
    registerOperation("warp by a map, RGBA float",
                      [](benchmark::State& state) { byMap(state, 4, CV_32F, 2.0); });
    registerOperation("warp by a map, RGBA float beside 16 bits",
                      [](benchmark::State& state) { byMap(state, 4, CV_16U, 2.0); });
    return true;
}();

} // namespace
