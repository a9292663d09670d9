#include "orncommon/image/task/surfacetaskscheduler.h"

#include <QMutexLocker>
#include <QtConcurrent>

namespace Orn::Image::Core {

void SurfaceTaskScheduler::Queue::push(Task const& task)
{
    QMutexLocker const locker(&m_mutex);
    m_waiting.enqueue(task);
    if (m_running.isNull())
        runNext();
}

void SurfaceTaskScheduler::Queue::cancel()
{
    QMutexLocker const locker(&m_mutex);
    for (Task const& task : qAsConst(m_waiting))
        task->cancel();
    m_waiting.clear();
    if (!m_running.isNull())
        m_running->cancel();
}

void SurfaceTaskScheduler::Queue::runNext()
{
    m_running = m_waiting.isEmpty() ? Task() : m_waiting.dequeue();
    if (m_running.isNull())
        return;
    QtConcurrent::run([self = shared_from_this(), task = m_running] {
        task->run();
        QMutexLocker const locker(&self->m_mutex);
        self->runNext();
    });
}

} // namespace Orn::Image::Core
