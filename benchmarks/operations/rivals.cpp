#include "benchmarks/operations/rivals.h"

#include <opencv2/core/utility.hpp>

#include <chrono>
#include <cmath>
#include <vector>

void takeTurns(const std::function<void()>& turn)
{
    using Clock = std::chrono::steady_clock;
    constexpr int kLeast = 5, kMost = 9;
    const auto end = Clock::now() + std::chrono::seconds(1);
    for (int i = 0; i < kMost && (i < kLeast || Clock::now() < end); ++i)
        turn();
}

void compare(benchmark::State& state, const std::string& rival, Aim kind, double aim,
             const std::function<void()>& ours, const std::function<void()>& theirs)
{
    cv::setNumThreads(int(state.range(0)));
    theirs();
    ours();
    Comparison comparison(state, rival);
    for (auto whole : state)
        takeTurns([&] {
            const Span beside = Comparison::time(theirs);
            comparison.add(Comparison::time(ours), beside);
        });
    state.counters["aim"] = kind == Aim::AtMost ? -aim : aim;
}

void registerOperation(const std::string& name, void (*measure)(benchmark::State&))
{
    benchmark::RegisterBenchmark(name.c_str(), measure)
        ->ArgName("threads")
        ->Arg(1)
        ->Arg(2)
        ->Iterations(1)
        ->UseManualTime();
}

cv::Mat matrixOf(const vellor::cpu::Image& image)
{
    const vellor::nodes::ImageView view = image.view();
    std::vector<cv::Mat> planes;
    for (int c = 0; c < view.channels; ++c)
        planes.emplace_back(view.height, view.width, CV_32FC1, const_cast<float*>(view.planes[c]),
                            std::size_t(view.stride) * sizeof(float));
    cv::Mat matrix;
    cv::merge(planes, matrix);
    return matrix;
}

int addMatrix(OperationGraph& graph, const cv::Mat& matrix)
{
    const int channels = matrix.channels();
    return graph.addPicture(channels,
                            [&](int x, int y, int c) { return matrix.ptr<float>(y)[x * channels + c]; });
}

cv::Mat testPicture(int channels, int side)
{
    // Sines of all places along an axis, by channel.
    const auto waves = [&](int count, int phase) {
        std::vector<double> values;
        for (int i = 0; i < side; ++i)
            values.push_back(std::sin(2 * M_PI * count * i / side + phase));
        return values;
    };
    const std::vector<double> down = waves(2, 0), fineAcross = waves(41, 0);
    std::vector<std::vector<double>> across, fineDown;
    for (int c = 0; c < channels; ++c) {
        across.push_back(waves(3, c));
        fineDown.push_back(waves(37, c));
    }
    cv::Mat matrix(side, side, CV_32FC(channels));
    for (int y = 0; y < side; ++y) {
        float* row = matrix.ptr<float>(y);
        for (int x = 0; x < side; ++x)
            for (int c = 0; c < channels; ++c) {
                const double shape = across[c][x] * down[y] + 0.3 * fineAcross[x] * fineDown[c][y];
                const unsigned hash = (unsigned(x) * 0x9e3779b1u ^ unsigned(y) * 0x85ebca77u) * 0x7feb352du;
                row[x * channels + c] = float(0.5 + 0.35 * shape) + float(hash >> 24) * (0.05f / 256);
            }
    }
    return matrix;
}
