#include "platform/engines/cpu/bufferpool.h"

#include <cstdlib>
#include <new>
#include <utility>

#include <sys/mman.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VELLOR_POISONS
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define VELLOR_POISONS
#endif
#ifdef VELLOR_POISONS
#include <sanitizer/asan_interface.h>
#endif

namespace vellor::cpu {
namespace {

constexpr std::size_t kHugePage = std::size_t(2) << 20;
constexpr std::size_t kSmallStep = std::size_t(16) << 10;

std::size_t roundUp(std::size_t size, std::size_t step)
{
    return (size + step - 1) / step * step;
}

/// Tells the address sanitizer, where there is one, which `size` of a block's bytes may be touched.
void openOnly([[maybe_unused]] void* data, [[maybe_unused]] std::size_t size,
              [[maybe_unused]] std::size_t capacity)
{
#ifdef VELLOR_POISONS
    ASAN_UNPOISON_MEMORY_REGION(data, size);
    ASAN_POISON_MEMORY_REGION(static_cast<std::byte*>(data) + size, capacity - size);
#endif
}

void* allocate(std::size_t capacity)
{
    void* data = nullptr;
    const bool large = capacity >= kHugePage;
    if (posix_memalign(&data, large ? kHugePage : 4096, capacity) != 0)
        return nullptr;
    if (large)
        madvise(data, capacity, MADV_HUGEPAGE); // a wish: its failure changes nothing but the speed
    return data;
}

} // namespace

Buffer::Buffer(Buffer&& other) noexcept
    : pool_(std::move(other.pool_)), data_(std::exchange(other.data_, nullptr)),
      capacity_(std::exchange(other.capacity_, 0))
{
}

Buffer& Buffer::operator=(Buffer&& other) noexcept
{
    std::swap(pool_, other.pool_);
    std::swap(data_, other.data_);
    std::swap(capacity_, other.capacity_);
    return *this;
}

Buffer::~Buffer()
{
    if (data_)
        pool_->release(data_, capacity_);
}

BufferPool::~BufferPool()
{
    trim(0);
}

Buffer BufferPool::acquire(std::size_t size)
{
    if (size > (std::size_t(1) << 48))
        throw std::bad_alloc();
    std::size_t capacity =
        size >= kHugePage ? roundUp(size, kHugePage) : roundUp(size ? size : 1, kSmallStep);
    Buffer buffer;
    buffer.data_ = takeKept(capacity, capacity);
    if (!buffer.data_)
        buffer.data_ = allocate(capacity);
    if (!buffer.data_) { // what is kept may be what is missing
        trim(0);
        buffer.data_ = allocate(capacity);
    }
    if (!buffer.data_)
        throw std::bad_alloc();
    buffer.capacity_ = capacity;
    buffer.pool_ = shared_from_this();
    openOnly(buffer.data_, size, capacity);
    return buffer;
}

void* BufferPool::takeKept(std::size_t wanted, std::size_t& capacity)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = kept_.lower_bound(wanted);
    // A block a quarter larger than wanted is better used than left; beyond that it is waste.
    if (found == kept_.end() || found->first > wanted + wanted / 4)
        return nullptr;
    capacity = found->first;
    void* data = found->second;
    keptBytes_ -= capacity;
    kept_.erase(found);
    return data;
}

void BufferPool::release(void* data, std::size_t capacity) noexcept
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (keptBytes_ + capacity <= keepLimit_) {
            try {
                kept_.emplace(capacity, data);
                keptBytes_ += capacity;
                openOnly(data, 0, capacity);
                return;
            } catch (const std::bad_alloc&) {
            }
        }
    }
    std::free(data);
}

void BufferPool::trim(std::size_t keep)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    while (keptBytes_ > keep && !kept_.empty()) {
        const auto largest = std::prev(kept_.end());
        keptBytes_ -= largest->first;
        std::free(largest->second);
        kept_.erase(largest);
    }
}

void BufferPool::setKeepLimit(std::size_t bytes)
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        keepLimit_ = bytes;
    }
    trim(bytes);
}

std::size_t BufferPool::keptBytes() const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return keptBytes_;
}

} // namespace vellor::cpu
