#include "applications/player/output/taskqueue.h"

#include <algorithm>

namespace Zph::Applications::Player {

std::size_t encoderCount(int threads)
{
    constexpr int most = 16;
    return std::size_t(std::clamp(threads, 1, most));
}

TaskQueue::TaskQueue(std::size_t workers, std::size_t limit) : m_limit(limit)
{
    for (std::size_t i = 0; i < workers; ++i)
        m_threads.emplace_back([this] { run(); });
}

TaskQueue::~TaskQueue()
{
    finish();
}

void TaskQueue::post(std::function<void()> task)
{
    if (m_threads.empty()) {
        task();
        return;
    }
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_tasks.size() < m_limit; });
    m_tasks.push_back(std::move(task));
    m_changed.notify_all();
}

bool TaskQueue::waitForRoom(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(m_mutex);
    return m_threads.empty() ||
           m_changed.wait_for(lock, timeout, [this] { return m_tasks.size() < m_limit; });
}

void TaskQueue::finish()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
        m_changed.notify_all();
    }
    for (std::thread& thread : m_threads)
        thread.join();
    m_threads.clear();
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

} // namespace Zph::Applications::Player
