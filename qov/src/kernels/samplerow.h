// Filters of chroma sampling, sample by sample and, above px, a vector of them at a time.
#ifndef QOV_KERNELS_SAMPLEROW_H
#define QOV_KERNELS_SAMPLEROW_H

#include "simd256.h"

namespace qov::QOV_LEVEL {
namespace {

#if defined(QOV_SIMD256)
constexpr ptrdiff_t vectorSamples = 32; // what one step makes, or takes

QOV_W_SET(W, all8, char, set1_epi8)
QOV_W_OP2(W, sub8, sub_epi8)
QOV_W_OP2(W, average8, avg_epu8)   // (a + b + 1) >> 1
QOV_W_OP2(W, average16, avg_epu16) // the same
QOV_W_IMM1(W, shiftLeft16, slli_epi16)

// (a + b) >> 1. Not by complements, for which compilers write vpternlog on a stale register at v4.
QOV_INLINE W averageDown8(W a, W b)
{
    return sub8(average8(a, b), both(unlike(a, b), all8(1)));
}
#endif

// Two neighbours of one row to their mean, (a + b + 1) >> 1.
struct BoxOfOneRow {
    const Qov8u* row;

    int at(ptrdiff_t x) const { return (row[2 * x] + row[2 * x + 1] + 1) >> 1; }

#if defined(QOV_SIMD256)
    W words(ptrdiff_t x) const // 16 samples out
    {
        return average16(multiplyAddBytes(load(row + 2 * x), all8(1)), all16(0));
    }
#endif
};

// Two neighbours of two rows to their mean, (a + b + c + d + 2) >> 2.
struct BoxOfTwoRows {
    const Qov8u *row1, *row2;

    int at(ptrdiff_t x) const
    {
        return (row1[2 * x] + row1[2 * x + 1] + row2[2 * x] + row2[2 * x + 1] + 2) >> 2;
    }

#if defined(QOV_SIMD256)
    W words(ptrdiff_t x) const
    {
        const W sum = add16(multiplyAddBytes(load(row1 + 2 * x), all8(1)),
                            multiplyAddBytes(load(row2 + 2 * x), all8(1)));
        return mulRound16(sum, all16(1 << 13)); // (sum + 2) >> 2
    }
#endif
};

template <class Box>
inline void boxRow(Box box, ptrdiff_t n, Qov8u* dst)
{
    assert(n >= 0);
#if defined(QOV_SIMD256)
    const auto step = [&](ptrdiff_t x) {
        store(dst + x, crossQwords(packU16(box.words(x), box.words(x + vectorSamples / 2))));
    };
    if (n >= vectorSamples) {
        ptrdiff_t x = 0;
        for (; x <= n - vectorSamples; x += vectorSamples) step(x);
        if (x < n) step(n - vectorSamples); // makes some samples again
        return;
    }
#endif
    for (ptrdiff_t x = 0; x < n; x++) dst[x] = Qov8u(box.at(x));
}

// A triangle filter makes two samples of each sample t: (3 t + left + evenBias) >> shift and
// (3 t + right + oddBias) >> shift.
#if defined(QOV_SIMD256)
struct Doubled {
    W low, high; // made of the low and of the high eight samples of each lane
};
#endif

// t are the samples of one row.
struct TriangleOfOneRow {
    static constexpr int evenBias = 1, oddBias = 2, shift = 2;
    const Qov8u* row;

    int at(ptrdiff_t x) const { return row[x]; }

#if defined(QOV_SIMD256)
    // Bytes suffice: (3 t + a + 1) >> 2 is the mean of t and (t + a + 1) >> 1, rounded down, and
    // (3 t + a + 2) >> 2 that of t and (t + a) >> 1, rounded up.
    Doubled vectors(ptrdiff_t x) const
    {
        const W t = load(row + x);
        const W even = averageDown8(t, average8(t, load(row + x - 1)));
        const W odd = average8(t, averageDown8(t, load(row + x + 1)));
        return {lowBytes(even, odd), highBytes(even, odd)};
    }
#endif
};

// t = 3 near + far.
struct TriangleOfTwoRows {
    static constexpr int evenBias = 8, oddBias = 7, shift = 4;
    const Qov8u *nearRow, *farRow;

    int at(ptrdiff_t x) const { return 3 * nearRow[x] + farRow[x]; }

#if defined(QOV_SIMD256)
    // Of bytes near and far in turns. Sums are below 2^12.
    static W merge(W own, W left, W right)
    {
        const W t = all16(1 << 8 | 3), threeT = all16(3 << 8 | 9); // factors of far and near
        const W own3 = multiplyAddBytes(own, threeT);
        const W even = mulRound16(add16(own3, multiplyAddBytes(left, t)), all16(1 << 11)); // (sum + 8) >> 4
        const W odd = add16(add16(own3, all16(oddBias)), multiplyAddBytes(right, t));
        return either(even, both(shiftLeft16<8 - shift>(odd), all16(short(0xFF00))));
    }
    Doubled vectors(ptrdiff_t x) const
    {
        const W near = load(nearRow + x), far = load(farRow + x);
        const W nearLeft = load(nearRow + x - 1), farLeft = load(farRow + x - 1);
        const W nearRight = load(nearRow + x + 1), farRight = load(farRow + x + 1);
        return {merge(lowBytes(near, far), lowBytes(nearLeft, farLeft), lowBytes(nearRight, farRight)),
                merge(highBytes(near, far), highBytes(nearLeft, farLeft), highBytes(nearRight, farRight))};
    }
#endif
};

template <class Triangle>
inline Qov8u evenSample(Triangle in, ptrdiff_t x, ptrdiff_t left)
{
    return Qov8u((3 * in.at(x) + in.at(left) + Triangle::evenBias) >> Triangle::shift);
}

template <class Triangle>
inline Qov8u oddSample(Triangle in, ptrdiff_t x, ptrdiff_t right)
{
    return Qov8u((3 * in.at(x) + in.at(right) + Triangle::oddBias) >> Triangle::shift);
}

#if defined(QOV_SIMD256)
// Of the samples at x and behind it; reads one to the left of them and one to the right.
template <class Triangle>
inline void triangleStep(Triangle in, ptrdiff_t x, Qov8u* dst)
{
    const Doubled d = in.vectors(x);
    store(dst + 2 * x, crossLowLanes(d.low, d.high));
    store(dst + 2 * x + vectorSamples, crossHighLanes(d.low, d.high));
}
#endif

} // namespace
} // namespace qov::QOV_LEVEL

#endif
