// Places of coefficients with AVX-512.
#ifndef QOV_KERNELS_JHUFFENC_PLACES512_H
#define QOV_KERNELS_JHUFFENC_PLACES512_H

#include "jhuffenc_places.h"

namespace qov::QOV_LEVEL {
namespace {

class Coefficients {
public:
    QOV_INLINE_MEMBER Coefficients(const Qov16s* src, int al)
    {
        const Words c = inZigzag<false>(src);
        const __m128i shift = _mm_cvtsi32_si128(al);
        const __m512i low = _mm512_srl_epi16(_mm512_abs_epi16(c.low), shift);
        const __m512i high = _mm512_srl_epi16(_mm512_abs_epi16(c.high), shift);
        m_nonZero = joined(_mm512_test_epi16_mask(low, low), _mm512_test_epi16_mask(high, high));
        _mm512_store_si512(m_magnitude, low);
        _mm512_store_si512(m_magnitude + 32, high);
        _mm512_store_si512(m_bits, _mm512_xor_si512(low, _mm512_srai_epi16(c.low, 15)));
        _mm512_store_si512(m_bits + 32, _mm512_xor_si512(high, _mm512_srai_epi16(c.high, 15)));
    }

    Places nonZero() const { return m_nonZero; }
    Qov64u magnitude(Qov64u place) const { return m_magnitude[place]; }
    Qov64u bits(Qov64u place) const { return Qov64u(m_bits[place]); }

private:
    alignas(64) Qov16u m_magnitude[64];
    alignas(64) Qov16s m_bits[64];
    Places m_nonZero;
};

QOV_INLINE RefinedPlaces refinedPlaces(const Qov16s* src, int al)
{
    const Words c = inZigzag<true>(src);
    const __m128i shift = _mm_cvtsi32_si128(al);
    const __m512i low = _mm512_srl_epi16(_mm512_abs_epi16(c.low), shift);
    const __m512i high = _mm512_srl_epi16(_mm512_abs_epi16(c.high), shift);
    const __m512i one = _mm512_set1_epi16(1);
    RefinedPlaces p;
    p.ones = joined(_mm512_cmpeq_epi16_mask(low, one), _mm512_cmpeq_epi16_mask(high, one));
    p.more = joined(_mm512_cmpgt_epu16_mask(low, one), _mm512_cmpgt_epu16_mask(high, one));
    p.odd = joined(_mm512_test_epi16_mask(low, one), _mm512_test_epi16_mask(high, one));
    p.negative = joined(_mm512_movepi16_mask(c.low), _mm512_movepi16_mask(c.high));
    return p;
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
