#pragma once

#include <QByteArray>
#include <QSaveFile>
#include <QString>

namespace Zph::Applications::Player {

// Writes all of a file that is open, and puts it in its place. Returns an empty text, or what went wrong;
// then what stood there is as it was. Unlike QSaveFile::commit() alone it notices when a disk that fills up
// takes only a part.
QString saveWhole(QSaveFile& file, const QByteArray& bytes);

} // namespace Zph::Applications::Player
