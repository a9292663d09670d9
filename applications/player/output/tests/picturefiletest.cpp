#include "applications/player/output/picturefile.h"
#include "applications/player/output/pixelhash.h"
#include "applications/player/output/tests/fulldisk.h"

#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"
#include "orncommon/surfaces/operations.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

using namespace Zph::Applications::Player;
using namespace Orn::Surfaces;
using Orn::Image::Codec::SurfaceCodecManager;

namespace {

void registerCodecs()
{
    static const bool once = [] {
        Orn::Image::Codec::registerDefaultCodecs(SurfaceCodecManager::instance());
        return true;
    }();
    (void)once;
}

QSharedPointer<Surface> grey16()
{
    auto surface = QSharedPointer<Surface>::create(SurfaceDescription(2, 1, L16));
    const quint16 pixels[] = {0x0102, 0xffff};
    std::memcpy(surface->row(0), pixels, sizeof pixels);
    return surface;
}

} // namespace

TEST(PictureFile, HoldsTheDepthAskedFor)
{
    registerCodecs();
    QTemporaryDir folder;
    struct Row
    {
        const char* format;
        PictureDepth depth;
        PixelFormat read;
        double first;
    };
    const Row rows[] = {
        {"png", PictureDepth::OfPicture, L16, 0x0102 / 65535.0},
        {"png", PictureDepth::Bits8, L8, 1 / 255.0},
        {"tga", PictureDepth::OfPicture, L8, 1 / 255.0},
        {"tif", PictureDepth::Bits16, L16, 0x0102 / 65535.0},
        {"exr", PictureDepth::Float, L32F, 0x0102 / 65535.0},
    };
    for (const Row& row : rows) {
        const QString path = folder.filePath(QString("a.") + row.format);
        ASSERT_EQ(writePictureFile(grey16(), path, {row.format, row.depth}).text, "") << row.format;
        const auto read = SurfaceCodecManager::instance().loadFile(path);
        ASSERT_TRUE(read) << row.format;
        Surface floats;
        ASSERT_TRUE(convertTo(*read, floats, L32F, {}));
        float first;
        std::memcpy(&first, floats.row(0), sizeof first);
        EXPECT_NEAR(first, row.first, 1e-7) << row.format;
        EXPECT_EQ(read->format(), row.read) << row.format;
    }
}

TEST(PictureFile, KnowsWhichFormatsKeepAlpha)
{
    registerCodecs();
    QTemporaryDir folder;
    const auto glass = QSharedPointer<Surface>::create(SurfaceDescription(8, 8, RGBA8));
    fill(*glass, 0.0f, 0.0f, 0.0f, 100 / 255.0f);
    for (const QString& format : pictureFormats()) {
        const QString path = folder.filePath("a." + format);
        ASSERT_EQ(writePictureFile(glass, path, {format}).text, "") << format.toStdString();
        const auto read = SurfaceCodecManager::instance().loadFile(path);
        Surface floats;
        ASSERT_TRUE(read && convertTo(*read, floats, RGBA32F, {})) << format.toStdString();
        float pixel[4];
        std::memcpy(pixel, floats.row(0), sizeof pixel);
        EXPECT_EQ(std::abs(pixel[3] - 100 / 255.0f) < 0.01f, holdsAlpha(format))
            << format.toStdString() << ' ' << pixel[3];
    }
}

TEST(PictureFile, WhatCantBeWrittenLeavesNothing)
{
    registerCodecs();
    QTemporaryDir folder;
    const QString path = folder.filePath("a.png");
    EXPECT_TRUE(writePictureFile(grey16(), folder.filePath("no/a.png"), {"png"}));
    EXPECT_TRUE(writePictureFile(grey16(), path, {"nothing"}).isFormatUnknown);
    const std::atomic<bool> cancelled{true};
    EXPECT_TRUE(writePictureFile(grey16(), path, {"png", PictureDepth::OfPicture, &cancelled}));
    EXPECT_TRUE(writePictureFile({}, path, {"png"}));
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
    QFile kept(path);
    ASSERT_TRUE(kept.open(QIODevice::WriteOnly) && kept.write("kept") == 4);
    kept.close();
    EXPECT_TRUE(writePictureFile(grey16(), path, {"png", PictureDepth::OfPicture, &cancelled}));
    EXPECT_EQ(kept.size(), 4);
}

TEST(PictureFile, ADiskThatFillsUpInMidFileLeavesWhatWasThere)
{
    registerCodecs();
    QTemporaryDir folder;
    const auto noise = QSharedPointer<Surface>::create(SurfaceDescription(64, 64, RGBA8));
    for (unsigned i = 0; i < noise->lineSize() * noise->height(); ++i)
        noise->data()[i] = quint8(i * i >> 3); // so that no format makes it small
    for (const QString& format : pictureFormats()) {
        const QString path = folder.filePath("a." + format);
        ASSERT_EQ(writePictureFile(noise, path, {format}).text, "") << format.toStdString();
        const qint64 size = QFileInfo(path).size();
        for (const qint64 room : {qint64(100), size - 1}) {
            QFile kept(path);
            ASSERT_TRUE(kept.open(QIODevice::WriteOnly) && kept.write("kept") == 4);
            kept.close();
            QString reason;
            {
                const Tests::FullDisk disk(room);
                reason = writePictureFile(noise, path, {format}).text;
            }
            EXPECT_EQ(reason, "File too large") << format.toStdString() << ' ' << room;
            EXPECT_EQ(kept.size(), 4) << format.toStdString() << ' ' << room;
        }
        ASSERT_TRUE(QFile::remove(path));
        EXPECT_TRUE(QDir(folder.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }
}

TEST(PixelHash, IsTheDigestOfTheRawPixels)
{
    // printf '\002\001\377\377' | md5sum
    EXPECT_EQ(pixelHash(*grey16()).toHex(), "6f0d81b02268f3437452a14b7e2b05ca");
    // A row that ends in padding, and blue first: printf '\001\002\003\004' | md5sum
    const quint8 bytes[] = {3, 2, 1, 4, 99, 99, 99, 99};
    SurfaceDescription description(1, 1, BGRA8);
    description.pitch = 8;
    EXPECT_EQ(pixelHash(Surface(const_cast<quint8*>(bytes), description)).toHex(),
              "08d6c05a21512a79a1dfeb9d2a8f262f");
}
