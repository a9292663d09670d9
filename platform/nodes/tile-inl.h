// Tiles of a result, and the places in a picture that their pixels come from, for the instruction set that is
// being compiled. resampling-inl.h says what for.

#if defined(VELLOR_NODES_TILE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_TILE_INL_H
#undef VELLOR_NODES_TILE_INL_H
#else
#define VELLOR_NODES_TILE_INL_H
#endif

#include "platform/nodes/resampling.h"
#include "platform/nodes/simd.h"

#include <hwy/cache_control.h>

#include <algorithm>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

constexpr int kTileWidth = 64, kTileHeight = 64;

/// Distances right and down, in pixels.
struct Spot
{
    F x, y;
};

/// Places of the pixels of a tile: rows y to y + height - 1, columns x to x + width - 1 of the result, and up
/// to a whole vector beyond.
struct Tile
{
    int x = 0, y = 0, width = 0, height = 0;
    std::array<int, kTileHeight> anchorX{}, anchorY{};
    alignas(64) std::array<float, kTileWidth * kTileHeight> placeX, placeY;
    Box box; // of the pixels that the places lie in
    // Where they are known: which columns from spansFrom on the places lie in, for the rows of the box.
    const Span* spans = nullptr;
    int spansFrom = 0;

    /// Takes the places from place(i, row): those of columns x + i on, from the anchors.
    template<class Place> HWY_INLINE void locate(const Place& place)
    {
        spans = nullptr;
        box = {1 << 30, 1 << 30, -(1 << 30), -(1 << 30)};
        for (int row = 0; row < height; ++row) {
            F lowX(kFurthest), highX(-kFurthest), lowY(kFurthest), highY(-kFurthest);
            for (int i = 0; i < width; i += kLanes) {
                const Spot spot = place(i, row);
                // No number fails the comparison, like what is too far away to be told apart from its like.
                const F dx = choose(absOf(spot.x) < F(kFurthest), spot.x, F(0.0f));
                const F dy = choose(absOf(spot.y) < F(kFurthest), spot.y, F(0.0f));
                store(dx, placeX.data() + row * kTileWidth + i);
                store(dy, placeY.data() + row * kTileWidth + i);
                lowX = minOf(lowX, dx);
                highX = maxOf(highX, dx);
                lowY = minOf(lowY, dy);
                highY = maxOf(highY, dy);
            }
            box.left = std::min(box.left, anchorX[row] + lowestOf(lowX));
            box.right = std::max(box.right, anchorX[row] - lowestOf(-highX) + 1);
            box.top = std::min(box.top, anchorY[row] + lowestOf(lowY));
            box.bottom = std::max(box.bottom, anchorY[row] - lowestOf(-highY) + 1);
        }
    }

private:
    static constexpr float kFurthest = 4194304.0f;

    static HWY_INLINE int lowestOf(F a)
    {
        const FloatTag tag;
        return static_cast<int>(std::floor(hn::GetLane(hn::MinOfLanes(tag, a.v))));
    }
};

/// Calls work(tile) for the tiles of a band, anchored at their own pixels. Columns of tiles start at the same
/// places in every band. Tiles share the band's rows evenly: what a low tile's places cover is many times as
/// large as the tile.
template<class Work> HWY_INLINE void forEachTile(const AreaJob& job, const Work& work)
{
    Tile tile;
    const int rows = job.y1 - job.y0, layers = (rows + kTileHeight - 1) / kTileHeight;
    for (int layer = 0; layer < layers; ++layer) {
        tile.y = job.y0 + rows * layer / layers;
        tile.height = job.y0 + rows * (layer + 1) / layers - tile.y;
        for (tile.x = 0; tile.x < job.result.width; tile.x += kTileWidth) {
            tile.width = std::min(kTileWidth, job.result.width - tile.x);
            for (int row = 0; row < tile.height; ++row) {
                tile.anchorX[row] = tile.x;
                tile.anchorY[row] = tile.y + row;
            }
            work(tile);
        }
    }
}

/// Writes a band of a result by vectors of a tile. Results that no cache holds go past the caches, which
/// saves reading the lines that they fill.
class TileWriter
{
public:
    explicit TileWriter(const MutableImage& result) : m_result(result), m_past(goesPastCaches(result)) {}
    TileWriter(const TileWriter&) = delete;
    TileWriter& operator=(const TileWriter&) = delete;
    ~TileWriter()
    {
        if (m_past)
            hwy::FlushStream(); // before other threads are told
    }

    HWY_INLINE void put(const Tile& tile, int channel, int i, int row, F value) const
    {
        float* to = rowOf(m_result, channel, tile.y + row) + tile.x + i;
        if (m_past)
            hn::Stream(value.v, FloatTag(), to);
        else
            store(value, to);
    }

private:
    const MutableImage& m_result;
    bool m_past;
};

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
