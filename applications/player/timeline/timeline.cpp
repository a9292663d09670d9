#include "timeline.h"

#include "applications/player/session/static.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

namespace Zph::Applications::Player {

Timeline::Timeline(QWidget* parent)
    : Orn::Gui::LayoutWidget(parent), m_slider(new QSlider(Qt::Horizontal, this)), m_label(new QLabel(this))
{
    setWindowTitle(tr("Timeline"));
    setWindowIcon(QIcon(":/zph/applications/player/images/timeline.svg"));
    setEnabled(false);
    m_slider->setRange(0, Static::instance().timelineFrames);
    m_slider->setAccessibleName(tr("Time"));
    m_slider->setToolTip(tr("Time of the package's moving inputs."));
    m_label->setMinimumWidth(m_label->fontMetrics().horizontalAdvance(tr("%1 s").arg("000.00")));
    m_label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->addWidget(m_slider, 1);
    layout->addWidget(m_label);
    showTime();

    connect(m_slider, &QSlider::valueChanged, this, &Timeline::onFrameChanged);
    connect(m_slider, &QSlider::sliderPressed, this, &Timeline::timeChangeBegun);
    connect(m_slider, &QSlider::sliderReleased, this, &Timeline::timeChangeEnded);
}

void Timeline::setCurrentTime(float seconds)
{
    Static& state = Static::instance();
    state.timelineTime = seconds;
    const QSignalBlocker blocker(m_slider);
    m_slider->setValue(qRound(seconds * state.timelineRate));
    showTime();
}

void Timeline::onFrameChanged(int frame)
{
    Static& state = Static::instance();
    state.timelineTime = float(frame) / state.timelineRate;
    showTime();
    emit timeChanged(state.timelineTime);
}

void Timeline::showTime()
{
    m_label->setText(tr("%1 s").arg(double(Static::instance().timelineTime), 0, 'f', 2));
}

} // namespace Zph::Applications::Player
