#include "jcolor.h"

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

int limit255(int a)
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

// Y0 Cb Y1 Cr from and to a row of each plane.
struct Split422Row {
    const Qov8u* src;
    Qov8u* dst[3];

    inline void pair(ptrdiff_t x) const
    {
        dst[0][x] = src[2 * x];
        dst[1][x / 2] = src[2 * x + 1];
        dst[0][x + 1] = src[2 * x + 2];
        dst[2][x / 2] = src[2 * x + 3];
    }
    // The last column of an odd width has no Cr of its own.
    inline void lastOdd(ptrdiff_t x) const
    {
        dst[0][x] = src[2 * x];
        dst[1][x / 2] = src[2 * x + 1];
        dst[2][x / 2] = x > 0 ? src[2 * x - 1] : Qov8u(128);
    }
#if defined(QOV_SIMD256)
    inline void vector(ptrdiff_t x) const
    {
        static constexpr LaneBytes order([](int p) {
            return p < 8 ? 2 * p : p < 12 ? 4 * p - 31 : 4 * p - 45;
        });
        W chunk[2];
        loadChunks(src + 2 * x, chunk);
        for (W& c : chunk) c = shuffleBytes(c, constant(order)); // of each lane: Y by 8, Cb by 4, Cr by 4
        const W chroma = crossQwords(highDwords(chunk[0], chunk[1]));
        store(dst[0] + x, lowQwords(chunk[0], chunk[1]));
        _mm_storeu_si128((__m128i*)(dst[1] + x / 2), lowLane(chroma));
        _mm_storeu_si128((__m128i*)(dst[2] + x / 2), highLane(chroma));
    }
#endif
};

struct Join422Row {
    const Qov8u* src[3];
    Qov8u* dst;

    inline void pair(ptrdiff_t x) const
    {
        lastOdd(x);
        dst[2 * x + 2] = src[0][x + 1];
        dst[2 * x + 3] = src[2][x / 2];
    }
    inline void lastOdd(ptrdiff_t x) const
    {
        dst[2 * x] = src[0][x];
        dst[2 * x + 1] = src[1][x / 2];
    }
#if defined(QOV_SIMD256)
    inline void vector(ptrdiff_t x) const
    {
        static constexpr LaneBytes order([](int p) { return p / 2 + p % 2 * 8; });
        const __m128i cb = _mm_loadu_si128((const __m128i*)(src[1] + x / 2));
        const __m128i cr = _mm_loadu_si128((const __m128i*)(src[2] + x / 2));
        const W y = load(src[0] + x), chroma = shuffleBytes(crossQwords(lanes(cb, cr)), constant(order));
        const W chunk[2] = {lowBytes(y, chroma), highBytes(y, chroma)};
        storeChunks(dst + 2 * x, chunk);
    }
#endif
};

// As convertRow, for pairs of pixels.
template <class Row>
inline void convert422Row(const Row& row, ptrdiff_t width)
{
    const ptrdiff_t even = width & ~ptrdiff_t(1);
    ptrdiff_t x = 0;
#if defined(QOV_SIMD256)
    if (const ptrdiff_t last = even - pixelsAtOnce; last >= 0)
        for (; x < even; x += pixelsAtOnce) row.vector(x < last ? x : last);
#endif
    for (; x < even; x += 2) row.pair(x);
    if (even < width) row.lastOdd(even);
}

void split422(const Qov8u* src, ptrdiff_t srcStep, Qov8u* const dst[3], const int dstStep[3], QoviSize roi)
{
    assert(roi.width > 0 && roi.height > 0);
    Split422Row row = {src, {dst[0], dst[1], dst[2]}};
    for (int y = 0; y < roi.height; y++) {
        convert422Row(row, roi.width);
        row.src += srcStep;
        for (int i = 0; i < 3; i++) row.dst[i] += dstStep[i];
    }
}

void join422(const Qov8u* const src[3], const int srcStep[3], Qov8u* dst, ptrdiff_t dstStep, QoviSize roi)
{
    assert(roi.width > 0 && roi.height > 0);
    Join422Row row = {{src[0], src[1], src[2]}, dst};
    for (int y = 0; y < roi.height; y++) {
        convert422Row(row, roi.width);
        for (int i = 0; i < 3; i++) row.src[i] += srcStep[i];
        row.dst += dstStep;
    }
}

} // namespace

const ColorKernels colorKernels = {splitPicture<RgbToY>,
                                   splitPicture<RgbToYCbCr>,
                                   splitPicture<BgrToYCbCr>,
                                   splitPicture<CmykToYcck>,
                                   joinPicture<YCbCrToRgb>,
                                   joinPicture<YCbCrToBgr>,
                                   joinPicture<YcckToCmyk>,
                                   split422,
                                   join422};

} // namespace qov::QOV_LEVEL
