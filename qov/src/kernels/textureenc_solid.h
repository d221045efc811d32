// Ends for blocks of one colour: a channel value v is met best as (2 e(p) + e(q)) / 3 of two ends p and q of
// 5 or 6 bits, which the format expands to e.
#ifndef QOV_KERNELS_TEXTUREENC_SOLID_H
#define QOV_KERNELS_TEXTUREENC_SOLID_H

#include "family.h"

namespace qov::QOV_LEVEL {
namespace {

struct SolidEnds {
    Qov8u p, q;
};

template <int bits>
struct SolidTable {
    SolidEnds of[256];

    // Of the pairs with the least error the one whose ends lie nearest to each other.
    constexpr SolidTable() : of{}
    {
        bool met[256] = {};
        for (int apart = 0; apart < count; apart++) {
            for (int low = 0; low + apart < count; low++) {
                meet({Qov8u(low), Qov8u(low + apart)}, met);
                meet({Qov8u(low + apart), Qov8u(low)}, met);
            }
        }
        for (int v = 0; v < 256; v++) {
            int nearest = 0;
            for (int m = 1; m < 256; m++)
                if (met[m] && rank(v, m) < rank(v, nearest)) nearest = m;
            of[v] = of[nearest]; // those met stay as they are
        }
    }

private:
    static constexpr int count = 1 << bits;

    static constexpr int expanded(int v) { return v << (8 - bits) | v >> (2 * bits - 8); }
    static constexpr int apartOf(SolidEnds e) { return e.p < e.q ? e.q - e.p : e.p - e.q; }
    constexpr int rank(int v, int m) const { return (v < m ? m - v : v - m) * count + apartOf(of[m]); }
    constexpr void meet(SolidEnds e, bool met[256])
    {
        const int value = (2 * expanded(e.p) + expanded(e.q)) / 3;
        if (!met[value]) of[value] = e;
        met[value] = true;
    }
};

constexpr SolidTable<5> solid5;
constexpr SolidTable<6> solid6;

} // namespace
} // namespace qov::QOV_LEVEL

#endif
