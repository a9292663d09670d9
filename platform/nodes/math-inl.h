// Transcendental functions that give the same bits for one number and for a vector, on every instruction set:
// additions, products, quotients, square roots and bit operations alone, always in the same order, never
// contracted. No guard: scalar.h and simd.h each include this once inside their namespace, which gives F, U
// and the operations.
//
// Errors were measured against double precision over the ranges that tests/mathtest.cpp names, and are
// checked there. "ulp" is the distance of neighbouring floats at the true value.

constexpr float kPi = 3.14159265358979f;

inline F clampOf(F a, F low, F high)
{
    return minOf(maxOf(a, low), high);
}

/// 2^(whole + r), whole from -126 to 127 and r from -0.51 to 0.51: Taylor's series of e^(r ln 2).
inline F exp2OfParts(F whole, F r)
{
    F p = r * F(1.5252733804e-5f) + F(1.5403530393e-4f);
    p = p * r + F(1.3333558146e-3f);
    p = p * r + F(9.6181291076e-3f);
    p = p * r + F(5.5504108665e-2f);
    p = p * r + F(2.4022650696e-1f);
    p = p * r + F(6.9314718056e-1f);
    p = p * r + F(1.0f);
    return p * floatOfBits((toInteger(whole) + U(127u)) << 23);
}

/// 2^x, within 2 ulp. Below -126 the result is 0, above 127.49 it stays at 2^127.49.
inline F exp2Of(F x)
{
    const F clamped = minOf(maxOf(x, F(-126.0f)), F(127.49f));
    const F whole = roundOf(clamped);
    return choose(x < F(-126.0f), F(0.0f), exp2OfParts(whole, clamped - whole));
}

/// e^x, within 2 ulp plus 1e-7 |x| of the result.
inline F expOf(F x)
{
    return exp2Of(x * F(1.44269504089f));
}

/// The logarithm to base 2 of a number from 2^-126 up: a whole number, and the rest from -0.5 to 0.5 within
/// 1e-7.
struct Log2Parts
{
    F whole, rest;
};

inline Log2Parts log2PartsOf(F a)
{
    // Mantissa in [sqrt(1/2), sqrt(2)): move the exponent's step there by an offset in the bits.
    const U shifted = bitsOf(a) - U(0x3f3504f3u);
    const U exponentBits = shifted & U(0xff800000u);
    const F m = floatOfBits(bitsOf(a) - exponentBits);
    const F exponent = toFloat(exponentBits) * F(1.0f / 8388608.0f);
    const F s = (m - F(1.0f)) / (m + F(1.0f)); // log m = 2 artanh s
    const F z = s * s;
    F p = z * F(0.26230818925f) + F(0.32059889797f);
    p = p * z + F(0.41219858311f);
    p = p * z + F(0.57707801636f);
    p = p * z * z + z * F(0.96179669393f);
    return {exponent, s * p + s * F(2.88539008178f)};
}

/// The logarithm to base 2, within 2 ulp or 2e-7 of 1, whichever is more. Below 2^-126, and for what is
/// negative, -126.
inline F log2Of(F x)
{
    const Log2Parts parts = log2PartsOf(maxOf(x, F(1.17549435e-38f)));
    return parts.whole + parts.rest;
}

/// The natural logarithm; limits as log2Of.
inline F logOf(F x)
{
    return log2Of(x) * F(0.69314718056f);
}

/// x^y for x from 0 up, within 2 + |y| ulp wherever the result is from 2^-126 to 2^127. Below, the result is
/// 0, above it stays near 2^127.5. Anything to the 0 is 1; 0, and what is negative, to anything else is 0.
inline F powOfPositive(F x, F y)
{
    const Log2Parts log = log2PartsOf(maxOf(x, F(1.17549435e-38f)));
    // The product of y's first 16 bits with the logarithm's whole part is exact, so that the fraction of y
    // log2 x keeps its bits however large the whole is.
    const F high = floatOfBits(bitsOf(y) & U(0xffffff00u));
    const F large = high * log.whole;
    const F small = y * log.rest + (y - high) * log.whole;
    const F sum = large + small;
    const F whole = roundOf(clampOf(sum, F(-126.0f), F(127.0f)));
    const F power = exp2OfParts(whole, clampOf((large - whole) + small, F(-0.51f), F(0.51f)));
    const F result = choose((x <= F(0.0f)) | (sum < F(-126.0f)), F(0.0f), power);
    return choose(y == F(0.0f), F(1.0f), result);
}

/// x^y: powOfPositive of |x| with a sign. A negative x has powers of whole y alone; with any other y the
/// result is 0.
inline F powOf(F x, F y)
{
    const F magnitude = powOfPositive(absOf(x), y);
    const F half = y * F(0.5f);
    const M whole = floorOf(y) == y;
    const M odd = !(floorOf(half) == half);
    const F negative = choose(whole, choose(odd, -magnitude, magnitude), F(0.0f));
    return choose(x < F(0.0f), negative, magnitude);
}

struct SinCos
{
    F sine, cosine;
};

/// Sine and cosine of (quarter + r) right angles; quarter whole, r from -0.5 to 0.5. Taylor's series, within
/// 1e-7.
inline SinCos sinCosOfQuarters(F quarter, F r)
{
    const F x = r * F(1.57079632679f);
    const F z = x * x;
    F s = z * F(2.7557319224e-6f) - F(1.9841269841e-4f);
    s = s * z + F(8.3333333333e-3f);
    s = s * z - F(1.6666666667e-1f);
    s = s * z * x + x;
    F c = z * F(-2.7557319224e-7f) + F(2.4801587302e-5f);
    c = c * z - F(1.3888888889e-3f);
    c = c * z + F(4.1666666667e-2f);
    c = c * z - F(0.5f);
    c = c * z + F(1.0f);
    const U q = toInteger(quarter - floorOf(quarter * F(0.25f)) * F(4.0f));
    const M swapped = (q & U(1u)) == U(1u);
    const F sine = choose(swapped, c, s);
    const F cosine = choose(swapped, s, c);
    const U sineSign = (q & U(2u)) << 30;
    const U cosineSign = ((q + U(1u)) & U(2u)) << 30;
    return {floatOfBits(bitsOf(sine) ^ sineSign), floatOfBits(bitsOf(cosine) ^ cosineSign)};
}

/// Sine and cosine of an angle in turns, within 2e-7, for any angle up to 2^22 turns. Whole quarters are
/// exact.
inline SinCos sinCosOfTurns(F turns)
{
    const F t = turns * F(4.0f);
    const F quarter = roundOf(t);
    return sinCosOfQuarters(quarter, t - quarter);
}

/// Sine and cosine of an angle in radians, within 3e-7 up to 4096 radians and worse beyond.
inline SinCos sinCosOf(F x)
{
    const F bounded = minOf(maxOf(x, F(-1e7f)), F(1e7f));
    const F quarter = roundOf(bounded * F(0.636619772368f));
    // pi / 2 in three parts; the products with the first two are exact up to 4096 radians.
    const F r = ((bounded - quarter * F(1.5703125f)) - quarter * F(4.837512969970703125e-4f)) -
                quarter * F(7.54978995489188216e-8f);
    return sinCosOfQuarters(quarter, r * F(0.636619772368f));
}

inline F sinOf(F x)
{
    return sinCosOf(x).sine;
}
inline F cosOf(F x)
{
    return sinCosOf(x).cosine;
}

/// Tangent, within 1e-6 of the result away from the poles. At a pole, 0.
inline F tanOf(F x)
{
    const SinCos both = sinCosOf(x);
    return choose(both.cosine == F(0.0f), F(0.0f), both.sine / both.cosine);
}

/// The angle of (x, y) in radians, -pi to pi, within 4e-7. The angle of (0, 0) is 0.
inline F atan2Of(F y, F x)
{
    const F ax = absOf(x), ay = absOf(y);
    const F high = maxOf(ax, ay), low = minOf(ax, ay);
    const F a = choose(high == F(0.0f), F(0.0f), low / choose(high == F(0.0f), F(1.0f), high));
    // Above tan(pi / 8), turn by pi / 4. Polynomial: S. Moshier's single precision arctangent.
    const M turned = a > F(0.414213562373f);
    const F t = choose(turned, (a - F(1.0f)) / (a + F(1.0f)), a);
    const F z = t * t;
    F p = z * F(8.05374449538e-2f) - F(1.38776856032e-1f);
    p = p * z + F(1.99777106478e-1f);
    p = p * z - F(3.33329491539e-1f);
    F angle = (p * z * t + t) + choose(turned, F(0.785398163397f), F(0.0f));
    angle = choose(ay > ax, F(1.57079632679f) - angle, angle);
    angle = choose(x < F(0.0f), F(kPi) - angle, angle);
    return choose(y < F(0.0f), -angle, angle);
}

inline F atanOf(F x)
{
    return atan2Of(x, F(1.0f));
}

/// Arc sine in radians; arguments beyond -1 and 1 count as these.
inline F asinOf(F x)
{
    const F a = minOf(maxOf(x, F(-1.0f)), F(1.0f));
    return atan2Of(a, sqrtOf((F(1.0f) - a) * (F(1.0f) + a)));
}

/// Arc cosine in radians; arguments beyond -1 and 1 count as these.
inline F acosOf(F x)
{
    const F a = minOf(maxOf(x, F(-1.0f)), F(1.0f));
    return atan2Of(sqrtOf((F(1.0f) - a) * (F(1.0f) + a)), a);
}

/// a modulo b with the sign of b, within [0, b); 0 where b is 0.
inline F modOf(F a, F b)
{
    const M zero = b == F(0.0f);
    const F divisor = choose(zero, F(1.0f), b);
    const F r = a - divisor * floorOf(a / divisor);
    return choose(zero, F(0.0f), choose(absOf(r) < absOf(divisor), r, F(0.0f)));
}

inline F lerpOf(F a, F b, F t)
{
    return a + (b - a) * t;
}

/// 3 t^2 - 2 t^3 of the position of x between the edges, held to 0 and 1. Equal edges make a step.
inline F smoothstepOf(F low, F high, F x)
{
    const F span = high - low;
    const M none = span == F(0.0f);
    const F position = (x - low) / choose(none, F(1.0f), span);
    const F t = clampOf(choose(none, choose(x < low, F(0.0f), F(1.0f)), position), F(0.0f), F(1.0f));
    return t * t * (F(3.0f) - F(2.0f) * t);
}
