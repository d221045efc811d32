// 256 bits as two lanes of 128, for kernels that SSE4.2 and AVX2 share: one register at v3 and v4, a pair of
// them at v2. Every operation stays inside its lanes unless its name says `cross`. Nothing here at px.
#ifndef QOV_KERNELS_SIMD256_H
#define QOV_KERNELS_SIMD256_H

#include "family.h"

#if defined(__SSE4_1__)
#define QOV_SIMD256
#include <immintrin.h>

namespace qov::QOV_LEVEL {

#if defined(__AVX2__)
typedef __m256i W;
typedef __m256 F;
#define QOV_W_OP1(T, name, op)                                                                               \
    QOV_INLINE T name(T a)                                                                                   \
    {                                                                                                        \
        return _mm256_##op(a);                                                                               \
    }
#define QOV_W_OP2(T, name, op)                                                                               \
    QOV_INLINE T name(T a, T b)                                                                              \
    {                                                                                                        \
        return _mm256_##op(a, b);                                                                            \
    }
#define QOV_W_IMM1(T, name, op)                                                                              \
    template <int imm>                                                                                       \
    QOV_INLINE T name(T a)                                                                                   \
    {                                                                                                        \
        return _mm256_##op(a, imm);                                                                          \
    }
#define QOV_W_CVT(To, From, name, op)                                                                        \
    QOV_INLINE To name(From a)                                                                               \
    {                                                                                                        \
        return _mm256_##op(a);                                                                               \
    }
#define QOV_W_SET(T, name, Element, op)                                                                      \
    QOV_INLINE T name(Element a)                                                                             \
    {                                                                                                        \
        return _mm256_##op(a);                                                                               \
    }
#else
struct W {
    __m128i lo, hi;
};
struct F {
    __m128 lo, hi;
};
#define QOV_W_OP1(T, name, op)                                                                               \
    QOV_INLINE T name(T a)                                                                                   \
    {                                                                                                        \
        return {_mm_##op(a.lo), _mm_##op(a.hi)};                                                             \
    }
#define QOV_W_OP2(T, name, op)                                                                               \
    QOV_INLINE T name(T a, T b)                                                                              \
    {                                                                                                        \
        return {_mm_##op(a.lo, b.lo), _mm_##op(a.hi, b.hi)};                                                 \
    }
#define QOV_W_IMM1(T, name, op)                                                                              \
    template <int imm>                                                                                       \
    QOV_INLINE T name(T a)                                                                                   \
    {                                                                                                        \
        return {_mm_##op(a.lo, imm), _mm_##op(a.hi, imm)};                                                   \
    }
#define QOV_W_CVT(To, From, name, op)                                                                        \
    QOV_INLINE To name(From a)                                                                               \
    {                                                                                                        \
        return {_mm_##op(a.lo), _mm_##op(a.hi)};                                                             \
    }
#define QOV_W_SET(T, name, Element, op)                                                                      \
    QOV_INLINE T name(Element a)                                                                             \
    {                                                                                                        \
        return {_mm_##op(a), _mm_##op(a)};                                                                   \
    }
#endif

QOV_W_SET(W, all16, short, set1_epi16)
QOV_W_SET(W, all32, int, set1_epi32)
QOV_W_SET(F, allFloat, float, set1_ps)
QOV_W_OP2(W, add16, add_epi16)
QOV_W_OP2(W, sub16, sub_epi16)
QOV_W_OP2(W, add32, add_epi32)
QOV_W_OP2(W, sub32, sub_epi32)
QOV_W_OP2(W, mulLow16, mullo_epi16)
QOV_W_OP2(W, mulHigh16, mulhi_epi16)          // (a b) >> 16
QOV_W_OP2(W, mulRound16, mulhrs_epi16)        // (a b + 2^14) >> 15
QOV_W_OP2(W, multiplyAdd, madd_epi16)         // pairs of words: a0 b0 + a1 b1
QOV_W_OP2(W, multiplyAddBytes, maddubs_epi16) // pairs of bytes: unsigned a times signed b, summed
QOV_W_OP2(W, maxU16, max_epu16)
QOV_W_OP2(W, minU16, min_epu16)
QOV_W_OP2(W, subSaturateU16, subs_epu16)
QOV_W_OP2(W, pack32, packs_epi32)
QOV_W_OP2(W, packSigned16, packs_epi16)
QOV_W_OP2(W, packU16, packus_epi16)
QOV_W_OP2(W, lowBytes, unpacklo_epi8)
QOV_W_OP2(W, highBytes, unpackhi_epi8)
QOV_W_OP2(W, lowWords, unpacklo_epi16)
QOV_W_OP2(W, highWords, unpackhi_epi16)
QOV_W_OP2(W, lowDwords, unpacklo_epi32)
QOV_W_OP2(W, highDwords, unpackhi_epi32)
QOV_W_OP2(W, lowQwords, unpacklo_epi64)
QOV_W_OP2(W, highQwords, unpackhi_epi64)
QOV_W_OP2(W, shuffleBytes, shuffle_epi8)
QOV_W_OP1(W, abs16, abs_epi16)
QOV_W_IMM1(W, shiftRight16, srai_epi16)
QOV_W_IMM1(W, shiftRightU16, srli_epi16)
QOV_W_IMM1(W, shiftRight32, srai_epi32)
QOV_W_CVT(F, W, toFloat, cvtepi32_ps)
QOV_W_CVT(W, F, toNearest, cvtps_epi32)
QOV_W_OP2(F, mulFloat, mul_ps)
QOV_W_OP2(F, subFloat, sub_ps)
QOV_W_OP2(F, addFloat, add_ps)
QOV_W_OP2(F, divideFloat, div_ps)
QOV_W_OP2(F, minFloat, min_ps)
QOV_W_OP2(F, maxFloat, max_ps)
QOV_W_OP2(F, andFloat, and_ps)
QOV_W_OP2(F, orFloat, or_ps)
QOV_W_CVT(W, F, toZero, cvttps_epi32)
QOV_W_OP2(W, min32, min_epi32)
QOV_W_OP2(W, greaterThan32, cmpgt_epi32)

#if defined(__AVX2__)
QOV_W_OP2(W, both, and_si256)
QOV_W_OP2(W, either, or_si256)
QOV_W_OP2(W, unlike, xor_si256)
QOV_W_CVT(F, W, asFloat, castsi256_ps)
QOV_W_CVT(W, F, asWords, castps_si256)
QOV_INLINE bool isZero(W a)
{
    return _mm256_testz_si256(a, a);
}
QOV_INLINE W load(const void* p)
{
    return _mm256_loadu_si256((const __m256i*)p);
}
QOV_INLINE void store(void* p, W a)
{
    _mm256_storeu_si256((__m256i*)p, a);
}
QOV_INLINE W lanes(__m128i lo, __m128i hi)
{
    return _mm256_inserti128_si256(_mm256_castsi128_si256(lo), hi, 1);
}
QOV_INLINE __m128i lowLane(W a)
{
    return _mm256_castsi256_si128(a);
}
QOV_INLINE __m128i highLane(W a)
{
    return _mm256_extracti128_si256(a, 1);
}
QOV_INLINE W bothLanes(__m128i a)
{
    return _mm256_broadcastsi128_si256(a);
}
// Dwords 0 and 2, or 1 and 3, of each lane of a, then of b.
QOV_INLINE W evenDwords(W a, W b)
{
    return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), 0x88));
}
QOV_INLINE W oddDwords(W a, W b)
{
    return _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), 0xDD));
}
QOV_INLINE W crossLowLanes(W a, W b)
{
    return _mm256_permute2x128_si256(a, b, 0x20);
}
QOV_INLINE W crossHighLanes(W a, W b)
{
    return _mm256_permute2x128_si256(a, b, 0x31);
}
// Qwords 0 2 | 1 3: makes [a0 b0 | a1 b1] of [a0 a1 | b0 b1], and back.
QOV_INLINE W crossQwords(W a)
{
    return _mm256_permute4x64_epi64(a, 0xD8);
}
QOV_INLINE W widenSigned(__m128i words)
{
    return _mm256_cvtepi16_epi32(words);
}
QOV_INLINE W widenUnsigned(__m128i words)
{
    return _mm256_cvtepu16_epi32(words);
}
// Where the mask is all ones a, elsewhere b.
QOV_INLINE W select32(W mask, W a, W b)
{
    return _mm256_blendv_epi8(b, a, mask);
}
// a b - c
QOV_INLINE F productMinus(F a, F b, F c)
{
    return _mm256_fmsub_ps(a, b, c);
}
#else
QOV_W_OP2(W, both, and_si128)
QOV_W_OP2(W, either, or_si128)
QOV_W_OP2(W, unlike, xor_si128)
QOV_W_CVT(F, W, asFloat, castsi128_ps)
QOV_W_CVT(W, F, asWords, castps_si128)
QOV_INLINE bool isZero(W a)
{
    const __m128i any = _mm_or_si128(a.lo, a.hi);
    return _mm_testz_si128(any, any);
}
QOV_INLINE W load(const void* p)
{
    return {_mm_loadu_si128((const __m128i*)p), _mm_loadu_si128((const __m128i*)p + 1)};
}
QOV_INLINE void store(void* p, W a)
{
    _mm_storeu_si128((__m128i*)p, a.lo);
    _mm_storeu_si128((__m128i*)p + 1, a.hi);
}
QOV_INLINE W lanes(__m128i lo, __m128i hi)
{
    return {lo, hi};
}
QOV_INLINE __m128i lowLane(W a)
{
    return a.lo;
}
QOV_INLINE __m128i highLane(W a)
{
    return a.hi;
}
QOV_INLINE W bothLanes(__m128i a)
{
    return {a, a};
}
QOV_INLINE __m128i shuffleDwords(__m128i a, __m128i b, bool odd)
{
    const __m128 x = _mm_castsi128_ps(a), y = _mm_castsi128_ps(b);
    return _mm_castps_si128(odd ? _mm_shuffle_ps(x, y, 0xDD) : _mm_shuffle_ps(x, y, 0x88));
}
QOV_INLINE W evenDwords(W a, W b)
{
    return {shuffleDwords(a.lo, b.lo, false), shuffleDwords(a.hi, b.hi, false)};
}
QOV_INLINE W oddDwords(W a, W b)
{
    return {shuffleDwords(a.lo, b.lo, true), shuffleDwords(a.hi, b.hi, true)};
}
QOV_INLINE W crossLowLanes(W a, W b)
{
    return {a.lo, b.lo};
}
QOV_INLINE W crossHighLanes(W a, W b)
{
    return {a.hi, b.hi};
}
QOV_INLINE W crossQwords(W a)
{
    return {_mm_unpacklo_epi64(a.lo, a.hi), _mm_unpackhi_epi64(a.lo, a.hi)};
}
QOV_INLINE W widenSigned(__m128i words)
{
    return {_mm_cvtepi16_epi32(words), _mm_cvtepi16_epi32(_mm_unpackhi_epi64(words, words))};
}
QOV_INLINE W widenUnsigned(__m128i words)
{
    return {_mm_cvtepu16_epi32(words), _mm_cvtepu16_epi32(_mm_unpackhi_epi64(words, words))};
}
QOV_INLINE W select32(W mask, W a, W b)
{
    return {_mm_blendv_epi8(b.lo, a.lo, mask.lo), _mm_blendv_epi8(b.hi, a.hi, mask.hi)};
}
#endif

// [a b c d | e f g h] in dwords to a e b f and c g d h.
struct TwoRegisters {
    __m128i first, second;
};
QOV_INLINE TwoRegisters eachRow(W a)
{
#if defined(__AVX2__)
    const W rows = _mm256_permutevar8x32_epi32(a, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
    return {lowLane(rows), highLane(rows)};
#else
    return {_mm_unpacklo_epi32(lowLane(a), highLane(a)), _mm_unpackhi_epi32(lowLane(a), highLane(a))};
#endif
}

// Two rows of 8 dwords, each within 16 bits, to 16 words in order.
QOV_INLINE W packRows(W a, W b)
{
#if defined(__AVX512VL__) && defined(__AVX512BW__)
    const W low = _mm256_setr_epi16(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
    return _mm256_permutex2var_epi16(a, low, b);
#else
    return crossQwords(pack32(a, b));
#endif
}

// 16 words to two rows of 8 dwords, with `high` (equal words) above each.
struct TwoRows {
    W first, second;
};
QOV_INLINE TwoRows widenRows(W words, W high)
{
#if defined(__AVX512VL__) && defined(__AVX512BW__)
    const W first = _mm256_setr_epi16(0, 16, 1, 16, 2, 16, 3, 16, 4, 16, 5, 16, 6, 16, 7, 16);
    const W second = _mm256_setr_epi16(8, 16, 9, 16, 10, 16, 11, 16, 12, 16, 13, 16, 14, 16, 15, 16);
    return {_mm256_permutex2var_epi16(words, first, high), _mm256_permutex2var_epi16(words, second, high)};
#else
    const W mixed = crossQwords(words);
    return {lowWords(mixed, high), highWords(mixed, high)};
#endif
}

// Factors of multiplyAdd: the words (first, second) in every dword. A transform has more of them than there
// are registers, so they are read where they are used.
struct FactorPair {
    alignas(32) Qov16s word[16];

    constexpr FactorPair(int first, int second) : word{}
    {
        for (int i = 0; i < 16; i += 2) {
            word[i] = Qov16s(first);
            word[i + 1] = Qov16s(second);
        }
    }
};
QOV_INLINE W multiplyAdd(W a, const FactorPair& f)
{
    return multiplyAdd(a, load(f.word));
}

// Keeps the compiler from turning a table of constants into registers that it must spill.
template <class T>
QOV_INLINE const T& inMemory(const T& table)
{
    const T* p = &table;
    __asm__("" : "+r"(p));
    return *p;
}

} // namespace qov::QOV_LEVEL

#endif
#endif
