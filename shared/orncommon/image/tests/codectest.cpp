#include "orncommon/image/codec/defaultcodecs.h"
#include "orncommon/image/codec/surfacecodecmanager.h"
#include "orncommon/surfaces/operations.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QSizeF>
#include <QTemporaryDir>
#include <QtEndian>

#include <cstring>
#include <vector>

using namespace Orn::Image::Codec;
using namespace Orn::Surfaces;
using Shared = QSharedPointer<Surface>;

namespace {

template<typename T>
Shared pictureOf(PixelFormat format, unsigned int width, unsigned int height,
                 std::vector<T> const& components)
{
    auto surface = Shared::create(SurfaceDescription(width, height, format), 64u);
    std::memcpy(surface->data(), components.data(), components.size() * sizeof(T));
    return surface;
}

/// Distinct values in every component, so that a swapped row, column or channel shows.
Shared rampOf(PixelFormat format, unsigned int width, unsigned int height)
{
    std::vector<float> values(std::size_t(width) * height * 4);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = float(i % 251) / 250.0f;
    Surface const floats(values.data(), SurfaceDescription(width, height, RGBA32F));
    auto surface = Shared::create();
    convertTo(floats, *surface, format, {});
    return surface;
}

std::vector<std::uint8_t> pixelsOf(Surface const& surface)
{
    std::vector<std::uint8_t> bytes;
    for (unsigned int y = 0; y < surface.height(); ++y)
        bytes.insert(bytes.end(), surface.row(y), surface.row(y) + surface.lineSize());
    return bytes;
}

/// Takes no bytes after the first hundred.
class FullDevice : public QIODevice
{
public:
    int refusals = 0;

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(char const*, qint64 size) override
    {
        m_taken += size;
        if (m_taken <= 100)
            return size;
        ++refusals;
        return -1;
    }

private:
    qint64 m_taken = 0;
};

class Codecs : public ::testing::Test
{
protected:
    void SetUp() override
    {
        registerDefaultCodecs(manager);
        ASSERT_TRUE(folder.isValid());
    }

    QString path(char const* name) const { return folder.filePath(QString::fromUtf8(name)); }

    QByteArray contents(char const* name) const
    {
        QFile file(path(name));
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

    Shared read(QByteArray bytes, QByteArray const& format, SurfaceCodecOptions* options = nullptr) const
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        auto const reader = manager.createReader(buffer, format);
        Shared surface;
        if (!reader.isNull())
            reader->read(surface, options);
        return surface;
    }

    SurfaceCodecManager manager;
    QTemporaryDir folder;
};

TEST_F(Codecs, RoundTrips)
{
    struct
    {
        PixelFormat saved;
        char const* name;
        PixelFormat loaded;
    } const rows[] = {
        {L8, "a.png", L8},          {L16, "b.png", L16},      {RGBA8, "c.png", BGRA8},
        {BGRA8, "d.PNG", BGRA8},    {RGB8, "e.png", BGRA8},   {RGBA16, "f.png", RGBA16},
        {RGB16, "g.png", RGBA16},   {RGBA8, "h.tga", BGRA8},  {RGB8, "i.tga", BGRA8},
        {RGB8, "j.bmp", BGRA8},     {RGBA8, "k.tiff", BGRA8}, {L16, "l.tif", L16},
        {RGBA16, "m.tif", RGBA16},  {L32F, "n.tif", L32F},    {RGBA32F, "o.tif", RGBA32F},
        {RGB32F, "p.tif", RGBA32F}, {L8, "q.tga", L8},        {RGBA16F, "r.exr", RGBA32F},
    };
    for (auto const& row : rows) {
        auto const saved = rampOf(row.saved, 5, 3);
        ASSERT_TRUE(manager.saveFile(saved, path(row.name))) << row.name;
        auto const loaded = manager.loadFile(path(row.name));
        ASSERT_FALSE(loaded.isNull()) << row.name;
        EXPECT_EQ(loaded->format(), row.loaded) << row.name;
        Surface expected;
        convertTo(*saved, expected, row.loaded, ConversionParameters{255});
        EXPECT_EQ(pixelsOf(*loaded), pixelsOf(expected)) << row.name;
    }
    EXPECT_TRUE(QDir(folder.path()).entryList({"*.tmp*"}).isEmpty());
}

TEST_F(Codecs, AlphaUseTellsWhatTheFileHad)
{
    ASSERT_TRUE(manager.saveFile(rampOf(RGBA8, 2, 2), path("alpha.png")));
    ASSERT_TRUE(manager.saveFile(rampOf(RGB16, 2, 2), path("none.png")));
    EXPECT_EQ(manager.loadFile(path("alpha.png"))->description().alphaUse, SurfaceDescription::AlphaCarried);
    EXPECT_EQ(manager.loadFile(path("none.png"))->description().alphaUse, SurfaceDescription::AlphaAbsent);
}

TEST_F(Codecs, WholeNumbersOf32BitsBecomeFloats)
{
    // A TIFF of 1 x 1 pixels, 32 bits, signed: ten entries from offset 8, the pixel behind them.
    struct
    {
        quint16 tag, type;
        quint32 value;
    } const entries[] = {{256, 3, 1},   {257, 3, 1}, {258, 3, 32}, {259, 3, 1}, {262, 3, 1},
                         {273, 4, 134}, {277, 3, 1}, {278, 3, 1},  {279, 4, 4}, {339, 3, 2}};
    QByteArray file(138, '\0');
    file.replace(0, 4, QByteArray("II*\0", 4));
    file[4] = 8;
    file[8] = 10;
    int offset = 10;
    for (auto const& entry : entries) {
        qToLittleEndian(entry.tag, file.data() + offset);
        qToLittleEndian(entry.type, file.data() + offset + 2);
        qToLittleEndian(quint32(1), file.data() + offset + 4);
        qToLittleEndian(entry.value, file.data() + offset + 8);
        offset += 12;
    }
    auto const loaded = read(file, "tif");
    ASSERT_FALSE(loaded.isNull());
    EXPECT_EQ(loaded->format(), L32F);
}

TEST_F(Codecs, OpaqueBitmapsHaveNoAlpha)
{
    auto picture = rampOf(RGBA8, 3, 2);
    for (unsigned int i = 3; i < 24; i += 4)
        picture->data()[i] = 255;
    ASSERT_TRUE(manager.saveFile(picture, path("opaque.bmp")));
    ASSERT_TRUE(manager.saveFile(picture, path("opaque.tga")));
    EXPECT_EQ(contents("opaque.bmp").at(28), 24);
    EXPECT_EQ(contents("opaque.tga").at(16), 24);
    picture->data()[3] = 254;
    ASSERT_TRUE(manager.saveFile(picture, path("alpha.bmp")));
    EXPECT_EQ(contents("alpha.bmp").at(28), 32);
    ASSERT_TRUE(manager.saveFile(picture, path("alpha.jpg")));
    EXPECT_FALSE(manager.loadFile(path("alpha.jpg")).isNull());
}

TEST_F(Codecs, RunLengthBitmapsStateTheirSizes)
{
    SurfaceCodecOptions options;
    options.setValue("bmp_compression", "rle");
    auto const picture = pictureOf<std::uint8_t>(L8, 8, 2, std::vector<std::uint8_t>(16, 5));
    ASSERT_TRUE(manager.saveFile(picture, path("runs.bmp"), &options));
    // Headers of 14 and 40 bytes and a palette, then two rows of a run and an end, and the end of the
    // picture.
    QByteArray const file = contents("runs.bmp");
    EXPECT_EQ(file.mid(1078).toHex(), "08050000"
                                      "08050000"
                                      "0001");
    EXPECT_EQ(qFromLittleEndian<quint32>(file.constData() + 2), 1088u);
    EXPECT_EQ(qFromLittleEndian<quint32>(file.constData() + 34), 10u);
    EXPECT_EQ(pixelsOf(*manager.loadFile(path("runs.bmp"))), pixelsOf(*picture));
}

QByteArray const tgaFooter = QByteArray(8, '\0') + "TRUEVISION-XFILE.";

TEST_F(Codecs, GreyTargaByteByByte)
{
    auto const picture = pictureOf<std::uint16_t>(L16, 2, 2, {0x0000, 0x0101, 0x0202, 0xFFFF});
    ASSERT_TRUE(manager.saveFile(picture, path("grey.tga")));
    QByteArray const header = QByteArray::fromHex("000003"
                                                  "0000000000"
                                                  "0000"
                                                  "0000"
                                                  "0200"
                                                  "0200"
                                                  "08"
                                                  "08");
    EXPECT_EQ(contents("grey.tga"), header + QByteArray::fromHex("02ff0001") + tgaFooter); // bottom row first
}

TEST_F(Codecs, GreyTargaPackets)
{
    struct
    {
        std::vector<std::uint8_t> row;
        QByteArray packets;
    } const rows[] = {
        {std::vector<std::uint8_t>(300, 7), QByteArray::fromHex("ff07"
                                                                "ff07"
                                                                "ab07")}, // 128, 128 and 44
        {{1, 2, 3}, QByteArray::fromHex("02010203")},
        {{1, 2, 2, 3},
         QByteArray::fromHex("0001"
                             "8102"
                             "0003")},
        {{5, 5, 5, 5}, QByteArray::fromHex("8305")},
        {{9}, QByteArray::fromHex("0009")},
    };
    SurfaceCodecOptions options;
    options.setValue("tga_compression", "rle");
    for (auto const& row : rows) {
        auto const picture = pictureOf(L8, unsigned(row.row.size()), 1, row.row);
        ASSERT_TRUE(manager.saveFile(picture, path("rle.tga"), &options));
        QByteArray const file = contents("rle.tga");
        EXPECT_EQ(file.at(2), 11);
        EXPECT_EQ(file.mid(18).toHex(), (row.packets + tgaFooter).toHex());
        EXPECT_EQ(pixelsOf(*manager.loadFile(path("rle.tga"))), row.row);
    }
    std::vector<std::uint8_t> rising(129);
    for (std::size_t i = 0; i < rising.size(); ++i)
        rising[i] = std::uint8_t(i);
    ASSERT_TRUE(manager.saveFile(pictureOf(L8, 129, 1, rising), path("raw.tga"), &options));
    QByteArray const file = contents("raw.tga");
    EXPECT_EQ(file.size(), 18 + 1 + 128 + 1 + 1 + 25);
    EXPECT_EQ(file.at(18), 127);
    EXPECT_EQ(file.at(18 + 129), 0);
}

TEST_F(Codecs, MetadataGoesWithTheFile)
{
    SurfaceCodecOptions options;
    options.setValue("Description", QStringLiteral("Brick \u00e9"));
    options.setValue("physical_size", QSizeF(2.54, 5.08));
    ASSERT_TRUE(manager.saveFile(rampOf(RGBA8, 100, 100), path("meta.png"), &options));
    SurfaceCodecOptions read;
    ASSERT_FALSE(manager.loadFile(path("meta.png"), &read).isNull());
    EXPECT_EQ(read.value("Description").toString(), QStringLiteral("Brick \u00e9"));
    QByteArray const file = contents("meta.png");
    EXPECT_TRUE(
        file.contains("<tiff:XResolution>100</tiff:XResolution><tiff:YResolution>50</tiff:YResolution>"));
    // pHYs: (int)(100 * 100 / 2.54) = 3937 and 1968 pixels per metre
    EXPECT_TRUE(file.contains(QByteArray("pHYs") + QByteArray::fromHex("00000f61"
                                                                       "000007b0"
                                                                       "01")));
}

TEST_F(Codecs, FailedSaveLeavesTheTarget)
{
    QFile old(path("kept.txt"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    EXPECT_FALSE(manager.saveFile(rampOf(RGBA8, 2, 2), path("kept.txt")));
    EXPECT_EQ(contents("kept.txt"), "old");
    EXPECT_FALSE(manager.saveFile(rampOf(RGBA8, 2, 2), path("new.gif")));
    EXPECT_FALSE(manager.saveFile(Shared(), path("none.png")));
    EXPECT_FALSE(manager.saveFile(rampOf(RGBA8, 2, 2), path("no such folder/a.png")));
    // A folder in the place of the target can't be removed.
    ASSERT_TRUE(QDir(folder.path()).mkpath("taken.png/inside"));
    EXPECT_FALSE(manager.saveFile(rampOf(RGBA8, 2, 2), path("taken.png")));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              (QStringList{"kept.txt", "taken.png"}));
}

TEST_F(Codecs, EncodingEndsWithTheFirstBytesThatAreRefused)
{
    FullDevice device;
    ASSERT_TRUE(device.open(QIODevice::WriteOnly));
    std::vector<quint16> noise(256 * 256);
    quint32 random = 1;
    for (quint16& value : noise)
        value = quint16((random = random * 1664525u + 1013904223u) >> 16);
    EXPECT_FALSE(manager.createWriter(device, "png")->write(pictureOf(L16, 256, 256, noise), nullptr));
    EXPECT_EQ(device.refusals, 1);
}

TEST_F(Codecs, OptionsAreFoundThroughExtensions)
{
    EXPECT_EQ(manager.getFormatOptionIdFromFormat("tiff"), "tif");
    EXPECT_EQ(manager.getFormatOptionIdFromFormat("jpeg"), "jpg");
    EXPECT_EQ(manager.getFormatOptionIdFromFormat("dds"), "");
    EXPECT_TRUE(manager.getImageFormats("jpg").contains({"JPEG - JFIF Compliant", "jpeg"}));

    SurfaceCodecOptions options;
    EXPECT_FALSE(manager.getOptions(options, Action::Write, "nothing"));
    EXPECT_FALSE(manager.getOptions(options, Action::Read, "png"));
    EXPECT_TRUE(options.values().isEmpty());
    ASSERT_TRUE(manager.getOptions(options, Action::Write, "exr"));
    EXPECT_EQ(options.value("exr_compression"), "piz");
    EXPECT_EQ(options.value("exr_lc"), false);
    ASSERT_TRUE(manager.getOptionsDescs(options, Action::Write, "webp"));
    auto const quality = options.optionDescs().value("webp_quality");
    ASSERT_TRUE(quality);
    EXPECT_EQ(int(quality->type), 2);
    EXPECT_EQ(quality->defaultValue, 75);
    EXPECT_EQ(quality->maximum, 100);

    SurfaceCodecOptions changed;
    changed.setValue("jpg_quality", 30);
    manager.setOptions(Action::Write, "jpg", changed);
    ASSERT_TRUE(manager.getOptions(options, Action::Write, "jpg"));
    EXPECT_EQ(options.value("jpg_quality"), 30);
}

TEST_F(Codecs, ListsOfFormats)
{
    auto const has = [](QList<ImageFormat> const& list, char const* extension) {
        for (ImageFormat const& format : list)
            if (format.extension == QLatin1String(extension))
                return true;
        return false;
    };
    for (char const* extension : {"png", "tga", "targa", "jpg", "tif", "tiff", "exr", "bmp"}) {
        EXPECT_TRUE(has(manager.getReadableFormats(), extension)) << extension;
        EXPECT_TRUE(has(manager.getWritableFormats(), extension)) << extension;
    }
    EXPECT_TRUE(has(manager.getReadableFormats(), "gif"));
    for (char const* extension : {"gif", "ppm", "jp2", "pfm"})
        EXPECT_FALSE(has(manager.getWritableFormats(), extension)) << extension;
}

TEST_F(Codecs, ContentWinsOverTheName)
{
    ASSERT_TRUE(manager.saveFile(rampOf(L8, 4, 4), path("picture.png")));
    ASSERT_TRUE(QFile::copy(path("picture.png"), path("picture")));
    EXPECT_FALSE(manager.loadFile(path("picture")).isNull());
    EXPECT_FALSE(read(contents("picture.png"), "tga").isNull());
    EXPECT_TRUE(manager.loadFile(path("not there.png")).isNull());
}

TEST_F(Codecs, DamagedFilesGiveNothingOrAPicture)
{
    for (char const* name :
         {"a.png", "b.tga", "c.bmp", "d.jpg", "e.tif", "f.exr", "g.webp", "h.hdr", "i.psd"}) {
        ASSERT_TRUE(manager.saveFile(rampOf(RGBA8, 33, 21), path(name))) << name;
        QByteArray const good = contents(name);
        for (int length = 0; length < good.size(); length += 1 + good.size() / 40) {
            auto const surface = read(good.left(length), name + 2);
            EXPECT_TRUE(length >= 12 || surface.isNull()) << name << ' ' << length;
        }
        for (int i = 0; i < good.size(); i += 1 + good.size() / 60) {
            QByteArray damaged = good;
            damaged[i] = char(~damaged.at(i));
            read(damaged, name + 2);
        }
    }
    // On these the library would read on for ever.
    EXPECT_TRUE(read(QByteArray::fromHex("8b4a4e470d0a1a0a"), "jng").isNull());
    EXPECT_TRUE(
        read("#define x_width 16\n#define x_height 16\nstatic char x_bits[] = { 0x0f, ", "xbm").isNull());
}

/// A PICT file up to the rows of a 32-bit picture within `bounds`: top, left, bottom and right in
/// hexadecimal.
QByteArray pict(char const* bounds)
{
    return QByteArray(522, '\0') + QByteArray::fromHex("001102ff0c00") + QByteArray(24, '\0') +
           QByteArray::fromHex("009a000000ff0000") + QByteArray::fromHex(bounds) +
           QByteArray::fromHex("00000004000000000048000000480000001000200004000800000000")
               .leftJustified(36 + 18, '\0');
}

TEST_F(Codecs, HugeSizesInATinyFileAreRefused)
{
    auto const picture = rampOf(RGBA8, 4, 4);
    ASSERT_TRUE(manager.saveFile(picture, path("a.bmp")));
    QByteArray bitmap = contents("a.bmp");
    qToLittleEndian(quint32(60000), bitmap.data() + 18);
    qToLittleEndian(quint32(60000), bitmap.data() + 22);
    EXPECT_TRUE(read(bitmap, "bmp").isNull());
    ASSERT_TRUE(manager.saveFile(picture, path("a.tga")));
    QByteArray targa = contents("a.tga");
    qToLittleEndian(quint16(60000), targa.data() + 12);
    qToLittleEndian(quint16(60000), targa.data() + 14);
    EXPECT_TRUE(read(targa, "tga").isNull());
    // A start of codestream with three channels of 8 bits; the library would make 23 GiB of it.
    QByteArray const jpeg2000 =
        QByteArray::fromHex("ff4fff51002f00000000b5050000b50500000000000000000000b5050000b505"
                            "00000000000000000003070101070101070101ff90");
    EXPECT_TRUE(read(jpeg2000, "j2k").isNull());
    // Headers alone, of formats whose plug-ins would allocate what these say.
    struct
    {
        char const* format;
        QByteArray file;
    } const rows[] = {
        {"gif", "GIF89a" + QByteArray::fromHex("ffffffff00000021f904000000000000"
                                               "2c00000000ffffffff0008020000003b")},
        {"sgi", QByteArray::fromHex("01da01010003ffffffff0003").leftJustified(512, '\0')},
        {"iff", "FORM" + QByteArray::fromHex("00000030") + "ILBMBMHD" +
                    QByteArray::fromHex("00000014ffffffff00000000180001000000010100c80140") + "BODY" +
                    QByteArray::fromHex("00000004fd00fd00")},
        {"wbmp", QByteArray::fromHex("000083ff7f83ff7f")},
        {"xbm", "#define a_width 60000\n#define a_height 60000\nstatic char a_bits[] = { 0x00 };\n"},
        {"dds", "DDS " + QByteArray::fromHex("7c000000071000000080000000800000").leftJustified(72, '\0') +
                    QByteArray::fromHex("20000000400000000000000018000000ff00000000ff00000000ff00")
                        .leftJustified(52, '\0')},
        {"png", QByteArray::fromHex("89504e470d0a1a0a0000000d494844520000ffff0000ffff0806000000be1c9d62")},
        // Lossless, 16383 x 16383 pixels.
        {"webp", "RIFF" + QByteArray::fromHex("16000000") + "WEBPVP8L" +
                     QByteArray::fromHex("0a0000002ffebfff0f0000000000")},
        // Direct pixels, 60000 x 60000 and 16 x 16, the rows missing.
        {"pict", pict("0000000060ea60ea")},
        {"pict", pict("0000000000100010")},
        {"ico", QByteArray::fromHex("00000100010010100000010018006803000016000000"
                                    "28000000f0ffffff20000000010018")
                    .leftJustified(1024, '\0')},
    };
    for (auto const& row : rows)
        EXPECT_TRUE(read(row.file, row.format).isNull()) << row.format;
}

} // namespace
