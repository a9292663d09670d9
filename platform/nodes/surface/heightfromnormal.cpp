#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"
#include "platform/nodes/parameters.h"
#include "platform/nodes/rows.h"
#include "platform/nodes/scalar.h"
#include "platform/nodes/surface/fourier.h"

// The height whose slopes come nearest to those of the normals, by R. Frankot and R. Chellappa (1988). With
// slopes p and q, transformed together as p + i q, it is
//
//     H = (conj(Dx) P + conj(Dy) Q) / (|Dx|^2 + |Dy|^2 + s L^2),
//
// where Dx and Dy are what the differences that `normal` takes (H. Scharr's) do to a wave and L is what the
// Laplacian does: a little smoothness keeps the finest waves, of which slopes tell nothing, from growing.
//
// Passes: rows forward; columns forward, the quotient for the half of them that a real picture has, and back;
// rows back; the least and the greatest of each row; the result.

#ifndef VELLOR_HEIGHTFROMNORMAL_STATE
#define VELLOR_HEIGHTFROMNORMAL_STATE
namespace vellor::nodes {
namespace {

constexpr float kSmoothness = 1e-4f;
constexpr int kRowsTogether = 16; // lines that are transformed at once, with the widest vectors

struct HeightFromNormalState : State
{
    FourierPlan x, y;
    float slope = 1.0f; // from a slope to the height's difference between neighbouring pixels
    float signY = -2.0f;
    bool stretched = false;
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/surface/heightfromnormal.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/surface/fourier-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// Pixels of one row, spread out as line `lane`.
void spread(const float* row, int count, int lane, float* lines)
{
    for (int i = 0; i < count; ++i)
        lines[std::ptrdiff_t(i) * kLanes + lane] = row[i];
}

void gatherLine(const float* lines, int lane, int count, float* row)
{
    for (int i = 0; i < count; ++i)
        row[i] = lines[std::ptrdiff_t(i) * kLanes + lane];
}

/// Differences of the height between neighbouring pixels, across into p and down into q.
void readSlopes(const HeightFromNormalState& state, const ImageView& normals, int y, float* p, float* q)
{
    const float *red = rowOf(normals, 0, y), *green = rowOf(normals, 1, y), *blue = rowOf(normals, 2, y);
    const F half(0.5f), least(0.01f), most(1000.0f);
    for (int x = 0; x < normals.width; x += kLanes) {
        const F z = maxOf((load(blue + x) - half) * F(2.0f), least);
        const F across = (load(red + x) - half) * F(-2.0f) / z;
        const F down = (load(green + x) - half) * F(state.signY) / z;
        store(clampOf(across, -most, most) * F(state.slope), p + x);
        store(clampOf(down, -most, most) * F(state.slope), q + x);
    }
}

void transformRows(const HeightFromNormalState& state, const AreaJob& job)
{
    FourierLines lines(state.x);
    const int width = job.result.width;
    for (int y = job.y0; y < job.y1 && !job.stopped(); y += kLanes) {
        const int count = std::min(kLanes, job.y1 - y);
        for (int l = 0; l < kLanes; ++l) {
            // The rows of the result are free until the transform is over.
            const int row = y + std::min(l, count - 1);
            readSlopes(state, job.operands[0], row, rowOf(job.result, 0, row), rowOf(job.result, 1, row));
            spread(rowOf(job.result, 0, row), width, l, lines.re());
            spread(rowOf(job.result, 1, row), width, l, lines.im());
        }
        lines.transform();
        for (int l = 0; l < count; ++l) {
            gatherLine(lines.re(), l, width, rowOf(job.result, 0, y + l));
            gatherLine(lines.im(), l, width, rowOf(job.result, 1, y + l));
        }
    }
}

/// Columns of the transformed rows, one to a line.
void readColumns(const ImageView& rows, const int (&columns)[kLanes], FourierLines& lines)
{
    for (int y = 0; y < rows.height; ++y) {
        const float *re = rowOf(rows, 0, y), *im = rowOf(rows, 1, y);
        for (int l = 0; l < kLanes; ++l) {
            lines.re()[std::ptrdiff_t(y) * kLanes + l] = re[columns[l]];
            lines.im()[std::ptrdiff_t(y) * kLanes + l] = im[columns[l]];
        }
    }
}

struct Wave
{
    float sine, cosine;
};

Wave waveOf(int k, int length)
{
    const scalar::SinCos turn = scalar::sinCosOfTurns(static_cast<float>(k) / static_cast<float>(length));
    return {turn.sine, turn.cosine};
}

/// The heights' transform at columns kx of the picture, out of the slopes' there and at -kx.
void divide(const int (&columns)[kLanes], int width, int height, FourierLines& slopes, FourierLines& opposite,
            FourierLines& result)
{
    alignas(64) float sines[kLanes], cosines[kLanes];
    for (int l = 0; l < kLanes; ++l) {
        const Wave wave = waveOf(columns[l], width);
        sines[l] = wave.sine;
        cosines[l] = wave.cosine;
    }
    const F sineX = load(sines), cosineX = load(cosines), half(0.5f);
    const F scale(1.0f / (static_cast<float>(width) * static_cast<float>(height)));

    for (int y = 0; y < height; ++y) {
        const std::ptrdiff_t at = std::ptrdiff_t(y) * kLanes,
                             mirrored = std::ptrdiff_t(y == 0 ? 0 : height - y) * kLanes;
        const F zRe = load(slopes.re() + at), zIm = load(slopes.im() + at);
        const F mRe = load(opposite.re() + mirrored), mIm = load(opposite.im() + mirrored);
        const F pRe = (zRe + mRe) * half, pIm = (zIm - mIm) * half;
        const F qRe = (zIm + mIm) * half, qIm = (mRe - zRe) * half;
        const Wave wave = waveOf(y, height);
        const F dx = sineX * (F(0.625f) + F(0.375f * wave.cosine));
        const F dy = F(wave.sine) * (F(0.625f) + F(0.375f) * cosineX);
        const F laplacian = F(4.0f - 2.0f * wave.cosine) - F(2.0f) * cosineX;
        const F square = dx * dx + dy * dy + F(kSmoothness) * laplacian * laplacian;
        const F factor = choose(square > F(0.0f), scale / maxOf(square, F(1e-30f)), F(0.0f));
        store((dx * pIm + dy * qIm) * factor, result.re() + at);
        store(-(dx * pRe + dy * qRe) * factor, result.im() + at);
    }
}

void solveColumns(const HeightFromNormalState& state, const AreaJob& job)
{
    const ImageView& rows = job.scratch[0];
    FourierLines slopes(state.y), opposite(state.y), heights(state.y);
    for (int k = job.y0; k < job.y1 && !job.stopped(); k += kLanes) {
        int columns[kLanes], mirrored[kLanes];
        for (int l = 0; l < kLanes; ++l) {
            columns[l] = std::min(k + l, job.y1 - 1);
            mirrored[l] = columns[l] == 0 ? 0 : rows.width - columns[l];
        }
        readColumns(rows, columns, slopes);
        readColumns(rows, mirrored, opposite);
        slopes.transform();
        opposite.transform();
        divide(columns, rows.width, rows.height, slopes, opposite, heights);
        heights.transformBack();
        for (int l = 0; k + l < job.y1 && l < kLanes; ++l) {
            gatherLine(heights.re(), l, rows.height, rowOf(job.result, 0, k + l));
            gatherLine(heights.im(), l, rows.height, rowOf(job.result, 1, k + l));
        }
    }
}

void transformBack(const HeightFromNormalState& state, const AreaJob& job)
{
    const ImageView& columns = job.scratch[1]; // turned: row kx, column y
    const int width = job.result.width;
    FourierLines lines(state.x);
    for (int y = job.y0; y < job.y1 && !job.stopped(); y += kLanes) {
        const int count = std::min(kLanes, job.y1 - y);
        for (int k = 0; k < columns.height; ++k) {
            const float *re = rowOf(columns, 0, k) + y, *im = rowOf(columns, 1, k) + y;
            const std::ptrdiff_t at = std::ptrdiff_t(k) * kLanes,
                                 mirrored = std::ptrdiff_t(k == 0 ? 0 : width - k) * kLanes;
            const bool own = at == mirrored;
            for (int l = 0; l < kLanes; ++l) {
                const int from = std::min(l, count - 1);
                const float imaginary = own ? 0.0f : im[from];
                lines.re()[mirrored + l] = re[from];
                lines.im()[mirrored + l] = -imaginary;
                lines.re()[at + l] = re[from];
                lines.im()[at + l] = imaginary;
            }
        }
        lines.transformBack();
        for (int l = 0; l < count; ++l)
            gatherLine(lines.re(), l, width, rowOf(job.result, 0, y + l));
    }
}

void finishRows(const HeightFromNormalState& state, const AreaJob& job)
{
    const ImageView &heights = job.scratch[2], &ranges = job.scratch[3];
    float base = 0.5f, gain = 1.0f;
    if (state.stretched) {
        float least = rowOf(ranges, 0, 0)[0], most = rowOf(ranges, 0, 0)[1];
        for (int y = 1; y < heights.height; ++y) {
            least = std::min(least, rowOf(ranges, 0, y)[0]);
            most = std::max(most, rowOf(ranges, 0, y)[1]);
        }
        gain = 1.0f / std::max(most - least, 1e-9f);
        base = most > least ? -least * gain : 0.5f;
    }
    for (int y = job.y0; y < job.y1; ++y)
        for (int x = 0; x < heights.width; x += kLanes)
            store(F(base) + F(gain) * load(rowOf(heights, 0, y) + x), rowOf(job.result, 0, y) + x);
}

void heightFromNormalArea(const AreaJob& job)
{
    const auto& state = static_cast<const HeightFromNormalState&>(*job.state);
    switch (job.pass) {
    case 0:
        return transformRows(state, job);
    case 1:
        return solveColumns(state, job);
    case 2:
        return transformBack(state, job);
    case 3:
        for (int y = job.y0; y < job.y1; ++y) {
            const float* row = rowOf(job.scratch[2], 0, y);
            const auto range = std::minmax_element(row, row + job.scratch[2].width);
            rowOf(job.result, 0, y)[0] = *range.first;
            rowOf(job.result, 0, y)[1] = *range.second;
        }
        return;
    default:
        return finishRows(state, job);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

NODES_AREA_KERNEL(heightFromNormalArea)

static std::unique_ptr<State> prepareHeightFromNormal(const Setup& setup)
{
    auto state = std::make_unique<HeightFromNormalState>();
    const ParameterValue* p = setup.parameters;
    state->x = planFourier(setup.width);
    state->y = planFourier(setup.height);
    const float depth = held(p[0].f[0], 0.01f, 1000.0f) * 0.01f * static_cast<float>(setup.width);
    state->slope = 1.0f / depth;
    state->signY = p[1].i[0] != 0 ? 2.0f : -2.0f;
    state->stretched = p[2].i[0] != 0;
    return state;
}

static std::vector<ScratchShape> heightFromNormalScratch(const State*, const Setup& setup)
{
    const int width = setup.width, height = setup.height;
    return {{width, height, 2}, {height, width / 2 + 1, 2}, {width, height, 1}, {2, height, 1}};
}

const NodeDeclaration heightfromnormalNode{
    "heightfromnormal",
    "Height from Normal",
    "Surface",
    "The height map whose slopes come nearest to those of tangent space normals, by Fourier transform (R. "
    "Frankot and R. Chellappa, 1988). Turns back what normal does, but for the mean height, which slopes do "
    "not tell: it is 0.5. Wraps around.",
    ResultChannels::Grey,
    Chance::None,
    {{"normal", OperandChannels::Colour, true, "The normals, as normal gives them in format 0."}},
    {{"intensity",
      ParameterType::Float,
      {3.0},
      0.01,
      50,
      "How far white stands above black, in hundredths of the picture's width."},
     {"inverty", ParameterType::Bool, {0}, 0, 1, "Takes green as pointing up the picture."},
     {"stretch", ParameterType::Bool, {0}, 0, 1, "Makes the lowest place black and the highest white."}},
    prepareHeightFromNormal,
    nullptr,
    runheightFromNormalArea,
    heightFromNormalScratch,
    kRowsTogether};

} // namespace vellor::nodes
#endif
