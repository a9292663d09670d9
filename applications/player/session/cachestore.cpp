#include "applications/player/session/cachestore.h"

#include <vellor/engine.h>

namespace Zph::Applications::Player {

void CacheStore::access(quint32 flags, quint32 entry, char* buffer, quint64 size)
{
    if (flags & (VELLOR_CACHE_WRITE | VELLOR_CACHE_READ)) {
        QTemporaryFile& target = file(entry);
        if (target.open()) {
            if (flags & VELLOR_CACHE_WRITE)
                target.write(buffer, qint64(size));
            else
                target.read(buffer, qint64(size));
            target.close();
        }
    }
    if (flags & VELLOR_CACHE_REMOVE)
        m_files.erase(entry);
}

QTemporaryFile& CacheStore::file(quint32 entry)
{
    auto& slot = m_files[entry];
    if (!slot)
        slot = std::make_unique<QTemporaryFile>();
    return *slot;
}

} // namespace Zph::Applications::Player
