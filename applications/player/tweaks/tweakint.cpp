#include "applications/player/tweaks/tweakint.h"

#include "applications/player/tweaks/numberwidgets.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>

#include <limits>

namespace Zph::Applications::Player {

using Limits = std::numeric_limits<int>;

TweakInt::TweakInt(const TweakContext& context, QWidget* parent)
    : TweakBase(ValueType::Int, context, parent), m_slider(makeSlider(this)), m_spinBox(makeSpinBox(this)),
      m_minLabel(new QLabel(this)), m_maxLabel(new QLabel(this))
{
    firstRow()->addWidget(m_minLabel, 0);
    firstRow()->addWidget(m_slider, 2);
    firstRow()->addWidget(m_maxLabel, 0);
    firstRow()->addWidget(m_spinBox, 1);
    m_slider->setPageStep(1);
    adopt(m_slider);
    adopt(m_spinBox);
    connect(m_slider, &QSlider::valueChanged, this, [this](int number) {
        {
            const QSignalBlocker blocker(m_spinBox);
            m_spinBox->setValue(number);
        }
        onWidgetValue();
    });
    connect(m_spinBox, qOverload<int>(&QSpinBox::valueChanged), this, [this] {
        updateSlider();
        onWidgetValue();
    });
}

void TweakInt::toggleSlidersTracking(bool tracking)
{
    TweakBase::toggleSlidersTracking(tracking);
    m_slider->setTracking(tracking);
}

void TweakInt::parseInputGui(const QDomElement& element)
{
    const QDomElement bounds = inputGuiChild(element, "guislider");
    int minimum = 0;
    int maximum = 10;
    if (!bounds.isNull()) {
        minimum = parsedInt(bounds.attribute(QStringLiteral("min")), 0);
        maximum = parsedInt(bounds.attribute(QStringLiteral("max")), Limits::max());
    }
    m_minLabel->setText(QStringLiteral(" %1").arg(minimum));
    m_maxLabel->setText(QString::number(maximum));
    writeWidgets([&] {
        m_slider->setRange(minimum, maximum);
        if (isClamped(bounds))
            m_spinBox->setRange(minimum, maximum);
        else
            m_spinBox->setRange(Limits::min(), Limits::max());
    });
}

void TweakInt::updateInputFromWidget()
{
    setValue(m_spinBox->value(), 0, 0, 0);
}

void TweakInt::updateWidgetFromInput()
{
    m_spinBox->setValue(value().intAt(0));
    updateSlider();
}

void TweakInt::updateSlider()
{
    const QSignalBlocker blocker(m_slider);
    m_slider->setValue(m_spinBox->value());
}

} // namespace Zph::Applications::Player
