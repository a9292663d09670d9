// What is said about wrong authoring files: every error of a file in one run, each where it is.

#include "platform/cooker/tests/cooktext.h"

namespace vellor::cooker {

namespace {

using Errors = std::vector<std::string>;

struct Row
{
    const char* name;
    std::string text;
    Errors errors;
};

TEST(Errors, AreAllToldInOneRun)
{
    const std::string text = R"(<package formatversion="1">
 <graph identifier="bricks" colour="red">
  <inputs>
   <input identifier="width" type="flaot"/>
   <input identifier="rows" type="int" default="many" visibleif="input.width &gt; wide"/>
   <input identifier="2nd" type="float" widget="combobox"/>
  </inputs>
  <nodes>
   <node id="a" type="nois"/>
   <node id="b" type="blend"><in name="source" from="c"/><in name="front" from="d"/></node>
   <node id="b" type="noise"><param name="scale" value="big"/><param name="octaves" expr="1.5"/></node>
   <node id="e" type="noise" size="0x0" channels="grey"/>
   <knot/>
  </nodes>
  <outputs>
   <output identifier="o" from="z" format="rgb9"/>
   <output identifier="p"/>
  </outputs>
  <presets><preset label="x"><set input="height" value="1"/></preset></presets>
 </graph>
</package>
)";
    const Errors errors = {
        "test.vlr:2:29: <graph> has no attribute 'colour'; expected 'identifier', 'label', 'description', "
        "'size' or "
        "'exposed'",
        "test.vlr:4:36: unknown type 'flaot'; expected 'float', 'float2', 'float3', 'float4', 'int', 'int2', "
        "'int3', "
        "'int4', 'image', 'text' or 'bool'",
        "test.vlr:5:49: 'many' does not fit; expected a whole number",
        "test.vlr:5:83: a condition is made of inputs, numbers, comparisons, || && ! and + - * /",
        "test.vlr:6:23: '2nd' is no name; a name is made of letters, digits and '_'",
        "test.vlr:6:5: a combobox needs at least one <item>",
        "test.vlr:6:49: the widget 'combobox' does not fit the type 'float'",
        "test.vlr:9:23: unknown node type 'nois'; expected 'bitmap', 'blend', 'colourconversion', 'curve', "
        "'gradientmap', "
        "'greyconversion', 'imageinput', 'noise', 'normal', 'pixelprogram', 'text' or 'uniform'",
        "test.vlr:13:5: <knot> may not stand in <nodes>; expected 'node', 'graphinstance' or 'value'",
        "test.vlr:17:5: an <output> needs exactly one of 'from' and 'value'",
        "test.vlr:19:42: there is no input 'height'",
    };
    const CookResult result = cookText(text);
    EXPECT_EQ(result.end, CookEnd::BadFile);
    std::string all;
    for (const std::string& error : result.errors)
        all += error + "\n";
    for (const std::string& error : errors)
        EXPECT_NE(all.find(error + "\n"), std::string::npos) << error << "\nis not in\n" << all;
    for (const char* beginning :
         {"test.vlr:10:54: there is no picture 'c'", "test.vlr:10:68: a blend has no operand 'front'",
          "test.vlr:10:5: 'b' needs a link to its operand 'background'",
          "test.vlr:11:14: the id 'b' is taken", "test.vlr:11:57: 'big' does not fit; expected a number",
          "test.vlr:11:91: expected a value of type int, found a float; int() makes whole numbers",
          "test.vlr:12:36: '0x0' is no size", "test.vlr:12:51: a noise has no choice of channels",
          "test.vlr:16:33: there is no picture 'z'", "test.vlr:16:44: 'rgb9' does not fit; expected"})
        EXPECT_NE(all.find(beginning), std::string::npos) << beginning << "\nis not in\n" << all;
}

const Row kRows[] = {
    {"empty", "", {"test.vlr:1:1: XML: No document element found"}},
    {"not XML", "hello", {"test.vlr:1:5: XML: No document element found"}},
    {"cut off",
     "<package formatversion=\"1\">\n<graph",
     {"test.vlr:2:6: XML: Error parsing start element tag"}},
    {"no UTF-8", "<package>\n\xC3\x28</package>", {"test.vlr:2:1: the file is not UTF-8 text"}},
    {"another root", "<packages/>", {"test.vlr:1:2: the root element is <packages>; expected <package>"}},
    {"version",
     "<package formatversion=\"2\"><graph identifier=\"g\"/></package>",
     {"test.vlr:1:25: format version '2' is not supported; expected '1'"}},
    {"no graph",
     "<package formatversion=\"1\"/>",
     {"test.vlr:1:2: a package needs at least one <graph> or <function>"}},
    {"columns count characters",
     "<package formatversion=\"1\"><graph identifier=\"g\" label=\"\xC3\xBC\xE2\x82\xAC\" x=\"\"/></package>",
     {"test.vlr:1:61: <graph> has no attribute 'x'; expected 'identifier', 'label', 'description', 'size' or "
      "'exposed'"}},
    {"circle of links",
     package("<nodes><node id=\"a\" type=\"normal\"><in name=\"height\" from=\"b\"/></node>\n"
             "<node id=\"b\" type=\"normal\"><in name=\"height\" from=\"a\"/></node></nodes>"),
     {"test.vlr:2:52: links run in a circle: a <- b <- a"}},
    {"circle of values",
     package("\n<nodes><value id=\"x\" expr=\"value.y\"/><value id=\"y\" expr=\"value.x\"/></nodes>"),
     {"test.vlr:2:19: the value 'x' depends on itself"}},
    {"circle of graphs",
     "<package formatversion=\"1\"><graph identifier=\"a\"><nodes><graphinstance id=\"i\" "
     "graph=\"b\"/></nodes></graph>\n"
     "<graph identifier=\"b\"><nodes><graphinstance id=\"i\" graph=\"a\"/></nodes></graph></package>",
     {"test.vlr:1:86: the graph 'b' uses itself: b > a > b",
      "test.vlr:2:59: the graph 'a' uses itself: a > b > a"}},
    {"circle through an instance's number",
     "<package formatversion=\"1\"><graph identifier=\"a\" exposed=\"off\"><inputs><input identifier=\"x\" "
     "type=\"float\"/></inputs><outputs><output identifier=\"y\" value=\"input.x\"/></outputs></graph>\n"
     "<graph identifier=\"b\"><nodes><graphinstance id=\"i\" graph=\"a\">"
     "<param name=\"x\" expr=\"instance.i.y\"/></graphinstance></nodes></graph></package>",
     {"test.vlr:2:31: the instance 'i' depends on itself"}},
    {"functions",
     "<package formatversion=\"1\">\n<function id=\"sin\" arguments=\"x\" expr=\"x +\"/></package>",
     {"test.vlr:2:15: the function name 'sin' is taken",
      "test.vlr:2:43: expected a value, found the end of the expression"}},
    {"unknown include",
     package("\n<nodes><graphinstance id=\"i\" graph=\"lib:dirt\"/></nodes>"),
     {"test.vlr:2:37: there is no include 'lib'"}},
    {"reserved input",
     package("\n<inputs><input identifier=\"$tempo\"/></inputs>"),
     {"test.vlr:2:28: unknown reserved input; expected '$time', '$randomseed', '$normalformat', "
      "'$outputsize' or '$pixelsize'"}},
    {"an input twice",
     package(
         "\n<inputs><input identifier=\"a\" type=\"int\"/><input identifier=\"a\" type=\"int\"/></inputs>"),
     {"test.vlr:2:62: the input 'a' is there twice"}},
    {"a condition beyond the player",
     package("\n<inputs><input identifier=\"a\" type=\"int\" visibleif=\"sin(input.a) > 0\"/></inputs>"),
     {"test.vlr:2:53: a condition is made of inputs, numbers, comparisons, || && ! and + - * /"}},
    {"an unconnected operand",
     package("\n<nodes><node id=\"p\" type=\"pixelprogram\"><param name=\"program\" expr=\"sample(first, "
             "pos)\"/></node></nodes>"),
     {"test.vlr:2:76: nothing is connected to the operand 'first'"}},
    {"two ways",
     package("\n<nodes><node id=\"p\" type=\"noise\"><param name=\"scale\" value=\"1\" "
             "expr=\"2\"/></node></nodes>"),
     {"test.vlr:2:35: a <param> needs exactly one of 'value', 'expr', 'input', 'file', <key> or <stop>"}},
};

TEST(Errors, NameThePlaceAndWhatWasExpected)
{
    for (const Row& row : kRows) {
        const CookResult result = cookText(row.text);
        EXPECT_EQ(result.errors, row.errors) << row.name;
        EXPECT_NE(result.end, CookEnd::Done) << row.name;
    }
}

TEST(Errors, NameAGraphThatIsGivenTwice)
{
    const std::string text = package("");
    const auto errors = [](std::vector<PackageFile> files) {
        return cook(std::move(files), fakeTable(), {}).errors;
    };
    EXPECT_EQ(errors({{"a.vlr", text}, {"b.vlr", text}}),
              Errors{"b.vlr:1:47: the graph 'g' is in two packages"});
    EXPECT_EQ(errors({{"a.vlr", text}, {"a.vlr", text}}),
              Errors{"a.vlr:1:47: the graph 'g' is in two packages"});
}

TEST(Errors, KeepDeepAndLargeFilesInBounds)
{
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "<a>";
    EXPECT_EQ(cookText(deep).end, CookEnd::BadFile);

    // Each graph uses the next one twice: 2^40 noises.
    std::string doubling = "<package formatversion=\"1\">";
    for (int i = 0; i < 25; ++i) {
        const std::string next = std::to_string(i + 1);
        doubling += "<graph identifier=\"g" + std::to_string(i) +
                    "\"><nodes><graphinstance id=\"a\" graph=\"g" + next +
                    "\"/><graphinstance id=\"b\" graph=\"g" + next + "\"/></nodes></graph>";
    }
    doubling += "<graph identifier=\"g25\"><nodes><node id=\"n\" type=\"noise\"/></nodes></graph></package>";
    const CookResult result = cookText(doubling);
    EXPECT_EQ(result.end, CookEnd::BadGraph);
    EXPECT_NE(result.errors.at(0).find("too many nodes"), std::string::npos);
}

} // namespace

} // namespace vellor::cooker
