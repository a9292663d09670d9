// Pixels on their way out and in: every raw format by hand-worked values, mipmaps, pictures of the host.

#include "platform/engines/cpu/hostimage.h"
#include "platform/engines/cpu/image.h"
#include "platform/engines/cpu/outputconverter.h"
#include "platform/engines/cpu/pixelkernels.h"
#include "platform/engines/cpu/tests/programbuilder.h"
#include "platform/engines/cpu/tests/testhost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace vellor::cpu::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A picture of one row.
Image row(const std::vector<std::vector<float>>& planes)
{
    static const auto pool = BufferPool::make();
    Image image(*pool, static_cast<int>(planes[0].size()), 1, static_cast<int>(planes.size()));
    for (std::size_t c = 0; c < planes.size(); ++c)
        std::copy(planes[c].begin(), planes[c].end(), image.mutableView().planes[c]);
    return image;
}

Bytes convert(const Image& image, int format)
{
    Bytes bytes(outputBytes(static_cast<std::uint8_t>(format), image.width(), 1, 1));
    convertRows(image.view(), static_cast<std::uint8_t>(format), 0, 1, bytes.data());
    return bytes;
}

TEST(Convert, WritesEveryRawFormat)
{
    const Image colour = row({{0.0f}, {0.5f}, {1.0f}, {0.25f}});
    const Image grey = row({{0.5f}});
    struct Case
    {
        const Image& image;
        int format;
        Bytes bytes;
    };
    // 0.5 is 127.5 of 255: 128; 32767.5 of 65535: 0x8000. Halves: 0.25 0x3400, 0.5 0x3800, 1 0x3C00.
    // The luminance of the colour: 0.7152 * 0.5 + 0.0722 = 0.4298: 110 of 255; 28167 = 0x6E07 of 65535.
    const Case cases[] = {
        {colour, VELLOR_FORMAT_RGBA, {0, 128, 255, 64}},
        {colour, VELLOR_FORMAT_RGBA | VELLOR_FORMAT_SRGB, {0, 128, 255, 64}},
        {colour, VELLOR_FORMAT_RGBX, {0, 128, 255, 255}},
        {colour, VELLOR_FORMAT_RGB, {0, 128, 255}},
        {colour, VELLOR_FORMAT_GRAYSCALE, {110}},
        {colour, VELLOR_FORMAT_RGBA | VELLOR_FORMAT_16BITS, {0, 0, 0, 0x80, 0xff, 0xff, 0, 0x40}},
        {colour, VELLOR_FORMAT_RGBX | VELLOR_FORMAT_16BITS, {0, 0, 0, 0x80, 0xff, 0xff, 0xff, 0xff}},
        {colour, VELLOR_FORMAT_RGB | VELLOR_FORMAT_16BITS, {0, 0, 0, 0x80, 0xff, 0xff}},
        {colour, VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16BITS, {0x07, 0x6e}},
        {colour, VELLOR_FORMAT_RGBA | VELLOR_FORMAT_16FLOAT, {0, 0, 0, 0x38, 0, 0x3c, 0, 0x34}},
        {colour, VELLOR_FORMAT_RGB | VELLOR_FORMAT_16FLOAT, {0, 0, 0, 0x38, 0, 0x3c}},
        {colour,
         VELLOR_FORMAT_RGBA | VELLOR_FORMAT_32FLOAT,
         {0, 0, 0, 0, 0, 0, 0, 0x3f, 0, 0, 0x80, 0x3f, 0, 0, 0x80, 0x3e}},
        {colour, VELLOR_FORMAT_RGB | VELLOR_FORMAT_32FLOAT, {0, 0, 0, 0, 0, 0, 0, 0x3f, 0, 0, 0x80, 0x3f}},
        {grey, VELLOR_FORMAT_GRAYSCALE, {128}},
        {grey, VELLOR_FORMAT_RGBA, {128, 128, 128, 255}},
        {grey, VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16BITS, {0, 0x80}},
        {grey, VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16FLOAT, {0, 0x38}},
        {grey, VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_32FLOAT, {0, 0, 0, 0x3f}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(convert(c.image, c.format), c.bytes) << "format " << c.format;
}

TEST(Convert, KeepsWhatIsNoNumberOutOfIntegers)
{
    constexpr float inf = std::numeric_limits<float>::infinity(),
                    nan = std::numeric_limits<float>::quiet_NaN();
    const Image wild = row({{nan, -nan, inf, -inf, -0.1f, 1e30f, 1.5f, 0.0019f, 0.00197f}});
    EXPECT_EQ(convert(wild, VELLOR_FORMAT_GRAYSCALE), (Bytes{0, 0, 255, 0, 0, 255, 255, 0, 1}));
    const Bytes words = convert(wild, VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16BITS);
    EXPECT_EQ(Bytes(words.begin(), words.begin() + 12), (Bytes{0, 0, 0, 0, 255, 255, 0, 0, 0, 0, 255, 255}));
    const Bytes colour = convert(wild, VELLOR_FORMAT_RGBA);
    EXPECT_EQ(Bytes(colour.begin(), colour.begin() + 4), (Bytes{0, 0, 0, 255}));
}

constexpr RawFormat kHalves{RawFormat::Depth::F16, 1, false};

std::uint16_t halfOf(float value)
{
    alignas(64) float plane[64] = {value};
    std::uint8_t bytes[kPixelSlack + 2];
    const float* const planes[] = {plane};
    packPixels(kHalves, planes, 1, bytes);
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

/// All words of a depth, unpacked.
std::vector<float> unpackedWords(RawFormat::Depth depth, int count)
{
    Bytes bytes;
    for (int word = 0; word < count; ++word) {
        bytes.push_back(static_cast<std::uint8_t>(word));
        if (depth != RawFormat::Depth::U8)
            bytes.push_back(static_cast<std::uint8_t>(word >> 8));
    }
    bytes.resize(bytes.size() + kPixelSlack);
    static const auto pool = BufferPool::make();
    const Image image(*pool, count, 1, 1);
    float* plane = image.mutableView().planes[0];
    unpackPixels({depth, 1, false}, bytes.data(), count, &plane);
    return {plane, plane + count};
}

class Instructions : public ::testing::TestWithParam<nodes::InstructionSet>
{
    void SetUp() override { nodes::limitInstructionSet(GetParam()); }
    void TearDown() override { nodes::limitInstructionSet(nodes::InstructionSet::Best); }
};
INSTANTIATE_TEST_SUITE_P(Each, Instructions,
                         ::testing::Values(nodes::InstructionSet::Ssse3, nodes::InstructionSet::Avx2,
                                           nodes::InstructionSet::Avx512));

TEST_P(Instructions, IntegersUnpackToTheNearest)
{
    const std::vector<float> bytes = unpackedWords(RawFormat::Depth::U8, 256),
                             words = unpackedWords(RawFormat::Depth::U16, 65536);
    for (int word = 0; word < 65536; ++word) {
        if (word < 256) {
            ASSERT_EQ(bytes[word], static_cast<float>(word / 255.0)) << word;
        }
        ASSERT_EQ(words[word], static_cast<float>(word / 65535.0)) << word;
    }
}

TEST_P(Instructions, HalvesRoundToTheNearestAndBack)
{
    const std::vector<float> unpacked = unpackedWords(RawFormat::Depth::F16, 65536);
    for (std::uint32_t bits = 0; bits < 0x10000; ++bits) {
        const auto half = static_cast<std::uint16_t>(bits);
        const int exponent = (half >> 10) & 31, mantissa = half & 1023;
        if (exponent == 31 && mantissa)
            continue;
        const double sign = half & 0x8000 ? -1.0 : 1.0;
        const double value = exponent == 31  ? sign * HUGE_VAL
                             : exponent == 0 ? sign * std::ldexp(mantissa, -24)
                                             : sign * std::ldexp(1024 + mantissa, exponent - 25);
        ASSERT_EQ(unpacked[half], static_cast<float>(value)) << bits;
        ASSERT_EQ(halfOf(unpacked[half]), half) << bits;
    }
    EXPECT_EQ(halfOf(1.0f + std::ldexp(1.0f, -11)), 0x3c00) << "a tie goes to even";
    EXPECT_EQ(halfOf(1.0f + 3 * std::ldexp(1.0f, -11)), 0x3c02);
    EXPECT_EQ(halfOf(1.0f + 1.01f * std::ldexp(1.0f, -11)), 0x3c01);
    EXPECT_EQ(halfOf(65519.0f), 0x7bff);
    EXPECT_EQ(halfOf(65520.0f), 0x7c00);
    EXPECT_EQ(halfOf(std::ldexp(1.0f, -25)), 0x0000);
    EXPECT_EQ(halfOf(std::ldexp(1.5f, -25)), 0x0001);
    EXPECT_EQ(halfOf(std::numeric_limits<float>::quiet_NaN()) & 0x7fff, 0x7e00);
}

/// Every raw format on a picture whose rows are no whole vectors, pixel by pixel beside the single pixel.
TEST_P(Instructions, PixelsAreTheSameWhereverTheyLie)
{
    static const auto pool = BufferPool::make();
    constexpr int kWidth = 1061;
    const Image colour(*pool, kWidth, 2, 4);
    for (int c = 0; c < 4; ++c)
        for (int i = 0; i < 2 * kWidth; ++i)
            colour.mutableView().planes[c][i / kWidth * rowStride(kWidth) + i % kWidth] =
                static_cast<float>((i * 7919 + c * 104729) % 4099) / 4000.0f - 0.01f;
    for (const int depth :
         {VELLOR_FORMAT_8BITS, VELLOR_FORMAT_16BITS, VELLOR_FORMAT_16FLOAT, VELLOR_FORMAT_32FLOAT}) {
        for (const int layout :
             {VELLOR_FORMAT_RGBA, VELLOR_FORMAT_RGBX, VELLOR_FORMAT_RGB, VELLOR_FORMAT_GRAYSCALE}) {
            const auto format = static_cast<std::uint8_t>(depth | layout);
            const std::size_t size = outputBytes(format, 1, 1, 1);
            Bytes all(2 * kWidth * size);
            convertRows(colour.view(), format, 0, 2, all.data());
            for (int i = 0; i < 2 * kWidth; ++i) {
                std::vector<std::vector<float>> pixel;
                for (int c = 0; c < 4; ++c)
                    pixel.push_back({colour.view().planes[c][i / kWidth * rowStride(kWidth) + i % kWidth]});
                ASSERT_EQ(Bytes(all.begin() + static_cast<std::ptrdiff_t>(i * size),
                                all.begin() + static_cast<std::ptrdiff_t>((i + 1) * size)),
                          convert(row(pixel), format))
                    << "format " << int(format) << ", pixel " << i;
            }
        }
    }
}

TEST(Convert, MakesMipmapsOfMeans)
{
    ProgramBuilder build;
    build.output(build.node("ramp", build.sizeValue(2, 1)), VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_32FLOAT);
    build.program.outputs[0].mipmaps = 9;
    TestHost host(build.program);
    host.compute({200});
    // 0 1 2 3 / 100 101 102 103, then 2 x 1, then 1 x 1.
    EXPECT_EQ(host.floats(0), (std::vector<float>{0, 1, 2, 3, 100, 101, 102, 103, 50.5f, 52.5f, 51.5f}));
}

/// Output 200: the photo of image input 0 as 4 x 4 pixels of RGBA floats.
ProgramBuilder photo()
{
    ProgramBuilder build;
    const int input = build.input(program::ValueType::Image);
    const int node = build.node("photo", build.sizeValue(2, 2));
    build.program.nodes[node].channels = 4;
    build.parameter(node, "image", program::ParameterSource::Input, {}, input);
    build.output(node, VELLOR_FORMAT_RGBA | VELLOR_FORMAT_32FLOAT);
    return build;
}

std::vector<float> firstPixel(const TestHost& host)
{
    const std::vector<float> all = host.floats(0);
    return {all.begin(), all.begin() + 4};
}

TEST(Convert, ReadsPicturesOfTheHost)
{
    struct Case
    {
        int format, order;
        Bytes pixel; // repeated 16 times; a whole block for the block formats
        std::vector<float> expected;
    };
    const std::uint8_t red = 0, blue = 0xf8; // 5:6:5 words are little-endian: 0xF800 is pure red
    const Case cases[] = {
        {VELLOR_FORMAT_RGBA, VELLOR_ORDER_RGBA, {255, 0, 51, 102}, {1, 0, 0.2f, 0.4f}},
        {VELLOR_FORMAT_RGBA, VELLOR_ORDER_BGRA, {255, 0, 51, 102}, {0.2f, 0, 1, 0.4f}},
        {VELLOR_FORMAT_RGBX | VELLOR_FORMAT_SRGB, VELLOR_ORDER_RGBA, {255, 0, 51, 102}, {1, 0, 0.2f, 1}},
        {VELLOR_FORMAT_RGB, VELLOR_ORDER_RGBA, {255, 0, 51}, {1, 0, 0.2f, 1}},
        {VELLOR_FORMAT_GRAYSCALE, VELLOR_ORDER_RGBA, {51}, {0.2f, -1, -1, -1}},
        {VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16BITS, VELLOR_ORDER_RGBA, {0x33, 0x33}, {0.2f, -1, -1, -1}},
        {VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_16FLOAT, VELLOR_ORDER_RGBA, {0, 0x38}, {0.5f, -1, -1, -1}},
        {VELLOR_FORMAT_GRAYSCALE | VELLOR_FORMAT_32FLOAT,
         VELLOR_ORDER_RGBA,
         {0, 0, 0x20, 0xc1},
         {-10, -1, -1, -1}},
        {VELLOR_FORMAT_BC1, VELLOR_ORDER_RGBA, {red, blue, 0, 0, 0, 0, 0, 0}, {1, 0, 0, 1}},
        {VELLOR_FORMAT_BC1, VELLOR_ORDER_RGBA, {0, 0, red, blue, 0xff, 0xff, 0xff, 0xff}, {0, 0, 0, 0}},
        {VELLOR_FORMAT_BC2,
         VELLOR_ORDER_RGBA,
         {0x33, 0x33, 0, 0, 0, 0, 0, 0, red, blue, 0, 0, 0xaa, 0, 0, 0},
         {170 / 255.0f, 0, 0, 0.2f}},
        {VELLOR_FORMAT_BC3,
         VELLOR_ORDER_RGBA,
         {255, 0, 2, 0, 0, 0, 0, 0, red, blue, 0, 0, 0, 0, 0, 0},
         {1, 0, 0, 218 / 255.0f}},
        {VELLOR_FORMAT_BC4, VELLOR_ORDER_RGBA, {51, 102, 7, 0, 0, 0, 0, 0}, {1, -1, -1, -1}},
        {VELLOR_FORMAT_BC5,
         VELLOR_ORDER_RGBA,
         {51, 0, 0, 0, 0, 0, 0, 0, 102, 0, 0, 0, 0, 0, 0, 0},
         {0.2f, 0.4f, 0, 1}},
    };
    for (const Case& c : cases) {
        Bytes buffer;
        while (buffer.size() < 16 * c.pixel.size())
            buffer.insert(buffer.end(), c.pixel.begin(), c.pixel.end());
        const VellorTexture texture{
            buffer.data(), 4, 4, static_cast<std::uint8_t>(c.format), static_cast<std::uint8_t>(c.order), {}};
        TestHost host(photo().program);
        ASSERT_EQ(vellorHandlePushSetInput(host.handle(), 0, 0, VELLOR_TYPE_IMAGE, &texture, nullptr), 0u);
        std::fill(buffer.begin(), buffer.end(), std::uint8_t(0)); // the engine has read it
        host.compute({200});
        EXPECT_EQ(firstPixel(host), c.expected) << "format " << c.format;
    }
    TestHost host(photo().program);
    Bytes buffer(64);
    const VellorTexture jpeg{buffer.data(), 4, 4, VELLOR_FORMAT_JPEG, VELLOR_ORDER_RGBA, {}};
    EXPECT_NE(vellorHandlePushSetInput(host.handle(), 0, 0, VELLOR_TYPE_IMAGE, &jpeg, nullptr), 0u);
    host.compute({200});
    EXPECT_EQ(firstPixel(host), (std::vector<float>(4, -1.0f))) << "no picture";
}

TEST(Convert, LargePicturesGoPastTheCaches)
{
    constexpr int kWidth = 1051, kHeight = 1024;
    Bytes bytes(std::size_t(4) * kWidth * kHeight), back(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 2654435761u >> 13);
    const VellorTexture texture{bytes.data(), kWidth, kHeight, VELLOR_FORMAT_RGBA, VELLOR_ORDER_RGBA, {}};
    const Image planes(*BufferPool::make(), kWidth, kHeight, 4);
    ASSERT_TRUE(worthStreaming(planes.byteSize()));
    HostImage::copy(texture)->unpack(0, 7, planes.mutableView());
    HostImage::copy(texture)->unpack(7, kHeight, planes.mutableView());
    convertRows(planes.view(), VELLOR_FORMAT_RGBA, 0, kHeight, back.data());
    EXPECT_TRUE(back == bytes);
    const std::size_t last = 4 * (std::size_t(kWidth) * 6 + kWidth - 1) + 2;
    EXPECT_EQ(planes.view().planes[2][6 * planes.view().stride + kWidth - 1], bytes[last] / 255.0f);
}

TEST(Convert, AsksTheHostForPictures)
{
    TestHost host(photo().program);
    VellorImageRequest wanted{};
    EXPECT_EQ(vellorHandleGetInputImageDesc(host.handle(), 0, &wanted), 0u);
    EXPECT_EQ(std::pair(wanted.width, wanted.height), std::pair(4u, 4u));
    Bytes buffer(64, 51);
    VellorTexture texture{buffer.data(), 4, 4, VELLOR_FORMAT_RGBA, VELLOR_ORDER_RGBA, {}};
    int asked = 0, user = 0;
    host.onImageInput = [&](std::uint32_t input, void** image, const VellorImageRequest& request) {
        ++asked;
        EXPECT_EQ(input, 0u);
        EXPECT_EQ(request.width, 4u);
        if (*image == &user)
            *image = &texture;
    };
    host.compute({200});
    EXPECT_EQ(firstPixel(host)[0], -1.0f);
    vellorHandlePushSetInput(host.handle(), 0, 0, VELLOR_TYPE_IMAGE, nullptr, &user);
    host.compute({200});
    EXPECT_EQ(firstPixel(host)[0], 0.2f);
    std::fill(buffer.begin(), buffer.end(), std::uint8_t(102));
    vellorHandlePushSetInput(host.handle(), 0, 0, VELLOR_TYPE_IMAGE, nullptr, &user);
    host.compute({200});
    EXPECT_EQ(firstPixel(host)[0], 0.4f);
    EXPECT_EQ(asked, 3);
    host.compute({200});
    EXPECT_EQ(asked, 3) << "nothing new was pushed";
}

} // namespace
} // namespace vellor::cpu::testing
