#include "orncommon/surfaces/half.h"
#include "orncommon/surfaces/operations.h"
#include "orncommon/surfaces/pixelrows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

using namespace Orn::Surfaces;

namespace {

using Bytes = std::vector<std::uint8_t>;

template<typename T> Bytes bytesOf(std::vector<T> const& values)
{
    Bytes bytes(values.size() * sizeof(T));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

Bytes words(std::vector<std::uint16_t> const& values)
{
    return bytesOf(values);
}

Bytes floats(std::vector<float> const& values)
{
    return bytesOf(values);
}

Bytes pixelsOf(Surface const& surface)
{
    Bytes bytes;
    for (unsigned int y = 0; y < surface.height(); ++y)
        bytes.insert(bytes.end(), surface.row(y), surface.row(y) + surface.lineSize());
    return bytes;
}

/// A surface of one row over the bytes.
Surface rowOver(Bytes& bytes, PixelFormat format)
{
    return Surface(bytes.data(),
                   SurfaceDescription(unsigned(bytes.size() / getPixelSize(format)), 1, format));
}

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

TEST(Half, KnownPatterns)
{
    struct
    {
        ORNHalf16 half;
        float value;
    } const rows[] = {
        {0x0000, 0.0f},     {0x3C00, 1.0f},         {0xC000, -2.0f},    {0x3555, 0.333251953125f},
        {0x0001, 0x1p-24f}, {0x03FF, 0x1.FF8p-15f}, {0x0400, 0x1p-14f}, {0x7BFF, 65504.0f},
        {0x7C00, infinity}, {0xFC00, -infinity}};
    for (auto const& row : rows) {
        EXPECT_EQ(halfToFloat(row.half), row.value) << row.half;
        EXPECT_EQ(floatToHalf(row.value), row.half) << row.value;
    }
    EXPECT_TRUE(std::isnan(halfToFloat(0x7E01)));
    EXPECT_TRUE(std::isnan(halfToFloat(floatToHalf(nan))));
}

TEST(Half, RoundsToNearestEven)
{
    struct
    {
        float value;
        ORNHalf16 half;
    } const rows[] = {{1.0f + 0x1p-11f, 0x3C00}, {1.0f + 0x3p-11f, 0x3C02}, {65519.0f, 0x7BFF},
                      {65520.0f, 0x7C00},        {1e30f, 0x7C00},           {0x1p-25f, 0x0000},
                      {0x1.8p-24f, 0x0002},      {-0x1p-30f, 0x8000},       {0x1.FFFp-15f, 0x0400}};
    for (auto const& row : rows)
        EXPECT_EQ(floatToHalf(row.value), row.half) << row.value;
}

struct ConversionRow
{
    PixelFormat from;
    Bytes in;
    PixelFormat to;
    Bytes out;
};

TEST(Conversion, HandComputedPixels)
{
    ConversionRow const rows[] = {
        {L8, {0, 128, 255}, L16, words({0, 0x8080, 65535})},
        {L16, words({128, 129, 65406, 65407}), L8, {0, 1, 254, 255}}, // 257 k + 128.5 is the border
        {RGBA16, words({0, 128, 129, 65535}), RGBA8, {0, 0, 1, 255}},
        {RGBA8, {255, 0, 0, 9, 0, 255, 0, 9, 0, 0, 255, 9}, L8, {54, 182, 18}}, // 54.2, 182.4, 18.4
        {BGR8, {255, 0, 0}, L8, {18}},
        {RGB8, {1, 2, 3}, RGBA8, {1, 2, 3, 200}},
        {BGR8, {1, 2, 3}, RGBA8, {3, 2, 1, 200}},
        {L8, {7}, BGRA8, {7, 7, 7, 200}},
        {RGBA8, {1, 2, 3, 4}, RGB8, {1, 2, 3}},
        {RGBA8, {1, 2, 3, 4}, BGRA8, {3, 2, 1, 4}},
        {BGRA8, {1, 2, 3, 4}, RGBA8, {3, 2, 1, 4}},
        {RGB8, {1, 2, 3}, BGR8, {3, 2, 1}},
        {BGRA8, {1, 2, 3, 4}, BGR8, {1, 2, 3}},
        {RGBA32F, floats({nan, -1.0f, 2.0f, 0.5f}), RGBA8, {0, 0, 255, 128}},
        {RGB32F, floats({nan, infinity, -infinity}), RGB8, {0, 255, 0}},
        {L32F, floats({0.25f, nan, 7.0f}), L16, words({16384, 0, 65535})},
        {RGBA16F, words({0x3800, 0x7E00, 0x7C00, 0xBC00}), RGBA8, {128, 0, 255, 0}},
        {L8, {255}, RGB16F, words({0x3C00, 0x3C00, 0x3C00})},
        {L32F, floats({1e9f, -3.0f}), L16F, words({0x7C00, 0xC200})},
        {L16F, words({0x4400}), L32F, floats({4.0f})},
    };
    for (ConversionRow const& row : rows) {
        Bytes in = row.in;
        Surface target;
        ASSERT_TRUE(convertTo(rowOver(in, row.from), target, row.to, ConversionParameters{200}));
        EXPECT_EQ(pixelsOf(target), row.out) << row.from << " to " << row.to;
    }
}

TEST(Conversion, EveryIntegerIsRoundedToTheNearest)
{
    std::vector<std::uint16_t> all(65536);
    for (unsigned int i = 0; i < all.size(); ++i)
        all[i] = std::uint16_t(i);
    Bytes in = words(all);
    Surface narrow;
    ASSERT_TRUE(convertTo(rowOver(in, L16), narrow, L8, {}));
    for (unsigned int i = 0; i < all.size(); ++i)
        ASSERT_EQ(narrow.data()[i], (i * 2 + 257) / (2 * 257)) << i;
    Surface wide;
    Surface back;
    ASSERT_TRUE(convertTo(rowOver(in, L16), wide, L32F, {}));
    ASSERT_TRUE(convertTo(wide, back, L16, {}));
    EXPECT_EQ(pixelsOf(back), in);
}

TEST(Conversion, EveryHalfSurvivesTheWayOverFloat)
{
    unsigned int changed = 0;
    for (unsigned int i = 0; i < 65536; ++i)
        changed += (i & 0x7FFF) <= 0x7C00 && floatToHalf(halfToFloat(ORNHalf16(i))) != i; // but for NaN
    EXPECT_EQ(changed, 0u);
}

TEST(Conversion, DirectWaysGiveWhatTheWayOverFloatsGives)
{
    constexpr unsigned int width = 1021;
    std::vector<std::uint32_t> random(width * 4), numbers(width * 4);
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < random.size(); ++i) {
        state = state * 1664525u + 1013904223u;
        random[i] = state ^ state >> 15;
        numbers[i] = random[i] & 0xBFFFBFFFu; // halves that are numbers: a direct way keeps what a NaN says
    }
    unsigned int directWays = 0;
    for (unsigned int from = 1; from < pixelFormatEnd; ++from) {
        for (unsigned int to = 1; to < pixelFormatEnd; ++to) {
            auto const a = PixelFormat(from), b = PixelFormat(to);
            DirectRow const direct = directRow(a, b);
            if (direct == nullptr)
                continue;
            ++directWays;
            bool const isHalf = isFloatFormat(a) && getBitsPerChannel(a) == 16;
            Bytes const noise = bytesOf(isHalf ? numbers : random);
            std::vector<float> loaded(width * 4), reshaped(width * 4);
            loadRow(a, noise.data(), width, loaded.data());
            reshapeRow(loaded.data(), getChannelsCount(a), reshaped.data(), getChannelsCount(b), width,
                       200 / 255.0f);
            for (std::size_t pixels : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 11u, width}) {
                std::size_t const bytes = pixels * getPixelSize(b);
                Bytes expected(bytes + 16, 0xA5), got = expected; // and nothing beyond the last pixel
                storeRow(b, reshaped.data(), pixels, expected.data());
                direct(noise.data(), pixels, got.data(), 200);
                EXPECT_EQ(got, expected) << from << " to " << to << ", " << pixels;
            }
        }
    }
    EXPECT_GT(directWays, 40u);
}

TEST(Conversion, MirroredRows)
{
    Bytes in = {1, 2, 3, 4, 5, 6};
    Surface const source(in.data(), SurfaceDescription(2, 3, L8));
    Surface same(SurfaceDescription(2, 3, L8)), wide(SurfaceDescription(2, 3, L16));
    ASSERT_TRUE(convertMirrored(source, same, {}));
    EXPECT_EQ(pixelsOf(same), (Bytes{5, 6, 3, 4, 1, 2}));
    ASSERT_TRUE(convertMirrored(source, wide, {}));
    EXPECT_EQ(pixelsOf(wide), words({0x505, 0x606, 0x303, 0x404, 0x101, 0x202}));
    same.mirror();
    EXPECT_EQ(pixelsOf(same), in);
}

TEST(Conversion, SignedComponents)
{
    Bytes in = bytesOf(std::vector<std::int16_t>{32767, -32768, 0, 16384});
    SurfaceDescription description(4, 1, L16);
    description.flags = SurfaceDescription::SignedComponents;
    Surface const source(in.data(), description);
    Surface target;
    ASSERT_TRUE(convertTo(source, target, L8, {}));
    EXPECT_EQ(pixelsOf(target), (Bytes{255, 0, 0, 128}));
    EXPECT_EQ(target.description().flags, 0u);
}

TEST(Conversion, FailureLeavesTheTargetEmpty)
{
    Bytes in = {1, 2, 3, 4};
    Surface target;
    EXPECT_FALSE(convertTo(Surface(), target, L8, {}));
    EXPECT_FALSE(convertTo(rowOver(in, L8), target, {}));
    EXPECT_FALSE(convertTo(rowOver(in, L8), target, PixelFormat(8), {}));
    EXPECT_TRUE(target.isEmpty());
    Surface other(SurfaceDescription(3, 1, L8));
    EXPECT_FALSE(convertTo(rowOver(in, L8), other, {}));
}

TEST(Operations, DeepCopyWalksRowsByPitch)
{
    Bytes padded(4096 * 2, 99);
    SurfaceDescription description(1000, 2, RGB8);
    description.pitch = 4096;
    Surface source(padded.data(), description);
    for (unsigned int x = 0; x < 3000; ++x) {
        source.row(0)[x] = std::uint8_t(x);
        source.row(1)[x] = std::uint8_t(x * 3);
    }
    Surface target;
    ASSERT_TRUE(deepCopy(source, target));
    EXPECT_EQ(target.pitch(), 3000u);
    EXPECT_EQ(pixelsOf(target), pixelsOf(source));
    Surface odd(SurfaceDescription(1000, 2, BGR8));
    EXPECT_FALSE(deepCopy(source, odd));
}

TEST(Operations, ChannelsAndOrders)
{
    Bytes in = {1, 2, 3, 4, 5, 6, 7, 8};
    Surface const blueFirst = rowOver(in, BGRA8);
    Surface red;
    Surface alpha;
    Surface none;
    ASSERT_TRUE(extractChannel(blueFirst, red, Channel::Red));
    ASSERT_TRUE(extractChannel(blueFirst, alpha, Channel::Alpha));
    EXPECT_FALSE(extractChannel(rowOver(in, L8), none, Channel::Alpha));
    EXPECT_EQ(pixelsOf(red), (Bytes{3, 7}));
    EXPECT_EQ(pixelsOf(alpha), (Bytes{4, 8}));
    Surface swapped;
    ASSERT_TRUE(swizzleAlloc(blueFirst, swapped));
    EXPECT_EQ(swapped.format(), RGBA8);
    EXPECT_EQ(pixelsOf(swapped), (Bytes{3, 2, 1, 4, 7, 6, 5, 8}));
}

TEST(Operations, PremultiplyAndDecode)
{
    Bytes in = {255, 100, 0, 128};
    Surface product;
    ASSERT_TRUE(premultiply(rowOver(in, RGBA8), product));
    EXPECT_EQ(pixelsOf(product), (Bytes{128, 50, 0, 128})); // 100 * 128 / 255 = 50.2
    Bytes encoded = {188, 0, 255, 188};
    Surface linear;
    ASSERT_TRUE(convertsRGBToLinearRGB(rowOver(encoded, RGBA8), linear));
    EXPECT_EQ(pixelsOf(linear), (Bytes{128, 0, 255, 188})); // ((0.7373 + 0.055) / 1.055) ^ 2.4 = 0.5029
}

TEST(Operations, ConvertsToTheSameChannelsIn8Bits)
{
    Surface wide(SurfaceDescription(1, 1, RGB32F));
    ASSERT_TRUE(fill(wide, 2.0f, 0.5f, -1.0f, 1.0f));
    Surface narrow;
    ASSERT_TRUE(convertTo8Bits(wide, narrow, ConversionParameters()));
    EXPECT_EQ(narrow.format(), RGB8);
    EXPECT_EQ(pixelsOf(narrow), (Bytes{255, 128, 0}));
    Bytes in = {1, 2, 3};
    Surface kept;
    ASSERT_TRUE(convertTo8Bits(rowOver(in, BGR8), kept, ConversionParameters()));
    EXPECT_EQ(kept.format(), BGR8);
    EXPECT_EQ(pixelsOf(kept), in);
}

TEST(Operations, EmbedClipsAtEveryEdgeAndConverts)
{
    Bytes in = {1, 2, 3, 4};
    Surface const square(in.data(), SurfaceDescription(2, 2, L8));
    struct
    {
        int x;
        int y;
        Bytes out;
    } const rows[] = {{0, 0, {1, 2, 0, 3, 4, 0, 0, 0, 0}},
                      {2, 2, {0, 0, 0, 0, 0, 0, 0, 0, 1}},
                      {-1, -1, {4, 0, 0, 0, 0, 0, 0, 0, 0}},
                      {5, 0, {0, 0, 0, 0, 0, 0, 0, 0, 0}},
                      {-2147483647, 0, {0, 0, 0, 0, 0, 0, 0, 0, 0}}};
    for (auto const& row : rows) {
        Surface target(SurfaceDescription(3, 3, L8));
        fill(target, 0, 0, 0, 0);
        ASSERT_TRUE(embedWithCrop(square, target, row.x, row.y));
        EXPECT_EQ(pixelsOf(target), row.out) << row.x << ' ' << row.y;
    }
    Surface colour(SurfaceDescription(1, 1, BGRA8));
    ASSERT_TRUE(embedWithCrop(square, colour, -1, 0));
    EXPECT_EQ(pixelsOf(colour), (Bytes{2, 2, 2, 255}));
}

TEST(Operations, CropAndFill)
{
    Surface surface(SurfaceDescription(3, 2, BGR8));
    ASSERT_TRUE(fill(surface, 1.0f, 0.5f, 0.0f, 1.0f));
    Surface const part = crop(surface, 2, 1, 9, 9);
    EXPECT_EQ(part.width(), 1u);
    EXPECT_EQ(part.height(), 1u);
    EXPECT_EQ(pixelsOf(part), (Bytes{0, 128, 255}));
    EXPECT_TRUE(crop(surface, 3, 0, 1, 1).isEmpty());
}

} // namespace
