// Operations on elements one by one, each from its own places to its own places, in vectors where the level
// has them. Elements move as bytes, so memory may hold another type before than after.
#ifndef QOV_KERNELS_ELEMENTS_H
#define QOV_KERNELS_ELEMENTS_H

#include "components256.h"

#include <string.h>

namespace qov::QOV_LEVEL {
namespace {

// The widest vector of T that the level works with, or T itself.
#if defined(QOV_SIMD256)
template <class T>
using Widest = typename Register<T>::Type;
#else
template <class T>
using Widest = T;
#endif

// How many numbers a vector (or a number) holds, and their type.
template <class V>
struct Holds {
    typedef V Number;
    static constexpr ptrdiff_t count = 1;
};
#if defined(QOV_SIMD256)
template <class T>
struct HoldsSeveral {
    typedef T Number;
    static constexpr ptrdiff_t count = registerBytes / sizeof(T);
};
template <>
struct Holds<Vector16s> : HoldsSeveral<Qov16s> {
};
template <>
struct Holds<Vector32s> : HoldsSeveral<Qov32s> {
};
template <>
struct Holds<Vector32f> : HoldsSeveral<Qov32f> {
};
template <>
struct Holds<Doubles> : HoldsSeveral<double> {
};
#endif

template <class V, class T>
inline V get(const T* p)
{
    V v;
    memcpy(&v, p, sizeof v);
    return v;
}

template <class V, class T>
inline void put(T* p, V v)
{
    memcpy(p, &v, sizeof v);
}

// A vector whose numbers are all equal.
template <class V>
inline V all(typename Holds<V>::Number value)
{
    return V{} + value;
}
template <>
inline Qov16s all<Qov16s>(Qov16s value)
{
    return value;
}

// An operation is
//
//   template <class V> Result<V> take(ptrdiff_t x) const;         // reads for the elements from x on
//   template <class V> void write(ptrdiff_t x, Result<V>) const;  // and writes
//
// with V a number or a vector. The last vector ends with the last element; it is taken before anything is
// written, so a destination may be a source.
template <class Vector, class Number, class Operation>
inline void forElements(const Operation& operation, ptrdiff_t n)
{
    constexpr ptrdiff_t atOnce = Holds<Vector>::count;
    const ptrdiff_t last = n - atOnce;
    if (last >= 0) {
        const auto end = operation.template take<Vector>(last);
        for (ptrdiff_t x = 0; x < last; x += atOnce) operation.write(x, operation.template take<Vector>(x));
        operation.write(last, end);
    } else {
        for (ptrdiff_t x = 0; x < n; x++) operation.write(x, operation.template take<Number>(x));
    }
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
