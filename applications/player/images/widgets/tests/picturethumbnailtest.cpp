#include "applications/player/images/widgets/picturethumbnail.h"
#include "orncommon/image/surfaceoperations.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

using namespace Zph::Applications::Player;
using namespace Orn::Surfaces;

QSharedPointer<Surface> filled(unsigned width, unsigned height, PixelFormat format, float value)
{
    const auto surface = QSharedPointer<Surface>::create(SurfaceDescription(width, height, format));
    Orn::Image::Core::clear(*surface, value, value, value, 1);
    return surface;
}

struct Shown
{
    Shown()
    {
        QObject::connect(&thumbnail, &PictureThumbnail::changed,
                         [this](const QPixmap& pixmap) { images.push_back(pixmap.toImage()); });
    }
    QImage next(const QSharedPointer<Surface>& picture, const ImageOptions& options = {})
    {
        images.clear();
        thumbnail.show(picture, options, 32);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !images.empty(); }));
        return images.empty() ? QImage() : images.back();
    }

    PictureThumbnail thumbnail{nullptr};
    std::vector<QImage> images;
};

TEST(PictureThumbnail, OfEveryFormatAndShape)
{
    Shown shown;
    for (const PixelFormat format :
         {L8, L16, L16F, L32F, RGB8, BGR8, RGB16, RGB16F, RGB32F, RGBA8, BGRA8, RGBA16, RGBA16F, RGBA32F}) {
        const QImage image = shown.next(filled(64, 16, format, 0.5f));
        ASSERT_EQ(image.size(), QSize(32, 8)) << format;
        // Floats are linear light: 1.055 * 0.5 ^ (1 / 2.4) - 0.055 of 255.
        EXPECT_NEAR(image.pixelColor(5, 5).red(), isFloatFormat(format) ? 188 : 128, 1) << format;
        EXPECT_EQ(image.pixelColor(5, 5).alpha(), 255) << format;
    }
    EXPECT_EQ(shown.next(filled(5000, 1, L8, 1)).size(), QSize(32, 1));
    EXPECT_EQ(shown.next(filled(3, 1000, L8, 1)).size(), QSize(1, 32));
    ImageOptions cropped;
    cropped.cropLeft = 60, cropped.cropTop = 0;
    EXPECT_EQ(shown.next(filled(64, 4, L8, 1), cropped).size(), QSize(32, 32));
    cropped.cropLeft = 64;
    EXPECT_TRUE(shown.next(filled(64, 4, L8, 1), cropped).isNull()) << "nothing is left";
    EXPECT_TRUE(shown.next({}).isNull());
}

TEST(PictureThumbnail, TheLastOfManyIsShown)
{
    Shown shown;
    for (int i = 0; i <= 50; ++i)
        shown.thumbnail.show(filled(64, 64, L8, float(i) / 255), {}, 32);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return !shown.images.empty() && shown.images.back().pixelColor(3, 3).red() == 50; }));
    shown.images.clear();
    shown.thumbnail.show(filled(64, 64, L8, 1), {}, 32);
    shown.thumbnail.show({}, {}, 32);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !shown.images.empty(); }));
    EXPECT_TRUE(shown.images.front().isNull()) << "what was begun does not come any more";
}

} // namespace
