#include "texturedec.h"

#include "texturedec_vectors.h"

#include <string.h>

namespace qov::QOV_LEVEL {
namespace {

// Fields are little-endian, as the machine is.
template <class T>
inline T readAs(const Qov8u* p)
{
    T value;
    memcpy(&value, p, sizeof value);
    return value;
}

// ---- One block, plainly. Values between end points are rounded down.

constexpr Qov32u opaque = 0xFF000000;

// The end points and what lies between, as R, G, B, A from the lowest byte up. Alpha is 0 unless the format
// has three colours as well as four, which is DXT1.
template <bool threeColours>
inline void makePalette(const Qov8u* block, Qov32u (&palette)[4])
{
    const Qov16u end[2] = {readAs<Qov16u>(block), readAs<Qov16u>(block + 2)};
    const bool three = threeColours && end[0] <= end[1];
    for (Qov32u& colour : palette) colour = threeColours ? opaque : 0;
    if (three) palette[3] = 0;
    for (int c = 0; c < 3; c++) {
        Qov32u e[2];
        for (int i = 0; i < 2; i++) {
            const Qov32u five = end[i] >> (c == 0 ? 11 : 0) & 31, six = end[i] >> 5 & 63;
            e[i] = c == 1 ? six << 2 | six >> 4 : five << 3 | five >> 2;
            palette[i] |= e[i] << 8 * c;
        }
        palette[2] |= (three ? (e[0] + e[1]) / 2 : (2 * e[0] + e[1]) / 3) << 8 * c;
        if (!three) palette[3] |= (e[0] + 2 * e[1]) / 3 << 8 * c;
    }
}

// Texels of the palette, with the values of their alpha if there are any.
inline void storeBlock(const Qov8u* block, const Qov32u (&palette)[4], const Qov8u* alpha, Qov8u* dst,
                       ptrdiff_t step)
{
    Qov32u indices = readAs<Qov32u>(block + 4);
    for (int i = 0; i < 16; i++, indices >>= 2) {
        const Qov32u texel = palette[indices & 3] | (alpha ? Qov32u(alpha[i]) << 24 : 0);
        memcpy(dst + i / 4 * step + i % 4 * 4, &texel, sizeof texel);
    }
}

inline void nibbleValues(const Qov8u* block, Qov8u (&value)[16])
{
    for (int i = 0; i < 16; i++) value[i] = Qov8u(17 * (block[i / 2] >> i % 2 * 4 & 15));
}

inline void interpolatedValues(const Qov8u* block, Qov8u (&value)[16])
{
    const int a0 = block[0], a1 = block[1];
    Qov8u palette[8] = {block[0], block[1]};
    if (a0 > a1) {
        for (int k = 1; k < 7; k++) palette[1 + k] = Qov8u(((7 - k) * a0 + k * a1) / 7);
    } else {
        for (int k = 1; k < 5; k++) palette[1 + k] = Qov8u(((5 - k) * a0 + k * a1) / 5);
        palette[6] = 0;
        palette[7] = 255;
    }
    Qov64u indices = readAs<Qov64u>(block) >> 16;
    for (int i = 0; i < 16; i++, indices >>= 3) value[i] = palette[indices & 7];
}

// ---- Formats: what a block is, how one is decoded, and how `together` of them are

struct Dxt1 {
    static constexpr int blockBytes = 8, texelBytes = 4;

    static inline void one(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
    {
        Qov32u palette[4];
        makePalette<true>(src, palette);
        storeBlock(src, palette, nullptr, dst, step);
    }
#if defined(QOV_SIMD256)
    static constexpr int together = 8;

    QOV_INLINE void vector(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
    {
        decodeDxt1Vector(src, dst, step);
    }
#endif
};

template <void values(const Qov8u*, Qov8u (&)[16])>
struct DxtAlpha {
    static constexpr int blockBytes = 16, texelBytes = 4;

    static inline void one(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
    {
        Qov8u alpha[16];
        values(src, alpha);
        Qov32u palette[4];
        makePalette<false>(src + 8, palette);
        storeBlock(src + 8, palette, alpha, dst, step);
    }
};

struct Dxt3 : DxtAlpha<nibbleValues> {
#if defined(QOV_SIMD256)
    static constexpr int together = 8;

    QOV_INLINE void vector(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
    {
        decodeDxtAlphaVector<nibbleValues>(src, dst, step);
    }
#endif
};

struct Dxt5 : DxtAlpha<interpolatedValues> {
#if defined(QOV_SIMD256)
    static constexpr int together = 8;

    QOV_INLINE void vector(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
    {
        decodeDxtAlphaVector<interpolatedValues<0>>(src, dst, step);
    }
#endif
};

// One interpolated block a channel.
template <int channels>
struct Interpolated {
    static constexpr int blockBytes = 8 * channels, texelBytes = channels;

    static inline void one(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
    {
        for (int c = 0; c < channels; c++) {
            Qov8u value[16];
            interpolatedValues(src + 8 * c, value);
            for (int i = 0; i < 16; i++) dst[i / 4 * step + i % 4 * channels + c] = value[i];
        }
    }
#if defined(QOV_SIMD256)
    static constexpr int together = 8 / channels;

    QOV_INLINE void vector(const Qov8u* src, Qov8u* dst, ptrdiff_t step)
    {
        if constexpr (channels == 1)
            decodeBc4Vector(src, dst, step);
        else
            decodeBc5Vector(src, dst, step);
    }
#endif
};

// The last vector of a row ends with its last block: it decodes some blocks again, to the same texels.
template <class Format>
inline void decodeRow(const Qov8u* src, Qov8u* dst, ptrdiff_t step, ptrdiff_t columns)
{
    constexpr ptrdiff_t width = 4 * Format::texelBytes;
#if defined(QOV_SIMD256)
    constexpr ptrdiff_t together = Format::together;
    const ptrdiff_t last = columns - together;
    if (last >= 0) {
        for (ptrdiff_t x = 0;; x = x + together < last ? x + together : last) {
            Format::vector(src + x * Format::blockBytes, dst + x * width, step);
            if (x == last) return;
        }
    }
#endif
    for (ptrdiff_t x = 0; x < columns; x++) Format::one(src + x * Format::blockBytes, dst + x * width, step);
}

template <class Format>
void decode(const Qov8u* src, Qov8u* dst, ptrdiff_t step, ptrdiff_t columns, ptrdiff_t rows)
{
    assert(columns > 0 && rows > 0);
    for (; rows > 0; rows--) {
        decodeRow<Format>(src, dst, step, columns);
        src += columns * Format::blockBytes;
        dst += 4 * step;
    }
}

} // namespace

const TextureDecKernels textureDecKernels = {.bc4 = decode<Interpolated<1>>,
                                             .bc5 = decode<Interpolated<2>>,
                                             .dxt1 = decode<Dxt1>,
                                             .dxt3 = decode<Dxt3>,
                                             .dxt5 = decode<Dxt5>};

} // namespace qov::QOV_LEVEL
