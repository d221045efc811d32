// Macroblocks of 8x8 samples in registers of eight numbers. A variable of the four blocks would fill half of
// such a register, so two operators share it: in the first step two of the same kind, in the second the two
// of one odd frequency, or that of none and that of two. Nothing here at px.
#ifndef QOV_KERNELS_PCT_EIGHTS_H
#define QOV_KERNELS_PCT_EIGHTS_H

#include "pct_steps.h"
#include "pct_vectors.h"

#if defined(QOV_SIMD256)

namespace qov::QOV_LEVEL {
namespace {

// A row of two blocks that stand side by side. `pick` and its kin see the columns of one block, as four
// dwords: there is a block in each 128 bits, or, of words, one in either half of the dwords.
template <class T>
struct RowOfTwo {
    static constexpr bool words = sizeof(T) == 2;
    typedef Arithmetic<T, 8> A;
    typedef typename A::V V;

    QOV_INLINE V read(const T* p)
    {
        if constexpr (words)
            return (V)_mm_shuffle_epi8(get<__m128i>(p),
                                       _mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15));
        else
            return get<V>(p);
    }
    QOV_INLINE void write(T* p, V v)
    {
        if constexpr (words)
            put(p, _mm_shuffle_epi8((__m128i)v,
                                    _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15)));
        else
            put(p, v);
    }

    // The second level (ITU-T T.832, 9.9.7.3 and D.4.5). DC coefficients come in the first elements of four
    // registers, in raster order, and go to dword 0, those of the upper blocks, and to dword 1. What stands
    // elsewhere is of no use.
    template <Direction direction>
    QOV_INLINE V secondLevel(Lane g0, Lane g1, Lane g2, Lane g3)
    {
        typedef Arithmetic<T, 16 / int(sizeof(T))> OfLane;
        typedef typename OfLane::V Dc;
        Dc a = (Dc)g0, b = (Dc)g1, c = (Dc)g2, d = (Dc)g3;
        if constexpr (direction == Forward)
            Steps<OfLane>::template hadamard<0>(a, c, b, d);
        else
            Steps<OfLane>::template hadamard<0>(a, b, c, d);
        // Either way the coefficients in the middle change places, so b is on the left now.
        const Lane left = (Lane)lowPairs32(a, b), right = (Lane)lowPairs32(c, d);
        if constexpr (words) {
            return (V)_mm_blend_epi16(left, _mm_slli_epi32(right, 16), 0xAA);
        } else {
            const Lane blocks[2] = {left, right};
            return ofLanes<V>(blocks);
        }
    }
    QOV_INLINE V forwardSecondLevel(V v)
    {
        const Lane left = laneOf(v, 0), right = words ? _mm_srli_epi32(left, 16) : laneOf(v, 1);
        return secondLevel<Forward>(left, right, pick<1, 1, 1, 1>(left), pick<1, 1, 1, 1>(right));
    }
    // From memory: its loads are ready sooner than what would be drawn from registers.
    QOV_INLINE V inverseSecondLevel(const T* data, ptrdiff_t step)
    {
        const auto dc = [](const T* p) { return _mm_cvtsi32_si128(get<int>(p)); };
        const T* const lower = atByte(data, 4 * step);
        return secondLevel<Inverse>(dc(data), dc(data + 4), dc(lower), dc(lower + 4));
    }
};

template <class T>
struct EightByEight {
    typedef RowOfTwo<T> Row;
    typedef typename Row::V V;
    typedef Steps<typename Row::A> S;

    template <Direction direction>
    QOV_INLINE void transform(T* data, ptrdiff_t step)
    {
        V row[4][2]; // of the upper blocks, of the lower ones
        for (int y = 0; y < 8; y++) row[y % 4][y / 4] = Row::read(atByte(data, y * step));
        if constexpr (direction == Forward)
            forward(row);
        else
            inverse(row, Row::inverseSecondLevel(data, step));
        for (int y = 0; y < 8; y++) Row::write(atByte(data, y * step), row[y % 4][y / 4]);
    }

private:
    // Variables a of the first step lie in the upper left quarter of each block; b, c and d are their mirror
    // images to the right, below and both. a[r] holds row r of the quarters: two dwords of an upper block,
    // then two of a lower one. The second step makes coefficients without an odd frequency of a, with one of
    // b and of c, with two of d. Each of its registers holds an operand of c (lower half of 128 bits) and b
    // (upper), or of a and d, of which `none` has the outcome for a, `two` that for d.
    QOV_INLINE void forward(V (&row)[4][2])
    {
        V a[2], b[2], c[2], d[2];
        for (int r = 0; r < 2; r++) {
            a[r] = lowPairs64(row[r][0], row[r][1]);
            b[r] = pick<3, 2, 3, 2>(row[r][0], row[r][1]);
            c[r] = lowPairs64(row[3 - r][0], row[3 - r][1]);
            d[r] = pick<3, 2, 3, 2>(row[3 - r][0], row[3 - r][1]);
            S::template hadamard<0>(a[r], b[r], c[r], d[r]);
        }
        V one[4] = {pick<0, 2, 1, 3>(c[1], b[0]), pick<0, 2, 0, 2>(c[0], b[0]), pick<1, 3, 1, 3>(c[1], b[1]),
                    pick<1, 3, 0, 2>(c[0], b[1])};
        V none[4] = {pick<0, 2, 1, 3>(a[0], d[1]), pick<1, 3, 0, 2>(a[0], d[1]), pick<0, 2, 1, 3>(a[1], d[0]),
                     pick<1, 3, 0, 2>(a[1], d[0])};
        V two[4] = {none[0], none[1], none[2], none[3]};
        S::template hadamard<1>(none[0], none[1], none[2], none[3]);
        S::oddOdd(two[0], two[1], two[2], two[3]);
        S::odd(one[0], one[1], one[2], one[3]);
        none[0] = Row::forwardSecondLevel(none[0]);
        byQwords(lowPairs32(none[0], one[0]), lowPairs32(none[2], one[3]), row[0][0], row[0][1]);
        byQwords(highPairs32(one[0], two[3]), highPairs32(one[1], two[2]), row[1][0], row[1][1]);
        byQwords(lowPairs32(none[1], one[1]), lowPairs32(none[3], one[2]), row[2][0], row[2][1]);
        byQwords(highPairs32(one[3], two[1]), highPairs32(one[2], two[0]), row[3][0], row[3][1]);
    }

    QOV_INLINE void inverse(V (&row)[4][2], V dcs)
    {
        V left[4], right[4]; // columns 0 and 1 of a row, 2 and 3
        for (int y = 0; y < 4; y++) {
            left[y] = lowPairs32(row[y][0], row[y][1]);
            right[y] = highPairs32(row[y][0], row[y][1]);
        }
        V one[4] = {pick<2, 3, 0, 1>(left[0], left[1]), pick<2, 3, 0, 1>(left[2], right[1]),
                    pick<2, 3, 0, 1>(right[2], right[3]), pick<2, 3, 0, 1>(right[0], left[3])};
        V two[4] = {choose<12>(left[0], right[3]), choose<12>(left[2], left[3]),
                    choose<12>(right[0], right[1]), choose<12>(right[2], left[1])};
        V none[4] = {dcs, two[1], two[2], two[3]};
        S::template hadamard<1>(none[0], none[1], none[2], none[3]);
        S::inverseOddOdd(two[0], two[1], two[2], two[3]);
        S::inverseOdd(one[0], one[1], one[2], one[3]);
        V a[2] = {lowPairs32(none[0], none[1]), lowPairs32(none[2], none[3])};
        V b[2] = {highPairs32(one[1], one[0]), highPairs32(one[3], one[2])};
        V c[2] = {lowPairs32(one[1], one[3]), lowPairs32(one[0], one[2])};
        V d[2] = {highPairs32(two[3], two[2]), highPairs32(two[1], two[0])};
        for (int r = 0; r < 2; r++) {
            S::template hadamard<0>(a[r], b[r], c[r], d[r]);
            row[r][0] = pick<0, 1, 1, 0>(a[r], b[r]);
            row[r][1] = pick<2, 3, 3, 2>(a[r], b[r]);
            row[3 - r][0] = pick<0, 1, 1, 0>(c[r], d[r]);
            row[3 - r][1] = pick<2, 3, 3, 2>(c[r], d[r]);
        }
    }
};

} // namespace
} // namespace qov::QOV_LEVEL

#endif
#endif
