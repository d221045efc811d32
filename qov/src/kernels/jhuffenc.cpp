#include "jhuffenc_difference.h"
#include "jhuffenc_places.h"

namespace qov::QOV_LEVEL {
namespace {

const Qov32u endOfBlock = 0x00, zeroRun16 = 0xF0; // AC symbols

// In 64 bits; magnitude not 0.
QOV_INLINE Qov64u leadingZeros(Qov64u magnitude)
{
#if defined(__LZCNT__)
    return _lzcnt_u64(magnitude);
#else
    return Qov64u(__builtin_clzll(magnitude));
#endif
}

QOV_INLINE Difference fromLast(int value, Qov16s last)
{
    return Difference(Qov16s(value - last));
}

// What a pass over coefficients does with the symbols that it comes to: codes them,
struct Coder {
    BitWriter& out;
    const HuffEncSpec* spec;
    HuffEncState* state;

    QOV_INLINE_MEMBER void symbol(Qov32u symbol, Qov32u bits = 0, int size = 0)
    {
        out.putSymbol(spec, symbol, bits, Qov32u(size));
    }

    // Behind distance - 1 zeros. `bits` has the magnitude's bits, inverted of a negative one, at its low end.
    QOV_INLINE_MEMBER void coefficient(Qov64u distance, Qov64u magnitude, Qov64u bits, bool flush)
    {
        const Qov64u zeros = leadingZeros(magnitude);
        const HuffEncCode& code = spec->coefficients[distance * 16 + zeros - 64];
        const Qov64u value = code.bits | (bits & ~Qov64u(0) >> zeros);
        flush ? out.putAndFlush(value, code.length) : out.put(value, code.length);
    }

    // A coefficient that becomes non-zero, then the lowest bits of the magnitudes at the places `of`.
    QOV_INLINE_MEMBER void newCoefficient(int run, bool positive, Places odd, Places of)
    {
        correctedSymbol(Qov32u(run) << 4 | 1, positive, 1, odd, of);
    }
    QOV_INLINE_MEMBER void zeroRun(Places odd, Places of) { correctedSymbol(zeroRun16, 0, 0, odd, of); }

    QOV_INLINE_MEMBER void storedCorrections()
    {
        const int count = int(state->correctionCount);
        for (int i = 0; i < count; i += 24) {
            const Qov8u* p = state->corrections + i / 8;
            const Qov32u bits = Qov32u(p[0]) << 16 | Qov32u(p[1]) << 8 | p[2];
            const int length = count - i < 24 ? count - i : 24;
            out.put(bits >> (24 - length), Qov32u(length));
        }
    }

private:
    QOV_INLINE_MEMBER void correctedSymbol(Qov32u symbol, Qov64u value, Qov32u length, Places odd, Places of)
    {
        const Places bits = pick(odd, of);
        const Qov32u count = Qov32u(countOf(of));
        if (__builtin_expect(length + count > 15, false)) {
            const Qov32u low = count / 2;
            out.putSymbol(spec, symbol, value, length);
            out.put(bits >> low, count - low);
            out.put(bits & ~(~Places(0) << low), low);
        } else {
            out.putSymbol(spec, symbol, value << count | bits, length + count);
        }
    }
};

// or counts them.
struct Counter {
    int* counts;
    HuffEncState* state;

    QOV_INLINE_MEMBER void symbol(Qov32u symbol, Qov32u = 0, int = 0)
    {
        counts[symbol] = int(Qov32u(counts[symbol]) + 1);
    }
    QOV_INLINE_MEMBER void coefficient(Qov64u distance, Qov64u magnitude, Qov64u, bool)
    {
        const Qov64u size = 64 - leadingZeros(magnitude);
        if (size == 16) return; // the coding pass refuses it
        symbol(Qov32u(distance * 16 - 16 + size));
    }
    QOV_INLINE_MEMBER void newCoefficient(int run, bool, Places, Places) { symbol(Qov32u(run) << 4 | 1); }
    QOV_INLINE_MEMBER void zeroRun(Places, Places) { symbol(zeroRun16); }
    QOV_INLINE_MEMBER void storedCorrections() {}
};

// Walks over the coefficients at `places`, of which there are some, from behind place `last`; gives the last
// place it came to. Symbols are flushed three by three: they seldom need it sooner, so there is no branch to
// guess.
template <class Sink>
QOV_INLINE int walk(const Coefficients& block, Places places, int last, Sink& sink)
{
    Qov64u before = Qov32u(last);
    for (;;) {
#pragma GCC unroll 3
        for (int i = 0; i < 3; i++) {
            const Qov64u place = Qov32u(__builtin_ctzll(places));
            Qov64u distance = place - before;
            for (; __builtin_expect(distance > 16, false); distance -= 16) sink.symbol(zeroRun16);
            sink.coefficient(distance, block.magnitude(place), block.bits(place), i == 2);
            places &= places - 1;
            if (!places) return int(place);
            before = place;
        }
    }
}

QovStatus codeBlock(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, Qov16s* lastDC,
                    const HuffEncSpec* dc, const HuffEncSpec* ac, HuffEncState* state)
{
    const Difference difference = fromLast(src[0], *lastDC);
    if (difference.category > 15) return qovStsRange;
    *lastDC = src[0];
    return intoBuffer(dst, dstLen, pos, state, [&](BitWriter& out) {
        out.putSymbol(dc, Qov32u(difference.category), difference.bits(difference.category),
                      Qov32u(difference.category));
        Coder coder = {out, ac, state};
        const Coefficients block(src, 0);
        const Places places = block.nonZero() & ~Places(1);
        if (!places || walk(block, places, 0, coder) < 63) coder.symbol(endOfBlock);
    });
}

QovStatus codeOne(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, const HuffEncSpec* spec,
                  HuffEncState* state)
{
    return intoBuffer(dst, dstLen, pos, state, [&](BitWriter& out) { putDifference(out, spec, *src); });
}

QovStatus codeDCFirst(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, Qov16s* lastDC, int al,
                      const HuffEncSpec* spec, HuffEncState* state)
{
    const int value = src[0] >> al;
    const Difference difference = fromLast(value, *lastDC);
    if (difference.category > 15) return qovStsRange;
    *lastDC = Qov16s(value);
    return intoBuffer(dst, dstLen, pos, state, [&](BitWriter& out) {
        out.putSymbol(spec, Qov32u(difference.category), difference.bits(difference.category),
                      Qov32u(difference.category));
    });
}

QovStatus countDC(const Qov16s* src, int* counts, Qov16s* lastDC, int al)
{
    const int value = src[0] >> al;
    const Difference difference = fromLast(value, *lastDC);
    if (difference.category > 15) return qovStsRange;
    *lastDC = Qov16s(value);
    Counter{counts, nullptr}.symbol(Qov32u(difference.category));
    return qovStsNoErr;
}

QovStatus codeDCRefine(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, int al, HuffEncState* state)
{
    return intoBuffer(dst, dstLen, pos, state, [&](BitWriter& out) { out.put(Qov32u(src[0] >> al) & 1, 1); });
}

// Keeps correction bits with the run.
QOV_INLINE void storeCorrections(HuffEncState* state, Places odd, Places of)
{
    if (!of) return;
    Places bits = pick(odd, of);
    int count = countOf(of);
    bits <<= 64 - count;
    while (count > 0) { // at most 32 bits at a time, behind up to 7
        const int length = count < 32 ? count : 32;
        const int used = int(state->correctionCount % 8);
        Qov8u* p = state->corrections + state->correctionCount / 8;
        const Qov64u kept = Qov64u(*p) << 56 & ~(~Qov64u(0) >> used);
        storeBigEndian(p, kept | bits >> 32 << (32 - used));
        bits <<= 32;
        count -= length;
        state->correctionCount += Qov32u(length);
    }
}

// Writes the end-of-band run, if there is one (G.1.2.2).
template <class Sink>
QOV_INLINE void endRun(HuffEncState* state, Sink& sink)
{
    const Qov32u run = state->eobRun;
    if (run == 0) return;
    const int size = 31 - __builtin_clz(run);
    sink.symbol(Qov32u(size) << 4, lowBits(run, size), size);
    sink.storedCorrections();
    state->eobRun = 0;
    state->correctionCount = 0;
}

QOV_INLINE bool runIsLong(const HuffEncState* state)
{
    return state->eobRun == HuffEncState::longestRun ||
           state->correctionCount > HuffEncState::manyCorrections;
}

// Place k is bit k.
QOV_INLINE Places band(int ss, int se)
{
    return ~Places(0) << ss & ~Places(0) >> (63 - se);
}

template <class Sink>
QOV_INLINE void passFirst(const Coefficients& block, Places places, int ss, int se, HuffEncState* state,
                          Sink sink)
{
    endRun(state, sink);
    if (walk(block, places, ss - 1, sink) < se) state->eobRun = 1;
}

QovStatus writeRun(Qov8u* dst, int dstLen, int* pos, const HuffEncSpec* spec, HuffEncState* state)
{
    return intoBuffer(dst, dstLen, pos, state, [&](BitWriter& out) {
        Coder coder = {out, spec, state};
        endRun(state, coder);
    });
}

QovStatus codeACFirst(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, int ss, int se, int al,
                      const HuffEncSpec* spec, HuffEncState* state)
{
    const Coefficients block(src, al);
    const Places places = block.nonZero() & band(ss, se);
    if (!places) {
        state->eobRun++;
        return runIsLong(state) ? writeRun(dst, dstLen, pos, spec, state) : qovStsNoErr;
    }
    return intoBuffer(dst, dstLen, pos, state, [&](BitWriter& out) {
        passFirst(block, places, ss, se, state, Coder{out, spec, state});
    });
}

void countRun(int* counts, HuffEncState* state)
{
    Counter counter = {counts, state};
    endRun(state, counter);
}

void countACFirst(const Qov16s* src, int* counts, int ss, int se, int al, HuffEncState* state)
{
    const Coefficients block(src, al);
    const Places places = block.nonZero() & band(ss, se);
    if (!places) {
        state->eobRun++;
        if (runIsLong(state)) countRun(counts, state);
        return;
    }
    passFirst(block, places, ss, se, state, Counter{counts, state});
}

// The refining of a band (G.1.2.3, figure G.7); place k is bit 63 - k.
struct Refinement {
    RefinedPlaces places;
    Places rest; // the band, as far as it is not coded yet

    QOV_INLINE_MEMBER Refinement(const Qov16s* src, int ss, int se, int al)
        : places(refinedPlaces(src, al)), rest(~Places(0) >> ss & ~Places(0) << (63 - se))
    {
        places.ones &= rest;
        places.more &= rest;
    }
};

// A band without a coefficient that becomes non-zero: lengthens the run.
QOV_INLINE void lengthenRun(const Refinement& r, HuffEncState* state)
{
    state->eobRun++;
    storeCorrections(state, r.places.odd, r.places.more & r.rest);
}

template <class Sink>
QOV_INLINE void passRefine(Refinement& r, HuffEncState* state, Sink sink)
{
    endRun(state, sink);
    for (Places ones = r.places.ones; ones;) {
        const Places one = Places(1) << (63 - __builtin_clzll(ones));
        Places stretch = r.rest & (0 - one) & ~one; // before it
        Places zeros = stretch & ~r.places.more;
        int run = countOf(zeros);
        for (; run > 15; run -= 16) {
            for (int i = 0; i < 15; i++) zeros ^= Places(1) << (63 - __builtin_clzll(zeros));
            const Places last = Places(1) << (63 - __builtin_clzll(zeros));
            zeros ^= last;
            sink.zeroRun(r.places.odd, r.places.more & stretch & (0 - last));
            stretch &= last - 1;
        }
        sink.newCoefficient(run, (r.places.negative & one) == 0, r.places.odd, r.places.more & stretch);
        r.rest &= one - 1;
        ones ^= one;
    }
    if (r.rest) lengthenRun(r, state);
}

QovStatus codeACRefine(const Qov16s* src, Qov8u* dst, int dstLen, int* pos, int ss, int se, int al,
                       const HuffEncSpec* spec, HuffEncState* state)
{
    Refinement r(src, ss, se, al);
    if (!r.places.ones) {
        lengthenRun(r, state);
        return runIsLong(state) ? writeRun(dst, dstLen, pos, spec, state) : qovStsNoErr;
    }
    return intoBuffer(dst, dstLen, pos, state, [&](BitWriter& out) {
        passRefine(r, state, Coder{out, spec, state});
    });
}

void countACRefine(const Qov16s* src, int* counts, int ss, int se, int al, HuffEncState* state)
{
    Refinement r(src, ss, se, al);
    if (!r.places.ones) {
        lengthenRun(r, state);
        if (runIsLong(state)) countRun(counts, state);
        return;
    }
    passRefine(r, state, Counter{counts, state});
}

// The run, then ones up to the end of the byte.
QovStatus flush(Qov8u* dst, int dstLen, int* pos, const HuffEncSpec* ac, HuffEncState* state)
{
    const QovStatus status = intoBuffer(dst, dstLen, pos, state, [&](BitWriter& out) {
        Coder coder = {out, ac, state};
        endRun(state, coder);
        out.flush();
        if (out.count) out.put(0xFFu >> out.count, 8 - out.count);
    });
    if (status == qovStsNoErr) state->bits = 0;
    return status;
}

} // namespace

const HuffEncKernels huffEncKernels = {codeBlock,    codeOne,       codeDCFirst, codeDCRefine,
                                       codeACFirst,  codeACRefine,  flush,       countDC,
                                       countACFirst, countACRefine, countRun};

} // namespace qov::QOV_LEVEL
