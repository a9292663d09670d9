#include "orncommon/image/codec/dds/blockdecoder.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QtEndian>

#include <array>
#include <vector>

using namespace Orn::Image::Codec;
using namespace Orn::Surfaces;

namespace {

using Pixel = std::array<int, 4>;

/// The header as the engine session writes it: size, code, caps, and no flags.
QByteArray ddsFile(char const* code, unsigned int width, unsigned int height, QByteArray const& blocks)
{
    QByteArray file(128, '\0');
    auto const put = [&file](int offset, quint32 value) { qToLittleEndian(value, file.data() + offset); };
    file.replace(0, 4, "DDS ");
    put(4, 124);
    put(12, height);
    put(16, width);
    put(76, 32);
    put(80, 4);
    file.replace(84, 4, code);
    put(108, 0x1000);
    return file + blocks;
}

QSharedPointer<Surface> readDds(QByteArray file, QByteArray const& format = "dds")
{
    SurfaceCodecManager manager;
    registerDefaultCodecs(manager);
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    auto const reader = manager.createReader(buffer, format);
    QSharedPointer<Surface> surface;
    if (!reader.isNull())
        reader->read(surface, nullptr);
    return surface;
}

Pixel pixelAt(Surface const& surface, unsigned int x, unsigned int y)
{
    auto const* p = surface.row(y) + x * 4;
    return {p[0], p[1], p[2], p[3]};
}

QByteArray const redToBlack = QByteArray::fromHex("00f8"
                                                  "0000"
                                                  "e4000000"); // first row has indices 0, 1, 2, 3
QByteArray const punchThrough = QByteArray::fromHex("0000"
                                                    "00f8"
                                                    "e4000000");

TEST(Dds, FourColours)
{
    auto const surface = readDds(ddsFile("DXT1", 4, 4, redToBlack));
    ASSERT_FALSE(surface.isNull());
    EXPECT_EQ(surface->format(), RGBA8);
    EXPECT_EQ(pixelAt(*surface, 0, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*surface, 1, 0), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*surface, 2, 0), (Pixel{170, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*surface, 3, 0), (Pixel{85, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*surface, 3, 3), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(surface->description().alphaUse, SurfaceDescription::AlphaAbsent);
}

TEST(Dds, ThreeColoursAndTransparent)
{
    auto const surface = readDds(ddsFile("DXT1", 4, 4, punchThrough));
    ASSERT_FALSE(surface.isNull());
    EXPECT_EQ(pixelAt(*surface, 2, 0), (Pixel{128, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*surface, 3, 0), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(surface->description().alphaUse, SurfaceDescription::AlphaCarried);
}

TEST(Dds, ExplicitAlphaAlwaysHasFourColours)
{
    auto const surface =
        readDds(ddsFile("DXT3", 4, 4, QByteArray::fromHex("f0000000000000a0") + punchThrough));
    ASSERT_FALSE(surface.isNull());
    EXPECT_EQ(pixelAt(*surface, 0, 0)[3], 0);
    EXPECT_EQ(pixelAt(*surface, 1, 0)[3], 255);
    EXPECT_EQ(pixelAt(*surface, 3, 3)[3], 170);
    EXPECT_EQ(pixelAt(*surface, 3, 0)[0], 170); // (0 + 2 * 255) / 3, no transparent black
}

TEST(Dds, InterpolatedChannels)
{
    // Ends 210 and 0, indices 0, 1, 2, 7 in the first row: 210, 0, 6/7 and 1/7 of 210.
    QByteArray const sixBetween = QByteArray::fromHex("d200"
                                                      "880e00000000");
    // Ends 0 and 200, indices 0, 2, 6, 7: 0, 1/5 of 200, and the extremes.
    QByteArray const fourBetween = QByteArray::fromHex("00c8"
                                                       "900f00000000");
    auto const alpha = readDds(ddsFile("DXT5", 4, 4, sixBetween + redToBlack));
    ASSERT_FALSE(alpha.isNull());
    EXPECT_EQ(pixelAt(*alpha, 0, 0), (Pixel{255, 0, 0, 210}));
    EXPECT_EQ(pixelAt(*alpha, 1, 0)[3], 0);
    EXPECT_EQ(pixelAt(*alpha, 2, 0)[3], 180);
    EXPECT_EQ(pixelAt(*alpha, 3, 0)[3], 30);

    auto const grey = readDds(ddsFile("ATI1", 4, 4, fourBetween));
    ASSERT_FALSE(grey.isNull());
    EXPECT_EQ(grey->format(), L8);
    EXPECT_EQ(std::vector<int>(grey->data(), grey->data() + 4), (std::vector<int>{0, 40, 0, 255}));

    auto const two = readDds(ddsFile("ATI2", 4, 4, sixBetween + fourBetween));
    ASSERT_FALSE(two.isNull());
    EXPECT_EQ(pixelAt(*two, 0, 0), (Pixel{210, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*two, 3, 0), (Pixel{30, 255, 0, 255}));
}

TEST(Dds, SizesThatAreNoMultipleOfFour)
{
    auto const tiny = readDds(ddsFile("DXT1", 1, 2, redToBlack));
    ASSERT_FALSE(tiny.isNull());
    EXPECT_EQ(pixelAt(*tiny, 0, 1), (Pixel{255, 0, 0, 255}));
    auto const wide = readDds(ddsFile("DXT1", 6, 5, punchThrough + redToBlack + redToBlack + redToBlack), "");
    ASSERT_FALSE(wide.isNull());
    EXPECT_EQ(pixelAt(*wide, 5, 0), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*wide, 5, 4), (Pixel{0, 0, 0, 255}));
}

TEST(Dds, DamagedFilesGiveNothing)
{
    QByteArray const good = ddsFile("DXT5", 8, 8, QByteArray(64, '\x11'));
    ASSERT_FALSE(readDds(good).isNull());
    for (int length : {0, 3, 84, 127, 128, 129, good.size() - 1})
        EXPECT_TRUE(readDds(good.left(length)).isNull()) << length;
    for (char const* code : {"DXT1", "ATI2"}) {
        EXPECT_TRUE(readDds(ddsFile(code, 0, 8, QByteArray(64, '\x11'))).isNull());
        EXPECT_TRUE(readDds(ddsFile(code, ~0u, ~0u, QByteArray(64, '\x11'))).isNull());
        EXPECT_TRUE(readDds(ddsFile(code, 65536, 65536, QByteArray(64, '\x11'))).isNull());
    }
}

} // namespace
