#pragma once

// Tells a host what each step of a generation costs. The thread that called start.

#include "platform/engines/cpu/package.h"
#include "platform/engines/cpu/plan.h"
#include "platform/engines/cpu/schedule.h"
#include "platform/engines/cpu/stagerunner.h"

#include <vellor/profile.h>

#include <chrono>
#include <cstdint>
#include <ctime>
#include <vector>

namespace vellor::cpu {

/// What has passed since it was made, on the clock and in the processor time of the whole process, in
/// seconds.
class Stopwatch
{
public:
    double clock() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }
    double processor() const { return processorNow() - startProcessor_; }

private:
    static double processorNow()
    {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    }
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    double startProcessor_ = processorNow();
};

class Profiler
{
public:
    Profiler(VellorHandle* handle, VellorProfileCallback callback, void* user)
        : handle_(handle), callback_(callback), user_(user)
    {
    }

    /// What comes now is done for this output first.
    void beginOutput(std::uint32_t uid) { outputUid_ = uid; }
    /// One step for each node of a stage that has just run.
    void stage(const Plan& plan, const Package& package, const Stage& stage, const StageCost& cost,
               const Stopwatch& watch, std::uint64_t liveBytes);
    /// A result that was there from before.
    void cached(const Plan& plan, const Package& package, int node, std::uint64_t liveBytes);
    /// The conversion of a picture to packed pixels.
    void output(const Image& image, std::uint64_t packedBytes, std::uint64_t scratchBytes,
                const Stopwatch& watch, std::uint64_t liveBytes);

private:
    VellorProfileStep stepOf(const Plan& plan, const Package& package, int node) const;
    void report(const VellorProfileStep& step) const { callback_(handle_, &step, user_); }

    VellorHandle* handle_;
    VellorProfileCallback callback_;
    void* user_;
    std::uint32_t outputUid_ = 0, stage_ = 0;
};

} // namespace vellor::cpu
