// Random numbers that are a function of a place on an integer lattice. No guard: scalar.h and simd.h each
// include this once inside their namespace, which gives F, U and the operations.

/// Mixes all bits of a into all bits of the result; a bijection. Shifts and factors: C. Wellons' search,
/// "lowbias32".
inline U mixBits(U a)
{
    a = a ^ (a >> 16);
    a = a * U(0x7feb352du);
    a = a ^ (a >> 15);
    a = a * U(0x846ca68bu);
    return a ^ (a >> 16);
}

/// Hash of a lattice point, evenly spread over 32 bits. `seed` is best itself a hash.
inline U hashLattice(U x, U y, U seed)
{
    return mixBits(x * U(0x9e3779b1u) + mixBits(y * U(0x85ebca77u) + seed));
}

/// The next hash of a series that starts with `hash`.
inline U nextHash(U hash)
{
    return mixBits(hash + U(0x9e3779b9u));
}

/// The upper 24 bits as a number in [0, 1).
inline F unitOf(U hash)
{
    return toFloat(hash >> 8) * F(1.0f / 16777216.0f);
}
