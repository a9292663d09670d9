#include "orncommon/core/componentsmgr.h"

#include "orncommon/core/logmanager.h"

namespace Orn::Core {

ComponentsMgr& ComponentsMgr::getInstance()
{
    static ComponentsMgr manager;
    return manager;
}

ComponentsMgr::ComponentsMgr()
{
    // Services may log when they are destroyed at exit, so the log must have been there before.
    Log::LogManager::instance();
}

void ComponentsMgr::add(const QSharedPointer<QObject>& object)
{
    QMutexLocker lock(&m_mutex);
    m_table.append(object);
}

void ComponentsMgr::remove(const QSharedPointer<QObject>& object)
{
    QMutexLocker lock(&m_mutex);
    m_table.removeOne(object);
}

} // namespace Orn::Core
