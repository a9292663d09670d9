#include "applications/player/description/input.h"
#include "applications/player/output/tests/fulldisk.h"
#include "applications/player/presets/mayapreset.h"
#include "applications/player/presets/presetfile.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTextCodec>

namespace {

using namespace Zph::Applications::Player;

QDomDocument parse(const char* text)
{
    QDomDocument document;
    EXPECT_TRUE(document.setContent(QByteArray(text)));
    return document;
}

const Input* noInput(quint32)
{
    return nullptr;
}

PresetInput entry(const char* identifier, quint32 uid, quint32 type, InputValue value,
                  const QString& text = {})
{
    PresetInput input;
    input.identifier = identifier;
    input.uid = uid;
    input.type = type;
    input.value = value;
    input.text = text;
    return input;
}

TEST(PresetDescription, readsValuesByType)
{
    const DescriptionIndex index(parse(R"(<p><graphs><graph pkgurl='g'><vlrpresets>
        <vlrpreset label='One'>
            <presetinput uid='1' identifier='f' type='2' value='0.5'/>
            <presetinput uid='2' identifier='i' type='8' value='-5,4294967295'/>
            <presetinput uid='3' identifier='t' type='6' value='a,b'/>
            <presetinput uid='4' identifier='p' type='5' filepath='x/y.png'/>
            <presetinput uid='6' value='7'/>
            <presetinput uid='9' value='7'/>
            <presetinput uid='1' identifier='f' type='0' value='9'/>
        </vlrpreset><vlrpreset label='Two' pkgurl='h'/></vlrpresets></graph></graphs></p>)"));
    QDomDocument document;
    QDomElement element = document.createElement("input");
    element.setAttribute("identifier", "known");
    Input known(ValueType::Int);
    known.bind({6, ValueType::Int, nullptr});
    known.describe(0, element);

    const auto presets =
        readInternalPresets(index, QDir("/base"), [&](quint32 uid) { return uid == 6 ? &known : nullptr; });
    ASSERT_EQ(presets.size(), 2);
    EXPECT_EQ(presets[0].pkgurl, "g");
    EXPECT_EQ(presets[1].pkgurl, "h");
    const QVector<PresetInput>& inputs = presets[0].inputs;
    ASSERT_EQ(inputs.size(), 7);
    EXPECT_EQ(inputs[0].value.floatAt(0), 0.5f);
    EXPECT_EQ(inputs[0].value.floatAt(1), 0.0f);
    EXPECT_EQ(inputs[1].value.intAt(0), -5);
    EXPECT_EQ(inputs[1].value.intAt(1), -1);
    EXPECT_EQ(inputs[2].text, "a,b");
    EXPECT_EQ(inputs[3].text, "/base/x/y.png");
    EXPECT_EQ(inputs[4].identifier, "known");
    EXPECT_EQ(inputs[4].value.intAt(0), 7);
    EXPECT_EQ(inputs[5].type, 0u);
    EXPECT_EQ(presets[0].find(known), &inputs[4]);
    EXPECT_TRUE(presets[0].names(known));
    Input other(ValueType::Float); // the same name under another type
    other.describe(0, element);
    EXPECT_EQ(presets[0].find(other), &inputs[4]);
    EXPECT_EQ(presets[0].valueFor(other), nullptr);
    Input nameless(ValueType::Float);
    nameless.bind({9, ValueType::Float, nullptr});
    EXPECT_EQ(presets[0].valueFor(nameless), &inputs[5]) << "by uid";
    EXPECT_FALSE(presets[0].names(nameless)) << "a number says nothing about another package";
}

TEST(PresetFile, writesLineByLineAndReadsBack)
{
    const QTemporaryDir folder;
    PresetDescription preset;
    preset.pkgurl = "pkg://g";
    preset.label = "A \"b\" <&>";
    preset.inputs = {entry("f", 1, ValueType::Float2, InputValue::fromFloats(0.1f, -1e-7f)),
                     entry("i", 4000000000u, ValueType::Int3, InputValue::fromInts(-1, 2, 3)),
                     entry("t", 3, ValueType::Text, {}, "a\nb"),
                     entry("p", 4, ValueType::Image, {}, folder.filePath("in/x.png"))};
    preset.exportOptions = ExportSettings();
    preset.exportOptions->timeEnd = 1234567;
    preset.exportOptions->dir = "/out";
    preset.exportOptions->metadataOptions = 0x020101;
    preset.exportOptions->disabled = {7, 5};
    const QString path = folder.filePath("p.vlrprs");
    ASSERT_EQ(writePresetFile(path, {preset, PresetDescription()}), "");

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(), R"(<?xml version="1.0" encoding="utf-8"?>
<vlrpresets formatversion="1.1" count="2">
 <vlrpreset pkgurl="pkg://g" label="A &quot;b&quot; &lt;&amp;&gt;">
  <presetinput uid="1" identifier="f" type="1" value="0.1,-1e-07"/>
  <presetinput uid="4000000000" identifier="i" type="9" value="-1,2,3"/>
  <presetinput uid="3" identifier="t" type="6" value="a&#10;b"/>
  <presetinput uid="4" identifier="p" type="5" filepath="in/x.png"/>
  <export timeunit="frame" timeend="1.23457e+06" timestart="0" fps="30" dir="/out" format="tga" pattern="" metaopt="131329" quality="75" disabled="5,7"/>
 </vlrpreset>
 <vlrpreset pkgurl="" label=""/>
</vlrpresets>
)");

    QString reason;
    const auto read = readPresetFile(path, noInput, reason);
    ASSERT_TRUE(read) << reason.toStdString();
    ASSERT_EQ(read->size(), 2);
    const PresetDescription& first = read->at(0);
    EXPECT_EQ(first.fileName, path);
    EXPECT_EQ(first.label, preset.label);
    ASSERT_EQ(first.inputs.size(), 4);
    EXPECT_EQ(first.inputs[1].value.intAt(0), -1);
    EXPECT_EQ(first.inputs[1].uid, 4000000000u);
    EXPECT_EQ(first.inputs[2].text, "a\nb");
    EXPECT_EQ(first.inputs[3].text, folder.filePath("in/x.png"));
    ASSERT_TRUE(first.exportOptions);
    EXPECT_EQ(first.exportOptions->disabled, (std::set<quint32>{5, 7}));
    EXPECT_EQ(first.exportOptions->timeEnd, 1234570.0);
    EXPECT_FALSE(read->at(1).exportOptions);
}

TEST(PresetFile, keepsWhatNoFileCanHoldFromBreakingIt)
{
    PresetDescription preset;
    preset.label = QStringLiteral("cut ") + QChar(0xD83D);
    preset.inputs = {entry("t", 3, ValueType::Text, {}, QStringLiteral("a\x01z") + QChar(0xDE00) + "b")};
    QDomDocument document;
    ASSERT_TRUE(document.setContent(presetDocument({preset}, QDir("/"))));
    const auto read = readPresets(document.documentElement(), QDir("/"), noInput);
    ASSERT_EQ(read.size(), 1);
    EXPECT_TRUE(read[0].label.startsWith("cut "));
    ASSERT_EQ(read[0].inputs.size(), 1);
    EXPECT_EQ(read[0].inputs[0].identifier, "t");
    EXPECT_TRUE(read[0].inputs[0].text.startsWith("az") && read[0].inputs[0].text.endsWith('b'));
}

TEST(PresetFile, readsOtherEncodings)
{
    const QTemporaryDir folder;
    for (const char* encoding : {"UTF-16", "ISO-8859-1", "UTF-8"}) {
        const QString text =
            QStringLiteral("<?xml version='1.0' encoding='%1'?><vlrpresets><vlrpreset label='Grün'>"
                           "</vlrpreset></vlrpresets>")
                .arg(encoding);
        QFile file(folder.filePath(encoding));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QTextCodec::codecForName(encoding)->fromUnicode(text));
        file.close();
        QString reason;
        const auto read = readPresetFile(file.fileName(), noInput, reason);
        ASSERT_TRUE(read) << encoding << ' ' << reason.toStdString();
        EXPECT_EQ(read->value(0).label, QStringLiteral("Grün")) << encoding;
    }
}

TEST(MayaPreset, lineByLine)
{
    const QByteArray text =
        mayaPreset({entry("$outputsize", 1, ValueType::Int2, InputValue::fromInts(9, 9)),
                    entry("$randomseed", 2, ValueType::Int, InputValue::fromInts(-3)),
                    entry("roughness", 3, ValueType::Float, InputValue::fromFloats(0.12345678f)),
                    entry("tint", 4, ValueType::Float4, InputValue::fromFloats(1, 2, 3, 4)),
                    entry("grid", 5, ValueType::Int2, InputValue::fromInts(7, -8)),
                    entry("photo", 6, ValueType::Image, {}, "/p.png"),
                    entry("words", 7, ValueType::Text, {}, "a \"b\"\nc"),
                    entry("uv", 8, ValueType::Float2, InputValue::fromFloats(1e-7f, 0)),
                    entry("odd", 9, ValueType::Reserved, {})});
    EXPECT_EQ(text.toStdString(), "//Generated by Vellor Player\n"
                                  "startAttrPreset(\"vellor\"); \n"
                                  "blendAttr \"dyn_randomseed\" -3;\n"
                                  "blendAttr \"dyn_roughness\" 0.123457;\n"
                                  "blendAttr \"dyn_tint_w\" 4;\n"
                                  "blendAttr \"dyn_tint_z\" 3;\n"
                                  "blendAttr \"dyn_tint_y\" 2;\n"
                                  "blendAttr \"dyn_tint_x\" 1;\n"
                                  "blendAttr \"dyn_grid_y\" -8;\n"
                                  "blendAttr \"dyn_grid_x\" 7;\n"
                                  "blendAttr \"dyn_words\" a \"b\"\nc;\n"
                                  "blendAttr \"dyn_uv_y\" 0;\n"
                                  "blendAttr \"dyn_uv_x\" 1e-07;\n"
                                  "endAttrPreset();\n");
    EXPECT_EQ(mayaPreset({}).count('\n'), 3);
    EXPECT_NE(writeMayaPreset(QTemporaryDir().filePath("none/p.mel"), {}), "");
}

TEST(PresetFile, saysWhyAFileIsNone)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("p.vlrprs");
    QString reason;
    EXPECT_FALSE(readPresetFile(path, noInput, reason));
    EXPECT_FALSE(reason.isEmpty());
    for (const char* text : {"", "<vlrpresets>", "<other/>", "\xff\xfe<"}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        reason.clear();
        EXPECT_FALSE(readPresetFile(path, noInput, reason)) << text;
        EXPECT_FALSE(reason.isEmpty()) << text;
    }
    EXPECT_NE(writePresetFile(folder.filePath("none/p.vlrprs"), {}), "");
}

TEST(PresetFile, aDiskThatFillsUpLeavesTheFileOfBefore)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("p.vlrprs");
    PresetDescription preset;
    preset.label = "Kept";
    ASSERT_EQ(writePresetFile(path, {preset}), "");
    preset.label = QString(5000, 'x');
    {
        const Tests::FullDisk disk(4096);
        EXPECT_EQ(writePresetFile(path, {preset}), "File too large");
    }
    QString reason;
    const auto read = readPresetFile(path, noInput, reason);
    ASSERT_TRUE(read && read->size() == 1) << reason.toStdString();
    EXPECT_EQ(read->first().label, "Kept");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("p.vlrprs"));
}

} // namespace
