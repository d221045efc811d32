// The coding of a list of levels (ITU-T T.832, 8.7.18.5, table 72).
#ifndef QOV_KERNELS_XRCODER_ENCODE_H
#define QOV_KERNELS_XRCODER_ENCODE_H

#include "xrcoder_bits.h"
#include "xrcoder_codes.h"
#include "xrcoder_levels.h"

namespace qov {
namespace {

// Writes values whose changes go to one index table and one level table.
struct ValueWriter {
    BitWriter out;
    Qov32u changes; // as those of ValueCode

    // Codes a value, with what stands before it: the zeros, or all of a first value but the level. At most 57
    // bits: 7 + 5 + 1 + 44, or 8 + 1 + 44.
    QOV_INLINE_MEMBER void put(Qov32u before, Qov32u beforeLength, const ValueCodes& codes, Qov32u coded)
    {
        const Qov32u level = coded >> 1;
        Qov32u f = 0, low = 0, row = level;
        if (level >= Qov32u(firstEscape)) {
            const Qov32u m = level - 2;
            f = 31 - Qov32u(__builtin_clz(m));
            low = m ^ 1u << f;
            row = Qov32u(escapeRow) + f;
        }
        const ValueCode code = codes.row[row];
        const Qov32u length = code.length() + f;
        Qov64u bits = (code.bits() | Qov64u(coded & 1) << code.signPlace()) << f | low;
        bits |= Qov64u(before) << length;
        changes += code.changes();
        out.put(bits, length + beforeLength);
    }
    QOV_INLINE_MEMBER void put(Code before, const ValueCodes& codes, Qov32u coded)
    {
        put(before.bits, before.length, codes, coded);
    }

    // Adds the changes up to here to the tables that they belong to.
    QOV_INLINE_MEMBER void settle(XrTableSet* set, int index, int level)
    {
        addChanges(set, index, changes);
        const Qov32s ofIndex = Qov16s(changes);
        const Qov8s ofLevel = Qov8s((changes - Qov32u(ofIndex)) >> 16);
        addChanges(set, level, packChanges(ofLevel, ofLevel));
        changes = 0;
    }
};

// Codes a list of at least one value, whose places are first to 15.
__attribute__((noinline)) void encodeLevels(const Levels& levels, int first, XrTableSet* set, int chroma,
                                            Qov8u** dst, int* bit)
{
    ValueWriter writer = {BitWriter(*dst, *bit), 0};
    const auto index = [&](int context) { return indexTable(chroma, context); };
    int place = __builtin_ctz(levels.places);
    const Follows afterFirst = levels.behind(place);
    const bool zeros = place > first, context = !zeros && afterFirst == valueFollows;

    const Qov32u coded = levels.at[place], table = set->table[firstTable(chroma)];
    const Qov32u symbol = Qov32u(!zeros) + 2 * Qov32u(coded > 3) + 4 * afterFirst;
    const Code code = firstCoding.code[table][symbol];
    addChanges(set, firstTable(chroma), firstCoding.changes[table][symbol]);
    writer.put(2u * code.bits + (coded & 1), code.length + 1u,
               valueCoding.first[set->table[levelTable(context)]], coded & ~1u);
    if (zeros) {
        const Code run = runCoding.code[first - 1][place];
        writer.out.put(run.bits, run.length);
    }

    // The next value, which is in context 0 behind its index symbol.
    const ValueCodes& last = valueCoding.last[set->table[levelTable(0)]];
    const auto& beforeLast = valueCoding.beforeLast[set->table[levelTable(0)]];
    const auto putNext = [&](const ValueCodes* codes) __attribute__((always_inline))
    {
        const int before = place;
        place += 1 + __builtin_ctz(levels.places >> place >> 1);
        const Follows next = levels.behind(place);
        const ValueCodes* const ofPlace = place < lastPlace - 1    ? &codes[next]
                                          : place == lastPlace - 1 ? &beforeLast[next]
                                                                   : &last;
        writer.put(runCoding.code[before][place], *ofPlace, levels.at[place]);
        return next;
    };
    Follows next = afterFirst;
    if (context) {
        // Context 1 lasts as long as one value follows another.
        const auto& codes = valueCoding.value[set->table[index(1)]][set->table[levelTable(1)]][valueFollows];
        const int end = place + __builtin_ctz(~(levels.places >> place)) - 1;
        while (++place < end && place < lastPlace - 1) writer.put({}, codes, levels.at[place]);
        if (place < end) {
            writer.put({}, valueCoding.beforeLast[set->table[levelTable(1)]][valueFollows], levels.at[place]);
            place++;
        }
        place--;
        writer.settle(set, index(1), levelTable(1));
        next = putNext(valueCoding.value[set->table[index(1)]][set->table[levelTable(0)]]);
        writer.settle(set, index(1), levelTable(0));
    }
    const ValueCodes* const codes = valueCoding.value[set->table[index(0)]][set->table[levelTable(0)]];
    while (next != nothingFollows) next = putNext(codes);
    writer.settle(set, index(0), levelTable(0));
    writer.out.finish(dst, bit);
}

} // namespace
} // namespace qov

#endif
