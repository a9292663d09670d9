#include "applications/player/images/imagesequence.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <limits>

namespace {

using namespace Zph::Applications::Player;

void touch(const QString& path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
}

TEST(ImageSequence, IsFoundByTheLastDigitsOfTheName)
{
    const QTemporaryDir folder;
    for (const char* name : {"a012.png", "a013.png", "a014.png", "a016.png", "a015.tif", "a9.png",
                             "v2_x07y.1.tga", "v2_x07y.2.tga", "still.png", "b1.png", "c99999999999.png"})
        touch(folder.filePath(name));
    const auto found = findImageSequence(folder.filePath("a012.png"));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->digits, 3);
    EXPECT_EQ(found->firstFrame, 12);
    EXPECT_EQ(found->frameCount, 3);
    EXPECT_EQ(found->pattern, folder.filePath("a*.png"));
    EXPECT_EQ(found->file(7), folder.filePath("a007.png"));
    EXPECT_EQ(found->file(12345), folder.filePath("a12345.png"));
    const auto dotted = findImageSequence(folder.filePath("v2_x07y.1.tga"));
    ASSERT_TRUE(dotted);
    EXPECT_EQ(dotted->file(2), folder.filePath("v2_x07y.2.tga"));
    for (const char* name : {"still.png", "b1.png", "a016.png", "c99999999999.png", "none1.png"})
        EXPECT_FALSE(findImageSequence(folder.filePath(name))) << name;
}

TEST(ImageSequence, ChoosesAFrameByTime)
{
    ImageSequence sequence;
    sequence.firstFrame = 100;
    sequence.frameCount = 10;
    const auto at = [&](float time, TimeClamping clamping) { return sequence.numberAt(time, 24, clamping); };
    EXPECT_EQ(at(0.25f, TimeClamping::None), 106);
    EXPECT_EQ(at(1.0f, TimeClamping::None), 99);
    EXPECT_EQ(at(1.0f, TimeClamping::Clamp), 109);
    EXPECT_EQ(at(-1.0f, TimeClamping::Clamp), 100);
    EXPECT_EQ(at(1.0f, TimeClamping::Repeat), 104);
    EXPECT_EQ(at(0.0f, TimeClamping::Repeat), 109); // frames up to 0 count down from the last
    EXPECT_EQ(at(-1.1f / 24, TimeClamping::Repeat), 108);
    sequence.frameCount = 30;
    EXPECT_EQ(at(1.0f, TimeClamping::None), 124);
    for (const float far : {1e30f, -1e30f, std::numeric_limits<float>::quiet_NaN()})
        for (const TimeClamping clamping : {TimeClamping::None, TimeClamping::Clamp, TimeClamping::Repeat}) {
            EXPECT_GE(at(far, clamping), 99);
            EXPECT_LT(at(far, clamping), 130);
        }
}

} // namespace
