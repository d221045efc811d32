#include "jcomponent.h"

#include "jcomponent_ict16.h"
#include "wrapping.h"

#include <emmintrin.h>

namespace qov::QOV_LEVEL {
namespace {

// A transform turns the three components of a pixel into three others:
//
//   template <class T> static inline void transform(T& c0, T& c1, T& c2);
//
// where T is an element or a register of them. Every formula has its operations in one order, so that all
// levels give the same bits in floating point too.

struct RctForward {
    // (R + 2 G + B) >> 2 is the half of G and of (R + B) >> 1, both rounded down.
    template <class T>
    static inline void transform(T& c0, T& c1, T& c2)
    {
        const T r = c0, g = c1, b = c2;
        c0 = halfOfSum(halfOfSum(r, b), g);
        c1 = subtract(b, g);
        c2 = subtract(r, g);
    }
};

struct RctInverse {
    template <class T>
    static inline void transform(T& c0, T& c1, T& c2)
    {
        const T y = c0, u = c1, v = c2;
        const T g = subtract(y, T(halfOfSum(u, v) >> 1));
        c0 = add(v, g);
        c1 = g;
        c2 = add(u, g);
    }
};

// The type of the factors for elements of type T.
template <class T>
struct Factor {
    typedef T Type;
};
#if defined(QOV_SIMD256)
template <>
struct Factor<Vector32f> {
    typedef float Type;
};
template <>
struct Factor<Doubles> {
    typedef double Type;
};
#endif

struct IctForward {
    static constexpr double factor[3][3] = {
        {0.299, 0.587, 0.114}, {-0.16875, -0.33126, 0.5}, {0.5, -0.41869, -0.08131}};

    template <class T>
    static inline void transform(T& c0, T& c1, T& c2)
    {
        typedef typename Factor<T>::Type K;
        const T r = c0, g = c1, b = c2;
        c0 = K(factor[0][0]) * r + K(factor[0][1]) * g + K(factor[0][2]) * b;
        c1 = K(factor[1][0]) * r + K(factor[1][1]) * g + K(factor[1][2]) * b;
        c2 = K(factor[2][0]) * r + K(factor[2][1]) * g + K(factor[2][2]) * b;
    }
};

struct IctInverse {
    static constexpr double factor[3][3] = {{1, 0, 1.402}, {1, -0.344136, -0.714136}, {1, 1.772, 0}};

    template <class T>
    static inline void transform(T& c0, T& c1, T& c2)
    {
        typedef typename Factor<T>::Type K;
        const T y = c0, cb = c1, cr = c2;
        c0 = y + K(factor[0][2]) * cr;
        c1 = y + K(factor[1][1]) * cb + K(factor[1][2]) * cr;
        c2 = y + K(factor[2][1]) * cb;
    }
};

#if defined(QOV_SIMD256)
template <class Transform, class T, class Part>
inline void transformParts(Part& a, Part& b, Part& c)
{
    typedef typename Register<T>::Type V;
    V c0 = (V)a, c1 = (V)b, c2 = (V)c;
    Transform::transform(c0, c1, c2);
    a = (Part)c0;
    b = (Part)c1;
    c = (Part)c2;
}
template <class Transform, class T>
inline void transformRegisters(W (&w)[3])
{
#if defined(__AVX2__)
    transformParts<Transform, T>(w[0], w[1], w[2]);
#else
    transformParts<Transform, T>(w[0].lo, w[1].lo, w[2].lo);
    transformParts<Transform, T>(w[0].hi, w[1].hi, w[2].hi);
#endif
}
#endif

// A row in each form: one pixel, and as many as a W has elements.

template <class Transform, class T>
struct ToPlanes {
    const T* src;
    T* dst[3];

    inline void one(ptrdiff_t x) const
    {
        T c0 = src[3 * x], c1 = src[3 * x + 1], c2 = src[3 * x + 2];
        Transform::transform(c0, c1, c2);
        dst[0][x] = c0;
        dst[1][x] = c1;
        dst[2][x] = c2;
    }
#if defined(QOV_SIMD256)
    inline void vector(ptrdiff_t x) const
    {
        W component[3];
        splitComponents(src + 3 * x, component);
        transformRegisters<Transform, T>(component);
        for (int i = 0; i < 3; i++) store(dst[i] + x, component[i]);
    }
#endif
};

template <class Transform, class T>
struct FromPlanes {
    const T* src[3];
    T* dst;

    inline void one(ptrdiff_t x) const
    {
        T c0 = src[0][x], c1 = src[1][x], c2 = src[2][x];
        Transform::transform(c0, c1, c2);
        dst[3 * x] = c0;
        dst[3 * x + 1] = c1;
        dst[3 * x + 2] = c2;
    }
#if defined(QOV_SIMD256)
    inline void vector(ptrdiff_t x) const
    {
        W component[3];
        for (int i = 0; i < 3; i++) component[i] = load(src[i] + x);
        transformRegisters<Transform, T>(component);
        joinComponents(component, dst + 3 * x);
    }
#endif
};

// As convertRow of planes256.h, for `atOnce` pixels in a vector.
template <int atOnce, class Row>
inline void convertComponents(const Row& row, ptrdiff_t width)
{
#if defined(QOV_SIMD256)
    if (const ptrdiff_t last = width - atOnce; last >= 0) {
        for (ptrdiff_t x = 0; x < width; x += atOnce) row.vector(x < last ? x : last);
        return;
    }
#endif
    for (ptrdiff_t x = 0; x < width; x++) row.one(x);
}

// Rows without gaps between them are one row.
struct PictureRows {
    ptrdiff_t width, count;

    PictureRows(QoviSize roi, bool gapless) : width(roi.width), count(roi.height)
    {
        assert(roi.width > 0 && roi.height > 0);
        if (gapless) {
            width *= count;
            count = 1;
        }
    }
};

// A register is 256 bits wide at v4 too: 512 are slower where rows are not aligned to them.
template <class Transform, class T>
inline void transformRow(T* __restrict c0, T* __restrict c1, T* __restrict c2, ptrdiff_t width)
{
    ptrdiff_t x = 0;
#if defined(QOV_SIMD256)
    constexpr ptrdiff_t atOnce = 32 / sizeof(T);
    for (; x + atOnce <= width; x += atOnce) {
        W component[3] = {load(c0 + x), load(c1 + x), load(c2 + x)};
        transformRegisters<Transform, T>(component);
        store(c0 + x, component[0]);
        store(c1 + x, component[1]);
        store(c2 + x, component[2]);
    }
#endif
    for (; x < width; x++) Transform::transform(c0[x], c1[x], c2[x]);
}

inline Qov32s toNearest(double value)
{
    constexpr double low = -2147483648.0, high = 2147483647.0;
    return _mm_cvtsd_si32(_mm_set_sd(value < low ? low : value > high ? high : value));
}

// Numbers of 32 bits through double precision, which leaves them 20 fraction bits.
template <class Transform>
inline void transformRounded(Qov32s* __restrict c0, Qov32s* __restrict c1, Qov32s* __restrict c2,
                             ptrdiff_t width)
{
    ptrdiff_t x = 0;
#if defined(QOV_SIMD256)
    for (; x + doublesAtOnce <= width; x += doublesAtOnce) {
        Doubles v0 = widen(c0 + x), v1 = widen(c1 + x), v2 = widen(c2 + x);
        Transform::transform(v0, v1, v2);
        narrow(v0, c0 + x);
        narrow(v1, c1 + x);
        narrow(v2, c2 + x);
    }
#endif
    for (; x < width; x++) {
        double v0 = c0[x], v1 = c1[x], v2 = c2[x];
        Transform::transform(v0, v1, v2);
        c0[x] = toNearest(v0);
        c1[x] = toNearest(v1);
        c2[x] = toNearest(v2);
    }
}

template <auto row, class T>
void inPlace(T* const planes[3], ptrdiff_t step, QoviSize roi)
{
    const PictureRows rows(roi, step == ptrdiff_t(sizeof(T)) * roi.width);
    T* plane[3] = {planes[0], planes[1], planes[2]};
    for (ptrdiff_t y = 0; y < rows.count; y++) {
        row(plane[0], plane[1], plane[2], rows.width);
        for (T*& p : plane) p = atByte(p, step);
    }
}

template <class Transform, class T>
void toPlanes(const T* src, ptrdiff_t srcStep, T* const dst[3], ptrdiff_t dstStep, QoviSize roi)
{
    const PictureRows rows(roi, dstStep == ptrdiff_t(sizeof(T)) * roi.width && srcStep == 3 * dstStep);
    ToPlanes<Transform, T> row = {src, {dst[0], dst[1], dst[2]}};
    for (ptrdiff_t y = 0; y < rows.count; y++) {
        convertComponents<32 / sizeof(T)>(row, rows.width);
        row.src = atByte(row.src, srcStep);
        for (T*& plane : row.dst) plane = atByte(plane, dstStep);
    }
}

template <class Transform, class T>
void fromPlanes(const T* const src[3], ptrdiff_t srcStep, T* dst, ptrdiff_t dstStep, QoviSize roi)
{
    const PictureRows rows(roi, srcStep == ptrdiff_t(sizeof(T)) * roi.width && dstStep == 3 * srcStep);
    FromPlanes<Transform, T> row = {{src[0], src[1], src[2]}, dst};
    for (ptrdiff_t y = 0; y < rows.count; y++) {
        convertComponents<32 / sizeof(T)>(row, rows.width);
        for (const T*& plane : row.src) plane = atByte(plane, srcStep);
        row.dst = atByte(row.dst, dstStep);
    }
}

} // namespace

const ComponentKernels componentKernels = {
    inPlace<transformRow<RctForward, Qov16s>>,
    inPlace<transformRow<RctForward, Qov32s>>,
    inPlace<transformRow<RctInverse, Qov16s>>,
    inPlace<transformRow<RctInverse, Qov32s>>,
    toPlanes<RctForward, Qov16s>,
    toPlanes<RctForward, Qov32s>,
    fromPlanes<RctInverse, Qov16s>,
    fromPlanes<RctInverse, Qov32s>,
    inPlace<transformExactly<IctForward>>,
    inPlace<transformRounded<IctForward>>,
    inPlace<transformRow<IctForward, Qov32f>>,
    inPlace<transformExactly<IctInverse>>,
    inPlace<transformRounded<IctInverse>>,
    inPlace<transformRow<IctInverse, Qov32f>>,
    toPlanes<IctForward, Qov32f>,
    fromPlanes<IctInverse, Qov32f>,
};

} // namespace qov::QOV_LEVEL
