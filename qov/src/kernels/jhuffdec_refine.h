// Sets of places in zig-zag order: place k is bit 63 - k, so that bits of the stream can be dealt out to the
// places of a set as they stand.
#ifndef QOV_KERNELS_JHUFFDEC_REFINE_H
#define QOV_KERNELS_JHUFFDEC_REFINE_H

#include "zigzagorder.h"

namespace qov::QOV_LEVEL {
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
QOV_INLINE Qov64u nonZeroPlaces(const Qov16s* block)
{
#if defined(__AVX512BW__)
    const Words c = inZigzag<true>(block);
    return joined(_mm512_test_epi16_mask(c.low, c.low), _mm512_test_epi16_mask(c.high, c.high));
#elif defined(QOV_SIMD256)
    W zeros[4];
    for (int i = 0; i < 4; i++) zeros[i] = equal16(load(block + 16 * i), all16(0));
    return ~inZigzag<true>(zeros[0], zeros[1], zeros[2], zeros[3]).highBitPlaces();
#else
    Qov64u mask = 0;
    for (int k = 0; k < 64; k++) mask |= Qov64u(block[zigzag[k]] != 0) << (63 - k);
    return mask;
#endif
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
