// Texture blocks read plainly, a texel at a time, from the tables of the formats.
#ifndef TESTS_QOV_TEXTURE_REFERENCE_H
#define TESTS_QOV_TEXTURE_REFERENCE_H

#include "qovdefs.h"

#include <array>
#include <cstdint>

typedef std::array<int, 4> Texel; // the channels there are, then 0

inline uint64_t bitsAt(const Qov8u* p, int bytes)
{
    uint64_t bits = 0;
    for (int i = 0; i < bytes; i++) bits |= uint64_t(p[i]) << 8 * i;
    return bits;
}

inline std::array<int, 8> rampOf(const Qov8u* block)
{
    const int a = block[0], b = block[1], gaps = a > b ? 7 : 5;
    std::array<int, 8> ramp = {a, b, 0, 0, 0, 0, 0, 255};
    for (int k = 1; k < gaps; k++) ramp[size_t(k + 1)] = ((gaps - k) * a + k * b) / gaps;
    return ramp;
}

inline int rampTexel(const Qov8u* block, int i)
{
    return rampOf(block)[bitsAt(block + 2, 6) >> 3 * i & 7];
}

inline Texel expanded(int code)
{
    const int r = code >> 11, g = code >> 5 & 63, b = code & 31;
    return {r << 3 | r >> 2, g << 2 | g >> 4, b << 3 | b >> 2, 255};
}

inline std::array<Texel, 4> paletteOf(const Qov8u* block, bool dxt1)
{
    const int c0 = int(bitsAt(block, 2)), c1 = int(bitsAt(block + 2, 2));
    const Texel e0 = expanded(c0), e1 = expanded(c1);
    const bool four = !dxt1 || c0 > c1;
    Texel mixed[2] = {};
    for (size_t c = 0; c < 4; c++) {
        mixed[0][c] = four ? (2 * e0[c] + e1[c]) / 3 : (e0[c] + e1[c]) / 2;
        mixed[1][c] = four ? (e0[c] + 2 * e1[c]) / 3 : 0;
    }
    return {e0, e1, mixed[0], mixed[1]};
}

inline Texel colourTexel(const Qov8u* block, int i, bool dxt1)
{
    return paletteOf(block, dxt1)[bitsAt(block + 4, 4) >> 2 * i & 3];
}

inline Texel bc4Texel(const Qov8u* block, int i)
{
    return {rampTexel(block, i)};
}
inline Texel bc5Texel(const Qov8u* block, int i)
{
    return {rampTexel(block, i), rampTexel(block + 8, i)};
}
inline Texel dxt1Texel(const Qov8u* block, int i)
{
    return colourTexel(block, i, true);
}
inline Texel dxt3Texel(const Qov8u* block, int i)
{
    Texel t = colourTexel(block + 8, i, false);
    t[3] = 17 * int(bitsAt(block, 8) >> 4 * i & 15);
    return t;
}
inline Texel dxt5Texel(const Qov8u* block, int i)
{
    Texel t = colourTexel(block + 8, i, false);
    t[3] = rampTexel(block, i);
    return t;
}

#endif
