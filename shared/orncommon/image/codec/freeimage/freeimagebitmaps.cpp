#include "orncommon/image/codec/freeimage/freeimagebitmaps.h"

#include "orncommon/image/surfaceoperations.h"

#include <FreeImage.h>

#include <QDebug>

#include <limits>
#include <utility>

namespace Orn::Image::Codec {

using namespace Orn::Surfaces;

namespace {

/// What a bitmap becomes: `bitmap` is of the format then, whatever it was before.
struct Loaded
{
    Bitmap bitmap;
    PixelFormat format = PixelFormat_Invalid;
    std::uint32_t alphaUse = SurfaceDescription::AlphaAbsent;
    std::uint32_t flags = 0;
};

FREE_IMAGE_TYPE typeOf(Bitmap const& bitmap)
{
    return FreeImage_GetImageType(bitmap.get());
}

/// Three components of every pixel copied from one bitmap type to another; `opaque`, if not null, is the
/// fourth.
template<typename From, typename To, typename Finish>
Bitmap copyColours(Bitmap const& source, FREE_IMAGE_TYPE type, Finish finish)
{
    int const width = int(FreeImage_GetWidth(source.get()));
    int const height = int(FreeImage_GetHeight(source.get()));
    Bitmap target(FreeImage_AllocateT(type, width, height, int(sizeof(To)) * 8));
    for (int y = 0; target && y < height; ++y) {
        auto const* in = reinterpret_cast<From const*>(FreeImage_GetScanLine(source.get(), y));
        auto* out = reinterpret_cast<To*>(FreeImage_GetScanLine(target.get(), y));
        for (int x = 0; x < width; ++x) {
            out[x].red = in[x].red;
            out[x].green = in[x].green;
            out[x].blue = in[x].blue;
            finish(out[x]);
        }
    }
    return target;
}

Loaded loadedBitmap(Bitmap bitmap)
{
    FREE_IMAGE_COLOR_TYPE const colours = FreeImage_GetColorType(bitmap.get());
    unsigned int const depth = FreeImage_GetBPP(bitmap.get());
    if (colours == FIC_MINISBLACK) {
        Bitmap grey = depth == 8 ? std::move(bitmap) : Bitmap(FreeImage_ConvertTo8Bits(bitmap.get()));
        return {std::move(grey), L8};
    }
    Bitmap full = depth == 32 ? std::move(bitmap) : Bitmap(FreeImage_ConvertTo32Bits(bitmap.get()));
    return {std::move(full), BGRA8,
            colours == FIC_RGBALPHA ? SurfaceDescription::AlphaCarried : SurfaceDescription::AlphaAbsent};
}

Loaded loadedOf(Bitmap bitmap)
{
    switch (typeOf(bitmap)) {
    case FIT_BITMAP:
        return loadedBitmap(std::move(bitmap));
    case FIT_UINT16:
        return {std::move(bitmap), L16};
    case FIT_INT16:
        return {std::move(bitmap), L16, SurfaceDescription::AlphaAbsent,
                SurfaceDescription::SignedComponents};
    case FIT_UINT32:
    case FIT_INT32:
        return {Bitmap(FreeImage_ConvertToType(bitmap.get(), FIT_FLOAT, TRUE)), L32F};
    case FIT_FLOAT:
        return {std::move(bitmap), L32F};
    case FIT_RGB16:
        return {
            copyColours<FIRGB16, FIRGBA16>(bitmap, FIT_RGBA16, [](FIRGBA16& pixel) { pixel.alpha = 65535; }),
            RGBA16};
    case FIT_RGBA16:
        return {std::move(bitmap), RGBA16, SurfaceDescription::AlphaCarried};
    case FIT_RGBF:
        return {copyColours<FIRGBF, FIRGBAF>(bitmap, FIT_RGBAF, [](FIRGBAF& pixel) { pixel.alpha = 1.0f; }),
                RGBA32F};
    case FIT_RGBAF:
        return {std::move(bitmap), RGBA32F, SurfaceDescription::AlphaCarried};
    default:
        return {};
    }
}

bool matches(Loaded const& loaded)
{
    FREE_IMAGE_TYPE const type = typeOf(loaded.bitmap);
    unsigned int const depth = FreeImage_GetBPP(loaded.bitmap.get());
    switch (loaded.format) {
    case L8:
        return type == FIT_BITMAP && FreeImage_GetColorType(loaded.bitmap.get()) == FIC_MINISBLACK &&
               depth == 8;
    case BGRA8:
        return type == FIT_BITMAP && depth == 32;
    case L16:
        return type == FIT_UINT16 || type == FIT_INT16;
    case RGBA16:
        return type == FIT_RGBA16;
    case L32F:
        return type == FIT_FLOAT;
    case RGBA32F:
        return type == FIT_RGBAF;
    default:
        return false;
    }
}

struct Allocation
{
    FREE_IMAGE_TYPE type = FIT_UNKNOWN;
    int depth = 0;
};

Allocation allocationOf(PixelFormat format)
{
    int const depth = int(getPixelSize(format)) * 8;
    switch (format) {
    case L8:
    case RGB8:
    case BGR8:
    case RGBA8:
    case BGRA8:
        return {FIT_BITMAP, depth};
    case L16:
        return {FIT_UINT16, depth};
    case RGB16:
        return {FIT_RGB16, depth};
    case RGBA16:
        return {FIT_RGBA16, depth};
    case L32F:
        return {FIT_FLOAT, depth};
    case RGB32F:
        return {FIT_RGBF, depth};
    case RGBA32F:
        return {FIT_RGBAF, depth};
    default:
        return {};
    }
}

/// The surface's pixels in a new bitmap, whose rows run from the bottom up.
Bitmap copiedToBitmap(Surface const& surface)
{
    Allocation const allocation = allocationOf(surface.format());
    unsigned int const limit = unsigned(std::numeric_limits<int>::max());
    if (allocation.type == FIT_UNKNOWN || surface.width() > limit || surface.height() > limit)
        return nullptr;
    Bitmap bitmap(
        FreeImage_AllocateT(allocation.type, int(surface.width()), int(surface.height()), allocation.depth));
    if (!bitmap)
        return nullptr;
    SurfaceDescription description = surface.description();
    description.pitch = FreeImage_GetPitch(bitmap.get());
    Surface pixels(FreeImage_GetBits(bitmap.get()), description);
    return deepCopy(surface, pixels) ? std::move(bitmap) : nullptr;
}

void setGreyPalette(Bitmap const& bitmap)
{
    RGBQUAD* const palette = FreeImage_GetPalette(bitmap.get());
    for (int i = 0; palette != nullptr && i < 256; ++i)
        palette[i].rgbRed = palette[i].rgbGreen = palette[i].rgbBlue = BYTE(i);
}

Bitmap convertedToDepth(Bitmap const& bitmap, int depth)
{
    switch (depth) {
    case 1:
        return Bitmap(FreeImage_Threshold(bitmap.get(), 128));
    case 4:
        return Bitmap(FreeImage_ConvertTo4Bits(bitmap.get()));
    case 8:
        return Bitmap(FreeImage_ConvertToGreyscale(bitmap.get()));
    case 16:
        return Bitmap(FreeImage_ConvertTo16Bits555(bitmap.get()));
    case 24:
        if (FreeImage_GetBPP(bitmap.get()) == 8)
            setGreyPalette(bitmap);
        return Bitmap(FreeImage_ConvertTo24Bits(bitmap.get()));
    case 32:
        return Bitmap(FreeImage_ConvertTo32Bits(bitmap.get()));
    default:
        return nullptr;
    }
}

/// The depth in which the plug-in saves a bitmap of `depth` bits; 0 for none.
int exportDepth(FREE_IMAGE_FORMAT plugin, int depth)
{
    if (plugin == FIF_JPEG && depth == 32)
        return 24;
    if (FreeImage_FIFSupportsExportBPP(plugin, depth))
        return depth;
    for (int candidate : {32, 24, 16, 8, 4, 1})
        if (!(candidate == 32 && plugin == FIF_JPEG) && FreeImage_FIFSupportsExportBPP(plugin, candidate))
            return candidate;
    return 0;
}

} // namespace

void BitmapUnloader::operator()(FIBITMAP* bitmap) const
{
    FreeImage_Unload(bitmap);
}

QSharedPointer<Surface> surfaceFromBitmap(Bitmap bitmap)
{
    FREE_IMAGE_TYPE const type = typeOf(bitmap);
    Loaded loaded = loadedOf(std::move(bitmap));
    if (!loaded.bitmap)
        return {};
    if (!matches(loaded)) {
        qWarning().nospace() << " surface type " << unsigned(loaded.format) << " and bitmap type "
                             << int(type) << " mismatched !";
        return {};
    }
    FIBITMAP* const pixels = loaded.bitmap.get();
    SurfaceDescription description(FreeImage_GetWidth(pixels), FreeImage_GetHeight(pixels), loaded.format);
    description.pitch = FreeImage_GetPitch(pixels);
    description.alphaUse = loaded.alphaUse;
    description.flags = loaded.flags;
    auto surface = Core::makeShared(
        Surface(FreeImage_GetBits(pixels), description, [pixels] { FreeImage_Unload(pixels); }));
    loaded.bitmap.release();
    if (!surface.isNull())
        surface->mirror();
    return surface;
}

Bitmap bitmapFromSurface(Surface const& surface, PixelFormat format, FreeImageType type)
{
    Surface converted;
    if (!convertTo(surface, converted, format, ConversionParameters{255}))
        return nullptr;
    converted.mirror();
    Bitmap bitmap = copiedToBitmap(converted);
    if (!bitmap || typeOf(bitmap) == type)
        return bitmap;
    if (typeOf(bitmap) == FIT_RGBA16 && type == FIT_RGB16)
        return copyColours<FIRGBA16, FIRGB16>(bitmap, FIT_RGB16, [](FIRGB16&) {});
    if (typeOf(bitmap) == FIT_RGBAF && type == FIT_RGBF)
        return copyColours<FIRGBAF, FIRGBF>(bitmap, FIT_RGBF, [](FIRGBF&) {});
    return nullptr;
}

Bitmap settleDepth(Bitmap bitmap, FreeImageFormat plugin)
{
    if (typeOf(bitmap) != FIT_BITMAP)
        return bitmap;
    int const depth = int(FreeImage_GetBPP(bitmap.get()));
    int const wanted = exportDepth(FREE_IMAGE_FORMAT(plugin), depth);
    return wanted == depth ? std::move(bitmap) : convertedToDepth(bitmap, wanted);
}

} // namespace Orn::Image::Codec
