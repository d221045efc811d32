// Whole numbers modulo the range of their type, one by one and in vectors.
#ifndef QOV_KERNELS_WRAPPING_H
#define QOV_KERNELS_WRAPPING_H

#include "components256.h"

namespace qov::QOV_LEVEL {
namespace {

// The type that sums and differences of T are formed in, modulo its range.
template <class T>
struct Wrapping;
template <>
struct Wrapping<Qov16s> {
    typedef int Type; // holds them exactly
};
template <>
struct Wrapping<Qov32s> {
    typedef Qov32u Type;
};
#if defined(QOV_SIMD256)
template <>
struct Wrapping<Vector16s> {
    typedef Vector16u Type;
};
template <>
struct Wrapping<Vector32s> {
    typedef Vector32u Type;
};
#endif
template <class T>
inline T add(T a, T b)
{
    typedef typename Wrapping<T>::Type U;
    return T(U(a) + U(b));
}
template <class T>
inline T subtract(T a, T b)
{
    typedef typename Wrapping<T>::Type U;
    return T(U(a) - U(b));
}

// (a + b) >> 1 and (a + b + 2) >> 2 of the exact sums, which need no wider type: the quarter is the half of
// the half, rounded down first and then up, and so has its sign.
template <class T>
inline T halfOfSum(T a, T b)
{
    return T((a & b) + ((a ^ b) >> 1));
}
template <class T>
inline T roundedQuarterOfSum(T a, T b)
{
    const T half = halfOfSum(a, b);
    return T(half - (half >> 1));
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
