#include "orncommon/image/surfaceoperations.h"
#include "orncommon/image/qimageconversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

using namespace Orn::Image::Core;
using namespace Orn::Surfaces;
using Orn::Image::Core::convertTo;
using Orn::Image::Core::crop;

namespace {

template<typename T> SharedSurface rowOf(PixelFormat format, std::vector<T> const& components)
{
    unsigned int const width = unsigned(components.size() * sizeof(T) / getPixelSize(format));
    auto surface = SharedSurface::create(SurfaceDescription(width, 1, format), 64u);
    std::memcpy(surface->data(), components.data(), components.size() * sizeof(T));
    return surface;
}

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;
using Floats = std::vector<float>;

TEST(SurfaceOperations, TargetsAreNullAfterAFailure)
{
    auto const grey = rowOf(L8, Bytes{1, 2});
    SharedSurface target = makeEmpty();
    EXPECT_FALSE(convertTo(*grey, target, PixelFormat_Invalid));
    EXPECT_TRUE(target.isNull());
    EXPECT_FALSE(convertTo(*grey, target));
    EXPECT_TRUE(target.isNull());
    EXPECT_FALSE(extractChannel(*grey, target, Channel::Alpha));
    EXPECT_TRUE(target.isNull());
    EXPECT_TRUE(makeShared(Surface()).isNull());
    EXPECT_TRUE(clone(Surface()).isNull());
}

TEST(SurfaceOperations, MirroredCopyLeavesTheSource)
{
    Bytes bytes = {1, 2, 3};
    Surface const column(bytes.data(), SurfaceDescription(1, 3, L8));
    SharedSurface target;
    ASSERT_TRUE(deepCopyMirrored(column, target));
    EXPECT_EQ(Bytes(target->data(), target->data() + 3), (Bytes{3, 2, 1}));
    EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
}

TEST(SurfaceOperations, CropTakesTheWholeRectangle)
{
    Surface const surface(SurfaceDescription(20, 15, RGBA8));
    struct
    {
        QRect rectangle;
        unsigned int width;
        unsigned int height;
    } const rows[] = {{{0, 0, 10, 10}, 10, 10}, {{15, 10, 10, 10}, 5, 5}, {{-3, -3, 4, 5}, 1, 2}};
    for (auto const& row : rows) {
        SharedSurface const part = crop(surface, row.rectangle);
        ASSERT_FALSE(part.isNull());
        EXPECT_EQ(part->width(), row.width);
        EXPECT_EQ(part->height(), row.height);
    }
    EXPECT_TRUE(crop(surface, {20, 0, 4, 4}).isNull());
}

TEST(SurfaceOperations, PicksOnePixelByEmbedding)
{
    auto const picture = rowOf(RGBA8, Bytes{1, 2, 3, 4, 5, 6, 7, 8});
    auto picked = SharedSurface::create(SurfaceDescription(1, 1, BGRA8), 64u);
    ASSERT_TRUE(embed(*picture, picked, QPoint(-1, 0)));
    EXPECT_EQ(Bytes(picked->data(), picked->data() + 4), (Bytes{7, 6, 5, 8}));
}

TEST(SurfaceOperations, HasPixelWithAlpha)
{
    float const nan = std::numeric_limits<float>::quiet_NaN();
    struct
    {
        SharedSurface surface;
        bool expected;
    } const rows[] = {
        {rowOf(RGB8, Bytes{0, 0, 0}), false},
        {rowOf(RGBA8, Bytes{0, 0, 0, 255, 0, 0, 0, 255}), false},
        {rowOf(BGRA8, Bytes{0, 0, 0, 255, 0, 0, 0, 254}), true},
        {rowOf(RGBA16, Words{0, 0, 0, 65535}), false},
        {rowOf(RGBA16, Words{0, 0, 0, 65534}), true},
        {rowOf(RGBA16F, Words{0, 0, 0, 0x3C00}), false},
        {rowOf(RGBA16F, Words{0, 0, 0, 0x4000}), true}, // 2.0
        {rowOf(RGBA32F, Floats{0, 0, 0, 1.0f}), false},
        {rowOf(RGBA32F, Floats{0, 0, 0, 1.5f}), true},
        {rowOf(RGBA32F, Floats{0, 0, 0, nan}), true},
    };
    for (auto const& row : rows)
        EXPECT_EQ(hasPixelWithAlpha(*row.surface), row.expected) << row.surface->format();
}

TEST(SurfaceOperations, LinearToSRGBInIntegers)
{
    SharedSurface target;
    // 128 / 255 = 0.50196: 1.055 * 0.50196 ^ (1 / 2.4) - 0.055 = 0.73654, times 255 = 187.8; alpha is encoded
    // too.
    ASSERT_TRUE(linearToSRGB(*rowOf(RGBA8, Bytes{0, 1, 255, 128}), target));
    EXPECT_EQ(Bytes(target->data(), target->data() + 4), (Bytes{0, 13, 255, 188}));
    target.reset();
    // 100 / 65535 * 12.92 * 65535 = 1292 on the straight part.
    ASSERT_TRUE(linearToSRGB(*rowOf(L16, Words{100, 65535}), target));
    EXPECT_EQ(reinterpret_cast<std::uint16_t const*>(target->data())[0], 1292);
    EXPECT_EQ(reinterpret_cast<std::uint16_t const*>(target->data())[1], 65535);
}

TEST(SurfaceOperations, LinearToSRGBInFloats)
{
    SharedSurface target;
    ASSERT_TRUE(linearToSRGB(*rowOf(L32F, Floats{0.0031308f, -1.0f, 1.0f, 0.21404114f}), target));
    auto const* values = reinterpret_cast<float const*>(target->data());
    EXPECT_EQ(values[0], 12.92f * 0.0031308f);
    EXPECT_EQ(values[1], -12.92f);
    EXPECT_NEAR(values[2], 1.0f, 1e-6f);
    EXPECT_NEAR(values[3], 0.5f, 1e-6f);
    target.reset();
    ASSERT_TRUE(linearToSRGB(*rowOf(L16F, Words{0x3C00, 0x0000}), target));
    EXPECT_EQ(reinterpret_cast<std::uint16_t const*>(target->data())[0], 0x3C00);
    target.reset();
    EXPECT_FALSE(linearToSRGB(Surface(target.data(), SurfaceDescription(1, 1, PixelFormat(19))), target));
    EXPECT_TRUE(target.isNull());
}

TEST(SurfaceOperations, RemoveAlphaKeepsDepthAndOrder)
{
    EXPECT_EQ(removeAlpha(RGBA8), RGB8);
    EXPECT_EQ(removeAlpha(BGRA8), BGR8);
    EXPECT_EQ(removeAlpha(RGBA16), RGB16);
    EXPECT_EQ(removeAlpha(RGBA16F), RGB16F);
    EXPECT_EQ(removeAlpha(RGBA32F), RGB32F);
    EXPECT_EQ(removeAlpha(L16), L16);
}

TEST(SurfaceOperations, RescaleKeepsAFlatColourInEveryFormat)
{
    for (PixelFormat format :
         {L8, RGB8, BGR8, RGBA8, BGRA8, L16, RGB16, RGBA16, L16F, RGB16F, RGBA16F, L32F, RGB32F, RGBA32F}) {
        Surface source(SurfaceDescription(13, 7, format));
        fill(source, 0.25f, 0.5f, 0.75f, 1.0f);
        SharedSurface resized;
        ASSERT_TRUE(rescaleCopy(source, resized, 5, 9, ScaleFilter::Bicubic)) << format;
        EXPECT_EQ(resized->width(), 5u);
        EXPECT_EQ(resized->height(), 9u);
        EXPECT_EQ(resized->format(), format);
        Surface got;
        Surface wanted;
        Orn::Surfaces::convertTo(*resized, got, RGBA32F, {});
        Orn::Surfaces::convertTo(source, wanted, RGBA32F, {});
        for (unsigned int c = 0; c < 4; ++c)
            EXPECT_NEAR(reinterpret_cast<float*>(got.row(8))[16 + c],
                        reinterpret_cast<float*>(wanted.data())[c], 0.005f)
                << format;
    }
}

TEST(QImageConversion, FormatsForDisplay)
{
    struct
    {
        SharedSurface surface;
        QImage::Format format;
        QColor colour;
    } const rows[] = {
        {rowOf(L8, Bytes{128}), QImage::Format_Grayscale8, {128, 128, 128}},
        {rowOf(L16, Words{65535}), QImage::Format_Grayscale8, {255, 255, 255}},
        {rowOf(L32F, Floats{0.5f}), QImage::Format_Grayscale8, {128, 128, 128}},
        {rowOf(RGB8, Bytes{1, 2, 3}), QImage::Format_RGB888, {1, 2, 3}},
        {rowOf(BGR8, Bytes{3, 2, 1}), QImage::Format_RGB888, {1, 2, 3}},
        {rowOf(RGBA8, Bytes{1, 2, 3, 4}), QImage::Format_RGBA8888, {1, 2, 3, 4}},
        {rowOf(BGRA8, Bytes{3, 2, 1, 4}), QImage::Format_RGBA8888, {1, 2, 3, 4}},
        {rowOf(RGBA16, Words{257, 514, 771, 1028}), QImage::Format_RGBA8888, {1, 2, 3, 4}},
        {rowOf(RGB32F, Floats{1.0f, 0.0f, 2.0f}), QImage::Format_RGBA8888, {255, 0, 255, 255}},
        {rowOf(RGB16, Words{1, 2, 3}), QImage::Format_Invalid, {}},
        {SharedSurface(), QImage::Format_Invalid, {}},
    };
    for (auto const& row : rows) {
        QImage const image = surfaceToQImage(row.surface);
        ASSERT_EQ(image.format(), row.format);
        EXPECT_TRUE(image.isNull() || image.pixelColor(0, 0) == row.colour) << int(row.format);
    }
}

TEST(QImageConversion, ThereAndBack)
{
    for (QImage::Format format :
         {QImage::Format_Grayscale8, QImage::Format_RGB888, QImage::Format_RGBA8888, QImage::Format_ARGB32,
          QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied}) {
        QImage image(3, 2, format); // rows are padded to four bytes
        image.fill(Qt::red);
        image.setPixelColor(2, 1, Qt::white);
        QImage const back = surfaceToQImage(qImageToSurface(image));
        ASSERT_EQ(back.size(), image.size()) << format;
        EXPECT_EQ(back.pixelColor(1, 0), image.pixelColor(1, 0)) << format;
        EXPECT_EQ(back.pixelColor(2, 1), image.pixelColor(2, 1)) << format;
    }
    EXPECT_TRUE(qImageToSurface(QImage()).isNull());
    QImage opaque(1, 1, QImage::Format_RGB32);
    opaque.fill(0);
    EXPECT_EQ(qImageToSurface(opaque)->description().alphaUse, SurfaceDescription::AlphaAbsent);
}

} // namespace
