#include "applications/player/description/packagemodel.h"
#include "applications/player/description/descriptionfile.h"

#include <gtest/gtest.h>

using namespace Zph::Applications::Player;

namespace {

VellorOutputDesc output(quint32 uid, quint32 type, quint32 size = 0, quint8 format = 0)
{
    VellorOutputDesc record{};
    record.uid = uid;
    record.type = type;
    record.width = record.height = size;
    record.pixelFormat = format;
    return record;
}

QDomDocument sample()
{
    QDomDocument document;
    EXPECT_TRUE(parseDescription(R"(<p>
        <outputs><output uid='10' index='0'/></outputs><inputs><input index='0' alteroutputs='0'/></inputs>
        <graphs><graph pkgurl='pkg://a' label='Bricks' description='Old ones'>
            <inputs><input uid='1' identifier='scale'/></inputs>
            <outputs>
                <output uid='10' identifier='color' usertag='t'><outputgui label='Base %1 Color' description='D'/>
                    <channels><channel components='rgb' names='basecolor'/>
                              <channel components='all' names='opacity'/></channels></output>
                <output uid='11' identifier='dry' usage='Mask'><outputgui typegui='boolean' visibleif='1'/></output>
                <output uid='50' identifier='absent'/>
            </outputs></graph>
            <graph pkgurl='pkg://b' label='Empty'/></graphs></p>)",
                                 document));
    return document;
}

TEST(PackageModel, joinsEngineAndDescription)
{
    const float scale = 2.5f;
    const PackageModel model({{1, 0, &scale}, {77, 4, nullptr}},
                             {output(10, 5, 512), output(11, 4), output(99, 5, 0, 28)}, sample());
    ASSERT_EQ(model.inputs().size(), 2);
    EXPECT_EQ(model.inputs()[0].defaultValue.floatAt(0), 2.5f);
    EXPECT_EQ(model.inputs()[0].graphKey, "pkg://a");
    EXPECT_TRUE(model.inputs()[1].element.isNull());

    ASSERT_EQ(model.graphs().size(), 3);
    EXPECT_EQ(model.graphs()[0].label, "Bricks");
    EXPECT_EQ(model.graphs()[1].label, "Empty");
    EXPECT_EQ(model.graphs()[2].key, "") << "for the output that nothing describes";

    ASSERT_EQ(model.outputs().size(), 3) << "an output that the engine lacks isn't there";
    const PackageOutput& color = model.outputs()[0];
    EXPECT_EQ(color.listText.toStdString(),
              "Bricks^512x512 [RGBA-8bits] - index:0 uid:10 - tag:'t' - usage:rgb:basecolor|opacity"
              " - 'Base %1 Color' (id:color) - description:'D'");
    EXPECT_EQ(color.usages, (QStringList{"basecolor", "opacity"}));
    EXPECT_EQ(color.label, "Base %1 Color");
    const PackageOutput& dry = model.outputs()[1];
    EXPECT_EQ(dry.listText.toStdString(), "Bricks^<Numeric> [Int] - index:1 uid:11 - usage:|Mask - dry");
    EXPECT_TRUE(dry.boolean);
    EXPECT_EQ(dry.label, "dry");
    EXPECT_EQ(dry.visibleIf, "1");
    const PackageOutput& unknown = model.outputs()[2];
    EXPECT_EQ(unknown.listText.toStdString(), "^<Dynamic size> [Grayscale-16bits] - index:2 uid:99");
    EXPECT_EQ(unknown.label, "index:2 uid:99");
    EXPECT_EQ(model.outputsOfGraph("pkg://a").size(), 2);
    ASSERT_EQ(model.alterationLinks().size(), 1u);
    EXPECT_EQ(model.alterationLinks()[0], std::set<quint32>{10});
}

TEST(PackageModel, remoteNamesAndNoDescription)
{
    std::vector<VellorOutputDesc> outputs;
    for (quint32 uid = 10; uid < 15; ++uid)
        outputs.push_back(output(uid, 5));
    const PackageModel remote({}, outputs, sample(), PackageModel::Origin::Remote);
    EXPECT_EQ(remote.outputs()[0].label, "0: Local image");
    EXPECT_EQ(remote.outputs()[3].listText, "3: Absolute difference (x64)");
    EXPECT_EQ(remote.outputs()[4].label, "index:4 uid:14");
    const PackageModel bare({}, outputs, QDomDocument());
    ASSERT_EQ(bare.graphs().size(), 1);
    EXPECT_EQ(bare.outputsOfGraph("").size(), 5);
    EXPECT_TRUE(bare.alterationLinks().empty());
    EXPECT_TRUE(PackageModel().graphs().isEmpty());
}

} // namespace
