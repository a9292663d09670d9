#pragma once

// Shares the rows of a picture over the threads of a pool.
//
// Threads take chunks of rows as they come. How many rows a chunk has follows from the time that chunks take,
// so that a stop is obeyed within milliseconds whatever a row costs, and the counter is not fought over where
// rows are cheap. Towards the end chunks grow small, so that all threads end together, at whatever pace each
// runs. Work that is over in less time than it takes to wake a thread stays on the caller's. None of this may
// show in the result: bodies give the same bytes for every way of cutting.

#include "platform/engines/cpu/monitor.h"
#include "platform/engines/cpu/resources.h"
#include "platform/engines/cpu/threadpool.h"

#include <cstdint>
#include <functional>

namespace vellor::cpu {

/// Rows y0 to y1 - 1, on the thread `worker` (0: the caller's; below Resources::threadCount()).
using RowBody = std::function<void(int y0, int y1, int worker)>;

struct RowLoop
{
    ThreadPool& threads;
    Monitor& monitor;
    Resources resources;
    int rows = 0;
    int width = 0;                // pixels of a row; sets the size of the first chunk
    std::uint64_t workPerRow = 0; // for the monitor
    int together = 1;             // chunks have a multiple of this many rows, but for the last one

    /// False: stopped before the end. What the body throws first is thrown here, on the caller's thread.
    bool run(const RowBody& body) const;
};

} // namespace vellor::cpu
