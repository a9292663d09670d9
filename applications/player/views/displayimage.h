#pragma once

#include "orncommon/surfaces/surface.h"

#include <QImage>
#include <QSharedPointer>

namespace Zph::Applications::Player {

/// The 8-bit form of a surface for display. Where the surface is such already its pixels are used in place;
/// the image keeps the surface alive. Null for a null or empty surface.
QImage displayImage(const QSharedPointer<Orn::Surfaces::Surface>& surface);

} // namespace Zph::Applications::Player
