#include "orncommon/core/filepathmgr.h"

#include "orncommon/core/url.h"

#include <QDir>

namespace Orn::Core {

QString FilePathMgr::getPathToSave(const QString& path, const QString& baseDir) const
{
    if (baseDir.isEmpty())
        return path;
    const QString base = QDir::cleanPath(QDir(baseDir).absolutePath());
    return Url(path).isUnderPath(Url(base)) ? QDir(base).relativeFilePath(path) : path;
}

} // namespace Orn::Core
