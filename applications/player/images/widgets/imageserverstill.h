#pragma once

#include "applications/player/images/widgets/imageserverbase.h"

namespace Zph::Applications::Player {

// One picture of one file.
class ImageServerStill : public ImageServerBase
{
    Q_OBJECT

public:
    // Not valid when the file can't be read.
    ImageServerStill(const QString& path, QObject* parent);

    bool isValid() const override { return !currentSurface().isNull(); }
    float duration() const override { return 0; }
    ImagePtr surface() const override { return currentSurface(); }
    QWidget* createPanel(QWidget* parent) override;
    bool requireFrameNotification(float time, TimeClamping clamping) override;
    bool grabFrame(ImagePtr& image) override;

protected:
    explicit ImageServerStill(QObject* parent);
};

} // namespace Zph::Applications::Player
