// The codes of JPEG XR coefficients, put together for the encoder.
#ifndef QOV_KERNELS_XRCODER_CODES_H
#define QOV_KERNELS_XRCODER_CODES_H

#include "xrcoder_adaptive.h"

namespace qov {
namespace {

// What a value is coded by, in one word: from the low end 24 bits of code, with 0 for the sign; its length;
// how many of the bits stand behind the sign; and 3 bytes of changes, two of the index table and one of the
// level table, which may be added up like those of packChanges. The f low bits of an escape follow.
struct ValueCode {
    Qov64u word;

    constexpr Qov64u bits() const { return word & 0xFFFFFF; }
    constexpr Qov32u length() const { return Qov32u(word >> 24) & 63; }
    constexpr Qov32u signPlace() const { return Qov32u(word >> 32) & 63; }
    constexpr Qov32u changes() const { return Qov32u(word >> 40); }
};

constexpr ValueCode makeValueCode(Code index, Code sign, Code level, int first, int second, int levelDelta)
{
    const Qov64u bits = (Qov64u(index.bits) << sign.length | sign.bits) << level.length | level.bits;
    const Qov64u length = Qov64u(index.length + sign.length + level.length);
    const Qov64u changes = Qov64u(first + second * 0x100 + levelDelta * 0x10000);
    return {bits | length << 24 | Qov64u(level.length) << 32 | changes << 40};
}

// By level up to 17, then by size of the escape.
const int escapeRow = firstEscape - smallestSize, rowCount = escapeRow + largestSize + 1;
struct ValueCodes {
    ValueCode row[rowCount];
};

struct ValueCoding {
    static constexpr int levels = printedLevel.tables;

    ValueCodes first[levels];                         // of a list's first value, but its index and sign
    ValueCodes value[printedIndex.tables][levels][3]; // by tables and what follows
    ValueCodes beforeLast[levels][2], last[levels];   // at the last two places
};

constexpr Code withSize(Code code, int f)
{
    if (f < firstLongSize) return longer(code, f - smallestSize, sizeBits);
    code = longer(code, firstLongSize - smallestSize, sizeBits);
    if (f < firstLongestSize) return longer(code, f - firstLongSize, longSizeBits);
    code = longer(code, firstLongestSize - firstLongSize, longSizeBits);
    return longer(code, f - firstLongestSize, longestSizeBits);
}

constexpr Code levelCode(int table, int row)
{
    if (row < 2) return {};
    int symbol = levelEscape;
    if (row < firstEscape) do
            symbol--;
        while (firstLevel[symbol] > row);
    const Code code = parseWord(printedLevel.words[symbol][table], symbol);
    return symbol == levelEscape ? withSize(code, row - escapeRow)
                                 : longer(code, row - firstLevel[symbol], levelExtraBits[symbol]);
}

constexpr ValueCoding makeValueCoding()
{
    ValueCoding coding = {};
    const Code sign = {0, 1, 0};
    for (int l = 0; l < ValueCoding::levels; l++)
        for (int r = 1; r < rowCount; r++) {
            const Code level = levelCode(l, r);
            const int big = r > 1, delta = big ? firstDelta(printedLevel, l, level.symbol) : 0;
            coding.first[l].row[r] = makeValueCode({}, {}, level, 0, 0, delta);
            for (int i = 0; i < printedIndex.tables; i++)
                for (int s = big; s < printedIndex.symbols; s += 2)
                    coding.value[i][l][s / 2].row[r] =
                        makeValueCode(parseWord(printedIndex.words[s][i], s), sign, level,
                                      firstDelta(printedIndex, i, s), secondDelta(printedIndex, i, s), delta);
            for (int s = big; s < printedIndexB.symbols; s += 2)
                coding.beforeLast[l][s / 2].row[r] =
                    makeValueCode(parseWord(printedIndexB.words[s][0], s), sign, level, 0, 0, delta);
            coding.last[l].row[r] =
                makeValueCode(parseWord(printedIndexLast.words[big][0], big), sign, level, 0, 0, delta);
        }
    return coding;
}

constexpr ValueCoding valueCoding = makeValueCoding();

struct FirstCoding {
    Code code[printedFirst.tables][printedFirst.symbols];
    Qov32u changes[printedFirst.tables][printedFirst.symbols];
};

constexpr FirstCoding makeFirstCoding()
{
    FirstCoding coding = {};
    for (int t = 0; t < printedFirst.tables; t++)
        for (int s = 0; s < printedFirst.symbols; s++) {
            coding.code[t][s] = parseWord(printedFirst.words[s][t], s);
            coding.changes[t][s] =
                packChanges(firstDelta(printedFirst, t, s), secondDelta(printedFirst, t, s));
        }
    return coding;
}

constexpr FirstCoding firstCoding = makeFirstCoding();

// Codes of the zeros between two places, of no length if there are none.
struct RunCoding {
    Code code[XrScan::places][XrScan::places];
};

constexpr RunCoding makeRunCoding()
{
    RunCoding coding = {};
    for (int before = 0; before < longestRun; before++)
        for (int run = 1; run <= longestRun - before; run++)
            coding.code[before][before + run + 1] = runCode(longestRun - before, run);
    return coding;
}

constexpr RunCoding runCoding = makeRunCoding();

} // namespace
} // namespace qov

#endif
