// Numbers that belong to the columns of a lattice, and the pixels between them, for the instruction set that
// is being compiled. Included after simd.h.

#if defined(VELLOR_NODES_LATTICE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_NODES_LATTICE_INL_H
#undef VELLOR_NODES_LATTICE_INL_H
#else
#define VELLOR_NODES_LATTICE_INL_H
#endif

#include "platform/nodes/scalar.h"
#include "platform/nodes/simd.h"

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// K. Perlin's weights of 2002, from 0 to 1 with no slope and no curvature at the ends.
HWY_INLINE F fadeOf(F t)
{
    return t * t * t * (t * (t * F(6.0f) - F(15.0f)) + F(10.0f));
}
inline float fadeOf(float t)
{
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

/// A whole number modulo a count of cells; exact up to 2^23.
HWY_INLINE U wrappedCell(F cell, float count)
{
    // The quotient's rounding is one cell off at most.
    const F rest = cell - F(count) * floorOf(cell * F(1.0f / count));
    const F above = choose(rest < F(0.0f), rest + F(count), rest);
    return toInteger(choose(above < F(count), above, above - F(count)));
}

/// An angle around a lattice point with this hash, in turns. Angles go around in a turn of evolution, half of
/// them backwards, so that time loops.
HWY_INLINE F turningAngle(U hash, float evolution)
{
    return unitOf(hash) + choose((hash & U(1u)) == U(1u), F(evolution), F(-evolution));
}

/// Reads lines of numbers, one for each lattice column from `first` on, at the columns of neighbouring
/// pixels: any columns that follow one another from the first lane to the last.
class FarColumns
{
public:
    HWY_INLINE FarColumns(U column, int first) : m_index(column - U(static_cast<std::uint32_t>(first))) {}
    HWY_INLINE F read(const float* line) const { return gather(line, m_index); }
    /// Each lane `steps` columns further, which may differ from lane to lane.
    HWY_INLINE FarColumns moved(U steps) const { return FarColumns(m_index + steps, 0); }

private:
    U m_index;
};

/// The same where cells are at least two pixels wide: a vector of pixels touches no more columns than a
/// register holds.
class NearColumns
{
public:
    HWY_INLINE NearColumns(U column, int first)
        : m_base(static_cast<int>(hn::GetLane(column.v)) - first),
          m_index(column - U(static_cast<std::uint32_t>(m_base + first)))
    {
    }
    HWY_INLINE F read(const float* line) const
    {
        return hn::TableLookupLanes(hn::LoadU(FloatTag(), line + m_base),
                                    hn::IndicesFromVec(FloatTag(), hn::BitCast(IntegerTag(), m_index.v)));
    }
    HWY_INLINE NearColumns moved(U steps) const { return NearColumns(m_base, m_index + steps); }

private:
    HWY_INLINE NearColumns(int base, U index) : m_base(base), m_index(index) {}

    int m_base;
    U m_index; // from m_base on
};

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
