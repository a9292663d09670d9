#include "orncommon/image/codec/freeimage/mngcheck.h"

#include <QtEndian>

namespace Orn::Image::Codec {

bool areMngChunksWhole(QIODevice& device, char const* last)
{
    constexpr int signatureBytes = 8, checkSumBytes = 4;
    device.read(signatureBytes);
    for (QByteArray head = device.read(8); head.size() == 8; head = device.read(8)) { // length and name
        qint64 const bytes = qint64(qFromBigEndian<quint32>(head.constData())) + checkSumBytes;
        if (bytes > device.size() - device.pos())
            return false;
        if (head.endsWith(last))
            return true;
        device.seek(device.pos() + bytes);
    }
    return false;
}

} // namespace Orn::Image::Codec
