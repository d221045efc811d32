#include "jdctinv.h"

#include "dctconst.h"
#include "dctwide.h"
#include "dequantise.h"
#include "simd256.h"

#include <string.h>

// Three ways, chosen by the coefficients and so the same at every level:
// - only DC: one rounded value for all samples, halves away from zero;
// - integer transform, rows first, whose middle values keep 4 fraction bits and must stay within middleLimit;
//   every block that came from 8-bit samples does, and a product of more than 15 bits never;
// - single precision for the rest.
// In the integer transform the sum of the magnitudes of 8 products is below 61213 * 2^15, so that with the
// rounding and the level shift all sums stay below 2^31 whatever the 16-bit values are.
namespace qov::QOV_LEVEL {
namespace {

enum {
    factorBits = 13,
    middleBits = 4,
    rowShift = factorBits - middleBits,
    columnShift = factorBits + middleBits + 3, // 3: two passes give 8 times the sample
    middleLimit = 23170,                       // 512 in the scale of the orthonormal transform
    levelShift = 128
};

enum { c0 = 1 << factorBits, c1 = dctFactor(1, factorBits), c2 = dctFactor(2, factorBits) };
enum { c3 = dctFactor(3, factorBits), c5 = dctFactor(5, factorBits), c6 = dctFactor(6, factorBits) };
enum { c7 = dctFactor(7, factorBits) };

Qov8u limit8(int v)
{
    return Qov8u(v < 0 ? 0 : v > 255 ? 255 : v);
}

// a / 8 to the nearest integer, halves up: as the column pass of the whole transform rounds.
int nearestEighth(int a)
{
    return (a + 4) >> 3;
}

// What the column pass adds: half a unit, for rounding, and the level shift.
constexpr int columnBias(int shift)
{
    return (1 << (columnShift - 1)) + (shift << columnShift);
}

// Where samples go. `shift` is to be added to a sample before it is put.
struct ToBlock {
    Qov16s* dst;
    enum { shift = 0 };

    void put(int y, int x, int sample) const { dst[8 * y + x] = Qov16s(sample); }
    void putRow(int y, Words samples) const { storeWords(dst + 8 * y, samples); }
    void fill(int sample) const
    {
        for (int i = 0; i < 64; i++) dst[i] = Qov16s(sample);
    }
#if defined(QOV_SIMD256)
    void putAll(const W rows[8]) const
    {
        for (int y = 0; y < 8; y += 2) store(dst + 8 * y, packRows(rows[y], rows[y + 1]));
    }
#endif
};

struct ToBytes {
    Qov8u* dst;
    ptrdiff_t step;
    enum { shift = levelShift };

    void put(int y, int x, int sample) const { dst[y * step + x] = limit8(sample); }
    void putRow(int y, Words samples) const { storeSamples(dst + y * step, samples); } // not shifted yet
    void fill(int sample) const
    {
        for (int y = 0; y < 8; y++) memset(dst + y * step, limit8(sample), 8);
    }
#if defined(QOV_SIMD256)
    void putAll(const W rows[8]) const
    {
        for (int y = 0; y < 8; y += 4) {
            const W bytes = packU16(pack32(rows[y], rows[y + 1]), pack32(rows[y + 2], rows[y + 3]));
            const TwoRegisters ordered = eachRow(bytes);
            putTwo(y, ordered.first);
            putTwo(y + 2, ordered.second);
        }
    }
    void putTwo(int y, __m128i rows) const
    {
        _mm_storel_epi64((__m128i*)(dst + y * step), rows);
        _mm_storeh_pi((__m64*)(dst + (y + 1) * step), _mm_castsi128_ps(rows));
    }
#endif
};

// The two forms of the integer transform have the functions
//   bool onlyDc(Corner<size>, src)                 all coefficients of the corner but DC are 0
//   bool narrow(Corner<size>, src, out, table)     false, and nothing done, if the block is not for it
template <int size>
struct Corner {
};
#if defined(QOV_SIMD256)
#include "jdctinv256.h"
#else
#include "jdctinv1.h"
#endif

template <int corner, class Out>
__attribute__((noinline)) void wide(const Qov16s* src, Out out, const Qov16u* table)
{
    Row x[8];
    for (int v = 0; v < 8; v++) x[v] = v < corner ? products<corner>(src + 8 * v, table + 8 * v) : Row();
    inverseWide(x);
    for (int y = 0; y < 8; y++) out.putRow(y, nearest(x[y]));
}

template <class Out>
void fillDc(int dc, Out out)
{
    out.fill(nearestEighth(dc) + Out::shift);
}

template <int corner, class Out>
QOV_INLINE void inverse(const Qov16s* src, Out out, const Qov16u* table)
{
    if (onlyDc(Corner<corner>(), src)) return fillDc(dequantise(src[0], table[0]), out);
    if (!narrow(Corner<corner>(), src, out, table)) wide<corner>(src, out, table);
}

void quant_16s(const Qov16s* src, Qov16s* dst, const Qov16u* table)
{
    inverse<8>(src, ToBlock{dst}, table);
}

template <int corner>
void quantShift(const Qov16s* src, Qov8u* dst, ptrdiff_t dstStep, const Qov16u* table)
{
    inverse<corner>(src, ToBytes{dst, dstStep}, table);
}

void quantShiftCorner1(const Qov16s* src, Qov8u* dst, ptrdiff_t dstStep, const Qov16u* table)
{
    fillDc(dequantise(src[0], table[0]), ToBytes{dst, dstStep});
}

// 4x4 samples: the 4-point transform of the corner, each pass scaled by 2. The coefficients of an 8x8 block
// are twice those of the 4x4 one with the same mean, so two passes give 8 times the sample, as at full size.
void quantShiftTo4x4(const Qov16s* src, Qov8u* dst, ptrdiff_t dstStep, const Qov16u* table)
{
    Row x[8] = {};
    for (int v = 0; v < 4; v++) x[v] = products<4>(src + 8 * v, table + 8 * v);
    transpose(x);
    inverse4Columns(x);
    transpose(x);
    inverse4Columns(x);
    for (int y = 0; y < 4; y++) storeSamples<4>(dst + y * dstStep, nearest(multiply(x[y], 0.125f)));
}

// 2x2 samples: sums and differences, 8 times the sample.
void quantShiftTo2x2(const Qov16s* src, Qov8u* dst, ptrdiff_t dstStep, const Qov16u* table)
{
    const int a = dequantise(src[0], table[0]), b = dequantise(src[1], table[1]);
    const int c = dequantise(src[8], table[8]), d = dequantise(src[9], table[9]);
    dst[0] = limit8(nearestEighth(a + b + c + d) + levelShift);
    dst[1] = limit8(nearestEighth(a - b + c - d) + levelShift);
    dst[dstStep] = limit8(nearestEighth(a + b - c - d) + levelShift);
    dst[dstStep + 1] = limit8(nearestEighth(a - b - c + d) + levelShift);
}

// Samples of 12 bits.
void quantShift_16s16u(const Qov16s* src, Qov16u* dst, ptrdiff_t dstStep, const Qov32f* table)
{
    Row x[8];
    for (int v = 0; v < 8; v++)
        x[v] = limit(multiply(rowOf(src + 8 * v), stepsOf(table + 8 * v, noStep)), -32768.0f, 32767.0f);
    inverseWide(x);
    for (int y = 0; y < 8; y++) storeSamples(atByte(dst, y * dstStep), nearest(x[y]));
}

} // namespace

const DctInvKernels dctInvKernels = {quant_16s,         quantShift<8>,   quantShift<4>,   quantShift<2>,
                                     quantShiftCorner1, quantShiftTo4x4, quantShiftTo2x2, quantShift_16s16u};

} // namespace qov::QOV_LEVEL
