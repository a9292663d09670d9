#include "applications/player/session/cache.h"

namespace Zph::Applications::Player {

ValueOrSurfacePlayer Cache::get(ORNUInt32 uid) const
{
    const auto entry = m_results.find(uid);
    return entry == m_results.end() ? ValueOrSurfacePlayer() : entry->second;
}

void Cache::setDescription(std::shared_ptr<const PackageModel> description, Dependencies dependencies)
{
    m_description = std::move(description);
    m_dependencies = std::move(dependencies);
}

void Cache::pushOutput(ORNUInt32 uid, const ValueOrSurfacePlayer& value)
{
    m_results[uid] = value;
}

void Cache::invalidateOutput(ORNUInt32 uid)
{
    m_results.erase(uid);
}

void Cache::clear()
{
    m_results.clear();
}

void Cache::inputChanged(int index)
{
    if (!m_description || index < 0 || std::size_t(index) >= m_dependencies.size()) {
        clear();
        return;
    }
    for (const quint32 uid : m_dependencies[std::size_t(index)])
        invalidateOutput(uid);
}

} // namespace Zph::Applications::Player
