// Macroblocks of `wide` by `high` samples through both levels of the photo core transform, in place: from
// vectors where the level has them, block by block at px. Rows are `step` bytes apart.
#ifndef QOV_KERNELS_PCT_MACROBLOCKS_H
#define QOV_KERNELS_PCT_MACROBLOCKS_H

#include "pct_eights.h"
#include "pct_quads.h"
#include "pct_second.h"
#include "pct_steps.h"

namespace qov::QOV_LEVEL {
namespace {

#if defined(QOV_SIMD256)

constexpr int rasterPlace[4] = {0, 1, 2, 3};

// `macroblocks` of them side by side, in groups of four chunks: `across` chunks fill a row of the macroblock,
// or of both if they are of words, and the others are of the next rows of blocks. So a row's line of the
// cache is used whole at once: rows may lie a power of two apart, and their lines then push each other out.
template <class T, int wide, int high, int macroblocks>
struct Tile {
    static constexpr int size = int(sizeof(T));
    static constexpr bool wordPairs = size == 2 && macroblocks == 2;
    static constexpr int rowBytes = wide * size * (wordPairs ? 2 : 1); // that a group covers
    static constexpr int chunkBytes = rowBytes < widest<T, macroblocks> ? rowBytes : widest<T, macroblocks>;
    static constexpr int across = rowBytes / chunkBytes, down = 4 / across;
    static constexpr int groupsDown = high / 4 / down, groups = groupsDown * (wordPairs ? 1 : macroblocks);
    static constexpr int quads = high == 8 ? 1 : wide / 4;
    typedef Chunk<T, chunkBytes> Rows;
    typedef typename Rows::V V;
    typedef Quads<T, quads, macroblocks, groupsDown> Dc;
    typedef SecondLevel<typename Dc::A, quads> Second;

    template <Direction direction>
    QOV_INLINE void transform(T* data, ptrdiff_t step)
    {
        V firstRow[groups][4]; // apart from the others, for its DC coefficients
        if constexpr (direction == Forward) {
            for (int g = 0; g < groups; g++) {
                T* group = groupAt(data, g, step);
                V x[16];
                for (int y = 0; y < 4; y++) load(group, y, step, x + 4 * y, rasterPlace);
                Steps<typename Rows::A>::template block<Forward>(x);
                for (int i = 0; i < 4; i++) firstRow[g][i] = x[coefficientPlace[i]];
                for (int y = 1; y < 4; y++) store(group, y, step, x, coefficientPlace + 4 * y);
            }
            secondLevel<Forward>(firstRow);
            for (int g = 0; g < groups; g++) store(groupAt(data, g, step), 0, step, firstRow[g], rasterPlace);
        } else {
            for (int g = 0; g < groups; g++) load(groupAt(data, g, step), 0, step, firstRow[g], rasterPlace);
            secondLevel<Inverse>(firstRow);
            for (int g = 0; g < groups; g++) {
                T* group = groupAt(data, g, step);
                V x[16];
                for (int i = 0; i < 4; i++) x[coefficientPlace[i]] = firstRow[g][i];
                for (int y = 1; y < 4; y++) load(group, y, step, x, coefficientPlace + 4 * y);
                Steps<typename Rows::A>::template block<Inverse>(x);
                for (int y = 0; y < 4; y++) store(group, y, step, x + 4 * y, rasterPlace);
            }
        }
    }

private:
    QOV_INLINE T* groupAt(T* data, int g, ptrdiff_t step)
    {
        return atByte(data, g % groupsDown * 4 * down * step + g / groupsDown * rowBytes);
    }
    // Row y of the blocks of chunk i of a group.
    QOV_INLINE T* chunk(T* group, int i, int y, ptrdiff_t step)
    {
        return atByte(group, (i / across * 4 + y) * step + i % across * chunkBytes);
    }
    // Columns 0 to 3 of row y stand at four places of x.
    QOV_INLINE void load(T* group, int y, ptrdiff_t step, V* x, const int* place)
    {
        V &a = x[place[0]], &b = x[place[1]], &c = x[place[2]], &d = x[place[3]];
        a = get<V>(chunk(group, 0, y, step));
        b = get<V>(chunk(group, 1, y, step));
        c = get<V>(chunk(group, 2, y, step));
        d = get<V>(chunk(group, 3, y, step));
        Rows::transpose(a, b, c, d);
    }
    QOV_INLINE void store(T* group, int y, ptrdiff_t step, const V* x, const int* place)
    {
        V a = x[place[0]], b = x[place[1]], c = x[place[2]], d = x[place[3]];
        Rows::transpose(a, b, c, d);
        put(chunk(group, 0, y, step), a);
        put(chunk(group, 1, y, step), b);
        put(chunk(group, 2, y, step), c);
        put(chunk(group, 3, y, step), d);
    }

    template <Direction direction>
    QOV_INLINE void secondLevel(V (&firstRow)[groups][4])
    {
        constexpr int lanesOfChunk = int(sizeof(V)) / 16;
        Lane lane[groups * lanesOfChunk];
        for (int i = 0; i < groups * lanesOfChunk; i++)
            lane[i] = laneOf(firstRow[i / lanesOfChunk][0], i % lanesOfChunk);
        typename Dc::V q[quads];
        Dc::collect(lane, q);
        if constexpr (direction == Forward)
            Second::forward(q);
        else
            Second::inverse(q);
        Dc::spread(q, lane);
        for (int g = 0; g < groups; g++) firstRow[g][0] = ofLanes<V>(lane + g * lanesOfChunk);
    }
};

template <class T>
requires(sizeof(typename RowOfTwo<T>::V) <= registerBytes) struct Tile<T, 8, 8, 1> : EightByEight<T> {
};

// Pairs of 16x16 macroblocks share the vectors of the second level, where those of one would leave half of
// them empty.
template <class T, int wide, int high>
constexpr int tileMacroblocks = wide == 16 && widest<T, 2> > 16 ? 2 : 1;

#else

template <class T, int wide, int high>
constexpr int tileMacroblocks = 1;

template <class T, int wide, int high, int>
struct Tile {
    typedef Arithmetic<T, 1> A;
    typedef Steps<A> S;

    template <Direction direction>
    static inline void transform(T* data, ptrdiff_t step)
    {
        if constexpr (direction == Inverse) secondLevel<Inverse>(data, step);
        for (int y = 0; y < high; y += 4)
            for (int x = 0; x < wide; x += 4) square<direction>(atByte(data, y * step) + x, step, 1);
        if constexpr (direction == Forward) secondLevel<Forward>(data, step);
    }

private:
    // 4x4 numbers that lie `apart` elements from each other in rows `step` bytes apart.
    template <Direction direction>
    static inline void square(T* data, ptrdiff_t step, int apart)
    {
        T x[16];
        for (int i = 0; i < 16; i++)
            x[direction == Forward ? i : coefficientPlace[i]] = atByte(data, i / 4 * step)[i % 4 * apart];
        S::template block<direction>(x);
        for (int i = 0; i < 16; i++)
            atByte(data, i / 4 * step)[i % 4 * apart] = x[direction == Forward ? coefficientPlace[i] : i];
    }

    template <Direction direction>
    static inline void secondLevel(T* data, ptrdiff_t step)
    {
        if constexpr (wide == 16) {
            square<direction>(data, 4 * step, 4);
        } else if constexpr (high == 16) {
            T &g0 = *data, &g4 = *atByte(data, 8 * step);
            if constexpr (direction == Inverse) {
                g0 = A::template subtract<halfUp>(g0, g4);
                g4 = A::add(g4, g0);
            }
            quarter<direction>(&g0, step);
            quarter<direction>(&g4, step);
            if constexpr (direction == Forward) {
                g4 = A::subtract(g4, g0);
                g0 = A::template add<halfUp>(g0, g4);
            }
        } else {
            quarter<direction>(data, step);
        }
    }

    // The DC coefficients of two by two blocks.
    template <Direction direction>
    static inline void quarter(T* data, ptrdiff_t step)
    {
        T &g0 = data[0], &g1 = data[4], &g2 = atByte(data, 4 * step)[0], &g3 = atByte(data, 4 * step)[4];
        T a = g0, b = direction == Forward ? g2 : g1, c = direction == Forward ? g1 : g2, d = g3;
        S::template hadamard<0>(a, b, c, d);
        g0 = a;
        g1 = direction == Forward ? b : c;
        g2 = direction == Forward ? c : b;
        g3 = d;
    }
};

#endif

} // namespace
} // namespace qov::QOV_LEVEL

#endif
