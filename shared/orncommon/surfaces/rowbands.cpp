#include "orncommon/surfaces/rowbands.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

namespace Orn::Surfaces {

namespace {

/// Takes a thread some hundred microseconds: several times what it takes to start one.
constexpr std::uint64_t bytesOfABand = 4 * 1024 * 1024;
/// Moving pixels, a few processors use up what memory can give.
constexpr unsigned int mostBands = 4;

unsigned int bandCount(unsigned int rows, std::uint64_t bytes)
{
    std::uint64_t const worthwhile = std::min<std::uint64_t>(bytes / bytesOfABand, mostBands);
    unsigned int const processors = std::max(std::thread::hardware_concurrency(), 1u);
    return std::max(std::min({unsigned(worthwhile), processors, rows}), 1u);
}

} // namespace

void forRowBands(unsigned int rows, std::uint64_t bytes,
                 std::function<void(unsigned int first, unsigned int end)> const& work)
{
    unsigned int const bands = bandCount(rows, bytes);
    auto const start = [=](unsigned int band) { return unsigned(std::uint64_t(rows) * band / bands); };
    std::vector<std::thread> others;
    others.reserve(bands);
    unsigned int handedOut = 1;
    try {
        for (; handedOut < bands; ++handedOut)
            others.emplace_back(work, start(handedOut), start(handedOut + 1));
    } catch (std::system_error const&) { // no more threads: the rest is done here
    }
    work(0, start(1));
    if (handedOut < bands)
        work(start(handedOut), rows);
    for (std::thread& other : others)
        other.join();
}

} // namespace Orn::Surfaces
