// Packed 16-bit pixels of three colours, 5-5-5 or 5-6-5 bits, as a side of convertPicture: one word a pixel,
// the first-named colour in the lowest bits.
#ifndef QOV_KERNELS_PACKED16_H
#define QOV_KERNELS_PACKED16_H

#include "jcolor256.h"

namespace qov::QOV_LEVEL {
namespace {

// A colour of `bits` bits from bit `place` up. Widening repeats the high bits, which is a product: 33 n / 4
// for 5 bits, 65 n / 16 for 6. Narrowing is round(v (2^bits - 1) / 255), exact for every byte, and stays
// below 65536 on the way.
template <int bits, int place>
struct Field {
    static_assert(bits == 5 || bits == 6);
    static constexpr int mask = (1 << bits) - 1;
    static constexpr int repeat = 1 + (1 << bits), repeatShift = 2 * bits - 8;
    static constexpr int scale = bits == 5 ? 249 : 253, scaleShift = bits == 5 ? 11 : 10;
    static constexpr int half = bits == 5 ? 1014 : 505;

    static inline Qov8u widen(Qov16u word) { return Qov8u((word >> place & mask) * repeat >> repeatShift); }
    static inline Qov16u narrow(Qov8u v) { return Qov16u((v * scale + half) >> scaleShift << place); }
#if defined(QOV_SIMD256)
    static inline W widen(W words)
    {
        const W n = both(shiftRightU16<place>(words), all16(mask));
        return shiftRightU16<repeatShift>(mulLow16(n, all16(repeat)));
    }
    static inline W narrow(W v)
    {
        const W scaled = add16(mulLow16(v, all16(scale)), all16(half));
        return mulLow16(shiftRightU16<scaleShift>(scaled), all16(1 << place));
    }
#endif
};

// Lowest is the channel in the lowest bits, 0 for red or 2 for blue; the other of the two is in the highest.
template <int greenBits, int lowest>
struct PackedFormat {
    typedef Field<5, 0> Low;
    typedef Field<greenBits, 5> Middle;
    typedef Field<5, 5 + greenBits> High;

    template <class Words, class Colour>
    static inline void widen(Words words, Colour (&rgb)[3])
    {
        rgb[lowest] = Low::widen(words);
        rgb[1] = Middle::widen(words);
        rgb[2 - lowest] = High::widen(words);
    }
    static inline Qov16u narrow(const Qov8u (&rgb)[3])
    {
        return Qov16u(Low::narrow(rgb[lowest]) | Middle::narrow(rgb[1]) | High::narrow(rgb[2 - lowest]));
    }
#if defined(QOV_SIMD256)
    static inline W narrow(const W (&rgb)[3]) // of words
    {
        return either(either(Low::narrow(rgb[lowest]), Middle::narrow(rgb[1])),
                      High::narrow(rgb[2 - lowest]));
    }

    // The chunks of planes256.h.
    static inline void split(const W (&chunk)[2], W (&rgb)[3])
    {
        W low[3], high[3];
        widen(chunk[0], low);
        widen(chunk[1], high);
        for (int i = 0; i < 3; i++) rgb[i] = packU16(low[i], high[i]);
    }
    static inline void join(const W (&rgb)[3], W (&chunk)[2])
    {
        W low[3], high[3];
        for (int i = 0; i < 3; i++) {
            low[i] = lowBytes(rgb[i], all16(0));
            high[i] = highBytes(rgb[i], all16(0));
        }
        chunk[0] = narrow(low);
        chunk[1] = narrow(high);
    }
#endif
};

typedef PackedFormat<5, 0> Rgb555;
typedef PackedFormat<5, 2> Bgr555;
typedef PackedFormat<6, 0> Rgb565;
typedef PackedFormat<6, 2> Bgr565;

template <class T, class Format>
struct PackedRow {
    T* words;

    static ptrdiff_t bytes(ptrdiff_t width) { return width * ptrdiff_t(sizeof(T)); }
    inline void next(ptrdiff_t step) { words = atByte(words, step); }
    inline void get(ptrdiff_t x, Qov8u (&rgb)[3]) const { Format::widen(words[x], rgb); }
    inline void put(ptrdiff_t x, const Qov8u (&rgb)[3]) const { words[x] = Format::narrow(rgb); }
#if defined(QOV_SIMD256)
    inline void get(ptrdiff_t x, W (&rgb)[3]) const
    {
        W chunk[2];
        loadChunks((const Qov8u*)(words + x), chunk);
        Format::split(chunk, rgb);
    }
    inline void put(ptrdiff_t x, const W (&rgb)[3]) const
    {
        W chunk[2];
        Format::join(rgb, chunk);
        storeChunks((Qov8u*)(words + x), chunk);
    }
#endif
};

} // namespace
} // namespace qov::QOV_LEVEL

#endif
