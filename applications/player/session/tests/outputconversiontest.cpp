// What becomes of each kind of output of an engine. The expected pixels follow from
// tests/testengine/testpicture.h.

#include "applications/player/session/tests/openengine.h"
#include "orncommon/image/qimageconversion.h"
#include "orncommon/surfaces/half.h"

#include <cstring>

using namespace Zph::Applications::Player;
using namespace Zph::Applications::Player::Tests;
using namespace Orn::Surfaces;

namespace {

constexpr int width = 8, height = 4;

QSharedPointer<Surface> fetch(int format, int order = VELLOR_ORDER_RGBA, const char* more = "")
{
    OpenEngine session(QStringLiteral("output 1 5 %1 %2 %3 %4\n%5")
                           .arg(width)
                           .arg(height)
                           .arg(format)
                           .arg(order)
                           .arg(more)
                           .toUtf8());
    session.generate({1});
    return session.results[0].surface();
}

quint8 byteAt(int channel, int x, int y)
{
    return quint8(40 * channel + 16 * x + y);
}

/// Channel `channel`, in memory order, as the test engine writes it.
double expected(PixelFormat format, int channel, int x, int y)
{
    if (getBitsPerChannel(format) == 16 && isFloatFormat(format))
        return 1.0 / (1 << channel);
    return byteAt(channel, x, y) / 255.0;
}

double channelAt(const Surface& surface, int channel, int x, int y)
{
    const PixelFormat format = surface.format();
    const unsigned bytes = getBitsPerChannel(format) / 8;
    const quint8* at = surface.row(unsigned(y)) + x * getPixelSize(format) + unsigned(channel) * bytes;
    quint16 word = 0;
    float real = 0;
    std::memcpy(&word, at, bytes == 2 ? 2 : 0);
    std::memcpy(&real, at, bytes == 4 ? 4 : 0);
    if (bytes == 1)
        return *at / 255.0;
    if (bytes == 2)
        return isFloatFormat(format) ? halfToFloat(word) : word / 65535.0;
    return real;
}

bool isGreyTileWithWords(const QSharedPointer<Surface>& surface)
{
    if (!surface || surface->width() != width || surface->height() != height)
        return false;
    return Orn::Image::Core::surfaceToQImage(surface).pixel(0, 0) == 0xffa8a8a8u;
}

} // namespace

struct RawRow
{
    int format;
    int order;
    PixelFormat surface;
};

class RawOutput : public testing::TestWithParam<RawRow>
{
};

TEST_P(RawOutput, IsAdoptedAsItStands)
{
    const RawRow row = GetParam();
    const auto surface = fetch(row.format, row.order);
    ASSERT_TRUE(surface);
    ASSERT_EQ(surface->format(), row.surface);
    ASSERT_EQ(surface->width(), unsigned(width));
    ASSERT_EQ(surface->height(), unsigned(height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int channel = 0; channel < int(getChannelsCount(row.surface)); ++channel)
                ASSERT_NEAR(channelAt(*surface, channel, x, y), expected(row.surface, channel, x, y), 1e-6)
                    << x << ' ' << y << ' ' << channel;
}

INSTANTIATE_TEST_SUITE_P(Formats, RawOutput,
                         testing::Values(RawRow{0, 228, RGBA8}, RawRow{4, 228, RGBA8},
                                         RawRow{0x20, 228, RGBA8}, RawRow{0, 198, BGRA8},
                                         RawRow{4, 198, BGRA8}, RawRow{12, 228, L8}, RawRow{16, 228, RGBA16},
                                         RawRow{20, 228, RGBA16}, RawRow{16, 198, RGBA16},
                                         RawRow{28, 228, L16}, RawRow{64, 228, RGBA32F},
                                         RawRow{68, 228, RGBA32F}, RawRow{76, 228, L32F},
                                         RawRow{80, 228, RGBA16F}, RawRow{84, 228, RGBA16F},
                                         RawRow{92, 228, L16F}));

TEST(OutputConversion, AnotherOrderOfFourBytesIsSorted)
{
    // 0x1b: red is source channel 3, green 2, blue 1, alpha 0. 0x39: red 1, green 2, blue 3, alpha 0.
    const std::pair<int, std::array<int, 4>> rows[] = {{0x1b, {3, 2, 1, 0}}, {0x39, {1, 2, 3, 0}}};
    for (const auto& [order, sources] : rows) {
        const auto surface = fetch(0, order);
        ASSERT_TRUE(surface);
        ASSERT_EQ(surface->format(), RGBA8);
        for (int x = 0; x < width; ++x)
            for (int channel = 0; channel < 4; ++channel)
                ASSERT_EQ(surface->row(2)[4 * x + channel], byteAt(sources[std::size_t(channel)], x, 2))
                    << order;
    }
}

TEST(OutputConversion, BlocksAreDecoded)
{
    for (const int format : {1, 5, 9, 13, 17}) {
        const auto surface = fetch(format);
        ASSERT_TRUE(surface);
        const QImage image = Orn::Image::Core::surfaceToQImage(surface);
        ASSERT_EQ(image.size(), QSize(width, height)) << format;
        EXPECT_EQ(image.pixel(0, 0), 0xffff0000u) << format;
        EXPECT_EQ(image.pixel(width - 1, height - 1), 0xffff0000u) << format;
    }
}

TEST(OutputConversion, BlocksOfOneAndTwoChannelsKeepTheirValues)
{
    const auto one = fetch(25);
    ASSERT_TRUE(one);
    EXPECT_EQ(qRed(Orn::Image::Core::surfaceToQImage(one).pixel(3, 3)), 200);
    const auto two = fetch(21);
    ASSERT_TRUE(two);
    const QRgb pixel = Orn::Image::Core::surfaceToQImage(two).pixel(3, 3);
    EXPECT_EQ(qRed(pixel), 200);
    EXPECT_EQ(qGreen(pixel), 100);
}

TEST(OutputConversion, WhatCantBeShownIsAGreyTile)
{
    // RGB of each depth, JPEG, the mobile family, and codes that stand nowhere.
    for (const int format : {8, 24, 72, 88, 2, 3, 7, 11, 29, 33})
        EXPECT_TRUE(isGreyTileWithWords(fetch(format))) << format;
}

TEST(OutputConversion, TheGreyTileHasWordsOnIt)
{
    OpenEngine session("output 1 5 256 64 8\n");
    session.generate({1});
    const QImage image = Orn::Image::Core::surfaceToQImage(session.results[0].surface());
    ASSERT_EQ(image.size(), QSize(256, 64));
    QRect words;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != 0xffa8a8a8u)
                words |= QRect(x, y, 1, 1);
    EXPECT_GT(words.width(), 60);
    EXPECT_NEAR(words.center().x(), 127, 4);
    EXPECT_NEAR(words.center().y(), 31, 6);
}

TEST(OutputConversion, ADynamicSizeComesFromTheTexture)
{
    const auto surface = fetch(12, 228, "dynamic 1\n");
    ASSERT_TRUE(surface);
    EXPECT_EQ(surface->width(), unsigned(width));
}

namespace {

template<typename T> T payload(const ValueOrSurfacePlayer& result)
{
    const auto* data = dynamic_cast<const Orn::Module::Value::DataT<T>*>(result.value());
    EXPECT_NE(data, nullptr);
    return data ? data->value : T();
}

} // namespace

TEST(OutputConversion, NumbersComeWithTheirType)
{
    OpenEngine session(
        "output 10 0\noutput 20 1\noutput 30 2\noutput 40 3\noutput 50 4\noutput 60 8\noutput 70 9\n"
        "output 80 10\n");
    session.generate({10, 20, 30, 40, 50, 60, 70, 80});
    auto& results = session.results;
    ASSERT_EQ(results.size(), 8u);
    EXPECT_EQ(payload<float>(results[0]), 10);
    EXPECT_EQ((payload<std::array<float, 2>>(results[1])), (std::array<float, 2>{20, 21}));
    EXPECT_EQ((payload<std::array<float, 3>>(results[2])), (std::array<float, 3>{30, 31, 32}));
    EXPECT_EQ((payload<std::array<float, 4>>(results[3])), (std::array<float, 4>{40, 41, 42, 43}));
    EXPECT_EQ(payload<int>(results[4]), 50);
    EXPECT_EQ((payload<std::array<int, 2>>(results[5])), (std::array<int, 2>{60, 61}));
    EXPECT_EQ((payload<std::array<int, 3>>(results[6])), (std::array<int, 3>{70, 71, 72}));
    EXPECT_EQ((payload<std::array<int, 4>>(results[7])), (std::array<int, 4>{80, 81, 82, 83}));
    const int codes[] = {14, 15, 16, 17, 6, 7, 8, 9};
    for (quint32 i = 0; i < 8; ++i)
        EXPECT_EQ(int(results[i].value()->type().code()), codes[i]);

    const ValueOrSurfacePlayer copy = results[0];
    EXPECT_NE(copy.value(), results[0].value());
    EXPECT_EQ(payload<float>(copy), 10);
}
