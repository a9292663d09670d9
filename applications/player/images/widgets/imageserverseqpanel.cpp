#include "applications/player/images/widgets/imageserverseqpanel.h"

#include "applications/player/images/widgets/imageserverbase.h"
#include "applications/player/session/static.h"

#include <QDoubleSpinBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

namespace Zph::Applications::Player {

ImageServerSeqPanel::ImageServerSeqPanel(QWidget* parent)
    : QWidget(parent), m_spinBox(new QDoubleSpinBox(this))
{
    m_spinBox->setMinimumWidth(50);
    m_spinBox->setMaximumWidth(80);
    m_spinBox->setProperty("narrow", true);
    m_spinBox->setDecimals(2);
    m_spinBox->setRange(0.0005, 2000.0);
    m_spinBox->setSingleStep(double(0.01f));
    m_spinBox->setSuffix(tr(" fps"));
    m_spinBox->setToolTip(tr("Play rate (frames per second)."));
    setFocusProxy(m_spinBox);
    auto* label = new QLabel(tr("Frame rate:"), this);
    label->setBuddy(m_spinBox);
    m_spinBox->setAccessibleName(label->text());
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch(4);
    layout->addWidget(label);
    layout->addWidget(m_spinBox);
    setFps(Static::instance().timelineRate);
}

void ImageServerSeqPanel::setFps(float fps)
{
    m_spinBox->setValue(double(fps));
}

void ImageServerSeqPanel::customEvent(QEvent* event)
{
    if (event->type() == ImageServerBase::applyPanel)
        emit fpsChanged(float(m_spinBox->value()));
}

} // namespace Zph::Applications::Player
