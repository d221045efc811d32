// The look-ups in a decoding table.
#ifndef QOV_KERNELS_JHUFFDEC_CODE_H
#define QOV_KERNELS_JHUFFDEC_CODE_H

#include "jhuffdec_bits.h"

namespace qov {
namespace {

// An entry of HuffDecSpec::look.
QOV_INLINE Qov32u lengthOf(Qov32u entry)
{
    return entry & 0xFF;
}
QOV_INLINE int runEndOf(Qov32u entry) // run + 1, of an entry with a value
{
    return int(entry >> 8 & 0xFF);
}
QOV_INLINE int valueOf(Qov32u entry)
{
    return Qov32s(entry) >> 16;
}

// What stands for a code that is not in the table: 16 bits and no symbol.
const int noSymbol = 256;
const Qov32u noCode = 16 | noSymbol << 8;

// A code longer than the window, as an entry without value (F.2.2.3, DECODE).
__attribute__((noinline)) Qov32u longCode(const HuffDecSpec* spec, Qov64u bits)
{
    const Qov32u first16 = Qov32u(bits >> 48);
    for (int n = HuffDecSpec::window + 1; n <= 16; n++)
        if (first16 < spec->limit[n])
            return Qov32u(n | spec->values[spec->offset[n] + int(first16 >> (16 - n))] << 8);
    return noCode;
}

QOV_INLINE Qov32u look(const BitReader& in, const HuffDecSpec* spec)
{
    return spec->look[in.bits >> (64 - HuffDecSpec::window)];
}

// Takes the code of an entry without value and gives its symbol, or noSymbol.
QOV_INLINE int takeSymbol(BitReader& in, const HuffDecSpec* spec, Qov32u entry)
{
    if (lengthOf(entry) == 0) entry = longCode(spec, in.bits);
    in.skip(lengthOf(entry));
    return int(entry >> 8);
}

} // namespace
} // namespace qov

#endif
