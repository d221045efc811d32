// The two filters of T.800 as chains of lifting steps. Each step adds to one kind of sample a function of its
// two neighbours of the other kind:
//
//   struct Filter {
//       static constexpr int steps;                                // an even number
//       template <int step, class V> static V lift(V target, V before, V behind);
//       template <class V> static void prepare(V& low, V& high);   // scales the halves, of an inverse filter
//       template <class V> static void finish(V& low, V& high);    // and of a forward one
//   };
//
// V is a number or a vector: elements for B53 and for D97 in floating point. Whole numbers of D97 are lifted
// in 64 bits, a vector of them in doubles: with factors of 17 bits no term of 32-bit samples reaches 2^53, so
// both are exact. So are 32 bits for numbers that start within 16, whatever type they come in.
#ifndef QOV_KERNELS_WAVELET_FILTERS_H
#define QOV_KERNELS_WAVELET_FILTERS_H

#include "elements.h"
#include "wrapping.h"

namespace qov::QOV_LEVEL {
namespace {

struct B53Forward {
    static constexpr int steps = 2;

    template <int step, class V>
    QOV_INLINE V lift(V target, V before, V behind)
    {
        if constexpr (step == 0)
            return subtract(target, halfOfSum(before, behind));
        else
            return add(target, roundedQuarterOfSum(before, behind));
    }
    template <class V>
    QOV_INLINE void finish(V&, V&)
    {
    }
};

struct B53Inverse {
    static constexpr int steps = 2;

    template <int step, class V>
    QOV_INLINE V lift(V target, V before, V behind)
    {
        if constexpr (step == 0)
            return subtract(target, roundedQuarterOfSum(before, behind));
        else
            return add(target, halfOfSum(before, behind));
    }
    template <class V>
    QOV_INLINE void prepare(V&, V&)
    {
    }
};

struct Constant97 {
    float number;
    int in65536;
    // The same for 32 bits: in65536 = units * 2^(16 - halvings) + rest.
    int halvings = 0, units = 0, rest = 0;

    // With a rest whose product with numbers up to `largest` times 32768, and half of 65536 more, has 32
    // bits.
    constexpr Constant97 upTo(double largest) const
    {
        Constant97 c = *this;
        for (c.halvings = 0;; c.halvings++) {
            const int unit = 0x10000 >> c.halvings;
            c.units = (in65536 + (in65536 < 0 ? -unit : unit) / 2) / unit;
            c.rest = in65536 - c.units * unit;
            if ((c.rest < 0 ? -c.rest : c.rest) * largest < 0xFFF0) return c;
        }
    }
};
constexpr Constant97 lifts97[4] = {{-1.586134342f, -103949}, // alpha, beta, gamma, delta
                                   {-0.052980118f, -3472},
                                   {0.882911075f, 57862},
                                   {0.443506852f, 29066}};
constexpr Constant97 scale97 = {1.230174105f, 80621};
constexpr Constant97 inverseScale97 = {float(1 / 1.230174105), 53274};

// constant * v, target + constant * v and target - constant * v.
QOV_INLINE Qov32f product(const Constant97& c, Qov32f v)
{
    return c.number * v;
}
QOV_INLINE Qov64s product(const Constant97& c, Qov64s v)
{
    return (c.in65536 * v + 0x8000) >> 16;
}
QOV_INLINE Qov64s addProduct(Qov64s target, const Constant97& c, Qov64s v)
{
    return target + product(c, v);
}
QOV_INLINE Qov64s subtractProduct(Qov64s target, const Constant97& c, Qov64s v)
{
    return target - product(c, v);
}
#if defined(__FMA__)
QOV_INLINE Qov32f addProduct(Qov32f target, const Constant97& c, Qov32f v)
{
    return __builtin_fmaf(c.number, v, target);
}
QOV_INLINE Qov32f subtractProduct(Qov32f target, const Constant97& c, Qov32f v)
{
    return __builtin_fmaf(-c.number, v, target);
}
#else
QOV_INLINE Qov32f addProduct(Qov32f target, const Constant97& c, Qov32f v)
{
    return target + c.number * v;
}
QOV_INLINE Qov32f subtractProduct(Qov32f target, const Constant97& c, Qov32f v)
{
    return target - c.number * v;
}
#endif

#if defined(QOV_SIMD256)
QOV_INLINE Vector32f product(const Constant97& c, Vector32f v)
{
    return c.number * v;
}
#if defined(__FMA__)
QOV_INLINE Vector32f addProduct(Vector32f target, const Constant97& c, Vector32f v)
{
    return _mm256_fmadd_ps(_mm256_set1_ps(c.number), v, target);
}
QOV_INLINE Vector32f subtractProduct(Vector32f target, const Constant97& c, Vector32f v)
{
    return _mm256_fnmadd_ps(_mm256_set1_ps(c.number), v, target);
}
QOV_INLINE Doubles product(const Constant97& c, Doubles v)
{
    const Doubles exact = _mm256_fmadd_pd(_mm256_set1_pd(c.in65536 / 65536.), v, _mm256_set1_pd(0.5));
    return _mm256_round_pd(exact, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
}
#else
QOV_INLINE Vector32f addProduct(Vector32f target, const Constant97& c, Vector32f v)
{
    return target + c.number * v;
}
QOV_INLINE Vector32f subtractProduct(Vector32f target, const Constant97& c, Vector32f v)
{
    return target - c.number * v;
}
QOV_INLINE Doubles product(const Constant97& c, Doubles v)
{
    return _mm_round_pd(c.in65536 / 65536. * v + 0.5, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
}
#endif
QOV_INLINE Doubles addProduct(Doubles target, const Constant97& c, Doubles v)
{
    return target + product(c, v);
}
QOV_INLINE Doubles subtractProduct(Doubles target, const Constant97& c, Doubles v)
{
    return target - product(c, v);
}

// Of a constant that upTo() made for such numbers. Rounding down twice is as good as once.
QOV_INLINE Vector32s product(const Constant97& c, Vector32s v)
{
    return (v * c.units + ((v * c.rest + 0x8000) >> (16 - c.halvings))) >> c.halvings;
}
QOV_INLINE Vector32s addProduct(Vector32s target, const Constant97& c, Vector32s v)
{
    return target + product(c, v);
}
QOV_INLINE Vector32s subtractProduct(Vector32s target, const Constant97& c, Vector32s v)
{
    return target - product(c, v);
}
#endif

template <class V>
QOV_INLINE V addProduct(V target, const Constant97& c, V before, V behind)
{
    return addProduct(target, c, before + behind);
}
template <class V>
QOV_INLINE V subtractProduct(V target, const Constant97& c, V before, V behind)
{
    return subtractProduct(target, c, before + behind);
}

// `sums` and the `largest` are bounds of what is multiplied, in a row and in a step of a pipeline, for
// samples up to 1.
struct D97Forward {
    static constexpr int steps = 4;
    static constexpr double sums[steps] = {2, 8.35, 2.89, 3.92}, largestLow = 1.71, largestHigh = 2.12;

    template <int step, class V>
    QOV_INLINE V lift(V target, V before, V behind)
    {
        constexpr Constant97 c = lifts97[step].upTo(sums[step]);
        return addProduct(target, c, before, behind);
    }
    template <class V>
    QOV_INLINE void finish(V& low, V& high)
    {
        constexpr Constant97 lowScale = inverseScale97.upTo(largestLow),
                             highScale = scale97.upTo(largestHigh);
        low = product(lowScale, low);
        high = product(highScale, high);
    }
};

struct D97Inverse {
    static constexpr int steps = 4;
    static constexpr double sums[steps] = {2, 3.91, 8.52, 3.31};

    template <int step, class V>
    QOV_INLINE V lift(V target, V before, V behind)
    {
        constexpr Constant97 c = lifts97[steps - 1 - step].upTo(sums[step]);
        return subtractProduct(target, c, before, behind);
    }
    template <class V>
    QOV_INLINE void prepare(V& low, V& high)
    {
        constexpr Constant97 lowScale = scale97.upTo(1), highScale = inverseScale97.upTo(1);
        low = product(lowScale, low);
        high = product(highScale, high);
    }
};

// Whole numbers from ~largest to largest that D97 lifts in 32 bits, and in 16.
constexpr int largestWord = 32767, largestSmall97 = 3840;
static_assert(largestSmall97 * 8.52 < 32767 - 32); // with what roundings add

// What elements of type T are lifted in along rows.
template <class Filter, class T>
struct Lifted {
    typedef T Number;
    typedef Widest<T> Vector;
    static constexpr bool mayBeNarrower = false; // if the numbers of a row allow it
};
struct LiftedWide {
    typedef Qov64s Number;
    static constexpr bool mayBeNarrower = true;
#if defined(QOV_SIMD256)
    typedef Doubles Vector;
#else
    typedef Qov64s Vector;
#endif
};
struct LiftedWords : LiftedWide {
#if defined(QOV_SIMD256)
    typedef Vector32s Vector;
#endif
};
template <>
struct Lifted<D97Forward, Qov16s> : LiftedWords {
};
template <>
struct Lifted<D97Forward, Qov32s> : LiftedWide {
};
template <>
struct Lifted<D97Inverse, Qov16s> : LiftedWords {
};
template <>
struct Lifted<D97Inverse, Qov32s> : LiftedWide {
};

// What is lifted in a wider type than T, held to what T can hold.
template <class T>
struct Limits;
template <>
struct Limits<Qov16s> {
    static constexpr int low = -32768, high = 32767;
};
template <>
struct Limits<Qov32s> {
    static constexpr int low = -2147483647 - 1, high = 2147483647;
};
template <class T, class V>
QOV_INLINE V saturated(V v)
{
    return v;
}
template <class T>
QOV_INLINE Qov64s saturated(Qov64s v)
{
    return v < Limits<T>::low ? Limits<T>::low : v > Limits<T>::high ? Limits<T>::high : v;
}
#if defined(QOV_SIMD256)
template <class T>
QOV_INLINE Doubles saturated(Doubles v)
{
    const Doubles low = all<Doubles>(Limits<T>::low), high = all<Doubles>(Limits<T>::high);
#if defined(__AVX2__)
    return _mm256_min_pd(_mm256_max_pd(v, low), high);
#else
    return _mm_min_pd(_mm_max_pd(v, low), high);
#endif
}
#endif

} // namespace
} // namespace qov::QOV_LEVEL

#endif
