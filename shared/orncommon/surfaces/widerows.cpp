#include "orncommon/surfaces/widerows.h"

#include <cstddef>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#include <cpuid.h>
#include <immintrin.h>

namespace Orn::Surfaces {

namespace {

constexpr char none = char(0x80); // the byte becomes 0

/// Where the bytes of a vector of pixels come from.
struct Order
{
    char from[16];
};

template<unsigned int From, unsigned int To, bool swap> constexpr Order orderOf()
{
    constexpr unsigned int pixels = 16 / (From > To ? From : To);
    Order order{};
    for (unsigned int i = 0; i < 16; ++i) {
        unsigned int const pixel = i / To, channel = i % To;
        unsigned int const place = swap && channel < 3 ? 2 - channel : channel;
        order.from[i] = pixel < pixels && place < From ? char(pixel * From + place) : none;
    }
    return order;
}

/// Pixels of three or four bytes. Loads and stores reach beyond the pixels at hand, so the last go one by
/// one.
template<unsigned int From, unsigned int To, bool swap>
__attribute__((target("ssse3"))) void shuffle8(void const* source, std::size_t pixels, void* target,
                                               std::uint8_t alpha)
{
    constexpr std::size_t atOnce = 16 / (From > To ? From : To);
    constexpr std::size_t reach = (16 + (From < To ? From : To) - 1) / (From < To ? From : To);
    static constexpr Order order = orderOf<From, To, swap>();
    __m128i const from = _mm_loadu_si128(reinterpret_cast<__m128i const*>(order.from));
    __m128i const opaque = _mm_set1_epi32(From == 3 && To == 4 ? int(std::uint32_t(alpha) << 24) : 0);
    auto const* in = static_cast<std::uint8_t const*>(source);
    auto* out = static_cast<std::uint8_t*>(target);
    std::size_t i = 0;
    for (; i + reach <= pixels; i += atOnce, in += atOnce * From, out += atOnce * To) {
        __m128i const read = _mm_loadu_si128(reinterpret_cast<__m128i const*>(in));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_or_si128(_mm_shuffle_epi8(read, from), opaque));
    }
    for (; i < pixels; ++i, in += From, out += To) {
        std::uint8_t const first = in[0], third = in[2];
        out[0] = swap ? third : first;
        out[1] = in[1];
        out[2] = swap ? first : third;
        if constexpr (To == 4)
            out[3] = From == 4 ? in[From - 1] : alpha;
    }
}

/// Two pixels of three 16-bit components at once.
template<unsigned int From, unsigned int To>
__attribute__((target("ssse3"))) void shuffle16(void const* source, std::size_t pixels, void* target,
                                                std::uint8_t alpha)
{
    __m128i const widen = _mm_setr_epi8(0, 1, 2, 3, 4, 5, none, none, 6, 7, 8, 9, 10, 11, none, none);
    __m128i const narrow = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, none, none, none, none);
    auto const opaqueOne = std::uint16_t(alpha * 257u);
    __m128i const opaque =
        To == 4 ? _mm_set1_epi64x((long long)(std::uint64_t(opaqueOne) << 48)) : _mm_setzero_si128();
    auto const* in = static_cast<std::uint16_t const*>(source);
    auto* out = static_cast<std::uint16_t*>(target);
    std::size_t i = 0;
    for (; i + 3 <= pixels; i += 2, in += 2 * From, out += 2 * To) {
        __m128i const read = _mm_loadu_si128(reinterpret_cast<__m128i const*>(in));
        __m128i const ordered = _mm_shuffle_epi8(read, To == 4 ? widen : narrow);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_or_si128(ordered, opaque));
    }
    for (; i < pixels; ++i, in += From, out += To) {
        std::memcpy(out, in, 3 * sizeof *out);
        if constexpr (To == 4)
            out[3] = opaqueOne;
    }
}

/// Grey to four channels.
__attribute__((target("ssse3"))) void spread8(void const* source, std::size_t pixels, void* target,
                                              std::uint8_t alpha)
{
    __m128i const firstFour = _mm_setr_epi8(0, 0, 0, none, 1, 1, 1, none, 2, 2, 2, none, 3, 3, 3, none);
    __m128i const opaque = _mm_set1_epi32(int(std::uint32_t(alpha) << 24));
    auto const* in = static_cast<std::uint8_t const*>(source);
    auto* out = static_cast<std::uint8_t*>(target);
    std::size_t i = 0;
    for (; i + 4 <= pixels; i += 4, out += 16) {
        int four = 0;
        std::memcpy(&four, in + i, sizeof four);
        __m128i const spread = _mm_shuffle_epi8(_mm_cvtsi32_si128(four), firstFour);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_or_si128(spread, opaque));
    }
    for (; i < pixels; ++i, out += 4) {
        out[0] = out[1] = out[2] = in[i];
        out[3] = alpha;
    }
}

/// Eight floats as halves: rounded to the nearest, ties to even. NaN has no payload here.
__attribute__((target("avx2,f16c"))) inline __m128i halvesOf(__m256 values)
{
    __m128i const halves = _mm256_cvtps_ph(values, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
    __m256i const unordered = _mm256_castps_si256(_mm256_cmp_ps(values, values, _CMP_UNORD_Q));
    __m128i const isNaN =
        _mm_packs_epi32(_mm256_castsi256_si128(unordered), _mm256_extracti128_si256(unordered, 1));
    __m128i const sign = _mm_and_si128(halves, _mm_set1_epi16(short(0x8000)));
    return _mm_blendv_epi8(halves, _mm_or_si128(sign, _mm_set1_epi16(0x7E00)), isNaN);
}

/// Eight floats of 0..1, beyond which they are clamped, as integers up to `most` in 16 bits. NaN is 0.
__attribute__((target("avx2,f16c"))) inline __m128i integersOf(__m256 values, float most)
{
    __m256 const above = _mm256_max_ps(values, _mm256_setzero_ps()); // the second where one is NaN
    __m256 const unit = _mm256_min_ps(above, _mm256_set1_ps(1.0f));
    __m256 const scaled = _mm256_add_ps(_mm256_mul_ps(unit, _mm256_set1_ps(most)), _mm256_set1_ps(0.5f));
    __m256i const whole = _mm256_cvttps_epi32(scaled);
    return _mm_packus_epi32(_mm256_castsi256_si128(whole), _mm256_extracti128_si256(whole, 1));
}

__attribute__((target("avx2,f16c"))) inline __m128i wordsOf(__m256 values)
{
    return integersOf(values, 65535.0f);
}

/// Halves to 8 bits.
template<unsigned int Channels>
__attribute__((target("avx2,f16c"))) void narrowHalves(void const* source, std::size_t pixels, void* target,
                                                       std::uint8_t)
{
    std::size_t const count = pixels * Channels;
    auto const* in = static_cast<std::uint16_t const*>(source);
    auto* out = static_cast<std::uint8_t*>(target);
    auto const narrowed = [](void const* halves) __attribute__((target("avx2,f16c")))
    {
        __m256 const floats = _mm256_cvtph_ps(_mm_loadu_si128(static_cast<__m128i const*>(halves)));
        __m128i const words = integersOf(floats, 255.0f);
        return _mm_packus_epi16(words, words);
    };
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8)
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i), narrowed(in + i));
    if (i == count)
        return;
    std::uint16_t last[8] = {};
    std::uint8_t bytes[8];
    std::memcpy(last, in + i, (count - i) * sizeof *in);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes), narrowed(last));
    std::memcpy(out + i, bytes, count - i);
}

template<unsigned int Channels, __m128i narrow(__m256)>
__attribute__((target("avx2,f16c"))) void narrowFloats(void const* source, std::size_t pixels, void* target,
                                                       std::uint8_t)
{
    std::size_t const count = pixels * Channels;
    auto const* in = static_cast<float const*>(source);
    auto* out = static_cast<std::uint16_t*>(target);
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), narrow(_mm256_loadu_ps(in + i)));
    if (i == count)
        return;
    float last[8] = {};
    std::uint16_t narrowed[8];
    std::memcpy(last, in + i, (count - i) * sizeof *in);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(narrowed), narrow(_mm256_loadu_ps(last)));
    std::memcpy(out + i, narrowed, (count - i) * sizeof *out);
}

enum class Needs
{
    Ssse3,
    Avx2AndHalves,
};

struct Way
{
    PixelFormat from;
    PixelFormat to;
    Needs needs;
    DirectRow row;
};

constexpr Way ways[] = {
    {RGBA8, RGB8, Needs::Ssse3, shuffle8<4, 3, false>},
    {BGRA8, BGR8, Needs::Ssse3, shuffle8<4, 3, false>},
    {RGBA8, BGR8, Needs::Ssse3, shuffle8<4, 3, true>},
    {BGRA8, RGB8, Needs::Ssse3, shuffle8<4, 3, true>},
    {RGB8, RGBA8, Needs::Ssse3, shuffle8<3, 4, false>},
    {BGR8, BGRA8, Needs::Ssse3, shuffle8<3, 4, false>},
    {RGB8, BGRA8, Needs::Ssse3, shuffle8<3, 4, true>},
    {BGR8, RGBA8, Needs::Ssse3, shuffle8<3, 4, true>},
    {RGB8, BGR8, Needs::Ssse3, shuffle8<3, 3, true>},
    {BGR8, RGB8, Needs::Ssse3, shuffle8<3, 3, true>},
    {L8, RGBA8, Needs::Ssse3, spread8},
    {L8, BGRA8, Needs::Ssse3, spread8},
    {RGB16, RGBA16, Needs::Ssse3, shuffle16<3, 4>},
    {RGBA16, RGB16, Needs::Ssse3, shuffle16<4, 3>},
    {RGBA16F, RGB16F, Needs::Ssse3, shuffle16<4, 3>},
    {L32F, L16F, Needs::Avx2AndHalves, narrowFloats<1, halvesOf>},
    {RGB32F, RGB16F, Needs::Avx2AndHalves, narrowFloats<3, halvesOf>},
    {RGBA32F, RGBA16F, Needs::Avx2AndHalves, narrowFloats<4, halvesOf>},
    {L16F, L8, Needs::Avx2AndHalves, narrowHalves<1>},
    {RGB16F, RGB8, Needs::Avx2AndHalves, narrowHalves<3>},
    {RGBA16F, RGBA8, Needs::Avx2AndHalves, narrowHalves<4>},
    {L32F, L16, Needs::Avx2AndHalves, narrowFloats<1, wordsOf>},
    {RGB32F, RGB16, Needs::Avx2AndHalves, narrowFloats<3, wordsOf>},
    {RGBA32F, RGBA16, Needs::Avx2AndHalves, narrowFloats<4, wordsOf>},
};

bool has(Needs needs)
{
    if (needs == Needs::Ssse3)
        return __builtin_cpu_supports("ssse3");
    unsigned int a = 0, b = 0, c = 0, d = 0;
    bool const hasHalves = __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_F16C) != 0;
    return hasHalves && __builtin_cpu_supports("avx2");
}

} // namespace

DirectRow wideRow(PixelFormat from, PixelFormat to)
{
    for (Way const& way : ways)
        if (way.from == from && way.to == to && has(way.needs))
            return way.row;
    return nullptr;
}

} // namespace Orn::Surfaces

#else

namespace Orn::Surfaces {

DirectRow wideRow(PixelFormat, PixelFormat)
{
    return nullptr;
}

} // namespace Orn::Surfaces

#endif
