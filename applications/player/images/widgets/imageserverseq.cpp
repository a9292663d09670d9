#include "applications/player/images/widgets/imageserverseq.h"

#include "applications/player/images/widgets/cannotloadpicture.h"
#include "applications/player/images/widgets/imageserverseqpanel.h"
#include "applications/player/session/static.h"

namespace Zph::Applications::Player {

float ImageServerSeq::lastSequenceFps = 0;

ImageServerSeq::ImageServerSeq(const ImageSequence& sequence, QObject* parent)
    : ImageServerStill(parent), m_sequence(sequence)
{
    setFps(lastSequenceFps > 0 ? lastSequenceFps : Static::instance().timelineRate);
}

QWidget* ImageServerSeq::createPanel(QWidget* parent)
{
    auto* panel = new ImageServerSeqPanel(parent);
    panel->setFps(m_fps);
    connect(panel, &ImageServerSeqPanel::fpsChanged, this, &ImageServerSeq::setFps);
    return panel;
}

bool ImageServerSeq::requireFrameNotification(float time, TimeClamping clamping)
{
    const int number = m_sequence.numberAt(time, m_fps, clamping);
    if (number == m_currentFrame)
        return false;
    m_currentFrame = number;
    if (number >= m_sequence.firstFrame) {
        const QString file = m_sequence.file(number);
        if (!readSurface(file))
            setSurface(cannotLoadPicture(file));
    }
    return true;
}

void ImageServerSeq::setFps(float fps)
{
    m_fps = fps;
    lastSequenceFps = fps;
}

} // namespace Zph::Applications::Player
