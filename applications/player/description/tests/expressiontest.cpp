#include "applications/player/description/expression.h"
#include "applications/player/description/input.h"
#include "applications/player/description/visibility.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Zph::Applications::Player;

namespace {

EvaluationContext sample()
{
    const QVariantHash size{{"x", 4}, {"y", 8}};
    return visibilityContext({{"on", true},
                              {"count", 3},
                              {"zero", 0},
                              {"half", 0.5f},
                              {"size", size},
                              {"a-b", 7},
                              {"$time", 2.0f},
                              {"word", QString("text")}});
}

TEST(Expression, values)
{
    struct Row
    {
        const char* text;
        float expected;
    };
    const Row rows[] = {
        {"1", 1},
        {".5", 0.5f},
        {"1e2", 100},
        {"true", 1},
        {"false", 0},
        {"1 + 2 * 3", 7},
        {"(1+2)*3", 9},
        {"8 - 4 - 2", 2},
        {"8 / 4 / 2", 1},
        {"-2*-3", 6},
        {"--2", 2},
        {"!0", 1},
        {"!!5", 1},
        {"!0.5", 0},
        {"1 < 2 < 3", 1},
        {"3 > 2 > 1", 0},
        {"2 <= 2", 1},
        {"2 >= 3", 0},
        {"1 == 1.0", 1},
        {"1 != 1", 0},
        {"2 > 1 == 1", 1},
        {"0 || 0 && 1", 0},
        {"1 || 0 && 0", 1},
        {"4 && 0.25", 1},
        {"0 && 1 || 2", 1},
        {"16777216 + 1", 16777216}, // 32-bit floats
        {"INF > 1", 1},
        {"nan == nan", 0},
        {"-Infinity < 0", 1},
        {"input.on", 1},
        {"input.count * 2", 6},
        {" input [ \"count\" ] ", 3},
        {"input.size.y / input.size.x", 2},
        {"input[\"size\"].x", 4},
        {"input.a-b", 7},
        {"input.$time", 2},
        {"!input.zero", 1},
        {"input.half == 0.5 && input.on", 1},
    };
    for (const Row& row : rows) {
        const Evaluation result = evaluate(sample(), row.text);
        EXPECT_FALSE(result.failed) << row.text << ": " << result.messages.join('|').toStdString();
        EXPECT_EQ(result.value.toFloat(), row.expected) << row.text;
    }
}

TEST(Expression, failures)
{
    struct Row
    {
        QString text;
        const char* message;
    };
    const Row rows[] = {
        {"", "Parsing Error at 0: "},
        {"1 +", "Parsing Error at 3: "},
        {"(1", "Parsing Error at 2: "},
        {"1 2", "Parsing Error at 2: 2"},
        {"a", "Parsing Error at 0: a"},
        {"1 & 1", "Parsing Error at 2: & 1"},
        {"input", "Parsing Error at 5: "},
        {"input.", "Parsing Error at 6: "},
        {"input[\"on\"", "Parsing Error at 10: "},
        {"input.none", "Key not found: 'none'"},
        {"input.on==1", "Key not found: 'on==1'"},
        {"input.count.y", "Key not found: 'y'"},
        {"input.size.z", "Key not found: 'z'"},
        {"input.size", "Can't convert to float: size"},
        {"input.word", "Can't convert to float: word"},
        {"1 || input.none", "Key not found: 'none'"},
        {QString(100000, '('), "Parsing Error at 200: "},
        {QString(100000, '!'), "Parsing Error at 200: "},
    };
    for (const Row& row : rows) {
        const Evaluation result = evaluate(sample(), row.text);
        EXPECT_TRUE(result.failed) << row.text.toStdString();
        ASSERT_FALSE(result.messages.isEmpty());
        EXPECT_TRUE(result.messages.first().startsWith(row.message)) << result.messages.first().toStdString();
        EXPECT_TRUE(isVisible(sample(), row.text)) << row.text.toStdString();
    }
    EXPECT_TRUE(evaluate({}, "input.on").messages.first() == "Key not found: 'input'");
}

TEST(Expression, innermostDictionaryWins)
{
    EvaluationContext context = sample();
    context += visibilityContext({{"count", 30}});
    EXPECT_EQ(evaluate(context, "input.count").value.toFloat(), 30.0f);
}

Input makeInput(quint32 type, const char* identifier)
{
    QDomDocument document;
    QDomElement element = document.createElement("input");
    element.setAttribute("identifier", identifier);
    Input input(type);
    input.describe(0, element);
    return input;
}

TEST(Visibility, contextOfInputs)
{
    Input toggle = makeInput(ValueType::Int, "toggle");
    toggle.setValue(5, 0, 0, 0);
    Input number = makeInput(ValueType::Int, "number");
    number.setValue(5, 0, 0, 0);
    Input color = makeInput(ValueType::Float3, "color");
    color.setValue(0.25f, 0.5f, 0.75f, 9.0f);
    QVariantHash inputs;
    enterInput(inputs, toggle, true);
    enterInput(inputs, number, false);
    enterInput(inputs, color, false);
    enterInput(inputs, makeInput(ValueType::Image, "image"), false);
    enterInput(inputs, makeInput(ValueType::Text, "text"), false);

    const EvaluationContext context = visibilityContext(inputs);
    EXPECT_EQ(evaluate(context, "input.toggle").value.toFloat(), 1.0f);
    EXPECT_EQ(evaluate(context, "input.number").value.toFloat(), 5.0f);
    EXPECT_EQ(evaluate(context, "input.color.z").value.toFloat(), 0.75f);
    EXPECT_TRUE(evaluate(context, "input.color.w").failed);
    EXPECT_EQ(evaluate(context, "input.image").messages, QStringList("Key not found: 'image'"));
    EXPECT_FALSE(isVisible(context, "input.number == 4"));
    EXPECT_TRUE(isVisible(context, ""));
    EXPECT_TRUE(isVisible(context, "input.image"));
}

} // namespace
