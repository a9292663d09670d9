#include "orncommon/core/componentstable.h"

#include "orncommon/core/channellogger.h"

#include <QMetaObject>
#include <QMutexLocker>

#include <utility>

namespace Orn::Core {

namespace {

const Log::ChannelLogger logger("ComponentMgr");

QString className(const QObject& object)
{
    return QString::fromLatin1(object.metaObject()->className());
}

} // namespace

void ComponentsTable::CacheSharedData::append(const QSharedPointer<QObject>& object)
{
    if (!object)
        return;
    logger.info(QStringLiteral("Add Object '%1'").arg(className(*object)));
    m_objects.append(object);
    ++m_version;
}

void ComponentsTable::CacheSharedData::removeOne(const QSharedPointer<QObject>& object)
{
    if (!object)
        return;
    logger.info(QStringLiteral("Remove Object '%1'").arg(className(*object)));
    if (m_objects.removeOne(object))
        ++m_version;
}

QList<QSharedPointer<QObject>> ComponentsTable::CacheSharedData::takeAll()
{
    logger.info(QStringLiteral("Clear"));
    ++m_version;
    return std::exchange(m_objects, {});
}

void ComponentsTable::clear(QMutex& mutex)
{
    QMutexLocker lock(&mutex);
    QList<QSharedPointer<QObject>> objects = m_shared.takeAll();
    m_caches.clear();
    lock.unlock();
    // Objects were added after those that they need.
    while (!objects.isEmpty())
        objects.removeLast();
}

} // namespace Orn::Core
