// Division of coefficients by steps: to nearest, halves away from zero, exact.
//
// The quotient c / step is formed in single precision with a step that is too small by a factor 1 - 2^-21. So
// a quotient that stands at a half comes out beyond it, on the side away from zero, and rounding to nearest
// gives what is wanted; with |c| < 2^19 no other quotient is moved as far as to a half (the nearest is 1 / (2
// step) away). Every operation is rounded as IEEE 754 tells, hence the same at every level.
#ifndef QOV_KERNELS_QUANTISE_H
#define QOV_KERNELS_QUANTISE_H

#include "simd256.h"

namespace qov::QOV_LEVEL {

// What steps are multiplied with, for coefficients with so many fraction bits.
QOV_INLINE constexpr float stepFactor(int fraction)
{
    return float(1 << fraction) * (1.0f - 1.0f / (1 << 21));
}

// |c / step| < 2^21.
QOV_INLINE int quantise(float c, float step)
{
    const float toInteger = 3 << 22; // leaves no fraction bits in the sum
    return int(c / step + toInteger - toInteger);
}

#if defined(QOV_SIMD256)
// 8 steps, scaled. They come as the low words of dwords whose high words are stepHigh(fraction); such a dword
// is the float 2^(23 + fraction) + step 2^fraction.
QOV_INLINE constexpr short stepHigh(int fraction)
{
    return short(0x4B00 + (fraction << 7));
}
template <int fraction>
QOV_INLINE F scaledSteps(W bits)
{
    const float high = float(1 << 23) * float(1 << fraction);
#if defined(__FMA__)
    const float factor = 1.0f - 1.0f / (1 << 21); // exact products, so rounded once, as below
    return productMinus(asFloat(bits), allFloat(factor), allFloat(high * factor));
#else
    return mulFloat(subFloat(asFloat(bits), allFloat(high)), allFloat(1.0f - 1.0f / (1 << 21)));
#endif
}

QOV_INLINE W quantise(W c, F step)
{
    return toNearest(divideFloat(toFloat(c), step));
}
#endif

} // namespace qov::QOV_LEVEL

#endif
