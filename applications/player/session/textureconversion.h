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

} // namespace Zph::Applications::Player
