// The row of a result that a point kernel writes, for the instruction set that is being compiled. Includes
// simd.h.

#if defined(VELLOR_NODES_RESULTROW_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_RESULTROW_INL_H
#undef VELLOR_NODES_RESULTROW_INL_H
#else
#define VELLOR_NODES_RESULTROW_INL_H
#endif

#include "platform/nodes/node.h"
#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// Channel c of a job's result. Pixels are put from the first to the last, by vectors, and not read again:
/// those that no cache holds go past the caches, which saves reading the lines that they fill. Best for
/// kernels that read several planes at once: where one is read and one written, row for row, the engine's way
/// by rows in the first cache is the faster one.
class ResultRow
{
public:
    HWY_INLINE ResultRow(const RowJob& job, int c) : m_to(job.result[c]), m_pastCaches(job.pastCaches) {}

    /// Pixels i, i + 1, ... of the row; i is a multiple of the vectors' length.
    HWY_INLINE void put(int i, F value) const
    {
        if (m_pastCaches)
            hn::Stream(value.v, FloatTag(), m_to + i);
        else
            store(value, m_to + i);
    }

private:
    float* m_to;
    bool m_pastCaches;
};

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
