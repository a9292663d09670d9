#include "applications/player/images/imageinput.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace Zph::Applications::Player;
using namespace Orn::Surfaces;

// Grey pixels 1, 2, 3... row by row.
QSharedPointer<Surface> picture(unsigned width, unsigned height)
{
    const auto surface = QSharedPointer<Surface>::create(SurfaceDescription(width, height, L8));
    std::uint8_t value = 0;
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x)
            surface->row(y)[x] = ++value;
    return surface;
}

struct Prepared
{
    int width = 0, height = 0;
    std::vector<int> pixels;
};

Prepared prepared(ImageInput& input, quint32 width, quint32 height)
{
    const VellorTexture* texture = input.prepare(width, height);
    if (!texture)
        return {};
    const auto* first = static_cast<const std::uint8_t*>(texture->buffer);
    return {texture->width, texture->height, {first, first + texture->width * texture->height}};
}

ImageInput inputWith(quint32 flags, const QColor& padding = QColor(255, 255, 255))
{
    ImageInput input;
    ImageOptions options;
    options.flags = flags;
    options.paddingColor = padding;
    input.setOptions(options);
    input.setSource(picture(3, 2));
    return input;
}

TEST(ImageInput, SizesOfTheCanvas)
{
    const QSize source(100, 50), wanted(64, 64);
    EXPECT_EQ(canvasSize(source, wanted, ImageOptions::Stretch), source);
    EXPECT_EQ(canvasSize(source, wanted, ImageOptions::Exact), wanted);
    EXPECT_EQ(canvasSize(source, wanted, ImageOptions::KeepAspect), QSize(100, 100));
    EXPECT_EQ(canvasSize(source, QSize(32, 128), ImageOptions::KeepAspect), QSize(100, 400));
    // Beyond what an engine takes.
    EXPECT_EQ(canvasSize(QSize(8192, 8192), QSize(16384, 1), ImageOptions::KeepAspect), QSize(8192, 8192));
    EXPECT_EQ(canvasSize(source, QSize(0, 64), ImageOptions::Exact), source);
}

TEST(ImageInput, PreparesByMode)
{
    ImageInput stretched = inputWith(ImageOptions::Stretch);
    EXPECT_EQ(prepared(stretched, 8, 8).pixels, (std::vector<int>{1, 2, 3, 4, 5, 6}));

    ImageInput padded = inputWith(ImageOptions::Exact);
    EXPECT_EQ(prepared(padded, 4, 3).pixels,
              (std::vector<int>{1, 2, 3, 255, 4, 5, 6, 255, 255, 255, 255, 255}));
    EXPECT_EQ(prepared(padded, 2, 1).pixels, (std::vector<int>{1, 2})) << "another size is prepared anew";
    EXPECT_EQ(prepared(padded, 2, 3).pixels, (std::vector<int>{1, 2, 4, 5, 255, 255}));

    ImageInput mosaic = inputWith(ImageOptions::Exact | ImageOptions::Mosaic);
    EXPECT_EQ(prepared(mosaic, 4, 3).pixels, (std::vector<int>{1, 2, 3, 1, 4, 5, 6, 4, 1, 2, 3, 1}));

    ImageInput grown = inputWith(ImageOptions::KeepAspect, QColor(0, 0, 0));
    const Prepared canvas = prepared(grown, 4, 4);
    EXPECT_EQ(canvas.height, 3);
    EXPECT_EQ(canvas.pixels, (std::vector<int>{1, 2, 3, 4, 5, 6, 0, 0, 0}));
}

TEST(ImageInput, PaddingKeepsItsAlpha)
{
    const auto surface = QSharedPointer<Surface>::create(SurfaceDescription(1, 1, RGBA8));
    std::fill_n(surface->data(), 4, std::uint8_t(255));
    ImageInput input;
    input.setSource(surface);
    for (const int alpha : {0, 51}) {
        ImageOptions options;
        options.flags = ImageOptions::Exact;
        options.paddingColor = QColor(255, 0, 0, alpha);
        input.setOptions(options);
        const VellorTexture* texture = input.prepare(2, 1);
        ASSERT_NE(texture, nullptr);
        const auto* pixels = static_cast<const std::uint8_t*>(texture->buffer);
        EXPECT_EQ(std::vector<int>(pixels, pixels + 8),
                  (std::vector<int>{255, 255, 255, 255, 255, 0, 0, alpha}));
    }
}

TEST(ImageInput, PreparesOnceForOneSize)
{
    ImageInput input = inputWith(ImageOptions::Exact);
    const VellorTexture* first = input.prepare(8, 8);
    const void* pixels = first->buffer;
    EXPECT_EQ(input.prepare(8, 8)->buffer, pixels);
    input.setSource(picture(1, 1));
    EXPECT_EQ(prepared(input, 1, 1).pixels, (std::vector<int>{1}));
}

TEST(ImageInput, ColoursWithoutAlphaBecomeOpaque)
{
    const auto surface = QSharedPointer<Surface>::create(SurfaceDescription(1, 1, RGB8));
    const std::uint8_t colour[] = {10, 20, 30};
    std::copy(std::begin(colour), std::end(colour), surface->data());
    ImageInput input;
    input.setSource(surface);
    for (const quint32 wanted : {4, 8}) {
        const VellorTexture* texture = input.prepare(wanted, wanted);
        ASSERT_NE(texture, nullptr);
        const auto* pixel = static_cast<const std::uint8_t*>(texture->buffer);
        EXPECT_EQ(std::vector<int>(pixel, pixel + 4), (std::vector<int>{10, 20, 30, 255})) << wanted;
        EXPECT_EQ(surface->format(), RGB8) << "the picture itself stays";
    }
}

TEST(ImageInput, Crops)
{
    ImageOptions options;
    options.cropLeft = 1;
    options.cropTop = 0;
    options.cropRight = 1;
    ImageInput input;
    input.setSource(picture(3, 2));
    input.setOptions(options);
    EXPECT_EQ(prepared(input, 8, 8).pixels, (std::vector<int>{2, 5}));
    options.cropTop = -1; // not set, so nothing is cut off
    input.setOptions(options);
    EXPECT_EQ(prepared(input, 8, 8).width, 3);
}

TEST(ImageInput, WithoutAPictureTilesTheProgramsOwn)
{
    Orn::Image::Codec::registerDefaultCodecs(Orn::Image::Codec::SurfaceCodecManager::instance());
    ImageInput input;
    const VellorTexture* texture = input.prepare(300, 200);
    ASSERT_NE(texture, nullptr);
    EXPECT_EQ(texture->width, 300);
    EXPECT_EQ(texture->height, 200);

    ImageOptions options; // a crop that leaves nothing counts as no picture
    options.cropLeft = options.cropTop = 2;
    input.setOptions(options);
    input.setSource(picture(3, 2));
    EXPECT_EQ(input.prepare(16, 16)->width, 16);
}

} // namespace
