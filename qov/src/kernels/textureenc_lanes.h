// Numbers of several texture blocks at a time, one block a lane: 1 at px, 4, 8 or 16 of them. The same
// expressions give the same bits at every level, as + - * / and the shifts round alike everywhere.
#ifndef QOV_KERNELS_TEXTUREENC_LANES_H
#define QOV_KERNELS_TEXTUREENC_LANES_H

#include "family.h"

#if defined(__SSE4_1__)
#include <immintrin.h>
#endif

namespace qov::QOV_LEVEL {
namespace {

#if defined(__AVX512F__)
typedef __m512 Floats;
typedef Qov32u Words __attribute__((vector_size(64)));
typedef __mmask16 Mask;
#elif defined(__AVX2__)
typedef __m256 Floats;
typedef Qov32u Words __attribute__((vector_size(32)));
typedef __m256 Mask; // all ones or zero
#elif defined(__SSE4_1__)
typedef __m128 Floats;
typedef Qov32u Words __attribute__((vector_size(16)));
typedef __m128 Mask;
#else
typedef float Floats;
typedef Qov32u Words;
typedef Qov32u Mask; // all ones or zero: a choice by bits, as no jump on texels is foreseen
#endif

constexpr int lanes = sizeof(Words) / sizeof(Qov32u);

// Texels are read without shuffles between groups of four lanes: lane i holds this block of a row of blocks.
QOV_INLINE constexpr int blockOfLane(int i)
{
    return lanes < 4 ? i : i % 4 * (lanes / 4) + i / 4;
}

#if defined(__AVX512F__)

QOV_INLINE Floats all(float x)
{
    return _mm512_set1_ps(x);
}
QOV_INLINE Words allWords(Qov32u x)
{
    return (Words)_mm512_set1_epi32(int(x));
}
QOV_INLINE Words loadWords(const void* p)
{
    return (Words)_mm512_loadu_si512(p);
}
QOV_INLINE Floats smaller(Floats a, Floats b)
{
    return _mm512_maskz_min_ps(0xFFFF, a, b);
}
QOV_INLINE Floats larger(Floats a, Floats b)
{
    return _mm512_maskz_max_ps(0xFFFF, a, b);
}
QOV_INLINE Floats truncated(Floats a)
{
    return _mm512_maskz_roundscale_ps(0xFFFF, a, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
}
QOV_INLINE Floats exactProductSum(Floats a, Floats b, Floats c)
{
    return _mm512_fmadd_ps(a, b, c);
}
QOV_INLINE Floats floatsOf(Words a)
{
    return _mm512_maskz_cvtepi32_ps(0xFFFF, (__m512i)a);
}
QOV_INLINE Words wordsOf(Floats a)
{
    return (Words)_mm512_maskz_cvttps_epi32(0xFFFF, a);
}
QOV_INLINE Mask greater(Floats a, Floats b)
{
    return _mm512_cmp_ps_mask(a, b, _CMP_GT_OQ);
}
QOV_INLINE Mask greaterWithin(Mask m, Floats a, Floats b)
{
    return _mm512_mask_cmp_ps_mask(m, a, b, _CMP_GT_OQ);
}
QOV_INLINE Mask topBit(Words a)
{
    return _mm512_movepi32_mask((__m512i)a);
}
QOV_INLINE Floats only(Mask m, Floats a)
{
    return _mm512_maskz_mov_ps(m, a);
}
QOV_INLINE Floats addWhere(Floats sum, Mask m, Floats a)
{
    return _mm512_mask_add_ps(sum, m, sum, a);
}
QOV_INLINE Floats select(Mask m, Floats a, Floats b)
{
    return _mm512_mask_blend_ps(m, b, a);
}
QOV_INLINE Words selectWords(Mask m, Words a, Words b)
{
    return (Words)_mm512_mask_blend_epi32(m, (__m512i)b, (__m512i)a);
}
QOV_INLINE Qov32u bitsOf(Mask m)
{
    return m;
}
// Interleave within each 128 bits.
#define QOV_MIX(name, op, mask)                                                                              \
    QOV_INLINE Words name(Words a, Words b)                                                                  \
    {                                                                                                        \
        return (Words)_mm512_maskz_##op(mask, (__m512i)a, (__m512i)b);                                       \
    }
QOV_MIX(lowDwords, unpacklo_epi32, 0xFFFF)
QOV_MIX(highDwords, unpackhi_epi32, 0xFFFF)
QOV_MIX(lowQwords, unpacklo_epi64, 0xFF)
QOV_MIX(highQwords, unpackhi_epi64, 0xFF)
#undef QOV_MIX

#elif defined(__SSE4_1__)

#if defined(__AVX2__)
#define QOV_LANES(op) _mm256_##op
typedef __m256i Register;
#else
#define QOV_LANES(op) _mm_##op
typedef __m128i Register;
#endif

QOV_INLINE Floats all(float x)
{
    return QOV_LANES(set1_ps)(x);
}
QOV_INLINE Words allWords(Qov32u x)
{
    return (Words)QOV_LANES(set1_epi32)(int(x));
}
QOV_INLINE Words loadWords(const void* p)
{
#if defined(__AVX2__)
    return (Words)_mm256_loadu_si256((const Register*)p);
#else
    return (Words)_mm_loadu_si128((const Register*)p);
#endif
}
QOV_INLINE Floats smaller(Floats a, Floats b)
{
    return QOV_LANES(min_ps)(a, b);
}
QOV_INLINE Floats larger(Floats a, Floats b)
{
    return QOV_LANES(max_ps)(a, b);
}
QOV_INLINE Floats truncated(Floats a)
{
    return QOV_LANES(round_ps)(a, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
}
QOV_INLINE Floats exactProductSum(Floats a, Floats b, Floats c)
{
#if defined(__FMA__)
    return QOV_LANES(fmadd_ps)(a, b, c);
#else
    return a * b + c;
#endif
}
QOV_INLINE Floats floatsOf(Words a)
{
    return QOV_LANES(cvtepi32_ps)((Register)a);
}
QOV_INLINE Words wordsOf(Floats a)
{
    return (Words)QOV_LANES(cvttps_epi32)(a);
}
QOV_INLINE Mask greater(Floats a, Floats b)
{
#if defined(__AVX2__)
    return _mm256_cmp_ps(a, b, _CMP_GT_OQ);
#else
    return _mm_cmpgt_ps(a, b);
#endif
}
QOV_INLINE Mask greaterWithin(Mask m, Floats a, Floats b)
{
    return QOV_LANES(and_ps)(m, greater(a, b));
}
QOV_INLINE Mask topBit(Words a)
{
    return (Mask)QOV_LANES(srai_epi32)((Register)a, 31);
}
QOV_INLINE Floats only(Mask m, Floats a)
{
    return QOV_LANES(and_ps)(m, a);
}
QOV_INLINE Floats addWhere(Floats sum, Mask m, Floats a)
{
    return sum + only(m, a);
}
QOV_INLINE Floats select(Mask m, Floats a, Floats b)
{
    return QOV_LANES(blendv_ps)(b, a, m);
}
QOV_INLINE Words selectWords(Mask m, Words a, Words b)
{
    return (Words)select(m, (Floats)a, (Floats)b);
}
QOV_INLINE Qov32u bitsOf(Mask m)
{
    return Qov32u(QOV_LANES(movemask_ps)(m));
}
#define QOV_MIX(name, op)                                                                                    \
    QOV_INLINE Words name(Words a, Words b)                                                                  \
    {                                                                                                        \
        return (Words)QOV_LANES(op)((Register)a, (Register)b);                                               \
    }
QOV_MIX(lowDwords, unpacklo_epi32)
QOV_MIX(highDwords, unpackhi_epi32)
QOV_MIX(lowQwords, unpacklo_epi64)
QOV_MIX(highQwords, unpackhi_epi64)
#undef QOV_MIX
#undef QOV_LANES

#else

QOV_INLINE Floats all(float x)
{
    return x;
}
QOV_INLINE Words allWords(Qov32u x)
{
    return x;
}
QOV_INLINE Floats smaller(Floats a, Floats b)
{
    return a < b ? a : b;
}
QOV_INLINE Floats larger(Floats a, Floats b)
{
    return a > b ? a : b;
}
QOV_INLINE Floats truncated(Floats a)
{
    return Floats(int(a));
}
QOV_INLINE Floats exactProductSum(Floats a, Floats b, Floats c)
{
    return a * b + c;
}
QOV_INLINE Floats floatsOf(Words a)
{
    return Floats(int(a));
}
QOV_INLINE Words wordsOf(Floats a)
{
    return Words(int(a));
}
// The sign of the difference (no negative zero): compilers turn comparisons to jumps. Numbers whose
// difference is too small for a float don't occur.
QOV_INLINE Mask greater(Floats a, Floats b)
{
    return Mask(__builtin_bit_cast(Qov32s, b - a + 0.0f) >> 31);
}
QOV_INLINE Mask greaterWithin(Mask m, Floats a, Floats b)
{
    return m & greater(a, b);
}
QOV_INLINE Mask topBit(Words a)
{
    return 0 - (a >> 31);
}
QOV_INLINE Words selectWords(Mask m, Words a, Words b)
{
    return b ^ (m & (a ^ b));
}
QOV_INLINE Floats select(Mask m, Floats a, Floats b)
{
    return __builtin_bit_cast(Floats,
                              selectWords(m, __builtin_bit_cast(Words, a), __builtin_bit_cast(Words, b)));
}
QOV_INLINE Floats only(Mask m, Floats a)
{
    return __builtin_bit_cast(Floats, m & __builtin_bit_cast(Words, a));
}
QOV_INLINE Floats addWhere(Floats sum, Mask m, Floats a)
{
    return sum + only(m, a);
}
QOV_INLINE Qov32u bitsOf(Mask m)
{
    return m & 1;
}

#endif

// The dwords of a row of `lanes` blocks of four: out[x] holds the x-th of every block.
QOV_INLINE void loadColumns(const Qov8u* row, Words out[4])
{
#if defined(__SSE4_1__)
    const Words a = loadWords(row), b = loadWords(row + sizeof a), c = loadWords(row + 2 * sizeof a),
                d = loadWords(row + 3 * sizeof a);
    const Words ab = lowDwords(a, b), cd = lowDwords(c, d), ba = highDwords(a, b), dc = highDwords(c, d);
    out[0] = lowQwords(ab, cd);
    out[1] = highQwords(ab, cd);
    out[2] = lowQwords(ba, dc);
    out[3] = highQwords(ba, dc);
#else
    __builtin_memcpy(out, row, 4 * sizeof *out);
#endif
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
