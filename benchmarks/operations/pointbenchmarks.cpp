// Point operations beside OpenCV's and libvips', and beside the memory traffic of the same run.

#include "benchmarks/operations/rivals.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vips/vips.h>

#include <vellor/engine.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <thread>

namespace {

/// Copies the bytes that an operation must move, half of them read and half written, on the threads that it
/// has.
class Traffic
{
public:
    Traffic(int planesRead, int planesWritten, int threads)
        : m_from(half(planesRead + planesWritten), 1), m_to(m_from.size(), 2), m_threads(threads)
    {
    }

    void operator()()
    {
        std::thread second;
        const std::size_t first = m_from.size() / std::size_t(m_threads);
        if (m_threads > 1)
            second = std::thread([&] { copy(first, m_from.size()); });
        copy(0, first);
        if (second.joinable())
            second.join();
    }

private:
    static std::size_t half(int planes) { return std::size_t(planes) * kSide * kSide * sizeof(float) / 2; }
    void copy(std::size_t begin, std::size_t end)
    {
        std::memcpy(m_to.data() + begin, m_from.data() + begin, end - begin);
    }

    std::vector<char> m_from, m_to;
    int m_threads;
};

struct Point
{
    explicit Point(benchmark::State& state) : threads(int(state.range(0))), graph(kSide, kSide, threads) {}

    int add(const cv::Mat& matrix) { return addMatrix(graph, matrix); }

    int threads;
    OperationGraph graph;
};

int levelsNode(Point& point, int channels, int operand)
{
    return point.graph.addNode("levels", channels, {operand}, {{"inlow", 0.2}, {"inhigh", 0.9}});
}

void levels(benchmark::State& state)
{
    Point point(state);
    const cv::Mat source = testPicture(1);
    const int node = levelsNode(point, 1, point.add(source));
    cv::Mat result, clamped;
    compare(
        state, "OpenCV subtract, scale, min, max", Aim::AtLeast, 1.0, [&] { point.graph.run(node); },
        [&] {
            source.convertTo(result, CV_32F, 1 / 0.7, -0.2 / 0.7);
            cv::max(result, 0.0f, clamped);
            cv::min(clamped, 1.0f, result);
        });
}

void levelsTraffic(benchmark::State& state)
{
    Point point(state);
    const int node = levelsNode(point, 1, point.add(testPicture(1)));
    Traffic traffic(1, 1, point.threads);
    compare(
        state, "copying its bytes", Aim::AtLeast, point.threads > 1 ? 0.75 : 0.85,
        [&] { point.graph.run(node); }, traffic);
}

/// The blend of two RGBA pictures, alpha as the other channels, as OpenCV multiplies.
int multiplyNode(Point& point, int source, int background)
{
    return point.graph.addNode("blend", 4, {source, background}, {{"mode", 3}, {"alpha", 2}});
}

void multiply(benchmark::State& state)
{
    Point point(state);
    const cv::Mat a = testPicture(4), b = testPicture(4).t();
    const int node = multiplyNode(point, point.add(a), point.add(b));
    cv::Mat result;
    compare(
        state, "OpenCV multiply", Aim::AtLeast, 1.0, [&] { point.graph.run(node); },
        [&] { cv::multiply(a, b, result); });
}

void multiplyTraffic(benchmark::State& state)
{
    Point point(state);
    const int a = point.add(testPicture(4)), b = point.add(testPicture(4).t());
    const int node = multiplyNode(point, a, b);
    Traffic traffic(8, 4, point.threads);
    compare(
        state, "copying its bytes", Aim::AtLeast, point.threads > 1 ? 0.75 : 0.85,
        [&] { point.graph.run(node); }, traffic);
}

int matrixNode(Point& point, int operand)
{
    using Row = std::array<double, 4>;
    return point.graph.addNode(
        "colourmatrix", 4, {operand},
        {{"red", Row{0.4, 0.8, 0.2, 0}}, {"green", Row{0.3, 0.7, 0.2, 0}}, {"blue", Row{0.3, 0.5, 0.1, 0}}});
}

void colourMatrix(benchmark::State& state)
{
    Point point(state);
    const cv::Mat source = testPicture(4);
    const int node = matrixNode(point, point.add(source));
    const cv::Mat matrix =
        (cv::Mat_<float>(4, 4) << 0.4, 0.8, 0.2, 0, 0.3, 0.7, 0.2, 0, 0.3, 0.5, 0.1, 0, 0, 0, 0, 1);
    cv::Mat result;
    compare(
        state, "OpenCV transform", Aim::AtLeast, 1.0, [&] { point.graph.run(node); },
        [&] { cv::transform(source, result, matrix); });
}

void colourMatrixTraffic(benchmark::State& state)
{
    Point point(state);
    const int node = matrixNode(point, point.add(testPicture(4)));
    Traffic traffic(4, 4, point.threads);
    compare(
        state, "copying its bytes", Aim::AtLeast, point.threads > 1 ? 0.75 : 0.85,
        [&] { point.graph.run(node); }, traffic);
}

/// Levels, multiplied with opacity and mask, channels shuffled: beside the multiplication alone.
void fusedChain(benchmark::State& state)
{
    Point point(state);
    const int a = point.add(testPicture(4)), b = point.add(testPicture(4).t()),
              mask = point.add(testPicture(1));
    const std::vector<Setting> settings = {{"mode", 3}, {"opacity", 0.7}};
    const int alone = point.graph.addNode("blend", 4, {a, b, mask}, settings);
    const int blended = point.graph.addNode("blend", 4, {levelsNode(point, 4, a), b, mask}, settings);
    const int shuffled = point.graph.addNode("channelshuffle", 4, {blended}, {{"red", 2}, {"blue", 0}});
    compare(
        state, "its multiplication alone", Aim::AtMost, 1.3, [&] { point.graph.run(shuffled); },
        [&] { point.graph.run(alone); });
}

void gamma(benchmark::State& state)
{
    Point point(state);
    const cv::Mat source = testPicture(1);
    const int node = point.graph.addNode("gamma", 1, {point.add(source)});
    cv::Mat result;
    compare(
        state, "OpenCV pow", Aim::AtLeast, 2.5, [&] { point.graph.run(node); },
        [&] { cv::pow(source, 1 / 2.2, result); });
}

void hueSaturationLightness(benchmark::State& state)
{
    Point point(state);
    const cv::Mat source = testPicture(4);
    const int node = point.graph.addNode("hsl", 4, {point.add(source)},
                                         {{"hue", 0.1}, {"saturation", 0.2}, {"lightness", 0.1}});
    cv::Mat bgr, hls, changed, result;
    cv::cvtColor(source, bgr, cv::COLOR_RGBA2BGR);
    compare(
        state, "OpenCV to HLS, scale, and back", Aim::AtLeast, 1.2, [&] { point.graph.run(node); },
        [&] {
            cv::cvtColor(bgr, hls, cv::COLOR_BGR2HLS);
            cv::transform(hls, changed, cv::Matx34f(1, 0, 0, 36, 0, 0.9f, 0, 0.1f, 0, 0, 1.2f, 0));
            cv::cvtColor(changed, result, cv::COLOR_HLS2BGR);
        });
}

void channelShuffle(benchmark::State& state)
{
    Point point(state);
    const cv::Mat source = testPicture(4);
    const int node = point.graph.addNode("channelshuffle", 4, {point.add(source)}, {{"red", 2}, {"blue", 0}});
    cv::Mat result(source.size(), source.type());
    const int pairs[] = {0, 2, 1, 1, 2, 0, 3, 3};
    compare(
        state, "OpenCV mixChannels", Aim::AtLeast, 1.5, [&] { point.graph.run(node); },
        [&] { cv::mixChannels(&source, 1, &result, 1, pairs, 4); });
}

/// Two pictures of libvips, one over the other with straight alpha in and out: floats from 0 to 1, or bytes.
/// The matrices stay the owners of the pixels.
class VipsComposite
{
public:
    VipsComposite(const cv::Mat& source, const cv::Mat& background, VipsBlendMode mode, int threads)
        : m_space(source.depth() == CV_8U ? VIPS_INTERPRETATION_sRGB : VIPS_INTERPRETATION_scRGB),
          m_mode(mode)
    {
        vips_init("");
        vips_concurrency_set(threads);
        m_over = pictureOf(source);
        m_under = pictureOf(background);
    }
    VipsComposite(const VipsComposite&) = delete;
    VipsComposite& operator=(const VipsComposite&) = delete;
    ~VipsComposite()
    {
        g_object_unref(m_over);
        g_object_unref(m_under);
    }

    /// The result in memory, for the caller to let go.
    VipsImage* run() const
    {
        VipsImage* result = nullptr;
        vips_composite2(m_under, m_over, &result, m_mode, "compositing_space", m_space, nullptr);
        VipsImage* memory = vips_image_copy_memory(result);
        g_object_unref(result);
        return memory;
    }

private:
    VipsImage* pictureOf(const cv::Mat& matrix) const
    {
        VipsImage* raw = vips_image_new_from_memory(
            matrix.data, matrix.total() * matrix.elemSize(), matrix.cols, matrix.rows, 4,
            matrix.depth() == CV_8U ? VIPS_FORMAT_UCHAR : VIPS_FORMAT_FLOAT);
        VipsImage* image = nullptr;
        vips_copy(raw, &image, "interpretation", m_space, nullptr);
        g_object_unref(raw);
        return image;
    }

    VipsInterpretation m_space;
    VipsBlendMode m_mode;
    VipsImage *m_over = nullptr, *m_under = nullptr;
};

template<int mode, VipsBlendMode vipsMode> void blendOver(benchmark::State& state)
{
    Point point(state);
    const cv::Mat source = testPicture(4), background = testPicture(4).t();
    const int node =
        point.graph.addNode("blend", 4, {point.add(source), point.add(background)}, {{"mode", double(mode)}});
    const VipsComposite composite(source, background, vipsMode, point.threads);
    compare(
        state, "libvips composite", Aim::AtLeast, 20.0, [&] { point.graph.run(node); },
        [&] { g_object_unref(composite.run()); });
}

/// What W3C's Compositing and Blending Level 1 makes of opaque background b and source s, for the modes
/// below.
double mixed(VipsBlendMode mode, double b, double s)
{
    if (mode == VIPS_BLEND_MODE_MULTIPLY)
        return b * s;
    if (mode == VIPS_BLEND_MODE_COLOUR_DODGE)
        return b == 0 ? 0 : s >= 1 ? 1 : std::min(1.0, b / (1 - s));
    if (mode != VIPS_BLEND_MODE_SOFT_LIGHT)
        return s;
    const double bent = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
    return s <= 0.5 ? b - (1 - 2 * s) * b * (1 - b) : b + (2 * s - 1) * (bent - b);
}

/// By how many codes pixels of RGBA8 are farthest from that recommendation's composition.
double farthestFromDefinition(VipsBlendMode mode, const cv::Mat& source, const cv::Mat& background,
                              const std::vector<std::uint8_t>& result)
{
    double most = 0;
    for (std::size_t i = 0; i < result.size(); ++i) {
        const std::size_t alphaAt = i | 3;
        const double sa = source.data[alphaAt] / 255.0, ba = background.data[alphaAt] / 255.0;
        const double s = source.data[i] / 255.0, b = background.data[i] / 255.0, alpha = sa + ba - sa * ba;
        const double colour =
            alpha > 0 ? ((1 - ba) * sa * s + (1 - sa) * ba * b + sa * ba * mixed(mode, b, s)) / alpha : b;
        most = std::max(most, std::abs(255 * (i == alphaAt ? alpha : colour) - result[i]));
    }
    return most;
}

/// By how many codes two pictures of bytes differ at most.
int farthest(const std::vector<std::uint8_t>& a, const std::uint8_t* b)
{
    int most = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        most = std::max(most, std::abs(int(a[i]) - int(b[i])));
    return most;
}

cv::Mat testBytes(const cv::Mat& floats, bool opaque)
{
    cv::Mat bytes;
    floats.convertTo(bytes, CV_8U, 255);
    if (opaque)
        cv::bitwise_or(bytes, cv::Scalar(0, 0, 0, 255), bytes);
    return bytes;
}

/// Two pictures of bytes, the one over the other, by us and by libvips.
struct PackedBlend
{
    PackedBlend(benchmark::State& state, int mode, VipsBlendMode vipsMode, bool opaque)
        : point(state), source(testBytes(testPicture(4), opaque)),
          background(testBytes(testPicture(4).t(), opaque)),
          composite(source, background, vipsMode, point.threads), result(std::size_t(4) * kSide * kSide)
    {
        const int over = point.graph.addPacked(VELLOR_FORMAT_RGBA, source.data),
                  under = point.graph.addPacked(VELLOR_FORMAT_RGBA, background.data);
        node = point.graph.addOutput(
            VELLOR_FORMAT_RGBA, point.graph.addNode("blend", 4, {over, under}, {{"mode", double(mode)}}));
    }

    void run() { point.graph.run(node); }
    /// Copies the result, as a host does that fetches it.
    void fetch() { point.graph.fetch(VELLOR_FORMAT_RGBA, result.data()); }

    /// In codes; negative: libvips has made another kind of picture.
    int apart()
    {
        run();
        fetch();
        VipsImage* theirs = composite.run();
        const bool comparable = vips_image_get_format(theirs) == VIPS_FORMAT_UCHAR &&
                                VIPS_IMAGE_N_PELS(theirs) * 4 == result.size();
        const int codes = comparable ? farthest(result, VIPS_IMAGE_ADDR(theirs, 0, 0)) : -1;
        g_object_unref(theirs);
        return codes;
    }

    Point point;
    cv::Mat source, background;
    VipsComposite composite;
    std::vector<std::uint8_t> result;
    int node;
};

/// Bytes in, as an image input brings them, and bytes out, where an output is fetched from: for either of the
/// two in memory of its own.
///
/// With straight alpha the two don't mean the same by a mode: libvips applies it to colours that are
/// multiplied by their alpha, and weighs what comes out by both alphas once more, where the recommendation
/// applies it to the colours themselves. So ours is held to the recommendation, in codes_off, and to libvips
/// where all is opaque and both agree, in codes_apart; the time is that of pictures with alpha, which costs
/// neither of them more or less.
template<int mode, VipsBlendMode vipsMode> void blendPacked(benchmark::State& state)
{
    PackedBlend blend(state, mode, vipsMode, false);
    compare(
        state, "libvips composite", Aim::AtLeast, 20.0, [&] { blend.run(); },
        [&] { g_object_unref(blend.composite.run()); });
    blend.fetch();
    state.counters["codes_off"] =
        farthestFromDefinition(vipsMode, blend.source, blend.background, blend.result);
    state.counters["codes_apart"] = PackedBlend(state, mode, vipsMode, true).apart();
}

/// The same, and a copy of the bytes for a host.
void blendFetched(benchmark::State& state)
{
    PackedBlend blend(state, 0, VIPS_BLEND_MODE_OVER, false);
    compare(
        state, "libvips composite", Aim::AtLeast, 20.0,
        [&] {
            blend.run();
            blend.fetch();
        },
        [&] { g_object_unref(blend.composite.run()); });
}

const bool registered = [] {
    registerOperation("levels, grey float", levels);
    registerOperation("levels, grey float, traffic", levelsTraffic);
    registerOperation("multiply, RGBA float", multiply);
    registerOperation("multiply, RGBA float, traffic", multiplyTraffic);
    registerOperation("colour matrix, RGBA float", colourMatrix);
    registerOperation("colour matrix, RGBA float, traffic", colourMatrixTraffic);
    registerOperation("levels, multiply with opacity and mask, channel shuffle, as one, RGBA float",
                      fusedChain);
    registerOperation("gamma, grey float", gamma);
    registerOperation("hue, saturation, lightness, RGBA float", hueSaturationLightness);
    registerOperation("channel shuffle, RGBA float", channelShuffle);
    registerOperation("blend normal over, RGBA float", blendOver<0, VIPS_BLEND_MODE_OVER>);
    registerOperation("blend multiply over, RGBA float", blendOver<3, VIPS_BLEND_MODE_MULTIPLY>);
    registerOperation("blend softlight over, RGBA float", blendOver<7, VIPS_BLEND_MODE_SOFT_LIGHT>);
    registerOperation("blend colourdodge over, RGBA float", blendOver<16, VIPS_BLEND_MODE_COLOUR_DODGE>);
    registerOperation("blend normal over, RGBA8", blendPacked<0, VIPS_BLEND_MODE_OVER>);
    registerOperation("blend normal over, RGBA8, and fetched", blendFetched);
    registerOperation("blend multiply over, RGBA8", blendPacked<3, VIPS_BLEND_MODE_MULTIPLY>);
    registerOperation("blend softlight over, RGBA8", blendPacked<7, VIPS_BLEND_MODE_SOFT_LIGHT>);
    registerOperation("blend colourdodge over, RGBA8", blendPacked<16, VIPS_BLEND_MODE_COLOUR_DODGE>);
    return true;
}();

} // namespace
