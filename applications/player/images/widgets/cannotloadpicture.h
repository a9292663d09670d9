#pragma once

#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>
#include <QString>

namespace Zph::Applications::Player {

// A grey picture of 512 x 512 pixels that says which file can't be read. Needs a graphical application.
QSharedPointer<Orn::Surfaces::Surface> cannotLoadPicture(const QString& path);

} // namespace Zph::Applications::Player
