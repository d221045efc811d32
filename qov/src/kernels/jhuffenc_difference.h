// Differences of samples or DC values: the coding of one (ITU-T T.81, F.1.2.1, H.1.2.2).
#ifndef QOV_KERNELS_JHUFFENC_DIFFERENCE_H
#define QOV_KERNELS_JHUFFENC_DIFFERENCE_H

#include "jhuffenc_bits.h"

namespace qov {
namespace {

// The low `size` bits of a value, size 0 to 16.
QOV_INLINE Qov32u lowBits(Qov32u value, int size)
{
    return value & ((1u << size) - 1);
}

// Bits of a magnitude of 0 to 32768.
QOV_INLINE int sizeOf(int magnitude)
{
    return 31 - __builtin_clz(2u * Qov32u(magnitude) + 1);
}

// A difference: its category, then as many bits, one less of a negative one (F.1.2.1).
struct Difference {
    int value, category;

    QOV_INLINE_MEMBER explicit Difference(int d) : value(d), category(sizeOf(__builtin_abs(d))) {}
    QOV_INLINE_MEMBER Qov32u bits(int size) const { return lowBits(Qov32u(value + (value >> 31)), size); }
};

// At most 31 bits; -32768 stands for 32768.
QOV_INLINE void putDifference(BitWriter& out, const HuffEncSpec* spec, int value)
{
    const Difference difference(value);
    const int size = difference.category & 15; // none of category 16
    out.putSymbol(spec, Qov32u(difference.category), difference.bits(size), Qov32u(size));
}

} // namespace
} // namespace qov

#endif
