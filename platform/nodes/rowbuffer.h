#pragma once

// Room for rows of pixels that a kernel works on for the length of one job.

#include <hwy/aligned_allocator.h>

#include <cstddef>
#include <new>

namespace vellor::nodes {

/// Floats in memory aligned for vectors, with room for a vector beyond the last. Not initialised.
class RowBuffer
{
public:
    /// Throws std::bad_alloc.
    explicit RowBuffer(std::size_t count) : m_floats(hwy::AllocateAligned<float>(count + kPadding))
    {
        if (!m_floats)
            throw std::bad_alloc();
    }
    float* data() { return m_floats.get(); }
    const float* data() const { return m_floats.get(); }

private:
    static constexpr std::size_t kPadding = 64;
    hwy::AlignedFreeUniquePtr<float[]> m_floats;
};

} // namespace vellor::nodes
