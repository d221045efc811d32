// Steps of D97 on words that are saturated after each step, so that they stay words.
#ifndef QOV_KERNELS_WAVELET_WORDS_H
#define QOV_KERNELS_WAVELET_WORDS_H

#include "wavelet_vectors.h"

namespace qov::QOV_LEVEL {
namespace {

#if defined(QOV_SIMD256)
#if defined(__AVX2__)
#define QOV_WORDS_OP2(To, From, name, op)                                                                    \
    inline To name(From a, From b)                                                                           \
    {                                                                                                        \
        return (To)_mm256_##op((Bits)a, (Bits)b);                                                            \
    }
#else
#define QOV_WORDS_OP2(To, From, name, op)                                                                    \
    inline To name(From a, From b)                                                                           \
    {                                                                                                        \
        return (To)_mm_##op((Bits)a, (Bits)b);                                                               \
    }
#endif
QOV_WORDS_OP2(Vector16s, Vector16s, pairsOfLow, unpacklo_epi16)
QOV_WORDS_OP2(Vector16s, Vector16s, pairsOfHigh, unpackhi_epi16)
QOV_WORDS_OP2(Vector32s, Vector16s, sumOfProducts, madd_epi16)
QOV_WORDS_OP2(Vector16s, Vector32s, packSaturated, packs_epi32)
QOV_WORDS_OP2(Vector16s, Vector16s, addSaturated, adds_epi16)
QOV_WORDS_OP2(Vector16s, Vector16s, subtractSaturated, subs_epi16)
#undef QOV_WORDS_OP2

// What words become in 32 bits, in places that packSaturated brings in order again.
struct Widened {
    Vector32s low, high;
};
inline Widened widened(Vector16s v)
{
    return {(Vector32s)pairsOfLow(v, v) >> 16, (Vector32s)pairsOfHigh(v, v) >> 16};
}
inline Widened productOfSum(int constant, Vector16s a, Vector16s b)
{
    const Vector16s factors = all<Vector16s>(Qov16s(constant));
    return {sumOfProducts(pairsOfLow(a, b), factors), sumOfProducts(pairsOfHigh(a, b), factors)};
}

// constant * (before + behind) without its whole units is no more than a word.
inline Widened restOfProduct(const Constant97& c, Vector16s before, Vector16s behind)
{
    const Widened exact = productOfSum(c.rest, before, behind);
    return {(exact.low + 0x8000) >> 16, (exact.high + 0x8000) >> 16};
}
inline Vector16s addProduct(Vector16s target, const Constant97& constant, Vector16s before, Vector16s behind)
{
    const Constant97 c = constant.upTo(1);
    const Widened rest = restOfProduct(c, before, behind);
    if (c.units == 0) return addSaturated(target, packSaturated(rest.low, rest.high));
    const Widened whole = productOfSum(c.units, before, behind), wide = widened(target);
    return packSaturated(wide.low + (whole.low + rest.low), wide.high + (whole.high + rest.high));
}
inline Vector16s subtractProduct(Vector16s target, const Constant97& constant, Vector16s before,
                                 Vector16s behind)
{
    const Constant97 c = constant.upTo(1);
    const Widened rest = restOfProduct(c, before, behind);
    if (c.units == 0) return subtractSaturated(target, packSaturated(rest.low, rest.high));
    const Widened whole = productOfSum(c.units, before, behind), wide = widened(target);
    return packSaturated(wide.low - (whole.low + rest.low), wide.high - (whole.high + rest.high));
}
#endif

} // namespace
} // namespace qov::QOV_LEVEL

#endif
