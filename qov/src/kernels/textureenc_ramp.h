// Interpolated blocks of RGTC, the alpha of DXT5 among them: `byteLanes` blocks of one channel at a time.
#ifndef QOV_KERNELS_TEXTUREENC_RAMP_H
#define QOV_KERNELS_TEXTUREENC_RAMP_H

#include "textureenc_bytes.h"

namespace qov::QOV_LEVEL {
namespace {

// Left to itself clang keeps the loops over texels, and with them all arrays in memory: up to 2.4 times the
// time. g++ does worse when they are unrolled.
#if defined(__clang__)
#define QOV_UNROLLED _Pragma("clang loop unroll(full)")
#else
#define QOV_UNROLLED
#endif

// Values of a block, the largest first, and their numbers in the format.
struct Ramp {
    Bytes value[8];
};
alignas(16) constexpr Qov8u numbersOfEight[16] = {0, 2, 3, 4, 5, 6, 7, 1};
alignas(16) constexpr Qov8u numbersOfSix[16] = {7, 1, 5, 4, 3, 2, 0, 6};

// All between the ends.
QOV_INLINE Ramp eightValues(Bytes most, Bytes least)
{
    return {{most, weighted<6, 1, 7>(most, least), weighted<5, 2, 7>(most, least),
             weighted<4, 3, 7>(most, least), weighted<3, 4, 7>(most, least), weighted<2, 5, 7>(most, least),
             weighted<1, 6, 7>(most, least), least}};
}
// 255 and 0 besides six values between the ends.
QOV_INLINE Ramp sixValues(Bytes most, Bytes least)
{
    return {{allBytes(255), most, weighted<1, 4, 5>(least, most), weighted<2, 3, 5>(least, most),
             weighted<3, 2, 5>(least, most), weighted<4, 1, 5>(least, most), least, allBytes(0)}};
}

// The place in the ramp of the value nearest to each texel.
QOV_INLINE void match(const Ramp& r, const Bytes texel[16], Bytes place[16])
{
    const Bytes toSigned = allBytes(0x80);
    Bytes threshold[7];
    for (int k = 0; k < 7; k++) threshold[k] = average(r.value[k], r.value[k + 1]) ^ toSigned;
    QOV_UNROLLED
    for (int i = 0; i < 16; i++) {
        const Bytes x = texel[i] ^ toSigned;
        Bytes n = allBytes(0);
        for (int k = 0; k < 7; k++) n = n - greaterSigned(threshold[k], x);
        place[i] = n;
    }
}

// No texel lies further than half a gap inside the ramp from its value: 26 at most.
QOV_INLINE Squares error(const Ramp& r, const Bytes texel[16], const Bytes place[16])
{
    Bytes fall[7];
    for (int k = 0; k < 7; k++) fall[k] = r.value[k] - r.value[k + 1];
    Squares sum = noSquares();
    Bytes off[2];
    QOV_UNROLLED
    for (int i = 0; i < 16; i++) {
        Bytes value = r.value[0];
        for (int k = 0; k < 7; k++) value = value - (greaterSigned(place[i], allBytes(Qov8u(k))) & fall[k]);
        off[i % 2] = larger(value, texel[i]) - smaller(value, texel[i]);
        if (i % 2) sum = addSquares(sum, off[0], off[1]);
    }
    return sum;
}

// Eight indices of three bits as three bytes.
QOV_INLINE void packIndices(const Bytes i[8], Bytes out[3])
{
    out[0] = i[0] | shiftLeft<3>(i[1]) | shiftLeft<6>(i[2]);
    out[1] = shiftRight<2>(i[2]) | shiftLeft<1>(i[3]) | shiftLeft<4>(i[4]) | shiftLeft<7>(i[5]);
    out[2] = shiftRight<1>(i[5]) | shiftLeft<2>(i[6]) | shiftLeft<5>(i[7]);
}

// The ends among the texels that are neither 0 nor 255. Without any, 0 twice.
struct InnerEnds {
    Bytes most, least;
};
QOV_INLINE InnerEnds innerEnds(const Bytes texel[16])
{
    Bytes most = allBytes(0), least = allBytes(255);
    for (int i = 0; i < 16; i++) {
        // One up and one down, 255 becomes the smallest number and 0 the largest.
        most = larger(most, texel[i] + allBytes(1));
        least = smaller(least, texel[i] - allBytes(1));
    }
    most = most - allBytes(1);
    return {most, smaller(least + allBytes(1), most)};
}

// One channel of `byteLanes` blocks side by side, of which one is written every `stride` bytes.
template <int texelBytes, int channel, int stride>
QOV_INLINE void codeRamps(const Qov8u* src, ptrdiff_t step, Qov8u* dst)
{
    Bytes texel[16], number[16];
    loadBlocks<texelBytes, channel>(src, step, texel);
    Bytes most = texel[0], least = texel[0];
    for (int i = 1; i < 16; i++) {
        most = larger(most, texel[i]);
        least = smaller(least, texel[i]);
    }
    const Ramp eight = eightValues(most, least);
    match(eight, texel, number);

    Bytes first = most, second = least;
    const Bytes outermost = (equal(most, allBytes(255)) | equal(least, allBytes(0))) & ~equal(most, least);
    if (anyBit(outermost)) {
        const InnerEnds inner = innerEnds(texel);
        const Ramp six = sixValues(inner.most, inner.least);
        Bytes sixth[16];
        match(six, texel, sixth);
        const Bytes useSix = outermost & less(error(six, texel, sixth), error(eight, texel, number));
        first = select(useSix, inner.least, first);
        second = select(useSix, inner.most, second);
        for (int i = 0; i < 16; i++)
            number[i] = select(useSix, entries(numbersOfSix, sixth[i]), entries(numbersOfEight, number[i]));
    } else {
        for (int i = 0; i < 16; i++) number[i] = entries(numbersOfEight, number[i]);
    }

    Bytes block[8] = {first, second};
    packIndices(number, block + 2);
    packIndices(number + 8, block + 5);
    storeBlocks<stride>(block, dst);
}

#undef QOV_UNROLLED

} // namespace
} // namespace qov::QOV_LEVEL

#endif
