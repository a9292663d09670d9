#pragma once

#include "benchmarks/comparison.h"
#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>

#include <functional>
#include <optional>
#include <string>

constexpr unsigned kSide = 4096; // pixels, of all pictures here

/// Smooth shapes with fine grain on top, opaque: what exported pictures look like to a compressor.
QSharedPointer<Orn::Surfaces::Surface> testPicture(Orn::Surfaces::PixelFormat format);

/// Registers a figure: takes turns, ours and the rival's, after one of each that does not count. `aim` bounds
/// our time over the rival's from above, where there is one. `make` is called when the figure is measured and
/// gives both.
struct Pair
{
    std::function<void()> ours, theirs;
};
void registerPair(const std::string& name, const std::string& rival, std::optional<double> aim,
                  std::function<Pair()> make);
