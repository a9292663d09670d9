#include "applications/player/tweaks/tweaknormal.h"

#include "applications/player/tweaks/tweakcombobox.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>

namespace Zph::Applications::Player {

namespace {

// Bit 0 of the number inverts X, bit 1 inverts Y, bit 2 has Z in 0..1, bit 3 drops Z; bits 2 and 3 together
// move Y into alpha.
constexpr const char* formats[] = {
    QT_TRANSLATE_NOOP("TweakNormal", "[Direct3D] R:X | G:Y | B:Z | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X(inv) | G:Y | B:Z | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "[OpenGL] R:X | G:Y(inv) | B:Z | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X(inv) | G:Y(inv) | B:Z | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X | G:Y | B:Z(0..1) | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X(inv) | G:Y | B:Z(0..1) | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X | G:Y(inv) | B:Z(0..1) | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X(inv) | G:Y(inv) | B:Z(0..1) | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X | G:Y | | A:Height"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X(inv) | G:Y | | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X | G:Y(inv) | | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X(inv) | G:Y(inv) | | A:H"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X | | | A:Y"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X(inv) | | | A:Y"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X | | | A:Y(inv)"),
    QT_TRANSLATE_NOOP("TweakNormal", "R:X(inv) | | | A:Y(inv)"),
};

} // namespace

TweakNormal::TweakNormal(const TweakContext& context, QWidget* parent)
    : TweakBase(ValueType::Int, context, parent), m_comboBox(makeComboBox(this))
{
    for (const char* format : formats)
        m_comboBox->addItem(QCoreApplication::translate("TweakNormal", format));
    firstRow()->addWidget(m_comboBox);
    adopt(m_comboBox);
    connect(m_comboBox, qOverload<int>(&QComboBox::currentIndexChanged), this, [this] { onWidgetValue(); });
}

void TweakNormal::parseInputGui(const QDomElement&)
{
    setRichCaption(tr("<b>Normal Format</b>"), tr("Normal Format"));
}

void TweakNormal::updateInputFromWidget()
{
    if (m_comboBox->currentIndex() >= 0)
        setValue(m_comboBox->currentIndex(), 0, 0, 0);
}

void TweakNormal::updateWidgetFromInput()
{
    const int format = value().intAt(0);
    m_comboBox->setCurrentIndex(format >= 0 && format < m_comboBox->count() ? format : -1);
}

} // namespace Zph::Applications::Player
