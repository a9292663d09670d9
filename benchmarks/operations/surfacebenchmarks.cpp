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

/// Light where the test picture is light: shapes of many sizes with ragged edges.
cv::Mat testMask()
{
    cv::Mat mask;
    cv::threshold(testPicture(1), mask, 0.62, 1.0, cv::THRESH_BINARY);
    return mask;
}

void distance(benchmark::State& state, const cv::Mat& mask)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const int node = graph.addNode("distance", 1, {addMatrix(graph, mask)}, {{"radius", 0.1}});
    cv::Mat bytes, distances;
    cv::threshold(mask, bytes, 0.5, 255, cv::THRESH_BINARY_INV);
    bytes.convertTo(bytes, CV_8U);
    compare(
        state, "OpenCV distanceTransform, precise", Aim::AtLeast, 1.3, [&] { graph.run(node); },
        [&] { cv::distanceTransform(bytes, distances, cv::DIST_L2, cv::DIST_MASK_PRECISE); });
}

void distanceOfShapes(benchmark::State& state)
{
    distance(state, testMask());
}

void distanceOfPoints(benchmark::State& state)
{
    cv::Mat mask = cv::Mat::zeros(kSide, kSide, CV_32F);
    for (unsigned i = 0; i < 2000; ++i)
        mask.at<float>(int(i * 2654435761u >> 20), int(i * 2246822519u >> 20)) = 1.0f;
    distance(state, mask);
}

void floodFill(benchmark::State& state)
{
    OperationGraph graph(kSide, kSide, int(state.range(0)));
    const cv::Mat mask = testMask();
    const int node = graph.addNode("floodfill", 4, {addMatrix(graph, mask)});
    cv::Mat bytes, labels, statistics, centres;
    mask.convertTo(bytes, CV_8U);
    compare(
        state, "OpenCV connectedComponentsWithStats", Aim::AtLeast, 0.0, [&] { graph.run(node); },
        [&] { cv::connectedComponentsWithStats(bytes, labels, statistics, centres, 4); });
}

const bool registered = [] {
    registerOperation("normal from height, grey float", normal);
    registerOperation("distance transform, shapes", distanceOfShapes);
    registerOperation("distance transform, points", distanceOfPoints);
    registerOperation("flood fill", floodFill);
    return true;
}();

} // namespace
