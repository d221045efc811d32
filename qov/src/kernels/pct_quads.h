// The DC coefficients of a tile on their way between the first level and the second, which has them as quads:
// in the dwords of 128 bits the four of a column of blocks, top to bottom, or all of an 8x8 macroblock in
// raster order. Nothing here at px.
#ifndef QOV_KERNELS_PCT_QUADS_H
#define QOV_KERNELS_PCT_QUADS_H

#include "pct_vectors.h"

#if defined(QOV_SIMD256)

namespace qov::QOV_LEVEL {
namespace {

// The first level leaves them in lanes of 128 bits, in the order of Chunk::transpose, from each group of four
// chunks. They become raw quads of the group, of the right dwords but of two or four columns, and then quads.
// With 32 bits the second macroblock of a tile takes the upper half of the quads' registers; with words it
// shares the dwords, as its chunks come by turns with those of the first. A single macroblock of words is
// both.
template <class T, int quads, int macroblocks, int groups>
struct Quads {
    static constexpr bool words = sizeof(T) == 2, wordPairs = words && macroblocks == 2;
    static constexpr int rawOfGroup = quads / groups;
    static constexpr int lanesOfGroup = words && !wordPairs ? rawOfGroup / 2 : rawOfGroup;
    static constexpr int lanes = groups * lanesOfGroup * (words ? 1 : macroblocks);
    typedef Arithmetic<T, (words ? 16 : 16 * macroblocks) / int(sizeof(T))> A;
    typedef typename A::V V;

    QOV_INLINE void collect(const Lane (&lane)[lanes], V (&q)[quads])
    {
        V raw[groups][rawOfGroup];
        for (int g = 0; g < groups; g++)
            for (int k = 0; k < rawOfGroup; k++) raw[g][k] = rawOf(lane, g, k);
        if constexpr (groups == 1) {
            for (int k = 0; k < quads; k++) q[k] = raw[0][k];
        } else if constexpr (groups == 4) {
            for (int k = 0; k < 4; k++) q[k] = raw[k][0];
            transposeDwords(q[0], q[1], q[2], q[3]);
        } else {
            for (int k = 0; k < rawOfGroup; k++) {
                const V a = raw[0][k], b = raw[1][k];
                q[firstColumn(k)] = wordPairs ? lowPairs64(a, b) : pick<0, 2, 0, 2>(a, b);
                q[secondColumn(k)] = wordPairs ? highPairs64(a, b) : pick<1, 3, 1, 3>(a, b);
            }
        }
    }

    QOV_INLINE void spread(const V (&q)[quads], Lane (&lane)[lanes])
    {
        V raw[groups][rawOfGroup];
        if constexpr (groups == 1) {
            for (int k = 0; k < quads; k++) raw[0][k] = q[k];
        } else if constexpr (groups == 4) {
            for (int k = 0; k < 4; k++) raw[k][0] = q[k];
            transposeDwords(raw[0][0], raw[1][0], raw[2][0], raw[3][0]);
        } else {
            for (int k = 0; k < rawOfGroup; k++) {
                const V a = q[firstColumn(k)], b = q[secondColumn(k)];
                raw[0][k] = wordPairs ? lowPairs64(a, b) : lowPairs32(a, b);
                raw[1][k] = wordPairs ? highPairs64(a, b) : highPairs32(a, b);
            }
        }
        for (int g = 0; g < groups; g++) toLanes(raw[g], g, lane);
    }

private:
    static constexpr int firstColumn(int k) { return wordPairs ? 2 * k : k; }
    static constexpr int secondColumn(int k) { return wordPairs ? 2 * k + 1 : k + rawOfGroup; }

    QOV_INLINE V rawOf(const Lane (&lane)[lanes], int g, int k)
    {
        if constexpr (wordPairs) {
            return (V)lane[g * lanesOfGroup + k];
        } else if constexpr (words) {
            const Lane both = lane[g * lanesOfGroup + k / 2];
            return (V)(k % 2 ? highPairs16(both, both) : lowPairs16(both, both));
        } else {
            const Lane* first = lane + g * lanesOfGroup + k;
            const Lane all[2] = {*first, first[lanes - lanes / macroblocks]};
            return ofLanes<V>(all);
        }
    }
    QOV_INLINE void toLanes(const V (&raw)[rawOfGroup], int g, Lane (&lane)[lanes])
    {
        Lane* first = lane + g * lanesOfGroup;
        if constexpr (wordPairs) {
            for (int k = 0; k < rawOfGroup; k++) first[k] = (Lane)raw[k];
        } else if constexpr (words) {
            const Lane evenWords = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 0, 1, 4, 5, 8, 9, 12, 13);
            for (int k = 0; k < rawOfGroup; k += 2)
                first[k / 2] = lowPairs64(_mm_shuffle_epi8((Lane)raw[k], evenWords),
                                          _mm_shuffle_epi8((Lane)raw[k + 1], evenWords));
        } else {
            for (int k = 0; k < rawOfGroup; k++)
                for (int m = 0; m < macroblocks; m++) first[m * lanes / macroblocks + k] = laneOf(raw[k], m);
        }
    }
};

} // namespace
} // namespace qov::QOV_LEVEL

#endif
#endif
