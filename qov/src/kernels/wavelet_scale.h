// Rows of whole numbers times the scale of D97 or its inverse.
#ifndef QOV_KERNELS_WAVELET_SCALE_H
#define QOV_KERNELS_WAVELET_SCALE_H

#include "wavelet_vectors.h"

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
template <>
struct Scaled<Qov16s> : LiftedWide {
    typedef Vector16s Vector;
};
// v and the rest of the product, whose factor then lies within 16 bits: its high half, rounded by the bit
// below it.
template <>
inline Vector16s scaled<Qov16s>(const Constant97& c, Vector16s v)
{
    const Vector16s factor = all<Vector16s>(Qov16s(c.in65536 - 65536));
    const Vector16u roundUp = (Vector16u(v) * Vector16u(factor)) >> 15;
#if defined(__AVX2__)
    const Vector16s high = (Vector16s)_mm256_mulhi_epi16((__m256i)v, (__m256i)factor);
    return (Vector16s)_mm256_adds_epi16((__m256i)v, (__m256i)(high + (Vector16s)roundUp));
#else
    const Vector16s high = (Vector16s)_mm_mulhi_epi16((__m128i)v, (__m128i)factor);
    return (Vector16s)_mm_adds_epi16((__m128i)v, (__m128i)(high + (Vector16s)roundUp));
#endif
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
