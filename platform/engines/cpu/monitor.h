#pragma once

// What a running generation tells its host, and what the host tells it.
//
// Any thread counts work and asks whether to stop; progress is reported by tick() alone, which the thread
// that called start calls between pieces of its own work.

#include <atomic>
#include <cstdint>
#include <functional>

namespace vellor::cpu {

class Monitor
{
public:
    /// Steps of a whole generation as the host sees them: a multiple of 4, of which only multiples of 4 are
    /// reported, since hosts look at every fourth step.
    static constexpr std::uint32_t kSteps = 1000;
    using Report = std::function<void(std::uint32_t current, std::uint32_t total)>;

    Monitor(const std::atomic<bool>& stop, Report report) : stop_(stop), report_(std::move(report)) {}

    bool stopped() const { return stop_.load(std::memory_order_relaxed); }
    const std::atomic<bool>& stop() const { return stop_; }

    /// Begins a generation of `work` units.
    void begin(std::uint64_t work)
    {
        total_ = work ? work : 1;
        done_ = 0;
        reported_ = 0;
    }

    void add(std::uint64_t work) { done_.fetch_add(work, std::memory_order_relaxed); }

    void tick()
    {
        const std::uint64_t done = done_.load(std::memory_order_relaxed);
        const double share = done < total_ ? static_cast<double>(done) / static_cast<double>(total_) : 1.0;
        const std::uint32_t step = static_cast<std::uint32_t>(share * kSteps) & ~3u;
        if (step == reported_)
            return;
        reported_ = step;
        report_(step, kSteps);
    }

private:
    const std::atomic<bool>& stop_;
    Report report_;
    std::atomic<std::uint64_t> done_{0};
    std::uint64_t total_ = 1;
    std::uint32_t reported_ = 0;
};

} // namespace vellor::cpu
