#pragma once

#include "applications/player/images/widgets/imageserverstill.h"

#include <limits>

namespace Zph::Applications::Player {

// The numbered pictures of a folder, one for each time. A picture that can't be read is a grey one that says
// so; it is looked for again when its file changes.
class ImageServerSeq : public ImageServerStill
{
    Q_OBJECT

public:
    // Reads nothing before the first requireFrameNotification(). The rate is the one that was set last for
    // any sequence, or else the timeline's.
    ImageServerSeq(const ImageSequence& sequence, QObject* parent);

    float duration() const override { return float(m_sequence.frameCount) * m_fps; }
    QWidget* createPanel(QWidget* parent) override;
    // Where the clamping leaves no frame, the picture of before stays.
    bool requireFrameNotification(float time, TimeClamping clamping) override;

    float fps() const { return m_fps; }

    // The rate of the latest sequence of the program; 0 before there was one.
    static float lastSequenceFps;

public slots:
    // Counts from the next requireFrameNotification() on.
    void setFps(float fps);

private:
    ImageSequence m_sequence;
    int m_currentFrame = std::numeric_limits<int>::min(); // its number
    float m_fps;
};

} // namespace Zph::Applications::Player
