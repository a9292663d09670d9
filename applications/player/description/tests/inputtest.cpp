#include "applications/player/description/input.h"
#include "applications/player/description/inputsink.h"
#include "applications/player/description/outputformatname.h"

#include <QDomDocument>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace Zph::Applications::Player;

namespace {

struct Recorder : InputSink
{
    struct Call
    {
        int index;
        quint32 type;
        InputValue value;
    };
    bool pushInput(int index, quint32 type, const void* value) override
    {
        Call call{index, type, {}};
        std::memcpy(call.value.words.data(), value, sizeof call.value.words);
        calls.push_back(call);
        return true;
    }
    bool pushImage(int, std::shared_ptr<ImageSource>) override { return false; }
    std::vector<Call> calls;
};

TEST(Input, bindsOnlyTheComponentsOfItsType)
{
    const float two[] = {1.5f, -2.0f};
    Input input(ValueType::Float2);
    EXPECT_EQ(input.index(), -1);
    input.bind({17, ValueType::Float2, two});
    EXPECT_EQ(input.uid(), 17u);
    EXPECT_EQ(input.value().floatAt(1), -2.0f);
    EXPECT_EQ(input.value().words[2], 0u);
    EXPECT_TRUE(input.isDefault());
    EXPECT_FALSE(input.isDirty());
    EXPECT_TRUE(input.setValue(1.5f, -2.0f, 9.0f, 9.0f)) << "words beyond the type don't count";
    EXPECT_EQ(input.value().words[2], 0u) << "an equal value isn't stored";
    EXPECT_FALSE(input.setValue(1.5f, 2.0f, 9.0f, 9.0f));
    EXPECT_EQ(input.value().floatAt(2), 9.0f) << "all sixteen bytes are copied";
    EXPECT_FALSE(input.isDefault());
}

TEST(Input, survivesAnEngineWithoutDefaults)
{
    Input number(ValueType::Int4);
    number.bind({1, ValueType::Int4, nullptr});
    EXPECT_EQ(number.value().intAt(3), 0);
    Input text(ValueType::Text);
    const quint32 letters[] = {65, 0};
    text.bind({2, ValueType::Text, letters});
    EXPECT_EQ(text.value().words[0], 0u);
    EXPECT_TRUE(text.isDefault());
    EXPECT_TRUE(text.setValue(1, 2, 3, 4)) << "types without components always compare equal";
    Input unknown(4000000000u);
    unknown.bind({3, 4000000000u, letters});
    EXPECT_TRUE(unknown.isDefault());
}

TEST(Input, comparesBitsNotNumbers)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Input input(ValueType::Float);
    input.bind({1, ValueType::Float, &nan});
    EXPECT_TRUE(input.setValue(nan, 0.0f, 0.0f, 0.0f));
    EXPECT_TRUE(input.isDefault());
    EXPECT_FALSE(input.setValue(0.0f, 0.0f, 0.0f, 0.0f));
    EXPECT_FALSE(input.setValue(-0.0f, 0.0f, 0.0f, 0.0f));
}

TEST(Input, tellsTheEngineOnce)
{
    Input input(ValueType::Int);
    input.bind({1, ValueType::Int, nullptr});
    input.describe(5, QDomElement());
    Recorder engine;
    input.applyToEngine(engine);
    EXPECT_TRUE(engine.calls.empty());
    input.setValue(-3, 0, 0, 0);
    input.applyToEngine(engine);
    input.applyToEngine(engine);
    ASSERT_EQ(engine.calls.size(), 1u);
    EXPECT_EQ(engine.calls[0].index, 5);
    EXPECT_EQ(engine.calls[0].type, ValueType::Int);
    EXPECT_EQ(engine.calls[0].value.intAt(0), -3);
    EXPECT_FALSE(input.isDirty());
}

TEST(Input, packageUrl)
{
    struct Row
    {
        const char* xml;
        const char* expected;
    };
    const Row rows[] = {
        {"<r><graph pkgurl='g'><inputs><input pkgurl='own'/></inputs></graph></r>", "own"},
        {"<r><graph pkgurl='g'><inputs><input pkgurl=''/></inputs></graph></r>", ""},
        {"<r><graph pkgurl='g'><inputs><input/></inputs></graph></r>", "g"},
        {"<r><graph><inputs><input/></inputs></graph></r>", ""},
        {"<r><global pkgurl='g'><inputs><input/></inputs></global></r>", "static"},
        {"<r pkgurl='g'><inputs><input/></inputs></r>", "static"},
        {"<inputs><input/></inputs>", ""},
        {"<input/>", ""},
    };
    for (const Row& row : rows) {
        QDomDocument document;
        ASSERT_TRUE(document.setContent(QByteArray(row.xml))) << row.xml;
        const QDomElement element = document.elementsByTagName("input").at(0).toElement();
        EXPECT_EQ(packageUrlOfInput(element).toStdString(), row.expected) << row.xml;
    }
}

TEST(OutputFormatName, table)
{
    struct Row
    {
        int format;
        const char* name;
    };
    const Row rows[] = {
        {0, "RGBA-8bits"},
        {32, "RGBA-8bits-sRGB"},
        {4 + 16, "RGBx-16bits"},
        {8, "RGB-8bits"},
        {12 + 64, "Grayscale-32bits Float"},
        {80, "RGBA-16bits Half Float"},
        {1, "BC1/DXT1"},
        {33, "BC1/DXT1-sRGB"},
        {9, "BC2/DXT2/DXT3"},
        {17, "BC3/DXT4/DXT5"},
        {21, "BC5/RGTC2/ATI2"},
        {25, "BC4"},
        {2, "JPEG"},
        {3, "PVRTC-2bits"},
        {7, "PVRTC-4bits"},
        {11, "ETC1 RGB8"},
        {6, "Unknown"},
        {29, "Unknown"},
        {255, "Unknown-sRGB"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(outputFormatName(quint8(row.format)).toStdString(), row.name) << row.format;
}

} // namespace
