// The low bits of a 4x4 block (ITU-T T.832, 8.7.19.2 and 8.7.19.3), the lowest `trim` of the `count` left
// out.
#ifndef QOV_KERNELS_XRCODER_FLEX_H
#define QOV_KERNELS_XRCODER_FLEX_H

#include "xrcoder_bits.h"

namespace qov {
namespace {

// Raster indices in the order of coding: column by column.
constexpr Qov8u flexOrder[15] = {4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
const int flexCount = 15;

QOV_INLINE void encodeFlexbits(const Qov32s* block, Qov8u** dst, int* bit, int count, int trim)
{
    const Qov32u coded = Qov32u(count - trim);
    BitWriter out(*dst, *bit);
    const int atOnce = 3; // at most 16 bits of each
    for (int i = 0; i < flexCount; i += atOnce) {
        Qov64u bits = 0;
        Qov32u length = 0;
        for (int j = 0; j < atOnce; j++) {
            const Qov32s x = block[flexOrder[i + j]];
            const Qov32u magnitude = x < 0 ? 0 - Qov32u(x) : Qov32u(x);
            const Qov32u low = magnitude >> trim & ((1u << coded) - 1);
            const Qov32u withSign = Qov32u(magnitude >> count == 0) & Qov32u(low != 0);
            bits = bits << (coded + withSign) | (low << withSign | (withSign & Qov32u(x < 0)));
            length += coded + withSign;
        }
        out.put(bits, length);
    }
    out.finish(dst, bit);
}

// To a block of shifted levels.
QOV_INLINE void decodeFlexbits(const Qov8u** src, int* bit, Qov32s* block, int count, int trim)
{
    const Qov32u coded = Qov32u(count - trim);
    BitReader in(*src, *bit);
    for (int i = 0; i < flexCount; i++) {
        Qov32s& x = block[flexOrder[i]];
        const Qov32u low = in.look(coded).first(coded);
        bool negative = x < 0;
        in.skip(coded);
        const Qov32u magnitude = negative ? 0 - Qov32u(x) : Qov32u(x);
        if (magnitude >> count == 0 && low != 0) {
            negative = in.look(1).first(1) != 0;
            in.skip(1);
        }
        x = Qov32s(negative ? Qov32u(x) - (low << trim) : Qov32u(x) + (low << trim));
    }
    in.finish(src, bit);
}

} // namespace
} // namespace qov

#endif
