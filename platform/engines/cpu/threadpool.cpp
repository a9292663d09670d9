#include "platform/engines/cpu/threadpool.h"

#include <algorithm>
#include <system_error>

namespace vellor::cpu {

ThreadPool::~ThreadPool()
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ending_ = true;
    }
    wake_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

int ThreadPool::processors()
{
    // Asking opens a file of the system, and loops ask for every chunk.
    static const int count = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    return count;
}

void ThreadPool::grow(int threads)
{
    try {
        while (static_cast<int>(threads_.size()) < threads) {
            const int index = static_cast<int>(threads_.size()) + 1;
            threads_.reserve(threads_.size() + 1);
            threads_.emplace_back([this, index, seen = round_] { loop(index, seen); });
        }
    } catch (const std::system_error&) { // fewer threads do the same work
    }
}

void ThreadPool::run(int count, const std::function<void(int)>& work)
{
    const std::lock_guard<std::mutex> one(running_);
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        grow(count - 1);
        work_ = &work;
        participants_ = std::min(count - 1, static_cast<int>(threads_.size()));
        pending_ = participants_;
        ++round_;
    }
    wake_.notify_all();
    work(0);
    std::unique_lock<std::mutex> lock(mutex_);
    done_.wait(lock, [this] { return pending_ == 0; });
    work_ = nullptr;
}

void ThreadPool::loop(int index, std::uint64_t seen)
{
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        wake_.wait(lock, [&] { return ending_ || round_ != seen; });
        if (ending_)
            return;
        seen = round_;
        if (index > participants_)
            continue;
        const std::function<void(int)>* work = work_;
        lock.unlock();
        (*work)(index);
        lock.lock();
        if (--pending_ == 0)
            done_.notify_one();
    }
}

} // namespace vellor::cpu
