#pragma once

#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>

#include <vellor/engine.h>

namespace Zph::Applications::Player {

/// The picture that an engine handed out. Takes over `texture.buffer`, which is freed with free(), at once or
/// with the surface. Raw pixels of a layout that surfaces have are adopted, with no copy; block-compressed
/// ones are decoded; whatever can't be shown becomes a grey tile of the output's size that says so. Null only
/// when there is no memory. Any thread.
QSharedPointer<Orn::Surfaces::Surface> surfaceFromTexture(const VellorTexture& texture);

/// A picture as the value of an image input. It shows the surface's own pixels, so the surface must outlive
/// it, unless its format or its pitch has to be changed first: then `holder` gets a surface that must. A null
/// buffer when there is no memory, or a side is too long for an engine.
VellorTexture textureFromSurface(const QSharedPointer<Orn::Surfaces::Surface>& surface,
                                 QSharedPointer<Orn::Surfaces::Surface>& holder);

} // namespace Zph::Applications::Player
