#pragma once

#include "orncommon/image/codec/freeimage/freeimagetypes.h"
#include "orncommon/surfaces/pixelformat.h"

#include <QMutex>
#include <QMutexLocker>

#include <map>
#include <memory>
#include <vector>

namespace Orn::Image::Codec {

/// The library's start and end, what it shares between codecs, and the choice of the form in which a surface
/// is saved. Safe on any thread.
class FreeImageMgr
{
public:
    FreeImageMgr();
    ~FreeImageMgr();
    FreeImageMgr(FreeImageMgr const&) = delete;
    FreeImageMgr& operator=(FreeImageMgr const&) = delete;

    /// The bitmap types that can take a format's pixels, best first.
    static std::vector<FreeImageType> getFreeimageTypes(Surfaces::PixelFormat format);

    /// The first of the requested format and those that may stand in for it which the plug-in can save.
    bool findBestMatches(FreeImageFormat plugin, Surfaces::PixelFormat requested, FreeImageType& outType,
                         Surfaces::PixelFormat& outFormat) const;

    /// A lock to hold around each call of the plug-in; null for the plug-ins that may run in parallel.
    std::shared_ptr<QMutexLocker> getLocker(FreeImageFormat plugin);

private:
    QMutex m_mutex;
    std::map<Surfaces::PixelFormat, std::vector<Surfaces::PixelFormat>> m_priorities;
};

} // namespace Orn::Image::Codec
