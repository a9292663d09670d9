#include "platform/engines/cpu/resources.h"

#include "platform/engines/cpu/threadpool.h"

#include <algorithm>
#include <cstring>

namespace vellor::cpu {

Resources Resources::read(const VellorHardResources* record)
{
    Resources resources;
    if (!record)
        return resources;
    std::uint32_t words[VELLOR_CPU_WORD_COUNT];
    std::memcpy(words, record->reserved0, sizeof words);
    if (record->memoryBudget)
        resources.memoryBudget = record->memoryBudget;
    resources.threads = words[VELLOR_CPU_WORD_THREADS];
    resources.chunkRows = words[VELLOR_CPU_WORD_CHUNK_ROWS];
    resources.flags = words[VELLOR_CPU_WORD_FLAGS];
    return resources;
}

int Resources::threadCount() const
{
    if (threads == 0)
        return ThreadPool::processors();
    return static_cast<int>(std::min(threads, kMaxThreads));
}

} // namespace vellor::cpu
