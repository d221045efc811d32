// Products of D97 with words: of small ones, that stay words in all steps, and of any, saturated after each
// step of a pipeline.
#ifndef QOV_KERNELS_WAVELET_WORDS_H
#define QOV_KERNELS_WAVELET_WORDS_H

#include "wavelet_vectors.h"

namespace qov::QOV_LEVEL {
namespace {

#if defined(QOV_SIMD256)
#if defined(__AVX2__)
#define QOV_WORDS_OP2(To, From, name, op)                                                                    \
    QOV_INLINE To name(From a, From b)                                                                       \
    {                                                                                                        \
        return (To)_mm256_##op((Bits)a, (Bits)b);                                                            \
    }
#else
#define QOV_WORDS_OP2(To, From, name, op)                                                                    \
    QOV_INLINE To name(From a, From b)                                                                       \
    {                                                                                                        \
        return (To)_mm_##op((Bits)a, (Bits)b);                                                               \
    }
#endif
QOV_WORDS_OP2(Vector16s, Vector16s, pairsOfLow, unpacklo_epi16)
QOV_WORDS_OP2(Vector16s, Vector16s, pairsOfHigh, unpackhi_epi16)
QOV_WORDS_OP2(Vector32s, Vector16s, sumOfProducts, madd_epi16)
QOV_WORDS_OP2(Vector16s, Vector16s, highOfProduct, mulhi_epi16)
QOV_WORDS_OP2(Vector16s, Vector16s, roundedHighOfDouble, mulhrs_epi16)
QOV_WORDS_OP2(Vector16s, Vector32s, packSaturated, packs_epi32)
QOV_WORDS_OP2(Vector16s, Vector16s, addSaturated, adds_epi16)
QOV_WORDS_OP2(Vector16s, Vector16s, subtractSaturated, subs_epi16)
#undef QOV_WORDS_OP2

// (factor * v + 0x8000) >> 16. An even factor may have 17 bits.
QOV_INLINE Vector16s partOf(Vector16s v, int factor)
{
    if (factor % 2 == 0) return roundedHighOfDouble(v, all<Vector16s>(Qov16s(factor / 2)));
    const Vector16s factors = all<Vector16s>(Qov16s(factor));
    const Vector16u roundUp = Vector16u(v) * Vector16u(factors) >> 15; // the bit below the high half
    return highOfProduct(v, factors) + (Vector16s)roundUp;
}
// Of small numbers.
QOV_INLINE Vector16s product(const Constant97& constant, Vector16s v)
{
    if (constant.in65536 % 2 == 0) return partOf(v, constant.in65536);
    const Constant97 c = constant.upTo(1);
    return v * Qov16s(c.units) + partOf(v, c.rest);
}
QOV_INLINE Vector16s addProduct(Vector16s target, const Constant97& c, Vector16s v)
{
    return target + product(c, v);
}
QOV_INLINE Vector16s subtractProduct(Vector16s target, const Constant97& c, Vector16s v)
{
    return target - product(c, v);
}

// Words that are saturated when a step leaves their range.
struct SaturatedWords {
    Vector16s words;
};
template <>
struct Holds<SaturatedWords> : Holds<Vector16s> {
};
QOV_INLINE SaturatedWords fetch(const Qov16s* p, SaturatedWords)
{
    return {get<Vector16s>(p)};
}
QOV_INLINE void keep(Qov16s* p, SaturatedWords v)
{
    put(p, v.words);
}

// What words become in 32 bits, in places that packSaturated brings in order again.
struct Widened {
    Vector32s low, high;
};
QOV_INLINE Widened widened(Vector16s v)
{
    return {(Vector32s)pairsOfLow(v, v) >> 16, (Vector32s)pairsOfHigh(v, v) >> 16};
}
QOV_INLINE Widened productOfSum(int constant, Vector16s a, Vector16s b)
{
    const Vector16s factors = all<Vector16s>(Qov16s(constant));
    return {sumOfProducts(pairsOfLow(a, b), factors), sumOfProducts(pairsOfHigh(a, b), factors)};
}

// constant * (before + behind) without its whole units is no more than a word.
QOV_INLINE Widened restOfProduct(const Constant97& c, Vector16s before, Vector16s behind)
{
    const Widened exact = productOfSum(c.rest, before, behind);
    return {(exact.low + 0x8000) >> 16, (exact.high + 0x8000) >> 16};
}
QOV_INLINE SaturatedWords addProduct(SaturatedWords target, const Constant97& constant, SaturatedWords before,
                                     SaturatedWords behind)
{
    const Constant97 c = constant.upTo(1);
    const Widened rest = restOfProduct(c, before.words, behind.words);
    if (c.units == 0) return {addSaturated(target.words, packSaturated(rest.low, rest.high))};
    const Widened whole = productOfSum(c.units, before.words, behind.words), wide = widened(target.words);
    return {packSaturated(wide.low + (whole.low + rest.low), wide.high + (whole.high + rest.high))};
}
QOV_INLINE SaturatedWords subtractProduct(SaturatedWords target, const Constant97& constant,
                                          SaturatedWords before, SaturatedWords behind)
{
    const Constant97 c = constant.upTo(1);
    const Widened rest = restOfProduct(c, before.words, behind.words);
    if (c.units == 0) return {subtractSaturated(target.words, packSaturated(rest.low, rest.high))};
    const Widened whole = productOfSum(c.units, before.words, behind.words), wide = widened(target.words);
    return {packSaturated(wide.low - (whole.low + rest.low), wide.high - (whole.high + rest.high))};
}
#endif

} // namespace
} // namespace qov::QOV_LEVEL

#endif
