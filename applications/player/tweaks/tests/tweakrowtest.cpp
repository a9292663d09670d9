#include "applications/player/tweaks/tests/tweakfixture.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>

using namespace Zph::Applications::Player;

namespace {

TEST(TweakRow, tellsAChangeOnce)
{
    Row row(0, "<input/>");
    row.find<QDoubleSpinBox>()->setValue(0.5);
    row.find<QDoubleSpinBox>()->setValue(0.5);
    emit row.find<QDoubleSpinBox>()->editingFinished();
    EXPECT_EQ(row.changes.size(), 1u);
    row.tweak->applyValue(InputValue::fromFloats(0.5f));
    EXPECT_EQ(row.changes.size(), 1u);
    row.tweak->applyValue(InputValue::fromFloats(0.75f));
    EXPECT_EQ(row.changes.size(), 2u);
    EXPECT_EQ(row.find<QSlider>()->value(), 768);
    row.tweak->resetToDefault();
    EXPECT_EQ(row.changes.size(), 3u);
    EXPECT_TRUE(row.tweak->isDefault());
}

TEST(TweakRow, widgetThatCannotShowTheDefaultKeepsIt)
{
    Row row(0, "<input><inputgui><guislider min='0' max='1' clamp='on'/></inputgui></input>",
            InputValue::fromFloats(-4.125f));
    EXPECT_EQ(row.number(), -4.125f);
    EXPECT_FALSE(row.tweak->isDirty());
    EXPECT_TRUE(row.changes.empty());
}

TEST(TweakRow, redescriptionKeepsTheValue)
{
    Row row(4, "<input/>", InputValue::fromInts(2));
    row.tweak->applyValue(InputValue::fromInts(5));
    const qint32 other[] = {9};
    row.tweak->initFromDescription(8, {42, 4, other}, parsed("<input identifier='x'/>").documentElement());
    EXPECT_EQ(row.integer(), 5);
    EXPECT_EQ(row.tweak->defaultValue().intAt(0), 2);
    EXPECT_EQ(row.tweak->index(), 8);
    EXPECT_EQ(row.tweak->caption(), "x");
}

TEST(TweakRow, captionsAndToolTips)
{
    const QByteArray xml =
        "<input identifier='id' usertag='tag'><inputgui label='L' description='D'/></input>";
    EXPECT_EQ(Row(0, xml).find<QLabel>()->toolTip(), "D");
    TweakContext context;
    context.diagnostics = true;
    EXPECT_EQ(Row(0, xml, {}, context).find<QLabel>()->toolTip(),
              "L\nuid:[42] - identifier:id\nusertag: 'tag'\ndescription: 'D'");
    EXPECT_EQ(Row(0, "<input identifier='id'/>", {}, context).find<QLabel>()->toolTip(), "id\nuid:[42]");
    EXPECT_EQ(Row(0, "").tweak->caption(), "Input uid:42");
    Row marked(0, "<input><inputgui label='&lt;img src=x>' description='&lt;b>x'/></input>");
    EXPECT_EQ(marked.find<QLabel>()->textFormat(), Qt::PlainText);
    EXPECT_TRUE(marked.find<QLabel>()->toolTip().contains("&lt;b&gt;"));
    EXPECT_EQ(Row(0, xml).find<QSlider>()->accessibleName(), "L");
    Row wide(0, xml);
    wide.tweak->resize(500, 30);
    wide.tweak->show();
    EXPECT_EQ(wide.find<QLabel>()->text(), "L");
}

TEST(TweakRow, dragPinsForItsLength)
{
    Row row(0, "<input/>");
    const auto pinned = [&] {
        std::list<size_t> indexes;
        row.tweak->getActiveTweak(indexes);
        return indexes == std::list<size_t>{3};
    };
    EXPECT_FALSE(pinned());
    emit row.find<QSlider>()->sliderPressed();
    EXPECT_TRUE(pinned());
    EXPECT_TRUE(row.find<QToolButton>()->isChecked());
    emit row.find<QSlider>()->sliderReleased();
    EXPECT_FALSE(pinned());
    row.find<QToolButton>()->click();
    emit row.find<QSlider>()->sliderPressed();
    emit row.find<QSlider>()->sliderReleased();
    EXPECT_TRUE(pinned()) << "a pin of the user outlives a drag";
}

TEST(TweakRow, doubleClickOnASliderResets)
{
    Row row(0, "<input/>", InputValue::fromFloats(0.25f));
    row.tweak->applyValue(InputValue::fromFloats(0.5f));
    QTest::mouseDClick(row.find<QSlider>(), Qt::LeftButton);
    EXPECT_EQ(row.number(), 0.25f);
}

TEST(TweakRow, survivesHostileDescriptions)
{
    const QByteArray hostile = "1e999,nan,-inf,99999999999999999999,";
    for (const QByteArray widget : {"slider", "angle", "togglebutton", "color", "combobox", "other"})
        for (quint32 type = 0; type < 12; ++type) {
            const QByteArray xml =
                "<input identifier='x'><inputgui widget='" + widget +
                "' order='-' group='//a//'><guislider min='" + hostile +
                "' max='nan' label0='%1' clamp='on'/><guiangle min='nan' max='-1e99' clamp='on' unit=''/>"
                "<guicombobox><guicomboboxitem/></guicombobox><guibutton label0=''/></inputgui></input>";
            InputValue wild;
            wild.words = {0x7fc00000u, 0xff800000u, 0x7f7fffffu, 0x80000000u};
            Row row(type, xml, wild);
            if (!row.tweak)
                continue;
            row.tweak->applyValue(InputValue::fromFloats(std::numeric_limits<float>::infinity()));
            row.tweak->setTimeChanged(std::numeric_limits<float>::quiet_NaN());
            for (auto* slider : row.tweak->findChildren<QAbstractSlider*>()) {
                slider->setValue(slider->maximum());
                slider->setValue(slider->minimum());
            }
            row.tweak->resetToDefault();
            EXPECT_TRUE(row.tweak->isDefault() || type == 6) << widget.constData() << ' ' << type;
        }
}

} // namespace
