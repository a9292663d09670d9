#include "applications/player/metadata/metadataloader.h"
#include "applications/player/metadata/metadatatrailer.h"
#include "applications/player/metadata/metadatawriter.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

namespace {

using namespace Zph::Applications::Player;
using Choices = MetadataChoices;

PresetDescription preset(float value)
{
    PresetDescription preset;
    PresetInput input;
    input.identifier = "width";
    input.uid = 7;
    input.value = InputValue::fromFloats(value);
    preset.inputs = {input};
    return preset;
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

std::optional<QByteArray> trailerOf(QByteArray file)
{
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    return readMetadataTrailer(buffer);
}

QByteArray number(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

TEST(MetadataTrailer, EndsAFileOfAnyLength)
{
    for (int length = 0; length < 9; ++length)
        for (int text = 0; text < 5; ++text) {
            const QByteArray bitmap(length, 'b'), document(text, 'x');
            const QByteArray trailer = metadataTrailer(document, length);
            const QByteArray file = bitmap + trailer;
            EXPECT_EQ(file.size() % 4, 0);
            EXPECT_LE(trailer.size(), text + 8 + 3);
            EXPECT_EQ(file.right(8), number(quint32(text)) + "TMLV");
            EXPECT_EQ(trailerOf(file), document) << length << ' ' << text;
        }
}

TEST(MetadataTrailer, DamageIsFoundOut)
{
    const QByteArray good = "bits" + metadataTrailer("1234", 4);
    ASSERT_TRUE(trailerOf(good));
    for (int length = 0; length < good.size(); ++length)
        EXPECT_FALSE(trailerOf(good.left(length))) << length;
    for (const quint32 length : {13u, 0x7fffffffu, 0xfffffff8u, 0xffffffffu})
        EXPECT_FALSE(trailerOf("bits1234" + number(length) + "TMLV")) << length;
    EXPECT_FALSE(trailerOf("bits1234" + number(4) + "TMLX"));
    EXPECT_EQ(trailerOf(number(0) + "TMLV"), QByteArray());
}

TEST(MetadataRecord, LineByLineAndBack)
{
    MetadataRecord record;
    record.packageUrl = "pkg://a/b";
    record.outputIdentifier = "'Base <Color>' (id:basecolor)";
    record.archiveFileName = "b.vlrar";
    record.archive = QByteArray("\0\1\2", 3);
    record.preset = preset(0.5f);
    record.preset->label = "left out";
    const QByteArray text = metadataDocument(record, QDir("/"));
    // Seed 0 makes a hash of h = 31 h + c over the characters, the same everywhere.
    quint32 url = 0;
    for (const QChar c : record.packageUrl)
        url = 31 * url + c.unicode();
    const QString presetText =
        R"(<vlrpreset><presetinput uid="7" identifier="width" type="0" value="0.5"/></vlrpreset>)";
    quint32 values = 0;
    for (const QChar c : presetText)
        values = 31 * values + c.unicode();
    const quint32 archive = 1 * 31 + 2;
    EXPECT_EQ(text.toStdString(),
              R"x(<vlrmeta formatversion="1.0" pkgurl="pkg://a/b" outputidentifier="'Base &lt;Color&gt;' )x"
              R"x((id:basecolor)" vlrarfilename="b.vlrar" vlrarcontent="AAEC" hash=")x" +
                  std::to_string(url ^ values ^ archive) + R"x(">
 <vlrpreset>
  <presetinput uid="7" identifier="width" type="0" value="0.5"/>
 </vlrpreset>
</vlrmeta>
)x");
    const auto read = parseMetadata(text, QDir("/"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->outputIdentifier, record.outputIdentifier);
    EXPECT_EQ(read->archive, record.archive);
    ASSERT_TRUE(read->preset);
    EXPECT_EQ(read->preset->pkgurl, "pkg://a/b");
    EXPECT_EQ(read->preset->inputs[0].value.floatAt(0), 0.5f);
    for (const char* bad : {"", "<vlrmeta", "<vlrmeta/>", "\xff"})
        EXPECT_FALSE(parseMetadata(bad, QDir("/"))) << bad;
}

struct Export
{
    QTemporaryDir folder;
    int presetsBuilt = 0;
    QVector<MetadataWriter::Bitmap> bitmaps;

    Export()
    {
        for (const char* name : {"height", "'Colour' (id:baseColor)", "normal"})
            bitmaps.append({"pkg://g", name, folder.filePath(QString("g_%1.png").arg(bitmaps.size()))});
    }

    void run(const Choices& choices)
    {
        presetsBuilt = 0;
        MetadataWriter writer(choices,
                              {"g.vlrar", "the archive",
                               [this](const QString&) {
                                   ++presetsBuilt;
                                   return preset(0.25f);
                               }},
                              bitmaps);
        for (const auto& bitmap : bitmaps) {
            const BitmapMetadata metadata = writer.of(bitmap);
            const QByteArray document = metadata.embedded;
            write(bitmap.path, document.isEmpty() ? "pixels" : "pixels" + metadataTrailer(document, 6));
            EXPECT_EQ(metadata.writeBeside(), "");
        }
    }
};

QString notAsked(const QString& title, const QString&, const QString&)
{
    ADD_FAILURE() << title.toStdString();
    return {};
}

TEST(Metadata, WhatIsWrittenIsFoundAgainInEveryForm)
{
    for (const quint32 metadata : {0u, 1u})
        for (const quint32 values : {0u, 1u, 2u})
            for (const quint32 archive : {0u, 1u, 2u}) {
                SCOPED_TRACE(testing::Message() << metadata << values << archive);
                const Choices choices = Choices::fromBits(metadata | values << 8 | archive << 16);
                Export run;
                run.run(choices);
                EXPECT_EQ(run.presetsBuilt, 1);
                write(run.folder.filePath("g.vlrar"), "beside");
                MetadataLoader loader(notAsked);
                const auto result =
                    loader.load(run.folder.filePath(metadata == 0 ? "g_2.png" : "g_2.vlrmeta"));
                ASSERT_TRUE(result) << loader.error().toStdString();
                EXPECT_EQ(result->archive, archive == 2 ? "beside" : "the archive");
                EXPECT_EQ(result->preset.pkgurl, "pkg://g");
                EXPECT_EQ(result->preset.inputs[0].value.floatAt(0), 0.25f);
                EXPECT_EQ(result->outputIdentifier, "normal");
            }
}

TEST(Metadata, TheBaseColourHoldsWhatIsEmbeddedOnce)
{
    Export run;
    run.run(Choices::fromBits(0x010100));
    QFile height(run.folder.filePath("g_0.png")), colour(run.folder.filePath("g_1.png"));
    ASSERT_TRUE(height.open(QIODevice::ReadOnly) && colour.open(QIODevice::ReadOnly));
    const QByteArray other = height.readAll(), holder = colour.readAll();
    EXPECT_TRUE(other.contains("vlrarembeddedref=\"g_1.png\""));
    EXPECT_TRUE(other.contains("presetembeddedref=\"g_1.png\""));
    EXPECT_FALSE(other.contains("vlrarcontent"));
    EXPECT_TRUE(holder.contains("vlrarcontent"));
    EXPECT_FALSE(holder.contains("embeddedref"));
}

TEST(Metadata, AsksForWhatWasMovedAndSaysWhatIsMissing)
{
    Export run;
    run.run(Choices::fromBits(0x010100));
    const QString holder = run.folder.filePath("g_1.png"), moved = run.folder.filePath("moved.png");
    ASSERT_TRUE(QFile::rename(holder, moved));
    QString asked;
    MetadataLoader loader([&](const QString& title, const QString& filter, const QString& path) {
        asked = title + '|' + filter;
        EXPECT_EQ(path, holder);
        return moved;
    });
    ASSERT_TRUE(loader.load(run.folder.filePath("g_2.png"))) << loader.error().toStdString();
    EXPECT_EQ(asked.toStdString(), "'g_1.png' file is required to load 'g_2.png'|Referenced file "
                                   "(g_1.png);;All files (*.*)");

    MetadataLoader cancelled([](const QString&, const QString&, const QString&) { return QString(); });
    EXPECT_FALSE(cancelled.load(run.folder.filePath("g_2.png")));
    EXPECT_EQ(cancelled.error(), "");

    MetadataLoader plain(notAsked);
    write(run.folder.filePath("plain.png"), "pixelspixels");
    EXPECT_FALSE(plain.load(run.folder.filePath("plain.png")));
    EXPECT_EQ(plain.error(), "Vellor Metadata loading failed");
    EXPECT_FALSE(plain.load(run.folder.filePath("none.vlrmeta")));
    EXPECT_EQ(plain.error(), "Cannot open file '" + run.folder.filePath("none.vlrmeta") + "'");
    write(run.folder.filePath("nopreset.vlrmeta"), "<vlrmeta pkgurl='p' vlrarcontent='AAEC'/>");
    EXPECT_FALSE(plain.load(run.folder.filePath("nopreset.vlrmeta")));
    EXPECT_EQ(plain.error(), "Vellor Presets loading failed");
}

} // namespace
