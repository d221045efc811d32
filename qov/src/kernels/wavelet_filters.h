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
// both are exact.
#ifndef QOV_KERNELS_WAVELET_FILTERS_H
#define QOV_KERNELS_WAVELET_FILTERS_H

#include "elements.h"
#include "wrapping.h"

namespace qov::QOV_LEVEL {
namespace {

struct B53Forward {
    static constexpr int steps = 2;

    template <int step, class V>
    static inline V lift(V target, V before, V behind)
    {
        if constexpr (step == 0)
            return subtract(target, halfOfSum(before, behind));
        else
            return add(target, roundedQuarterOfSum(before, behind));
    }
    template <class V>
    static inline void finish(V&, V&)
    {
    }
};

struct B53Inverse {
    static constexpr int steps = 2;

    template <int step, class V>
    static inline V lift(V target, V before, V behind)
    {
        if constexpr (step == 0)
            return subtract(target, roundedQuarterOfSum(before, behind));
        else
            return add(target, halfOfSum(before, behind));
    }
    template <class V>
    static inline void prepare(V&, V&)
    {
    }
};

struct Constant97 {
    float number;
    int in65536;
};
constexpr Constant97 lifts97[4] = {{-1.586134342f, -103949}, // alpha, beta, gamma, delta
                                   {-0.052980118f, -3472},
                                   {0.882911075f, 57862},
                                   {0.443506852f, 29066}};
constexpr Constant97 scale97 = {1.230174105f, 80621};
constexpr Constant97 inverseScale97 = {float(1 / 1.230174105), 53274};

// constant * v, target + constant * v and target - constant * v.
inline Qov32f product(const Constant97& c, Qov32f v)
{
    return c.number * v;
}
inline Qov64s product(const Constant97& c, Qov64s v)
{
    return (c.in65536 * v + 0x8000) >> 16;
}
inline Qov64s addProduct(Qov64s target, const Constant97& c, Qov64s v)
{
    return target + product(c, v);
}
inline Qov64s subtractProduct(Qov64s target, const Constant97& c, Qov64s v)
{
    return target - product(c, v);
}
#if defined(__FMA__)
inline Qov32f addProduct(Qov32f target, const Constant97& c, Qov32f v)
{
    return __builtin_fmaf(c.number, v, target);
}
inline Qov32f subtractProduct(Qov32f target, const Constant97& c, Qov32f v)
{
    return __builtin_fmaf(-c.number, v, target);
}
#else
inline Qov32f addProduct(Qov32f target, const Constant97& c, Qov32f v)
{
    return target + c.number * v;
}
inline Qov32f subtractProduct(Qov32f target, const Constant97& c, Qov32f v)
{
    return target - c.number * v;
}
#endif

#if defined(QOV_SIMD256)
inline Vector32f product(const Constant97& c, Vector32f v)
{
    return c.number * v;
}
#if defined(__FMA__)
inline Vector32f addProduct(Vector32f target, const Constant97& c, Vector32f v)
{
    return _mm256_fmadd_ps(_mm256_set1_ps(c.number), v, target);
}
inline Vector32f subtractProduct(Vector32f target, const Constant97& c, Vector32f v)
{
    return _mm256_fnmadd_ps(_mm256_set1_ps(c.number), v, target);
}
inline Doubles product(const Constant97& c, Doubles v)
{
    const Doubles exact = _mm256_fmadd_pd(_mm256_set1_pd(c.in65536 / 65536.), v, _mm256_set1_pd(0.5));
    return _mm256_round_pd(exact, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
}
#else
inline Vector32f addProduct(Vector32f target, const Constant97& c, Vector32f v)
{
    return target + c.number * v;
}
inline Vector32f subtractProduct(Vector32f target, const Constant97& c, Vector32f v)
{
    return target - c.number * v;
}
inline Doubles product(const Constant97& c, Doubles v)
{
    return _mm_round_pd(c.in65536 / 65536. * v + 0.5, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
}
#endif
inline Doubles addProduct(Doubles target, const Constant97& c, Doubles v)
{
    return target + product(c, v);
}
inline Doubles subtractProduct(Doubles target, const Constant97& c, Doubles v)
{
    return target - product(c, v);
}
#endif

struct D97Forward {
    static constexpr int steps = 4;

    template <int step, class V>
    static inline V lift(V target, V before, V behind)
    {
        return addProduct(target, lifts97[step], before + behind);
    }
    template <class V>
    static inline void finish(V& low, V& high)
    {
        low = product(inverseScale97, low);
        high = product(scale97, high);
    }
};

struct D97Inverse {
    static constexpr int steps = 4;

    template <int step, class V>
    static inline V lift(V target, V before, V behind)
    {
        return subtractProduct(target, lifts97[steps - 1 - step], before + behind);
    }
    template <class V>
    static inline void prepare(V& low, V& high)
    {
        low = product(scale97, low);
        high = product(inverseScale97, high);
    }
};

// What elements of type T are lifted in.
template <class Filter, class T>
struct Lifted {
    typedef T Number;
    typedef Widest<T> Vector;
};
struct LiftedWide {
    typedef Qov64s Number;
#if defined(QOV_SIMD256)
    typedef Doubles Vector;
#else
    typedef Qov64s Vector;
#endif
};
template <>
struct Lifted<D97Forward, Qov16s> : LiftedWide {
};
template <>
struct Lifted<D97Forward, Qov32s> : LiftedWide {
};
template <>
struct Lifted<D97Inverse, Qov16s> : LiftedWide {
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
inline V saturated(V v)
{
    return v;
}
template <class T>
inline Qov64s saturated(Qov64s v)
{
    return v < Limits<T>::low ? Limits<T>::low : v > Limits<T>::high ? Limits<T>::high : v;
}
#if defined(QOV_SIMD256)
template <class T>
inline Doubles saturated(Doubles v)
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
