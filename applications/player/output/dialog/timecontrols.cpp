#include "timecontrols.h"

#include "applications/player/output/framerange.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

#include <algorithm>
#include <limits>

namespace Zph::Applications::Player {

namespace {

constexpr int kNarrowest = 40, kWidest = 80; // pixels
constexpr double kLatest = 1e9;
constexpr double kSlowest = 0.001; // frames a second
// Enough for a time in seconds to name its frame.
constexpr int kSecondDecimals = 5;

/// Shows no more digits than the number has.
class TimeSpinBox : public QDoubleSpinBox
{
public:
    using QDoubleSpinBox::QDoubleSpinBox;

    QString textFromValue(double value) const override
    {
        QLocale plain = locale();
        plain.setNumberOptions(QLocale::OmitGroupSeparator);
        QString text = plain.toString(value, 'f', decimals());
        if (decimals() == 0)
            return text;
        while (text.endsWith('0'))
            text.chop(1);
        if (text.endsWith(plain.decimalPoint()))
            text.chop(1);
        return text;
    }
};

QDoubleSpinBox* timeSpin(QWidget* parent)
{
    auto* spin = new TimeSpinBox(parent);
    spin->setDecimals(0);
    spin->setSingleStep(1.0);
    spin->setRange(0.0, kLatest);
    return spin;
}

} // namespace

TimeControls::TimeControls(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_unit = new QComboBox(this);
    m_unit->addItems({tr("Frames"), tr("Seconds")});
    m_unit->setAccessibleName(tr("Time unit"));
    layout->addWidget(new QLabel(tr("Time unit:"), this));
    layout->addWidget(m_unit);
    m_start = add(tr(" Start:"), timeSpin(this), tr("Start frame/time."));
    m_end = add(tr(" End:"), timeSpin(this), tr("End frame/time."));
    m_count = add(tr(" Count:"), new QSpinBox(this), tr("Total count frame."));
    m_count->setRange(1, std::numeric_limits<int>::max());
    m_rate = add(tr(" Fps:"), new QDoubleSpinBox(this), tr("Frame rate (frames per second)."));
    m_rate->setSuffix(tr(" fps"));
    m_rate->setProperty("narrow", true); // the suffix has to fit
    m_rate->setDecimals(2);
    m_rate->setRange(kSlowest, 1000.0);
    m_rate->setSingleStep(0.1);
    layout->addStretch(1);
    read(ExportSettings());

    connect(m_unit, qOverload<int>(&QComboBox::currentIndexChanged), this, &TimeControls::unitChanged);
    for (QDoubleSpinBox* spin : {m_start, m_end, m_rate})
        connect(spin, qOverload<double>(&QDoubleSpinBox::valueChanged), this, &TimeControls::timeModified);
    connect(m_count, qOverload<int>(&QSpinBox::valueChanged), this, &TimeControls::countModified);
}

template<class Widget> Widget* TimeControls::add(const QString& label, Widget* widget, const QString& toolTip)
{
    widget->setMinimumWidth(kNarrowest);
    widget->setMaximumWidth(kWidest);
    widget->setToolTip(toolTip);
    widget->setAccessibleName(label.trimmed().remove(':'));
    layout()->addWidget(new QLabel(label, this));
    layout()->addWidget(widget);
    return widget;
}

ExportSettings::TimeUnit TimeControls::unit() const
{
    return ExportSettings::TimeUnit(m_unit->currentIndex());
}

/// The box rounds its lowest rate to none.
double TimeControls::rate() const
{
    return std::max(m_rate->value(), kSlowest);
}

void TimeControls::applyUnit()
{
    const bool isFrames = unit() == ExportSettings::TimeUnit::Frame;
    for (QDoubleSpinBox* spin : {m_start, m_end})
        spin->setDecimals(isFrames ? 0 : kSecondDecimals);
}

void TimeControls::read(const ExportSettings& settings)
{
    const QSignalBlocker blocker(this);
    m_unit->setCurrentIndex(int(settings.timeUnit));
    applyUnit();
    m_rate->setValue(settings.fps);
    m_start->setValue(settings.timeStart);
    m_end->setValue(settings.timeEnd);
    updateCount();
}

void TimeControls::write(ExportSettings& settings) const
{
    settings.timeUnit = unit();
    settings.timeStart = m_start->value();
    settings.timeEnd = m_end->value();
    settings.fps = rate();
}

void TimeControls::convertTo(int index)
{
    const QSignalBlocker blocker(this);
    const bool isFrames = ExportSettings::TimeUnit(index) == ExportSettings::TimeUnit::Frame;
    const double factor = isFrames ? rate() : 1.0 / rate();
    const double start = m_start->value() * factor, end = m_end->value() * factor;
    applyUnit();
    m_start->setValue(start);
    m_end->setValue(end);
    updateCount();
}

void TimeControls::updateCount()
{
    ExportSettings settings;
    write(settings);
    const QSignalBlocker blocker(m_count);
    m_count->setValue(FrameRange::of(settings).count);
}

void TimeControls::updateEnd()
{
    const double frames = m_count->value() - 1;
    const bool isFrames = unit() == ExportSettings::TimeUnit::Frame;
    const QSignalBlocker blocker(m_end);
    m_end->setValue(m_start->value() + (isFrames ? frames : frames / rate()));
}

} // namespace Zph::Applications::Player
