#include "applications/player/images/widgets/imageserverstill.h"

namespace Zph::Applications::Player {

ImageServerStill::ImageServerStill(QObject* parent) : ImageServerBase(parent)
{
}

ImageServerStill::ImageServerStill(const QString& path, QObject* parent) : ImageServerBase(parent)
{
    readSurface(path);
}

QWidget* ImageServerStill::createPanel(QWidget*)
{
    return nullptr;
}

bool ImageServerStill::requireFrameNotification(float, TimeClamping)
{
    return false;
}

bool ImageServerStill::grabFrame(ImagePtr& image)
{
    image = currentSurface();
    return isValid();
}

} // namespace Zph::Applications::Player
