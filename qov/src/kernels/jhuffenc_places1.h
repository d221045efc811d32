// Places of coefficients, found one by one.
#ifndef QOV_KERNELS_JHUFFENC_PLACES1_H
#define QOV_KERNELS_JHUFFENC_PLACES1_H

#include "jhuffenc_places.h"

#include <string.h>

namespace qov::QOV_LEVEL {
namespace {

struct PlaceOrder {
    Qov8u place[64]; // of the coefficient that stands there in a block

    constexpr PlaceOrder() : place{}
    {
        for (int k = 0; k < 64; k++) place[zigzag[k]] = Qov8u(k);
    }
};
constexpr PlaceOrder placeOrder;

// Calls visit(place, c) with the coefficients, save those in fours of zeros.
template <class Visit>
QOV_INLINE void visitNonZero(const Qov16s* src, Visit visit)
{
    for (int i = 0; i < 64; i += 4) {
        Qov64u four;
        memcpy(&four, src + i, sizeof four);
        if (four == 0) continue;
        for (int k = i; k < i + 4; k++) visit(placeOrder.place[k], src[k]);
    }
}

class Coefficients {
public:
    Coefficients(const Qov16s* src, int al) : m_src(src), m_al(al), m_nonZero(0)
    {
        visitNonZero(src, [&](int place, int c) { m_nonZero |= Places(magnitudeOf(c) >> al != 0) << place; });
    }

    Places nonZero() const { return m_nonZero; }
    Qov64u magnitude(Qov64u place) const { return Qov64u(magnitudeOf(m_src[zigzag[place]]) >> m_al); }
    Qov64u bits(Qov64u place) const
    {
        const int c = m_src[zigzag[place]];
        return Qov64u((magnitudeOf(c) >> m_al) ^ (c >> 31));
    }

private:
    const Qov16s* m_src;
    int m_al;
    Places m_nonZero;
};

QOV_INLINE RefinedPlaces refinedPlaces(const Qov16s* src, int al)
{
    RefinedPlaces p = {0, 0, 0, 0};
    visitNonZero(src, [&](int place, int c) {
        const int magnitude = magnitudeOf(c) >> al, bit = 63 - place;
        p.more |= Places(magnitude > 1) << bit;
        p.odd |= Places(magnitude & 1) << bit;
        p.negative |= Places(c < 0) << bit;
    });
    p.ones = p.odd & ~p.more;
    return p;
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
