#pragma once

#include "applications/player/output/exportsettings.h"

namespace Zph::Applications::Player {

// The frames of an animation: their numbers, as file names have them, and their times.
struct FrameRange
{
    int first = 0;     // number
    int count = 1;     // at least 1
    double rate = 30;  // frames a second
    double offset = 0; // seconds: the time of a frame 0

    int number(int index) const { return first + index; }
    double seconds(int index) const { return number(index) / rate + offset; }

    // From the start of the settings to their end, which belongs to them. In seconds the first frame lies on
    // the start, and has the number of the nearest whole frame.
    static FrameRange of(const ExportSettings& settings);
};

} // namespace Zph::Applications::Player
