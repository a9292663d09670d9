#include "applications/player/session/cache.h"

#include "applications/player/description/packagemodel.h"

namespace Zph::Applications::Player {

ValueOrSurfacePlayer Cache::get(ORNUInt32 uid) const
{
    const auto entry = m_results.find(uid);
    return entry == m_results.end() ? ValueOrSurfacePlayer() : entry->second;
}

void Cache::setDescription(std::shared_ptr<const PackageModel> description)
{
    m_description = std::move(description);
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
    const AlterationLinks* links = m_description ? &m_description->alterationLinks() : nullptr;
    if (!links || index < 0 || std::size_t(index) >= links->size()) {
        clear();
        return;
    }
    for (const quint32 uid : (*links)[std::size_t(index)])
        invalidateOutput(uid);
}

} // namespace Zph::Applications::Player
