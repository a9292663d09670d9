#pragma once

#include "orncommon/core/componentstable.h"

#include <QMutexLocker>

namespace Orn::Core {

/// The process-wide table of services, by which parts of the program find one another by interface. Any
/// thread may call; a service is handed out by strong reference and so cannot die while it is in use.
class ComponentsMgr
{
public:
    /// Made on first use, destroyed at exit.
    static ComponentsMgr& getInstance();

    ComponentsMgr(const ComponentsMgr&) = delete;
    ComponentsMgr& operator=(const ComponentsMgr&) = delete;

    void add(const QSharedPointer<QObject>& object);
    void remove(const QSharedPointer<QObject>& object);
    /// Removes all services; their destructors may use the table.
    void clear() { m_table.clear(m_mutex); }

    /// The oldest living service that is a `T`, or null.
    template<class T> QSharedPointer<T> getFirst()
    {
        QMutexLocker lock(&m_mutex);
        return m_table.getFirst<T>();
    }

    /// All living services that are a `T`, the oldest first.
    template<class T> QList<QSharedPointer<T>> getAll()
    {
        QMutexLocker lock(&m_mutex);
        return m_table.getAll<T>();
    }

private:
    ComponentsMgr();

    QMutex m_mutex{QMutex::Recursive};
    ComponentsTable m_table;
};

} // namespace Orn::Core
