#pragma once

#include <QList>
#include <QMutex>
#include <QObject>
#include <QSharedPointer>
#include <QWeakPointer>

#include <memory>
#include <vector>

namespace Orn::Core {

/// Objects that are found by the interfaces that they implement, in order of addition.
///
/// Look-ups sit on hot paths. So for each interface that was ever asked for there is a list of the objects
/// that implement it, and objects are cast again only when the table changed since. There is no lock here,
/// save in clear(): the owner guards all calls.
class ComponentsTable
{
public:
    /// Null objects are ignored.
    void append(const QSharedPointer<QObject>& object) { m_shared.append(object); }
    /// Removes the first equal entry; without one nothing changes.
    void removeOne(const QSharedPointer<QObject>& object) { m_shared.removeOne(object); }

    /// Removes all objects and caches. Locks `mutex`, which the caller must not hold, but releases the
    /// objects with it open, the last added first: their destructors may call back.
    void clear(QMutex& mutex);

    /// The oldest living object that is a `T`, or null.
    template<class T> QSharedPointer<T> getFirst();
    /// All living objects that are a `T`, the oldest first.
    template<class T> QList<QSharedPointer<T>> getAll();

private:
    class CacheSharedData
    {
    public:
        void append(const QSharedPointer<QObject>& object);
        void removeOne(const QSharedPointer<QObject>& object);
        QList<QSharedPointer<QObject>> takeAll();

        const QList<QSharedPointer<QObject>>& objects() const { return m_objects; }
        unsigned int version() const { return m_version; }

    private:
        QList<QSharedPointer<QObject>> m_objects;
        unsigned int m_version = 1;
    };

    struct CacheBase
    {
        virtual ~CacheBase() = default;
        const void* key = nullptr;
    };

    template<class T> struct Cache : CacheBase
    {
        unsigned int version = 0;
        QList<QWeakPointer<T>> matches;
    };

    template<class T> Cache<T>& freshCache();

    CacheSharedData m_shared;
    std::vector<std::unique_ptr<CacheBase>> m_caches;
};

template<class T> ComponentsTable::Cache<T>& ComponentsTable::freshCache()
{
    static char key; // its address stands for T
    Cache<T>* cache = nullptr;
    for (const std::unique_ptr<CacheBase>& known : m_caches)
        if (known->key == &key)
            cache = static_cast<Cache<T>*>(known.get());
    if (!cache) {
        auto created = std::make_unique<Cache<T>>();
        cache = created.get();
        cache->key = &key;
        m_caches.push_back(std::move(created));
    }
    if (cache->version != m_shared.version()) {
        cache->version = m_shared.version();
        cache->matches.clear();
        for (const QSharedPointer<QObject>& object : m_shared.objects())
            if (const QSharedPointer<T> match = object.template dynamicCast<T>())
                cache->matches.append(match.toWeakRef());
    }
    return *cache;
}

template<class T> QSharedPointer<T> ComponentsTable::getFirst()
{
    for (const QWeakPointer<T>& match : freshCache<T>().matches)
        if (QSharedPointer<T> strong = match.toStrongRef())
            return strong;
    return {};
}

template<class T> QList<QSharedPointer<T>> ComponentsTable::getAll()
{
    QList<QSharedPointer<T>> all;
    for (const QWeakPointer<T>& match : freshCache<T>().matches)
        if (QSharedPointer<T> strong = match.toStrongRef())
            all.append(strong);
    return all;
}

} // namespace Orn::Core
