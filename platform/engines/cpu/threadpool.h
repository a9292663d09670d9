#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace vellor::cpu {

/// The threads of one context. They are made when first wanted and joined with the pool.
class ThreadPool
{
public:
    ThreadPool() = default;
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;
    ~ThreadPool();

    /// Number of processors, 1 at least.
    static int processors();

    /// Calls work(0) here and work(1) to work(count - 1) on threads of the pool, as far as the system gives
    /// any, and returns when all are back. `work` must not throw. One call at a time; another one waits.
    void run(int count, const std::function<void(int)>& work);

private:
    void grow(int threads);
    void loop(int index, std::uint64_t seen);

    std::mutex running_;
    std::mutex mutex_;
    std::condition_variable wake_, done_;
    std::vector<std::thread> threads_;
    const std::function<void(int)>* work_ = nullptr;
    std::uint64_t round_ = 0;
    int participants_ = 0, pending_ = 0;
    bool ending_ = false;
};

} // namespace vellor::cpu
