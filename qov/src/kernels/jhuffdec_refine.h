// Sets of places in zig-zag order: place k is bit 63 - k, so that bits of the stream can be dealt out to the
// places of a set as they stand.
#ifndef QOV_KERNELS_JHUFFDEC_REFINE_H
#define QOV_KERNELS_JHUFFDEC_REFINE_H

#include "family.h"
#include "zigzag.h"

#if defined(__SSSE3__) || defined(__BMI2__)
#include <immintrin.h>
#endif

namespace qov {
namespace {

// Places from `first` to `last`, 0 to 63.
QOV_INLINE Qov64u places(int first, int last)
{
    return ~Qov64u(0) >> first & ~Qov64u(0) << (63 - last);
}

QOV_INLINE int sizeOf(Qov64u set)
{
    return __builtin_popcountll(set);
}

QOV_INLINE int lastOf(Qov64u set) // not empty
{
    return 63 - __builtin_ctzll(set);
}

// The place of a set that has n places of it before itself.
QOV_INLINE Qov64u placeBehind(int n, Qov64u set)
{
#if defined(__BMI2__)
    return _pdep_u64(Qov64u(1) << (sizeOf(set) - 1 - n), set);
#else
    const Qov64u first = Qov64u(1) << 63;
    for (; n > 0; n--) set &= ~(first >> __builtin_clzll(set));
    return first >> __builtin_clzll(set);
#endif
}

// The coefficients that are not zero.

#if defined(__AVX512BW__)

struct WordOrder {
    alignas(64) Qov16u at[64];
    constexpr WordOrder() : at()
    {
        for (int k = 0; k < 64; k++) at[63 - k] = zigzag[k];
    }
};
constexpr WordOrder wordOrder;

QOV_INLINE Qov64u nonZeroPlaces(const Qov16s* block)
{
    const __m512i low = _mm512_loadu_si512(block), high = _mm512_loadu_si512(block + 32);
    const __m512i a = _mm512_permutex2var_epi16(low, _mm512_load_si512(wordOrder.at), high);
    const __m512i b = _mm512_permutex2var_epi16(low, _mm512_load_si512(wordOrder.at + 32), high);
    return Qov64u(_mm512_test_epi16_mask(b, b)) << 32 | _mm512_test_epi16_mask(a, a);
}

#elif defined(__SSSE3__)

// For each 16 places and each 16 coefficients: which of these goes to each of those (0x80: none).
struct ByteOrder {
    alignas(16) Qov8u at[4][4][16];
    constexpr ByteOrder() : at()
    {
        for (int k = 0; k < 64; k++)
            for (int from = 0; from < 4; from++)
                at[3 - k / 16][from][15 - k % 16] = zigzag[k] / 16 == from ? zigzag[k] % 16 : 0x80;
    }
};
constexpr ByteOrder byteOrder;

QOV_INLINE Qov64u nonZeroPlaces(const Qov16s* block)
{
    const __m128i zero = _mm_setzero_si128();
    __m128i isZero[4]; // a byte for each of 16 coefficients
    for (int i = 0; i < 4; i++) {
        const __m128i* rows = (const __m128i*)(block + 16 * i);
        isZero[i] = _mm_packs_epi16(_mm_cmpeq_epi16(_mm_loadu_si128(rows), zero),
                                    _mm_cmpeq_epi16(_mm_loadu_si128(rows + 1), zero));
    }
    Qov64u mask = 0;
    for (int i = 0; i < 4; i++) {
        __m128i places16 = zero;
        for (int from = 0; from < 4; from++) {
            const __m128i order = _mm_load_si128((const __m128i*)byteOrder.at[i][from]);
            places16 = _mm_or_si128(places16, _mm_shuffle_epi8(isZero[from], order));
        }
        mask |= Qov64u(Qov32u(_mm_movemask_epi8(places16))) << (16 * i);
    }
    return ~mask;
}

#else

QOV_INLINE Qov64u nonZeroPlaces(const Qov16s* block)
{
    Qov64u mask = 0;
    for (int k = 0; k < 64; k++) mask |= Qov64u(block[zigzag[k]] != 0) << (63 - k);
    return mask;
}

#endif

} // namespace
} // namespace qov

#endif
