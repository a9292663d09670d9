#include "platform/engines/cpu/pixelkernels.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "platform/engines/cpu/pixelkernels.cpp"
#include <hwy/foreach_target.h>

#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vellor::cpu::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using FloatTag = hn::ScalableTag<float>;
using WordTag = hn::ScalableTag<std::uint32_t>;
using IntegerTag = hn::ScalableTag<std::int32_t>;
using F = hn::Vec<FloatTag>;
using U = hn::Vec<WordTag>;
using I = hn::Vec<IntegerTag>;

constexpr int kLanes = static_cast<int>(hn::MaxLanes(FloatTag()));
/// Bytes that planes and pixels are read ahead, two pages, where processors start anew by themselves. Into
/// the second cache, which waits for more lines at once than the first.
constexpr int kAhead = 8192;

HWY_INLINE void fetchAhead(const void* at)
{
    __builtin_prefetch(static_cast<const std::uint8_t*>(at) + kAhead, 0, 2);
}

HWY_INLINE F number(float value)
{
    return hn::Set(FloatTag(), value);
}

HWY_INLINE F read(const float* plane, int x)
{
    fetchAhead(plane + x);
    return hn::Load(FloatTag(), plane + x);
}

// ---- Depths: one channel as a word in the low bits of a lane, and back. ----

/// The integer part of numbers from 0 to 2^31 - 1, without what hn::ConvertTo does for others.
HWY_INLINE U truncated(F v)
{
#if HWY_TARGET == HWY_AVX3
    return U{_mm512_cvttps_epi32(v.raw)};
#elif HWY_TARGET == HWY_AVX2
    return U{_mm256_cvttps_epi32(v.raw)};
#else
    return hn::BitCast(WordTag(), hn::ConvertTo(IntegerTag(), v));
#endif
}

template<int greatest> struct Integer
{
    static HWY_INLINE U pack(F v)
    {
        v = hn::Min(hn::Max(v, hn::Zero(FloatTag())), number(1.0f)); // NaN gives the second
        v = hn::Add(hn::Mul(v, number(static_cast<float>(greatest))), number(0.5f));
        return truncated(v);
    }
    /// v / greatest, correctly rounded: the product with 2^-8 or 2^-16 is exact, the other is small. With the
    /// second one's rounding or without, all words come to the same.
    static HWY_INLINE F unpack(U word)
    {
        constexpr double kShare = 1.0 / greatest, kExact = 1.0 / (greatest + 1);
        const F v = hn::ConvertTo(FloatTag(), hn::BitCast(IntegerTag(), word));
        return hn::MulAdd(v, number(static_cast<float>(kShare - kExact)),
                          hn::Mul(v, number(static_cast<float>(kExact))));
    }
};

struct U8 : Integer<255>
{
    using Word = std::uint8_t;
};

struct U16 : Integer<65535>
{
    using Word = std::uint16_t;
};

/// Half floats by integer steps, since not every instruction set converts them.
struct F16
{
    using Word = std::uint16_t;

    static HWY_INLINE U pack(F v)
    {
        const WordTag w;
        const IntegerTag i;
        const auto below = [&](U a, std::uint32_t b) HWY_ATTR {
            return hn::RebindMask(w, hn::Lt(hn::BitCast(i, a), hn::Set(i, static_cast<std::int32_t>(b))));
        };
        const U bits = hn::BitCast(w, v);
        const U sign = hn::And(hn::ShiftRight<16>(bits), hn::Set(w, 0x8000u));
        const U magnitude = hn::And(bits, hn::Set(w, 0x7fffffffu));
        // Below 2^-14 the result is denormal: adding 0.5 lets the float unit shift and round the mantissa.
        const F shifted = hn::Add(hn::BitCast(FloatTag(), magnitude), number(0.5f));
        const U denormal = hn::Sub(hn::BitCast(w, shifted), hn::Set(w, 0x3f000000u));
        const U odd = hn::And(hn::ShiftRight<13>(magnitude), hn::Set(w, 1u));
        const U normal = hn::ShiftRight<13>(hn::Add(hn::Add(magnitude, hn::Set(w, 0xc8000fffu)), odd));
        const U special =
            hn::IfThenElse(below(magnitude, 0x7f800001u), hn::Set(w, 0x7c00u), hn::Set(w, 0x7e00u));
        const U half = hn::IfThenElse(below(magnitude, 0x38800000u), denormal, normal);
        return hn::Or(hn::IfThenElse(below(magnitude, 0x47800000u), half, special), sign);
    }

    static HWY_INLINE F unpack(U word)
    {
        const WordTag w;
        const IntegerTag i;
        const U magnitude = hn::And(word, hn::Set(w, 0x7fffu));
        const auto below = [&](std::int32_t b) HWY_ATTR {
            return hn::RebindMask(w, hn::Lt(hn::BitCast(i, magnitude), hn::Set(i, b)));
        };
        const F small =
            hn::Mul(hn::ConvertTo(FloatTag(), hn::BitCast(i, magnitude)), number(5.9604644775390625e-8f));
        const U shifted = hn::ShiftLeft<13>(magnitude);
        const U normal = hn::Add(shifted, hn::Set(w, 0x38000000u));
        const U special = hn::Add(shifted, hn::Set(w, 0x70000000u));
        U bits = hn::IfThenElse(below(0x7c00), normal, special);
        bits = hn::IfThenElse(below(0x400), hn::BitCast(w, small), bits);
        return hn::BitCast(FloatTag(), hn::Or(bits, hn::ShiftLeft<16>(hn::And(word, hn::Set(w, 0x8000u)))));
    }
};

// ---- Planes to pixels. ----

template<class Depth> HWY_INLINE auto narrow(U words)
{
    return hn::DemoteTo(hn::Rebind<typename Depth::Word, IntegerTag>(), hn::BitCast(IntegerTag(), words));
}

template<class Depth> void packGrey(const float* const* in, int count, std::uint8_t* out)
{
    auto* to = reinterpret_cast<typename Depth::Word*>(out);
    for (int x = 0; x < count; x += kLanes)
        hn::StoreU(narrow<Depth>(Depth::pack(read(in[0], x))), hn::Rebind<typename Depth::Word, IntegerTag>(),
                   to + x);
}

template<class Depth> void packRgb(const float* const* in, int count, std::uint8_t* out)
{
    auto* to = reinterpret_cast<typename Depth::Word*>(out);
    for (int x = 0; x < count; x += kLanes)
        hn::StoreInterleaved3(narrow<Depth>(Depth::pack(read(in[0], x))),
                              narrow<Depth>(Depth::pack(read(in[1], x))),
                              narrow<Depth>(Depth::pack(read(in[2], x))),
                              hn::Rebind<typename Depth::Word, IntegerTag>(), to + 3 * x);
}

HWY_INLINE U rgba8At(const float* const* in, int x)
{
    const U low = hn::Or(U8::pack(read(in[0], x)), hn::ShiftLeft<8>(U8::pack(read(in[1], x))));
    const U high = hn::Or(U8::pack(read(in[2], x)), hn::ShiftLeft<8>(U8::pack(read(in[3], x))));
    return hn::Or(low, hn::ShiftLeft<16>(high));
}

void packRgba8(const float* const* in, int count, std::uint8_t* out)
{
    for (int x = 0; x < count; x += kLanes)
        hn::StoreU(rgba8At(in, x), WordTag(), reinterpret_cast<std::uint32_t*>(out) + x);
}

void streamRgba8(const float* const* in, int count, std::uint8_t* out)
{
    for (int x = 0; x < count; x += kLanes)
        hn::Stream(rgba8At(in, x), WordTag(), reinterpret_cast<std::uint32_t*>(out) + x);
}

template<class Depth> void packRgba16(const float* const* in, int count, std::uint8_t* out)
{
    for (int x = 0; x < count; x += kLanes) {
        const U low = hn::Or(Depth::pack(read(in[0], x)), hn::ShiftLeft<16>(Depth::pack(read(in[1], x))));
        const U high = hn::Or(Depth::pack(read(in[2], x)), hn::ShiftLeft<16>(Depth::pack(read(in[3], x))));
        hn::StoreInterleaved2(low, high, WordTag(), reinterpret_cast<std::uint32_t*>(out) + 2 * x);
    }
}

void packFloats(int channels, const float* const* in, int count, float* out)
{
    const FloatTag tag;
    if (channels == 1)
        std::memcpy(out, in[0], sizeof(float) * static_cast<std::size_t>(count));
    for (int x = 0; channels == 3 && x < count; x += kLanes)
        hn::StoreInterleaved3(read(in[0], x), read(in[1], x), read(in[2], x), tag, out + 3 * x);
    for (int x = 0; channels == 4 && x < count; x += kLanes)
        hn::StoreInterleaved4(read(in[0], x), read(in[1], x), read(in[2], x), read(in[3], x), tag,
                              out + 4 * x);
}

void pack(const RawFormat& format, const float* const* in, int count, std::uint8_t* out)
{
    using Pack = void (*)(const float* const*, int, std::uint8_t*);
    static constexpr Pack kPack[3][3] = {{packGrey<U8>, packRgb<U8>, packRgba8},
                                         {packGrey<U16>, packRgb<U16>, packRgba16<U16>},
                                         {packGrey<F16>, packRgb<F16>, packRgba16<F16>}};
    if (format.depth == RawFormat::Depth::F32)
        packFloats(format.channels, in, count, reinterpret_cast<float*>(out));
    else
        kPack[static_cast<int>(format.depth)][format.channels == 1 ? 0 : format.channels - 2](in, count, out);
}

// ---- Pixels to planes. ----

HWY_INLINE void put(F v, float* plane, int x)
{
    if (plane)
        hn::Store(v, FloatTag(), plane + x);
}

template<class Narrow> HWY_INLINE U widen(Narrow v)
{
    return hn::BitCast(WordTag(), hn::PromoteTo(IntegerTag(), v));
}

template<class Depth> void unpackGrey(const std::uint8_t* in, int count, float* const* to)
{
    const auto* from = reinterpret_cast<const typename Depth::Word*>(in);
    const hn::Rebind<typename Depth::Word, IntegerTag> tag;
    for (int x = 0; x < count; x += kLanes) {
        fetchAhead(from + x);
        put(Depth::unpack(widen(hn::LoadU(tag, from + x))), to[0], x);
    }
}

template<class Depth> void unpackRgb(const std::uint8_t* in, int count, float* const* to)
{
    const auto* from = reinterpret_cast<const typename Depth::Word*>(in);
    const hn::Rebind<typename Depth::Word, IntegerTag> tag;
    for (int x = 0; x < count; x += kLanes) {
        fetchAhead(from + 3 * x);
        hn::Vec<decltype(tag)> r, g, b;
        hn::LoadInterleaved3(tag, from + 3 * x, r, g, b);
        put(Depth::unpack(widen(r)), to[0], x);
        put(Depth::unpack(widen(g)), to[1], x);
        put(Depth::unpack(widen(b)), to[2], x);
    }
}

void unpackRgba8(const std::uint8_t* in, int count, float* const* to)
{
    const U byte = hn::Set(WordTag(), 255u);
    float *const r = to[0], *const g = to[1], *const b = to[2], *const a = to[3];
    for (int x = 0; x < count; x += kLanes) {
        fetchAhead(in + 4 * x);
        const U pixels = hn::LoadU(WordTag(), reinterpret_cast<const std::uint32_t*>(in) + x);
        put(U8::unpack(hn::And(pixels, byte)), r, x);
        put(U8::unpack(hn::And(hn::ShiftRight<8>(pixels), byte)), g, x);
        put(U8::unpack(hn::And(hn::ShiftRight<16>(pixels), byte)), b, x);
        put(U8::unpack(hn::ShiftRight<24>(pixels)), a, x);
    }
}

template<class Depth> void unpackRgba16(const std::uint8_t* in, int count, float* const* to)
{
    const U word = hn::Set(WordTag(), 65535u);
    for (int x = 0; x < count; x += kLanes) {
        fetchAhead(in + 8 * x);
        U low, high;
        hn::LoadInterleaved2(WordTag(), reinterpret_cast<const std::uint32_t*>(in) + 2 * x, low, high);
        put(Depth::unpack(hn::And(low, word)), to[0], x);
        put(Depth::unpack(hn::ShiftRight<16>(low)), to[1], x);
        put(Depth::unpack(hn::And(high, word)), to[2], x);
        put(Depth::unpack(hn::ShiftRight<16>(high)), to[3], x);
    }
}

void unpackFloats(int channels, const float* in, int count, float* const* to)
{
    const FloatTag tag;
    F r, g, b, a;
    for (int x = 0; channels == 1 && x < count; x += kLanes)
        put(hn::LoadU(tag, in + x), to[0], x);
    for (int x = 0; channels == 3 && x < count; x += kLanes) {
        hn::LoadInterleaved3(tag, in + 3 * x, r, g, b);
        put(r, to[0], x);
        put(g, to[1], x);
        put(b, to[2], x);
    }
    for (int x = 0; channels == 4 && x < count; x += kLanes) {
        hn::LoadInterleaved4(tag, in + 4 * x, r, g, b, a);
        put(r, to[0], x);
        put(g, to[1], x);
        put(b, to[2], x);
        put(a, to[3], x);
    }
}

void unpack(const RawFormat& format, const std::uint8_t* in, int count, float* const* to)
{
    using Unpack = void (*)(const std::uint8_t*, int, float* const*);
    static constexpr Unpack kUnpack[3][3] = {{unpackGrey<U8>, unpackRgb<U8>, unpackRgba8},
                                             {unpackGrey<U16>, unpackRgb<U16>, unpackRgba16<U16>},
                                             {unpackGrey<F16>, unpackRgb<F16>, unpackRgba16<F16>}};
    if (format.depth == RawFormat::Depth::F32)
        unpackFloats(format.channels, reinterpret_cast<const float*>(in), count, to);
    else
        kUnpack[static_cast<int>(format.depth)][format.channels == 1 ? 0 : format.channels - 2](in, count,
                                                                                                to);
}

// ---- Planes to planes. ----

void greyOf(const float* const* in, int count, float* out)
{
    const F r = number(0.2126f), g = number(0.7152f), b = number(0.0722f);
    for (int x = 0; x < count; x += kLanes)
        hn::Store(hn::Add(hn::Add(hn::Mul(read(in[0], x), r), hn::Mul(read(in[1], x), g)),
                          hn::Mul(read(in[2], x), b)),
                  FloatTag(), out + x);
}

void halve(const float* above, const float* below, int count, float* out)
{
    const FloatTag tag;
    int x = 0;
    for (; x + kLanes <= count; x += kLanes) {
        F left, right, leftBelow, rightBelow;
        hn::LoadInterleaved2(tag, above + 2 * x, left, right);
        hn::LoadInterleaved2(tag, below + 2 * x, leftBelow, rightBelow);
        hn::StoreU(hn::Mul(hn::Add(hn::Add(left, right), hn::Add(leftBelow, rightBelow)), number(0.25f)), tag,
                   out + x);
    }
    for (; x < count; ++x)
        out[x] = ((above[2 * x] + above[2 * x + 1]) + (below[2 * x] + below[2 * x + 1])) * 0.25f;
}

void stream(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes, const Ahead& ahead)
{
    constexpr std::size_t kLine = 64;
    const hn::ScalableTag<std::uint8_t> tag;
    const std::size_t head = (kLine - reinterpret_cast<std::uintptr_t>(to) % kLine) % kLine;
    if (bytes < head + kLine) {
        std::memcpy(to, from, bytes);
        return;
    }
    std::memcpy(to, from, head);
    std::size_t at = head, fetched = 0;
    const std::size_t step = (ahead.bytes + bytes - 1) / bytes * kLine; // of each row with every line
    for (; at + kLine <= bytes; at += kLine) {
        for (const std::size_t end = std::min(ahead.bytes, fetched + step); fetched < end; fetched += kLine)
            for (int row = 0; row < ahead.count; ++row)
                hwy::Prefetch(static_cast<const std::uint8_t*>(ahead.rows[row]) + fetched);
        for (std::size_t part = 0; part < kLine; part += hn::MaxLanes(tag))
            hn::Stream(hn::LoadU(tag, from + at + part), tag, to + at + part);
    }
    std::memcpy(to + at, from + at, bytes - at);
}

} // namespace
} // namespace vellor::cpu::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vellor::cpu {

HWY_EXPORT(pack);
HWY_EXPORT(unpack);
HWY_EXPORT(greyOf);
HWY_EXPORT(halve);
HWY_EXPORT(stream);
HWY_EXPORT(streamRgba8);

void packPixels(const RawFormat& format, const float* const* in, int count, std::uint8_t* out)
{
    HWY_DYNAMIC_DISPATCH(pack)(format, in, count, out);
}

void unpackPixels(const RawFormat& format, const std::uint8_t* in, int count, float* const* to)
{
    HWY_DYNAMIC_DISPATCH(unpack)(format, in, count, to);
}

void luminance(const float* const* in, int count, float* out)
{
    HWY_DYNAMIC_DISPATCH(greyOf)(in, count, out);
}

void halvePixels(const float* above, const float* below, int count, float* out)
{
    HWY_DYNAMIC_DISPATCH(halve)(above, below, count, out);
}

void streamBytes(void* to, const void* from, std::size_t bytes, const Ahead& ahead)
{
    HWY_DYNAMIC_DISPATCH(stream)
    (static_cast<std::uint8_t*>(to), static_cast<const std::uint8_t*>(from), bytes, ahead);
}

void fetch(const Ahead& ahead)
{
    for (int row = 0; row < ahead.count; ++row)
        for (std::size_t at = 0; at < ahead.bytes; at += 64)
            __builtin_prefetch(static_cast<const std::uint8_t*>(ahead.rows[row]) + at, 0, 2);
}

bool streamPixels(const RawFormat& format, const float* const* in, int count, std::uint8_t* out)
{
    constexpr int kLine = 64;
    if (format.depth != RawFormat::Depth::U8 || format.channels != 4 || count * 4 % kLine != 0 ||
        reinterpret_cast<std::uintptr_t>(out) % kLine != 0)
        return false;
    HWY_DYNAMIC_DISPATCH(streamRgba8)(in, count, out);
    return true;
}

void endStreaming()
{
    hwy::FlushStream();
}

} // namespace vellor::cpu
#endif
