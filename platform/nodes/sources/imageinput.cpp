#include "platform/nodes/dispatch.h"
#include "platform/nodes/kinds.h"

#ifndef VELLOR_IMAGEINPUT_STATE
#define VELLOR_IMAGEINPUT_STATE
namespace vellor::nodes {
namespace {

struct ImageInputState : State
{
    ImageView image;
    int samplesX = 1, samplesY = 1; // of the image for a pixel of the result
    std::array<float, kMaxChannels> fallback{};
};

} // namespace
} // namespace vellor::nodes
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/nodes/sources/imageinput.cpp"
#include <hwy/foreach_target.h>

#include "platform/nodes/sampling-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {
namespace {

/// Channel c of the result at some pixels: grey pictures spread over colours, colour ones add up to their
/// luminance.
HWY_INLINE F readAs(const BilinearTaps& taps, const ImageView& image, int channels, int c)
{
    if (channels == image.channels)
        return taps.read(image.planes[c]);
    if (channels > image.channels)
        return c < 3 ? taps.read(image.planes[0]) : F(1.0f);
    return taps.read(image.planes[0]) * F(0.2126f) + taps.read(image.planes[1]) * F(0.7152f) +
           taps.read(image.planes[2]) * F(0.0722f);
}

void imageInputRow(const RowJob& job)
{
    const auto& state = static_cast<const ImageInputState&>(*job.state);
    const float stepU = 1.0f / static_cast<float>(job.width) / static_cast<float>(state.samplesX);
    const float stepV = 1.0f / static_cast<float>(job.height) / static_cast<float>(state.samplesY);
    const F share(1.0f / static_cast<float>(state.samplesX * state.samplesY));
    for (int i = 0; i < job.count; i += kLanes) {
        F sums[kMaxChannels] = {F(0.0f), F(0.0f), F(0.0f), F(0.0f)};
        for (int sy = 0; sy < state.samplesY; ++sy) {
            for (int sx = 0; sx < state.samplesX; ++sx) {
                const float du =
                    (static_cast<float>(sx) - 0.5f * static_cast<float>(state.samplesX - 1)) * stepU;
                const float dv =
                    (static_cast<float>(sy) - 0.5f * static_cast<float>(state.samplesY - 1)) * stepV;
                const BilinearTaps taps(state.image, centresFrom(job.x + i, job.width) + F(du),
                                        F(centreOf(job.y, job.height) + dv));
                for (int c = 0; c < job.channels; ++c)
                    sums[c] += readAs(taps, state.image, job.channels, c);
            }
        }
        for (int c = 0; c < job.channels; ++c)
            store(sums[c] * share, job.result[c] + i);
    }
}

} // namespace
} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::nodes {

HWY_EXPORT(imageInputRow);

static void runImageInputRow(const RowJob& job)
{
    const auto& state = static_cast<const ImageInputState&>(*job.state);
    if (state.image.channels > 0)
        return HWY_DYNAMIC_DISPATCH(imageInputRow)(job);
    for (int c = 0; c < job.channels; ++c)
        std::fill_n(job.result[c], job.count, state.fallback[c]);
}

static std::unique_ptr<State> prepareImageInput(const Setup& setup)
{
    auto state = std::make_unique<ImageInputState>();
    state->image = setup.image;
    // A sample for every pixel that a result pixel covers; sizes that are equal need no more than one.
    const auto samples = [](int from, int to) { return std::min(std::max((from + to - 1) / to, 1), 64); };
    state->samplesX = samples(setup.image.width, setup.width);
    state->samplesY = samples(setup.image.height, setup.height);
    state->fallback = setup.parameters[1].f;
    return state;
}

const NodeDeclaration imageinputNode{
    "imageinput",
    "Image",
    "Sources",
    "A picture that is given from outside, stretched over the result.",
    ResultChannels::Chosen,
    Chance::None,
    {},
    {{"image", ParameterType::ImageInput, {}, 0, 1, "The picture."},
     {"default", ParameterType::Float4, {0, 0, 0, 0}, 0, 1, "The colour where there is no picture."}},
    prepareImageInput,
    runImageInputRow};

} // namespace vellor::nodes
#endif
