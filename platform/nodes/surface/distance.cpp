#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

// Exact Euclidean distances after P. Felzenszwalb and D. Huttenlocher (2012): rows first give each pixel its
// distance along the row; then, for each column, the lower envelope of parabolas over those gives the
// distance in the plane. Columns are worked through as rows of a turned picture. Two turns of a column stand
// for its wrapping around.

namespace vellor::nodes {
namespace {

enum class DistanceSide
{
    Outside,
    Inside
};

struct DistanceState : State
{
    float threshold = 0.5f, inverseRadius = 1.0f; // per pixel
    DistanceSide side = DistanceSide::Outside;
};

constexpr float kFar = 1e6f; // pixels; its square still has room for the squares of places

std::unique_ptr<State> prepareDistance(const Setup& setup)
{
    auto state = std::make_unique<DistanceState>();
    const float radius = held(setup.parameters[0].f[0], 0.0f, 4.0f) * static_cast<float>(setup.width);
    state->inverseRadius = 1.0f / std::max(radius, 1e-3f);
    state->threshold = setup.parameters[1].f[0];
    state->side = static_cast<DistanceSide>(held(setup.parameters[2].i[0], 0, 1));
    return state;
}

std::vector<ScratchShape> distanceScratch(const State*, const Setup& setup)
{
    return {{setup.width, setup.height, 1}, {setup.height, setup.width, 1}};
}

/// Distance along the row to the nearest pixel of the mask, or kFar.
void distanceAlong(const DistanceState& state, const float* mask, int width, float* result)
{
    const auto isSite = [&](int x) {
        return (mask[x] >= state.threshold) == (state.side == DistanceSide::Outside);
    };
    float distance = kFar;
    for (int i = -width; i < width; ++i) { // once around to know what lies behind the first pixel
        const int x = i < 0 ? i + width : i;
        distance = isSite(x) ? 0.0f : std::min(distance + 1.0f, kFar);
        result[x] = distance;
    }
    distance = kFar;
    for (int i = 2 * width - 1; i >= 0; --i) {
        const int x = i % width;
        distance = isSite(x) ? 0.0f : std::min(distance + 1.0f, kFar);
        result[x] = std::min(result[x], distance);
    }
}

/// The lower envelope of the parabolas (y - q)^2 + along(q)^2 over all places q of a column, taken twice
/// around.
class Envelope
{
public:
    explicit Envelope(int height) : m_places(2 * height), m_starts(2 * height + 1) {}

    void build(const float* along, int height)
    {
        m_count = 0;
        for (int i = 0; i < 2 * height; ++i) {
            const float own = along[(i + height / 2) % height];
            if (own >= kFar)
                continue;
            const int place = i - height / 2;
            const double rise = double(own) * own + double(place) * place;
            double start = -1e30;
            while (m_count > 0) {
                const Place& top = m_places[m_count - 1];
                start = (rise - top.rise) / (2.0 * (place - top.y));
                if (start > m_starts[m_count - 1])
                    break;
                --m_count;
                start = -1e30;
            }
            m_places[m_count] = {place, double(own) * own, rise};
            m_starts[m_count++] = start;
        }
        m_starts[m_count] = 1e30;
    }

    bool empty() const { return m_count == 0; }

    /// The distances at 0, 1, ... height - 1.
    void read(int height, float* distances) const
    {
        int k = 0;
        for (int y = 0; y < height; ++y) {
            while (m_starts[k + 1] < y)
                ++k;
            const double dy = y - m_places[k].y;
            distances[y] = scalar::sqrtOf(static_cast<float>(dy * dy + m_places[k].square));
        }
    }

private:
    struct Place
    {
        int y = 0;
        double square = 0.0, rise = 0.0;
    };
    std::vector<Place> m_places;
    std::vector<double> m_starts;
    int m_count = 0;
};

/// Columns y0 to y1 - 1 of the distances along rows, as rows of the result. Reads several columns at once.
void distanceAcross(const ImageView& along, const MutableImage& result, int y0, int y1)
{
    constexpr int kColumns = 16;
    const int height = along.height;
    Envelope envelope(height);
    std::vector<float> columns(std::size_t(height) * kColumns);
    for (int first = y0; first < y1; first += kColumns) {
        const int count = std::min(kColumns, y1 - first);
        for (int y = 0; y < height; ++y)
            for (int c = 0; c < count; ++c)
                columns[std::size_t(c) * height + y] = rowOf(along, 0, y)[first + c];
        for (int c = 0; c < count; ++c) {
            float* distances = rowOf(result, 0, first + c);
            envelope.build(columns.data() + std::size_t(c) * height, height);
            if (envelope.empty())
                std::fill_n(distances, height, kFar);
            else
                envelope.read(height, distances);
        }
    }
}

void distanceArea(const AreaJob& job)
{
    const auto& state = static_cast<const DistanceState&>(*job.state);
    if (job.pass == 1)
        return distanceAcross(job.scratch[0], job.result, job.y0, job.y1);
    for (int y = job.y0; y < job.y1; ++y) {
        float* result = rowOf(job.result, 0, y);
        if (job.pass == 0) {
            distanceAlong(state, rowOf(job.operands[0], 0, y), job.result.width, result);
            continue;
        }
        const ImageView& turned = job.scratch[1];
        const float sign = state.side == DistanceSide::Outside ? -1.0f : 1.0f;
        const float base = state.side == DistanceSide::Outside ? 1.0f : 0.0f;
        for (int x = 0; x < job.result.width; ++x)
            result[x] = held(base + sign * rowOf(turned, 0, x)[y] * state.inverseRadius, 0.0f, 1.0f);
    }
}

} // namespace

const NodeDeclaration distanceNode{
    "distance",
    "Distance",
    "Surface",
    "Exact distance from the shapes of a mask, by the method of P. Felzenszwalb and D. Huttenlocher. "
    "Outside, white falls to "
    "black away from the shapes; inside, black rises to white from their edges. Wraps around.",
    ResultChannels::Grey,
    Chance::None,
    {{"mask", OperandChannels::Grey, true, "The mask."}},
    {{"radius",
      ParameterType::Float,
      {0.1},
      0,
      1,
      "The distance over which the value goes through its range, in shares of the picture's width."},
     {"threshold", ParameterType::Float, {0.5}, 0, 1, "From which value on a pixel belongs to the shapes."},
     {"side",
      ParameterType::Choice,
      {0},
      0,
      1,
      "Which side of the edges is measured.",
      {"outside", "inside"}}},
    prepareDistance,
    nullptr,
    distanceArea,
    distanceScratch};

} // namespace vellor::nodes
