#include "applications/player/packing/packingcollector.h"

#include <algorithm>

namespace Zph::Applications::Player {

void PackingCollector::reset()
{
    m_isDone.fill(false, m_files->size());
    m_pictures.clear();
}

bool PackingCollector::isNeeded(quint32 uid) const
{
    for (int i = 0; i < m_files->size(); ++i) {
        const auto& sources = m_files->at(i).sources;
        if (!m_isDone[i] && std::any_of(sources.cbegin(), sources.cend(), [uid](const PlannedSource& source) {
                return source.output.uid == uid;
            }))
            return true;
    }
    return false;
}

void PackingCollector::add(quint32 uid, const QSharedPointer<Orn::Surfaces::Surface>& picture,
                           const Complete& complete)
{
    m_pictures.insert(uid, picture);
    for (int i = 0; i < m_files->size(); ++i) {
        PackingPictures own;
        const auto& sources = m_files->at(i).sources;
        for (const PlannedSource& source : sources) {
            if (m_pictures.contains(source.output.uid))
                own.insert(source.output.uid, m_pictures.value(source.output.uid));
        }
        if (m_isDone[i] || own.size() < sources.size())
            continue;
        m_isDone[i] = true;
        complete(i, own);
    }
    for (const quint32 kept : m_pictures.keys()) {
        if (!isNeeded(kept))
            m_pictures.remove(kept);
    }
}

} // namespace Zph::Applications::Player
