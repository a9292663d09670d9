#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/patterns/stamps.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

#include <cmath>

// Places are thrown like darts: one that comes too close to an earlier one is thrown again (R. L. Cook,
// "Stochastic sampling in computer graphics", 1986). A grid of cells finds the earlier ones near by. Where
// the density is low, the distance kept grows with the square root of its inverse.

namespace vellor::nodes {
namespace {

enum Parameter
{
    kNumber,
    kSpacing,
    kDensityAmount,
    kCount
};

constexpr std::size_t kDensityMap = 10; // behind the operands of all stamps

struct Place
{
    float x, y, radius; // in shorter sides of the picture
    int next;           // in the same cell; -1: none
};

class PlaceGrid
{
public:
    PlaceGrid(float width, float height, float radius, int number) : m_width(width), m_height(height)
    {
        const float most = 2.0f * scalar::sqrtOf(static_cast<float>(number)) + 1.0f;
        m_across = static_cast<int>(held(width / radius, 1.0f, most));
        m_down = static_cast<int>(held(height / radius, 1.0f, most));
        m_first.assign(static_cast<std::size_t>(m_across) * m_down, -1);
    }

    bool isFree(float x, float y, float radius) const
    {
        const int column = cellOf(x, m_width, m_across), row = cellOf(y, m_height, m_down);
        int left, right, above, below;
        reach(radius, m_width, m_across, left, right);
        reach(radius, m_height, m_down, above, below);
        for (int j = above; j <= below; ++j)
            for (int i = left; i <= right; ++i)
                if (isTaken(wrapped(column + i, m_across), wrapped(row + j, m_down), x, y, radius))
                    return false;
        return true;
    }

    void add(float x, float y, float radius)
    {
        int& first = m_first[static_cast<std::size_t>(cellOf(y, m_height, m_down)) * m_across +
                             cellOf(x, m_width, m_across)];
        m_places.push_back({x, y, radius, first});
        first = static_cast<int>(m_places.size()) - 1;
    }

private:
    static int cellOf(float position, float size, int count)
    {
        return std::min(static_cast<int>(position / size * static_cast<float>(count)), count - 1);
    }

    /// Cells before and after the own one that a distance reaches, each cell at most once.
    static void reach(float radius, float size, int count, int& first, int& last)
    {
        const int cells = static_cast<int>(radius / size * static_cast<float>(count)) + 1;
        first = 2 * cells + 1 >= count ? 0 : -cells;
        last = 2 * cells + 1 >= count ? count - 1 : cells;
    }

    bool isTaken(int column, int row, float x, float y, float radius) const
    {
        for (int i = m_first[static_cast<std::size_t>(row) * m_across + column]; i >= 0;
             i = m_places[i].next) {
            const float apartX = x - m_places[i].x, apartY = y - m_places[i].y;
            const float dx = apartX - m_width * scalar::roundOf(apartX / m_width);
            const float dy = apartY - m_height * scalar::roundOf(apartY / m_height);
            const float least = std::min(radius, m_places[i].radius);
            if (dx * dx + dy * dy < least * least)
                return true;
        }
        return false;
    }

    float m_width, m_height;
    int m_across = 1, m_down = 1;
    std::vector<int> m_first;
    std::vector<Place> m_places;
};

std::unique_ptr<State> prepareFreeScatter(const Setup& setup)
{
    const ParameterValue* p = setup.parameters;
    const float width = static_cast<float>(setup.width), height = static_cast<float>(setup.height);
    const float unit = std::min(width, height);
    StampMaker maker(setup, p + kCount, unit, width, height, height, width);
    const int number = held(p[kNumber].i[0], 0, kMostStamps);
    // Discs of this distance for a diameter fill about 0.38 of the plane, well before darts stop to fit.
    const float wide = width / unit, high = height / unit;
    const float radius = held(p[kSpacing].f[0], 0.0f, 1.0f) * 0.7f *
                         scalar::sqrtOf(wide * high / static_cast<float>(std::max(number, 1)));
    const float amount = held(p[kDensityAmount].f[0], 0.0f, 1.0f);
    PlaceGrid grid(wide, high, std::max(radius, 1e-5f), number);
    std::uint32_t hash = scalar::mixBits(static_cast<std::uint32_t>(setup.seed) + 0xf2ee5ca7u);
    const auto random = [&hash] { return scalar::unitOf(hash = scalar::nextHash(hash)); };
    int thrown = 0;
    for (std::int64_t tries = 16 * static_cast<std::int64_t>(number);
         thrown < number && tries > 0 && !setup.stopped(); --tries) {
        const float u = random(), v = random(), chance = random();
        const float density =
            held(1.0f + (mapAt(setup.operands[kDensityMap], 0, u, v, 1.0f) - 1.0f) * amount, 0.0f, 1.0f);
        if (chance >= density) {
            ++thrown; // it would have found its place
            continue;
        }
        const float apart = radius / scalar::sqrtOf(std::max(density, 1.0f / 64.0f));
        if (radius > 0.0f && !grid.isFree(u * wide, v * high, apart))
            continue;
        grid.add(u * wide, v * high, apart);
        maker.add(u * width, v * height, v * height, u * width, scalar::mixBits(hash ^ 0x51ed270bu));
        ++thrown;
    }
    return maker.finish();
}

std::vector<OperandDeclaration> operands()
{
    std::vector<OperandDeclaration> all = stampOperands();
    all.push_back(
        {"density", OperandChannels::Grey, false,
         "How close stamps lie together: as many as the number says where it is white, none where it is "
         "black."});
    return all;
}

} // namespace

const NodeDeclaration freescatterNode{
    "freescatter",
    "Free Scatter",
    "Patterns",
    "Stamps pictures, or a shape, at places with no grid that keep their distance from each other and follow "
    "a "
    "density map; each stamp is sized, turned, toned, coloured, dropped and layered by chance and by maps. "
    "Places "
    "are thrown like darts (R. L. Cook, 1986).",
    ResultChannels::FromOperands,
    Chance::Seeded,
    operands(),
    stampParameters(
        {{"number",
          ParameterType::Int,
          {200},
          1,
          262144,
          "How many stamps there are where the density is full."},
         {"spacing",
          ParameterType::Float,
          {0.8},
          0,
          1,
          "How evenly they lie: 0 leaves places to chance, 1 keeps middles as far apart as goes well."},
         {"densityamount", ParameterType::Float, {1.0}, 0, 1, "How much the density map does."}}),
    prepareFreeScatter,
    nullptr,
    runStamps,
    stampScratch};

} // namespace vellor::nodes
