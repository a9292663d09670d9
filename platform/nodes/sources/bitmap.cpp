#include "platform/nodes/kinds.h"
#include "platform/nodes/pictureblob.h"
#include "platform/nodes/rows.h"

#include <cmath>

namespace vellor::nodes {
namespace {

/// What each pixel of the result takes along one axis: neighbours from `first` on, which may lie beyond the
/// edges and go around, by weights that add up to 1.
class Axis
{
public:
    Axis() = default;
    Axis(int from, int to)
    {
        m_taps = to > from ? 4 : (from + to - 1) / to + 1;
        for (int i = 0; i < to; ++i)
            to > from ? interpolate(i, from, to) : average(i, from, to);
    }

    int taps() const { return m_taps; }
    int first(int i) const { return m_first[i]; }
    const float* weights(int i) const { return &m_weights[static_cast<std::size_t>(i) * m_taps]; }

private:
    /// The cubic through the neighbours of E. Catmull and R. Rom (1974).
    void interpolate(int i, int from, int to)
    {
        const double position = (i + 0.5) * from / to - 0.5, left = std::floor(position), t = position - left;
        m_first.push_back(static_cast<int>(left) - 1);
        for (const double weight :
             {((2 - t) * t - 1) * t, (3 * t - 5) * t * t + 2, ((4 - 3 * t) * t + 1) * t, (t - 1) * t * t})
            m_weights.push_back(static_cast<float>(weight / 2));
    }

    /// The mean of what the pixel covers.
    void average(int i, int from, int to)
    {
        const double begin = static_cast<double>(i) * from / to, end = (i + 1.0) * from / to;
        const int first = static_cast<int>(begin);
        m_first.push_back(first);
        for (int k = 0; k < m_taps; ++k) {
            const double covered =
                std::min(end, first + k + 1.0) - std::max(begin, static_cast<double>(first + k));
            m_weights.push_back(static_cast<float>(std::max(covered, 0.0) / (end - begin)));
        }
    }

    int m_taps = 1;
    std::vector<int> m_first;
    std::vector<float> m_weights;
};

struct BitmapState : State
{
    PictureBlob picture;
    Axis across, down;
    std::array<float, kMaxChannels> fallback{};
};

/// Column x of the picture, which may lie beyond its edges, in the rows that the result's row y takes
/// together.
float columnOf(const BitmapState& state, int x, int y, int channel)
{
    const PictureBlob& picture = state.picture;
    const float* weights = state.down.weights(y);
    float sum = 0.0f;
    for (int k = 0; k < state.down.taps(); ++k)
        sum += weights[k] * picture.at(wrapped(x, picture.width),
                                       wrapped(state.down.first(y) + k, picture.height), channel);
    return sum;
}

void readChannel(const BitmapState& state, const RowJob& job, int channel, float* result)
{
    const Axis& across = state.across;
    const int begin = across.first(job.x), end = across.first(job.x + job.count - 1) + across.taps();
    std::vector<float> row(static_cast<std::size_t>(end - begin));
    for (int x = begin; x < end && !job.stopped(); ++x)
        row[x - begin] = columnOf(state, x, job.y, channel);
    for (int i = 0; i < job.count; ++i) {
        const float* const from = &row[across.first(job.x + i) - begin];
        const float* const weights = across.weights(job.x + i);
        float sum = 0.0f;
        for (int k = 0; k < across.taps(); ++k)
            sum += weights[k] * from[k];
        result[i] = sum;
    }
}

void bitmapRow(const RowJob& job)
{
    const auto& state = static_cast<const BitmapState&>(*job.state);
    if (!state.picture.pixels) {
        for (int c = 0; c < job.channels; ++c)
            std::fill_n(job.result[c], job.count, state.fallback[c]);
    } else if (state.picture.channels == job.channels) {
        for (int c = 0; c < job.channels; ++c)
            readChannel(state, job, c, job.result[c]);
    } else if (job.channels > 1) {
        readChannel(state, job, 0, job.result[0]);
        std::copy_n(job.result[0], job.count, job.result[1]);
        std::copy_n(job.result[0], job.count, job.result[2]);
        std::fill_n(job.result[3], job.count, 1.0f);
    } else {
        constexpr float kLuminance[] = {0.2126f, 0.7152f, 0.0722f}; // ITU-R BT.709
        std::vector<float> channel(static_cast<std::size_t>(job.count));
        std::fill_n(job.result[0], job.count, 0.0f);
        for (int c = 0; c < 3; ++c) {
            readChannel(state, job, c, channel.data());
            for (int i = 0; i < job.count; ++i)
                job.result[0][i] += kLuminance[c] * channel[i];
        }
    }
}

std::unique_ptr<State> prepareBitmap(const Setup& setup)
{
    auto state = std::make_unique<BitmapState>();
    state->picture = PictureBlob::read(setup.parameters[0].blob, setup.parameters[0].blobSize);
    if (state->picture.pixels) {
        state->across = Axis(state->picture.width, setup.width);
        state->down = Axis(state->picture.height, setup.height);
    }
    state->fallback = setup.parameters[1].f;
    return state;
}

} // namespace

const NodeDeclaration bitmapNode{
    "bitmap",
    "Bitmap",
    "Sources",
    "A picture that is part of the package, stretched over the result: the mean of what a pixel covers where "
    "it is made smaller, a cubic after E. Catmull and R. Rom (1974) between its pixels where it is made "
    "larger.",
    ResultChannels::Chosen,
    Chance::None,
    {},
    {{"picture",
      ParameterType::Picture,
      {},
      0,
      1,
      "A PNG file of 8 or 16 bits, named by the attribute `file` and packed when the package is cooked."},
     {"default", ParameterType::Float4, {0, 0, 0, 0}, 0, 1, "The colour where there is no picture."}},
    prepareBitmap,
    bitmapRow};

} // namespace vellor::nodes
