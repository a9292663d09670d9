#include "applications/player/output/savedfile.h"

#include <cerrno>
#include <cstring>

namespace Zph::Applications::Player {

QString saveWhole(QSaveFile& file, const QByteArray& bytes)
{
    errno = 0;
    if (file.write(bytes) == bytes.size() && file.flush())
        return file.commit() ? QString() : file.errorString();
    const QString reason = errno != 0 ? QString::fromLocal8Bit(std::strerror(errno)) : file.errorString();
    file.cancelWriting();
    return reason;
}

} // namespace Zph::Applications::Player
