#pragma once

#include "applications/player/packing/packingplan.h"

#include <QHash>

namespace Zph::Applications::Player {

using PackingPictures = QHash<quint32, QSharedPointer<Orn::Surfaces::Surface>>; // by uid of the output

// The picture of a file, from those of its sources: what the engine gave, untouched. It has grey, RGB or RGBA
// pixels of `depth`, or for PictureDepth::OfPicture of the deepest of its sources: 8 bits, 16 bits, half,
// float, and float for 16 bits beside halves. Values of channels whose depths agree are copied to the last
// bit, others are rounded to the nearest; grey of colour has the weights of Rec. 709, and the alpha of a
// picture that has none is 1. Sources of other sizes are stretched to the greatest width and height among
// them, bilinearly. Null when a source is missing or there is no memory. Any thread.
QSharedPointer<Orn::Surfaces::Surface> packPicture(const PlannedFile& file, const PackingPictures& pictures,
                                                   PictureDepth depth);

// The words for the pixels of such a picture, as outputFormatName() has them for outputs.
QString packedFormatName(Orn::Surfaces::PixelFormat format);

} // namespace Zph::Applications::Player
