// Places of coefficients with SSE4.2 or AVX2.
#ifndef QOV_KERNELS_JHUFFENC_PLACES256_H
#define QOV_KERNELS_JHUFFENC_PLACES256_H

#include "jhuffenc_places.h"

namespace qov::QOV_LEVEL {
namespace {

QOV_W_OP2(W, copySign16, sign_epi16)
QOV_W_OP1(W, abs8, abs_epi8)
QOV_W_OP2(W, add8, add_epi8)
#if defined(__AVX2__)
QOV_INLINE W shiftMagnitude(W a, int n)
{
    return _mm256_srl_epi16(_mm256_abs_epi16(a), _mm_cvtsi32_si128(n));
}
#else
QOV_INLINE W shiftMagnitude(W a, int n)
{
    const __m128i shift = _mm_cvtsi32_si128(n);
    return {_mm_srl_epi16(_mm_abs_epi16(a.lo), shift), _mm_srl_epi16(_mm_abs_epi16(a.hi), shift)};
}
#endif

class Coefficients {
public:
    QOV_INLINE_MEMBER Coefficients(const Qov16s* src, int al)
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
