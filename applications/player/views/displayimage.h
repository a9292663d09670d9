#pragma once

#include "orncommon/surfaces/surface.h"

#include <QImage>
#include <QSharedPointer>

namespace Zph::Applications::Player {

/// The 8-bit form of a surface for display. Where the surface is such already its pixels are used in place;
/// the image keeps the surface alive. Null for a null or empty surface.
QImage displayImage(const QSharedPointer<Orn::Surfaces::Surface>& surface);

/// The same at a smaller size, each pixel the nearest of the surface's. They are picked in the surface's own
/// format, so that pixels which aren't shown are neither read nor converted.
QImage sampledImage(const QSharedPointer<Orn::Surfaces::Surface>& surface, const QSize& size);

} // namespace Zph::Applications::Player
