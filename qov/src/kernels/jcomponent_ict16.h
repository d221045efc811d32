// The irreversible transform of 16-bit numbers, in whole-number arithmetic. A transform is
//
//   struct Transform {
//       static constexpr double factor[3][3]; // of each result, in whole millionths
//   };
//
// and a result its exact sum of products, rounded to nearest (a tie goes up) and saturated.
#ifndef QOV_KERNELS_JCOMPONENT_ICT16_H
#define QOV_KERNELS_JCOMPONENT_ICT16_H

#include "simd256.h"

namespace qov::QOV_LEVEL {
namespace {

constexpr int oneInMillionths = 1000000;

constexpr int inMillionths(double factor)
{
    return int(factor * oneInMillionths + (factor < 0 ? -0.5 : 0.5));
}

template <class Transform, int result>
struct ExactSum {
    static constexpr int n0 = inMillionths(Transform::factor[result][0]);
    static constexpr int n1 = inMillionths(Transform::factor[result][1]);
    static constexpr int n2 = inMillionths(Transform::factor[result][2]);

    static inline Qov16s rounded(int c0, int c1, int c2)
    {
        constexpr int offset = 1 << 17; // no sum lies below -offset: division rounds down
        const Qov64s sum = Qov64s(n0) * c0 + Qov64s(n1) * c1 + Qov64s(n2) * c2;
        const int value =
            int((sum + oneInMillionths / 2 + Qov64s(offset) * oneInMillionths) / oneInMillionths) - offset;
        return Qov16s(value < -32768 ? -32768 : value > 32767 ? 32767 : value);
    }
};

#if defined(QOV_SIMD256)

// A factor as the sum of words with 14, 29 and 44 fraction bits. Of products with the latter two, three fit
// 32 bits with room for a carry.
struct FactorWords {
    int high, middle, low;

    constexpr explicit FactorWords(int millionths) : high{}, middle{}, low{}
    {
        const Qov64s value = (Qov64s(millionths) << 38) / (oneInMillionths >> 6); // less than 1 from exact
        low = lowest(value);
        middle = lowest((value - low) >> 15);
        high = int((((value - low) >> 15) - middle) >> 15);
    }

private:
    // The lowest 15 bits as a number from -2^14 to 2^14 - 1.
    static constexpr int lowest(Qov64s value) { return int((value + 0x4000) & 0x7FFF) - 0x4000; }
};

// The products' factors of one result, for the words (component 0, component 1) and (component 2, 1) in every
// dword. The last sum is less than 3 of its carry's units from exact, and is raised by 4: that decides ties,
// and no other sum, as the next one is a millionth away, or a thousandth where that is the factors' unit:
// then the low words are not needed.
template <class Transform, int result>
struct Products {
    typedef ExactSum<Transform, result> Exact;
    static constexpr int n0 = Exact::n0, n1 = Exact::n1, n2 = Exact::n2;
    static constexpr bool coarse = n0 % 1000 == 0 && n1 % 1000 == 0 && n2 % 1000 == 0;
    static constexpr FactorWords f0{n0}, f1{n1}, f2{n2};
    static constexpr int half = 1 << 13, raise = 4;
    static constexpr FactorPair high01{f0.high, f1.high}, high2{f2.high, half + (coarse ? raise : 0)};
    static constexpr FactorPair middle01{f0.middle, f1.middle}, middle2{f2.middle, coarse ? 0 : raise};
    static constexpr FactorPair low01{f0.low, f1.low}, low2{f2.low, 0};

    static inline W sum(W c01, W c2)
    {
        W carry = add32(multiplyAdd(c01, middle01), multiplyAdd(c2, middle2));
        if constexpr (!coarse)
            carry = add32(carry, shiftRight32<15>(add32(multiplyAdd(c01, low01), multiplyAdd(c2, low2))));
        const W total =
            add32(add32(multiplyAdd(c01, high01), multiplyAdd(c2, high2)), shiftRight32<15>(carry));
        return shiftRight32<14>(total);
    }
};

#endif

template <class Transform>
inline void transformExactly(Qov16s* __restrict c0, Qov16s* __restrict c1, Qov16s* __restrict c2,
                             ptrdiff_t width)
{
    ptrdiff_t x = 0;
#if defined(QOV_SIMD256)
    const W ones = all16(1);
    for (; x + 16 <= width; x += 16) {
        const W v0 = load(c0 + x), v1 = load(c1 + x), v2 = load(c2 + x);
        const W low01 = lowWords(v0, v1), low2 = lowWords(v2, ones);
        const W high01 = highWords(v0, v1), high2 = highWords(v2, ones);
        const auto result = [&](auto products) {
            return pack32(products.sum(low01, low2), products.sum(high01, high2));
        };
        store(c0 + x, result(Products<Transform, 0>()));
        store(c1 + x, result(Products<Transform, 1>()));
        store(c2 + x, result(Products<Transform, 2>()));
    }
#endif
    for (; x < width; x++) {
        const int v0 = c0[x], v1 = c1[x], v2 = c2[x];
        c0[x] = ExactSum<Transform, 0>::rounded(v0, v1, v2);
        c1[x] = ExactSum<Transform, 1>::rounded(v0, v1, v2);
        c2[x] = ExactSum<Transform, 2>::rounded(v0, v1, v2);
    }
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
