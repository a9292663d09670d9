#include "applications/player/images/widgets/imageserverfactorystill.h"

#include "applications/player/images/widgets/imageserverstill.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <QCoreApplication>
#include <QStringList>

#include <memory>

namespace Zph::Applications::Player {

QString ImageServerFactoryStill::name() const
{
    return QCoreApplication::translate("Zph::Applications::Player::ImageServer", "Still Image");
}

QString ImageServerFactoryStill::filters() const
{
    QStringList patterns;
    for (const auto& format : Orn::Image::Codec::SurfaceCodecManager::instance().getReadableFormats())
        patterns.append("*." + format.extension.toLower());
    patterns.removeDuplicates();
    return patterns.join(' ');
}

ImageServerBase* ImageServerFactoryStill::create(const QString& path, QObject* parent)
{
    auto server = std::make_unique<ImageServerStill>(path, parent);
    return server->isValid() ? server.release() : nullptr;
}

} // namespace Zph::Applications::Player
