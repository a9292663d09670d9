#pragma once

#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>

namespace Orn::Image::Codec {

class SurfaceCodecOptions;

enum class Action
{
    Read = 0,
    Write = 1,
};

/// Reads one image from a device, or writes one to it. Made by a factory for a device that outlives it; used
/// on one thread at a time.
class SurfaceCodec
{
public:
    virtual ~SurfaceCodec() = default;

    /// Gives `surface` the decoded image and `options`, which may be null, what the file carries beside.
    /// False, and a null `surface`, when the data are not a whole image.
    bool read(QSharedPointer<Surfaces::Surface>& surface, SurfaceCodecOptions* options)
    {
        if (doRead(surface, options))
            return true;
        surface.reset();
        return false;
    }

    /// False when the format can't hold the surface or the device refuses; what was written then is
    /// worthless.
    bool write(QSharedPointer<Surfaces::Surface> const& surface, SurfaceCodecOptions const* options)
    {
        return !surface.isNull() && !surface->isEmpty() && doWrite(surface, options);
    }

protected:
    virtual bool doRead(QSharedPointer<Surfaces::Surface>& surface, SurfaceCodecOptions* options) = 0;
    virtual bool doWrite(QSharedPointer<Surfaces::Surface> const& surface,
                         SurfaceCodecOptions const* options) = 0;
};

} // namespace Orn::Image::Codec
