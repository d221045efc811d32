// What conversions of an MCU do to 32 pixels at a time. A strip is two rows of 16 pixels or four rows of 8. A
// register of its samples holds row 0 in the low lane and row 1 in the high lane; rows 2 and 3 of the narrow
// strip stand behind them. So the first halves of both lanes, and the second halves, are 16 neighbours in the
// blocks.
#ifndef QOV_KERNELS_JMCU256_H
#define QOV_KERNELS_JMCU256_H

#include "jcolor256.h"

#if defined(QOV_SIMD256)

namespace qov::QOV_LEVEL {
namespace {

QOV_W_OP2(W, averageWords, avg_epu16) // (a + b + 1) >> 1

// 16 bytes at offset `at` of `first` and `second`, each of `bytes` bytes, as if they were one row.
inline __m128i loadAcross(const Qov8u* first, const Qov8u* second, int bytes, int at)
{
    if (at + 16 <= bytes) return _mm_loadu_si128((const __m128i*)(first + at));
    if (at >= bytes) return _mm_loadu_si128((const __m128i*)(second + (at - bytes)));
    return _mm_unpacklo_epi64(_mm_loadl_epi64((const __m128i*)(first + at)),
                              _mm_loadl_epi64((const __m128i*)second));
}
inline void storeAcross(Qov8u* first, Qov8u* second, int bytes, int at, __m128i a)
{
    if (at + 16 <= bytes) {
        _mm_storeu_si128((__m128i*)(first + at), a);
    } else if (at >= bytes) {
        _mm_storeu_si128((__m128i*)(second + (at - bytes)), a);
    } else {
        _mm_storel_epi64((__m128i*)(first + at), a);
        _mm_storel_epi64((__m128i*)second, _mm_unpackhi_epi64(a, a));
    }
}

// A strip as the chunks of planes256.h, one for each of the `count` bytes of a pixel.
template <int width, int count>
inline void loadStrip(const Qov8u* src, ptrdiff_t step, W (&chunk)[count])
{
    const Qov8u* behind = width == 16 ? src + 8 * count : src + 2 * step;
    for (int k = 0; k < count; k++)
        chunk[k] = lanes(loadAcross(src, behind, 8 * count, 16 * k),
                         loadAcross(src + step, behind + step, 8 * count, 16 * k));
}
template <int width, int count>
inline void storeStrip(Qov8u* dst, ptrdiff_t step, const W (&chunk)[count])
{
    Qov8u* behind = width == 16 ? dst + 8 * count : dst + 2 * step;
    for (int k = 0; k < count; k++) {
        storeAcross(dst, behind, 8 * count, 16 * k, lowLane(chunk[k]));
        storeAcross(dst + step, behind + step, 8 * count, 16 * k, highLane(chunk[k]));
    }
}

// Samples of a strip less 128 in the block that it belongs to, or in the two blocks.
template <int width>
constexpr ptrdiff_t secondHalf = width == 16 ? 64 : 16;

template <int width>
inline void storeBlockRows(W samples, Qov16s* block)
{
    const W zero = all16(0), level = all16(128);
    store(block, sub16(lowBytes(samples, zero), level));
    store(block + secondHalf<width>, sub16(highBytes(samples, zero), level));
}
// Limited to 0..255.
inline W plus128(W low, W high)
{
    return unlike(packSigned16(low, high), all16(short(0x8080)));
}
template <int width>
inline W loadBlockRows(const Qov16s* block)
{
    return plus128(load(block), load(block + secondHalf<width>));
}

// Means of chroma in wide strips, less 128: two rows of a block.
inline void storeMeans(const W (&strip)[1], Qov16s* block)
{
    const W sums = multiplyAddBytes(strip[0], all16(0x0101));
    store(block, sub16(averageWords(sums, all16(0)), all16(128)));
}
inline void storeMeans(const W (&strip)[2], Qov16s* block)
{
    const W upper = multiplyAddBytes(strip[0], all16(0x0101)),
            lower = multiplyAddBytes(strip[1], all16(0x0101));
    const W sums = add16(crossLowLanes(upper, lower), crossHighLanes(upper, lower));
    store(block, sub16(mulRound16(sums, all16(1 << 13)), all16(128))); // (sum + 2) >> 2
}

// And back: each sample of two rows of a block twice in its row, and in two rows.
inline W loadTwice(const Qov16s* block)
{
    const W samples = load(block), bytes = plus128(samples, samples);
    return lowBytes(bytes, bytes);
}
inline void loadRepeated(const Qov16s* block, W (&strip)[1])
{
    strip[0] = loadTwice(block);
}
inline void loadRepeated(const Qov16s* block, W (&strip)[2])
{
    const W rows = loadTwice(block);
    strip[0] = crossLowLanes(rows, rows);
    strip[1] = crossHighLanes(rows, rows);
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
#endif
