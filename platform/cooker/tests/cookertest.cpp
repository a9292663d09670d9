// What comes out of the cooker: programs, descriptions, graphs within graphs, includes.

#include "platform/cooker/tests/cooktext.h"
#include "platform/program/types.h"

#include <pugixml.hpp>

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace vellor::cooker {

namespace {

using program::floatBits;
using program::kNone;
using program::Node;
using program::Program;
using program::ValueType;

const Node* findNode(const Program& program, const std::string& name)
{
    for (const Node& node : program.nodes) {
        if (node.name == name)
            return &node;
    }
    ADD_FAILURE() << "no node " << name;
    return nullptr;
}

const program::Parameter* findParameter(const Node* node, const char* name)
{
    for (std::size_t i = 0; node && i < node->parameters.size(); ++i) {
        if (node->parameters[i].id == program::stableId(name))
            return &node->parameters[i];
    }
    return nullptr;
}

const char* const kWalls =
    R"(<package formatversion="1"><graph identifier="walls" label="Walls" description="Old ones">
<groups><group identifier="Pattern/Mortar" order="2" defaultstate="unfolded" description="Joints"/></groups>
<inputs>
<input identifier="$outputsize"/>
<input identifier="$randomseed" default="5"/>
<input identifier="scale" type="float" default="0.5" label="Scale" description="How large" group="Pattern/Mortar"
  widget="slider" min="0" max="2" clamp="on" order="3" visibleif="input.kind == 1" usertag="t"/>
<input identifier="kind" type="int" default="1" widget="combobox"><item value="0" text="A &amp; B"/><item value="1" text="C"/></input>
<input identifier="turn" type="float" widget="angle" min="-1" unit="degrees"/>
<input identifier="hard" type="bool" label0="Soft" label1="Hard"/>
<input identifier="offset" type="float2" default="1,2" widget="slider" label0="Across" label1="Down"/>
<input identifier="tint" type="float3" default="#ff0080" widget="color"/>
<input identifier="caption" type="text" default="h&#xE9;"/>
</inputs>
<nodes>
<node id="n" type="noise"><param name="scale" expr="input.scale"/></node>
<node id="c" type="uniform" channels="colour"><param name="colour" expr="input.tint"/></node>
<node id="t" type="text" size="256x128"><param name="text" input="caption"/></node>
</nodes>
<outputs>
<output identifier="height" from="n" usage="height" format="grey16" label="Height map"/>
<output identifier="base" from="c" usage="rgb:basecolor, a:opacity"/>
<output identifier="words" from="t"/>
<output identifier="isHard" value="input.hard" type="bool"/>
</outputs>
<presets><preset label="Fine" description="d"><set input="tint" value="0,0.5,1"/><set input="kind" value="0"/></preset></presets>
</graph></package>)";

TEST(Cooker, MakesInputsAndOutputs)
{
    const Program program = cookedProgram(kWalls);
    ASSERT_EQ(program.inputs.size(), 9u);
    EXPECT_EQ(program.inputs[0].type, ValueType::Int2);
    EXPECT_EQ(program.inputs[0].defaultValue, (program::Words{9, 9}));
    EXPECT_EQ(program.inputs[1].defaultValue[0], 5u);
    EXPECT_EQ(program.inputs[7].defaultValue, (program::Words{floatBits(1), 0, floatBits(128 / 255.0f)}));
    EXPECT_EQ(program.inputs[8].defaultText, U"h\u00e9");
    ASSERT_EQ(program.outputs.size(), 4u);
    EXPECT_EQ(program.outputs[0].pixelFormat, 0x1C); // grey, 16 bits
    EXPECT_EQ(program.outputs[1].pixelFormat, 0);    // RGBA, 8 bits
    EXPECT_EQ(program.outputs[0].fixedWidth, 0);
    EXPECT_EQ(program.outputs[2].fixedWidth, 256);
    EXPECT_EQ(program.outputs[2].fixedHeight, 128);
    EXPECT_EQ(program.outputs[3].type, ValueType::Int);
    // A float3 colour is opaque: the last component is the constant 1.
    const auto* colour = findParameter(findNode(program, "walls/c"), "colour");
    ASSERT_TRUE(colour);
    const program::ValueProgram& value = program.values[colour->index];
    EXPECT_EQ(value.constants, std::vector<std::uint32_t>{floatBits(1)});
}

TEST(Cooker, DescribesThem)
{
    const CookResult result = cookText(kWalls);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(result.description.c_str()));
    const pugi::xml_node root = document.document_element(), graph = root.child("graphs").child("graph");
    const auto text = [](pugi::xml_node node, const char* name) {
        return std::string(node.attribute(name).value());
    };
    EXPECT_EQ(text(graph, "pkgurl"), "pkg://walls");
    EXPECT_EQ(text(graph, "label"), "Walls");
    const auto input = [&](const char* name) {
        return graph.child("inputs").find_child_by_attribute("identifier", name);
    };
    const pugi::xml_node gui = input("scale").child("inputgui");
    EXPECT_EQ(text(input("scale"), "usertag"), "t");
    EXPECT_EQ(text(gui, "label") + "|" + text(gui, "group") + "|" + text(gui, "order") + "|" +
                  text(gui, "visibleif"),
              "Scale|Pattern/Mortar|3|input.kind == 1");
    EXPECT_EQ(text(gui.child("guislider"), "max") + text(gui.child("guislider"), "clamp"), "2on");
    const pugi::xml_node item = input("kind").child("inputgui").child("guicombobox").first_child();
    EXPECT_EQ(text(item, "value") + text(item, "text"), "0A & B");
    EXPECT_EQ(text(input("turn").child("inputgui").child("guiangle"), "unit"), "degrees");
    EXPECT_EQ(text(input("hard").child("inputgui"), "widget"), "togglebutton");
    EXPECT_EQ(text(input("hard").child("inputgui").child("guibutton"), "label1"), "Hard");
    EXPECT_EQ(text(input("offset").child("inputgui").child("guislider"), "label1"), "Down");
    EXPECT_EQ(text(input("caption"), "default"), "h\xC3\xA9");
    const pugi::xml_node group = graph.child("guigroups").child("guigroup");
    EXPECT_EQ(text(group, "identifier") + text(group, "order") + text(group, "defaultstate"),
              "Pattern/Mortar2unfolded");
    const pugi::xml_node base = graph.child("outputs").find_child_by_attribute("identifier", "base");
    EXPECT_EQ(text(base, "usage"), "basecolor,opacity");
    EXPECT_EQ(text(base.child("channels").last_child(), "components"), "a");
    const pugi::xml_node hard = graph.child("outputs").find_child_by_attribute("identifier", "isHard");
    EXPECT_EQ(text(hard.child("outputgui"), "typegui"), "boolean");
    const pugi::xml_node preset = graph.child("vlrpresets").child("vlrpreset");
    EXPECT_EQ(text(graph.child("vlrpresets"), "count") + text(preset, "label") + text(preset, "pkgurl"),
              "1Finepkg://walls");
    EXPECT_EQ(text(preset.first_child(), "value") + "|" + text(preset.first_child(), "type"), "0,0.5,1|2");
    EXPECT_EQ(text(preset.first_child(), "uid"), text(input("tint"), "uid"));
}

TEST(Cooker, TellsWhichOutputsAnInputAlters)
{
    const CookResult result = cookText(kWalls);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(result.description.c_str()));
    const pugi::xml_node root = document.document_element();
    std::vector<std::string> altered;
    for (const pugi::xml_node input : root.child("inputs").children("input"))
        altered.emplace_back(input.attribute("alteroutputs").value());
    // size, seed (read by the noise alone), scale, kind, turn, hard, offset, tint, caption; the text has its
    // own size
    EXPECT_EQ(altered, (std::vector<std::string>{"0,1", "0", "0", "", "", "3", "", "1", "2"}));
    int index = 0;
    for (const pugi::xml_node output : root.child("outputs").children("output"))
        EXPECT_EQ(output.attribute("index").as_int(-1), index++);
    EXPECT_EQ(index, 4);
}

TEST(Cooker, FixesWhatIsNotDynamic)
{
    CookOptions options;
    options.dynamicOutputSize = options.dynamicRandomSeed = false;
    options.sizeLimit = 7;
    const Program program = cookedProgram(kWalls, options);
    EXPECT_EQ(program.inputs.size(), 7u);
    EXPECT_EQ(program.inputs[0].identifier, "scale");
    EXPECT_EQ(program.outputs[0].fixedWidth, 128);
    EXPECT_EQ(program.outputs[2].fixedWidth, 128);
    const Node* noise = findNode(program, "walls/n");
    ASSERT_TRUE(noise);
    EXPECT_EQ(program.values[noise->seed].constants, std::vector<std::uint32_t>{5});
}

TEST(Cooker, ConvertsChannelsWhereTheyDontFit)
{
    const Program program = cookedProgram(package(R"(<nodes>
<node id="c" type="uniform" channels="colour"><param name="colour" value="0.25"/></node>
<node id="n" type="noise"/>
<node id="mix" type="blend"><in name="source" from="c"/><in name="background" from="n"/><in name="mask" from="c"/></node>
<node id="normal" type="normal"><in name="height" from="mix"/></node></nodes>
<outputs><output identifier="a" from="normal"/><output identifier="b" from="mix" format="grey8"/><output identifier="c" from="n" format="rgb8"/></outputs>)"));
    const Node* mix = findNode(program, "g/mix");
    ASSERT_TRUE(mix);
    EXPECT_EQ(mix->channels, 4);
    EXPECT_EQ(program.nodes[mix->operands[0]].name, "g/c");
    EXPECT_EQ(program.nodes[mix->operands[1]].name, "g/n (colour)");
    EXPECT_EQ(program.nodes[mix->operands[2]].name, "g/c (grey)");
    const Node* normal = findNode(program, "g/normal");
    ASSERT_TRUE(normal);
    // The grey form of the mix is made once, for the normal and for the output.
    EXPECT_EQ(program.outputs[1].node, normal->operands[0]);
    EXPECT_EQ(program.nodes[program.outputs[2].node].name, "g/n (colour)");
    EXPECT_EQ(findParameter(findNode(program, "g/c"), "colour")->words[3], floatBits(0.25f));
}

TEST(Cooker, PacksCurvesGradientsAndTexts)
{
    const Program program = cookedProgram(package(R"(<nodes>
<node id="n" type="noise"><param name="kind" value="gradient"/><param name="ridged" value="on"/></node>
<node id="c" type="curve"><in name="input" from="n"/><param name="curve"><key x="1" y="0"/><key x="0" y="1"/></param></node>
<node id="m" type="gradientmap"><in name="input" from="c"/><param name="gradient"><stop at="0" color="#ffffff"/></param></node>
<node id="t" type="text"><param name="text" value="hi"/></node></nodes>
<outputs><output identifier="a" from="m"/><output identifier="b" from="t"/></outputs>)"));
    const auto floats = [&](std::initializer_list<float> values) {
        program::ByteWriter out;
        for (const float value : values)
            out.put(floatBits(value));
        return out.bytes();
    };
    ASSERT_EQ(program.blobs.size(), 3u);
    const auto blobOf = [&](const char* node, const char* name) {
        const auto* parameter = findParameter(findNode(program, node), name);
        return parameter ? program.blobs[parameter->index] : std::vector<std::uint8_t>();
    };
    EXPECT_EQ(blobOf("g/c", "curve"), floats({0, 1, 1, 0}));
    EXPECT_EQ(blobOf("g/m", "gradient"), floats({0, 1, 1, 1, 1}));
    EXPECT_EQ(blobOf("g/t", "text"), (std::vector<std::uint8_t>{'h', 'i'}));
    EXPECT_EQ(findParameter(findNode(program, "g/n"), "kind")->words[0], 1u);
    EXPECT_EQ(findParameter(findNode(program, "g/n"), "ridged")->words[0], 1u);
}

const char* const kInner = R"(<graph identifier="inner" exposed="off" size="64x64">
<inputs><input identifier="amount" type="float" default="0.5"/><input identifier="base" type="image"/><input identifier="$randomseed"/></inputs>
<nodes><node id="n" type="noise" seed="1"><param name="scale" expr="input.amount * 2"/></node>
<node id="m" type="blend"><in name="source" from="n"/><in name="background" from="input.base"/></node></nodes>
<outputs><output identifier="mixed" from="m"/><output identifier="noise" from="n"/></outputs></graph>)";

TEST(Cooker, LaysOutGraphsWithinGraphs)
{
    const Program program =
        cookedProgram(std::string("<package formatversion=\"1\">") + kInner + R"(<graph identifier="g">
<inputs><input identifier="s" type="float" default="1"/><input identifier="$randomseed"/></inputs>
<nodes><node id="c" type="uniform" channels="colour"/>
<graphinstance id="one" graph="inner" seed="10" size="-1,0"><param name="amount" expr="input.s + 1"/><in name="base" from="c"/></graphinstance>
<graphinstance id="two" graph="inner" size="64x32"/></nodes>
<outputs><output identifier="a" from="one.mixed"/><output identifier="b" from="two.noise"/></outputs></graph></package>)");
    ASSERT_EQ(program.inputs.size(), 2u);
    ASSERT_EQ(program.outputs.size(), 2u);
    const Node* mixed = findNode(program, "g/one/m");
    ASSERT_TRUE(mixed);
    EXPECT_EQ(mixed->channels, 4); // the picture bound to the image input is in colour
    EXPECT_EQ(program.nodes[mixed->operands[1]].name, "g/c");
    const auto* scale = findParameter(findNode(program, "g/one/n"), "scale");
    ASSERT_TRUE(scale);
    EXPECT_EQ(scale->source, program::ParameterSource::Program); // (s + 1) * 2
    const auto* fixed = findParameter(findNode(program, "g/two/n"), "scale");
    ASSERT_TRUE(fixed);
    EXPECT_EQ(fixed->source, program::ParameterSource::Constant);
    EXPECT_EQ(fixed->words[0], floatBits(1));
    // Seeds add up: $randomseed + 10 + 1.
    const program::ValueProgram& seed = program.values[findNode(program, "g/one/n")->seed];
    EXPECT_EQ(seed.instructions.front().op, program::Op::Input);
    EXPECT_EQ(program.outputs[0].fixedWidth, 256); // half of 512
    EXPECT_EQ(program.outputs[0].fixedHeight, 512);
    EXPECT_EQ(program.outputs[1].fixedWidth, 64);
    EXPECT_EQ(program.outputs[1].fixedHeight, 32);
}

class Includes : public testing::Test
{
protected:
    void SetUp() override
    {
        m_folder = std::filesystem::temp_directory_path() / ("vellor-includes-" + std::to_string(getpid()));
        std::filesystem::create_directories(m_folder / "lib");
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    void write(const std::string& name, const std::string& text) { std::ofstream(m_folder / name) << text; }

    std::vector<std::string> cookIncluding(const std::string& url)
    {
        CookOptions options;
        options.aliases["vlr"] = (m_folder / "lib").string();
        const std::string text =
            "<package formatversion=\"1\"><include as=\"lib\" url=\"" + url +
            "\"/>\n<graph identifier=\"g\"><nodes><graphinstance id=\"i\" graph=\"lib:inner\"/></nodes>"
            "<outputs><output identifier=\"o\" from=\"i.noise\"/></outputs></graph></package>";
        auto errors = cook({{(m_folder / "main.vlr").string(), text}}, fakeTable(), options).errors;
        for (std::string& error : errors) {
            for (std::size_t at; (at = error.find(m_folder.string() + "/")) != std::string::npos;)
                error.erase(at, m_folder.string().size() + 1);
        }
        return errors;
    }

    std::filesystem::path m_folder;
};

TEST_F(Includes, AreFoundByAliasAndBesideTheFile)
{
    const std::string library = std::string("<package formatversion=\"1\">") + kInner + "</package>";
    write("lib/parts.vlr", library);
    write("beside.vlr", library);
    using Errors = std::vector<std::string>;
    EXPECT_EQ(cookIncluding("vlr://parts.vlr"), Errors{});
    EXPECT_EQ(cookIncluding("beside.vlr"), Errors{});
    EXPECT_EQ(cookIncluding("gone.vlr"), Errors{"main.vlr:1:51: the file 'gone.vlr' can't be read"});
    EXPECT_EQ(cookIncluding("abc://x.vlr"), Errors{"main.vlr:1:51: unknown alias 'abc'; there are 'vlr'"});
    EXPECT_EQ(cookIncluding("vlr://../beside.vlr"),
              Errors{"main.vlr:1:51: a URL must not leave the folder of its alias"});
    EXPECT_EQ(
        cookIncluding("main.vlr"),
        Errors{"main.vlr:1:51: packages include each other in a circle: 'main.vlr' is being read already"});
}

TEST_F(Includes, TellTheirErrorsByTheirOwnNames)
{
    write("lib/parts.vlr",
          "<package formatversion=\"1\">\n<graph identifier=\"inner\"><nodes><node id=\"n\" type=\"x\"/>"
          "</nodes><outputs><output identifier=\"noise\" from=\"n\"/></outputs></graph></package>");
    const auto errors = cookIncluding("vlr://parts.vlr");
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0].substr(0, 41), "lib/parts.vlr:2:53: unknown node type 'x'");
}

TEST(Cooker, FollowsLongChains)
{
    std::string nodes = "<nodes><node id=\"n0\" type=\"noise\"/>";
    for (int i = 1; i < 20000; ++i)
        nodes += "<node id=\"n" + std::to_string(i) + "\" type=\"curve\"><in name=\"input\" from=\"n" +
                 std::to_string(i - 1) + "\"/></node>";
    const Program program = cookedProgram(
        package(nodes + "</nodes><outputs><output identifier=\"o\" from=\"n19999\"/></outputs>"));
    EXPECT_EQ(program.nodes.size(), 20000u);
}

} // namespace

} // namespace vellor::cooker
