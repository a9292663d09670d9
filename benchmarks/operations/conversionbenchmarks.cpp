// Pixels on their way in and out, beside OpenCV and beside the memory traffic of the same run.

#include "benchmarks/operations/rivals.h"
#include "platform/engines/cpu/hostimage.h"
#include "platform/engines/cpu/outputconverter.h"
#include "platform/engines/cpu/rowloop.h"

#include <opencv2/core.hpp>

#include <vellor/engine.h>

using namespace vellor::cpu;

namespace {

/// Rows of a picture shared over threads as the engine shares them.
class Rows
{
public:
    explicit Rows(int threads) { m_resources.threads = static_cast<std::uint32_t>(threads); }
    void run(const RowBody& body)
    {
        Monitor monitor(m_stop, [](std::uint32_t, std::uint32_t) {});
        RowLoop{m_threads, monitor, m_resources, kSide, kSide, 0}.run(body);
    }

private:
    ThreadPool m_threads;
    Resources m_resources;
    std::atomic<bool> m_stop{false};
};

struct Format
{
    std::uint8_t code;
    int channels;
    int depth;    // OpenCV's
    double scale; // of full scale
};

const Format kFormats[] = {{VELLOR_FORMAT_RGBA, 4, CV_8U, 255},
                           {VELLOR_FORMAT_RGBA | VELLOR_FORMAT_16BITS, 4, CV_16U, 65535},
                           {VELLOR_FORMAT_GRAYSCALE, 1, CV_8U, 255},
                           {VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16BITS, 1, CV_16U, 65535}};

std::shared_ptr<Image> planesOf(int channels)
{
    static const auto pool = BufferPool::make();
    auto image = std::make_shared<Image>(*pool, kSide, kSide, channels);
    const cv::Mat picture = testPicture(channels);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide * channels; ++x)
            image->mutableView().planes[x % channels][y * image->view().stride + x / channels] =
                picture.ptr<float>(y)[x];
    return image;
}

std::vector<cv::Mat> matricesOf(const Image& image)
{
    std::vector<cv::Mat> planes;
    for (int c = 0; c < image.channels(); ++c)
        planes.emplace_back(kSide, kSide, CV_32FC1, image.mutableView().planes[c],
                            std::size_t(image.view().stride) * sizeof(float));
    return planes;
}

std::size_t packedBytes(const Format& format)
{
    return outputBytes(format.code, kSide, kSide, 1);
}

/// A copy moves twice its size: the planes in and the pixels out, or the reverse.
std::function<void()> copyOf(const Format& format, Rows& rows)
{
    const std::size_t bytes =
        (packedBytes(format) + std::size_t(4) * std::size_t(format.channels) * kSide * kSide) / 2;
    auto from = std::make_shared<std::vector<char>>(bytes, 1),
         to = std::make_shared<std::vector<char>>(bytes);
    const std::size_t row = bytes / kSide;
    return [=, &rows] {
        rows.run([&](int y0, int y1, int) {
            std::memcpy(to->data() + row * std::size_t(y0), from->data() + row * std::size_t(y0),
                        row * std::size_t(y1 - y0));
        });
    };
}

void pack(benchmark::State& state, const Format& format, bool besideCopy)
{
    Rows rows(int(state.range(0)));
    const auto image = planesOf(format.channels);
    std::vector<std::uint8_t> out(packedBytes(format));
    const auto ours = [&] {
        rows.run([&](int y0, int y1, int) { convertRows(image->view(), format.code, y0, y1, out.data()); });
    };
    if (besideCopy) {
        compare(state, "memcpy of as many bytes", Aim::AtLeast, state.range(0) == 1 ? 0.85 : 0.75, ours,
                copyOf(format, rows));
        return;
    }
    const std::vector<cv::Mat> planes = matricesOf(*image);
    cv::Mat merged, packed;
    compare(state, "OpenCV merge, convertTo", Aim::AtLeast, 1.0, ours, [&] {
        if (format.channels == 4)
            cv::merge(planes, merged);
        (format.channels == 4 ? merged : planes[0]).convertTo(packed, format.depth, format.scale);
    });
}

void unpack(benchmark::State& state, const Format& format, bool besideCopy)
{
    Rows rows(int(state.range(0)));
    const auto image = planesOf(format.channels);
    std::vector<std::uint8_t> pixels(packedBytes(format));
    convertRows(image->view(), format.code, 0, kSide, pixels.data());
    const VellorTexture texture{pixels.data(), kSide, kSide, format.code, VELLOR_ORDER_RGBA, {}};
    const auto source = HostImage::copy(texture);
    const auto ours = [&] {
        rows.run([&](int y0, int y1, int) { source->unpack(y0, y1, image->mutableView()); });
    };
    if (besideCopy) {
        compare(state, "memcpy of as many bytes", Aim::AtLeast, state.range(0) == 1 ? 0.85 : 0.75, ours,
                copyOf(format, rows));
        return;
    }
    const cv::Mat packed(kSide, kSide, CV_MAKETYPE(format.depth, format.channels), pixels.data());
    cv::Mat floats;
    std::vector<cv::Mat> planes;
    compare(state, "OpenCV convertTo, split", Aim::AtLeast, 1.0, ours, [&] {
        packed.convertTo(floats, CV_32F, 1 / format.scale);
        if (format.channels == 4)
            cv::split(floats, planes);
    });
}

template<int format, bool besideCopy> void packing(benchmark::State& state)
{
    pack(state, kFormats[format], besideCopy);
}

template<int format, bool besideCopy> void unpacking(benchmark::State& state)
{
    unpack(state, kFormats[format], besideCopy);
}

const bool registered = [] {
    registerOperation("planes to RGBA8", packing<0, false>);
    registerOperation("planes to RGBA8, traffic", packing<0, true>);
    registerOperation("planes to RGBA16", packing<1, false>);
    registerOperation("planes to RGBA16, traffic", packing<1, true>);
    registerOperation("plane to L8", packing<2, false>);
    registerOperation("plane to L8, traffic", packing<2, true>);
    registerOperation("plane to L16", packing<3, false>);
    registerOperation("plane to L16, traffic", packing<3, true>);
    registerOperation("RGBA8 to planes", unpacking<0, false>);
    registerOperation("RGBA8 to planes, traffic", unpacking<0, true>);
    registerOperation("RGBA16 to planes", unpacking<1, false>);
    registerOperation("RGBA16 to planes, traffic", unpacking<1, true>);
    registerOperation("L16 to plane", unpacking<3, false>);
    registerOperation("L16 to plane, traffic", unpacking<3, true>);
    return true;
}();

} // namespace
