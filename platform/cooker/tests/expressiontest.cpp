// Expressions: what they come to, by hand calculation, and what is said about wrong ones.

#include "platform/cooker/tests/cooktext.h"
#include "platform/nodes/valueevaluator.h"
#include "platform/program/types.h"

#include <cmath>

namespace vellor::cooker {

namespace {

using program::bitsFloat;
using program::ValueType;

const char* const kInputs = R"(<inputs>
<input identifier="a" type="float" default="0.25"/>
<input identifier="n" type="int" default="7"/>
<input identifier="on" type="bool" default="on"/>
<input identifier="v" type="float3" default="1,2,3"/>
<input identifier="$time" type="float" default="1.5"/>
</inputs><nodes>
<value id="twice" expr="input.a * 2"/>
<value id="chain" expr="value.twice + value.twice"/>
<graphinstance id="i" graph="inner"><param name="x" expr="input.a * 2"/></graphinstance></nodes>)";

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char c : text)
        result += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '"' ? "&quot;" : std::string(1, c);
    return result;
}

/// Two functions and an inner graph stand behind the first, so that no line of it moves.
std::string withExpression(const std::string& expression)
{
    return "<package formatversion=\"1\"><graph identifier=\"g\">" + std::string(kInputs) +
           "<outputs>\n<output identifier=\"o\" value=\"" + escaped(expression) + "\"/></outputs></graph>" +
           R"xml(
<graph identifier="inner" exposed="off"><inputs><input identifier="x" type="float" default="2"/></inputs>
<outputs><output identifier="square" value="input.x * input.x"/><output identifier="whole" value="3"/></outputs></graph>
<function id="wave" arguments="x, height">let t = fract(x); height * (1 - abs(2 * t - 1))</function>
<function id="both" arguments="x" expr="wave(x, 1) + wave(x, 2)"/>
<function id="forever" arguments="x" expr="1 + forever(x)"/>
</package>)xml";
}

struct Result
{
    ValueType type = ValueType::Float;
    std::vector<double> numbers;
};

Result evaluate(const std::string& expression)
{
    const program::Program program = cookedProgram(withExpression(expression));
    if (program.outputs.size() != 1)
        return {};
    std::vector<std::uint32_t> inputs;
    for (const program::Input& input : program.inputs)
        inputs.insert(inputs.end(), input.defaultValue.begin(), input.defaultValue.end());
    program::Words words{};
    nodes::evaluateValue(program.values[program.outputs[0].value], inputs.data(), words);
    Result result{program.outputs[0].type, {}};
    for (int i = 0; i < program::componentCount(result.type); ++i)
        result.numbers.push_back(program::isFloat(result.type) ? bitsFloat(words[i])
                                                               : static_cast<std::int32_t>(words[i]));
    return result;
}

struct Row
{
    const char* expression;
    ValueType type;
    std::vector<double> expected;
};

const Row kRows[] = {
    {"1 + 2 * 3", ValueType::Int, {7}},
    {"(1 + 2) * 3", ValueType::Int, {9}},
    {"8 - 4 - 2", ValueType::Int, {2}},
    {"1 / 2", ValueType::Float, {0.5}},
    {"div(7, 2)", ValueType::Int, {3}},
    {"-7 % 4", ValueType::Int, {-3}},
    {"mod(-7.0, 4.0)", ValueType::Float, {1}},
    {"0x10 + .5e1", ValueType::Float, {21}},
    {"input.a * input.n", ValueType::Float, {1.75}},
    {"value.chain", ValueType::Float, {1}},
    {"$time + input[\"$time\"]", ValueType::Float, {3}},
    {"input.v.zyx", ValueType::Float3, {3, 2, 1}},
    {"input.v.gr * 10", ValueType::Float2, {20, 10}},
    {"1 - input.v", ValueType::Float3, {0, -1, -2}},
    {"float4(input.v, 0.5)", ValueType::Float4, {1, 2, 3, 0.5}},
    {"float2(3)", ValueType::Float2, {3, 3}},
    {"int3(1.9, -1.9, input.n)", ValueType::Int3, {1, -1, 7}},
    {"input.a < 0.5 && !(input.n == 8)", ValueType::Int, {1}},
    {"input.a > 0.5 or not input.on", ValueType::Int, {0}},
    {"input.v == float3(1, 2, 3)", ValueType::Int, {1}},
    {"input.v != float3(1, 2, 4)", ValueType::Int, {1}},
    {"input.on ? input.a : 2", ValueType::Float, {0.25}},
    {"0 ? 1 : 0 ? 2 : 3", ValueType::Int, {3}},
    {"let s = input.a * 4; let t = s + s; t * t", ValueType::Float, {4}},
    {"clamp(input.v, 1.5, 2.5)", ValueType::Float3, {1.5, 2, 2.5}},
    {"lerp(2, 4, input.a)", ValueType::Float, {2.5}},
    {"smoothstep(0, 1, input.a)", ValueType::Float, {0.15625}},
    {"saturate(float3(-1, 0.5, 2))", ValueType::Float3, {0, 0.5, 1}},
    {"sign(float2(-3, 0))", ValueType::Float2, {-1, 0}},
    {"dot(input.v, input.v)", ValueType::Float, {14}},
    {"length(float2(3, 4))", ValueType::Float, {5}},
    {"distance(input.v, float3(1, 2, 5))", ValueType::Float, {2}},
    {"normalize(float2(0, 4))", ValueType::Float2, {0, 1}},
    {"cross(float3(1, 0, 0), float3(0, 1, 0))", ValueType::Float3, {0, 0, 1}},
    {"max(3, 4) + min(3, 4.5)", ValueType::Float, {7}},
    {"floor(-0.5) + ceil(0.25) + abs(-2)", ValueType::Float, {2}},
    {"input.n / 0", ValueType::Float, {0}},
    {"float(input.n > 3)", ValueType::Float, {1}},
    {"both(input.a)", ValueType::Float, {1.5}},
    {"wave(input.v * 0.25, 4)", ValueType::Float3, {2, 4, 2}},
    {"instance.i.square + instance.i.whole", ValueType::Float, {3.25}},
};

TEST(Expressions, ComeToWhatTheyShould)
{
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.expression);
        const Result result = evaluate(row.expression);
        EXPECT_EQ(result.type, row.type);
        EXPECT_EQ(result.numbers, row.expected);
    }
}

TEST(Expressions, FollowTheMathematicalFunctions)
{
    const std::pair<const char*, double> rows[] = {{"sin(pi / 6)", 0.5},
                                                   {"cos(tau)", 1.0},
                                                   {"tan(pi / 4)", 1.0},
                                                   {"asin(1)", std::asin(1.0)},
                                                   {"acos(0)", std::acos(0.0)},
                                                   {"atan(1)", std::atan(1.0)},
                                                   {"atan2(1, -1)", std::atan2(1.0, -1.0)},
                                                   {"pow(2, 0.5)", std::sqrt(2.0)},
                                                   {"exp(1)", std::exp(1.0)},
                                                   {"log(10)", std::log(10.0)},
                                                   {"log2(8)", 3.0},
                                                   {"exp2(-1)", 0.5},
                                                   {"sqrt(2)", std::sqrt(2.0)},
                                                   {"fract(-0.25)", 0.75},
                                                   {"round(2.6)", 3.0}};
    for (const auto& [expression, expected] : rows) {
        const Result result = evaluate(expression);
        ASSERT_EQ(result.numbers.size(), 1u) << expression;
        EXPECT_NEAR(result.numbers[0], expected, 2e-6) << expression;
    }
}

TEST(Expressions, AreToldWhereTheyAreWrong)
{
    // The expression begins in column 31 of line 11.
    const std::pair<const char*, const char*> rows[] = {
        {"1 +", "11:34: expected a value, found the end of the expression"},
        {"1 2", "11:33: expected an operator or the end, found '2'"},
        {"(1", "11:33: expected ')', found the end of the expression"},
        {"input.b", "11:37: no input 'b'; there are '$time', 'a', 'n', 'on' or 'v'"},
        {"value.x", "11:37: no value 'x'; there are 'chain' or 'twice'"},
        {"a + 1", "11:31: unknown name 'a'; inputs are written input.a, values value.a"},
        {"input.v.w", "11:39: no component 'w' in a value of type float3"},
        {"1 < 2 && input.v", "11:57: expected a condition, found a float3"},
        {"input.v + float2(1)", "11:39: a float3 and a float2 don't go together"},
        {"sin(1, 2)", "11:31: sin() takes 1 argument, found 2"},
        {"float3(1, 2)", "11:31: float3() needs 3 components, found 2"},
        {"rand(0.5, 1)", "11:36: rand() takes whole numbers, found a float"},
        {"sample(0, 1)", "11:31: sample() works in pixel programs only"},
        {"pos", "11:31: unknown name 'pos'; inputs are written input.pos, values value.pos"},
        {"1 @ 2", "11:33: this character has no meaning here"},
        {"'abc", "11:31: this string has no end"},
        {"1e99", "11:31: '1e99' is no number"},
        {"wave(1)", "11:31: wave() takes 2 arguments, found 1"},
        {"forever(1)", "16:48: the function 'forever' calls itself"},
        {"instance.j.square", "11:39: no instance 'j'; there are 'i'"},
        {"instance.i.root", "11:39: the instance 'i' has no number 'root'; there are 'square' or 'whole'"}};
    for (const auto& [expression, error] : rows) {
        const CookResult result = cookText(withExpression(expression));
        ASSERT_EQ(result.errors.size(), 1u) << expression;
        EXPECT_EQ(result.errors[0], std::string("test.vlr:") + error);
        EXPECT_EQ(result.end, CookEnd::BadGraph);
    }
}

TEST(Expressions, OfAnySizeComeToAnEnd)
{
    const std::string many(100000, '(');
    EXPECT_EQ(cookText(withExpression(many)).errors.size(), 1u);
    EXPECT_EQ(cookText(withExpression(std::string(100000, '-') + "1")).errors.size(), 1u);
    std::string sum = "1";
    for (int i = 0; i < 20000; ++i)
        sum += "+input.a";
    EXPECT_EQ(cookText(withExpression(sum)).errors.size(), 1u);

    std::string chain = "<nodes>";
    for (int i = 0; i < 5000; ++i)
        chain += "<value id=\"v" + std::to_string(i) + "\" expr=\"value.v" + std::to_string(i + 1) + "+1\"/>";
    chain += "<value id=\"v5000\" expr=\"1\"/></nodes><outputs><output identifier=\"o\" "
             "value=\"value.v0\"/></outputs>";
    EXPECT_EQ(cookText(package(chain)).end, CookEnd::BadGraph);
}

TEST(Expressions, MaySampleThePicturesOfAPixelProgram)
{
    const program::Program program = cookedProgram(package(R"(<nodes>
        <node id="n" type="noise"/>
        <node id="p" type="pixelprogram" channels="colour">
            <in name="first" from="n"/>
            <in name="second" from="n"/>
            <param name="program">let c = sample(first, pos.yx); float4(c.rgb, sample("second", pos) * size.x)</param>
        </node></nodes><outputs><output identifier="o" from="p"/></outputs>)"));
    ASSERT_EQ(program.nodes.size(), 3u); // with the noise in colour, for the first operand
    const program::Node& node = program.nodes.back();
    EXPECT_EQ(program.nodes[node.operands[0]].channels, 4);
    EXPECT_EQ(node.operands[1], 0);
    ASSERT_EQ(node.parameters.size(), 1u);
    const program::ValueProgram& value = program.values[node.parameters[0].index];
    EXPECT_TRUE(value.perPixel);
    EXPECT_EQ(value.type, ValueType::Float4);
}

} // namespace

} // namespace vellor::cooker
