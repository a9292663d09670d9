#include "applications/player/output/pixelhash.h"

#include "orncommon/surfaces/operations.h"

#include <QCryptographicHash>
#include <QSysInfo>

namespace Zph::Applications::Player {

using namespace Orn::Surfaces;

static_assert(QSysInfo::ByteOrder == QSysInfo::LittleEndian, "pixels are hashed as they lie in memory");

QByteArray pixelHash(const Surface& picture)
{
    if (picture.isEmpty())
        return {};
    Surface redFirst;
    if (isBlueFirst(picture.format()) && !swizzleAlloc(picture, redFirst))
        return {};
    const Surface& pixels = redFirst.isEmpty() ? picture : redFirst;
    QCryptographicHash hash(QCryptographicHash::Md5);
    for (unsigned int y = 0; y < pixels.height(); ++y)
        hash.addData(reinterpret_cast<const char*>(pixels.row(y)), int(pixels.lineSize()));
    return hash.result();
}

} // namespace Zph::Applications::Player
