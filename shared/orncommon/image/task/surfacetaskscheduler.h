#pragma once

#include "orncommon/image/task/surfacetask.h"

#include <QMutex>
#include <QQueue>

#include <memory>

namespace Orn::Image::Core {

/// Runs tasks on the threads of QThreadPool::globalInstance().
class SurfaceTaskScheduler
{
public:
    using Task = QSharedPointer<SurfaceTask>;

    /// Tasks that run one after the other, in the order in which they came; queues run beside one another. A
    /// queue whose owner is gone still ends what it has begun.
    class Queue : public std::enable_shared_from_this<Queue>
    {
    public:
        /// Any thread; returns at once.
        void push(Task const& task);
        /// Cancels the tasks that are waiting or running.
        void cancel();

    private:
        void runNext(); // with the mutex held

        QMutex m_mutex;
        QQueue<Task> m_waiting;
        Task m_running;
    };

    static std::shared_ptr<Queue> makeQueue() { return std::make_shared<Queue>(); }
};

} // namespace Orn::Image::Core
