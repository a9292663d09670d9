#include "applications/player/views/picturelabel.h"
#include "applications/player/views/picturesaver.h"
#include "applications/player/views/valuetext.h"
#include "applications/player/views/viewoutput2d.h"
#include "applications/player/views/zoom.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPainter>
#include <QSplitter>

#include <algorithm>

using namespace Zph::Applications::Player;

namespace {

class FakeHost : public ViewHost
{
public:
    void registerViewer(ViewOutput* view) override { views.push_back(view); }
    void unregisterViewer(ViewOutput* view) override
    {
        views.erase(std::remove(views.begin(), views.end(), view), views.end());
    }
    int viewerCount() const override { return int(views.size()); }

    std::vector<ViewOutput*> views;
};

QSharedPointer<Orn::Surfaces::Surface> picture(unsigned width, unsigned height)
{
    using namespace Orn::Surfaces;
    auto surface = QSharedPointer<Surface>::create(SurfaceDescription(width, height, RGBA8));
    std::fill_n(surface->data(), surface->pitch() * height, std::uint8_t(200));
    return surface;
}

TEST(Zoom, TextsAndTypedNumbers)
{
    struct Row
    {
        const char* typed;
        double factor;
        const char* text;
    };
    const Row rows[] = {{"0", 0.01, "1%"},
                        {"5000 %", 20.0, "2000%"},
                        {" 29% ", 0.29, "29%"},
                        {"100", 1.0, "100%"},
                        {"57", 0.57, "57%"}};
    for (const Row& row : rows) {
        const auto factor = Zoom::parse(row.typed);
        ASSERT_TRUE(factor.has_value()) << row.typed;
        EXPECT_DOUBLE_EQ(*factor, row.factor) << row.typed;
        EXPECT_EQ(Zoom::text(*factor).toStdString(), row.text);
    }
    EXPECT_FALSE(Zoom::parse("-3"));
    EXPECT_FALSE(Zoom::parse("wide"));
    // The smallest item is an eighth, its text is truncated.
    EXPECT_EQ(Zoom::text(Zoom::factorOfItem(-3)).toStdString(), "12%");
    EXPECT_DOUBLE_EQ(Zoom::factorOfItem(-3), 0.125);
}

TEST(Zoom, SizesNeverVanishAndFitLeavesAMargin)
{
    EXPECT_EQ(Zoom::scaled({16, 4}, 0.125), QSize(2, 1));
    EXPECT_EQ(Zoom::scaled({3, 5}, 0.5), QSize(2, 3)); // 1.5 and 2.5 round up
    EXPECT_EQ(Zoom::scaled({1, 1}, 0.01), QSize(1, 1));
    EXPECT_DOUBLE_EQ(Zoom::fitFactor({512, 512}, {262, 400}), 0.5);
    EXPECT_DOUBLE_EQ(Zoom::fitFactor({512, 256}, {6, 6}), 1.0 / 512); // no room at all still gives a pixel
}

TEST(PictureLabel, EnlargedPicturesArePaintedInPlace)
{
    QImage checker(2, 2, QImage::Format_RGB32);
    checker.fill(Qt::black);
    checker.setPixel(1, 0, qRgb(255, 0, 0));
    PictureLabel label;
    label.setPicture(checker, {64, 64}, false, {});
    EXPECT_EQ(label.size(), QSize(64, 64));
    const QImage shown = label.grab().toImage();
    EXPECT_EQ(QColor(shown.pixel(8, 8)), QColor(Qt::black));
    EXPECT_EQ(QColor(shown.pixel(40, 8)), QColor(255, 0, 0));
    EXPECT_EQ(QColor(shown.pixel(40, 40)), QColor(Qt::black));
    // A picture of the size that 1600 percent of 4096 squared would have costs no memory of that size.
    label.setPicture(QImage(4096, 4096, QImage::Format_RGB32), {65536, 65536}, true, "Frozen.");
    EXPECT_EQ(label.width(), 65536);
}

TEST(PictureSaver, SuffixOfAFilter)
{
    EXPECT_EQ(PictureSaver::suffixOfFilter("Truevision Targa (*.tga *.targa)").toStdString(), "tga");
    EXPECT_EQ(PictureSaver::suffixOfFilter("Everything").toStdString(), "");
}

TEST(ValueText, ComponentsOnLines)
{
    using Orn::Module::Value;
    EXPECT_EQ(valueText(Value::DataT<float>(1.23456789f), false).toStdString(), "1.23457");
    EXPECT_EQ(valueText(Value::DataT<float>(0.25f), true).toStdString(), "1");
    EXPECT_EQ(valueText(Value::DataT<int>(2000000000), false).toStdString(), "2000000000");
    EXPECT_EQ(valueText(Value::DataT<std::array<int, 3>>({4, -5, 6}), false).toStdString(), "4\n-5\n6");
    EXPECT_EQ(valueText(Value::DataT<std::array<float, 2>>({0.5f, 2e9f}), false).toStdString(), "0.5\n2e+09");
}

TEST(ViewOutput2D, ZoomFreezeAndEmptyStates)
{
    FakeHost host;
    ViewOutput2D view(host);
    view.resize(400, 300);
    const auto* label = view.findChild<PictureLabel*>();
    view.toggleFreeze(true);
    EXPECT_EQ(label->text().toStdString(), "Frozen.");
    view.toggleFreeze(false);
    view.setDisplay(ValueOrSurfacePlayer(picture(64, 32)), 7);
    EXPECT_EQ(label->size(), QSize(64, 32));
    view.zoomChanged(5); // 1:1, Fit., separator, then 12%, 25%, 50%
    EXPECT_FLOAT_EQ(view.zoomFactor(), 0.5f);
    EXPECT_EQ(label->size(), QSize(32, 16));
    view.toggleAlpha(false);
    EXPECT_EQ(label->size(), QSize(32, 16));
    view.clearView();
    view.zoomChanged(1); // fit with nothing to fit changes nothing
    EXPECT_FLOAT_EQ(view.zoomFactor(), 0.5f);
}

TEST(ViewOutput2D, SplitsAndClosesDownToTheLastTwo)
{
    FakeHost host;
    QSplitter splitter;
    auto* first = new ViewOutput2D(host);
    splitter.addWidget(first);
    host.registerViewer(first);
    first->closeView();
    EXPECT_EQ(host.viewerCount(), 1);

    first->splitVert();
    EXPECT_EQ(splitter.count(), 2);
    EXPECT_EQ(splitter.orientation(), Qt::Vertical);
    EXPECT_EQ(host.viewerCount(), 2);
    first->splitHorz(); // the other way goes into a nested splitter
    EXPECT_EQ(splitter.count(), 2);
    const auto* nested = qobject_cast<QSplitter*>(first->parentWidget());
    ASSERT_NE(nested, &splitter);
    EXPECT_EQ(nested->orientation(), Qt::Horizontal);
    EXPECT_EQ(nested->count(), 2);
    EXPECT_EQ(host.viewerCount(), 3);

    first->closeView();
    EXPECT_EQ(host.viewerCount(), 2);
    host.views.front()->closeView();
    EXPECT_EQ(host.viewerCount(), 2);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
