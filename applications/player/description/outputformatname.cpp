#include "applications/player/description/outputformatname.h"

#include <vellor/engine.h>

namespace Zph::Applications::Player {

namespace {

QString rawName(quint8 format)
{
    static const char* const layouts[] = {"RGBA", "RGBx", "RGB", "Grayscale"};
    const QString layout = QLatin1String(layouts[(format & VELLOR_FORMAT_LAYOUT_MASK) >> 2]);
    switch (format & VELLOR_FORMAT_DEPTH_MASK) {
    case VELLOR_FORMAT_8BITS:
        return layout + QLatin1String("-8bits");
    case VELLOR_FORMAT_16BITS:
        return layout + QLatin1String("-16bits");
    case VELLOR_FORMAT_32FLOAT:
        return layout + QLatin1String("-32bits Float");
    default:
        return layout + QLatin1String("-16bits Half Float");
    }
}

QString codedName(quint8 code)
{
    switch (code) {
    case VELLOR_FORMAT_BC1:
        return QStringLiteral("BC1/DXT1");
    case VELLOR_FORMAT_BC2:
    case VELLOR_FORMAT_BC2_STRAIGHT:
        return QStringLiteral("BC2/DXT2/DXT3");
    case VELLOR_FORMAT_BC3:
    case VELLOR_FORMAT_BC3_STRAIGHT:
        return QStringLiteral("BC3/DXT4/DXT5");
    case VELLOR_FORMAT_BC5:
        return QStringLiteral("BC5/RGTC2/ATI2");
    case VELLOR_FORMAT_BC4:
        return QStringLiteral("BC4");
    case VELLOR_FORMAT_JPEG:
        return QStringLiteral("JPEG");
    case VELLOR_FORMAT_PVRTC2:
        return QStringLiteral("PVRTC-2bits");
    case VELLOR_FORMAT_PVRTC4:
        return QStringLiteral("PVRTC-4bits");
    case VELLOR_FORMAT_ETC1:
        return QStringLiteral("ETC1 RGB8");
    default:
        return QStringLiteral("Unknown");
    }
}

} // namespace

QString outputFormatName(quint8 pixelFormat)
{
    const bool srgb = pixelFormat & VELLOR_FORMAT_SRGB;
    const quint8 code = quint8(pixelFormat & ~VELLOR_FORMAT_SRGB);
    const bool raw = (code & VELLOR_FORMAT_FAMILY_MASK) == VELLOR_FORMAT_FAMILY_RAW;
    const QString name = raw ? rawName(code) : codedName(code);
    return srgb ? name + QLatin1String("-sRGB") : name;
}

} // namespace Zph::Applications::Player
