#pragma once

#include "orncommon/surfaces/surface.h"

#include <QSharedPointer>

class QWidget;

namespace Zph::Applications::Player::PictureSaver {

/// Asks for a file name and writes the surface in the format of its suffix. The folder and the filter are
/// remembered. A failure is told in a box.
void saveAs(QWidget* parent, const QSharedPointer<Orn::Surfaces::Surface>& surface);

/// The dialog's filters: one for each image format that can be written, its extensions together.
QString filters();

/// The first extension of a filter such as "Truevision Targa (*.tga *.targa)": "tga".
QString suffixOfFilter(const QString& filter);

} // namespace Zph::Applications::Player::PictureSaver
