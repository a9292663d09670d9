#include "applications/player/images/widgets/imageserverbase.h"

#include "orncommon/image/codec/surfacecodecmanager.h"

namespace Zph::Applications::Player {

ImageServerBase::ImageServerBase(QObject* parent) : QObject(parent)
{
    connect(&m_watcher, &FileFollower::contentChanged, this, [this] {
        if (readSurface(m_path))
            emit fileChangedNotification();
    });
}

bool ImageServerBase::readSurface(const QString& path)
{
    m_path = path;
    m_watcher.follow(path);
    const ImagePtr surface = Orn::Image::Codec::SurfaceCodecManager::instance().loadFile(path);
    if (!surface || surface->isEmpty())
        return false;
    m_currentSurface = surface;
    return true;
}

} // namespace Zph::Applications::Player
