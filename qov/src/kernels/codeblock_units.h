// A block as units: samples cut into bit planes, and significance carried into the borders of neighbours.
#ifndef QOV_KERNELS_CODEBLOCK_UNITS_H
#define QOV_KERNELS_CODEBLOCK_UNITS_H

#include "codeblock.h"

#include <string.h>

#if defined __BMI2__
#include <immintrin.h>
#endif

namespace qov {
namespace {

const int columnBits = 6;                             // of a unit's word, for one column
const Qov64u topRow = Qov64u(0x041041041041041) << 1; // row 0 of all ten columns
const Qov64u ownSamples = topRow * 15 & ~Qov64u(0x3F) & ((Qov64u(1) << 54) - 1);

struct Block {
    CodeBlockUnit* units; // the first one that is no border
    Qov64u* planes;
    ptrdiff_t pitch;      // units from stripe to stripe
    ptrdiff_t stride;     // words for one unit: its planes from `base` up
    int columns, stripes; // of units
    int base;
    int subband;
    bool causal;
};

QOV_INLINE int lowestBit(Qov64u word)
{
    return __builtin_ctzll(word);
}

QOV_INLINE Qov64u bitsBelow(int n)
{
    return (Qov64u(1) << n) - 1;
}

// The samples of the unit that are in the block.
QOV_INLINE Qov64u samplesOfUnit(QoviSize size, int column, int stripe)
{
    const int width = size.width - column * EncodeCBState::unitColumns;
    const int height = size.height - stripe * EncodeCBState::unitRows;
    const Qov64u columns = bitsBelow(columnBits * ((width < 8 ? width : 8) + 1)) & ~bitsBelow(columnBits);
    return columns & topRow * bitsBelow(height < 4 ? height : 4);
}

// Sets `fresh`, bits of the unit's samples, in a word of the unit and in the borders of its neighbours, those
// above only on demand. What falls outside the 60 bits of a word is harmless.
template <Qov64u CodeBlockUnit::*Word>
QOV_INLINE void spread(CodeBlockUnit* unit, ptrdiff_t pitch, Qov64u fresh, bool upwards)
{
    const int across = columnBits * EncodeCBState::unitColumns, down = EncodeCBState::unitRows;
    unit->*Word |= fresh;
    unit[-1].*Word |= fresh << across;
    unit[1].*Word |= fresh >> across;
    CodeBlockUnit* below = unit + pitch;
    const Qov64u bottom = fresh >> down & topRow >> 1;
    below[0].*Word |= bottom;
    below[-1].*Word |= bottom << across;
    below[1].*Word |= bottom >> across;
    if (!upwards) return;
    CodeBlockUnit* above = unit - pitch;
    const Qov64u top = (fresh & topRow) << down;
    above[0].*Word |= top;
    above[-1].*Word |= top << across;
    above[1].*Word |= top >> across;
}

// The bits of all magnitudes together.
QOV_INLINE Qov32u magnitudeBits(const Qov32s* src, ptrdiff_t step, QoviSize size)
{
    Qov32u all = 0;
    for (int y = 0; y < size.height; y++) {
        const Qov32s* row = atByte(src, y * step);
        for (int x = 0; x < size.width; x++) all |= Qov32u(row[x]);
    }
    return all & 0x7FFFFFFF;
}

// Bits of a unit's 32 samples in the order of the scan, put where they stand in a word.
QOV_INLINE Qov64u placeSamples(Qov32u bits)
{
#if defined __BMI2__
    return _pdep_u64(bits, ownSamples);
#else
    Qov64u word = (bits & 0xFFFF) | Qov64u(bits & 0xFFFF0000) << 8;
    word = (word & 0xFF0000FF) | (word & 0xFF0000FF00) << 4;
    word = (word & 0x00F00F00F00F) | (word & 0x0F00F00F00F0) << 2;
    return word << (columnBits + 1);
#endif
}

// A byte of each of a unit's samples, in the order of the scan; 0 for samples that are not in the block.
#if defined __AVX2__

struct UnitBytes {
    __m256i bytes;
};

struct UnitSamples {
    __m256i rows[EncodeCBState::unitRows];

    QOV_INLINE_MEMBER UnitSamples(const Qov32s* src, ptrdiff_t step, int width, int height)
    {
        const __m256i places = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
        const __m256i inside = _mm256_cmpgt_epi32(_mm256_set1_epi32(width), places);
        for (int y = 0; y < EncodeCBState::unitRows; y++)
            rows[y] =
                y < height ? _mm256_maskload_epi32(atByte(src, y * step), inside) : _mm256_setzero_si256();
    }

    // Byte number `index` of the samples, 3 the highest.
    QOV_INLINE_MEMBER UnitBytes byte(int index) const
    {
        const __m128i down = _mm_cvtsi32_si128(8 * index);
        const __m256i low = _mm256_set1_epi32(0xFF);
        __m256i bytes = _mm256_and_si256(_mm256_srl_epi32(rows[0], down), low);
        for (int y = 1; y < EncodeCBState::unitRows; y++)
            bytes = _mm256_or_si256(
                bytes, _mm256_slli_epi32(_mm256_and_si256(_mm256_srl_epi32(rows[y], down), low), 8 * y));
        return {bytes};
    }
};

// The bits numbered `index`.
QOV_INLINE Qov64u bitsOf(const UnitBytes& unit, int index)
{
    const __m256i shifted = _mm256_sll_epi16(unit.bytes, _mm_cvtsi32_si128(7 - index));
    return placeSamples(Qov32u(_mm256_movemask_epi8(shifted)));
}

#else

struct UnitBytes {
    Qov64u columns[EncodeCBState::unitColumns / 2]; // two columns in a word
};

struct UnitSamples {
    Qov32u samples[EncodeCBState::unitColumns * EncodeCBState::unitRows];

    QOV_INLINE_MEMBER UnitSamples(const Qov32s* src, ptrdiff_t step, int width, int height)
    {
        memset(samples, 0, sizeof samples);
        for (int y = 0; y < height; y++) {
            const Qov32s* row = atByte(src, y * step);
            for (int x = 0; x < width; x++) samples[x * EncodeCBState::unitRows + y] = Qov32u(row[x]);
        }
    }

    QOV_INLINE_MEMBER UnitBytes byte(int index) const
    {
        UnitBytes unit;
        for (int i = 0; i < EncodeCBState::unitColumns / 2; i++) {
            Qov64u word = 0;
            for (int k = 0; k < 8; k++) word |= Qov64u(samples[8 * i + k] >> 8 * index & 0xFF) << 8 * k;
            unit.columns[i] = word;
        }
        return unit;
    }
};

QOV_INLINE Qov64u bitsOf(const UnitBytes& unit, int index)
{
    Qov32u bits = 0;
    for (int i = 0; i < EncodeCBState::unitColumns / 2; i++) {
        // The product moves bit 8 k to bit 56 + k; no two of its summands meet.
        const Qov64u eight = unit.columns[i] >> index & 0x0101010101010101;
        bits |= Qov32u(eight * 0x0102040810204080 >> 56) << 8 * i;
    }
    return placeSamples(bits);
}

#endif

// Cuts a unit into its planes from `base` to `top`; answers the signs.
QOV_INLINE Qov64u sliceUnit(const UnitSamples& samples, int base, int top, Qov64u* planes)
{
    for (int plane = base; plane <= top;) {
        const UnitBytes bytes = samples.byte(plane >> 3);
        const int last = plane | 7;
        for (; plane <= last && plane <= top; plane++) *planes++ = bitsOf(bytes, plane & 7);
    }
    return bitsOf(samples.byte(3), 7);
}

} // namespace
} // namespace qov

#endif
