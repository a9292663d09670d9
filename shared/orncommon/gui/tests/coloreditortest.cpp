#include "orncommon/gui/color/coloreditormgr.h"
#include "orncommon/gui/color/colorhexa.h"
#include "orncommon/gui/color/colorhsv.h"
#include "orncommon/gui/color/sliderscoloredit.h"
#include "orncommon/gui/color/spectrumcoloredit.h"

#include <QApplication>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QMouseEvent>

#include <gtest/gtest.h>

#include <memory>

using namespace Orn::Gui;
using Orn::Core::ColorRGBAf;

namespace {

TEST(ColorHSV, KnownColoursGoThereAndBack)
{
    const struct
    {
        ColorRGBAf rgb;
        ColorHSVf hsv;
    } rows[] = {
        {{1, 0, 0, 1}, {0, 1, 1}},
        {{1, 1, 0, 1}, {1.0F / 6, 1, 1}},
        {{0, 1, 0, 1}, {1.0F / 3, 1, 1}},
        {{0, 0, 1, 1}, {2.0F / 3, 1, 1}},
        {{1, 0, 0.5F, 1}, {11.0F / 12, 1, 1}},
        {{0.5F, 0.25F, 0.25F, 1}, {0, 0.5F, 0.5F}},
        {{0.2F, 0.6F, 0.8F, 1}, {200.0F / 360, 0.75F, 0.8F}},
    };
    for (const auto& row : rows) {
        const ColorHSVf hsv = toHSV(row.rgb);
        EXPECT_NEAR(hsv.h, row.hsv.h, 1e-6);
        EXPECT_NEAR(hsv.s, row.hsv.s, 1e-6);
        EXPECT_NEAR(hsv.v, row.hsv.v, 1e-6);
        const ColorRGBAf rgb = toRGB(row.hsv, 0.25F);
        EXPECT_NEAR(rgb.r, row.rgb.r, 1e-6);
        EXPECT_NEAR(rgb.g, row.rgb.g, 1e-6);
        EXPECT_NEAR(rgb.b, row.rgb.b, 1e-6);
        EXPECT_EQ(rgb.a, 0.25F);
    }
}

TEST(ColorHSV, GreyKeepsTheFormerHueAndBlackItsSaturationToo)
{
    const ColorHSVf former{0.4F, 0.7F, 0.9F};
    const ColorHSVf grey = toHSV({0.5F, 0.5F, 0.5F, 1}, former);
    EXPECT_EQ(grey.h, 0.4F);
    EXPECT_EQ(grey.s, 0.0F);
    const ColorHSVf black = toHSV({0, 0, 0, 1}, former);
    EXPECT_EQ(black.h, 0.4F);
    EXPECT_EQ(black.s, 0.7F);
    EXPECT_EQ(toHSV({7, -3, 0, 1}).v, 1.0F) << "values beyond a screen's are clamped";
}

TEST(ColorHexa, EightDigitsAndNothingElse)
{
    for (const char* text : {"#80ff0000", "#ABCDEF01", "#00000000"})
        EXPECT_TRUE(ColorHexa::isValid(text)) << text;
    for (const char* text : {"#ff00ff", "80ff0000", "#80ff00000", "#80gg0000", "", "red"})
        EXPECT_FALSE(ColorHexa::isValid(text)) << text;
}

TEST(ColorHexa, ATypedTextIsTheColourAlphaFirst)
{
    ColorHexa hexa;
    hexa.setColor({1, 0.5F, 0, 1});
    auto* edit = hexa.findChild<QLineEdit*>();
    EXPECT_EQ(edit->text(), "#ffff8000");
    int changes = 0;
    QObject::connect(&hexa, &ColorEdit::colorChanged, [&changes] { ++changes; });
    Q_EMIT edit->editingFinished();
    EXPECT_EQ(changes, 0) << "the rounded text is not an edit";
    edit->setText("#80ff0000");
    Q_EMIT edit->editingFinished();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(hexa.color().r, 1.0F);
    EXPECT_EQ(hexa.color().g, 0.0F);
    EXPECT_NEAR(hexa.color().a, 128 / 255.0, 1e-4);
}

TEST(ColorEditor, AllPartsFollowOneColourAndOnlyTheUserIsTold)
{
    ColorEditor editor;
    ColorRGBAf told;
    int changes = 0;
    QObject::connect(&editor, &ColorEdit::colorChanged, [&](const ColorRGBAf& color) {
        told = color;
        ++changes;
    });
    editor.setColor({0.25F, 0.5F, 0.75F, 1});
    EXPECT_EQ(changes, 0);
    const auto numbers = editor.findChildren<QDoubleSpinBox*>();
    ASSERT_EQ(numbers.size(), 4);
    EXPECT_EQ(numbers[2]->value(), 0.75);
    numbers[0]->setValue(1.0);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(told, (ColorRGBAf{1, 0.5F, 0.75F, 1}));
    EXPECT_EQ(editor.findChild<ColorHexa*>()->findChild<QLineEdit*>()->text(), "#ffff80bf");
}

TEST(ColorEditor, AColourWithoutAlphaStaysOpaque)
{
    ColorEditor editor;
    editor.setAlphaEnabled(false);
    editor.setColor({0, 0, 0, 1});
    auto* edit = editor.findChild<ColorHexa*>()->findChild<QLineEdit*>();
    edit->setText("#10ffffff");
    Q_EMIT edit->editingFinished();
    EXPECT_EQ(editor.color(), (ColorRGBAf{1, 1, 1, 1}));
}

TEST(SpectrumColorEdit, AClickPicksHueAndSaturationAtTheSameValue)
{
    SpectrumColorEdit field;
    field.resize(241, 101);
    field.setColor({0.5F, 0.5F, 0.5F, 0.75F});
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(80, 0), Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(&field, &press);
    EXPECT_NEAR(field.color().r, 0.0, 1e-5); // a third of the way: green, full at the top
    EXPECT_NEAR(field.color().g, 0.5, 1e-5);
    EXPECT_NEAR(field.color().b, 0.0, 1e-5);
    EXPECT_EQ(field.color().a, 0.75F);
}

TEST(ColorEditorMgr, ANewRequesterIsToldAndADeadOneLeavesNoOne)
{
    ColorEditorMgr& manager = ColorEditorMgr::instance();
    QWidget window;
    auto one = std::make_unique<QObject>();
    auto other = std::make_unique<QObject>();
    QList<QObject*> requesters;
    const auto connection = QObject::connect(&manager, &ColorEditorMgr::requesterChanged,
                                             [&requesters](QObject* requester) { requesters << requester; });
    ColorEditor* editor = manager.requestEditor(one.get(), &window);
    EXPECT_EQ(manager.requestEditor(one.get(), &window), editor);
    EXPECT_EQ(manager.requestEditor(other.get(), &window), editor);
    manager.release(one.get());
    EXPECT_EQ(manager.requester(), other.get()) << "who no longer has the editor cannot give it back";
    editor->show();
    QObject* otherAddress = other.get();
    other.reset();
    EXPECT_TRUE(editor->isHidden());
    EXPECT_EQ(requesters, QList<QObject*>({one.get(), otherAddress, nullptr}));
    QObject::disconnect(connection);
}

} // namespace
