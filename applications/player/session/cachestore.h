#pragma once

#include <QTemporaryFile>

#include <map>
#include <memory>

namespace Zph::Applications::Player {

/// The blocks that an engine parked outside its memory budget: a temporary file for each entry, made by the
/// first use of the entry and gone with it, or with the store. No lock: the engine's thread alone.
class CacheStore
{
public:
    /// The cache-store callback (<vellor/engine.h>): `flags` of VellorCacheFlags, `size` bytes at `buffer`.
    void access(quint32 flags, quint32 entry, char* buffer, quint64 size);

private:
    QTemporaryFile& file(quint32 entry);

    std::map<quint32, std::unique_ptr<QTemporaryFile>> m_files;
};

} // namespace Zph::Applications::Player
