#include "applications/tool/taskqueue.h"

namespace vellor::tool {

TaskQueue::TaskQueue(std::size_t limit) : m_limit(limit)
{
    if (m_limit > 0)
        m_thread = std::thread([this] { run(); });
}

TaskQueue::~TaskQueue()
{
    finish();
}

void TaskQueue::post(std::function<void()> task)
{
    if (m_limit == 0) {
        task();
        return;
    }
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_tasks.size() < m_limit; });
    m_tasks.push_back(std::move(task));
    m_changed.notify_all();
}

void TaskQueue::finish()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
        m_changed.notify_all();
    }
    if (m_thread.joinable())
        m_thread.join();
}

void TaskQueue::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isClosed || !m_tasks.empty(); });
        if (m_tasks.empty())
            return;
        std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        m_changed.notify_all();
        lock.unlock();
        task();
        task = nullptr; // lets go of the picture
        lock.lock();
    }
}

} // namespace vellor::tool
