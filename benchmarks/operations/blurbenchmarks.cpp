// Blurs and other filters of neighbourhoods beside OpenCV's.

#include "benchmarks/operations/rivals.h"

#include <vellor/engine.h>

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

template<int radius> void box(benchmark::State& state)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat source = testPicture(1);
    const int node =
        graph.addNode("boxblur", 1, {addMatrix(graph, source)}, {{"radius", radius * 1000.0 / kSide}});
    cv::Mat result;
    compare(
        state, "OpenCV blur", Aim::AtLeast, 1.4, [&] { graph.run(node); },
        [&] { cv::blur(source, result, cv::Size(2 * radius + 1, 2 * radius + 1)); });
}

/// From packed pixels to packed pixels. The rival works on integers and rounds after each box.
template<int depth, std::uint8_t format> void packedGaussian(benchmark::State& state)
{
    constexpr double kSigma = 16;
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    cv::Mat source, result, between, packed;
    testPicture(4).convertTo(source, CV_MAKETYPE(depth, 4), depth == CV_8U ? 255 : 65535);
    packed.create(source.size(), source.type());
    const int node = graph.addNode("gaussianblur", 4, {graph.addPacked(format, source.data)},
                                   {{"sigma", kSigma * 1000.0 / kSide}});
    compare(
        state, "OpenCV blur, three boxes", Aim::AtLeast, 1.2,
        [&] {
            graph.run(node);
            graph.fetch(format, packed.data);
        },
        [&] { threeBoxes(source, result, between, kSigma); });
    cv::Mat difference;
    cv::absdiff(packed, result, difference);
    state.counters["mean_difference"] = cv::mean(difference)[0] / (depth == CV_8U ? 255 : 65535);
}

// For information: no aim. Beyond 5 x 5 the rival takes bytes only, and figures stand beside its 5 x 5.
template<int radius> void median(benchmark::State& state)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat source = testPicture(1);
    const int node = graph.addNode("median", 1, {addMatrix(graph, source)}, {{"radius", radius}});
    cv::Mat result;
    compare(
        state, radius > 2 ? "OpenCV medianBlur, 5 x 5" : "OpenCV medianBlur", Aim::AtLeast, 0.0,
        [&] { graph.run(node); }, [&] { cv::medianBlur(source, result, radius == 1 ? 3 : 5); });
}

template<int shape> void dilate(benchmark::State& state)
{
    constexpr int kRadius = 10;
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat source = testPicture(1);
    const int node =
        graph.addNode("dilate", 1, {addMatrix(graph, source)},
                      {{"radius", kRadius * 1000.0 / kSide}, {"shape", shape == cv::MORPH_RECT}});
    const cv::Mat element = cv::getStructuringElement(shape, cv::Size(2 * kRadius + 1, 2 * kRadius + 1));
    cv::Mat result;
    compare(
        state, "OpenCV dilate", Aim::AtLeast, 0.0, [&] { graph.run(node); },
        [&] { cv::dilate(source, result, element); });
}

const bool registered = [] {
    registerOperation("gaussian blur, sigma 4, grey float", gaussian<4>);
    registerOperation("gaussian blur, sigma 8, grey float", gaussian<8>);
    registerOperation("gaussian blur, sigma 16, grey float", gaussian<16>);
    registerOperation("gaussian blur, sigma 32, grey float", gaussian<32>);
    registerOperation("gaussian blur, sigma 64, grey float", gaussian<64>);
    registerOperation("gaussian blur, sigma 4, grey float, direct rival", directGaussian);
    registerOperation("box blur, radius 4, grey float", box<4>);
    registerOperation("box blur, radius 16, grey float", box<16>);
    registerOperation("box blur, radius 64, grey float", box<64>);
    registerOperation("gaussian blur, sigma 16, RGBA at 8 bits", packedGaussian<CV_8U, VELLOR_FORMAT_RGBA>);
    registerOperation("gaussian blur, sigma 16, RGBA at 16 bits",
                      packedGaussian<CV_16U, VELLOR_FORMAT_RGBA | VELLOR_FORMAT_16BITS>);
    registerOperation("median, 3 x 3, grey float", median<1>);
    registerOperation("median, 5 x 5, grey float", median<2>);
    registerOperation("median, 7 x 7, grey float", median<3>);
    registerOperation("median, 9 x 9, grey float", median<4>);
    registerOperation("median, 11 x 11, grey float", median<5>);
    registerOperation("median, 33 x 33, grey float", median<16>);
    registerOperation("dilate, disc of radius 10, grey float", dilate<cv::MORPH_ELLIPSE>);
    registerOperation("dilate, square of radius 10, grey float", dilate<cv::MORPH_RECT>);
    return true;
}();

} // namespace
