#include "applications/player/tweaks/tweakimage.h"
#include "applications/player/images/imageinput.h"
#include "applications/player/images/widgets/imagerescale.h"
#include "applications/player/images/widgets/imageserverfactories.h"
#include "applications/player/images/widgets/imageserverseq.h"
#include "applications/player/tweaks/filebutton.h"
#include "applications/player/tweaks/tests/tweakfixture.h"
#include "applications/player/tweaks/tweakslist.h"
#include "orncommon/core/settingkey.h"
#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QImage>
#include <QInputDialog>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
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
    const Orn::Core::SettingKey<QString> setting{QStringLiteral("session/tweakImagePath"), {}};
    EXPECT_EQ(setting.read(), folder.path());
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

TEST_F(ImageRow, FramesThatVanishAreGrey)
{
    Row row(5, "<input/>");
    auto* tweak = row.as<TweakImage>();
    for (const char* name : {"f1.png", "f2.png", "f3.png"})
        put(name, QColor(100, 0, 0));
    answer<QInputDialog>([](QInputDialog& dialog) { dialog.accept(); });
    ASSERT_TRUE(tweak->open(folder.filePath("f1.png")));
    ASSERT_TRUE(QFile::remove(folder.filePath("f2.png")) && QFile::resize(folder.filePath("f3.png"), 50));
    const float frame = 1 / ImageServerSeq::lastSequenceFps;
    for (const int number : {1, 2}) {
        tweak->setTimeChanged(float(number) * frame);
        EXPECT_EQ(applied(*tweak), (Got{512, 0xa8})) << number;
        EXPECT_TRUE(row.find<FileButton>()->isMissing());
    }
    tweak->setTimeChanged(0);
    EXPECT_EQ(applied(*tweak), (Got{4, 100}));
    EXPECT_FALSE(row.find<FileButton>()->isMissing());
    EXPECT_EQ(row.changes.size(), 4u);
}

TEST_F(ImageRow, OptionsCountWhereTheyChangeAPicture)
{
    Row row(5, "<input/>");
    auto* tweak = row.as<TweakImage>();
    const auto chooseMode = [&](int index, bool accept) {
        answer<ImageRescale>([index, accept](ImageRescale& dialog) {
            dialog.findChild<QComboBox*>()->setCurrentIndex(index);
            accept ? dialog.accept() : dialog.reject();
        });
        tweak->optionsSlot();
    };
    chooseMode(2, true);
    EXPECT_TRUE(row.changes.empty()) << "no picture yet";
    tweak->open(put("photo.png", QColor(200, 0, 0)));
    EXPECT_EQ(applied(*tweak).width, 8) << "not rescaled";
    chooseMode(0, false);
    chooseMode(2, true);
    EXPECT_EQ(row.changes.size(), 1u) << "nothing changed";
    chooseMode(0, true);
    EXPECT_EQ(row.changes.size(), 2u);
    EXPECT_EQ(applied(*tweak).width, 4);
}

TEST_F(ImageRow, BrowsingBeginsWhereItEnded)
{
    Row row(5, "<input/>");
    auto* tweak = row.as<TweakImage>();
    const QString path = put("photo.png", QColor(200, 0, 0));
    tweak->open(path);
    tweak->resetToDefault();
    answer<QFileDialog>([&](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Open input image/animation");
        EXPECT_EQ(dialog.directory(), QDir(folder.path()));
        EXPECT_EQ(dialog.nameFilters(), imageServerFileFilter().split(";;"));
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText("photo.png");
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
    });
    tweak->browseFile();
    EXPECT_EQ(tweak->filePath(), path);
}

TEST_F(ImageRow, TakesWhatIsDroppedOnItself)
{
    Row row(5, "<input/>");
    auto* tweak = row.as<TweakImage>();
    const auto send = [&](auto&& event) {
        QApplication::sendEvent(tweak, &event);
        return event.isAccepted();
    };
    const auto enter = [&](const QMimeData& data) {
        QDragEnterEvent event(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        return send(event);
    };
    QMimeData other, frames;
    other.setUrls({QUrl::fromLocalFile(folder.filePath("p.vlrar"))});
    EXPECT_FALSE(enter(other)) << "the window's";
    EXPECT_FALSE(tweak->property("dropTarget").toBool());
    put("f2.png", QColor(200, 0, 0));
    put("f1.png", QColor(100, 0, 0));
    frames.setUrls({QUrl::fromLocalFile(folder.path())});
    EXPECT_TRUE(enter(frames));
    EXPECT_TRUE(tweak->property("dropTarget").toBool());
    QDragLeaveEvent leave;
    send(leave);
    EXPECT_FALSE(tweak->property("dropTarget").toBool());
    EXPECT_TRUE(enter(frames));
    EXPECT_TRUE(send(QDropEvent(QPoint(5, 5), Qt::CopyAction, &frames, Qt::LeftButton, Qt::NoModifier)));
    EXPECT_FALSE(tweak->property("dropTarget").toBool());
    EXPECT_TRUE(tweak->isDefault()) << "not before the event is over";
    QTimer::singleShot(0, [] { answer<QInputDialog>([](QInputDialog& dialog) { dialog.accept(); }); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return tweak->isTimeDependent(); }));
    EXPECT_EQ(tweak->filePath(), folder.filePath("f1.png"));
}

TEST_F(ImageRow, ShowsAThumbnailThatPalesWithoutItsFile)
{
    Row row(5, "<input identifier='photo'/>");
    auto* tweak = row.as<TweakImage>();
    auto* button = row.find<FileButton>();
    const int height = button->sizeHint().height();
    const auto colour = [&] { return button->thumbnail().toImage().pixelColor(3, 3); };
    const QString path = put("photo.png", QColor(200, 0, 0)); // 4 x 2
    ASSERT_TRUE(tweak->open(path));
    EXPECT_GE(button->sizeHint().height(), FileButton::thumbnailSide) << height;
    EXPECT_TRUE(QTest::qWaitFor([&] { return colour() == QColor(200, 0, 0); }));
    EXPECT_EQ(button->thumbnail().size(), QSize(FileButton::thumbnailSide, FileButton::thumbnailSide / 2));
    EXPECT_EQ(button->toolTip(), path);
    EXPECT_EQ(button->accessibleDescription(), "photo.png");

    put("photo.png", QColor(0, 0, 200));
    EXPECT_TRUE(QTest::qWaitFor([&] { return colour() == QColor(0, 0, 200); }));
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_TRUE(QTest::qWaitFor([&] { return button->isMissing(); }));
    EXPECT_EQ(button->accessibleDescription(), "photo.png, missing");
    EXPECT_EQ(colour(), QColor(0, 0, 200));
    EXPECT_EQ(row.changes.size(), 2u) << "the picture is still the same";
    put("photo.png", QColor(0, 200, 0));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !button->isMissing() && colour() == QColor(0, 200, 0); }));

    tweak->resetToDefault();
    QApplication::processEvents();
    EXPECT_TRUE(button->thumbnail().isNull());
    EXPECT_EQ(button->sizeHint().height(), height);
    EXPECT_EQ(row.find<QToolButton>(1)->accessibleName(), "Image options of 'photo'");
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
