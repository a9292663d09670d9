#include "applications/player/images/widgets/imageserverfactories.h"
#include "applications/player/images/widgets/imageserverseq.h"
#include "applications/player/session/static.h"
#include "orncommon/image/qimageconversion.h"

#include <QApplication>
#include <QDir>
#include <QInputDialog>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

using namespace Zph::Applications::Player;

class ImageServer : public testing::Test
{
protected:
    QString put(const QString& name, const QColor& color, const QSize& size = {4, 2}) const
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(color);
        EXPECT_TRUE(image.save(folder.filePath(name), "png"));
        return folder.filePath(name);
    }

    static QColor colorOf(const ImageServerBase& server)
    {
        const QImage image = Orn::Image::Core::surfaceToQImage(server.surface());
        return image.isNull() ? QColor() : image.pixelColor(0, 0);
    }

    QTemporaryDir folder;
};

// Answers the question for the number of frames, and gives what it proposed.
std::unique_ptr<ImageServerBase> createAnswering(const QString& path, bool accept, int& proposed)
{
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->windowTitle(), "Image sequence");
        EXPECT_EQ(dialog->labelText(),
                  "Image sequence found. Please confirm the number of frames (or Cancel to "
                  "use still image only):");
        EXPECT_EQ(dialog->intMinimum(), 1);
        EXPECT_EQ(dialog->intMaximum(), 2147483647);
        EXPECT_EQ(dialog->intStep(), 1);
        proposed = dialog->intValue();
        accept ? dialog->accept() : dialog->reject();
    });
    return createImageServer(path, nullptr);
}

TEST_F(ImageServer, FactoriesAreAskedInOrder)
{
    const QString first = put("a08.png", Qt::red);
    put("a09.png", Qt::green);
    put("a10.png", Qt::blue);
    int proposed = 0;
    auto server = createAnswering(first, true, proposed);
    EXPECT_EQ(proposed, 3);
    ASSERT_NE(dynamic_cast<ImageServerSeq*>(server.get()), nullptr);
    EXPECT_NE(server->duration(), 0);
    server = createAnswering(first, false, proposed);
    ASSERT_NE(server, nullptr);
    EXPECT_EQ(server->duration(), 0) << "the user wants a still picture";
    EXPECT_EQ(colorOf(*server), QColor(Qt::red));
    EXPECT_NE(createImageServer(put("plain.png", Qt::red), nullptr), nullptr);

    QFile text(folder.filePath("text.png"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly) && text.write("text") == 4);
    text.close();
    EXPECT_EQ(createImageServer(text.fileName(), nullptr), nullptr);

    const QString filter = imageServerFileFilter();
    EXPECT_TRUE(filter.startsWith("All supported types (*.")) << filter.toStdString();
    EXPECT_TRUE(filter.contains(";;Images sequence (*.") && filter.contains(";;Still Image (*."));
    EXPECT_TRUE(filter.endsWith(";;All files (*.*)"));
}

TEST_F(ImageServer, SequencesFollowTheTime)
{
    put("f1.png", Qt::red);
    put("f3.png", Qt::blue);
    ImageServerSeq::lastSequenceFps = 0;
    ImageServerSeq server({folder.filePath("f*.png"), 1, 1, 3}, nullptr);
    EXPECT_EQ(server.fps(), Static::instance().timelineRate);
    EXPECT_FALSE(server.isValid());
    server.setFps(10);
    EXPECT_EQ(ImageServerSeq({}, nullptr).fps(), 10) << "the latest rate is kept";
    EXPECT_TRUE(server.requireFrameNotification(0, TimeClamping::Clamp));
    EXPECT_EQ(colorOf(server), QColor(Qt::red));
    EXPECT_FALSE(server.requireFrameNotification(0.09f, TimeClamping::Clamp));
    EXPECT_TRUE(server.requireFrameNotification(9, TimeClamping::Clamp));
    EXPECT_EQ(colorOf(server), QColor(Qt::blue));
    EXPECT_TRUE(server.requireFrameNotification(-1, TimeClamping::None));
    EXPECT_EQ(colorOf(server), QColor(Qt::blue)) << "no frame, so nothing is read";
    EXPECT_TRUE(server.requireFrameNotification(0.1f, TimeClamping::Clamp));
    const QImage grey = Orn::Image::Core::surfaceToQImage(server.surface());
    EXPECT_EQ(grey.size(), QSize(512, 512));
    EXPECT_EQ(grey.pixel(0, 0), 0xffa8a8a8);
    int dark = 0;
    for (int x = 0; x < 512; ++x)
        for (int y = 200; y < 312; ++y)
            dark += qGray(grey.pixel(x, y)) < 64;
    EXPECT_GT(dark, 50) << "words in the middle";

    int told = 0;
    QObject::connect(&server, &ImageServerBase::fileChangedNotification, [&] { ++told; });
    put("f2.png", Qt::green);
    EXPECT_TRUE(QTest::qWaitFor([&] { return told == 1; })) << "a frame that comes later";
    EXPECT_EQ(colorOf(server), QColor(Qt::green));
}

TEST_F(ImageServer, FollowsItsFile)
{
    const QString path = put("still.png", Qt::red);
    const auto server = createImageServer(path, nullptr);
    ASSERT_NE(server, nullptr);
    int told = 0;
    QObject::connect(server.get(), &ImageServerBase::fileChangedNotification, [&] { ++told; });
    const auto expectColor = [&](const QColor& color, const char* what) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return told == 1; })) << what;
        EXPECT_EQ(colorOf(*server), color) << what;
        told = 0;
    };
    put("still.png", Qt::green);
    expectColor(Qt::green, "written over");
    put("other.png", Qt::blue);
    ASSERT_EQ(std::rename(qPrintable(folder.filePath("other.png")), qPrintable(path)), 0);
    expectColor(Qt::blue, "replaced");
    EXPECT_TRUE(server->isUpToDate());
    int lost = 0;
    QObject::connect(server.get(), &ImageServerBase::fileLostNotification, [&] { ++lost; });
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_TRUE(QTest::qWaitFor([&] { return lost == 1; })) << "gone";
    EXPECT_FALSE(server->isUpToDate());
    EXPECT_EQ(colorOf(*server), QColor(Qt::blue)) << "gone";
    put("still.png", Qt::yellow);
    expectColor(Qt::yellow, "made anew");
    EXPECT_TRUE(server->isUpToDate());
    ASSERT_TRUE(QFile::resize(path, 40));
    EXPECT_TRUE(QTest::qWaitFor([&] { return lost == 2; })) << "cut off";
    EXPECT_EQ(told, 0) << "cut off";
    EXPECT_EQ(colorOf(*server), QColor(Qt::yellow)) << "cut off";
    put("still.png", Qt::red);
    expectColor(Qt::red, "whole again");
}

} // namespace
