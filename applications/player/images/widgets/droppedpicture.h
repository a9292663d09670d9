#pragma once

#include <QString>

class QMimeData;

namespace Zph::Applications::Player {

// The file that an image input would open of what is dragged onto it: the picture, of several the one whose
// number comes first, and of a folder its own first picture, so that a folder of frames is a sequence. Empty
// when it begins with anything else. Looks into the folder, but into no file.
QString droppedPicture(const QMimeData& data);

} // namespace Zph::Applications::Player
