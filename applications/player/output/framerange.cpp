#include "applications/player/output/framerange.h"

#include <algorithm>

namespace Zph::Applications::Player {

namespace {

constexpr double kMostFrames = 1e9; // so that numbers stay integers

int wholeFrames(double frames)
{
    return int(std::clamp(frames, 0.0, kMostFrames));
}

} // namespace

FrameRange FrameRange::of(const ExportSettings& settings)
{
    constexpr double nearest = 0.5;
    constexpr double almost = 0.001; // frames: what a time in decimal digits may lack
    const double length = std::max(settings.timeEnd - settings.timeStart, 0.0);
    FrameRange range;
    range.rate = settings.fps;
    if (settings.timeUnit == ExportSettings::TimeUnit::Frame) {
        range.first = wholeFrames(settings.timeStart + nearest);
        range.count = wholeFrames(length + nearest) + 1;
        return range;
    }
    range.first = wholeFrames(settings.timeStart * settings.fps + nearest);
    range.count = wholeFrames(length * settings.fps + almost) + 1;
    range.offset = settings.timeStart - range.first / settings.fps;
    return range;
}

} // namespace Zph::Applications::Player
