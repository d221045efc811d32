#include "jquant.h"

#include "dequantise.h"
#include "quantise.h"

namespace qov::QOV_LEVEL {
namespace {

// c = round(c / step), halves away from zero. The result fits 16 bits, as no step is below 1.
void fwd_16s(Qov16s* block, const Qov16u* table)
{
#if defined(QOV_SIMD256)
    for (int i = 0; i < 64; i += 16) {
        const W c = load(block + i), steps = maxU16(load(table + i), all16(1)), high = all16(stepHigh(0));
        const W low = quantise(shiftRight32<16>(lowWords(c, c)), scaledSteps<0>(lowWords(steps, high)));
        const W up = quantise(shiftRight32<16>(highWords(c, c)), scaledSteps<0>(highWords(steps, high)));
        store(block + i, pack32(low, up));
    }
#else
    for (int i = 0; i < 64; i++)
        block[i] = Qov16s(quantise(block[i], stepFactor(0) * (table[i] ? table[i] : 1)));
#endif
}

// c = saturate16s(c * step).
void inv_16s(Qov16s* block, const Qov16u* table)
{
    dequantise(block, table, block);
}

} // namespace

const QuantKernels quantKernels = {fwd_16s, inv_16s};

} // namespace qov::QOV_LEVEL
