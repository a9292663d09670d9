#include "applications/player/tweaks/tweakimage.h"
#include "applications/player/images/imageinput.h"
#include "applications/player/images/widgets/imageserverfactories.h"
#include "applications/player/tweaks/tests/tweakfixture.h"
#include "applications/player/tweaks/tweakslist.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QApplication>
#include <QImage>
#include <QInputDialog>
#include <QMenu>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace Zph::Applications::Player;

namespace {

class ImageRow : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        Orn::Image::Codec::registerDefaultCodecs(Orn::Image::Codec::SurfaceCodecManager::instance());
        registerDefaultImageServerFactories();
    }

    QString put(const QString& name, const QColor& color) const
    {
        QImage image(4, 2, QImage::Format_RGB32);
        image.fill(color);
        EXPECT_TRUE(image.save(folder.filePath(name), "png"));
        return folder.filePath(name);
    }

    // What the engine would get: the width, and the first pixel's red.
    struct Got
    {
        int width, red;
        bool operator==(const Got& other) const { return width == other.width && red == other.red; }
    };
    Got got(ImageSource& source) const
    {
        const VellorTexture* texture = source.prepare(8, 8);
        if (!texture)
            return {0, 0};
        const auto* pixel = static_cast<const quint8*>(texture->buffer);
        return {texture->width, pixel[texture->channelOrder == VELLOR_ORDER_BGRA ? 2 : 0]};
    }
    Got applied(TweakBase& tweak)
    {
        tweak.applyToEngine(engine);
        return engine.images.count(3) ? got(*engine.images[3]) : Got{0, 0};
    }

    QTemporaryDir folder;
    RecordingEngine engine;
};

// The next modal dialog of this class.
template<class Dialog, class Answer> void answer(Answer answer)
{
    QTimer::singleShot(0, [answer] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        answer(*dialog);
    });
}

TEST_F(ImageRow, OpensAndResets)
{
    Row row(5, "<input identifier='photo'/>");
    auto* tweak = row.as<TweakImage>();
    EXPECT_TRUE(tweak->isDirty()) << "the engine gets the program's own picture";
    EXPECT_EQ(applied(*tweak).width, 8);
    EXPECT_EQ(row.find<QPushButton>()->text(), "None [...]");
    const QString path = put("a & b.png", QColor(200, 0, 0));
    EXPECT_TRUE(tweak->open(path));
    EXPECT_EQ(row.changes, std::vector<int>{3});
    EXPECT_EQ(applied(*tweak), (Got{4, 200}));
    EXPECT_EQ(row.find<QPushButton>()->text(), "a && b.png");
    EXPECT_EQ(tweak->filePath(), path);
    EXPECT_FALSE(tweak->isDefault() || tweak->isTimeDependent());

    const std::shared_ptr<ImageSource> before = engine.images[3];
    tweak->resetToDefault();
    EXPECT_EQ(row.changes.size(), 2u);
    EXPECT_TRUE(tweak->isDefault() && tweak->filePath().isEmpty());
    EXPECT_EQ(got(*before), (Got{4, 200})) << "what the engine has stays until it gets another";
    EXPECT_EQ(applied(*tweak).width, 8);
    EXPECT_EQ(row.find<QPushButton>()->text(), "None [...]");
    tweak->resetToDefault();
    EXPECT_EQ(row.changes.size(), 2u);
}

TEST_F(ImageRow, WhatCannotBeReadLeavesThePictureOfBefore)
{
    Row row(5, "<input/>");
    auto* tweak = row.as<TweakImage>();
    const QString good = put("good.png", QColor(200, 0, 0));
    tweak->open(good);
    const QByteArray png = [&] {
        QFile file(good);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    QByteArray huge = png;
    huge.replace(16, 8, QByteArray::fromHex("0000b5050000b505")); // 46341 squared, over 2 billion
    const std::pair<const char*, QByteArray> files[] = {{"none.png", {}},
                                                        {"cut.png", png.left(50)},
                                                        {"huge.png", huge},
                                                        {"text.exr", "text"},
                                                        {"x.doc", png.left(20)}};
    for (const auto& [name, bytes] : files) {
        const QString path = folder.filePath(name);
        QFile file(path);
        ASSERT_TRUE(bytes.isEmpty() ||
                    (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()));
        file.close();
        QString told;
        answer<QMessageBox>([&](QMessageBox& box) {
            told = box.windowTitle() + '|' + box.text();
            box.accept();
        });
        EXPECT_FALSE(tweak->open(path)) << name;
        EXPECT_EQ(told,
                  QStringLiteral("Error loading bitmap|Cannot open '%1' file.\nBitmap format not handled.")
                      .arg(path));
        EXPECT_EQ(tweak->filePath(), good) << name;
        EXPECT_EQ(applied(*tweak), (Got{4, 200})) << name;
    }
    EXPECT_EQ(row.changes.size(), 1u);
}

TEST_F(ImageRow, SequencesFollowTheTimeAndFilesTheirContent)
{
    Row row(5, "<input/>");
    auto* tweak = row.as<TweakImage>();
    const QString first = put("f1.png", QColor(100, 0, 0));
    put("f2.png", QColor(150, 0, 0));
    answer<QInputDialog>([](QInputDialog& dialog) { dialog.accept(); });
    EXPECT_TRUE(tweak->open(first));
    EXPECT_TRUE(tweak->isTimeDependent());
    EXPECT_EQ(applied(*tweak), (Got{4, 100}));
    tweak->setTimeChanged(0.001f);
    EXPECT_FALSE(tweak->isDirty());
    tweak->setTimeChanged(100);
    EXPECT_EQ(row.changes.size(), 2u);
    EXPECT_EQ(applied(*tweak), (Got{4, 150}));
    put("f2.png", QColor(220, 0, 0));
    EXPECT_TRUE(QTest::qWaitFor([&] { return row.changes.size() == 3; }));
    EXPECT_EQ(applied(*tweak), (Got{4, 220}));
}

TEST_F(ImageRow, TakesDroppedFiles)
{
    TweaksList list;
    const QString path = put("dropped.png", QColor(200, 0, 0));
    list.build(package({{1, 4, nullptr}}, ""));
    EXPECT_FALSE(list.dropImage(path, {}));
    list.build(package({{1, 5, nullptr}, {2, 4, nullptr}}, ""));
    EXPECT_TRUE(list.dropImage(path, {}));
    QApplication::processEvents();
    EXPECT_EQ(qobject_cast<TweakImage*>(list.tweaks().at(1))->filePath(), path) << "the only one";

    list.build(package({{1, 5, nullptr}, {2, 5, nullptr}}, ""));
    list.resize(400, 300);
    list.show();
    QApplication::processEvents();
    const auto image = [&](quint32 uid) { return qobject_cast<TweakImage*>(list.tweaks().at(uid)); };
    EXPECT_TRUE(list.dropImage(path, image(2)->mapToGlobal({30, 5})));
    QApplication::processEvents();
    EXPECT_TRUE(image(1)->isDefault());
    EXPECT_EQ(image(2)->filePath(), path) << "the one under the mouse";
    EXPECT_TRUE(list.dropImage(path, {-1, -1}));
    auto* menu = list.findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions().first()->text(), "Load in 'Input uid:1' tweak");
    menu->actions().first()->trigger();
    QApplication::processEvents();
    EXPECT_EQ(image(1)->filePath(), path);
}

} // namespace
