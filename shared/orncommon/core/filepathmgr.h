#pragma once

#include <QString>

namespace Orn::Core {

/// Decides the form of a path when a document is saved.
class FilePathMgr
{
public:
    virtual ~FilePathMgr() = default;

    /// Relative to `baseDir` for an absolute path below it, else unchanged. An empty base holds nothing.
    virtual QString getPathToSave(const QString& path, const QString& baseDir) const;
};

} // namespace Orn::Core
