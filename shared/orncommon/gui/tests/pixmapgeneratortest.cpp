#include "orncommon/gui/pixmap/qpixmapgenerator.h"

#include <gtest/gtest.h>

#include <QEventLoop>
#include <QTimer>

#include <cstring>

using namespace Orn::Gui;
using namespace Orn::Image::Core;
using Orn::ColorManagement::ThumbnailTransform;

namespace {

/// Two rows of 2 pixels: red above, blue below.
SharedSurface redOverBlue()
{
    auto const surface =
        SharedSurface::create(Orn::Surfaces::SurfaceDescription(2, 2, Orn::Surfaces::RGBA8), 64u);
    std::memcpy(surface->data(), "\xFF\0\0\xFF\xFF\0\0\xFF\0\0\xFF\xFF\0\0\xFF\xFF", 16);
    return surface;
}

/// The pixmaps that come until there are `count`, or none comes for some seconds.
std::vector<QImage> waitFor(QPixmapGenerator& generator, std::size_t count)
{
    std::vector<QImage> images;
    QEventLoop loop;
    QObject::connect(&generator, &QPixmapGenerator::pixmapGenerated, &loop, [&](QPixmap const& pixmap) {
        images.push_back(pixmap.toImage());
        if (images.size() == count)
            loop.quit();
    });
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    return images;
}

TEST(Thumbnail, SizeFlipAndTransform)
{
    class Inverting : public Orn::ColorManagement::ColorSpaceTransform
    {
        void doApply(unsigned int width, unsigned int height, Orn::ColorManagement::PixelFormat,
                     Orn::ColorManagement::AlphaMode, long rowStride, unsigned char* data) const override
        {
            for (long i = 0; i < long(height) * rowStride; ++i)
                data[i] = i % rowStride < long(width) * 4 && i % 4 != 3 ? static_cast<unsigned char>(~data[i])
                                                                        : data[i];
        }
    };
    QImage const same = thumbnailOf(redOverBlue(), {});
    EXPECT_EQ(same.size(), QSize(2, 2));
    EXPECT_EQ(same.pixelColor(0, 0), QColor(Qt::red));
    QImage const flipped = thumbnailOf(redOverBlue(), {QSize(), true, nullptr});
    EXPECT_EQ(flipped.pixelColor(0, 0), QColor(Qt::blue));
    QImage const large = thumbnailOf(redOverBlue(), {QSize(8, 16), true, nullptr});
    EXPECT_EQ(large.size(), QSize(8, 16));
    EXPECT_GT(large.pixelColor(4, 0).blueF(), 0.95);
    EXPECT_GT(large.pixelColor(4, 15).redF(), 0.95);
    auto const transform = std::make_shared<ThumbnailTransform const>(std::make_shared<Inverting const>());
    EXPECT_EQ(thumbnailOf(redOverBlue(), {QSize(), false, transform}).pixelColor(1, 1), QColor(Qt::yellow));
    EXPECT_TRUE(thumbnailOf({}, {}).isNull());
    EXPECT_TRUE(thumbnailOf(redOverBlue(), {QSize(0, 4), false, nullptr}).isNull());
}

TEST(PixmapGenerator, FromEachSource)
{
    QPixmapGenerator generator(ThumbnailOptions{QSize(4, 4)});
    generator.generate(makeSurfaceTask(redOverBlue));
    std::vector<QImage> images = waitFor(generator, 1);
    ASSERT_EQ(images.size(), 1u);
    EXPECT_EQ(images[0].size(), QSize(4, 4));
    EXPECT_GT(images[0].pixelColor(1, 0).redF(), 0.95);

    generator.generateFromSVGContent("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'>"
                                     "<rect width='9' height='9' fill='#00ff00'/></svg>");
    images = waitFor(generator, 1);
    ASSERT_EQ(images.size(), 1u);
    EXPECT_EQ(images[0].pixelColor(2, 2), QColor(Qt::green));

    QPixmap pixmap(8, 8);
    pixmap.fill(Qt::blue);
    generator.generate(pixmap);
    images = waitFor(generator, 1);
    ASSERT_EQ(images.size(), 1u);
    EXPECT_EQ(images[0].pixelColor(3, 3), QColor(Qt::blue));

    generator.generateFromSVGContent("no drawing");
    images = waitFor(generator, 1);
    ASSERT_EQ(images.size(), 1u);
    EXPECT_TRUE(images[0].isNull());
}

TEST(PixmapGenerator, TheLastRequestCounts)
{
    QPixmapGenerator generator(ThumbnailOptions{QSize(4, 4)});
    for (int i = 0; i < 20; ++i)
        generator.generate(makeSurfaceTask([] { return SharedSurface(); }));
    generator.generate(makeSurfaceTask(redOverBlue));
    std::vector<QImage> const images = waitFor(generator, 1);
    ASSERT_EQ(images.size(), 1u);
    EXPECT_FALSE(images[0].isNull());
    { // nobody waits for this one
        QPixmapGenerator gone(ThumbnailOptions{QSize(4, 4)});
        gone.generate(makeSurfaceTask(redOverBlue));
    }
}

} // namespace
