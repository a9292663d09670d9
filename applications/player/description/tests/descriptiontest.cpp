#include "applications/player/description/alterationlinks.h"
#include "applications/player/description/descriptionfile.h"
#include "applications/player/description/descriptionindex.h"
#include "applications/player/description/input.h"
#include "applications/player/description/inputorder.h"
#include "applications/player/description/widgetcode.h"

#include <gtest/gtest.h>

using namespace Zph::Applications::Player;

namespace {

QDomDocument parse(const QByteArray& xml)
{
    QDomDocument document;
    QString error;
    EXPECT_TRUE(parseDescription(xml, document, &error)) << error.toStdString();
    return document;
}

TEST(DescriptionIndex, formatVersion)
{
    EXPECT_EQ(DescriptionIndex(parse("<p formatversion='2.1.7'/>")).formatVersion(), 2u);
    EXPECT_EQ(DescriptionIndex(parse("<p/>")).formatVersion(), 1u);
    EXPECT_EQ(DescriptionIndex(parse("<p formatversion='x'/>")).formatVersion(), 0u);
    EXPECT_EQ(DescriptionIndex().formatVersion(), 1u);
}

TEST(DescriptionIndex, walksGlobalFirstThenGraphs)
{
    const DescriptionIndex index(parse(R"(<p>
        <graphs><graph pkgurl='a'><inputs><input uid='1'/><input/><input uid='x'/></inputs></graph>
                <other/><graph pkgurl='b'><guigroups><guigroup identifier='m/n'/></guigroups>
                <inputs><input uid='1' identifier='later'/></inputs></graph></graphs>
        <global><inputs><input uid='3'/></inputs></global></p>)"));
    ASSERT_EQ(index.graphs().size(), 3);
    EXPECT_EQ(index.graphs()[0].graphKey, "_");
    EXPECT_EQ(index.graphs()[1].graphKey, "a");
    EXPECT_EQ(index.graphs()[2].graphKey, "b");
    EXPECT_EQ(index.input(1).graphKey, "b") << "of two elements with one uid the later counts";
    EXPECT_EQ(index.input(3).graphKey, "_");
    EXPECT_TRUE(index.input(0).element.isNull()) << "a uid that is no number names nothing";
    EXPECT_FALSE(index.group("b?m/n").isNull());
    EXPECT_TRUE(index.group("a?m/n").isNull());
}

TEST(DescriptionIndex, rootWithoutGraphsIsOneGraph)
{
    const DescriptionIndex index(
        parse("<p pkgurl='u'><inputs><input uid='4'/></inputs><global><inputs><input uid='5'/></inputs>"
              "</global></p>"));
    ASSERT_EQ(index.graphs().size(), 1);
    EXPECT_EQ(index.graphs()[0].graphKey, "");
    EXPECT_FALSE(index.input(4).element.isNull());
    EXPECT_TRUE(index.input(5).element.isNull());
}

TEST(DescriptionFile, refusesWhatWouldHurt)
{
    QByteArray bomb = "<!DOCTYPE p [<!ENTITY a 'aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa'>";
    for (char c = 'b'; c < 'l'; ++c) {
        const QByteArray inner = QByteArray("&") + char(c - 1) + ";";
        bomb += QByteArray("<!ENTITY ") + c + " '" + inner.repeated(10) + "'>";
    }
    bomb += "]><p>&k;</p>";
    const QByteArray deep = QByteArray("<a>").repeated(300000) + QByteArray("</a>").repeated(300000);
    for (const QByteArray& xml : {QByteArray(), QByteArray("<a"), QByteArray("<a><b></a>"),
                                  QByteArray("\0\xff\xfe", 3), QByteArray(1000, '<'), deep, bomb}) {
        QDomDocument document = parse("<kept/>");
        QString error;
        EXPECT_FALSE(parseDescription(xml, document, &error)) << xml.left(40).constData();
        EXPECT_TRUE(error.startsWith("line ")) << error.toStdString();
        EXPECT_TRUE(document.isNull());
    }
}

TEST(WidgetCode, table)
{
    struct Row
    {
        const char* input;
        WidgetCode code;
    };
    const Row rows[] = {
        {"<input identifier='$time'/>", WidgetCode::Time},
        {"<input identifier='$randomseed'><inputgui widget='slider'/></input>", WidgetCode::RandomSeed},
        {"<input identifier='$normalformat'/>", WidgetCode::NormalFormat},
        {"<input identifier='$outputsize'/>", WidgetCode::OutputSize},
        {"<input identifier='$Time'/>", WidgetCode::None},
        {"<input identifier='$pixelsize'><inputgui widget='angle'/></input>", WidgetCode::Angle},
        {"<input><inputgui widget='slider'/></input>", WidgetCode::Slider},
        {"<input><inputgui widget='togglebutton'/></input>", WidgetCode::Toggle},
        {"<input><inputgui widget='checkbox'/></input>", WidgetCode::Toggle},
        {"<input><inputgui widget='color'/></input>", WidgetCode::Color},
        {"<input><inputgui widget='combobox'/></input>", WidgetCode::ComboBox},
        {"<input><inputgui widget='Slider'/></input>", WidgetCode::None},
        {"<input/>", WidgetCode::None},
    };
    for (const Row& row : rows)
        EXPECT_EQ(widgetCodeOfInput(parse(row.input).documentElement()), row.code) << row.input;
    EXPECT_EQ(widgetCodeOfInput(QDomElement()), WidgetCode::None);
}

TEST(InputOrder, sortKeys)
{
    const DescriptionIndex index(
        parse("<p><graphs><graph pkgurl='g'><guigroups>"
              "<guigroup identifier='m' order='12'/><guigroup identifier='n'/></guigroups>"
              "<inputs>\n"
              "<input uid='1' identifier='a'><inputgui order='3'/></input>\n"
              "<input uid='2' identifier='b'><inputgui order='10' group='m'/></input>\n"
              "<input uid='3' identifier='$time'><inputgui order='1'/></input>\n"
              "<input uid='4' identifier='c'><inputgui group='n'/></input>\n"
              "<input uid='5' identifier='d'><inputgui order='123456789'/></input>"
              "</inputs></graph></graphs></p>"));
    const auto key = [&](quint32 uid) { return inputSortKey(index, index.input(uid), uid).toStdString(); };
    EXPECT_EQ(key(1), "g00000003");
    EXPECT_EQ(key(2), "g0000001200000010");
    EXPECT_EQ(key(3), "g$time");
    EXPECT_EQ(key(4), "g00000005") << "the line of the element; its group has no order";
    EXPECT_EQ(key(5), "g123456789");
    EXPECT_EQ(key(99), "99");
}

TEST(AlterationLinks, readsRootElements)
{
    const QDomDocument document = parse(R"(<p>
        <outputs><output uid='100' index='0'/><output uid='101' index='1'/><output uid='102'/></outputs>
        <inputs><input index='2' alteroutputs=',1,,0,7,x'/><input index='0' alteroutputs=''/>
                <input index='1'/><input alteroutputs='0'/><input index='4000000000' alteroutputs='0'/>
                <input index='-1' alteroutputs='0'/></inputs></p>)");
    const AlterationLinks links = readAlterationLinks(document, 10);
    ASSERT_EQ(links.size(), 3u);
    EXPECT_TRUE(links[0].empty());
    EXPECT_TRUE(links[1].empty());
    EXPECT_EQ(links[2], (std::set<quint32>{100, 101}));
    EXPECT_TRUE(readAlterationLinks(QDomDocument(), 10).empty());
    EXPECT_EQ(readAlterationLinks(document, 1).size(), 1u);
}

} // namespace
