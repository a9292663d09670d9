// What works on heights and masks, beside OpenCV's.

#include "benchmarks/operations/rivals.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace {

void normal(benchmark::State& state)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat height = testPicture(1);
    const int node = graph.addNode("normal", 4, {addMatrix(graph, height)}, {{"intensity", 3}});
    const double strength = 3 * 0.01 * kSide / 8; // Sobel's weights add up to 8
    cv::Mat dx, dy, square, squareY, length, x, y, z, result;
    compare(
        state, "OpenCV Sobel, multiply, sqrt, divide, merge", Aim::AtLeast, 4.0, [&] { graph.run(node); },
        [&] {
            cv::Sobel(height, dx, CV_32F, 1, 0, 3, -strength, 0, cv::BORDER_REFLECT_101);
            cv::Sobel(height, dy, CV_32F, 0, 1, 3, -strength, 0, cv::BORDER_REFLECT_101);
            cv::multiply(dx, dx, square);
            cv::multiply(dy, dy, squareY);
            cv::add(square, squareY, square);
            cv::add(square, 1.0, square);
            cv::sqrt(square, length);
            cv::divide(0.5, length, z);
            cv::multiply(dx, z, x);
            cv::multiply(dy, z, y);
            cv::add(x, 0.5, x);
            cv::add(y, 0.5, y);
            cv::add(z, 0.5, z);
            cv::merge(std::vector<cv::Mat>{x, y, z, height}, result);
        });
}

const bool registered = [] {
    registerOperation("normal from height, grey float", normal);
    return true;
}();

} // namespace
