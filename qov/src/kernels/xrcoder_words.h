// The codes of JPEG XR coefficients as printed (ITU-T T.832, tables 52, 80 to 82 and 8.7.18.6), and what each
// symbol adds to the discriminants (tables 86 to 88).
#ifndef QOV_KERNELS_XRCODER_WORDS_H
#define QOV_KERNELS_XRCODER_WORDS_H

#include "xrcoder.h"

namespace qov {
namespace {

// An index symbol is `big` (the level is above 1) + 2 * what follows; that of a list's first value is 4 *
// what follows + 2 * big + (no zeros before it).
enum Follows : Qov32u { nothingFollows, valueFollows, zerosFollow };

// Words by symbol and table. Deltas by row and symbol: row t compares table t with table t + 1.
template <int symbolCount, int tableCount>
struct PrintedCode {
    static constexpr int symbols = symbolCount, tables = tableCount;

    const char* words[symbolCount][tableCount];
    int deltas[tableCount > 1 ? tableCount - 1 : 1][symbolCount];
};

constexpr PrintedCode<12, 5> printedFirst = {{{"00001", "0010", "11", "001", "010"},
                                              {"000001", "00010", "001", "11", "1"},
                                              {"0000000", "000000", "0000000", "0000000", "0000001"},
                                              {"0000001", "000001", "0000001", "00001", "0001"},
                                              {"00100", "0011", "00001", "00010", "0000010"},
                                              {"010", "010", "010", "010", "011"},
                                              {"00101", "00011", "0000010", "0000001", "00000000"},
                                              {"1", "11", "011", "011", "0010"},
                                              {"00110", "011", "100", "00011", "0000011"},
                                              {"0001", "100", "101", "100", "0011"},
                                              {"00111", "00001", "0000011", "000001", "00000001"},
                                              {"011", "101", "0001", "101", "00001"}},
                                             {{1, 1, 1, 1, 1, 0, 0, -1, 2, 1, 0, 0},
                                              {2, 2, -1, -1, -1, 0, -2, -1, 0, 0, -2, -1},
                                              {-1, 1, 0, 2, 0, 0, 0, 0, -2, 0, 1, 1},
                                              {0, 1, 0, 1, -2, 0, -1, -1, -2, -1, -2, -2}}};

constexpr PrintedCode<6, 4> printedIndex = {
    {{"1", "01", "0000", "00000"},
     {"00000", "0000", "0001", "00001"},
     {"001", "10", "01", "01"},
     {"00001", "0001", "10", "1"},
     {"01", "11", "11", "0001"},
     {"0001", "001", "001", "001"}},
    {{-1, 1, 1, 1, 0, 1}, {-2, 0, 0, 2, 0, 0}, {-1, -1, 0, 1, -2, 0}}};

// Of the last place but one, and of the last one; they never adapt.
constexpr PrintedCode<4, 1> printedIndexB = {{{"0"}, {"110"}, {"10"}, {"111"}}, {}};
constexpr PrintedCode<2, 1> printedIndexLast = {{{"0"}, {"1"}}, {}};

constexpr PrintedCode<7, 2> printedLevel = {{{"01", "1"},
                                             {"10", "01"},
                                             {"11", "001"},
                                             {"001", "0001"},
                                             {"0001", "00001"},
                                             {"00000", "000000"},
                                             {"00001", "000001"}},
                                            {{1, 0, -1, -1, -1, -1, -1}}};
constexpr Qov8u firstLevel[] = {2, 3, 4, 6, 10, 14}, levelExtraBits[] = {0, 0, 1, 2, 2, 2};
const int levelEscape = 6, firstEscape = 18;

// Runs up to a maximum m: to 4 by words of their own, above by an index, whose runs go on for extra bits.
constexpr const char* runWords[5][4] = {{}, {""}, {"1", "0"}, {"1", "01", "00"}, {"1", "01", "001", "000"}};
constexpr const char* runIndexWords[5] = {"1", "01", "001", "0000", "0001"};
struct RunIndex {
    Qov8u first, extraBits;
};
constexpr RunIndex runIndices[3][5] = {{{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 1}},  // m = 5, 6
                                       {{1, 0}, {2, 0}, {3, 1}, {5, 1}, {7, 2}},  // 7 to 10
                                       {{1, 0}, {2, 0}, {3, 1}, {5, 1}, {7, 3}}}; // 11 to 14
const int longestRun = 14;

// The first discriminant of table t goes by the row of the table below and t, the second one by that of t and
// the table above. The outermost tables have one neighbour, whose row serves for both.
template <class Printed>
constexpr int firstDelta(const Printed& printed, int table, int symbol)
{
    return printed.deltas[table > 0 ? table - 1 : 0][symbol];
}
template <class Printed>
constexpr int secondDelta(const Printed& printed, int table, int symbol)
{
    return table < Printed::tables - 1 ? printed.deltas[table][symbol] : firstDelta(printed, table, symbol);
}

struct Code {
    Qov16u bits;
    Qov8u length, symbol;
};

constexpr Code parseWord(const char* word, int symbol)
{
    Code code = {0, 0, Qov8u(symbol)};
    for (; *word; word++, code.length++) code.bits = Qov16u(code.bits << 1 | (*word - '0'));
    return code;
}

// With the low `count` bits of `value` behind it.
constexpr Code longer(Code code, int value, int count)
{
    return {Qov16u(code.bits << count | value), Qov8u(code.length + count), code.symbol};
}

// Of a run from 1 to the maximum.
constexpr Code runCode(int maximum, int run)
{
    if (maximum <= 4) return parseWord(runWords[maximum][run - 1], run);
    const RunIndex* const indices = runIndices[maximum > 10 ? 2 : maximum > 6 ? 1 : 0];
    int i = 0;
    while (run >= indices[i].first + (1 << indices[i].extraBits)) i++;
    return longer(parseWord(runIndexWords[i], run), run - indices[i].first, indices[i].extraBits);
}

// The size f of an escape is the place of the top bit of level - 2, 4 to 29. Behind the word stand 4 bits of
// it or more, and then the f bits below the top one (8.7.13).
const int smallestSize = 4, largestSize = 29, sizeBits = 4;
const int firstLongSize = 19, longSizeBits = 2, firstLongestSize = 22, longestSizeBits = 3;

} // namespace
} // namespace qov

#endif
