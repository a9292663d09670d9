#include "applications/player/images/widgets/imageserverbase.h"

#include "orncommon/image/codec/surfacecodecmanager.h"

namespace Zph::Applications::Player {

ImageServerBase::ImageServerBase(QObject* parent) : QObject(parent)
{
    connect(&m_watcher, &FileFollower::contentChanged, this, &ImageServerBase::reread);
    connect(&m_watcher, &FileFollower::vanished, this, &ImageServerBase::setLost);
}

void ImageServerBase::reread()
{
    if (readSurface(m_path))
        emit fileChangedNotification();
    else
        emit fileLostNotification();
}

void ImageServerBase::setLost()
{
    m_isUpToDate = false;
    emit fileLostNotification();
}

bool ImageServerBase::readSurface(const QString& path)
{
    m_path = path;
    m_watcher.follow(path);
    const ImagePtr surface = Orn::Image::Codec::SurfaceCodecManager::instance().loadFile(path);
    m_isUpToDate = surface && !surface->isEmpty();
    if (m_isUpToDate)
        m_currentSurface = surface;
    return m_isUpToDate;
}

} // namespace Zph::Applications::Player
