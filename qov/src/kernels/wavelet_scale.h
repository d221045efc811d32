// Rows of whole numbers times the scale of D97 or its inverse.
#ifndef QOV_KERNELS_WAVELET_SCALE_H
#define QOV_KERNELS_WAVELET_SCALE_H

#include "wavelet_words.h"

namespace qov::QOV_LEVEL {
namespace {

template <class T>
struct Scaled : LiftedWide {
};
template <class T, class V>
inline V scaled(const Constant97& c, V v)
{
    return saturated<T>(product(c, v));
}

#if defined(QOV_SIMD256)
// v and what the constant adds to it: a factor within 16 bits.
constexpr int beyondOne(const Constant97& c)
{
    return c.in65536 - 65536;
}

template <>
struct Scaled<Qov16s> : LiftedWide {
    typedef Vector16s Vector;
};
template <>
inline Vector16s scaled<Qov16s>(const Constant97& c, Vector16s v)
{
    return addSaturated(v, partOf(v, beyondOne(c)));
}

// The numbers whose products are the limits: those beyond them take their place.
constexpr int leastProduct = -1745667858, largestProduct = 1745667857;
constexpr Qov64s times97(int v)
{
    return (Qov64s(scale97.in65536) * v + 0x8000) >> 16;
}
static_assert(times97(leastProduct) == Limits<Qov32s>::low &&
              times97(largestProduct) == Limits<Qov32s>::high);

template <>
struct Scaled<Qov32s> : LiftedWide {
    typedef Vector32s Vector;
};
// The product of each half by itself; of the low one, which has no sign, it has 32 bits.
template <>
inline Vector32s scaled<Qov32s>(const Constant97& c, Vector32s v)
{
    const int factor = beyondOne(c);
    if (factor > 0) {
        const Vector32s least = all<Vector32s>(leastProduct), largest = all<Vector32s>(largestProduct);
        v = v < least ? least : v;
        v = v > largest ? largest : v;
    }
    const Vector32s low = ((v & 0xFFFF) * factor + 0x8000) >> 16;
    const Vector32s high = sumOfProducts((Vector16s)v, (Vector16s)all<Vector32s>(factor * 65536));
    return v + (high + low);
}
#endif

template <class T, const Constant97& constant>
struct Scaling {
    const T* src;
    T* dst;

    template <class V>
    inline V take(ptrdiff_t x) const
    {
        return scaled<T>(constant, fetch(src + x, V()));
    }
    template <class V>
    inline void write(ptrdiff_t x, V v) const
    {
        keep(dst + x, v);
    }
};

template <class T, const Constant97& constant>
void scaleRow(const T* src, T* dst, ptrdiff_t width)
{
    forElements<typename Scaled<T>::Vector, typename Scaled<T>::Number>(Scaling<T, constant>{src, dst},
                                                                        width);
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
