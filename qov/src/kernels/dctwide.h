// 8x8 transforms in single precision, for samples and coefficients of up to 16 bits and more. The arithmetic
// is written once, on rows of 8 numbers; every level performs the same operations in the same order and so
// has the same bits (nothing is contracted to fused multiply-add). No input raises a flag but Inexact.
#ifndef QOV_KERNELS_DCTWIDE_H
#define QOV_KERNELS_DCTWIDE_H

#include "dctconst.h"
#include "simd256.h"

#include <string.h>

namespace qov::QOV_LEVEL {

// Steps of a caller's table as numbers: what is below 2^-20 (zero, denormal, negative) counts as `lowest`,
// what is above 2^20 (infinite, no number) as 2^20. Compared as integers, in the order of positive floats.
enum { noStep = 0, smallestStep = 0x35800000, largestStep = 0x49800000 };

#if defined(QOV_SIMD256)

typedef F Row;

QOV_INLINE Row add(Row a, Row b)
{
    return addFloat(a, b);
}
QOV_INLINE Row subtract(Row a, Row b)
{
    return subFloat(a, b);
}
QOV_INLINE Row multiply(Row a, Row b)
{
    return mulFloat(a, b);
}
QOV_INLINE Row divide(Row a, Row b)
{
    return divideFloat(a, b);
}
QOV_INLINE Row multiply(Row a, float b)
{
    return mulFloat(a, allFloat(b));
}
// The first `size` (8, 4, 2) words, zeros behind them.
template <int size>
QOV_INLINE __m128i loadWords(const void* p)
{
    int two;
    if (size == 8) return _mm_loadu_si128((const __m128i*)p);
    if (size == 4) return _mm_loadl_epi64((const __m128i*)p);
    memcpy(&two, p, sizeof two);
    return _mm_cvtsi32_si128(two);
}
template <int size = 8>
QOV_INLINE Row rowOf(const Qov16s* p)
{
    return toFloat(widenSigned(loadWords<size>(p)));
}
template <int size = 8>
QOV_INLINE Row rowOf(const Qov16u* p)
{
    return toFloat(widenUnsigned(loadWords<size>(p)));
}

// Limited to lowest..highest.
QOV_INLINE Row limit(Row a, float lowest, float highest)
{
    return maxFloat(minFloat(a, allFloat(highest)), allFloat(lowest));
}

QOV_INLINE Row stepsOf(const Qov32f* table, int lowest)
{
    const W bits = load(table);
    const W atLeast = select32(greaterThan32(all32(smallestStep), bits), all32(lowest), bits);
    return asFloat(min32(atLeast, all32(largestStep)));
}

// 8 integers of 16 bits.
typedef __m128i Words;

// To the nearest, halves away from zero.
QOV_INLINE Words nearest(Row a)
{
    const F half = orFloat(andFloat(a, allFloat(-0.0f)), allFloat(0.5f));
    const W whole = toZero(limit(addFloat(a, half), -32768.0f, 32767.0f));
    return _mm_packs_epi32(lowLane(whole), highLane(whole));
}

QOV_INLINE void storeWords(Qov16s* dst, Words w)
{
    _mm_storeu_si128((__m128i*)dst, w);
}

// Samples with their level shift, limited to 12 or 8 bits.
QOV_INLINE void storeSamples(Qov16u* dst, Words w)
{
    const Words shifted = _mm_adds_epi16(w, _mm_set1_epi16(2048));
    _mm_storeu_si128((__m128i*)dst,
                     _mm_max_epi16(_mm_min_epi16(shifted, _mm_set1_epi16(4095)), _mm_setzero_si128()));
}
template <int size = 8>
QOV_INLINE void storeSamples(Qov8u* dst, Words w)
{
    const Words shifted = _mm_adds_epi16(w, _mm_set1_epi16(128));
    const __m128i bytes = _mm_packus_epi16(shifted, shifted);
    memcpy(dst, &bytes, size);
}

QOV_INLINE void transpose(Row x[8])
{
    W a[8], b[8];
    for (int i = 0; i < 8; i += 2) { // pairs of rows
        a[i] = lowDwords(asWords(x[i]), asWords(x[i + 1]));
        a[i + 1] = highDwords(asWords(x[i]), asWords(x[i + 1]));
    }
    for (int i = 0; i < 8; i += 4) { // quads of rows; columns 0 1 2 3 | 4 5 6 7
        b[i] = lowQwords(a[i], a[i + 2]);
        b[i + 1] = highQwords(a[i], a[i + 2]);
        b[i + 2] = lowQwords(a[i + 1], a[i + 3]);
        b[i + 3] = highQwords(a[i + 1], a[i + 3]);
    }
    for (int i = 0; i < 4; i++) {
        x[i] = asFloat(crossLowLanes(b[i], b[i + 4]));
        x[i + 4] = asFloat(crossHighLanes(b[i], b[i + 4]));
    }
}

#else

struct Row {
    float v[8];
};

#define QOV_ROW(name, parameters, value)                                                                     \
    QOV_INLINE Row name parameters                                                                           \
    {                                                                                                        \
        Row r;                                                                                               \
        for (int i = 0; i < 8; i++) r.v[i] = value;                                                          \
        return r;                                                                                            \
    }
QOV_ROW(add, (Row a, Row b), a.v[i] + b.v[i])
QOV_ROW(subtract, (Row a, Row b), a.v[i] - b.v[i])
QOV_ROW(multiply, (Row a, Row b), a.v[i] * b.v[i])
QOV_ROW(divide, (Row a, Row b), a.v[i] / b.v[i])
QOV_ROW(multiply, (Row a, float b), a.v[i] * b)
template <int size = 8>
QOV_ROW(rowOf, (const Qov16s* p), i < size ? p[i] : 0)
template <int size = 8>
QOV_ROW(rowOf, (const Qov16u* p), i < size ? p[i] : 0)
#undef QOV_ROW

QOV_INLINE Row limit(Row a, float lowest, float highest)
{
    for (float& v : a.v) v = v > highest ? highest : v < lowest ? lowest : v;
    return a;
}

QOV_INLINE Row stepsOf(const Qov32f* table, int lowest)
{
    int bits[8];
    memcpy(bits, table, sizeof bits);
    for (int& b : bits) b = b < smallestStep ? lowest : b > largestStep ? largestStep : b;
    Row r;
    memcpy(&r, bits, sizeof r);
    return r;
}

struct Words {
    Qov16s w[8];
};

QOV_INLINE Words nearest(Row a)
{
    for (float& v : a.v) v += v < 0 ? -0.5f : 0.5f;
    a = limit(a, -32768.0f, 32767.0f);
    Words r;
    for (int i = 0; i < 8; i++) r.w[i] = Qov16s(int(a.v[i]));
    return r;
}

QOV_INLINE void storeWords(Qov16s* dst, Words w)
{
    memcpy(dst, w.w, sizeof w);
}

QOV_INLINE int within(int v, int highest)
{
    return v < 0 ? 0 : v > highest ? highest : v;
}
QOV_INLINE void storeSamples(Qov16u* dst, Words w)
{
    for (int i = 0; i < 8; i++) dst[i] = Qov16u(within(w.w[i] + 2048, 4095));
}
template <int size = 8>
QOV_INLINE void storeSamples(Qov8u* dst, Words w)
{
    for (int i = 0; i < size; i++) dst[i] = Qov8u(within(w.w[i] + 128, 255));
}

QOV_INLINE void transpose(Row x[8])
{
    for (int i = 0; i < 8; i++)
        for (int k = 0; k < i; k++) {
            const float t = x[i].v[k];
            x[i].v[k] = x[k].v[i];
            x[k].v[i] = t;
        }
}

#endif

// Products of coefficients and steps, limited to 16 bits; those that are not are exact.
template <int size = 8>
QOV_INLINE Row products(const Qov16s* src, const Qov16u* table)
{
    return limit(multiply(rowOf<size>(src), rowOf<size>(table)), -32768.0f, 32767.0f);
}

// Every column, scaled by sqrt(8).
QOV_INLINE void forwardColumns(Row s[8])
{
    const float c1 = float(dctCos[1]), c2 = float(dctCos[2]), c3 = float(dctCos[3]);
    const float c5 = float(dctCos[5]), c6 = float(dctCos[6]), c7 = float(dctCos[7]);
    const Row t0 = add(s[0], s[7]), t1 = add(s[1], s[6]), t2 = add(s[2], s[5]), t3 = add(s[3], s[4]);
    const Row d0 = subtract(s[0], s[7]), d1 = subtract(s[1], s[6]);
    const Row d2 = subtract(s[2], s[5]), d3 = subtract(s[3], s[4]);
    const Row e0 = add(t0, t3), e1 = add(t1, t2), f0 = subtract(t0, t3), f1 = subtract(t1, t2);
    s[0] = add(e0, e1);
    s[1] = add(add(multiply(d0, c1), multiply(d1, c3)), add(multiply(d2, c5), multiply(d3, c7)));
    s[2] = add(multiply(f0, c2), multiply(f1, c6));
    s[3] = subtract(subtract(multiply(d0, c3), multiply(d1, c7)), add(multiply(d2, c1), multiply(d3, c5)));
    s[4] = subtract(e0, e1);
    s[5] = add(subtract(multiply(d0, c5), multiply(d1, c1)), add(multiply(d2, c7), multiply(d3, c3)));
    s[6] = subtract(multiply(f0, c6), multiply(f1, c2));
    s[7] = add(subtract(multiply(d0, c7), multiply(d1, c5)), subtract(multiply(d2, c3), multiply(d3, c1)));
}

// The inverse of every column, scaled by sqrt(8).
QOV_INLINE void inverseColumns(Row a[8])
{
    const float c1 = float(dctCos[1]), c2 = float(dctCos[2]), c3 = float(dctCos[3]);
    const float c5 = float(dctCos[5]), c6 = float(dctCos[6]), c7 = float(dctCos[7]);
    const Row p = add(a[0], a[4]), q = subtract(a[0], a[4]);
    const Row u = add(multiply(a[2], c2), multiply(a[6], c6)),
              v = subtract(multiply(a[2], c6), multiply(a[6], c2));
    const Row e0 = add(p, u), e1 = add(q, v), e2 = subtract(q, v), e3 = subtract(p, u);
    const Row a1 = a[1], a3 = a[3], a5 = a[5], a7 = a[7];
    const Row o0 = add(add(multiply(a1, c1), multiply(a3, c3)), add(multiply(a5, c5), multiply(a7, c7)));
    const Row o1 =
        subtract(subtract(multiply(a1, c3), multiply(a3, c7)), add(multiply(a5, c1), multiply(a7, c5)));
    const Row o2 = add(subtract(multiply(a1, c5), multiply(a3, c1)), add(multiply(a5, c7), multiply(a7, c3)));
    const Row o3 =
        add(subtract(multiply(a1, c7), multiply(a3, c5)), subtract(multiply(a5, c3), multiply(a7, c1)));
    a[0] = add(e0, o0);
    a[1] = add(e1, o1);
    a[2] = add(e2, o2);
    a[3] = add(e3, o3);
    a[4] = subtract(e3, o3);
    a[5] = subtract(e2, o2);
    a[6] = subtract(e1, o1);
    a[7] = subtract(e0, o0);
}

// The inverse of the first 4 numbers of every column, scaled by 2.
QOV_INLINE void inverse4Columns(Row a[4])
{
    const float c2 = float(dctCos[2]), c6 = float(dctCos[6]);
    const Row e0 = add(a[0], a[2]), e1 = subtract(a[0], a[2]);
    const Row o0 = add(multiply(a[1], c2), multiply(a[3], c6)),
              o1 = subtract(multiply(a[1], c6), multiply(a[3], c2));
    a[0] = add(e0, o0);
    a[1] = add(e1, o1);
    a[2] = subtract(e1, o1);
    a[3] = subtract(e0, o0);
}

// Rows of samples to 8 times their coefficients.
QOV_INLINE void forwardWide(Row x[8])
{
    transpose(x);
    forwardColumns(x);
    transpose(x);
    forwardColumns(x);
}

// Rows of coefficients to samples.
QOV_INLINE void inverseWide(Row x[8])
{
    transpose(x);
    inverseColumns(x);
    transpose(x);
    inverseColumns(x);
    for (int y = 0; y < 8; y++) x[y] = multiply(x[y], 0.125f);
}

} // namespace qov::QOV_LEVEL

#endif
