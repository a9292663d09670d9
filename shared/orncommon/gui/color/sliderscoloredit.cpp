#include "orncommon/gui/color/sliderscoloredit.h"

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>

namespace Orn::Gui {

SlidersColorEdit::SlidersColorEdit(QWidget* parent) : ColorEdit(parent)
{
    using Channel = ColorSlider::Channel;
    m_rows = {createRow(Channel::Red, tr("R")), createRow(Channel::Green, tr("G")),
              createRow(Channel::Blue, tr("B")), createRow(Channel::Alpha, tr("A"))};
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setHorizontalSpacing(6);
    layout->setVerticalSpacing(4);
    for (int i = 0; i < static_cast<int>(m_rows.size()); ++i) {
        layout->addWidget(m_rows[i].label, i, 0);
        layout->addWidget(m_rows[i].slider, i, 1);
        layout->addWidget(m_rows[i].number, i, 2);
    }
    updateFromColor();
}

SlidersColorEdit::Row SlidersColorEdit::createRow(ColorSlider::Channel channel, const QString& name)
{
    Row row{channel, new QLabel(name, this), new ColorSlider(channel, Qt::Horizontal, this),
            new QDoubleSpinBox(this)};
    row.number->setRange(0, 1);
    row.number->setDecimals(3);
    row.number->setSingleStep(0.01);
    connect(row.slider, &ColorEdit::colorChanged, this, &SlidersColorEdit::changeColor);
    connect(row.slider, &ColorEdit::editBegun, this, &ColorEdit::editBegun);
    connect(row.slider, &ColorEdit::editEnded, this, &ColorEdit::editEnded);
    connect(row.number, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this, channel](double value) {
                Core::ColorRGBAf changed = color();
                channelOf(changed, channel) = static_cast<float>(value);
                changeColor(changed);
            });
    return row;
}

void SlidersColorEdit::setAlphaVisible(bool visible)
{
    const Row& alpha = m_rows.back();
    alpha.label->setVisible(visible);
    alpha.slider->setVisible(visible);
    alpha.number->setVisible(visible);
}

void SlidersColorEdit::updateFromColor()
{
    for (const Row& row : m_rows) {
        row.slider->setColor(color());
        const QSignalBlocker blocker(row.number);
        // A number that is being typed is not overwritten by its own rounding.
        const double value = row.slider->value();
        if (qAbs(row.number->value() - value) >= 0.0005)
            row.number->setValue(value);
    }
}

} // namespace Orn::Gui
