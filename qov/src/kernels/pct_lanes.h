// Arithmetic of the photo core transform on `count` numbers of type T side by side, or on a single one. Whole
// numbers are held modulo the range of their type.
#ifndef QOV_KERNELS_PCT_LANES_H
#define QOV_KERNELS_PCT_LANES_H

#include "elements.h"

namespace qov::QOV_LEVEL {
namespace {

template <class T, int count>
struct LanesOf {
    typedef T Type __attribute__((vector_size(count * sizeof(T))));
};
template <class T>
struct LanesOf<T, 1> {
    typedef T Type;
};
template <class T, int count>
using Lanes = typename LanesOf<T, count>::Type;

// A share of a number: (factor v + rounding) >> shift, of a floating-point one without the rounding.
struct Share {
    int factor, rounding, shift;

    constexpr float ofOne() const { return float(factor) / float(1 << shift); }
};
constexpr Share half = {1, 0, 1};
constexpr Share halfUp = {1, 1, 1};
constexpr Share threeEighths = {3, 4, 3};
constexpr Share threeEighthsLow = {3, 3, 3};
constexpr Share threeQuarters = {3, 3, 2};

constexpr bool operator==(const Share& a, const Share& b)
{
    return a.factor == b.factor && a.rounding == b.rounding && a.shift == b.shift;
}

// What a number is changed by is formed in Signed and need not fit T; Wrapping is the same without overflow.
template <class T, int count, class Wrapping, class Signed>
struct WholeNumbers {
    typedef Lanes<T, count> V;

    QOV_INLINE V add(V a, V b) { return V(Wrapping(a) + Wrapping(b)); }
    QOV_INLINE V subtract(V a, V b) { return V(Wrapping(a) - Wrapping(b)); }
    QOV_INLINE V negative(V a) { return V(0 - Wrapping(a)); }

    template <Share share>
    QOV_INLINE V add(V target, V of)
    {
        return add(target, part<share>(of));
    }
    template <Share share>
    QOV_INLINE V subtract(V target, V of)
    {
        return subtract(target, part<share>(of));
    }
    template <int rounding>
    QOV_INLINE V halfDifference(V a, V b, V less)
    {
        return subtract(V(Signed(Wrapping(a) - Wrapping(b) + rounding) >> 1), less);
    }
    template <Share share>
    QOV_INLINE V part(V v)
    {
        return V(Signed(Wrapping(v) * share.factor + share.rounding) >> share.shift);
    }
};

template <class T, int count>
struct Arithmetic;

template <>
struct Arithmetic<Qov16s, 1> : WholeNumbers<Qov16s, 1, int, int> {
};
template <int count>
struct Arithmetic<Qov32s, count> : WholeNumbers<Qov32s, count, Lanes<Qov32u, count>, Lanes<Qov32s, count>> {
};

// factor * v + w, in one rounding where the level can.
QOV_INLINE float scaledSum(float factor, float v, float w)
{
    return factor * v + w;
}
#if defined(QOV_SIMD256)
QOV_INLINE Lanes<float, 4> scaledSum(float factor, Lanes<float, 4> v, Lanes<float, 4> w)
{
#if defined(__FMA__)
    return _mm_fmadd_ps(_mm_set1_ps(factor), v, w);
#else
    return factor * v + w;
#endif
}
#if defined(__AVX2__)
QOV_INLINE Lanes<float, 8> scaledSum(float factor, Lanes<float, 8> v, Lanes<float, 8> w)
{
    return _mm256_fmadd_ps(_mm256_set1_ps(factor), v, w);
}
#endif
#if defined(__AVX512F__)
QOV_INLINE Lanes<float, 16> scaledSum(float factor, Lanes<float, 16> v, Lanes<float, 16> w)
{
    return _mm512_fmadd_ps(_mm512_set1_ps(factor), v, w);
}
#endif
#endif

template <int count>
struct Arithmetic<Qov32f, count> {
    typedef Lanes<Qov32f, count> V;

    QOV_INLINE V add(V a, V b) { return a + b; }
    QOV_INLINE V subtract(V a, V b) { return a - b; }
    QOV_INLINE V negative(V a) { return -a; }

    template <Share share>
    QOV_INLINE V add(V target, V of)
    {
        return scaledSum(share.ofOne(), of, target);
    }
    template <Share share>
    QOV_INLINE V subtract(V target, V of)
    {
        return scaledSum(-share.ofOne(), of, target);
    }
    template <int>
    QOV_INLINE V halfDifference(V a, V b, V less)
    {
        return scaledSum(0.5f, a - b, -less);
    }
};

#if defined(QOV_SIMD256)
// (a factor + 2^14) >> 15 of the exact product, and (a + b + 1) >> 1 of unsigned a and b.
QOV_INLINE Lanes<Qov16s, 8> mulRound(Lanes<Qov16s, 8> a, Qov16s factor)
{
    return (Lanes<Qov16s, 8>)_mm_mulhrs_epi16((__m128i)a, _mm_set1_epi16(factor));
}
QOV_INLINE Lanes<Qov16s, 8> averageUp(Lanes<Qov16s, 8> a, Lanes<Qov16s, 8> b)
{
    return (Lanes<Qov16s, 8>)_mm_avg_epu16((__m128i)a, (__m128i)b);
}
#if defined(__AVX2__)
QOV_INLINE Lanes<Qov16s, 16> mulRound(Lanes<Qov16s, 16> a, Qov16s factor)
{
    return (Lanes<Qov16s, 16>)_mm256_mulhrs_epi16((__m256i)a, _mm256_set1_epi16(factor));
}
QOV_INLINE Lanes<Qov16s, 16> averageUp(Lanes<Qov16s, 16> a, Lanes<Qov16s, 16> b)
{
    return (Lanes<Qov16s, 16>)_mm256_avg_epu16((__m256i)a, (__m256i)b);
}
#endif

// Words as int would have them, for every value, without wider lanes.
template <int count>
struct Arithmetic<Qov16s, count> {
    typedef Lanes<Qov16s, count> V;
    typedef Lanes<Qov16u, count> Wrapping;

    QOV_INLINE V add(V a, V b) { return V(Wrapping(a) + Wrapping(b)); }
    QOV_INLINE V subtract(V a, V b) { return V(Wrapping(a) - Wrapping(b)); }
    QOV_INLINE V negative(V a) { return V(-Wrapping(a)); }

    template <Share share>
    QOV_INLINE V add(V target, V of)
    {
        return add(target, part<share>(of));
    }
    template <Share share>
    QOV_INLINE V subtract(V target, V of)
    {
        return subtract(target, part<share>(of));
    }
    // (a - b) >> 1 is a less the mean rounded up, and (a - b + 1) >> 1 that mean less b; the mean is one of
    // unsigned words, so all are biased.
    template <int rounding>
    QOV_INLINE V halfDifference(V a, V b, V less)
    {
        const V bias = V{} + Qov16s(-32768), biasedA = a ^ bias, biasedB = b ^ bias;
        const V mean = averageUp(biasedA, biasedB);
        return subtract(rounding ? subtract(mean, biasedB) : subtract(biasedA, mean), less);
    }
    template <Share share>
    QOV_INLINE V part(V v)
    {
        if constexpr (share == half) return v >> 1;
        if constexpr (share == halfUp) return mulRound(v, 1 << 14);
        if constexpr (share == threeEighths) return mulRound(v, 3 << 12);
        if constexpr (share == threeEighthsLow) return negative(mulRound(v, -(3 << 12))); // of (4 - 3v) >> 3
        if constexpr (share == threeQuarters) return subtract(v, v >> 2); // 3v / 4 up is v - v / 4 down
    }
};
#endif

} // namespace
} // namespace qov::QOV_LEVEL

#endif
