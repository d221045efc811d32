// The levels that a list of coefficients is coded by.
#ifndef QOV_KERNELS_XRCODER_LEVELS_H
#define QOV_KERNELS_XRCODER_LEVELS_H

#include "xrcoder_scan.h"
#include "xrcoder_words.h"

namespace qov {
namespace {

// The levels of a list by place, each as 2 * magnitude + (is it negative), and the places (bits 1 to 15) of
// those that are not 0.
struct Levels {
    static constexpr Qov32u highest = (1u << 30) + 1;

    Qov32u at[XrScan::places];
    Qov32u places;

    QOV_INLINE_MEMBER Follows behind(int place) const
    {
        const Qov32u rest = places >> place >> 1;
        return rest & 1 ? valueFollows : rest ? zerosFollow : nothingFollows;
    }
};

#if defined(__AVX2__)

// Splits off the low bits. False: a level is too high to be coded. In vectors of 8 at every level, as long as
// those that the list was stored by.
QOV_INLINE bool splitLevels(const Qov32s* list, int nBits, Levels& levels)
{
    const __m128i shift = _mm_cvtsi32_si128(nBits);
    const __m256i zero = _mm256_setzero_si256(), room = _mm256_set1_epi32(int(0x7FFFFFFF - Levels::highest));
    __m256i tooHigh = zero;
    levels.places = 0xFFFF;
    for (int half = 0; half < 2; half++) {
        const __m256i x = _mm256_loadu_si256((const __m256i*)list + half);
        const __m256i magnitude = _mm256_srl_epi32(_mm256_abs_epi32(x), shift);
        const __m256i coded = _mm256_add_epi32(_mm256_slli_epi32(magnitude, 1), _mm256_srli_epi32(x, 31));
        _mm256_storeu_si256((__m256i*)levels.at + half, coded);
        tooHigh = _mm256_or_si256(tooHigh, _mm256_add_epi32(magnitude, room));
        levels.places ^= bitsOf(_mm256_cmpeq_epi32(magnitude, zero)) << 8 * half;
    }
    return bitsOf(tooHigh) == 0;
}

#else

QOV_INLINE bool splitLevels(const Qov32s* list, int nBits, Levels& levels)
{
    Qov32u tooHigh = 0, places = 0;
    for (int place = XrScan::places - 1; place >= 0; place--) {
        const Qov32s x = list[place];
        const Qov32u magnitude = (x < 0 ? 0 - Qov32u(x) : Qov32u(x)) >> nBits;
        tooHigh |= magnitude + (0x7FFFFFFF - Levels::highest);
        levels.at[place] = 2 * magnitude + (Qov32u(x) >> 31);
        places = 2 * places + Qov32u(magnitude != 0);
    }
    levels.places = places;
    return tooHigh >> 31 == 0;
}

#endif

} // namespace
} // namespace qov

#endif
