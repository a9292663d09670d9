#include "applications/player/tweaks/tweakangle.h"

#include "applications/player/tweaks/numberwidgets.h"

#include <QDial>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

#include <cmath>
#include <limits>

// The dial counts degrees and stands a quarter turn ahead: position 90, its top or its side as the style
// draws it, is the value 0.

namespace Zph::Applications::Player {

namespace {

constexpr int degrees = 360;
constexpr int quarter = 90;

// Where in its turn a value is: at least 0, below `turn`.
double withinTurn(double value, double turn)
{
    const double rest = std::fmod(value, turn);
    return rest < 0 ? rest + turn : rest;
}

// A bound that may be left out, within the range of the type.
double bound(const QDomElement& bounds, const char* attribute, bool isFloat, double fallback)
{
    const QString text = bounds.attribute(QLatin1String(attribute));
    return isFloat ? double(parsedFloat(text, float(fallback))) : parsedInt(text, int(fallback));
}

} // namespace

TweakAngle::TweakAngle(quint32 type, const TweakContext& context, QWidget* parent)
    : TweakBase(type, context, parent), m_spinBox(makeDoubleSpinBox(this, isFloatType(type) ? 3 : 0)),
      m_unitLabel(new QLabel(this)), m_dial(new QDial(this))
{
    m_spinBox->setMinimumWidth(92);   // shows 359.999 whole
    m_unitLabel->setMinimumWidth(62); // shows any unit, so that the dials of a panel stand in line
    m_dial->setRange(0, degrees - 1);
    m_dial->setWrapping(true);
    m_dial->setMinimumSize(36, 36);
    m_dial->setMaximumHeight(48);
    firstRow()->addWidget(m_spinBox, 1);
    firstRow()->addWidget(m_unitLabel, 0);
    firstRow()->addWidget(m_dial, 2);
    adopt(m_spinBox);
    adopt(m_dial);
    connect(m_spinBox, qOverload<double>(&QDoubleSpinBox::valueChanged), this, [this] {
        updateDial();
        onWidgetValue();
    });
    connect(m_dial, &QDial::valueChanged, this, &TweakAngle::dialMoved);
}

void TweakAngle::toggleSlidersTracking(bool tracking)
{
    TweakBase::toggleSlidersTracking(tracking);
    m_dial->setTracking(tracking);
}

void TweakAngle::parseInputGui(const QDomElement& element)
{
    const QDomElement bounds = inputGuiChild(element, "guiangle");
    readUnit(bounds.attribute(QStringLiteral("unit")));
    double minimum = isFloat() ? double(-largestFloat) : std::numeric_limits<int>::min();
    double maximum = isFloat() ? double(largestFloat) : std::numeric_limits<int>::max();
    if (isClamped(bounds)) {
        minimum = bound(bounds, "min", isFloat(), minimum);
        maximum = bound(bounds, "max", isFloat(), maximum);
    }
    writeWidgets([&] { m_spinBox->setRange(minimum, maximum); });
}

void TweakAngle::readUnit(const QString& unit)
{
    QString text = tr("turns");
    m_turn = 1;
    if (unit == QLatin1String("degrees")) {
        m_turn = 360.0f;
        text = tr("degrees");
    } else if (unit == QLatin1String("radians")) {
        m_turn = 6.2831855f;
        text = tr("radians");
    }
    m_unitLabel->setText(QStringLiteral(" %1  ").arg(text));
    m_spinBox->setSingleStep(isFloat() && m_turn < degrees ? 0.1 : 1);
}

void TweakAngle::updateInputFromWidget()
{
    if (isFloat())
        setValue(floatInBox(*m_spinBox, value().floatAt(0)), 0.0f, 0.0f, 0.0f);
    else
        setValue(truncated(m_spinBox->value()), 0, 0, 0);
}

void TweakAngle::updateWidgetFromInput()
{
    m_spinBox->setValue(isFloat() ? double(value().floatAt(0)) : value().intAt(0));
    updateDial();
}

void TweakAngle::updateDial()
{
    const double value = m_spinBox->value();
    const int angle = isFloat() ? truncated(withinTurn(value, double(m_turn)) / double(m_turn) * 360.0 + 0.5)
                                : truncated(value) % degrees;
    const QSignalBlocker blocker(m_dial);
    m_dial->setValue((angle + quarter + degrees) % degrees);
}

void TweakAngle::dialMoved(int position)
{
    const int angle = (position + degrees - quarter) % degrees;
    const double value = m_spinBox->value();
    const double turn = double(m_turn);
    {
        const QSignalBlocker blocker(m_spinBox);
        if (isFloat())
            m_spinBox->setValue(angle * turn / 360.0 + (value - withinTurn(value, turn)));
        else
            m_spinBox->setValue(double(truncated(value) / degrees) * degrees + angle);
    }
    onWidgetValue();
}

} // namespace Zph::Applications::Player
