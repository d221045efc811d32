// Products of coefficients and steps, limited to 16 bits.
#ifndef QOV_KERNELS_DEQUANTISE_H
#define QOV_KERNELS_DEQUANTISE_H

#include "family.h"

namespace qov::QOV_LEVEL {

QOV_INLINE Qov16s dequantise(int c, int step)
{
    const int product = c * step; // at most 2^15 * (2^16 - 1) in magnitude
    return Qov16s(product < -32768 ? -32768 : product > 32767 ? 32767 : product);
}

// A block; dst may be the source.
QOV_INLINE void dequantise(const Qov16s* src, const Qov16u* table, Qov16s* dst)
{
    for (int i = 0; i < 64; i++) dst[i] = dequantise(src[i], table[i]);
}

} // namespace qov::QOV_LEVEL

#endif
