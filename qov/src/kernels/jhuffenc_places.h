// Where a block has coefficients of some kind: sets of places of the zig-zag order, as 64 bits.
//
// A file for each kind of processor provides
//   Coefficients: a block for the walk over its non-zero coefficients. Place k is bit k of nonZero();
//     magnitude(k) is shifted right by al, bits(k) has its bits, inverted of a negative coefficient;
//   refinedPlaces(src, al).
#ifndef QOV_KERNELS_JHUFFENC_PLACES_H
#define QOV_KERNELS_JHUFFENC_PLACES_H

#include "zigzagorder.h"

namespace qov::QOV_LEVEL {
namespace {

typedef Qov64u Places;

// Bits of `of` picked by `from`, moved together at the low end.
QOV_INLINE Places pick(Places of, Places from)
{
#if defined(__BMI2__)
    return _pext_u64(of, from);
#else
    Places picked = 0;
    for (Places bit = 1; from; bit += bit) {
        if (of & from & (0 - from)) picked |= bit;
        from &= from - 1;
    }
    return picked;
#endif
}

QOV_INLINE int countOf(Places places)
{
#if defined(__POPCNT__)
    return __builtin_popcountll(places);
#else
    int n = 0;
    for (; places; places &= places - 1) n++;
    return n;
#endif
}

QOV_INLINE int magnitudeOf(int c)
{
    return c < 0 ? -c : c;
}

// For refining: sets in which place k is bit 63 - k, so that bits picked from them are in the order of
// coding.
struct RefinedPlaces {
    Places ones;     // the magnitude is 1: has just become non-zero
    Places more;     // it is above 1
    Places odd;      // its lowest bit
    Places negative; // the coefficient is negative
};

} // namespace
} // namespace qov::QOV_LEVEL

#if defined(__AVX512BW__)
#include "jhuffenc_places512.h"
#elif defined(QOV_SIMD256)
#include "jhuffenc_places256.h"
#else
#include "jhuffenc_places1.h"
#endif

#endif
