// The colour arithmetic of JPEG pictures: conversions as planes256.h takes them.
#ifndef QOV_KERNELS_JCOLOR256_H
#define QOV_KERNELS_JCOLOR256_H

#include "planes256.h"

namespace qov::QOV_LEVEL {
namespace {

// The formulas of T.871 in integers, the same numbers at every level. Lanes of 16 bits reach what scalar code
// shifts down from a sum with 16 or more fraction bits: floor(n + f) = n + floor(f) for a whole number n, so
// each formula is a part in whole numbers and one product of which only the floor is needed.
//
//   256 Y = 76 R + 150 G + 30 B + 0.272 (2 R + G - 3 B), exactly; the first part is below 65536
//   2 (Cb - 128) = (B - G) - 0.337472 (R - G)
//   2 (Cr - 128) = (R - G) - 0.162624 (B - G)
//   128 (Y - G) = 33 cb + 91 cr + 0.40924 (27 cb + cr), where cb = Cb - 128, cr = Cr - 128
//   R - Y = 7 * 0.2002857 cr,  B - Y = 3 * 0.590667 cb, of which the second factors have 15 bits
constexpr int lumaPart = 17826, cbOfRed = -22117, crOfBlue = -10658, greenPart = 26820; // in 1 / 65536
constexpr int redOfCr = 6563, blueOfCb = 19355;                                         // in 1 / 32768

inline int limit255(int a)
{
    return a < 0 ? 0 : a > 255 ? 255 : a;
}

#if defined(QOV_SIMD256)

// Factors of multiplyAddBytes for the bytes (even, odd) of every word.
inline W bytePair(int even, int odd)
{
    return all16(short((even & 255) | (odd & 255) << 8));
}
inline W allBytes(int b)
{
    return bytePair(b, b);
}

// Bytes of two channels side by side in words: pixels 0 to 7 and 8 to 15 of each lane.
struct Pairs {
    W low, high;
    Pairs(W a, W b) : low(lowBytes(a, b)), high(highBytes(a, b)) {}
};

// Pixels of a half: R - G and B - G in words, and what is made of them.
struct Words {
    W redGreen, blueGreen; // pairs of bytes
    W red, blue;           // differences

    Words(W rg, W bg) : redGreen(rg), blueGreen(bg)
    {
        red = multiplyAddBytes(redGreen, bytePair(1, -1));
        blue = multiplyAddBytes(blueGreen, bytePair(1, -1));
    }
    inline W y() const
    {
        const W whole = add16(multiplyAddBytes(redGreen, bytePair(76, 52)),
                              multiplyAddBytes(blueGreen, bytePair(30, 98)));
        const W difference = sub16(red, blue);
        const W part = mulHigh16(sub16(add16(difference, difference), blue), all16(lumaPart));
        return shiftRightU16<8>(add16(add16(whole, all16(128)), part));
    }
    // Less 128; above 127 if it is to be limited.
    inline W cb() const { return mulRound16(add16(blue, mulHigh16(red, all16(cbOfRed))), all16(1 << 14)); }
    inline W cr() const { return mulRound16(add16(red, mulHigh16(blue, all16(crOfBlue))), all16(1 << 14)); }
};
#endif

struct RgbToY {
    static constexpr int sources = 3, destinations = 1;

    static int luma(int r, int g, int b)
    {
        constexpr int red = 76 * 32768 + lumaPart, blue = 30 * 32768 - lumaPart / 2 * 3;
        constexpr int green = 150 * 32768 + lumaPart / 2;
        return (red * r + green * g + blue * b + (1 << 22)) >> 23; // at most 255 * 2^23 + 2^22
    }
    static void convert(const Qov8u (&in)[3], Qov8u (&out)[1]) { out[0] = Qov8u(luma(in[0], in[1], in[2])); }
#if defined(QOV_SIMD256)
    static inline void convert(const W (&in)[3], W (&out)[1])
    {
        const Pairs redGreen(in[0], in[1]), blueGreen(in[2], in[1]);
        const Words low(redGreen.low, blueGreen.low), high(redGreen.high, blueGreen.high);
        out[0] = packU16(low.y(), high.y());
    }
#endif
};

struct RgbToYCbCr {
    static constexpr int sources = 3, destinations = 3;

    static void convert(const Qov8u (&in)[3], Qov8u (&out)[3])
    {
        const int red = in[0] - in[1], blue = in[2] - in[1];
        const int cb = (65536 * blue + cbOfRed * red + 257 * 65536) >> 17;
        const int cr = (65536 * red + crOfBlue * blue + 257 * 65536) >> 17;
        out[0] = Qov8u(RgbToY::luma(in[0], in[1], in[2]));
        out[1] = Qov8u(limit255(cb));
        out[2] = Qov8u(limit255(cr));
    }
#if defined(QOV_SIMD256)
    static inline void convert(const W (&in)[3], W (&out)[3])
    {
        const Pairs redGreen(in[0], in[1]), blueGreen(in[2], in[1]);
        const Words low(redGreen.low, blueGreen.low), high(redGreen.high, blueGreen.high);
        const W offset = allBytes(128);
        out[0] = packU16(low.y(), high.y());
        out[1] = unlike(packSigned16(low.cb(), high.cb()), offset);
        out[2] = unlike(packSigned16(low.cr(), high.cr()), offset);
    }
#endif
};

struct YCbCrToRgb {
    static constexpr int sources = 3, destinations = 3;

    static void convert(const Qov8u (&in)[3], Qov8u (&out)[3])
    {
        const int y = in[0], cb = in[1] - 128, cr = in[2] - 128;
        const int green = (65536 * (33 * cb + 91 * cr) + greenPart * (27 * cb + cr) + (1 << 22)) >> 23;
        out[0] = Qov8u(limit255(y + ((7 * redOfCr * cr + (1 << 14)) >> 15)));
        out[1] = Qov8u(limit255(y - green));
        out[2] = Qov8u(limit255(y + ((3 * blueOfCb * cb + (1 << 14)) >> 15)));
    }
#if defined(QOV_SIMD256)
    // Products of Cb - 128 and Cr - 128, signed bytes side by side.
    static inline W red(W chroma)
    {
        return mulRound16(multiplyAddBytes(bytePair(0, 7), chroma), all16(redOfCr));
    }
    static inline W green(W chroma)
    {
        const W part = mulHigh16(multiplyAddBytes(bytePair(27, 1), chroma), all16(greenPart));
        return mulRound16(add16(multiplyAddBytes(bytePair(33, 91), chroma), part), all16(1 << 8));
    }
    static inline W blue(W chroma)
    {
        return mulRound16(multiplyAddBytes(bytePair(3, 0), chroma), all16(blueOfCb));
    }

    static inline void convert(const W (&in)[3], W (&out)[3])
    {
        const W offset = allBytes(128);
        const Pairs chroma(unlike(in[1], offset), unlike(in[2], offset)), y(in[0], all16(0));
        out[0] = packU16(add16(y.low, red(chroma.low)), add16(y.high, red(chroma.high)));
        out[1] = packU16(sub16(y.low, green(chroma.low)), sub16(y.high, green(chroma.high)));
        out[2] = packU16(add16(y.low, blue(chroma.low)), add16(y.high, blue(chroma.high)));
    }
#endif
};

struct BgrToY {
    static constexpr int sources = 3, destinations = 1;

    template <class T>
    static inline void convert(const T (&in)[3], T (&out)[1])
    {
        const T rgb[3] = {in[2], in[1], in[0]};
        RgbToY::convert(rgb, out);
    }
};

struct BgrToYCbCr {
    static constexpr int sources = 3, destinations = 3;

    template <class T>
    static inline void convert(const T (&in)[3], T (&out)[3])
    {
        const T rgb[3] = {in[2], in[1], in[0]};
        RgbToYCbCr::convert(rgb, out);
    }
};

struct YCbCrToBgr {
    static constexpr int sources = 3, destinations = 3;

    template <class T>
    static inline void convert(const T (&in)[3], T (&out)[3])
    {
        YCbCrToRgb::convert(in, out);
        const T red = out[0];
        out[0] = out[2];
        out[2] = red;
    }
};

inline Qov8u complement(Qov8u a)
{
    return Qov8u(255 - a);
}
#if defined(QOV_SIMD256)
inline W complement(W a)
{
    return unlike(a, all16(-1));
}
#endif

struct CmykToYcck {
    static constexpr int sources = 4, destinations = 4;

    template <class T>
    static inline void convert(const T (&in)[4], T (&out)[4])
    {
        const T rgb[3] = {complement(in[0]), complement(in[1]), complement(in[2])};
        T ycc[3];
        RgbToYCbCr::convert(rgb, ycc);
        for (int i = 0; i < 3; i++) out[i] = ycc[i];
        out[3] = in[3];
    }
};

struct YcckToCmyk {
    static constexpr int sources = 4, destinations = 4;

    template <class T>
    static inline void convert(const T (&in)[4], T (&out)[4])
    {
        const T ycc[3] = {in[0], in[1], in[2]};
        T rgb[3];
        YCbCrToRgb::convert(ycc, rgb);
        for (int i = 0; i < 3; i++) out[i] = complement(rgb[i]);
        out[3] = in[3];
    }
};

} // namespace
} // namespace qov::QOV_LEVEL

#endif
