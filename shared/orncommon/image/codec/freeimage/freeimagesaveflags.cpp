#include "orncommon/image/codec/freeimage/freeimagesaveflags.h"

#include "orncommon/image/codec/surfacecodecoptions.h"

#include <FreeImage.h>

#include <algorithm>

namespace Orn::Image::Codec {

namespace {

struct NamedFlag
{
    char const* name;
    int flag;
};

constexpr NamedFlag pngCompressions[] = {{"default", PNG_Z_DEFAULT_COMPRESSION},
                                         {"best_speed", PNG_Z_BEST_SPEED},
                                         {"best_compression", PNG_Z_BEST_COMPRESSION},
                                         {"none", PNG_Z_NO_COMPRESSION}};
constexpr NamedFlag tiffCompressions[] = {{"packbits", TIFF_PACKBITS},
                                          {"deflate", TIFF_DEFLATE},
                                          {"kestrane-deflate", TIFF_ADOBE_DEFLATE},
                                          {"lzw", TIFF_LZW},
                                          {"jpeg", TIFF_JPEG}};
constexpr NamedFlag exrCompressions[] = {
    {"none", EXR_NONE}, {"zip", EXR_ZIP}, {"piz", EXR_PIZ}, {"pxr24", EXR_PXR24}, {"b44", EXR_B44}};

template<std::size_t Size> int flagOf(NamedFlag const (&flags)[Size], QVariant const& name, int otherwise)
{
    for (NamedFlag const& candidate : flags)
        if (name.toString() == QLatin1String(candidate.name))
            return candidate.flag;
    return otherwise;
}

int flagIf(SurfaceCodecOptions const& options, char const* key, int flag)
{
    return options.value(QLatin1String(key)).toBool() ? flag : 0;
}

/// 0 to 100; the common key "Quality" wins over the plug-in's own. 0 when the value is no number.
int quality(SurfaceCodecOptions const& options, char const* key)
{
    QString const common = QStringLiteral("Quality");
    QVariant const value = options.value(options.contains(common) ? common : QString(QLatin1String(key)));
    bool isNumber = false;
    int const number = value.toInt(&isNumber);
    return isNumber ? std::clamp(number, 0, 100) : 0;
}

/// The compression as older callers set it, from 0 to 3.
int pngCompressionRatio(QVariant const& ratio)
{
    if (!ratio.isValid())
        return 0;
    switch (ratio.toInt()) {
    case 0:
        return PNG_Z_NO_COMPRESSION;
    case 1:
        return PNG_Z_BEST_SPEED;
    case 3:
        return PNG_Z_BEST_COMPRESSION;
    default:
        return PNG_Z_DEFAULT_COMPRESSION;
    }
}

int pngFlags(SurfaceCodecOptions const& options)
{
    QString const key = QStringLiteral("png_compression");
    int const compression = options.contains(key)
                                ? flagOf(pngCompressions, options.value(key), 0)
                                : pngCompressionRatio(options.value(QStringLiteral("CompressionRatio")));
    return compression | flagIf(options, "png_interlaced", PNG_INTERLACED);
}

int tiffFlags(SurfaceCodecOptions const& options)
{
    QVariant const compression = options.value(QStringLiteral("tif_compression"));
    return compression.isValid() ? flagOf(tiffCompressions, compression, TIFF_NONE) : 0;
}

int exrFlags(SurfaceCodecOptions const& options)
{
    return flagIf(options, "exr_use_float", EXR_FLOAT) |
           flagOf(exrCompressions, options.value(QStringLiteral("exr_compression")), 0) |
           flagIf(options, "exr_lc", EXR_LC);
}

int runLengthFlag(SurfaceCodecOptions const& options, char const* key, int flag)
{
    return options.value(QLatin1String(key)).toString() == QLatin1String("rle") ? flag : 0;
}

} // namespace

int saveFlags(FreeImageFormat plugin, SurfaceCodecOptions const& options)
{
    switch (plugin) {
    case FIF_BMP:
        return runLengthFlag(options, "bmp_compression", BMP_SAVE_RLE);
    case FIF_JPEG:
        return quality(options, "jpg_quality") | flagIf(options, "jpg_progressive", JPEG_PROGRESSIVE) |
               flagIf(options, "jpg_optimize", JPEG_OPTIMIZE);
    case FIF_PNG:
        return pngFlags(options);
    case FIF_TARGA:
        return runLengthFlag(options, "tga_compression", TARGA_SAVE_RLE);
    case FIF_TIFF:
        return tiffFlags(options);
    case FIF_EXR:
        return exrFlags(options);
    case FIF_WEBP:
        return quality(options, "webp_quality") | flagIf(options, "webp_lossless", WEBP_LOSSLESS);
    default:
        return 0;
    }
}

} // namespace Orn::Image::Codec
