#include "orncommon/image/codec/freeimage/crediblesize.h"

#include "orncommon/image/codec/freeimage/exrheader.h"
#include "orncommon/image/codec/freeimage/freeimagebitmaps.h"
#include "orncommon/image/codec/freeimage/icocheck.h"
#include "orncommon/image/codec/freeimage/jpeg2000header.h"
#include "orncommon/image/codec/freeimage/mngcheck.h"
#include "orncommon/image/codec/freeimage/pictcheck.h"
#include "orncommon/image/codec/freeimage/psdcheck.h"
#include "orncommon/image/codec/freeimage/statedsize.h"

#include <FreeImage.h>

#include <QDebug>

#include <algorithm>

namespace Orn::Image::Codec {

namespace {

constexpr double mega = 1024.0 * 1024;

/// How much memory a header's word is good for.
struct Trust
{
    double always;  ///< bytes that any file may claim
    double packing; ///< bytes that each byte of the file makes credible beyond them
    double never;   ///< bytes that no file gets
};

/// No compression that the library's plug-ins know packs tighter, with the exceptions below.
constexpr Trust bounded = {16 * mega, 4096, 16 * 1024 * mega};
/// These pack a picture of one colour into next to nothing: at most 8192 x 8192 pixels in colour and alpha
/// are made on the header's word alone, and 16384 x 16384 for a file that could hold anything else.
constexpr Trust unbounded = {256 * mega, 65536, 1024 * mega};

Trust trustOf(FREE_IMAGE_FORMAT plugin, unsigned int bitsPerPixel)
{
    bool const isBilevelTiff = plugin == FIF_TIFF && bitsPerPixel == 1;
    bool const packsWithoutBound = plugin == FIF_WEBP || plugin == FIF_J2K || plugin == FIF_JP2 ||
                                   plugin == FIF_JXR || plugin == FIF_FAXG3 || isBilevelTiff;
    return packsWithoutBound ? unbounded : bounded;
}

bool isCredible(FREE_IMAGE_FORMAT plugin, StatedSize const& stated, FreeImageDevice& file)
{
    // Pixels of a few bits become whole bytes.
    double const bytes = stated.pixels * std::max(stated.bitsPerPixel, 8u) / 8.0;
    auto const fileBytes = double(file.device().size() - file.start());
    Trust const trust = trustOf(plugin, stated.bitsPerPixel);
    bool const isTrusted =
        bytes <= trust.always || (bytes <= trust.never && bytes <= fileBytes * trust.packing);
    if (stated.leastFileBytes > fileBytes) {
        qWarning("The file ends too early");
        return false;
    }
    if (!isTrusted) {
        qWarning().noquote() << QStringLiteral("A picture of %1 MB is not to be had from a file of %2 bytes")
                                    .arg(bytes / mega, 0, 'f', 1)
                                    .arg(fileBytes, 0, 'f', 0);
        return false;
    }
    file.expectPicture(bytes);
    return true;
}

/// What the plug-ins that don't look for themselves would stumble over.
bool isSound(FREE_IMAGE_FORMAT plugin, QIODevice& device)
{
    switch (plugin) {
    case FIF_ICO:
        return isIcoSound(device);
    case FIF_JNG:
        return areMngChunksWhole(device, "IEND");
    case FIF_MNG:
        return areMngChunksWhole(device, "MEND");
    case FIF_PSD:
        return arePsdRowsSound(device);
    default:
        return true;
    }
}

/// Of the plug-ins that read a header alone.
std::optional<StatedSize> sizeInHeader(FREE_IMAGE_FORMAT plugin, FreeImageDevice& file)
{
    Bitmap const header(FreeImage_LoadFromHandle(plugin, file.io(), file.handle(), FIF_LOAD_NOPIXELS));
    if (!header)
        return {};
    double const pixels = double(FreeImage_GetWidth(header.get())) * FreeImage_GetHeight(header.get());
    return StatedSize{pixels, FreeImage_GetBPP(header.get())};
}

/// Of the plug-ins that make the whole picture for it: read here. They may have forms that can't be
/// understood here, with which they are trusted.
std::optional<StatedSize> sizeReadHere(FREE_IMAGE_FORMAT plugin, FreeImageDevice& file)
{
    switch (plugin) {
    case FIF_J2K:
    case FIF_JP2:
        return jpeg2000Size(file.device());
    case FIF_PICT:
        return pictSize(file.device());
    default:
        return statedSize(plugin, file.device()).value_or(StatedSize());
    }
}

} // namespace

bool hasCredibleSize(FreeImageFormat format, FreeImageDevice& file)
{
    auto const plugin = FREE_IMAGE_FORMAT(format);
    if (plugin == FIF_EXR) { // whose header makes OpenEXR allocate; a pixel has at least one half
        auto const pixels = exrPixelCount(file.device());
        if (!pixels || !file.rewind() || !isCredible(plugin, {*pixels, 16}, file))
            return false;
    }
    if (!isSound(plugin, file.device()) || !file.rewind())
        return false;
    auto const stated =
        FreeImage_FIFSupportsNoPixels(plugin) ? sizeInHeader(plugin, file) : sizeReadHere(plugin, file);
    return stated && file.rewind() && isCredible(plugin, *stated, file);
}

} // namespace Orn::Image::Codec
