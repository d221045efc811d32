// Registers of 16 to 64 bytes for the photo core transform, and rows of 4x4 blocks that become columns in
// them and rows again. Every operation works on each 128 bits by itself. Nothing here at px.
#ifndef QOV_KERNELS_PCT_VECTORS_H
#define QOV_KERNELS_PCT_VECTORS_H

#include "pct_lanes.h"

#if defined(QOV_SIMD256)

namespace qov::QOV_LEVEL {
namespace {

// The widest vector that pays, in bytes: a single macroblock in 64 would leave too little to do at once.
#if defined(__AVX512BW__)
template <class T, int macroblocks>
constexpr int widest = sizeof(T) == 4 && macroblocks == 2 ? 64 : 32;
#else
template <class T, int macroblocks>
constexpr int widest = registerBytes;
#endif

#if defined(__AVX512BW__)
#define QOV_AT_64_BYTES(expression)                                                                          \
    if constexpr (sizeof(V) == 64) return (V)expression;
#else
#define QOV_AT_64_BYTES(expression)
#endif
#if defined(__AVX2__)
#define QOV_AT_32_BYTES(expression)                                                                          \
    if constexpr (sizeof(V) == 32) return (V)expression;
#else
#define QOV_AT_32_BYTES(expression)
#endif
// 64 bytes with a mask of all elements: gcc 12 warns of its own header without one.
#define QOV_PAIRS(name, op, every)                                                                           \
    template <class V>                                                                                       \
    QOV_INLINE V name(V a, V b)                                                                              \
    {                                                                                                        \
        QOV_AT_64_BYTES(_mm512_maskz_##op(every, (__m512i)a, (__m512i)b))                                    \
        QOV_AT_32_BYTES(_mm256_##op((__m256i)a, (__m256i)b))                                                 \
        if constexpr (sizeof(V) == 16) return (V)_mm_##op((__m128i)a, (__m128i)b);                           \
    }
// Words, dwords or qwords of the lower or upper halves by turns.
QOV_PAIRS(lowPairs16, unpacklo_epi16, 0xFFFFFFFF)
QOV_PAIRS(highPairs16, unpackhi_epi16, 0xFFFFFFFF)
QOV_PAIRS(lowPairs32, unpacklo_epi32, 0xFFFF)
QOV_PAIRS(highPairs32, unpackhi_epi32, 0xFFFF)
QOV_PAIRS(lowPairs64, unpacklo_epi64, 0xFF)
QOV_PAIRS(highPairs64, unpackhi_epi64, 0xFF)
#undef QOV_PAIRS

// Dwords a0 and a1 of a, then b0 and b1 of b.
template <int a0, int a1, int b0, int b1, class V>
QOV_INLINE V pick(V a, V b)
{
    constexpr int order = a0 | a1 << 2 | b0 << 4 | b1 << 6;
    QOV_AT_32_BYTES(_mm256_shuffle_ps((__m256)a, (__m256)b, order))
    if constexpr (sizeof(V) == 16) return (V)_mm_shuffle_ps((__m128)a, (__m128)b, order);
}
template <int i0, int i1, int i2, int i3, class V>
QOV_INLINE V pick(V a)
{
    return pick<i0, i1, i2, i3>(a, a);
}

// Dwords of b where `mask` has a bit, of a elsewhere.
template <int mask, class V>
QOV_INLINE V choose(V a, V b)
{
    QOV_AT_32_BYTES(_mm256_blend_ps((__m256)a, (__m256)b, mask | mask << 4))
    if constexpr (sizeof(V) == 16) return (V)_mm_blend_ps((__m128)a, (__m128)b, mask);
}
#undef QOV_AT_64_BYTES
#undef QOV_AT_32_BYTES

// 128 bits of a register, and a register of them.
typedef __m128i Lane;

template <class V>
QOV_INLINE Lane laneOf(V v, [[maybe_unused]] int k)
{
    if constexpr (sizeof(V) == 16) return (Lane)v;
#if defined(__AVX2__)
    if constexpr (sizeof(V) == 32) return k ? _mm256_extracti128_si256((__m256i)v, 1) : lowLane((__m256i)v);
#endif
#if defined(__AVX512BW__)
    if constexpr (sizeof(V) == 64) {
        const __m256i lowerHalf = _mm512_maskz_extracti64x4_epi64(0xFF, (__m512i)v, 0);
        const __m256i upperHalf = _mm512_maskz_extracti64x4_epi64(0xFF, (__m512i)v, 1);
        return laneOf(k < 2 ? lowerHalf : upperHalf, k % 2);
    }
#endif
}
template <class V>
QOV_INLINE V ofLanes(const Lane* lane)
{
    if constexpr (sizeof(V) == 16) return (V)lane[0];
#if defined(__AVX2__)
    if constexpr (sizeof(V) == 32) return (V)lanes(lane[0], lane[1]);
#endif
#if defined(__AVX512BW__)
    if constexpr (sizeof(V) == 64)
        return (V)_mm512_maskz_inserti64x4(0xFF, _mm512_castsi256_si512(lanes(lane[0], lane[1])),
                                           lanes(lane[2], lane[3]), 1);
#endif
}

template <class V>
QOV_INLINE void byQwords(V first, V second, V& low, V& high)
{
    low = lowPairs64(first, second);
    high = highPairs64(first, second);
}
template <class V>
QOV_INLINE void transposeDwords(V& a, V& b, V& c, V& d)
{
    const V ab = lowPairs32(a, b), cd = lowPairs32(c, d), ab2 = highPairs32(a, b), cd2 = highPairs32(c, d);
    byQwords(ab, cd, a, b);
    byQwords(ab2, cd2, c, d);
}

// A register of `bytes` bytes of a row of samples, four for each block in it.
template <class T, int bytes>
struct Chunk {
    typedef Arithmetic<T, bytes / int(sizeof(T))> A;
    typedef typename A::V V;

    // Turns the chunks of four rows of blocks, or of several blocks of a row, into columns 0 to 3 of all the
    // blocks, and columns into chunks. In 128 bits stand a block of each chunk, of words then a second one of
    // each.
    QOV_INLINE void transpose(V& a, V& b, V& c, V& d)
    {
        if constexpr (sizeof(T) == 2) {
            const V ab = lowPairs16(a, b), cd = lowPairs16(c, d);
            const V ab2 = highPairs16(a, b), cd2 = highPairs16(c, d);
            byQwords(lowPairs32(ab, cd), lowPairs32(ab2, cd2), a, b);
            byQwords(highPairs32(ab, cd), highPairs32(ab2, cd2), c, d);
        } else {
            transposeDwords(a, b, c, d);
        }
    }
};

} // namespace
} // namespace qov::QOV_LEVEL

#endif
#endif
