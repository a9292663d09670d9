#include "platform/engines/cpu/resample.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace vellor::cpu {
namespace {

/// What each pixel of the result takes along one axis: `taps` neighbours from `first` on, wrapped, by weight.
struct Axis
{
    int from = 0, to = 0, taps = 1;
    std::vector<int> index;    // to * taps
    std::vector<float> weight; // to * taps

    Axis(int fromSize, int toSize) : from(fromSize), to(toSize)
    {
        if (to == from)
            return;
        taps = to > from ? 2 : (from + to - 1) / to;
        index.resize(static_cast<std::size_t>(to) * taps);
        weight.resize(index.size());
        for (int i = 0; i < to; ++i)
            to > from ? interpolate(i) : average(i);
    }

    bool identity() const { return to == from; }

private:
    void interpolate(int i)
    {
        // Centres: (i + 0.5) / to in the source's pixels. Doubles are exact for every size in use.
        const double position = (i + 0.5) * from / to - 0.5;
        const double base = std::floor(position);
        const int left = static_cast<int>(base);
        index[2 * i] = (left + from) % from;
        index[2 * i + 1] = (left + 1) % from;
        weight[2 * i + 1] = static_cast<float>(position - base);
        weight[2 * i] = 1.0f - weight[2 * i + 1];
    }

    void average(int i)
    {
        const int begin = static_cast<int>(static_cast<long long>(i) * from / to);
        const int end = std::max(begin + 1, static_cast<int>(static_cast<long long>(i + 1) * from / to));
        const int count = std::min(end - begin, taps);
        for (int k = 0; k < taps; ++k) {
            index[static_cast<std::size_t>(i) * taps + k] = begin + std::min(k, count - 1);
            weight[static_cast<std::size_t>(i) * taps + k] =
                k < count ? 1.0f / static_cast<float>(count) : 0.0f;
        }
    }
};

struct ResampleState : nodes::State
{
    ResampleState(int fromWidth, int fromHeight, int toWidth, int toHeight)
        : across(fromWidth, toWidth), down(fromHeight, toHeight)
    {
    }
    Axis across, down;
};

std::unique_ptr<nodes::State> prepare(const nodes::Setup& setup)
{
    const nodes::ImageView& from = setup.operands[0];
    return std::make_unique<ResampleState>(from.width, from.height, setup.width, setup.height);
}

/// Pass 0 works across, into a picture as high as the operand; pass 1 works down.
std::vector<nodes::ScratchShape> scratch(const nodes::State*, const nodes::Setup& setup)
{
    return {{setup.width, setup.operands[0].height, setup.channels}};
}

void resampleRow(const Axis& axis, const float* in, float* out)
{
    if (axis.identity()) {
        std::memcpy(out, in, sizeof(float) * static_cast<std::size_t>(axis.to));
        return;
    }
    for (int x = 0; x < axis.to; ++x) {
        float sum = 0.0f;
        for (int k = 0; k < axis.taps; ++k)
            sum += in[axis.index[static_cast<std::size_t>(x) * axis.taps + k]] *
                   axis.weight[static_cast<std::size_t>(x) * axis.taps + k];
        out[x] = sum;
    }
}

void resampleColumn(const Axis& axis, const nodes::AreaJob& job, const nodes::ImageView& in, int channel,
                    int y, float* out)
{
    const float* plane = in.planes[channel];
    const std::ptrdiff_t stride = in.stride;
    const int width = job.result.width;
    if (axis.identity()) {
        std::memcpy(out, plane + y * stride, sizeof(float) * static_cast<std::size_t>(width));
        return;
    }
    std::fill_n(out, width, 0.0f);
    for (int k = 0; k < axis.taps && !job.stopped(); ++k) {
        const float* row = plane + axis.index[static_cast<std::size_t>(y) * axis.taps + k] * stride;
        const float weight = axis.weight[static_cast<std::size_t>(y) * axis.taps + k];
        for (int x = 0; x < width; ++x)
            out[x] += row[x] * weight;
    }
}

void area(const nodes::AreaJob& job)
{
    const auto& state = *static_cast<const ResampleState*>(job.state);
    const nodes::ImageView& in = job.pass == 0 ? job.operands[0] : job.scratch[0];
    for (int c = 0; c < job.result.channels; ++c) {
        for (int y = job.y0; y < job.y1; ++y) {
            float* out = job.result.planes[c] + y * job.result.stride;
            if (job.pass == 0)
                resampleRow(state.across, in.planes[c] + y * in.stride, out);
            else
                resampleColumn(state.down, job, in, c, y, out);
        }
    }
}

nodes::NodeDeclaration make()
{
    nodes::NodeDeclaration kind{};
    kind.name = "engine.resample";
    kind.label = kind.category = kind.text = "";
    kind.prepare = prepare;
    kind.area = area;
    kind.scratch = scratch;
    return kind;
}

} // namespace

const nodes::NodeDeclaration& resampleKind()
{
    static const nodes::NodeDeclaration kind = make();
    return kind;
}

} // namespace vellor::cpu
