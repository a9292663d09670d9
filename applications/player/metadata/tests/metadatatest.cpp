#include "applications/player/metadata/metadataloader.h"
#include "applications/player/metadata/metadatatrailer.h"
#include "applications/player/metadata/metadatawriter.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTemporaryFile>
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

TEST(MetadataTrailer, NoneIsBeyondAllMeasure)
{
    QTemporaryFile file; // sparse
    ASSERT_TRUE(file.open() && file.resize(largestMetadata + 8) && file.seek(largestMetadata + 8));
    file.write(number(quint32(largestMetadata + 4)) + "TMLV");
    EXPECT_FALSE(readMetadataTrailer(file));
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
    float value = 0.25f;
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
                                   return preset(value);
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

TEST(Metadata, EveryFieldOfATrailerCountsAtEveryLength)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("b.png");
    MetadataRecord record;
    record.packageUrl = "p";
    record.archive = "archive";
    record.preset = preset(1);
    const QByteArray document = metadataDocument(record, QDir(folder.path()));
    const quint32 size = quint32(document.size());
    const auto beginning = [&](const char* text) { return text + document.mid(int(qstrlen(text))); };
    struct Row
    {
        const char* what;
        QByteArray text;
        QByteArray length;
        QByteArray magic;
    };
    const Row rows[] = {
        {"sound", document, number(size), "TMLV"},
        {"no length", document, number(0), "TMLV"},
        {"into the text", document, number(size - 1), "TMLV"},
        {"ahead of the text", document, number(size + 1), "TMLV"},
        {"ahead of the file", document, number(size + 64), "TMLV"},
        {"beyond all files", document, number(0xffffffff), "TMLV"},
        {"the other end first", document, number(qToBigEndian(size)), "TMLV"},
        {"first of the magic", document, number(size), "tMLV"},
        {"last of the magic", document, number(size), "TMLv"},
        {"magic backwards", document, number(size), "VLMT"},
        {"text that is none", beginning(">"), number(size), "TMLV"},
        {"no package", QByteArray(document).replace("pkgurl", "pkgura"), number(size), "TMLV"},
        {"zeros", QByteArray(int(size), '\0'), number(size), "TMLV"}};
    for (const Row& row : rows)
        for (int more = 0; more < 4; ++more) {
            // Another byte ahead of the text each time, and so each remainder of the length.
            const QByteArray bitmap(8 + more, 'b');
            write(path, bitmap + row.text + row.length + row.magic);
            const bool isWhole = (bitmap.size() + size + 8) % 4 == 0;
            MetadataLoader loader(notAsked);
            const bool isSound = row.text == document && row.length == number(size) && row.magic == "TMLV";
            EXPECT_EQ(loader.load(path).has_value(), isSound && isWhole) << row.what << ' ' << more;
            EXPECT_EQ(loader.error(), isSound && isWhole ? "" : "Vellor Metadata loading failed")
                << row.what << ' ' << more;
        }
}

TEST(Metadata, TheHashTellsValuesApartWhereverTheyStand)
{
    const auto hashes = [](quint32 choices, float value) {
        Export run;
        run.value = value;
        run.run(Choices::fromBits(choices));
        QSet<QByteArray> found;
        for (const auto& bitmap : run.bitmaps) {
            QFile file(bitmap.path);
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            const QByteArray text = file.readAll();
            const int from = text.indexOf(" hash=\"");
            EXPECT_GT(from, 0);
            found.insert(text.mid(from, text.indexOf('"', from + 7) - from));
        }
        return found;
    };
    const QSet<QByteArray> embedded = hashes(0x000000, 0.25f);
    EXPECT_EQ(embedded.size(), 1);
    EXPECT_EQ(hashes(0x000100, 0.25f), embedded) << "values only once";
    EXPECT_EQ(hashes(0x000200, 0.25f), embedded) << "values in files";
    EXPECT_FALSE(hashes(0x000200, 0.5f).intersects(embedded)) << "other values";
    const QSet<QByteArray> referred = hashes(0x020000, 0.25f);
    EXPECT_FALSE(referred.intersects(embedded)) << "the archive's name in place of its bytes";
    EXPECT_EQ(hashes(0x010000, 0.25f), embedded + referred) << "in one bitmap its bytes";
}

TEST(Metadata, WhatCannotBeWrittenBesideABitmapIsLeftOut)
{
    const QTemporaryDir folder;
    BitmapMetadata metadata;
    metadata.beside = {{folder.filePath("none/a.vlrmeta"), "a"}, {folder.filePath("b.vlrprs"), "b"}};
    EXPECT_EQ(metadata.writeBeside(), "");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList("b.vlrprs"));
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
