#include "platform/engines/cpu/rowloop.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <mutex>

namespace vellor::cpu {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double kChunkSeconds = 0.001;
constexpr double kLastChunkSeconds = 0.00003;
constexpr double kWorthWaking = 0.0002;
constexpr int kFirstChunkPixels = 1 << 14;

/// One run of the loop, shared by its threads.
class Run
{
public:
    Run(const RowLoop& loop, const RowBody& body) : loop_(loop), body_(body)
    {
        const int first = loop.resources.chunkRows
                              ? static_cast<int>(std::min(loop.resources.chunkRows, 1u << 14))
                              : std::max(1, kFirstChunkPixels / std::max(1, loop.width));
        chunk_ = loop.resources.chunkRows ? first : whole(first);
    }

    bool finished() const { return next_.load(std::memory_order_relaxed) >= loop_.rows || halted(); }

    /// Takes and does one chunk. Returns the seconds that it took.
    double step(int worker)
    {
        const int size = nextSize();
        const int y0 = next_.fetch_add(size);
        if (y0 >= loop_.rows)
            return 0.0;
        const int y1 = std::min(loop_.rows, y0 + size);
        const auto start = Clock::now();
        try {
            body_(y0, y1, worker);
        } catch (...) {
            fail(std::current_exception());
            return 0.0;
        }
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        adapt(y1 - y0, seconds);
        rowsDone_.fetch_add(y1 - y0, std::memory_order_relaxed);
        loop_.monitor.add(loop_.workPerRow * static_cast<std::uint64_t>(y1 - y0));
        return seconds;
    }

    void drain(int worker)
    {
        while (!finished()) {
            step(worker);
            if (worker == 0)
                loop_.monitor.tick();
        }
    }

    /// Whether what is left is worth a second thread, `seconds` being what the rows so far took.
    bool worthSharing(double seconds) const
    {
        const int done = rowsDone_.load(), left = loop_.rows - done;
        return loop_.resources.chunkRows || (done > 0 && seconds / done * left > kWorthWaking);
    }

    bool conclude() const
    {
        if (error_)
            std::rethrow_exception(error_);
        // Whoever looks at the stop by himself may have left rows unfinished.
        return rowsDone_.load() == loop_.rows && !loop_.monitor.stopped();
    }

private:
    bool halted() const { return loop_.monitor.stopped() || failed_.load(std::memory_order_relaxed); }

    /// An even end: chunks are at most a fair part of the rows that are left, so that no thread is still at a
    /// large one when the others are through. They need not be smaller than what takes no time to speak of.
    int nextSize() const
    {
        const int size = chunk_.load(std::memory_order_relaxed);
        const int threads = loop_.resources.threadCount();
        if (loop_.resources.chunkRows)
            return size;
        if (threads == 1)
            return whole(size);
        const int left = loop_.rows - next_.load(std::memory_order_relaxed);
        const int fair = left / (2 * threads);
        return whole(std::clamp(fair, std::min(least_.load(std::memory_order_relaxed), size), size));
    }

    int whole(int rows) const { return (rows + loop_.together - 1) / loop_.together * loop_.together; }

    void adapt(int rows, double seconds)
    {
        if (loop_.resources.chunkRows)
            return;
        const auto rowsIn = [&](double wanted) {
            const double count = rows * wanted / std::max(seconds, 1e-7);
            return std::max(static_cast<int>(std::min(count, 16384.0)), 1);
        };
        chunk_.store(rowsIn(kChunkSeconds), std::memory_order_relaxed);
        least_.store(rowsIn(kLastChunkSeconds), std::memory_order_relaxed);
    }

    void fail(std::exception_ptr error)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (!error_)
            error_ = std::move(error);
        failed_ = true;
    }

    const RowLoop& loop_;
    const RowBody& body_;
    std::atomic<int> next_{0}, chunk_{1}, least_{1}, rowsDone_{0};
    std::atomic<bool> failed_{false};
    std::mutex mutex_;
    std::exception_ptr error_;
};

} // namespace

bool RowLoop::run(const RowBody& body) const
{
    Run state(*this, body);
    const int threadCount = resources.threadCount();
    if (!state.finished() && threadCount > 1) {
        const double seconds = state.step(0);
        if (state.worthSharing(seconds) && !state.finished())
            threads.run(threadCount, [&state](int worker) { state.drain(worker); });
    }
    state.drain(0);
    monitor.tick();
    return state.conclude();
}

} // namespace vellor::cpu
