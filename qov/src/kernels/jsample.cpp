#include "jsample.h"
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

void boxH2V1(const Qov8u* src, ptrdiff_t n, Qov8u* dst)
{
    boxRow(BoxOfOneRow{src}, n, dst);
}

void boxH2V2(const Qov8u* src1, const Qov8u* src2, ptrdiff_t n, Qov8u* dst)
{
    boxRow(BoxOfTwoRows{src1, src2}, n, dst);
}

// A triangle filter makes two samples of each sample t: (3 t + left + evenBias) >> shift and
// (3 t + right + oddBias) >> shift. Beyond the ends t goes on as it ended.
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
inline void triangleRow(Triangle in, ptrdiff_t n, Qov8u* dst)
{
    assert(n > 0);
    const auto even = [&](ptrdiff_t x, ptrdiff_t left) {
        dst[2 * x] = Qov8u((3 * in.at(x) + in.at(left) + Triangle::evenBias) >> Triangle::shift);
    };
    const auto odd = [&](ptrdiff_t x, ptrdiff_t right) {
        dst[2 * x + 1] = Qov8u((3 * in.at(x) + in.at(right) + Triangle::oddBias) >> Triangle::shift);
    };
    const ptrdiff_t last = n - 1;
    even(0, 0);
    odd(last, last);
#if defined(QOV_SIMD256)
    // Of samples 1 to last - 1. The first and the last vector make some of their neighbours' samples again,
    // so that the others lie as the rows do.
    const auto step = [&](ptrdiff_t x) {
        const Doubled d = in.vectors(x);
        store(dst + 2 * x, crossLowLanes(d.low, d.high));
        store(dst + 2 * x + vectorSamples, crossHighLanes(d.low, d.high));
    };
    if (last > vectorSamples) {
        odd(0, 1);
        even(last, last - 1);
        step(1);
        for (ptrdiff_t x = vectorSamples; x + vectorSamples < last; x += vectorSamples) step(x);
        step(last - vectorSamples);
        return;
    }
#endif
    for (ptrdiff_t x = 0; x < last; x++) {
        odd(x, x + 1);
        even(x + 1, x);
    }
}

void triangleH2V1(const Qov8u* src, ptrdiff_t n, Qov8u* dst)
{
    triangleRow(TriangleOfOneRow{src}, n, dst);
}

void triangleH2V2(const Qov8u* nearRow, const Qov8u* farRow, ptrdiff_t n, Qov8u* dst)
{
    triangleRow(TriangleOfTwoRows{nearRow, farRow}, n, dst);
}

} // namespace

const SampleKernels sampleKernels = {boxH2V1, boxH2V2, triangleH2V1, triangleH2V2};

} // namespace qov::QOV_LEVEL
