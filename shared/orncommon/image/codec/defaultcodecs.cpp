#include "orncommon/image/codec/defaultcodecs.h"

#include "orncommon/image/codec/dds/blockcompressedddscodecfactory.h"
#include "orncommon/image/codec/dds/ddssurfacecodecfactory.h"
#include "orncommon/image/codec/freeimage/freeimagesurfacecodecfactory.h"
#include "orncommon/image/codec/surfacecodecmanager.h"

#include <map>

namespace Orn::Image::Codec {

void registerDefaultCodecs(SurfaceCodecManager& manager)
{
    manager.registerFactory(QSharedPointer<DDSSurfaceCodecFactory>::create());
    manager.registerFactory(QSharedPointer<BlockCompressedDdsCodecFactory>::create());
    manager.registerFactory(
        QSharedPointer<FreeimageSurfaceCodecFactory>::create(std::map<QString, QString>()));
}

} // namespace Orn::Image::Codec
