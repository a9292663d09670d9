#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"

// Every pixel of the result is a mixture of up to four copies of the picture, moved by whole pixels so that
// none shows its border where it counts. A plain mixture is duller than the picture: the deviations from the
// mean are raised by what their mixture loses. For values that are spread like a Gaussian this keeps the
// histogram, so the full method makes them so, mixes, and goes back (E. Heitz and F. Neyret 2018).
//
// Passes: the least, greatest and mean value of each row; histograms of slices of the picture; tables to the
// Gaussian and back; the result. Plainer mixtures leave out what they don't need.

#ifndef VELLOR_MAKETILEABLE_STATE
#define VELLOR_MAKETILEABLE_STATE
namespace vellor::nodes {
namespace {

enum class TilingMethod
{
    Borders, // the picture, mixed with itself half a picture on at its borders
    Patches  // pieces from anywhere, mixed where they meet
};

enum class Mixture
{
    Linear,
    Variance,
    Histogram
};

constexpr int kSlices = 64, kBins = 1024;
constexpr int kScores = 2048;         // steps of the table back
constexpr float kHighestScore = 4.0f; // standard deviations
constexpr int kForward = kBins, kBack = kScores + 1;

/// Pixels along one axis in which the same copies are mixed.
struct Run
{
    int start = 0, end = 0;
};

struct MakeTileableState : State
{
    Mixture mixture = Mixture::Linear;
    std::vector<float> weightX, weightY; // of the second copy, by pixel; room for a vector more
    std::vector<Run> runsX, runsY;
    // Where the four copies are taken from, in pixels: first and second across, then the lower two.
    struct Moves
    {
        std::array<int, 4> x{}, y{};
    };
    std::vector<Moves> moves; // of run i across and j down: j * runsX.size() + i
    std::vector<float> below; // the standard Gaussian's integral at the places of the table back

    int passes() const { return mixture == Mixture::Linear ? 0 : mixture == Mixture::Variance ? 1 : 3; }
};

/// What a channel's values span.
struct Span
{
    float low = 0.0f, high = 0.0f, mean = 0.0f;
};

inline Span spanOf(const ImageView& rows, int channel)
{
    Span span{rowOf(rows, channel, 0)[0], rowOf(rows, channel, 0)[1], 0.0f};
    double sum = 0.0;
    for (int y = 0; y < rows.height; ++y) {
        const float* row = rowOf(rows, channel, y);
        span.low = std::min(span.low, row[0]);
        span.high = std::max(span.high, row[1]);
        sum += row[2];
    }
    span.mean = static_cast<float>(sum / rows.height);
    return span;
}

/// From a value to its place in the histogram.
inline float binsOver(const Span& span)
{
    const float range = span.high - span.low;
    return range > 1e-20f ? static_cast<float>(kBins) / range : 0.0f;
}

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/geometry/maketileable.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// table[place], between its numbers; place from 0 to the last.
HWY_INLINE F tableAt(const float* table, F place, int last)
{
    const F at = clampOf(place, F(0.0f), F(static_cast<float>(last)));
    const F low = minOf(floorOf(at), F(static_cast<float>(last - 1)));
    const U index = toInteger(low);
    return lerpOf(gather(table, index), gather(table, index + U(1u)), at - low);
}

/// A channel's way of mixing.
struct Mixer
{
    Mixture mixture = Mixture::Linear;
    Span span;
    float bins = 0.0f;
    const float *forward = nullptr, *back = nullptr;

    HWY_INLINE F begin(F value) const
    {
        if (mixture == Mixture::Variance)
            return value - F(span.mean);
        if (mixture == Mixture::Histogram)
            return tableAt(forward, (value - F(span.low)) * F(bins) - F(0.5f), kForward - 1);
        return value;
    }

    HWY_INLINE F end(F mixed) const
    {
        if (mixture == Mixture::Variance)
            return clampOf(mixed + F(span.mean), F(span.low), F(span.high));
        if (mixture == Mixture::Histogram)
            return tableAt(back, (mixed + F(kHighestScore)) * F(0.5f * kScores / kHighestScore), kScores);
        return mixed;
    }
};

void mixChunk(const Mixer& mixer, const float (*copies)[kChunk + 16], const float* across, float down,
              int count, float* result)
{
    const F d(down), u(1.0f - down);
    for (int i = 0; i < count; i += kLanes) {
        const F r = loadAt(across + i), l = F(1.0f) - r;
        const F weights[4] = {l * u, r * u, l * d, r * d};
        F sum(0.0f), squares(0.0f);
        for (int k = 0; k < 4; ++k) {
            sum += mixer.begin(loadAt(copies[k] + i)) * weights[k];
            squares += weights[k] * weights[k];
        }
        if (mixer.mixture != Mixture::Linear)
            sum = sum / sqrtOf(squares);
        storeAt(mixer.end(sum), result + i);
    }
}

void makeTileableRow(const MakeTileableState& state, const AreaJob& job, const Mixer& mixer, int channel,
                     std::size_t down, int y)
{
    float copies[4][kChunk + 16], mixed[kChunk + 16];
    for (std::size_t i = 0; i < state.runsX.size(); ++i) {
        const MakeTileableState::Moves& moves = state.moves[down * state.runsX.size() + i];
        for (int x = state.runsX[i].start; x < state.runsX[i].end; x += kChunk) {
            const int count = std::min(kChunk, state.runsX[i].end - x);
            for (int k = 0; k < 4; ++k)
                copyWrapped(rowOf(job.operands[0], channel, y + moves.y[k]), job.result.width, x + moves.x[k],
                            count, copies[k]);
            mixChunk(mixer, copies, state.weightX.data() + x, state.weightY[y], count, mixed);
            std::copy_n(mixed, count, rowOf(job.result, channel, y) + x);
        }
    }
}

void makeTileableRows(const AreaJob& job)
{
    const auto& state = static_cast<const MakeTileableState&>(*job.state);
    for (int c = 0; c < job.result.channels; ++c) {
        Mixer mixer;
        mixer.mixture = state.mixture;
        if (state.mixture != Mixture::Linear)
            mixer.span = spanOf(job.scratch[0], c);
        if (state.mixture == Mixture::Histogram) {
            mixer.bins = binsOver(mixer.span);
            mixer.forward = rowOf(job.scratch[2], c, 0);
            mixer.back = mixer.forward + kForward;
        }
        std::size_t down = 0;
        for (int y = job.y0; y < job.y1 && !job.stopped(); ++y) {
            while (y >= state.runsY[down].end)
                ++down;
            makeTileableRow(state, job, mixer, c, down, y);
        }
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(makeTileableRows);

namespace {

float smoothOf(float t)
{
    return scalar::smoothstepOf(0.0f, 1.0f, t);
}

/// One run for each piece, weights rising from the first copy to the second over `width` of a piece.
void planPieces(int size, int pieces, float width, std::vector<Run>& runs, std::vector<float>& weights)
{
    weights.assign(std::size_t(size) + 16, 0.0f);
    for (int i = 0; i < pieces; ++i) {
        const Run run{static_cast<int>(std::int64_t(i) * size / pieces),
                      static_cast<int>(std::int64_t(i + 1) * size / pieces)};
        runs.push_back(run);
        for (int x = run.start; x < run.end; ++x) {
            const float place =
                (static_cast<float>(x - run.start) + 0.5f) / static_cast<float>(run.end - run.start);
            weights[x] = smoothOf((place - 0.5f) / width + 0.5f);
        }
    }
}

/// One run, weights of the moved copy falling from 1 at the borders to 0 at `width` of half the size.
void planBorders(int size, float width, std::vector<Run>& runs, std::vector<float>& weights)
{
    weights.assign(std::size_t(size) + 16, 0.0f);
    runs.push_back({0, size});
    const float reach = width * 0.5f * static_cast<float>(size);
    for (int x = 0; x < size; ++x)
        weights[x] = 1.0f - smoothOf(static_cast<float>(std::min(x, size - 1 - x)) / std::max(reach, 1.0f));
}

/// Chooses the piece around each place where four runs meet, clear of the picture's borders.
void choosePatches(MakeTileableState& state, const Setup& setup)
{
    const int across = static_cast<int>(state.runsX.size()), down = static_cast<int>(state.runsY.size());
    const int pieceX = 2 * ((setup.width + across - 1) / across),
              pieceY = 2 * ((setup.height + down - 1) / down);
    const auto startOf = [](scalar::U random, int room) {
        return static_cast<int>(scalar::unitOf(random) * static_cast<float>(std::max(room, 0)));
    };
    for (int j = 0; j < down; ++j) {
        for (int i = 0; i < across; ++i) {
            MakeTileableState::Moves moves;
            for (int k = 0; k < 4; ++k) {
                const int right = k % 2, lower = k / 2;
                const auto place = static_cast<scalar::U>((j + lower) % down * across + (i + right) % across);
                const scalar::U random = scalar::hashLattice(place, 0u, static_cast<scalar::U>(setup.seed));
                // The place where runs meet is in the middle of the piece.
                const int cornerX = (right ? state.runsX[i].end : state.runsX[i].start) - pieceX / 2;
                const int cornerY = (lower ? state.runsY[j].end : state.runsY[j].start) - pieceY / 2;
                moves.x[k] = startOf(random, setup.width - pieceX) - cornerX;
                moves.y[k] = startOf(scalar::nextHash(random), setup.height - pieceY) - cornerY;
            }
            state.moves.push_back(moves);
        }
    }
}

std::unique_ptr<State> prepareMakeTileable(const Setup& setup)
{
    auto state = std::make_unique<MakeTileableState>();
    const ParameterValue* p = setup.parameters;
    const auto method = static_cast<TilingMethod>(held(p[0].i[0], 0, 1));
    state->mixture = static_cast<Mixture>(held(p[1].i[0], 0, 2));
    const float width = held(p[2].f[0], 1e-3f, 1.0f);
    if (method == TilingMethod::Borders) {
        planBorders(setup.width, width, state->runsX, state->weightX);
        planBorders(setup.height, width, state->runsY, state->weightY);
        const int halfX = setup.width / 2, halfY = setup.height / 2;
        state->moves.push_back({{0, halfX, 0, halfX}, {0, 0, halfY, halfY}});
    } else {
        const int across = held(p[3].i[0], 2, 64);
        const auto down = static_cast<int>(std::int64_t(across) * setup.height / setup.width);
        planPieces(setup.width, std::min(across, setup.width), width, state->runsX, state->weightX);
        planPieces(setup.height, std::min(held(down, 2, 1024), setup.height), width, state->runsY,
                   state->weightY);
        choosePatches(*state, setup);
    }
    if (state->mixture == Mixture::Histogram) {
        constexpr double kStep = 2.0 * kHighestScore / kScores;
        double sum = 3.167e-5; // the integral up to -4
        for (int i = 0; i < kBack; ++i) {
            state->below.push_back(static_cast<float>(sum));
            const float middle = static_cast<float>((i + 0.5) * kStep) - kHighestScore;
            sum += kStep * 0.3989422804 * double(scalar::expOf(-0.5f * middle * middle));
        }
    }
    return state;
}

std::vector<ScratchShape> makeTileableScratch(const State* given, const Setup& setup)
{
    const std::vector<ScratchShape> shapes{{3, setup.height, setup.channels},
                                           {kBins, kSlices, setup.channels},
                                           {kForward + kBack, 1, setup.channels}};
    const int passes = static_cast<const MakeTileableState*>(given)->passes();
    return {shapes.begin(), shapes.begin() + passes};
}

void measureRow(const float* row, int width, float* result)
{
    float low = row[0], high = row[0];
    double sum = 0.0;
    for (int x = 0; x < width; ++x) {
        low = std::min(low, row[x]);
        high = std::max(high, row[x]);
        sum += double(row[x]);
    }
    result[0] = low;
    result[1] = high;
    result[2] = static_cast<float>(sum / width);
}

void countSlice(const AreaJob& job, int channel, const Span& span, int slice, float* counts)
{
    const ImageView& image = job.operands[0];
    std::fill_n(counts, kBins, 0.0f);
    const float bins = binsOver(span);
    const auto edge = [&](int s) { return static_cast<int>(std::int64_t(s) * image.height / kSlices); };
    for (int y = edge(slice); y < edge(slice + 1) && !job.stopped(); ++y) {
        const float* row = rowOf(image, channel, y);
        for (int x = 0; x < image.width; ++x)
            counts[static_cast<int>(held((row[x] - span.low) * bins, 0.0f, float(kBins - 1)))] += 1.0f;
    }
}

/// Tables from bins' middles to scores of the standard Gaussian, and from scores to values. A value that many
/// pixels have gets the score of the middle one of them.
void makeTables(const MakeTileableState& state, const ImageView& slices, int channel, const Span& span,
                float* forward, float* back)
{
    std::vector<double> below(kBins + 1, 0.0);
    for (int bin = 0; bin < kBins; ++bin) {
        double count = 0.0;
        for (int slice = 0; slice < kSlices; ++slice)
            count += double(rowOf(slices, channel, slice)[bin]);
        below[bin + 1] = below[bin] + count;
    }
    const double total = std::max(below[kBins], 1.0);
    int score = 0, bin = 0;
    for (int i = 0; i < kForward; ++i) {
        const double middle = 0.5 * (below[i] + below[i + 1]) / total;
        while (score < kScores - 1 && state.below[score + 1] < middle)
            ++score;
        const double step = state.below[score + 1] - state.below[score];
        const double part = std::clamp((middle - state.below[score]) / step, 0.0, 1.0);
        forward[i] = static_cast<float>((score + part) * (2.0 * kHighestScore / kScores)) - kHighestScore;
    }
    for (int i = 0; i < kBack; ++i) {
        const double wanted = state.below[i] * total;
        while (bin < kBins - 1 && below[bin + 1] < wanted)
            ++bin;
        const double count = below[bin + 1] - below[bin];
        const double part = count > 0.0 ? std::clamp((wanted - below[bin]) / count, 0.0, 1.0) : 0.0;
        back[i] = span.low + (span.high - span.low) * static_cast<float>((bin + part) / kBins);
    }
}

void makeTileableArea(const AreaJob& job)
{
    const auto& state = static_cast<const MakeTileableState&>(*job.state);
    if (job.pass == state.passes())
        return HWY_DYNAMIC_DISPATCH(makeTileableRows)(job);
    for (int c = 0; c < job.result.channels; ++c) {
        const Span span = job.pass > 0 ? spanOf(job.scratch[0], c) : Span();
        for (int y = job.y0; y < job.y1 && !job.stopped(); ++y) {
            float* row = rowOf(job.result, c, y);
            if (job.pass == 0)
                measureRow(rowOf(job.operands[0], c, y), job.operands[0].width, row);
            else if (job.pass == 1)
                countSlice(job, c, span, y, row);
            else
                makeTables(state, job.scratch[1], c, span, row, row + kForward);
        }
    }
}

} // namespace

const NodeDeclaration maketileableNode{
    "maketileable",
    "Make Tileable",
    "Geometry",
    "Makes a picture with seams tile: it is mixed with itself at its borders, or put together of pieces of "
    "itself, for photos of sand, grass, rust and the like. The mixture can keep mean and variance or the "
    "whole "
    "histogram of each channel (E. Heitz and F. Neyret).",
    ResultChannels::FromOperands,
    Chance::Seeded,
    {{"input", OperandChannels::Result, true, "The picture that does not tile."}},
    {{"method",
      ParameterType::Choice,
      {0},
      0,
      1,
      "Mixes the picture with itself half a picture on at its borders, or takes patches from random places.",
      {"borders", "patches"}},
     {"blend",
      ParameterType::Choice,
      {2},
      0,
      2,
      "What the mixture keeps. Linear keeps the mean alone and looks dull; variance is for fine textures; "
      "histogram keeps how often each value occurs.",
      {"linear", "variance", "histogram"}},
     {"width",
      ParameterType::Float,
      {0.4},
      0,
      1,
      "How wide the mixture is, in shares of half the picture or of a patch."},
     {"patches", ParameterType::Int, {4}, 2, 32, "How many patches there are across."}},
    prepareMakeTileable,
    nullptr,
    makeTileableArea,
    makeTileableScratch};

} // namespace vellor::nodes
#endif
