#include "applications/player/tweaks/numberwidgets.h"
#include "applications/player/tweaks/tests/tweakfixture.h"
#include "applications/player/tweaks/tweakcolor.h"
#include "applications/player/tweaks/tweakkind.h"
#include "applications/player/tweaks/tweakrandom.h"
#include "applications/player/tweaks/tweaktext.h"
#include "applications/player/tweaks/tweaktime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Zph::Applications::Player;

namespace {

TEST(TweakKind, table)
{
    using K = TweakKind;
    using W = WidgetCode;
    struct Row
    {
        W code;
        std::vector<K> kinds; // by type, 0 to 11
    };
    const K n = K::None;
    const Row rows[] = {
        {W::None,
         {K::Float, K::Vec, K::Vec, K::Vec, K::Int, K::Image, K::Text, n, K::Vec, K::Vec, K::Vec, n}},
        {W::Slider,
         {K::Slider, K::Slider, K::Slider, K::Slider, K::Slider, K::Image, K::Text, n, K::Slider, K::Slider,
          K::Slider, n}},
        {W::Angle,
         {K::Angle, K::Vec, K::Vec, K::Vec, K::Angle, K::Image, K::Text, n, K::Vec, K::Vec, K::Vec, n}},
        {W::Toggle,
         {K::Toggle, K::Vec, K::Vec, K::Vec, K::Toggle, K::Image, K::Text, n, K::Vec, K::Vec, K::Vec, n}},
        {W::Color,
         {K::Float, K::Vec, K::Color, K::Color, K::Int, K::Image, K::Text, n, K::Vec, K::Color, K::Color, n}},
        {W::ComboBox,
         {K::Float, K::Vec, K::Vec, K::Vec, K::ComboBox, K::Image, K::Text, n, K::Vec, K::Vec, K::Vec, n}},
        {W::Time, std::vector<K>(12, K::Time)},
        {W::RandomSeed,
         {K::Float, K::Vec, K::Vec, K::Vec, K::Random, K::Image, K::Text, n, K::Vec, K::Vec, K::Vec, n}},
        {W::NormalFormat,
         {K::Float, K::Vec, K::Vec, K::Vec, K::Normal, K::Image, K::Text, n, K::Vec, K::Vec, K::Vec, n}},
        {W::OutputSize,
         {K::Float, K::Vec, K::Vec, K::Vec, K::Int, K::Image, K::Text, n, K::OutputSize, K::Vec, K::Vec, n}},
    };
    for (const Row& row : rows)
        for (quint32 type = 0; type < row.kinds.size(); ++type)
            EXPECT_EQ(int(tweakKindFor(type, row.code)), int(row.kinds[type]))
                << "widget " << int(row.code) << ", type " << type;
    EXPECT_EQ(tweakKindFor(4000000000u, W::Slider), n);
}

TEST(NumberWidgets, truncationAndSliders)
{
    EXPECT_EQ(truncated(-1.9), -1);
    EXPECT_EQ(truncated(1e300), std::numeric_limits<int>::max());
    EXPECT_EQ(truncated(-1e300), std::numeric_limits<int>::min());
    EXPECT_EQ(truncated(std::nan("")), 0);
    EXPECT_EQ(sliderToValue(256, 2, 4), 2.5f);
    EXPECT_EQ(valueToSlider(2.5, 2, 4), 256);
    EXPECT_EQ(valueToSlider(9.0, 0, 1), 9216) << "limited by the slider, not here";
}

TEST(TweakFloat, boundsAndConversion)
{
    Row equal(0, "<input><inputgui><guislider min='2' max='2' clamp='on'/></inputgui></input>");
    EXPECT_EQ(equal.labelText(1), " 2");
    EXPECT_EQ(equal.labelText(2), "3");
    EXPECT_EQ(equal.find<QDoubleSpinBox>()->minimum(), 2.0);
    EXPECT_EQ(equal.find<QDoubleSpinBox>()->maximum(), 3.0);

    Row open(0, "<input><inputgui><guislider min='x' clamp='yes'/></inputgui></input>");
    EXPECT_EQ(open.labelText(2), "3.40282e+38");
    open.find<QDoubleSpinBox>()->setValue(-5);
    EXPECT_GE(open.number(), 0.0f) << "an unclamped float takes no negative number";

    Row plain(0, "<input/>", InputValue::fromFloats(0.25f));
    EXPECT_EQ(plain.find<QSlider>()->value(), 256);
    EXPECT_TRUE(plain.changes.empty());
    plain.find<QSlider>()->setValue(768);
    EXPECT_EQ(plain.number(), 0.75f);
    EXPECT_EQ(plain.find<QDoubleSpinBox>()->value(), 0.75);
    plain.find<QDoubleSpinBox>()->setValue(0.5);
    EXPECT_EQ(plain.find<QSlider>()->value(), 512);
    EXPECT_EQ(plain.changes, (std::vector<int>{3, 3}));
}

TEST(TweakInt, bounds)
{
    Row plain(4, "<input/>", InputValue::fromInts(50));
    EXPECT_EQ(plain.find<QSlider>()->minimum(), 0);
    EXPECT_EQ(plain.find<QSlider>()->maximum(), 10);
    EXPECT_EQ(plain.find<QSpinBox>()->value(), 50);
    Row half(4, "<input><inputgui><guislider min='0x10'/></inputgui></input>");
    EXPECT_EQ(half.find<QSlider>()->minimum(), 0);
    EXPECT_EQ(half.find<QSlider>()->maximum(), 2147483647);
    Row clamped(4, "<input><inputgui><guislider min='-3' max='7' clamp='on'/></inputgui></input>");
    EXPECT_EQ(clamped.labelText(1), " -3");
    EXPECT_EQ(clamped.find<QSpinBox>()->minimum(), -3);
    clamped.find<QSlider>()->setValue(7);
    EXPECT_EQ(clamped.integer(), 7);
    EXPECT_EQ(clamped.changes.size(), 1u);
}

TEST(TweakSlider, componentsTakeTheirListEntries)
{
    Row row(2,
            "<input><inputgui widget='slider'><guislider min='0,-1' max='2,x' clamp='on' label0='Red'/>"
            "</inputgui></input>",
            InputValue::fromFloats(1.5f, 0.5f, 0.0f));
    // Component 1: a bad maximum reads as 1, and 1.5, the first component's value, stretches it.
    EXPECT_EQ(row.find<QDoubleSpinBox>(0)->maximum(), 2.0);
    EXPECT_EQ(row.find<QDoubleSpinBox>(1)->minimum(), -1.0);
    EXPECT_EQ(row.find<QDoubleSpinBox>(1)->maximum(), 1.5);
    EXPECT_EQ(row.find<QDoubleSpinBox>(2)->maximum(), 1.5);
    EXPECT_EQ(row.find<QSlider>(0)->value(), 768);
    row.find<QSlider>(1)->setValue(0);
    EXPECT_EQ(row.tweak->value().floatAt(1), -1.0f);
    EXPECT_EQ(row.tweak->value().floatAt(0), 1.5f);
    const auto labels = row.tweak->findChildren<QLabel*>();
    int shown = 0;
    for (const QLabel* label : labels)
        shown += label->text() == "Red: " && !label->isHidden();
    EXPECT_EQ(shown, 1);

    Row integers(8, "<input><inputgui widget='slider'><guislider min='1,' max='5'/></inputgui></input>");
    EXPECT_EQ(integers.find<QSlider>(0)->maximum(), 5);
    EXPECT_EQ(integers.find<QSlider>(1)->minimum(), 0) << "an entry that isn't a number reads as 0";
    EXPECT_EQ(integers.find<QSlider>(1)->maximum(), 10) << "a missing one as the default";
    integers.find<QDoubleSpinBox>(1)->setValue(-2147483648.0);
    EXPECT_EQ(integers.tweak->value().intAt(1), std::numeric_limits<int>::min());
}

TEST(TweakVec, editingOneComponentKeepsTheOthersWhole)
{
    Row row(1, "<input/>", InputValue::fromFloats(0.12345f, 1.0f));
    row.find<QDoubleSpinBox>(1)->setValue(2.0);
    EXPECT_EQ(row.tweak->value().floatAt(0), 0.12345f);
    EXPECT_EQ(row.tweak->value().floatAt(1), 2.0f);
    Row wide(8, "<input/>");
    wide.find<QDoubleSpinBox>(0)->setValue(1e30);
    EXPECT_EQ(wide.integer(), std::numeric_limits<int>::max());
}

struct AngleRow
{
    quint32 type;
    const char* unit;
    double value;
    int dial;
};

TEST(TweakAngle, dialShowsTheValue)
{
    const AngleRow rows[] = {
        {0, "turns", 0, 90},     {0, "turns", 3.25, 180},        {0, "turns", -0.25, 0},
        {0, "degrees", 45, 135}, {0, "radians", 3.1415927, 270}, {0, "turns", 0.9999, 90},
        {4, "degrees", -10, 80}, {4, "degrees", 370, 100},       {4, "degrees", -200, 250},
    };
    for (const AngleRow& row : rows) {
        const QByteArray xml = QByteArray("<input><inputgui widget='angle'><guiangle unit='") + row.unit +
                               "'/></inputgui></input>";
        Row tweak(row.type, xml,
                  row.type == 0 ? InputValue::fromFloats(float(row.value))
                                : InputValue::fromInts(int(row.value)));
        EXPECT_EQ(tweak.find<QDial>()->value(), row.dial) << row.unit << ' ' << row.value;
        EXPECT_TRUE(tweak.changes.empty());
    }
}

TEST(TweakAngle, dialKeepsWholeTurns)
{
    Row turns(0, "<input><inputgui widget='angle'/></input>", InputValue::fromFloats(3.25f));
    EXPECT_EQ(turns.labelText(1), " turns  ");
    turns.find<QDial>()->setValue(270);
    EXPECT_EQ(turns.number(), 3.5f);
    Row whole(4, "<input><inputgui widget='angle'/></input>", InputValue::fromInts(730));
    whole.find<QDial>()->setValue(0);
    EXPECT_EQ(whole.integer(), 990);
    Row clamped(4, "<input><inputgui widget='angle'><guiangle max='90' clamp='on'/></inputgui></input>");
    EXPECT_EQ(clamped.find<QDoubleSpinBox>()->maximum(), 90.0);
    EXPECT_EQ(clamped.find<QDoubleSpinBox>()->minimum(), -2147483648.0);
}

TEST(TweakToggle, textsAndTruth)
{
    Row nan(
        0,
        "<input><inputgui widget='checkbox'><guibutton label0='A &amp; B' label1='Yes'/></inputgui></input>",
        InputValue::fromFloats(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_TRUE(nan.find<QPushButton>()->isChecked());
    EXPECT_EQ(nan.find<QPushButton>()->text(), "Yes");
    nan.find<QPushButton>()->click();
    EXPECT_EQ(nan.number(), 0.0f);
    EXPECT_EQ(nan.find<QPushButton>()->text(), "A && B");
    Row integer(4, "<input><inputgui widget='togglebutton'/></input>", InputValue::fromInts(7));
    EXPECT_TRUE(integer.find<QPushButton>()->isChecked());
    EXPECT_EQ(integer.find<QPushButton>()->text(), "On");
    integer.find<QPushButton>()->click();
    integer.find<QPushButton>()->click();
    EXPECT_EQ(integer.integer(), 1);
}

TEST(TweakComboBox, itemsByValue)
{
    const QByteArray xml =
        "<input><inputgui widget='combobox'><guicombobox><guicomboboxitem value='5' text='Five'/>"
        "<guicomboboxitem value='-1' text='Minus'/><guicomboboxitem value='x' text='Bad'/>"
        "</guicombobox></inputgui></input>";
    Row row(4, xml, InputValue::fromInts(-1));
    EXPECT_EQ(row.find<QComboBox>()->currentText(), "Minus");
    row.find<QComboBox>()->setCurrentIndex(2);
    EXPECT_EQ(row.integer(), 0);
    row.tweak->applyValue(InputValue::fromInts(99));
    EXPECT_EQ(row.find<QComboBox>()->currentIndex(), -1);
    EXPECT_EQ(row.integer(), 99);
    Row missing(4, xml, InputValue::fromInts(77));
    EXPECT_EQ(missing.find<QComboBox>()->currentIndex(), -1);
    EXPECT_EQ(missing.integer(), 77);
    EXPECT_TRUE(missing.changes.empty());
    Row empty(4, "<input><inputgui widget='combobox'/></input>");
    EXPECT_EQ(empty.find<QComboBox>()->count(), 0);
}

TEST(TweakNormal, indexIsTheValue)
{
    Row row(4, "<input identifier='$normalformat'/>", InputValue::fromInts(2));
    const QComboBox* box = row.find<QComboBox>();
    ASSERT_EQ(box->count(), 16);
    EXPECT_EQ(box->currentText(), "[OpenGL] R:X | G:Y(inv) | B:Z | A:H");
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(box->itemText(i).contains("X(inv)"), bool(i & 1)) << i;
        EXPECT_EQ(box->itemText(i).contains("Y(inv)"), bool(i & 2)) << i;
        EXPECT_EQ(box->itemText(i).contains("B:Z"), !(i & 8)) << i;
        EXPECT_EQ(box->itemText(i).contains("A:Height"), i == 8) << i;
    }
    row.tweak->applyValue(InputValue::fromInts(16));
    EXPECT_EQ(box->currentIndex(), -1);
    row.tweak->applyValue(InputValue::fromInts(-5));
    EXPECT_EQ(row.integer(), -5);
}

TEST(TweakOutputSize, limitsLinksAndStartsDirty)
{
    const QByteArray xml = "<input identifier='$outputsize'/>";
    Row usual(8, xml, InputValue::fromInts(9, 9));
    EXPECT_EQ(usual.find<QComboBox>(0)->currentText(), "512");
    EXPECT_EQ(usual.find<QComboBox>(0)->itemText(13), "8192");
    EXPECT_EQ(usual.find<QComboBox>(0)->count(), 14);
    EXPECT_TRUE(usual.tweak->isDirty());
    EXPECT_TRUE(usual.changes.empty());
    TweakContext context;
    context.sizeLimit = 10;
    Row limited(8, xml, InputValue::fromInts(9, 12), context);
    QComboBox* width = limited.find<QComboBox>(0);
    QComboBox* height = limited.find<QComboBox>(1);
    EXPECT_EQ(width->itemText(width->count() - 1), "1024");
    EXPECT_EQ(height->currentIndex(), -1) << "a size beyond the list";
    width->setCurrentIndex(8);
    EXPECT_EQ(limited.tweak->value().intAt(1), 12) << "stays until it is chosen anew";
    QToolButton* link = limited.find<QToolButton>(1);
    EXPECT_FALSE(link->isChecked());
    height->setCurrentIndex(5);
    link->click();
    EXPECT_EQ(height->currentIndex(), 8) << "height follows width";
    height->setCurrentIndex(3);
    EXPECT_EQ(width->currentIndex(), 3);
    EXPECT_EQ(limited.tweak->value().intAt(0), 3);
    EXPECT_EQ(limited.changes.size(), 4u) << "one for each of four acts";
}

TEST(TweakRandom, parsesAndDraws)
{
    struct Typed
    {
        const char* text;
        quint32 value;
    };
    Row row(4, "<input identifier='$randomseed'/>", InputValue::fromInts(255));
    QLineEdit* line = row.find<QLineEdit>();
    EXPECT_EQ(line->text(), "0xFF");
    for (const Typed& typed : {Typed{" 0XfF00 ", 0xff00}, Typed{"12", 12}, Typed{"4294967295", 0xffffffff},
                               Typed{"0xFFFFFFFF", 0xffffffff}}) {
        line->setText(typed.text);
        emit line->editingFinished();
        EXPECT_EQ(row.tweak->value().words[0], typed.value) << typed.text;
    }
    for (const char* text : {"seed", "-1", "0x", "4294967296", "ff"}) {
        line->setText(text);
        emit line->editingFinished();
        EXPECT_EQ(line->text(), "") << text;
        EXPECT_EQ(row.tweak->value().words[0], 0xffffffff) << text;
    }
    EXPECT_EQ(row.changes.size(), 3u);
    row.as<TweakRandom>()->drawRandom();
    const QString drawn = line->text();
    EXPECT_EQ(drawn.size(), 10);
    EXPECT_EQ(drawn.toUInt(nullptr, 16), row.tweak->value().words[0]);
}

TEST(TweakTime, followsTheTimelineAndTellsTypedTimes)
{
    Row row(0, "<input identifier='$time'/>");
    std::vector<float> typed;
    QObject::connect(row.as<TweakTime>(), &TweakTime::timeChangedSignal,
                     [&](float time) { typed.push_back(time); });
    EXPECT_TRUE(row.tweak->isTimeDependent());
    EXPECT_TRUE(row.find<QSlider>()->isHidden());
    row.tweak->setTimeChanged(1.5f);
    EXPECT_EQ(row.number(), 1.5f);
    EXPECT_TRUE(typed.empty());
    row.find<QDoubleSpinBox>()->setValue(2.0);
    EXPECT_EQ(typed, std::vector<float>{2.0f});
    EXPECT_EQ(row.changes.size(), 2u);
}

TEST(TweakColor, scalesByType)
{
    Row bytes(9, "<input><inputgui widget='color'/></input>", InputValue::fromInts(255, 128, 0));
    auto* color = bytes.as<TweakColor>();
    ASSERT_NE(color, nullptr);
    color->onEditColorChanged({0.2f, 0.4f, 1.0f, 0.5f});
    EXPECT_EQ(bytes.tweak->value().intAt(0), 51);
    EXPECT_EQ(bytes.tweak->value().intAt(1), 102);
    EXPECT_EQ(bytes.tweak->value().intAt(2), 255);
    EXPECT_EQ(bytes.changes.size(), 1u) << "one change for all components";
    Row floats(3, "<input><inputgui widget='color'/></input>");
    floats.as<TweakColor>()->onEditColorChanged({0.25f, 0.5f, 0.75f, 0.5f});
    EXPECT_EQ(floats.tweak->value().floatAt(3), 0.5f);
}

TEST(TweakColor, editorWorksForTheLastToAsk)
{
    auto first = std::make_unique<Row>(2, "<input><inputgui widget='color'/></input>");
    Row second(2, "<input><inputgui widget='color'/></input>");
    first->as<TweakColor>()->openEditor();
    second.as<TweakColor>()->openEditor();
    first.reset();
    second.as<TweakColor>()->openEditor();
    second.tweak->applyValue(InputValue::fromFloats(0.5f, 0.5f, 0.5f));
    second.tweak.reset();
}

TEST(TweakText, unitsForTheEngine)
{
    Row row(6, "<input default='A&lt;b>'/>");
    auto* text = row.as<TweakText>();
    EXPECT_EQ(text->text(), "A<b>");
    EXPECT_TRUE(text->isDefault());
    EXPECT_FALSE(text->isDirty());
    row.find<QTextEdit>()->setPlainText(QString::fromUtf8("é\nz"));
    EXPECT_FALSE(text->isDefault());
    RecordingEngine engine;
    text->applyToEngine(engine);
    text->applyToEngine(engine);
    ASSERT_EQ(engine.calls.size(), 1u);
    EXPECT_EQ(engine.calls[0].type, 6u);
    const auto* units = static_cast<const quint32*>(engine.calls[0].value);
    EXPECT_EQ(std::vector<quint32>(units, units + 4), (std::vector<quint32>{0xe9, '\n', 'z', 0}));
    text->resetToDefault();
    EXPECT_EQ(text->text(), "A<b>");
    EXPECT_EQ(row.changes.size(), 2u);
    text->resetToDefault();
    EXPECT_EQ(row.changes.size(), 2u);
}

} // namespace
