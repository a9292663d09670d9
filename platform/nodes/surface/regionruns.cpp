#include "platform/nodes/surface/regionruns.h"

#include "platform/nodes/rows.h"

#include <utility>

namespace vellor::nodes {

namespace {

std::uint32_t* wordsOf(const float* plane)
{
    // Nothing but words is ever stored there.
    return reinterpret_cast<std::uint32_t*>(const_cast<float*>(plane));
}

} // namespace

RegionRuns::RegionRuns(const MutableImage& table, int width, int height)
    : m_runs(wordsOf(table.planes[0])), m_boxes(wordsOf(table.planes[1])),
      m_stride(table.stride), m_x{width}, m_y{height}
{
}

RegionRuns::RegionRuns(const ImageView& table, int width, int height)
    : m_runs(wordsOf(table.planes[0])), m_boxes(wordsOf(table.planes[1])),
      m_stride(table.stride), m_x{width}, m_y{height}
{
}

void RegionRuns::startRow(int y)
{
    m_runs[y * m_stride] = 0;
    m_runs[y * m_stride + 1] = 0;
}

void RegionRuns::addRun(int y, int start, int end)
{
    const std::size_t word = at(endRun(y));
    m_runs[word] = static_cast<std::uint32_t>(start) | static_cast<std::uint32_t>(end) << 16;
    m_runs[word + 1] = kRoot | static_cast<std::uint32_t>(end - start);
    m_boxes[word] = wordOf({start, end - start, false});
    m_boxes[word + 1] = wordOf({y, 1, false});
    ++m_runs[y * m_stride];
}

void RegionRuns::joinToAbove(int y, bool diagonal)
{
    joinRows(y - 1, y, diagonal);
    m_runs[y * m_stride + 1] = 1;
}

void RegionRuns::joinRest(bool diagonal, const std::function<bool()>& stopped)
{
    for (int y = 1; y < height() && !stopped(); ++y)
        if (m_runs[y * m_stride + 1] == 0)
            joinRows(y - 1, y, diagonal);
    joinRows(height() - 1, 0, diagonal);
    for (int y = 0; y < height(); ++y) {
        joinAcrossSides(y, y, diagonal);
        if (diagonal)
            joinAcrossSides(y, wrapped(y + 1, height()), diagonal);
    }
}

void RegionRuns::joinRows(int upper, int lower, bool diagonal)
{
    const int reach = diagonal ? 1 : 0;
    std::uint32_t a = firstRun(upper), b = firstRun(lower);
    const std::uint32_t endA = endRun(upper), endB = endRun(lower);
    while (a < endA && b < endB) {
        if (start(a) < end(b) + reach && start(b) < end(a) + reach) {
            const int xA = std::clamp(start(b), start(a), end(a) - 1);
            const int xB = std::clamp(xA, start(b), end(b) - 1);
            join(a, {xA, upper}, b, {xB, lower}, {xB - xA, 1});
        }
        if (end(a) < end(b))
            ++a;
        else
            ++b;
    }
}

void RegionRuns::joinAcrossSides(int upper, int lower, bool diagonal)
{
    const int right = width() - 1, down = upper == lower ? 0 : 1;
    const auto touchesLeft = [&](int y) { return firstRun(y) < endRun(y) && start(firstRun(y)) == 0; };
    const auto touchesRight = [&](int y) { return firstRun(y) < endRun(y) && end(endRun(y) - 1) == width(); };
    if (touchesRight(upper) && touchesLeft(lower))
        join(endRun(upper) - 1, {right, upper}, firstRun(lower), {0, lower}, {1, down});
    if (diagonal && down && touchesLeft(upper) && touchesRight(lower))
        join(firstRun(upper), {0, upper}, endRun(lower) - 1, {right, lower}, {-1, down});
}

std::uint32_t RegionRuns::find(std::uint32_t run)
{
    for (;;) {
        std::uint32_t& link = m_runs[at(run) + 1];
        if (link & kRoot)
            return run;
        const std::uint32_t above = m_runs[at(link) + 1];
        if (above & kRoot)
            return link;
        run = link = above;
    }
}

void RegionRuns::join(std::uint32_t runA, Pixel inA, std::uint32_t runB, Pixel inB, Pixel step)
{
    runA = find(runA);
    runB = find(runB);
    const RegionInterval x = m_x.joined(boxX(runA), inA.x, boxX(runB), inB.x, step.x);
    const RegionInterval y = m_y.joined(boxY(runA), inA.y, boxY(runB), inB.y, step.y);
    if (runB < runA)
        std::swap(runA, runB);
    if (runA != runB) {
        m_runs[at(runA) + 1] += valueOf(runB);
        m_runs[at(runB) + 1] = runA;
    }
    m_boxes[at(runA)] = wordOf(x);
    m_boxes[at(runA) + 1] = wordOf(y);
}

/// The interval around both when place `inA` of the one and `inB` of the other are `step` apart. A region
/// longer than the picture, or one that meets itself a turn further on, goes all around.
RegionInterval RegionRuns::Axis::joined(RegionInterval a, int inA, RegionInterval b, int inB, int step) const
{
    const RegionInterval all{0, size, true};
    if (a.around || b.around)
        return all;
    const int placeA = a.start + wrapped(inA - a.start, size);
    const int placeB = b.start + wrapped(inB - b.start, size);
    const int shift = placeA + step - placeB;
    const int first = std::min(a.start, b.start + shift);
    const int end = std::max(a.start + a.length, b.start + shift + b.length);
    if (end - first > size)
        return all;
    return {wrapped(first, size), end - first, false};
}

RegionInterval RegionRuns::intervalOf(std::uint32_t word)
{
    return {static_cast<int>(word & 0x7fffu), static_cast<int>(word >> 15 & 0x7fffu), word >> 31 != 0};
}

std::uint32_t RegionRuns::wordOf(const RegionInterval& interval)
{
    return static_cast<std::uint32_t>(interval.start) | static_cast<std::uint32_t>(interval.length) << 15 |
           static_cast<std::uint32_t>(interval.around) << 31;
}

} // namespace vellor::nodes
