#include "applications/player/tweaks/tweakslider.h"

#include "applications/player/tweaks/numberwidgets.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

#include <limits>

// Integer components are edited in boxes of doubles without decimals, which hold every 32-bit integer.

namespace Zph::Applications::Player {

using Limits = std::numeric_limits<int>;

namespace {

// Entry `i` of a comma list, or the fallback beyond its end.
QString listEntry(const QDomElement& element, const char* attribute, int i, const char* fallback)
{
    const QString name = QLatin1String(attribute);
    const QStringList entries =
        element.hasAttribute(name) ? element.attribute(name).split(',') : QStringList();
    return entries.value(i, QLatin1String(fallback));
}

QLabel* makeBoundLabel(QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setMinimumWidth(19);
    return label;
}

} // namespace

TweakSlider::TweakSlider(quint32 type, const TweakContext& context, QWidget* parent)
    : TweakBase(type, context, parent)
{
    QHBoxLayout* row = firstRow();
    for (int i = 0; i < componentCount(type); ++i) {
        if (i > 0) {
            row = new QHBoxLayout;
            row->setSpacing(2);
            row->setContentsMargins(0, 0, 0, 0);
            rightColumn()->addLayout(row);
        }
        const Line line = makeLine(row);
        m_lines.push_back(line);
        connect(line.slider, &QSlider::valueChanged, this, [this, i](int step) { sliderMoved(i, step); });
        connect(line.spinBox, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
                [this, i] { valueChanged(i); });
    }
}

TweakSlider::Line TweakSlider::makeLine(QHBoxLayout* row)
{
    Line line{new QLabel(this), makeBoundLabel(this), makeSlider(this), makeBoundLabel(this),
              makeDoubleSpinBox(this, isFloat() ? 3 : 0)};
    line.label->hide();
    line.maxLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    line.spinBox->setMaximumWidth(60);
    makeNarrow(line.spinBox);
    if (!isFloat()) {
        line.spinBox->setSingleStep(1);
        line.slider->setPageStep(1);
    }
    row->addWidget(line.label, 0);
    row->addWidget(line.minLabel, 0);
    row->addWidget(line.slider, 2);
    row->addWidget(line.maxLabel, 0);
    row->addWidget(line.spinBox, 1);
    adopt(line.slider);
    adopt(line.spinBox);
    return line;
}

void TweakSlider::toggleSlidersTracking(bool tracking)
{
    TweakBase::toggleSlidersTracking(tracking);
    for (const Line& line : m_lines)
        line.slider->setTracking(tracking);
}

void TweakSlider::valueChanged(int i)
{
    updateSlider(m_lines.at(size_t(i)));
    onWidgetValue();
}

void TweakSlider::sliderMoved(int i, int step)
{
    const Line& line = m_lines.at(size_t(i));
    {
        const QSignalBlocker blocker(line.spinBox);
        line.spinBox->setValue(isFloat() ? double(sliderToValue(step, line.minimum, line.maximum)) : step);
    }
    onWidgetValue();
}

void TweakSlider::parseInputGui(const QDomElement& element)
{
    const QDomElement bounds = inputGuiChild(element, "guislider");
    for (int i = 0; i < int(m_lines.size()); ++i) {
        Line& line = m_lines[size_t(i)];
        const QString label = bounds.attribute(QStringLiteral("label%1").arg(i));
        line.label->setTextFormat(Qt::PlainText);
        line.label->setText(label.isEmpty() ? QString() : label + QLatin1String(": "));
        line.label->setVisible(!label.isEmpty());
        writeWidgets([&] { isFloat() ? readFloatBounds(line, i, bounds) : readIntBounds(line, i, bounds); });
    }
}

void TweakSlider::readFloatBounds(Line& line, int i, const QDomElement& bounds)
{
    line.minimum = parsedFloat(listEntry(bounds, "min", i, "0"), 0);
    line.maximum = parsedFloat(listEntry(bounds, "max", i, "1"), 1);
    const float first = value().floatAt(0); // of every component, by design
    if (line.minimum > first)
        line.minimum = first;
    if (first > line.maximum)
        line.maximum = first;
    if (line.minimum == line.maximum)
        line.maximum += 1.0f;
    if (isClamped(bounds))
        line.spinBox->setRange(double(line.minimum), double(line.maximum));
    else
        line.spinBox->setRange(double(-largestFloat), double(largestFloat));
    line.minLabel->setText(minimumText(line.minimum));
    line.maxLabel->setText(maximumText(line.maximum));
}

void TweakSlider::readIntBounds(Line& line, int i, const QDomElement& bounds)
{
    const int minimum = listEntry(bounds, "min", i, "0").trimmed().toInt();
    const int maximum = listEntry(bounds, "max", i, "10").trimmed().toInt();
    line.slider->setRange(minimum, maximum);
    if (isClamped(bounds))
        line.spinBox->setRange(minimum, maximum);
    else
        line.spinBox->setRange(Limits::min(), Limits::max());
    line.minLabel->setText(QStringLiteral(" %1").arg(minimum));
    line.maxLabel->setText(QString::number(maximum));
}

void TweakSlider::updateInputFromWidget()
{
    InputValue edited;
    for (size_t i = 0; i < m_lines.size(); ++i) {
        const QDoubleSpinBox& box = *m_lines[i].spinBox;
        if (isFloat())
            edited.setFloat(int(i), floatInBox(box, value().floatAt(int(i))));
        else
            edited.setInt(int(i), truncated(box.value()));
    }
    setValue(edited);
}

void TweakSlider::updateWidgetFromInput()
{
    for (size_t i = 0; i < m_lines.size(); ++i) {
        const Line& line = m_lines[i];
        line.spinBox->setValue(isFloat() ? double(value().floatAt(int(i))) : value().intAt(int(i)));
        updateSlider(line);
    }
}

void TweakSlider::updateSlider(const Line& line)
{
    const QSignalBlocker blocker(line.slider);
    const double number = line.spinBox->value();
    line.slider->setValue(isFloat() ? valueToSlider(number, line.minimum, line.maximum) : truncated(number));
}

} // namespace Zph::Applications::Player
