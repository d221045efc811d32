// Places of coefficients with SSE4.2 or AVX2: a byte for each coefficient goes into zig-zag order.
#ifndef QOV_KERNELS_JHUFFENC_PLACES256_H
#define QOV_KERNELS_JHUFFENC_PLACES256_H

#include "jhuffenc_places.h"

namespace qov::QOV_LEVEL {
namespace {

QOV_W_OP2(W, equal16, cmpeq_epi16)
QOV_W_OP2(W, copySign16, sign_epi16)
QOV_W_OP1(W, abs8, abs_epi8)
QOV_W_OP2(W, add8, add_epi8)
#if defined(__AVX2__)
QOV_INLINE W shiftMagnitude(W a, int n)
{
    return _mm256_srl_epi16(_mm256_abs_epi16(a), _mm_cvtsi32_si128(n));
}
QOV_INLINE Qov32u highBits(W bytes)
{
    return Qov32u(_mm256_movemask_epi8(bytes));
}
#else
QOV_INLINE W shiftMagnitude(W a, int n)
{
    const __m128i shift = _mm_cvtsi32_si128(n);
    return {_mm_srl_epi16(_mm_abs_epi16(a.lo), shift), _mm_srl_epi16(_mm_abs_epi16(a.hi), shift)};
}
QOV_INLINE Qov32u highBits(W bytes)
{
    return Qov32u(_mm_movemask_epi8(bytes.lo)) | Qov32u(_mm_movemask_epi8(bytes.hi)) << 16;
}
#endif

// Which byte of a lane of packed rows (see inZigzag) each place takes; 80 hex where it takes none.
template <bool backward>
struct ByteOrder {
    alignas(32) Qov8u index[4][64];

    constexpr ByteOrder() : index{}
    {
        for (int k = 0; k < 64; k++) {
            const int natural = zigzag[backward ? 63 - k : k], row = natural / 8;
            for (int lane = 0; lane < 4; lane++) index[lane][k] = 0x80;
            index[row / 4 * 2 + row % 2][k] = Qov8u(row / 2 % 2 * 8 + natural % 8);
        }
    }
};
template <bool backward>
constexpr ByteOrder<backward> byteOrder{};

// 64 bytes in zig-zag order, or its reverse.
struct Bytes {
    W low, high;

    Places highBitPlaces() const { return highBits(low) | Places(highBits(high)) << 32; }
};

// Rows 0 to 7, two in each W of words, are packed with signed saturation: lanes 0 2 | 1 3, then 4 6 | 5 7.
template <bool backward>
QOV_INLINE Bytes inZigzag(W rows01, W rows23, W rows45, W rows67)
{
    const W a = packSigned16(rows01, rows23), b = packSigned16(rows45, rows67);
    const W lane[4] = {bothLanes(lowLane(a)), bothLanes(highLane(a)), bothLanes(lowLane(b)),
                       bothLanes(highLane(b))};
    const auto& order = byteOrder<backward>.index;
    W half[2];
    for (int i = 0; i < 2; i++)
        half[i] = either(either(shuffleBytes(lane[0], load(order[0] + 32 * i)),
                                shuffleBytes(lane[1], load(order[1] + 32 * i))),
                         either(shuffleBytes(lane[2], load(order[2] + 32 * i)),
                                shuffleBytes(lane[3], load(order[3] + 32 * i))));
    return {half[0], half[1]};
}

class Coefficients {
public:
    __attribute__((always_inline)) Coefficients(const Qov16s* src, int al)
    {
        const W zero = all16(0);
        W zeros[4];
        for (int i = 0; i < 4; i++) {
            const W c = load(src + 16 * i), magnitude = shiftMagnitude(c, al);
            zeros[i] = equal16(magnitude, zero);
            store(m_magnitude + 16 * i, magnitude);
            store(m_bits + 16 * i, unlike(magnitude, shiftRight16<15>(c)));
        }
        m_nonZero = ~inZigzag<false>(zeros[0], zeros[1], zeros[2], zeros[3]).highBitPlaces();
    }

    Places nonZero() const { return m_nonZero; }
    Qov64u magnitude(Qov64u place) const { return m_magnitude[zigzag[place]]; }
    Qov64u bits(Qov64u place) const { return Qov64u(m_bits[zigzag[place]]); }

private:
    alignas(32) Qov16u m_magnitude[64];
    alignas(32) Qov16s m_bits[64];
    Places m_nonZero;
};

QOV_INLINE RefinedPlaces refinedPlaces(const Qov16s* src, int al)
{
    const W one = all16(1), two = all16(2);
    W kinds[4]; // 0, 1, 2 for even and 3 for odd magnitudes, with the coefficient's sign
    for (int i = 0; i < 4; i++) {
        const W c = load(src + 16 * i), m = shiftMagnitude(c, al);
        kinds[i] = copySign16(minU16(m, either(both(m, one), two)), c);
    }
    const Bytes b = inZigzag<true>(kinds[0], kinds[1], kinds[2], kinds[3]);
    // Bits 1 and 0 of the magnitude to bit 7: doubled bytes carry nothing over, since they are small.
    Bytes doubled = {abs8(b.low), abs8(b.high)};
    for (int i = 0; i < 6; i++) doubled = {add8(doubled.low, doubled.low), add8(doubled.high, doubled.high)};
    RefinedPlaces p;
    p.negative = b.highBitPlaces();
    p.more = doubled.highBitPlaces();
    doubled = {add8(doubled.low, doubled.low), add8(doubled.high, doubled.high)};
    p.odd = doubled.highBitPlaces();
    p.ones = p.odd & ~p.more;
    return p;
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
