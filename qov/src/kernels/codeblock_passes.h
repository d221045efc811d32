// The three coding passes over a bit plane (ITU-T T.800, D.3).
#ifndef QOV_KERNELS_CODEBLOCK_PASSES_H
#define QOV_KERNELS_CODEBLOCK_PASSES_H

#include "codeblock_mq.h"
#include "codeblock_units.h"

namespace qov {
namespace {

// Bits of a 3 by 3 neighbourhood in a unit's word, from the upper left one: all, those that the scan reaches
// behind the centre, the four beside the centre.
const Qov64u withCentre = 0x71C7, behind = 0x7100, cross = 0x2142;
const int centre = 7;

// The bits around bit `centre` of the word, as the tables of contexts take them.
QOV_INLINE Qov32u neighbourhood(Qov64u word)
{
#if defined __BMI2__
    return Qov32u(_pext_u64(word, withCentre));
#else
    return Qov32u((word & 7) | (word >> 3 & 0x38) | (word >> 6 & 0x1C0));
#endif
}
QOV_INLINE Qov32u crossing(Qov64u word)
{
#if defined __BMI2__
    return Qov32u(_pext_u64(word, cross));
#else
    return Qov32u((word >> 1 & 1) | (word >> 5 & 2) | (word >> 6 & 4) | (word >> 10 & 8));
#endif
}

// All samples of the unit with a set bit among the eight around them.
QOV_INLINE Qov64u neighboursOf(Qov64u word)
{
    const Qov64u vertical = word >> 1 | word << 1, column = vertical | word;
    return vertical | column >> columnBits | column << columnBits;
}

// Row 0 of the unit's columns with no set bit in them, beside them, above and below.
QOV_INLINE Qov64u quietColumns(Qov64u word)
{
    Qov64u any = word | word >> 1 | word >> 2;
    any |= any >> 3;
    any |= any >> columnBits | any << columnBits;
    return (~any & topRow >> 1) << 1;
}

template <class Coder>
QOV_INLINE void codeSign(Coder& coder, Qov64u significant, Qov64u signs, int at)
{
    const Qov32u sign = signs >> at & 1;
    if constexpr (Coder::raw) {
        coder.put(sign);
    } else {
        const Qov32u known = crossing(significant >> (at - centre));
        const Qov32u label = signContexts.label[known | crossing(signs >> (at - centre)) << 4];
        coder.code(label & 0x7F, sign ^ label >> 7);
    }
}

// What a pass did to the squared error. Newly significant samples: how many, and the sum of their magnitudes.
// Refined samples: how many, and the sum of |rest - 2^plane|, rest being the magnitude modulo 2^(plane + 1).
struct PassSum {
    Qov64s count, sum;
};

// Adds the magnitudes of `samples`, all bits of which from `plane` up are known: only that of the plane is
// set.
QOV_INLINE void addFresh(PassSum& total, const Qov64u* planes, int plane, int base, Qov64u samples)
{
    const Qov64s count = __builtin_popcountll(samples);
    total.count += count;
    total.sum += count << plane;
    for (int p = base; p < plane; p++)
        total.sum += Qov64s(__builtin_popcountll(planes[p - base] & samples)) << p;
}

QOV_INLINE void addRefined(PassSum& total, const Qov64u* planes, int plane, int base, Qov64u samples)
{
    const Qov64u upper = samples & planes[plane - base], lower = samples & ~upper;
    total.count += __builtin_popcountll(samples);
    total.sum += Qov64s(__builtin_popcountll(lower)) << plane;
    for (int p = base; p < plane; p++) {
        const Qov64u bits = planes[p - base];
        total.sum += Qov64s(__builtin_popcountll(bits & upper) - __builtin_popcountll(bits & lower)) << p;
    }
}

// Calls visit(unit, planes of the unit) for every unit in the order of the scan.
template <class Visit>
QOV_INLINE void forEachUnit(const Block& block, Visit visit)
{
    const Qov64u* planes = block.planes;
    for (int stripe = 0; stripe < block.stripes; stripe++) {
        CodeBlockUnit* unit = block.units + stripe * block.pitch;
        for (int column = 0; column < block.columns; column++, unit++, planes += block.stride)
            visit(unit, planes);
    }
}

// D.3.1.
template <class Coder>
PassSum codeSignificance(const Block& block, Coder& registers, int plane)
{
    Coder coder = registers;
    PassSum total = {0, 0};
    const Qov8u* zeroLabels = zeroContexts[block.subband].label;
    forEachUnit(
        block, [&](CodeBlockUnit * unit, const Qov64u* planes) __attribute__((always_inline)) {
            Qov64u significant = unit->significant;
            const Qov64u candidates = unit->own & ~significant;
            Qov64u left = neighboursOf(significant) & candidates, visited = left;
            unit->visited = 0;
            if (!left) return;
            const Qov64u bits = planes[plane - block.base], signs = unit->signs;
            do {
                const int at = lowestBit(left);
                left &= left - 1;
                const Qov32u bit = bits >> at & 1;
                if constexpr (Coder::raw)
                    coder.put(bit);
                else
                    coder.code(zeroLabels[neighbourhood(significant >> (at - centre))], bit);
                if (!bit) continue;
                codeSign(coder, significant, signs, at);
                significant |= Qov64u(1) << at;
                const Qov64u reached = behind << (at - centre) & candidates;
                left |= reached;
                visited |= reached;
            } while (left);
            unit->visited = visited;
            const Qov64u fresh = visited & bits;
            if (!fresh) return;
            spread<&CodeBlockUnit::significant>(unit, block.pitch, fresh, !block.causal);
            addFresh(total, planes, plane, block.base, fresh);
        });
    registers = coder;
    return total;
}

// Calls visit with one bit of each word for every sample, in the order of the scan.
template <class Visit>
QOV_INLINE void forEachSample(Qov64u samples, Qov64u a, Qov64u b, Qov64u c, Visit visit)
{
#if defined __BMI2__
    a = _pext_u64(a, samples);
    b = _pext_u64(b, samples);
    c = _pext_u64(c, samples);
    for (int left = __builtin_popcountll(samples); left; left--, a >>= 1, b >>= 1, c >>= 1)
        visit(a & 1, b & 1, c & 1);
#else
    for (; samples; samples &= samples - 1) {
        const int at = lowestBit(samples);
        visit(a >> at & 1, b >> at & 1, c >> at & 1);
    }
#endif
}

// D.3.3.
template <class Coder>
PassSum codeRefinement(const Block& block, Coder& registers, int plane)
{
    Coder coder = registers;
    PassSum total = {0, 0};
    forEachUnit(
        block, [&](CodeBlockUnit * unit, const Qov64u* planes) __attribute__((always_inline)) {
            const Qov64u members = unit->significant & unit->own & ~unit->visited;
            if (!members) return;
            const Qov64u bits = planes[plane - block.base], refined = unit->refined;
            const Qov64u touched = neighboursOf(unit->significant);
            forEachSample(members, bits, refined, touched, [&](Qov32u bit, Qov32u again, Qov32u near) {
                if constexpr (Coder::raw)
                    coder.put(bit);
                else
                    coder.code(refinementContext + (again ? 2 : near), bit);
            });
            unit->refined = refined | members;
            addRefined(total, planes, plane, block.base, members);
        });
    registers = coder;
    return total;
}

// D.3.4. Units without a bit to come are the most frequent ones of high planes: a row of zeros.
inline PassSum codeCleanup(const Block& block, MqCoder& registers, int plane, bool segmentationSymbol)
{
    MqCoder coder = registers;
    PassSum total = {0, 0};
    const Qov8u* zeroLabels = zeroContexts[block.subband].label;
    forEachUnit(
        block, [&](CodeBlockUnit * unit, const Qov64u* planes) __attribute__((always_inline)) {
            Qov64u significant = unit->significant;
            const Qov64u members = unit->own & ~significant & ~unit->visited;
            if (!members) return;
            const Qov64u bits = planes[plane - block.base], signs = unit->signs;
            // Row 0 of the columns of four that have nothing significant around them: coded as runs.
            Qov64u runs = quietColumns(significant) & unit->own & unit->own >> 3;
            Qov64u left = members & ~(runs * 14);
            if (left == runs && !(bits & members)) {
                coder.codeZeros(runContext, __builtin_popcountll(runs));
                return;
            }
            while (left) {
                int at = lowestBit(left);
                left &= left - 1;
                if (runs >> at & 1) {
                    const Qov32u column = bits >> at & 15;
                    coder.code(runContext, column != 0);
                    if (!column) continue;
                    const Qov32u run = Qov32u(__builtin_ctz(column));
                    coder.code(uniformContext, run >> 1);
                    coder.code(uniformContext, run & 1);
                    left |= (Qov64u(14) << run & 15) << at;
                    at += int(run);
                } else {
                    const Qov32u bit = bits >> at & 1;
                    coder.code(zeroLabels[neighbourhood(significant >> (at - centre))], bit);
                    if (!bit) continue;
                }
                codeSign(coder, significant, signs, at);
                significant |= Qov64u(1) << at;
                // The next column, whose row 0 is 3 to 6 bits on, is no run any more.
                const Qov64u ended = runs & Qov64u(15) << (at + 3);
                runs ^= ended;
                left |= ended * 15;
            }
            const Qov64u fresh = members & bits;
            if (!fresh) return;
            spread<&CodeBlockUnit::significant>(unit, block.pitch, fresh, !block.causal);
            addFresh(total, planes, plane, block.base, fresh);
        });
    if (segmentationSymbol)
        for (int i = 0; i < 4; i++) coder.code(uniformContext, ~i & 1);
    registers = coder;
    return total;
}

} // namespace
} // namespace qov

#endif
