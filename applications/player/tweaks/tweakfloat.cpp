#include "applications/player/tweaks/tweakfloat.h"

#include "applications/player/tweaks/numberwidgets.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

namespace Zph::Applications::Player {

TweakFloat::TweakFloat(const TweakContext& context, QWidget* parent)
    : TweakBase(ValueType::Float, context, parent), m_spinBox(makeDoubleSpinBox(this, 3)),
      m_slider(makeSlider(this)), m_minLabel(new QLabel(this)), m_maxLabel(new QLabel(this))
{
    firstRow()->addWidget(m_minLabel, 0);
    firstRow()->addWidget(m_slider, 2);
    firstRow()->addWidget(m_maxLabel, 0);
    firstRow()->addWidget(m_spinBox, 1);
    adopt(m_slider);
    adopt(m_spinBox);
    connect(m_spinBox, qOverload<double>(&QDoubleSpinBox::valueChanged), this, &TweakFloat::valueChanged);
    connect(m_slider, &QSlider::valueChanged, this, &TweakFloat::sliderMoved);
}

void TweakFloat::toggleSlidersTracking(bool tracking)
{
    TweakBase::toggleSlidersTracking(tracking);
    m_slider->setTracking(tracking);
}

void TweakFloat::valueChanged()
{
    updateSlider();
    onWidgetValue();
}

void TweakFloat::sliderMoved(int step)
{
    {
        const QSignalBlocker blocker(m_spinBox);
        m_spinBox->setValue(double(sliderToValue(step, m_sliderMin, m_sliderMax)));
    }
    onWidgetValue();
}

void TweakFloat::parseInputGui(const QDomElement& element)
{
    const QDomElement bounds = inputGuiChild(element, "guislider");
    m_sliderMin = 0;
    m_sliderMax = 1;
    if (!bounds.isNull())
        readBounds(bounds);
    m_minLabel->setText(minimumText(m_sliderMin));
    m_maxLabel->setText(maximumText(m_sliderMax));
    writeWidgets([&] {
        if (isClamped(bounds))
            m_spinBox->setRange(double(m_sliderMin), double(m_sliderMax));
        else // an unclamped float takes no negative number
            m_spinBox->setRange(1.1754943508222875e-38, double(largestFloat));
    });
}

void TweakFloat::readBounds(const QDomElement& bounds)
{
    m_sliderMin = parsedFloat(bounds.attribute(QStringLiteral("min")), 0);
    m_sliderMax = parsedFloat(bounds.attribute(QStringLiteral("max")), largestFloat);
    if (m_sliderMax == m_sliderMin)
        m_sliderMax += 1.0f;
}

void TweakFloat::updateInputFromWidget()
{
    setValue(floatInBox(*m_spinBox, value().floatAt(0)), 0.0f, 0.0f, 0.0f);
}

void TweakFloat::updateWidgetFromInput()
{
    m_spinBox->setValue(double(value().floatAt(0)));
    updateSlider();
}

void TweakFloat::updateSlider()
{
    const QSignalBlocker blocker(m_slider);
    m_slider->setValue(valueToSlider(m_spinBox->value(), m_sliderMin, m_sliderMax));
}

} // namespace Zph::Applications::Player
