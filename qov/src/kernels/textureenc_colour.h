// Colour blocks in the format: 565 ends in the order that tells four colours from three, and indices.
#ifndef QOV_KERNELS_TEXTUREENC_COLOUR_H
#define QOV_KERNELS_TEXTUREENC_COLOUR_H

#include "textureenc_fit.h"
#include "textureenc_solid.h"

namespace qov::QOV_LEVEL {
namespace {

struct Candidate {
    Floats score, firstCode, secondCode, w[2];
};

QOV_INLINE Candidate candidate(const Ends& e, const Match& m)
{
    return {m.score, e.firstCode, e.secondCode, {m.w[0], m.w[1]}};
}
QOV_INLINE Candidate better(const Candidate& a, const Candidate& b)
{
    const Mask isB = greater(b.score, a.score);
    return {select(isB, b.score, a.score),
            select(isB, b.firstCode, a.firstCode),
            select(isB, b.secondCode, a.secondCode),
            {select(isB, b.w[0], a.w[0]), select(isB, b.w[1], a.w[1])}};
}

// Two bits a texel, all set for those cut out.
QOV_INLINE Words cutOutIndices(const Texels& t)
{
    Words bits = allWords(0);
    for (int i = 15; i >= 0; i--) bits = bits << 2 | ~t.raw[i] >> 31;
    return bits | bits << 1;
}

struct ColourBlocks {
    Words ends, indices;
};

// Entries by their numbers: the places 0 1 2 3 of four colours are 0 2 3 1, those of three 0 2 1. Four
// colours have the larger end first, three colours the smaller.
template <bool cutOut>
QOV_INLINE ColourBlocks inFormat(const Texels& t, const Candidate& c, Mask three)
{
    const Words everyLow = allWords(0x55555555);
    const Words w = wordsOf(c.w[0]) | wordsOf(c.w[1]) << 16, low = w & everyLow, high = w >> 1 & everyLow;
    const Words first = wordsOf(c.firstCode), second = wordsOf(c.secondCode);
    Words indices = high | (low ^ high) << 1, exchanged = indices ^ everyLow;
    Mask exchange = greater(c.secondCode, c.firstCode);
    if constexpr (cutOut) {
        const Words unused = cutOutIndices(t), ofThree = high | low << 1;
        indices = selectWords(three, ofThree | unused, indices);
        exchanged = selectWords(three, (ofThree ^ (everyLow & ~low)) | unused, exchanged);
        exchange =
            greater(select(three, c.firstCode, c.secondCode), select(three, c.secondCode, c.firstCode));
    }
    return {selectWords(exchange, second | first << 16, first | second << 16),
            selectWords(exchange, exchanged, indices)};
}

QOV_INLINE Qov32u codeOf(Qov32u r, Qov32u g, Qov32u b)
{
    return r << 11 | g << 5 | b;
}

// A block of one colour, in the reading of four colours.
QOV_INLINE void codeSolid(Qov32u texel, Qov32u& ends, Qov32u& indices)
{
    const SolidEnds r = solid5.of[texel & 0xFF], g = solid6.of[texel >> 8 & 0xFF],
                    b = solid5.of[texel >> 16 & 0xFF];
    const Qov32u p = codeOf(r.p, g.p, b.p), q = codeOf(r.q, g.q, b.q);
    ends = p < q ? q | p << 16 : p | q << 16;
    indices = p == q ? 0 : p < q ? 0xFFFFFFFF : 0xAAAAAAAA;
}

// `lanes` blocks, with cut-outs those of three colours among them. A block is written every `stride` bytes.
template <bool cutOut>
void codeColours(Texels& t, Qov8u* dst, ptrdiff_t stride)
{
    separate<cutOut>(t);
    const Mask three = greater(all(16), t.count);
    const Floats parts = cutOut ? select(three, all(2), all(3)) : all(3);
    const Spread spread = spreadOf(t);

    const Places onAxis = placesOnAxis<cutOut>(t, principalAxis(spread), parts);
    const Ends ends = endsFor(t, onAxis, parts);
    const Match matched = match<cutOut, true>(t, ends, three);
    const Ends refinedEnds = endsFor(t, matched.places, parts);
    const Match rematched = match<cutOut, false>(t, refinedEnds, three);
    const Candidate best = better(candidate(ends, matched), candidate(refinedEnds, rematched));
    const ColourBlocks blocks = inFormat<cutOut>(t, best, three);

    Qov32u endsOf[lanes], indicesOf[lanes], texelOf[lanes];
    __builtin_memcpy(endsOf, &blocks.ends, sizeof endsOf);
    __builtin_memcpy(indicesOf, &blocks.indices, sizeof indicesOf);
    __builtin_memcpy(texelOf, &t.raw[0], sizeof texelOf);
    const Floats trace = spread.diagonal.r + spread.diagonal.g + spread.diagonal.b;
    Qov32u various = bitsOf(greater(trace, all(0)));
    if (cutOut) various |= bitsOf(three);
    for (int i = 0; i < lanes; i++) {
        if (!(various >> i & 1)) codeSolid(texelOf[i], endsOf[i], indicesOf[i]);
        Qov8u* block = dst + blockOfLane(i) * stride;
        __builtin_memcpy(block, endsOf + i, 4);
        __builtin_memcpy(block + 4, indicesOf + i, 4);
    }
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
