#include "jdctfwd.h"

#include "dctconst.h"
#include "dctwide.h"
#include "quantise.h"

// Samples of 8 bits go through an integer transform, all others through the one in single precision.
//
// The integer transform takes rows first. The row pass keeps 4 fraction bits, cut off, so that |x| <= 16384
// and sums of two fit 16 bits. The column pass makes up for the mean of what was cut off. Its sums fit 32
// bits, the largest being that of 64 samples of -128, which is -2^31; they are quantised as they are, so that
// only the quantisation rounds.
namespace qov::QOV_LEVEL {
namespace {

enum {
    factorBits = 14,
    middleBits = 4,
    rowShift = factorBits - middleBits,
    fraction = factorBits + middleBits + 3, // of the coefficients; 3: two passes give 8 times the coefficient
    rowOne = 1 << middleBits,               // the factor 1 in outputs of the row pass that need no shift
    one = 1 << factorBits,
    cutOffMean = 8 * one / 2, // 8 values, each half a unit too low
    levelShift = 128,
    dcShift = 8 * levelShift // what the level shift takes from DC
};

enum { c1 = dctFactor(1, factorBits), c2 = dctFactor(2, factorBits), c3 = dctFactor(3, factorBits) };
enum { c5 = dctFactor(5, factorBits), c6 = dctFactor(6, factorBits), c7 = dctFactor(7, factorBits) };

// DC with `fraction` bits, exact in eighths, without the level shift: not negative then, so halves go up.
QOV_INLINE int shiftedDc(int c)
{
    return ((c >> (fraction - 3)) + 8 * dcShift + 4) >> 3;
}

#if defined(QOV_SIMD256)
#include "jdctfwd256.h"
#else
#include "jdctfwd1.h"
#endif

// Samples of any 16 bits. src may be dst.
__attribute__((noinline)) void quantWide(const Qov16s* src, Qov16s* dst, const Qov16u* table)
{
    Row x[8];
    for (int y = 0; y < 8; y++) x[y] = rowOf(src + 8 * y);
    forwardWide(x);
    for (int v = 0; v < 8; v++) {
        const Row steps = limit(rowOf(table + 8 * v), 1.0f, 65535.0f);
        storeWords(dst + 8 * v, nearest(divide(x[v], multiply(steps, 8.0f))));
    }
}

void quant_16s(const Qov16s* src, Qov16s* dst, const Qov16u* table)
{
    if (!quantNarrow(src, dst, table)) quantWide(src, dst, table);
}

void quantShift_16u16s(const Qov16u* src, ptrdiff_t srcStep, Qov16s* dst, const Qov32f* table)
{
    static const Qov16u middle[8] = {2048, 2048, 2048, 2048, 2048, 2048, 2048, 2048};
    Row x[8];
    for (int y = 0; y < 8; y++) x[y] = subtract(rowOf(atByte(src, y * srcStep)), rowOf(middle));
    forwardWide(x);
    for (int v = 0; v < 8; v++)
        storeWords(dst + 8 * v, nearest(divide(x[v], multiply(stepsOf(table + 8 * v, smallestStep), 8.0f))));
}

} // namespace

const DctFwdKernels dctFwdKernels = {dct_8u16s, quant_16s, quantShift_8u16s, quantShift_16u16s};

} // namespace qov::QOV_LEVEL
