#include "jhuffdec.h"

#include "jhuffdec_block.h"
#include "jhuffdec_difference.h"
#include "jhuffdec_refine.h"
#include "zigzag.h"

namespace qov::QOV_LEVEL {
namespace {

const int blockLength = 64;

// What comes when a sequential block's bits have run dry.
QovStatus flatBlock(Qov16s* dst, const Qov16s* lastDC, int* marker, const HuffDecState* state)
{
    clearBlock(dst);
    dst[0] = *lastDC;
    const int eoi = 0xD9;
    if (!state->marker) *marker = eoi;
    return qovStsMarker;
}

// The AC coefficients of a sequential block of zeros (F.2.2.2). False: not a code, or too many coefficients.
inline bool takeCoefficients(BitReader& in, const HuffDecSpec* spec, Qov16s* dst)
{
    const int lastPlace = blockLength - 1;
    int k = 0; // the last place done
    for (;; in.refill()) {
        if (in.dry()) return true;
        Qov32u entry = 0;
        // As many windows as there are bits behind one for the difference, with 16 left for the last one's
        // code.
        for (int i = 0; i < (56 - HuffDecSpec::window - 16) / HuffDecSpec::window + 1; i++) {
            entry = look(in, spec);
            if (!valueOf(entry)) break;
            in.skip(lengthOf(entry));
            k += runEndOf(entry);
            if (k >= lastPlace) {
                if (k > lastPlace) return false;
                dst[lastPlace] = Qov16s(valueOf(entry));
                return true;
            }
            dst[zigzag[k]] = Qov16s(valueOf(entry));
        }
        if (valueOf(entry)) continue;

        const int symbol = takeSymbol(in, spec, entry), run = symbol >> 4, size = symbol & 15;
        if (symbol == noSymbol) return false;
        if (size == 0) {
            if (run < 15) return true; // any other run ends the block too (figure F.13)
            k += 16;
        } else {
            in.refill();
            k += run + 1;
            if (k > lastPlace) return false;
            dst[zigzag[k]] = Qov16s(in.takeValue(size));
        }
        if (k >= lastPlace) return k == lastPlace;
    }
}

QovStatus block(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, Qov16s* lastDC, int* marker,
                const HuffDecSpec* dc, const HuffDecSpec* ac, HuffDecState* state)
{
    BitReader in(src, srcLen, *pos, state, marker);
    if (in.dry()) return flatBlock(dst, lastDC, marker, state);
    clearBlock(dst);
    in.refill();
    int difference;
    QovStatus status = qovStsData;
    dst[0] = *lastDC;
    if (takeDifference(in, dc, maxSize, difference)) [[likely]] {
        dst[0] = Qov16s(*lastDC + difference);
        if (takeCoefficients(in, ac, dst)) status = qovStsNoErr;
        if (!in.dry()) *lastDC = dst[0];
    }
    if (in.dry()) {
        in.runDry(pos);
        return flatBlock(dst, lastDC, marker, state);
    }
    in.keep(pos);
    return status;
}

QovStatus one(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, int* marker, const HuffDecSpec* spec,
              HuffDecState* state)
{
    BitReader in(src, srcLen, *pos, state, marker);
    *dst = 0;
    if (in.dry()) return qovStsMarker;
    in.refill();
    int difference;
    const bool valid = takeDifference(in, spec, maxCategory, difference);
    if (in.dry()) return in.runDry(pos);
    in.keep(pos);
    if (!valid) return qovStsData;
    *dst = Qov16s(difference);
    return qovStsNoErr;
}

inline Qov16s shifted(int value, int al)
{
    return Qov16s(Qov32u(value) << al);
}

// G.1.2.1: the differences of DC values without their low bits.
QovStatus dcFirst(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, Qov16s* lastDC, int* marker, int al,
                  const HuffDecSpec* spec, HuffDecState* state)
{
    BitReader in(src, srcLen, *pos, state, marker);
    *dst = shifted(*lastDC, al);
    if (in.dry()) return qovStsMarker;
    in.refill();
    int difference;
    const bool valid = takeDifference(in, spec, maxSize, difference);
    if (in.dry()) return in.runDry(pos);
    in.keep(pos);
    if (!valid) return qovStsData;
    *lastDC = Qov16s(*lastDC + difference);
    *dst = shifted(*lastDC, al);
    return qovStsNoErr;
}

QovStatus dcRefine(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, int* marker, int al,
                   HuffDecState* state)
{
    BitReader in(src, srcLen, *pos, state, marker);
    if (in.dry()) return qovStsMarker;
    if (in.count == 0) in.refill();
    const Qov32u bit = in.take(1);
    if (in.dry()) return in.runDry(pos);
    in.keep(pos);
    *dst = Qov16s(*dst | Qov16s(bit << al));
    return qovStsNoErr;
}

// The blocks of an end-of-band run, this one included (G.1.2.2).
inline Qov32u takeEobRun(BitReader& in, int exponent)
{
    return (Qov32u(1) << exponent) + in.take(exponent);
}

// G.1.2.2. False: not a code, or a coefficient behind the band.
inline bool takeBand(BitReader& in, Qov16s* dst, int ss, int se, int al, const HuffDecSpec* spec)
{
    for (int k = ss - 1; k < se;) {
        in.refill();
        if (in.dry()) return true;
        const Qov32u entry = look(in, spec);
        int value = valueOf(entry);
        if (value) {
            in.skip(lengthOf(entry));
            k += runEndOf(entry);
        } else {
            const int symbol = takeSymbol(in, spec, entry), run = symbol >> 4, size = symbol & 15;
            if (symbol == noSymbol) return false;
            if (size == 0 && run < 15) {
                in.state->eobRun = takeEobRun(in, run) - 1;
                return true;
            }
            k += run + 1;
            if (size) value = in.takeValue(size);
        }
        if (k > se) return false;
        if (value) dst[zigzag[k]] = shifted(value, al);
    }
    return true;
}

QovStatus acFirst(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, int* marker, int ss, int se, int al,
                  const HuffDecSpec* spec, HuffDecState* state)
{
    BitReader in(src, srcLen, *pos, state, marker);
    if (in.dry()) return qovStsMarker;
    if (state->eobRun) {
        state->eobRun--;
        return qovStsNoErr;
    }
    Qov16s before[blockLength];
    copyBlock(dst, before);
    const bool valid = takeBand(in, dst, ss, se, al, spec);
    if (in.dry()) {
        copyBlock(before, dst);
        return in.runDry(pos);
    }
    in.keep(pos);
    return valid ? qovStsNoErr : qovStsData;
}

// What a refining pass does to a block, in sets of places. Nothing is done before all is read.
struct Refinement {
    Qov64u passed = 0, corrections = 0; // coefficients; a bit for each, that of the last one lowest
    Qov64u placed = 0, negative = 0;    // new coefficients; those of them below zero

    // One bit for each of these coefficients, the next ones of the block.
    inline void takeCorrections(BitReader& in, Qov64u coefficients)
    {
        const int n = sizeOf(coefficients);
        passed |= coefficients;
        corrections = corrections << n | in.takeMany(n);
    }

    inline void apply(Qov16s* dst, int al) const
    {
        Qov64u bits = corrections;
        for (Qov64u set = passed; set; set &= set - 1, bits >>= 1) {
            Qov16s* coefficient = dst + zigzag[lastOf(set)];
            const int sign = *coefficient >> 15, growth = int(bits & 1) << al;
            *coefficient = Qov16s(*coefficient + ((growth ^ sign) - sign)); // away from zero
        }
        for (Qov64u set = placed; set; set &= set - 1)
            dst[zigzag[lastOf(set)]] = shifted(negative & set & (0 - set) ? -1 : 1, al);
    }
};

// G.1.2.3, of a block with coefficients at `nonZero`. False: not a code, a size above 1, or a run past the
// band.
inline bool takeRefinement(BitReader& in, Qov64u nonZero, int ss, int se, const HuffDecSpec* spec,
                           Refinement& r)
{
    HuffDecState* state = in.state;
    Qov64u rest = places(ss, se);
    while (rest && state->eobRun == 0) {
        in.refill();
        if (in.dry()) return true;
        const Qov32u entry = look(in, spec);
        int value = valueOf(entry), run;
        if (value) {
            in.skip(lengthOf(entry));
            run = runEndOf(entry) - 1;
        } else {
            const int symbol = takeSymbol(in, spec, entry), size = symbol & 15;
            if (symbol == noSymbol) return false;
            run = symbol >> 4;
            if (size == 0 && run < 15) {
                state->eobRun = takeEobRun(in, run);
                break;
            }
            if (size) value = in.takeValue(size);
        }
        if (value < -1 || value > 1) return false;

        const Qov64u zeros = rest & ~nonZero;
        if (run >= sizeOf(zeros)) { // it passes all coefficients first, and may run dry there
            r.takeCorrections(in, nonZero & rest);
            return false;
        }
        const Qov64u place = placeBehind(run, zeros);
        r.takeCorrections(in, nonZero & rest & (0 - place));
        if (value) r.placed |= place;
        if (value < 0) r.negative |= place;
        rest &= place - 1;
    }
    if (rest) {
        in.refill();
        r.takeCorrections(in, nonZero & rest);
        state->eobRun--;
    }
    return true;
}

QovStatus acRefine(const Qov8u* src, int srcLen, int* pos, Qov16s* dst, int* marker, int ss, int se, int al,
                   const HuffDecSpec* spec, HuffDecState* state)
{
    BitReader in(src, srcLen, *pos, state, marker);
    if (in.dry()) return qovStsMarker;
    const Qov64u nonZero = nonZeroPlaces(dst) & places(ss, se);
    if (state->eobRun && !nonZero) {
        state->eobRun--;
        return qovStsNoErr;
    }
    Refinement refinement;
    const bool valid = takeRefinement(in, nonZero, ss, se, spec, refinement);
    if (in.dry()) return in.runDry(pos);
    in.keep(pos);
    refinement.apply(dst, al);
    return valid ? qovStsNoErr : qovStsData;
}

} // namespace

const HuffDecKernels huffDecKernels = {block, one, dcFirst, dcRefine, acFirst, acRefine};

} // namespace qov::QOV_LEVEL
