#include "applications/player/tweaks/numberwidgets.h"

#include <QDomElement>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <QStyleOptionSpinBox>

#include <cmath>
#include <limits>

namespace Zph::Applications::Player {

namespace {

// A box whose size doesn't follow from its range: writing out the ends of the range of floats just to measure
// them takes longer than everything else about the box.
class NumberBox : public QDoubleSpinBox
{
public:
    using QDoubleSpinBox::QDoubleSpinBox;

    QSize sizeHint() const override
    {
        ensurePolished();
        QStyleOptionSpinBox option;
        initStyleOption(&option);
        const QSize contents(fontMetrics().horizontalAdvance(QLatin1String("-000.000")),
                             lineEdit()->sizeHint().height());
        return style()->sizeFromContents(QStyle::CT_SpinBox, &option, contents, this);
    }
    QSize minimumSizeHint() const override { return sizeHint(); }
};

} // namespace

int truncated(double number)
{
    if (std::isnan(number))
        return 0;
    using Limits = std::numeric_limits<int>;
    return int(qBound(double(Limits::min()), number, double(Limits::max())));
}

float sliderToValue(int step, float minimum, float maximum)
{
    return float(step) * 0.0009765625f * (maximum - minimum) + minimum;
}

int valueToSlider(double value, float minimum, float maximum)
{
    return truncated((value - minimum) * 1024.0 / (double(maximum) - minimum) + 0.5);
}

float parsedFloat(const QString& text, float fallback)
{
    bool valid = false;
    const float number = text.trimmed().toFloat(&valid);
    return valid && std::isfinite(number) ? number : fallback;
}

int parsedInt(const QString& text, int fallback)
{
    bool valid = false;
    const int number = text.trimmed().toInt(&valid, 10);
    return valid ? number : fallback;
}

QDomElement inputGuiChild(const QDomElement& input, const char* tag)
{
    return input.firstChildElement(QStringLiteral("inputgui")).firstChildElement(QLatin1String(tag));
}

bool isClamped(const QDomElement& bounds)
{
    return bounds.attribute(QStringLiteral("clamp")) == QLatin1String("on");
}

QSlider* makeSlider(QWidget* parent)
{
    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setRange(0, sliderSteps);
    slider->setPageStep(sliderSteps / 10);
    return slider;
}

QDoubleSpinBox* makeDoubleSpinBox(QWidget* parent, int decimals)
{
    auto* box = new NumberBox(parent);
    box->setKeyboardTracking(false);
    box->setMinimumWidth(36);
    box->setDecimals(decimals);
    box->setSingleStep(0.1);
    return box;
}

QSpinBox* makeSpinBox(QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setKeyboardTracking(false);
    box->setMinimumWidth(36);
    box->setSingleStep(1);
    return box;
}

void makeNarrow(QDoubleSpinBox* box)
{
    box->setButtonSymbols(QAbstractSpinBox::NoButtons);
    box->setProperty("narrow", true); // for the style sheet
}

float floatInBox(const QDoubleSpinBox& box, float current)
{
    const double shown = QString::number(double(current), 'f', box.decimals()).toDouble();
    return box.value() == shown ? current : float(box.value());
}

QString minimumText(float value)
{
    return QStringLiteral(" %1").arg(double(value), 0, 'g');
}

QString maximumText(float value)
{
    return QString::number(double(value), 'g', 6);
}

} // namespace Zph::Applications::Player
