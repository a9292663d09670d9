#pragma once

// How a figure of an operation stands beside its rival's.

#include "benchmarks/comparison.h"
#include "benchmarks/operations/operationgraph.h"

#include <opencv2/core.hpp>

#include <functional>
#include <string>

constexpr int kSide = 4096; // of the pictures, unless a figure's name says otherwise

/// How a ratio is put: the rival's time over ours, which is to reach the aim, or ours over the rival's, which
/// is to stay below it.
enum class Aim
{
    AtLeast,
    AtMost
};

/// Calls `turn` until a second has gone by, 5 times at the least and 9 at the most. For figures that are
/// registered with one iteration.
void takeTurns(const std::function<void()>& turn);

/// Takes turns, ours and the rival's, after one of each that does not count. The counter "aim" holds the aim,
/// negative for one that is an upper bound; the label names the rival.
void compare(benchmark::State& state, const std::string& rival, Aim kind, double aim,
             const std::function<void()>& ours, const std::function<void()>& theirs);

/// Registers a figure for one thread and for two; `measure` reads the number from state.range(0).
void registerOperation(const std::string& name, void (*measure)(benchmark::State&));

/// A picture of the engine as a matrix of floats, channels beside one another. A copy.
cv::Mat matrixOf(const vellor::cpu::Image& image);
/// A matrix of floats of kSide squared pixels as a picture of a graph.
int addMatrix(OperationGraph& graph, const cv::Mat& matrix);
/// Smooth shapes with detail on top, 0 to 1: what heights and masks look like. Type CV_32FC1 or CV_32FC4.
cv::Mat testPicture(int channels, int side = kSide);
