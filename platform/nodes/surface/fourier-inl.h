// Fourier transforms of as many lines at once as a vector has lanes, for the instruction set that is being
// compiled: value n of line l lies at n * kLanes + l. Included by kernels' files after simd.h.
//
// Powers of two by T. Stockham's self-sorting form of the fast Fourier transform; other lengths as a
// convolution with a chirp (L. Bluestein, 1970).

#if defined(VELLOR_FOURIER_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLOR_FOURIER_INL_H
#undef VELLOR_FOURIER_INL_H
#else
#define VELLOR_FOURIER_INL_H
#endif

#include "platform/nodes/simd.h"
#include "platform/nodes/surface/fourier.h"

#include <hwy/aligned_allocator.h>

#include <new>
#include <utility>

HWY_BEFORE_NAMESPACE();
namespace vellor::nodes::HWY_NAMESPACE {

/// Buffers and the transform itself. One thread.
class FourierLines
{
public:
    explicit FourierLines(const FourierPlan& plan) : m_plan(plan)
    {
        const std::size_t each = std::size_t(plan.steps) * kLanes;
        m_memory = hwy::AllocateAligned<float>(each * (plan.chirped() ? 6 : 4));
        if (!m_memory)
            throw std::bad_alloc();
        m_re = m_memory.get();
        m_im = m_re + each;
        m_spareRe = m_im + each;
        m_spareIm = m_spareRe + each;
        if (!plan.chirped())
            return;
        m_chirpRe = m_spareIm + each;
        m_chirpIm = m_chirpRe + each;
        transformChirp();
    }

    float* re() { return m_re; }
    float* im() { return m_im; }

    /// The sum of value(n) e^(-2 pi i k n / length) for every k, in place.
    void transform()
    {
        if (m_plan.chirped())
            convolve();
        else
            transformSteps();
    }

    /// The same with the other sign, not divided by the length.
    void transformBack()
    {
        std::swap(m_re, m_im);
        transform();
        std::swap(m_re, m_im);
    }

private:
    void transformSteps()
    {
        const int steps = m_plan.steps;
        for (int half = steps / 2, stride = 1; half >= 1; half /= 2, stride *= 2) {
            for (int p = 0; p < half; ++p) {
                const F cosine(m_plan.cosines[p * stride]), sine(m_plan.sines[p * stride]);
                const std::size_t a = std::size_t(p) * stride * kLanes,
                                  far = std::size_t(half) * stride * kLanes;
                const std::size_t to = 2 * a, next = std::size_t(stride) * kLanes;
                for (std::size_t q = 0; q < next; q += kLanes) {
                    const F aRe = load(m_re + a + q), aIm = load(m_im + a + q);
                    const F bRe = load(m_re + a + far + q), bIm = load(m_im + a + far + q);
                    const F re = aRe - bRe, im = aIm - bIm;
                    store(aRe + bRe, m_spareRe + to + q);
                    store(aIm + bIm, m_spareIm + to + q);
                    store(re * cosine + im * sine, m_spareRe + to + next + q);
                    store(im * cosine - re * sine, m_spareIm + to + next + q);
                }
            }
            std::swap(m_re, m_spareRe);
            std::swap(m_im, m_spareIm);
        }
    }

    /// Multiplies values 0 to length - 1 by the chirp's conjugate.
    void multiplyByChirp()
    {
        for (int n = 0; n < m_plan.length; ++n) {
            const F cosine(m_plan.chirpRe[n]), sine(m_plan.chirpIm[n]);
            float *re = m_re + n * kLanes, *im = m_im + n * kLanes;
            const F a = load(re), b = load(im);
            store(a * cosine + b * sine, re);
            store(b * cosine - a * sine, im);
        }
    }

    void transformChirp()
    {
        const int length = m_plan.length, steps = m_plan.steps;
        std::fill_n(m_re, steps * kLanes, 0.0f);
        std::fill_n(m_im, steps * kLanes, 0.0f);
        for (int n = 0; n < length; ++n) {
            for (const int place : {n, (steps - n) % steps}) {
                std::fill_n(m_re + place * kLanes, kLanes, m_plan.chirpRe[n]);
                std::fill_n(m_im + place * kLanes, kLanes, m_plan.chirpIm[n]);
            }
        }
        transformSteps();
        std::copy_n(m_re, steps * kLanes, m_chirpRe);
        std::copy_n(m_im, steps * kLanes, m_chirpIm);
    }

    void convolve()
    {
        const int length = m_plan.length, steps = m_plan.steps;
        const F scale(1.0f / static_cast<float>(steps));
        multiplyByChirp();
        std::fill(m_re + length * kLanes, m_re + steps * kLanes, 0.0f);
        std::fill(m_im + length * kLanes, m_im + steps * kLanes, 0.0f);
        transformSteps();
        for (int i = 0; i < steps * kLanes; i += kLanes) {
            const F a = load(m_re + i), b = load(m_im + i), c = load(m_chirpRe + i), d = load(m_chirpIm + i);
            store((a * c - b * d) * scale, m_re + i);
            store((a * d + b * c) * scale, m_im + i);
        }
        std::swap(m_re, m_im);
        transformSteps();
        std::swap(m_re, m_im);
        multiplyByChirp();
    }

    const FourierPlan& m_plan;
    hwy::AlignedFreeUniquePtr<float[]> m_memory;
    float *m_re, *m_im, *m_spareRe, *m_spareIm, *m_chirpRe = nullptr, *m_chirpIm = nullptr;
};

} // namespace vellor::nodes::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
