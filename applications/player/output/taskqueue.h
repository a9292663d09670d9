#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Zph::Applications::Player {

/// How many pictures are encoded at once where so many threads may be used, and how many may wait beside
/// them. Encoding takes longer than generating for most formats, so all threads may be at it; each picture
/// holds memory.
std::size_t encoderCount(int threads);
constexpr std::size_t waitingPictures = 2;

/// Runs tasks beside the thread that posts them. Tasks don't throw.
class TaskQueue
{
public:
    /// `workers` tasks run at once, begun in the order in which they were posted; with 0 post() runs the task
    /// itself. `limit` tasks, at least 1, may wait, since each holds a picture.
    TaskQueue(std::size_t workers, std::size_t limit);
    /// Waits until all tasks are done.
    ~TaskQueue();
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;

    /// Waits while the queue is full.
    void post(std::function<void()> task);
    /// Waits until post() would not wait, at most so long; false when it still would.
    bool waitForRoom(std::chrono::milliseconds timeout);
    /// Waits until all tasks are done. Nothing is posted after it.
    void finish();

private:
    void run();

    std::size_t m_limit;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_tasks;
    bool m_isClosed = false;
    std::vector<std::thread> m_threads;
};

} // namespace Zph::Applications::Player
