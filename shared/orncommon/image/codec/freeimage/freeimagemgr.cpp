#include "orncommon/image/codec/freeimage/freeimagemgr.h"

#include <FreeImage.h>

#include <QDebug>

#include <algorithm>
#include <cstdarg>

#include <dlfcn.h>

namespace Orn::Image::Codec {

using namespace Orn::Surfaces;

namespace {

/// What of a plug-in's export types has a pixel format here.
std::vector<FreeImageType> exportTypes(FreeImageFormat plugin)
{
    std::vector<FreeImageType> types;
    for (FREE_IMAGE_TYPE type :
         {FIT_BITMAP, FIT_UINT16, FIT_FLOAT, FIT_RGB16, FIT_RGBA16, FIT_RGBF, FIT_RGBAF})
        if (FreeImage_FIFSupportsExportType(FREE_IMAGE_FORMAT(plugin), type))
            types.push_back(type);
    return types;
}

/// FreeImage's TIFF plug-in rests on libtiff, which writes what displeases it straight on standard error,
/// beside what the plug-in reports. FreeImage links it, this library doesn't.
void silenceLibTiff()
{
    using Handler = void (*)(char const*, char const*, va_list);
    using SetHandler = Handler (*)(Handler);
    for (char const* name : {"TIFFSetErrorHandler", "TIFFSetWarningHandler"})
        if (auto const set = reinterpret_cast<SetHandler>(dlsym(RTLD_DEFAULT, name)))
            set(nullptr);
}

} // namespace

FreeImageMgr::FreeImageMgr()
    : m_priorities{
          {RGBA32F, {RGBA16F, RGBA16, BGRA8, L32F, L16, L8}},
          {RGBA16F, {RGBA32F, RGBA16, BGRA8, L32F, L16, L8}},
          {RGB32F, {RGB16F, RGB16, RGB8, BGR8, L32F, L16F, L16, L8}},
          {RGB16F, {RGB32F, RGB16, BGRA8, L32F, L16, L8}},
          {L32F, {L16, L8, RGBA32F, RGBA16, BGRA8}},
          {L16F, {L32F, L16, L8, RGBA32F, RGBA16, BGRA8}},
          {RGBA16, {RGBA32F, BGRA8, L16, L32F, L8}},
          {RGB16, {RGB32F, BGR8, L16, L32F, L8}},
          {L16, {L32F, L8, RGBA16, RGBA32F, BGRA8}},
          {BGRA8, {RGBA8, RGBA16, RGBA32F, L8, L16, L32F}},
          {RGBA8, {BGRA8, RGBA16, RGBA32F, L8, L16, L32F}},
          {L8, {L16, L32F, BGRA8, RGBA16, RGBA32F}},
          {RGB8, {BGR8, RGB16, RGB32F, L8, L16, L32F}},
          {BGR8, {RGB8, RGB16, RGB32F, L8, L16, L32F}},
      }
{
    FreeImage_Initialise(FALSE);
    silenceLibTiff();
}

FreeImageMgr::~FreeImageMgr()
{
    FreeImage_DeInitialise();
}

std::vector<FreeImageType> FreeImageMgr::getFreeimageTypes(PixelFormat format)
{
    switch (format) {
    case L8:
    case BGR8:
    case BGRA8:
        return {FIT_BITMAP};
    case L16:
        return {FIT_UINT16};
    case RGB16:
        return {FIT_RGB16};
    case RGBA16:
        return {FIT_RGBA16, FIT_RGB16};
    case L32F:
        return {FIT_FLOAT};
    case RGB32F:
        return {FIT_RGBF};
    case RGBA32F:
        return {FIT_RGBAF, FIT_RGBF};
    default:
        return {};
    }
}

bool FreeImageMgr::findBestMatches(FreeImageFormat plugin, PixelFormat requested, FreeImageType& outType,
                                   PixelFormat& outFormat) const
{
    std::vector<FreeImageType> const supported = exportTypes(plugin);
    if (supported.empty())
        return false;
    auto const priorities = m_priorities.find(requested);
    if (priorities == m_priorities.end()) {
        qWarning().noquote() << QStringLiteral("No priority map defined for format '%1'").arg(requested);
        return false;
    }
    std::vector<PixelFormat> candidates = {requested};
    candidates.insert(candidates.end(), priorities->second.begin(), priorities->second.end());
    for (PixelFormat candidate : candidates)
        for (FreeImageType type : getFreeimageTypes(candidate))
            if (std::find(supported.begin(), supported.end(), type) != supported.end()) {
                outType = type;
                outFormat = candidate;
                return true;
            }
    return false;
}

std::shared_ptr<QMutexLocker> FreeImageMgr::getLocker(FreeImageFormat plugin)
{
    return plugin == FIF_EXR ? std::make_shared<QMutexLocker>(&m_mutex) : nullptr;
}

} // namespace Orn::Image::Codec
