// The three coding passes over a bit plane (ITU-T T.800, D.3), as the decoder runs them. Each is a function
// of its own: together they have too many values for the registers.
#ifndef QOV_KERNELS_CODEBLOCKDEC_PASSES_H
#define QOV_KERNELS_CODEBLOCKDEC_PASSES_H

#include "codeblock_passes.h"
#include "codeblockdec.h"
#include "codeblockdec_mq.h"

namespace qov {
namespace {

struct DecodedBlock {
    DecodeCBUnit* units; // they have no border
    int columns, stripes;
    QoviSize size;
    LooseWord* dst;
    ptrdiff_t step;
    const Qov8u* zeroLabels;
    bool causal;
    bool middle;          // a value is in the middle of what is known
    ptrdiff_t places[64]; // from a unit's first sample in the destination, by its bit in a word with border
    ptrdiff_t rows[4];    // likewise, by the row
};

QOV_INLINE Qov32u samplesOfWord(Qov64u word)
{
#if defined __BMI2__
    return Qov32u(_pext_u64(word, ownSamples));
#else
    word >>= columnBits + 1;
    word = (word & 0x00F00F00F00F) | (word >> 2 & 0x0F00F00F00F0);
    word = (word & 0xFF0000FF) | (word >> 4 & 0xFF0000FF00);
    return Qov32u((word & 0xFFFF) | (word >> 8 & 0xFFFF0000));
#endif
}

// A 32-bit word of the unit in the middle and of those around it, from left to right.
struct UnitsAround {
    Qov32u above[3], own[3], below[3];

    QOV_INLINE_MEMBER Qov64u word() const
    {
        const Qov64u corners = above[0] >> 31 | Qov64u(above[2] & 8) << 51 | (below[0] >> 28 & 1) << 5 |
                               Qov64u(below[2] & 1) << 59;
        const Qov64u sides = own[0] >> 28 << 1 | Qov64u(own[2] & 15) << 55;
        return placeSamples(own[1]) | (placeSamples(above[1] & 0x88888888) >> 4) |
               placeSamples(below[1] & 0x11111111) << 4 | corners | sides;
    }
};

// A unit on its way through a pass.
struct UnitVisit {
    DecodeCBUnit* unit;
    LooseWord* dst;
    Qov64u own;                        // the samples of the block in this unit
    const DecodeCBUnit *above, *below; // at the unit's column; rows of zeros at the block's edges
    bool hasLeft, hasRight;

    template <LooseWord DecodeCBUnit::*Word>
    QOV_INLINE_MEMBER UnitsAround around() const
    {
        UnitsAround units;
        units.above[1] = (above->*Word).value;
        units.own[1] = (unit->*Word).value;
        units.below[1] = (below->*Word).value;
        units.above[0] = hasLeft ? (above[-1].*Word).value : 0;
        units.own[0] = hasLeft ? (unit[-1].*Word).value : 0;
        units.below[0] = hasLeft ? (below[-1].*Word).value : 0;
        units.above[2] = hasRight ? (above[1].*Word).value : 0;
        units.own[2] = hasRight ? (unit[1].*Word).value : 0;
        units.below[2] = hasRight ? (below[1].*Word).value : 0;
        return units;
    }
};

const DecodeCBUnit noUnits[DecodeCBState::longestSide / DecodeCBState::unitColumns] = {};

template <class Visit>
QOV_INLINE void forEachUnit(const DecodedBlock& block, Visit visit)
{
    for (int stripe = 0; stripe < block.stripes; stripe++) {
        UnitVisit at;
        at.unit = block.units + stripe * block.columns;
        at.above = stripe ? at.unit - block.columns : noUnits;
        at.below = stripe + 1 < block.stripes && !block.causal ? at.unit + block.columns : noUnits;
        at.dst = atByte(block.dst, stripe * 4 * block.step);
        const int height = block.size.height - stripe * 4;
        const Qov64u rows = topRow * bitsBelow(height < 4 ? height : 4);
        for (int column = 0; column < block.columns; column++) {
            at.hasLeft = column > 0;
            at.hasRight = column + 1 < block.columns;
            const int width = block.size.width - column * 8;
            at.own = rows & ownSamples & bitsBelow(columnBits * ((width < 8 ? width : 8) + 1));
            visit(at);
            at.unit++, at.above++, at.below++;
            at.dst += 8;
        }
    }
}

// The values of samples that become significant in a plane, without their sign.
QOV_INLINE Qov32u freshValue(const DecodedBlock& block, int plane)
{
    const Qov32u bit = Qov32u(1) << plane;
    return block.middle ? bit | bit >> 1 : bit;
}

// What a refinement changes in a value. The middle was told by the bit of the plane.
struct Refinement {
    Qov32u change[2];
};
QOV_INLINE Refinement refinement(const DecodedBlock& block, int plane)
{
    const Qov32u bit = Qov32u(1) << plane;
    return block.middle ? Refinement{{bit | bit >> 1, bit >> 1}} : Refinement{{0, bit}};
}

template <class Coder>
QOV_INLINE Qov32u decodeSign(Coder& coder, Qov64u significant, Qov64u signs, int at)
{
    if constexpr (Coder::raw) {
        return coder.get();
    } else {
        const Qov32u known = crossing(significant >> (at - centre));
        const Qov32u label = signContexts.label[known | crossing(signs >> (at - centre)) << 4];
        return coder.decode(label & 0x7F) ^ label >> 7;
    }
}

// D.3.1.
template <class Coder>
__attribute__((noinline)) void decodeSignificance(const DecodedBlock& block, Coder& registers, int plane)
{
    Coder coder = registers;
    const Qov8u* zeroLabels = block.zeroLabels;
    const Qov32u value = freshValue(block, plane);
    forEachUnit(
        block, [&](const UnitVisit& visit) __attribute__((always_inline)) {
            const UnitsAround units = visit.around<&DecodeCBUnit::significant>();
            Qov64u significant = units.word();
            const Qov64u candidates = visit.own & ~significant;
            Qov64u left = neighboursOf(significant) & candidates, visited = left;
            if (!left) {
                visit.unit->visited.value = 0;
                return;
            }
            Qov64u signs = visit.around<&DecodeCBUnit::signs>().word();
            const Qov64u before = significant;
            do {
                const int at = lowestBit(left);
                left &= left - 1;
                Qov32u bit;
                if constexpr (Coder::raw)
                    bit = coder.get();
                else
                    bit = coder.decode(zeroLabels[neighbourhood(significant >> (at - centre))]);
                if (!bit) continue;
                const Qov32u sign = decodeSign(coder, significant, signs, at);
                atByte(visit.dst, block.places[at])->value = value | sign << 31;
                significant |= Qov64u(1) << at;
                signs |= Qov64u(sign) << at;
                const Qov64u reached = behind << (at - centre) & candidates;
                left |= reached;
                visited |= reached;
            } while (left);
            visit.unit->visited.value = samplesOfWord(visited);
            if (significant == before) return;
            visit.unit->significant.value = samplesOfWord(significant);
            visit.unit->signs.value = samplesOfWord(signs);
        });
    registers = coder;
}

// D.3.3.
template <class Coder>
__attribute__((noinline)) void decodeRefinement(const DecodedBlock& block, Coder& registers, int plane)
{
    Coder coder = registers;
    const Refinement refine = refinement(block, plane);
    forEachUnit(
        block, [&](const UnitVisit& visit) __attribute__((always_inline)) {
            const Qov32u members = visit.unit->significant.value & ~visit.unit->visited.value;
            if (!members) return;
            const Qov32u refined = visit.unit->refined.value;
            const auto refineAll = [&](auto decodeBit) __attribute__((always_inline))
            {
                for (Qov32u left = members; left; left &= left - 1) {
                    const int at = __builtin_ctz(left);
                    atByte(visit.dst + (at >> 2), block.rows[at & 3])->value ^= refine.change[decodeBit(at)];
                }
            };
            if constexpr (Coder::raw) {
                refineAll([&](int) __attribute__((always_inline)) { return coder.get(); });
            } else if (members & ~refined) {
                const Qov32u touched =
                    samplesOfWord(neighboursOf(visit.around<&DecodeCBUnit::significant>().word()));
                refineAll([&](int at) __attribute__((always_inline)) {
                    return coder.decode(refinementContext + ((refined >> at & 1) ? 2 : touched >> at & 1));
                });
            } else {
                Qov32u context = coder.contexts[refinementContext + 2];
                refineAll([&](int) __attribute__((always_inline)) { return coder.decodeWith(context); });
                coder.contexts[refinementContext + 2] = context;
            }
            visit.unit->refined.value = refined | members;
        });
    registers = coder;
}

// D.3.4. Answers whether the segmentation symbol, if there is one, is as it must be.
__attribute__((noinline)) bool decodeCleanup(const DecodedBlock& block, MqDecoder& registers, int plane,
                                             bool segmentationSymbol)
{
    MqDecoder coder = registers;
    const Qov8u* zeroLabels = block.zeroLabels;
    const Qov32u value = freshValue(block, plane);
    forEachUnit(
        block, [&](const UnitVisit& visit) __attribute__((always_inline)) {
            Qov64u significant = visit.around<&DecodeCBUnit::significant>().word();
            const Qov64u members = visit.own & ~significant & ~placeSamples(visit.unit->visited.value);
            if (!members) return;
            // Row 0 of the columns of four that have nothing significant around them: coded as runs.
            Qov64u runs = quietColumns(significant) & visit.own & visit.own >> 3;
            Qov64u left = members & ~(runs * 14);
            Qov64u signs = visit.around<&DecodeCBUnit::signs>().word();
            const Qov64u before = significant;
            while (left) {
                int at = lowestBit(left);
                left &= left - 1;
                if (runs >> at & 1) {
                    if (!coder.decodeRare(runContext)) continue;
                    Qov32u run = coder.decode(uniformContext) << 1;
                    run |= coder.decode(uniformContext);
                    left |= (Qov64u(14) << run & 15) << at;
                    at += int(run);
                } else if (!coder.decode(zeroLabels[neighbourhood(significant >> (at - centre))])) {
                    continue;
                }
                const Qov32u sign = decodeSign(coder, significant, signs, at);
                atByte(visit.dst, block.places[at])->value = value | sign << 31;
                significant |= Qov64u(1) << at;
                signs |= Qov64u(sign) << at;
                // The next column, whose row 0 is 3 to 6 bits on, is no run any more.
                const Qov64u ended = runs & Qov64u(15) << (at + 3);
                runs ^= ended;
                left |= ended * 15;
            }
            if (significant == before) return;
            visit.unit->significant.value = samplesOfWord(significant);
            visit.unit->signs.value = samplesOfWord(signs);
        });
    Qov32u symbol = 0;
    for (int i = 0; segmentationSymbol && i < 4; i++) symbol = symbol << 1 | coder.decode(uniformContext);
    registers = coder;
    return !segmentationSymbol || symbol == 10;
}

} // namespace
} // namespace qov

#endif
