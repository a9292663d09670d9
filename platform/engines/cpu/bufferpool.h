#pragma once

// Memory for pictures and strips.
//
// Touching fresh memory costs more than several passes over it, so blocks that are given back are kept and
// handed out again. Large blocks start at a multiple of 2 MiB and ask for huge pages. Blocks are never
// cleared.
//
// Any thread. Buffers hold the pool alive; what the pool still keeps goes with the last of them.

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>

namespace vellor::cpu {

class BufferPool;

/// One block of the pool, owned. Aligned to 64 bytes at least. Moves; empty after it was moved from.
class Buffer
{
public:
    Buffer() = default;
    Buffer(Buffer&& other) noexcept;
    Buffer& operator=(Buffer&& other) noexcept;
    ~Buffer();

    float* floats() const { return static_cast<float*>(data_); }
    std::byte* bytes() const { return static_cast<std::byte*>(data_); }
    std::size_t capacity() const { return capacity_; }

private:
    friend class BufferPool;
    std::shared_ptr<BufferPool> pool_;
    void* data_ = nullptr;
    std::size_t capacity_ = 0;
};

class BufferPool : public std::enable_shared_from_this<BufferPool>
{
public:
    static std::shared_ptr<BufferPool> make() { return std::make_shared<BufferPool>(); }
    BufferPool() = default;
    BufferPool(const BufferPool&) = delete;
    BufferPool& operator=(const BufferPool&) = delete;
    ~BufferPool();

    /// A block of at least `size` bytes. Throws std::bad_alloc.
    Buffer acquire(std::size_t size);
    /// Gives kept blocks back to the system until at most `keep` bytes of them are left.
    void trim(std::size_t keep);
    /// How many bytes of blocks that nobody uses the pool keeps at most.
    void setKeepLimit(std::size_t bytes);
    std::size_t keptBytes() const;

private:
    friend class Buffer;
    void release(void* data, std::size_t capacity) noexcept;
    void* takeKept(std::size_t wanted, std::size_t& capacity);

    mutable std::mutex mutex_;
    std::multimap<std::size_t, void*> kept_; // by capacity
    std::size_t keptBytes_ = 0;
    std::size_t keepLimit_ = std::size_t(256) << 20;
};

} // namespace vellor::cpu
