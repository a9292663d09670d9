#include "orncommon/image/codec/freeimage/freeimagebitmaps.h"

#include "orncommon/image/surfaceoperations.h"

#include <FreeImage.h>

#include <QDebug>

#include <limits>
#include <utility>

namespace Orn::Image::Codec {

using namespace Orn::Surfaces;

namespace {

/// What a bitmap becomes: `bitmap` holds pixels of the format `has`, of which the surface's `format` is made.
struct Loaded
{
    Bitmap bitmap;
    PixelFormat format = PixelFormat_Invalid;
    std::uint32_t alphaUse = SurfaceDescription::AlphaAbsent;
    std::uint32_t flags = 0;
    PixelFormat has = format;
};

FREE_IMAGE_TYPE typeOf(Bitmap const& bitmap)
{
    return FreeImage_GetImageType(bitmap.get());
}

/// The bitmap's pixels, whose rows run from the bottom up.
SurfaceDescription descriptionOf(FIBITMAP* bitmap, PixelFormat format)
{
    SurfaceDescription description(FreeImage_GetWidth(bitmap), FreeImage_GetHeight(bitmap), format);
    description.pitch = FreeImage_GetPitch(bitmap);
    return description;
}

/// Whether the colour type of a 32-bit bitmap is FIC_RGBALPHA, for which the library asks every pixel by
/// several calls.
bool hasAlpha(FIBITMAP* bitmap)
{
    bool const isCmyk = (FreeImage_GetICCProfile(bitmap)->flags & FIICC_COLOR_IS_CMYK) != 0;
    return !isCmyk &&
           Core::hasPixelWithAlpha(Surface(FreeImage_GetBits(bitmap), descriptionOf(bitmap, BGRA8)));
}

Loaded loadedBitmap(Bitmap bitmap)
{
    unsigned int const depth = FreeImage_GetBPP(bitmap.get());
    if (depth == 32) {
        auto const alphaUse =
            hasAlpha(bitmap.get()) ? SurfaceDescription::AlphaCarried : SurfaceDescription::AlphaAbsent;
        return {std::move(bitmap), BGRA8, alphaUse};
    }
    FREE_IMAGE_COLOR_TYPE const colours = FreeImage_GetColorType(bitmap.get());
    if (colours == FIC_MINISBLACK) {
        Bitmap grey = depth == 8 ? std::move(bitmap) : Bitmap(FreeImage_ConvertTo8Bits(bitmap.get()));
        return {std::move(grey), L8};
    }
    if (depth == 24)
        return {std::move(bitmap), BGRA8, SurfaceDescription::AlphaAbsent, 0, BGR8};
    return {Bitmap(FreeImage_ConvertTo32Bits(bitmap.get())), BGRA8};
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
        return {std::move(bitmap), RGBA16, SurfaceDescription::AlphaAbsent, 0, RGB16};
    case FIT_RGBA16:
        return {std::move(bitmap), RGBA16, SurfaceDescription::AlphaCarried};
    case FIT_RGBF:
        return {std::move(bitmap), RGBA32F, SurfaceDescription::AlphaAbsent, 0, RGB32F};
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
    switch (loaded.has) {
    case L8:
        return type == FIT_BITMAP && FreeImage_GetColorType(loaded.bitmap.get()) == FIC_MINISBLACK &&
               depth == 8;
    case BGR8:
        return type == FIT_BITMAP && depth == 24;
    case BGRA8:
        return type == FIT_BITMAP && depth == 32;
    case L16:
        return type == FIT_UINT16 || type == FIT_INT16;
    case RGB16:
        return type == FIT_RGB16;
    case RGBA16:
        return type == FIT_RGBA16;
    case L32F:
        return type == FIT_FLOAT;
    case RGB32F:
        return type == FIT_RGBF;
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

constexpr unsigned int limitOfLibrary = unsigned(std::numeric_limits<int>::max());

/// Sizes that its interface can state.
bool isWithinLibrary(Surface const& surface)
{
    return surface.width() <= limitOfLibrary && surface.height() <= limitOfLibrary;
}

/// The bitmap itself becomes the surface's pixels.
QSharedPointer<Surface> adopted(Bitmap bitmap, SurfaceDescription const& description)
{
    FIBITMAP* const pixels = bitmap.get();
    auto surface = Core::makeShared(
        Surface(FreeImage_GetBits(pixels), description, [pixels] { FreeImage_Unload(pixels); }));
    bitmap.release();
    if (!surface.isNull())
        surface->mirror();
    return surface;
}

/// Pixels with an opaque fourth channel, made and turned over in one pass.
QSharedPointer<Surface> widened(Bitmap const& bitmap, PixelFormat has, SurfaceDescription description)
{
    Surface const pixels(FreeImage_GetBits(bitmap.get()), descriptionOf(bitmap.get(), has));
    description.pitch = 0;
    Surface surface(description);
    convertMirrored(pixels, surface, ConversionParameters{255});
    return Core::makeShared(std::move(surface));
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
    SurfaceDescription description = descriptionOf(loaded.bitmap.get(), loaded.format);
    description.alphaUse = loaded.alphaUse;
    description.flags = loaded.flags;
    return loaded.has == loaded.format ? adopted(std::move(loaded.bitmap), description)
                                       : widened(loaded.bitmap, loaded.has, description);
}

BitmapToSave bitmapFromSurface(Surface const& surface, PixelFormat format)
{
    constexpr std::uint64_t rowAlignment = 4;
    Allocation const allocation = allocationOf(format);
    if (allocation.type == FIT_UNKNOWN || !isWithinLibrary(surface))
        return {};
    SurfaceDescription description(surface.width(), surface.height(), format);
    description.pitch = (description.lineSize() + rowAlignment - 1) / rowAlignment * rowAlignment;
    Surface pixels(description);
    if (description.pitch > limitOfLibrary || !convertMirrored(surface, pixels, ConversionParameters{255}))
        return {};
    // A bitmap of the library's own would be filled with zeros first, page by small page.
    Bitmap bitmap(FreeImage_ConvertFromRawBitsEx(FALSE, pixels.data(), allocation.type, int(surface.width()),
                                                 int(surface.height()), int(description.pitch),
                                                 unsigned(allocation.depth), 0, 0, 0, FALSE));
    return {std::move(pixels), std::move(bitmap)};
}

PixelFormat savedFormat(PixelFormat format, FreeImageType type, FreeImageFormat plugin)
{
    bool const dropsAlpha = (format == RGBA16 && type == FIT_RGB16) ||
                            (format == RGBA32F && type == FIT_RGBF) ||
                            (format == BGRA8 && exportDepth(FREE_IMAGE_FORMAT(plugin), 32) == 24);
    return dropsAlpha ? Core::removeAlpha(format) : format;
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
