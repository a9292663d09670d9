#include "applications/player/description/descriptionfile.h"
#include "applications/player/description/packagemodel.h"
#include "applications/player/views/displayimage.h"
#include "applications/player/views/picturelabel.h"
#include "applications/player/views/picturesaver.h"
#include "applications/player/views/valuetext.h"
#include "applications/player/views/viewoutput2d.h"
#include "applications/player/views/zoom.h"
#include "orncommon/surfaces/operations.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QPainter>
#include <QPointer>
#include <QSplitter>
#include <QTabBar>

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

TEST(DisplayImage, SamplesTheNearestPixelsInAnyFormat)
{
    using namespace Orn::Surfaces;
    Surface ramp(SurfaceDescription(8, 12, L8)); // column + 16 * row
    for (unsigned y = 0; y < 12; ++y)
        for (unsigned x = 0; x < 8; ++x)
            ramp.row(y)[x] = std::uint8_t(x + 16 * y);
    for (const PixelFormat format : {L8, L16, L16F, L32F, RGB8, RGBA8, RGBA16, RGBA16F, RGBA32F}) {
        auto surface = QSharedPointer<Surface>::create(SurfaceDescription(8, 12, format));
        ASSERT_TRUE(convertTo(ramp, *surface, ConversionParameters{255})) << format;
        const QImage image = sampledImage(surface, QSize(2, 3));
        ASSERT_EQ(image.size(), QSize(2, 3)) << format;
        // Centres of 4 x 4 pixels: columns 2 and 6, rows 2, 6 and 10.
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 2; ++x)
                EXPECT_EQ(qRed(image.pixel(x, y)), 2 + 4 * x + 16 * (2 + 4 * y)) << format;
    }
    EXPECT_TRUE(sampledImage({}, QSize(2, 3)).isNull());
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
    view.setDisplay(ValueOrSurfacePlayer(picture(64, 32)), 7);
    EXPECT_EQ(label->size(), QSize(32, 16));
}

TEST(ViewOutput2D, TypedZoom)
{
    FakeHost host;
    ViewOutput2D view(host);
    QComboBox* combo = nullptr;
    for (QComboBox* candidate : view.findChildren<QComboBox*>())
        if (candidate->isEditable())
            combo = candidate;
    ASSERT_NE(combo, nullptr);
    struct Row
    {
        const char* typed;
        float factor;
        const char* shown;
    };
    const Row rows[] = {{"0", 0.01f, "1%"},     {"5000", 20.0f, "2000%"}, {"12%", 0.125f, "12%"},
                        {"33 %", 0.33f, "33%"}, {"broad", 0.33f, "33%"},  {"12%", 0.125f, "12%"},
                        {"50%", 0.5f, "50%"},   {"Fit.", 0.5f, "50%"},    {"1:1", 1.0f, "1:1"}};
    for (const Row& row : rows) {
        combo->setEditText(row.typed);
        view.zoomEdit();
        view.zoomEdit(); // the focus goes, too
        EXPECT_FLOAT_EQ(view.zoomFactor(), row.factor) << row.typed;
        EXPECT_EQ(combo->currentText().toStdString(), row.shown) << row.typed;
    }
}

TEST(ViewOutput2D, ColoursUnderNoAlphaShowWhenItIsNotDisplayed)
{
    using namespace Orn::Surfaces;
    auto surface = QSharedPointer<Surface>::create(SurfaceDescription(64, 64, RGBA8));
    fill(*surface, 1.0f, 0.0f, 0.0f, 0.0f);
    FakeHost host;
    ViewOutput2D view(host);
    view.setDisplay(ValueOrSurfacePlayer(surface), 7);
    view.zoomChanged(4); // 25%
    view.toggleAlpha(false);
    for (const bool smooth : {false, true}) {
        view.toggleHQ(smooth);
        const QImage shown = view.findChild<PictureLabel*>()->grab().toImage();
        EXPECT_EQ(QColor(shown.pixel(8, 8)), QColor(255, 0, 0)) << smooth;
    }
}

std::shared_ptr<const PackageModel> packageOf(const std::vector<quint32>& uids)
{
    std::vector<VellorOutputDesc> outputs;
    QByteArray xml = "<p><graphs><graph pkgurl='g' label='G'><outputs>";
    for (const quint32 uid : uids) {
        VellorOutputDesc output = {};
        output.uid = uid;
        outputs.push_back(output);
        xml += "<output uid='" + QByteArray::number(uid) + "' identifier='o" + QByteArray::number(uid) +
               (uid == 2 ? "' usage='baseColor'/>" : "'/>");
    }
    QDomDocument document;
    EXPECT_TRUE(parseDescription(xml + "</outputs></graph></graphs></p>", document));
    return std::make_shared<const PackageModel>(std::vector<VellorInputDesc>(), outputs, document);
}

TEST(ViewOutput2D, TabsOfThePackageAndOfItsConditions)
{
    FakeHost host;
    ViewOutput2D view(host);
    std::vector<quint32> asked;
    QObject::connect(&view, &ViewOutput::currentOutputChanged, [&](ORNUInt32 uid) { asked.push_back(uid); });
    const auto* tabs = view.findChild<QTabBar*>("outputTabs");
    const auto* label = view.findChild<PictureLabel*>();
    view.setPackage(packageOf({1, 2, 3}));
    EXPECT_EQ(view.currentOutputs(), std::vector<quint32>{2}) << "the colour of the material";
    EXPECT_EQ(label->text().toStdString(), "Computing...");
    view.outputsChanged({1});
    EXPECT_EQ(tabs->count(), 2);
    EXPECT_EQ(asked, std::vector<quint32>{2}) << "the one shown stays and isn't asked for anew";
    view.outputsChanged({2});
    EXPECT_EQ(tabs->count(), 2);
    EXPECT_EQ(asked, (std::vector<quint32>{2, 1}));
    view.outputsChanged({1, 2, 3});
    EXPECT_TRUE(view.currentOutputs().empty());
    EXPECT_EQ(label->text().toStdString(), "");
    view.outputsChanged({1});
    EXPECT_EQ(asked.back(), 2u);

    view.setPackage(packageOf({1, 3}));
    view.outputChanged(1);
    view.setPackage(packageOf({3, 1, 2}));
    EXPECT_EQ(view.currentOutputs(), std::vector<quint32>{3}) << "a reload comes back to the output";
    view.setPackage(packageOf({}));
    EXPECT_EQ(tabs->count(), 0);
    view.clearView();
    EXPECT_FALSE(view.isEnabled());
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

    const QPointer<QSplitter> inner = const_cast<QSplitter*>(nested);
    first->closeView();
    EXPECT_EQ(host.viewerCount(), 2);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(inner) << "it still holds a view";
    auto* added = new ViewOutput2D(host);
    splitter.addWidget(added);
    host.registerViewer(added);
    inner->findChild<ViewOutput2D*>()->closeView();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(inner) << "no empty place is left";
    EXPECT_EQ(splitter.count(), 2);
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
