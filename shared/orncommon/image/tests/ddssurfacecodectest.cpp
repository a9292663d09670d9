#include "orncommon/image/codec/dds/ddsheader.h"
#include "orncommon/image/codec/dds/ddssurfacecodecfactory.h"
#include "orncommon/image/surfaceoperations.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QtEndian>

#include <cstring>

using namespace Orn::Image::Codec;
using namespace Orn::Surfaces;

namespace {

/// 3 x 2 pixels with 1, 2, 3... as their bytes, and rows that are `padding` bytes apart.
QSharedPointer<Surface> counted(PixelFormat format, unsigned int padding = 0)
{
    SurfaceDescription description(3, 2, format);
    description.pitch = description.lineSize() + padding;
    auto const surface = QSharedPointer<Surface>::create(description);
    std::uint8_t value = 0;
    for (unsigned int y = 0; y < 2; ++y)
        for (std::uint64_t i = 0; i < surface->lineSize(); ++i)
            surface->row(y)[i] = ++value;
    return surface;
}

QByteArray written(QSharedPointer<Surface> const& surface)
{
    DDSSurfaceCodecFactory factory;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return factory.create(buffer, "dds")->write(surface, nullptr) ? buffer.data() : QByteArray();
}

QSharedPointer<Surface> readBack(QByteArray file)
{
    DDSSurfaceCodecFactory factory;
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    QSharedPointer<Surface> surface;
    factory.create(buffer, "dds")->read(surface, nullptr);
    return surface;
}

int capabilities(QByteArray file, QByteArray const& format = "dds")
{
    QBuffer buffer(&file);
    return DDSSurfaceCodecFactory().capabilities(buffer, format);
}

quint32 field(QByteArray const& file, int offset)
{
    return qFromLittleEndian<quint32>(file.constData() + offset);
}

void put(QByteArray& file, int offset, quint32 value)
{
    qToLittleEndian(value, file.data() + offset);
}

struct Layout
{
    PixelFormat format;
    quint32 flags, pitch, formatFlags, code, bits, red, green, blue, alpha;
    bool isRead;
};

constexpr Layout layouts[] = {
    {L8, 0x1007, 3, 0x20000, 0, 8, 0xFF, 0, 0, 0, true},
    {L16, 0x1007, 6, 0x20000, 0, 16, 0xFFFF, 0, 0, 0, true},
    {RGB8, 0x1007, 9, 0x40, 0, 24, 0xFF0000, 0xFF00, 0xFF, 0, false},
    {BGR8, 0x1007, 9, 0x40, 0, 24, 0xFF, 0xFF00, 0xFF0000, 0, false},
    {RGBA8, 0x1007, 12, 0x41, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000, true},
    {BGRA8, 0x1007, 12, 0x41, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000, true},
    {RGBA16, 0x1007, 24, 4, 0x24, 0, 0xFF, 0xFF00, 0xFF0000, 0, true},
    {L16F, 0x100F, 0, 4, 0x6F, 0, 0, 0, 0, 0, true},
    {RGBA16F, 0x100F, 0, 4, 0x71, 0, 0xFF, 0xFF00, 0xFF0000, 0, true},
    {L32F, 0x100F, 0, 4, 0x72, 0, 0, 0, 0, 0, true},
    {RGBA32F, 0x100F, 0, 4, 0x74, 0, 0xFF, 0xFF00, 0xFF0000, 0, true},
};

TEST(DdsSurfaceCodec, WritesEachFormatAndReadsItBack)
{
    for (Layout const& layout : layouts) {
        SCOPED_TRACE(int(layout.format));
        auto const surface = counted(layout.format, 5);
        QByteArray const file = written(surface);
        int const lineSize = int(surface->lineSize());
        ASSERT_EQ(file.size(), 128 + 2 * lineSize);
        EXPECT_EQ(file.left(4), "DDS ");
        EXPECT_EQ(file.mid(24, 52), QByteArray(52, '\0'));
        quint32 const expected[] = {124, layout.flags, 2, 3, layout.pitch};
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(field(file, 4 + 4 * i), expected[i]) << i;
        quint32 const pixels[] = {32,           layout.formatFlags, layout.code,  layout.bits, layout.red,
                                  layout.green, layout.blue,        layout.alpha, 0x1000};
        for (int i = 0; i < 9; ++i)
            EXPECT_EQ(field(file, 76 + 4 * i), pixels[i]) << i;
        for (int y = 0; y < 2; ++y)
            EXPECT_EQ(std::memcmp(file.constData() + 128 + y * lineSize, surface->row(unsigned(y)),
                                  size_t(lineSize)),
                      0);

        auto const read = readBack(file);
        ASSERT_EQ(!read.isNull(), layout.isRead);
        EXPECT_EQ(capabilities(file), layout.isRead ? 3 : 2);
        EXPECT_EQ(capabilities(file, ""), layout.isRead ? 1 : 0);
        EXPECT_EQ(capabilities(file, "png"), 0);
        if (!layout.isRead)
            continue;
        EXPECT_EQ(read->format(), layout.format);
        EXPECT_EQ(std::memcmp(read->row(1), surface->row(1), size_t(lineSize)), 0);
    }
    EXPECT_TRUE(written(counted(RGB16)).isEmpty());
}

TEST(DdsSurfaceCodec, WhatOtherProgramsWrite)
{
    QByteArray file = written(counted(RGBA8));
    put(file, 80, 0x40); // no alpha: the header is sound, the pixels are another factory's
    DDSHeader header;
    ASSERT_TRUE(ornDDSHeaderRead(file, header));
    EXPECT_EQ(header.pixelType, DDSRgbx8);
    EXPECT_EQ(capabilities(file), 2);
    EXPECT_FALSE(readBack(file).isNull());

    put(file, 8, 0x2100F);
    put(file, 28, 5);
    ASSERT_TRUE(ornDDSHeaderRead(file, header));
    EXPECT_EQ(header.mipCount, 5u);
    EXPECT_EQ(header.pitch, 12u);

    put(file, 80, 4);
    file.replace(84, 4, "DXT5");
    ASSERT_TRUE(ornDDSHeaderRead(file, header));
    EXPECT_EQ(header.pixelType, DDSDxt5);
    EXPECT_EQ(capabilities(file), 2);
    EXPECT_TRUE(readBack(file).isNull());
}

TEST(DdsSurfaceCodec, RefusesWhatIsDamaged)
{
    QByteArray const good = written(counted(RGBA8));
    ASSERT_FALSE(readBack(good).isNull());
    for (int length : {0, 4, 127, 128, good.size() - 1})
        EXPECT_TRUE(readBack(good.left(length)).isNull()) << length;
    struct
    {
        int offset;
        quint32 value;
    } const faults[] = {{0, 0},      {8, 0x1005},   {12, 0},  {12, ~0u},    {16, ~0u}, {16, 0x10000000},
                        {80, 0x200}, {80, 0x20041}, {88, 16}, {92, 0xFF00}, {100, 0}};
    for (auto const& fault : faults) {
        QByteArray file = good;
        put(file, fault.offset, fault.value);
        EXPECT_TRUE(readBack(file).isNull()) << fault.offset << ' ' << fault.value;
    }
}

} // namespace
