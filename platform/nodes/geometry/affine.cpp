#include "platform/nodes/geometry/affine.h"

#include "platform/nodes/parameters.h"
#include "platform/nodes/scalar.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/affine.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/resampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// The mean of the pixels that each pixel of the result takes the place of: one or two in each direction.
void halve(const ImageView& source, const MutableImage& result, int y0, int y1)
{
    const int stepX = source.width / result.width, stepY = source.height / result.height;
    const FloatTag tag;
    for (int c = 0; c < result.channels; ++c) {
        for (int y = y0; y < y1; ++y) {
            const float *upper = rowOf(source, c, stepY * y),
                        *lower = rowOf(source, c, stepY * y + stepY - 1);
            float* to = rowOf(result, c, y);
            int x = 0;
            for (; stepX == 2 && x + kLanes <= result.width; x += kLanes) {
                F a, b, p, q;
                hn::LoadInterleaved2(tag, upper + 2 * x, a.v, b.v);
                hn::LoadInterleaved2(tag, lower + 2 * x, p.v, q.v);
                store(((a + b) + (p + q)) * F(0.25f), to + x);
            }
            for (; x < result.width; ++x) {
                const int first = stepX * x, second = first + stepX - 1;
                to[x] = ((upper[first] + upper[second]) + (lower[first] + lower[second])) * 0.25f;
            }
        }
    }
}

/// The parallelogram that the places of a tile lie in, as spans of columns. Tiles of one size share it.
class TileShape
{
public:
    /// For a tile whose places are known and have gone around nowhere.
    void giveSpans(const AffineMap& map, Tile& tile)
    {
        const int width = (tile.width + kLanes - 1) / kLanes * kLanes;
        if (width != m_width || tile.height != m_height)
            shape(map, width, tile.height);
        const int first = tile.box.top - tile.anchorY[0] - m_top;
        if (first < 0 || first + tile.box.height() > static_cast<int>(m_spans.size()))
            return;
        tile.spans = m_spans.data() + first;
        tile.spansFrom = tile.anchorX[0];
    }

private:
    static constexpr double kMostRows = 4096.0;

    void shape(const AffineMap& map, int width, int height)
    {
        m_width = width;
        m_height = height;
        m_spans.clear();
        const double acrossX = map.xx * (width - 1), acrossY = map.yx * (width - 1);
        const double downX = map.xy * (height - 1), downY = map.yy * (height - 1);
        const double high = std::max(acrossY, 0.0) + std::max(downY, 0.0);
        const double low = std::min(acrossY, 0.0) + std::min(downY, 0.0);
        if (!(high - low < kMostRows))
            return;
        m_top = static_cast<int>(std::floor(low)) - 1;
        m_spans.resize(static_cast<std::size_t>(static_cast<int>(std::floor(high)) + 3 - m_top),
                       {1 << 30, -(1 << 30)});
        addEdge(0.0, 0.0, acrossX, acrossY);
        addEdge(downX, downY, acrossX, acrossY);
        addEdge(0.0, 0.0, downX, downY);
        addEdge(acrossX, acrossY, downX, downY);
    }

    /// Widens the spans by an edge from (x, y) on. Tiles start up to a pixel further right and down.
    void addEdge(double x, double y, double dx, double dy)
    {
        constexpr double kInexact = 0.01;
        for (int row = 0; row < static_cast<int>(m_spans.size()); ++row) {
            const double upper = m_top + row - 1 - kInexact, lower = m_top + row + 1 + kInexact;
            if (std::max(y, y + dy) < upper || std::min(y, y + dy) > lower)
                continue;
            double from = x, to = x + dx;
            if (std::fabs(dy) > kInexact) {
                const double t = (upper - y) / dy, u = (lower - y) / dy;
                from = x + dx * std::clamp(std::min(t, u), 0.0, 1.0);
                to = x + dx * std::clamp(std::max(t, u), 0.0, 1.0);
            }
            Span& span = m_spans[row];
            span.left = std::min(span.left, static_cast<int>(std::floor(std::min(from, to) - kInexact)));
            span.right =
                std::max(span.right, static_cast<int>(std::floor(std::max(from, to) + kInexact)) + 2);
        }
    }

    int m_width = 0, m_height = 0, m_top = 0;
    std::vector<Span> m_spans; // of rows from m_top on; both from the first place of a tile
};

/// Where the rows of a tile start, and how places go on from there, in one level of the pyramid.
class AffineRows
{
public:
    AffineRows(const AffinePlan& plan, const ImageView& level, double aside)
        : m_map(plan.map), m_edges(plan.reading.edges), m_width(level.width), m_height(level.height)
    {
        const double scaleX = double(level.width) / plan.width, scaleY = double(level.height) / plan.height;
        m_map.x0 = (m_map.x0 + aside * plan.stepX + 0.5) * scaleX - 0.5;
        m_map.y0 = (m_map.y0 + aside * plan.stepY + 0.5) * scaleY - 0.5;
        m_map.xx *= scaleX;
        m_map.xy *= scaleX;
        m_map.yx *= scaleY;
        m_map.yy *= scaleY;
    }

    HWY_INLINE void locate(Tile& tile)
    {
        std::array<float, kTileHeight> restX, restY;
        bool near = true;
        for (int row = 0; row < tile.height; ++row) {
            const double y = tile.y + row;
            const double placeX = m_map.xx * tile.x + m_map.xy * y + m_map.x0;
            const double placeY = m_map.yx * tile.x + m_map.yy * y + m_map.y0;
            near = near && std::fabs(placeX) < kFar && std::fabs(placeY) < kFar;
            restX[row] = anchor(placeX, m_width, tile.anchorX[row]);
            restY[row] = anchor(placeY, m_height, tile.anchorY[row]);
        }
        const F stepX(static_cast<float>(m_map.xx)), stepY(static_cast<float>(m_map.yx));
        tile.locate([&](int i, int row) {
            const F column = countFrom(static_cast<float>(i));
            return Spot{column * stepX + F(restX[row]), column * stepY + F(restY[row])};
        });
        if (near)
            m_shape.giveSpans(m_map, tile);
    }

private:
    /// The whole part of a place, held near the picture without a change to what stands there, and the rest.
    float anchor(double place, int size, int& whole) const
    {
        if (!(std::fabs(place) < kFar))
            place = m_edges == Edges::None ? std::clamp(place, -kFar, kFar)
                                           : place - std::floor(place / (2.0 * size)) * (2.0 * size);
        const double low = std::floor(place);
        whole = static_cast<int>(low);
        return static_cast<float>(place - low);
    }

    static constexpr double kFar = 1e6;

    AffineMap m_map;
    Edges m_edges;
    int m_width, m_height;
    TileShape m_shape;
};

void copyShifted(const AffinePlan& plan, const AreaJob& job)
{
    const int dx = static_cast<int>(plan.map.x0), dy = static_cast<int>(plan.map.y0);
    for (int c = 0; c < job.result.channels; ++c)
        for (int y = job.y0; y < job.y1; ++y)
            copyWrapped(rowOf(job.operands[0], c, y + dy), plan.width, dx, plan.width,
                        rowOf(job.result, c, y));
}

void readOnce(const AffinePlan& plan, const AreaJob& job)
{
    AffineRows rows(plan, job.operands[0], 0.0);
    TileReader reader(job.operands[0], plan.reading);
    const TileWriter writer(job.result);
    forEachTile(job, [&](Tile& tile) {
        rows.locate(tile);
        reader.read(tile, [&](int c, int i, int row, F value) { writer.put(tile, c, i, row, value); });
    });
}

/// Adds up samples of two levels for a tile.
class Averager
{
public:
    Averager(const AffinePlan& plan, const AreaJob& job) : m_plan(plan), m_job(job)
    {
        addLevel(plan.levels, plan.levels > 0 ? plan.blend : 1.0f);
        if (plan.levels > 0)
            addLevel(plan.levels - 1, 1.0f - plan.blend);
        for (auto& sums : m_sums)
            sums.resize(kTileWidth * kTileHeight);
    }

    HWY_INLINE void work(Tile& tile)
    {
        for (auto& sums : m_sums)
            std::fill(sums.begin(), sums.end(), 0.0f);
        for (Source& source : m_sources) {
            for (AffineRows& rows : source.samples) {
                rows.locate(tile);
                const F weight(source.weight);
                source.reader.read(tile, [&](int c, int i, int row, F value) {
                    float* sum = m_sums[c].data() + row * kTileWidth + i;
                    storeAt(loadAt(sum) + value * weight, sum);
                });
            }
        }
        for (int c = 0; c < m_job.result.channels; ++c)
            for (int row = 0; row < tile.height; ++row)
                std::copy_n(m_sums[c].data() + row * kTileWidth, tile.width,
                            rowOf(m_job.result, c, tile.y + row) + tile.x);
    }

private:
    struct Source
    {
        TileReader reader;
        std::vector<AffineRows> samples;
        float weight;
    };

    void addLevel(int level, float weight)
    {
        if (!(weight > 0.0f))
            return;
        const ImageView& image = level > 0 ? m_job.scratch[level - 1] : m_job.operands[0];
        Source source{TileReader(image, m_plan.reading), {}, weight / static_cast<float>(m_plan.samples)};
        for (int s = 0; s < m_plan.samples; ++s)
            source.samples.emplace_back(m_plan, image, s - 0.5 * (m_plan.samples - 1));
        m_sources.push_back(std::move(source));
    }

    const AffinePlan& m_plan;
    const AreaJob& m_job;
    std::vector<Source> m_sources;
    std::array<std::vector<float>, kMaxChannels> m_sums;
};

void affineRun(const AffinePlan& plan, const AreaJob& job)
{
    if (job.pass < plan.levels)
        return halve(job.pass == 0 ? job.operands[0] : job.scratch[job.pass - 1], job.result, job.y0, job.y1);
    if (plan.shift)
        return copyShifted(plan, job);
    if (plan.levels == 0 && plan.samples == 1)
        return readOnce(plan, job);
    Averager averager(plan, job);
    forEachTile(job, [&](Tile& tile) { averager.work(tile); });
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(affineRun);

namespace {

int halvedSize(int size, int level)
{
    for (; level > 0 && size % 2 == 0; --level)
        size /= 2;
    return size;
}

/// A place that is off a whole pixel by no more than parameters' precision is meant to be whole.
double wholeWhereMeant(double place)
{
    const double whole = std::floor(place + 0.5);
    return std::fabs(place - whole) < 1.0 / 1024.0 ? whole : place;
}

/// Chooses level and samples for the source pixels that a result pixel covers.
void planAverage(AffinePlan& plan)
{
    constexpr float kMostSamples = 16.0f;
    const auto lengthOf = [](double x, double y) {
        return scalar::sqrtOf(static_cast<float>(std::min(x * x + y * y, 1e30)));
    };
    const float across = lengthOf(plan.map.xx, plan.map.yx), down = lengthOf(plan.map.xy, plan.map.yy);
    const float longer = std::max(across, down);
    const float shorter = std::max(std::min(across, down), longer / kMostSamples);
    plan.samples =
        held(static_cast<int>(longer / std::max(shorter, 1.0f) + 0.99f), 1, static_cast<int>(kMostSamples));
    plan.stepX = (across >= down ? plan.map.xx : plan.map.xy) / plan.samples;
    plan.stepY = (across >= down ? plan.map.yx : plan.map.yy) / plan.samples;
    const float level = shorter > 1.0f ? scalar::log2Of(shorter) : 0.0f;
    while (static_cast<float>(plan.levels) < level &&
           (halvedSize(plan.width, plan.levels) % 2 == 0 || halvedSize(plan.height, plan.levels) % 2 == 0))
        ++plan.levels;
    plan.blend = plan.levels > 0 ? held(level - static_cast<float>(plan.levels - 1), 0.0f, 1.0f) : 0.0f;
}

} // namespace

AffinePlan planAffine(const AffineMap& map, const Reading& reading, bool averaged, int width, int height)
{
    AffinePlan plan;
    plan.map = map;
    plan.reading = reading;
    plan.width = width;
    plan.height = height;
    plan.map.x0 = wholeWhereMeant(map.x0);
    plan.map.y0 = wholeWhereMeant(map.y0);
    plan.shift = map.xx == 1.0 && map.xy == 0.0 && map.yx == 0.0 && map.yy == 1.0 &&
                 plan.map.x0 == std::floor(plan.map.x0) && plan.map.y0 == std::floor(plan.map.y0) &&
                 std::fabs(plan.map.x0) < 1e8 && std::fabs(plan.map.y0) < 1e8 &&
                 reading.edges == Edges::Repeat;
    if (averaged && !plan.shift)
        planAverage(plan);
    if (plan.levels > 0 || plan.samples > 1)
        plan.reading.filter = PixelFilter::Bilinear;
    return plan;
}

std::vector<ScratchShape> affineScratch(const AffinePlan& plan, int channels)
{
    std::vector<ScratchShape> shapes;
    for (int i = 1; i <= plan.levels; ++i)
        shapes.push_back({halvedSize(plan.width, i), halvedSize(plan.height, i), channels});
    return shapes;
}

void runAffine(const AffinePlan& plan, const AreaJob& job)
{
    HWY_DYNAMIC_DISPATCH(affineRun)(plan, job);
}

} // namespace vellor::nodes
#endif
