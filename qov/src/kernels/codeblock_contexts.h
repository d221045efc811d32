// The tables of the block coder: context labels (ITU-T T.800, D.3, tables D.1 to D.4) by the bits around a
// sample, and the states of the MQ coder (table C.2).
#ifndef QOV_KERNELS_CODEBLOCK_CONTEXTS_H
#define QOV_KERNELS_CODEBLOCK_CONTEXTS_H

#include "codeblock.h"

namespace qov {
namespace {

// Contexts of zero coding are 0 to 8, of signs 9 to 13.
const Qov32u refinementContext = 14, runContext = 17, uniformContext = 18;
const int contextCount = 19;

// A context's state is one word: Qe in bits 0 to 15, the index of the state behind a more probable symbol
// from bit 16, behind a less probable one from bit 23, the more probable symbol in bit 31. The index is 2 *
// (that of the standard) + the more probable symbol.
struct MqStates {
    static const int count = 47;
    Qov32u word[2 * count];
};

constexpr MqStates makeMqStates()
{
    struct Row {
        Qov32u qe, nextMore, nextLess, change;
    };
    constexpr Row rows[MqStates::count] = {
        {0x5601, 1, 1, 1},   {0x3401, 2, 6, 0},   {0x1801, 3, 9, 0},   {0x0AC1, 4, 12, 0},
        {0x0521, 5, 29, 0},  {0x0221, 38, 33, 0}, {0x5601, 7, 6, 1},   {0x5401, 8, 14, 0},
        {0x4801, 9, 14, 0},  {0x3801, 10, 14, 0}, {0x3001, 11, 17, 0}, {0x2401, 12, 18, 0},
        {0x1C01, 13, 20, 0}, {0x1601, 29, 21, 0}, {0x5601, 15, 14, 1}, {0x5401, 16, 14, 0},
        {0x5101, 17, 15, 0}, {0x4801, 18, 16, 0}, {0x3801, 19, 17, 0}, {0x3401, 20, 18, 0},
        {0x3001, 21, 19, 0}, {0x2801, 22, 19, 0}, {0x2401, 23, 20, 0}, {0x2201, 24, 21, 0},
        {0x1C01, 25, 22, 0}, {0x1801, 26, 23, 0}, {0x1601, 27, 24, 0}, {0x1401, 28, 25, 0},
        {0x1201, 29, 26, 0}, {0x1101, 30, 27, 0}, {0x0AC1, 31, 28, 0}, {0x09C1, 32, 29, 0},
        {0x08A1, 33, 30, 0}, {0x0521, 34, 31, 0}, {0x0441, 35, 32, 0}, {0x02A1, 36, 33, 0},
        {0x0221, 37, 34, 0}, {0x0141, 38, 35, 0}, {0x0111, 39, 36, 0}, {0x0085, 40, 37, 0},
        {0x0049, 41, 38, 0}, {0x0025, 42, 39, 0}, {0x0015, 43, 40, 0}, {0x0009, 44, 41, 0},
        {0x0005, 45, 42, 0}, {0x0001, 45, 43, 0}, {0x5601, 46, 46, 0},
    };
    MqStates states = {};
    for (Qov32u i = 0; i < MqStates::count; i++)
        for (Qov32u more = 0; more < 2; more++) {
            const Row& row = rows[i];
            states.word[2 * i + more] = row.qe | more << 31 | (2 * row.nextMore + more) << 16 |
                                        (2 * row.nextLess + (more ^ row.change)) << 23;
        }
    return states;
}

constexpr MqStates mqStates = makeMqStates();

// Table D.7.
QOV_INLINE void resetContexts(Qov32u* contexts)
{
    for (int i = 0; i < contextCount; i++) contexts[i] = mqStates.word[0];
    contexts[0] = mqStates.word[2 * 4];
    contexts[runContext] = mqStates.word[2 * 3];
    contexts[uniformContext] = mqStates.word[2 * 46];
}

// By the 3 by 3 samples around, significant or not, column by column (bit 4 is the sample itself).
struct ZeroContexts {
    Qov8u label[512];
};

constexpr Qov8u zeroLabel(int h, int v, int d)
{
    if (h == 2) return 8;
    if (h == 1) return v ? 7 : d ? 6 : 5;
    if (v) return v == 2 ? 4 : 3;
    return Qov8u(d < 2 ? d : 2);
}

constexpr Qov8u zeroLabelDiagonal(int hv, int d)
{
    if (d >= 3) return 8;
    if (d == 2) return hv ? 7 : 6;
    return Qov8u(3 * d + (hv < 2 ? hv : 2));
}

constexpr ZeroContexts makeZeroContexts(bool swapped, bool diagonal)
{
    ZeroContexts table = {};
    for (int i = 0; i < 512; i++) {
        const int h = (i >> 1 & 1) + (i >> 7 & 1), v = (i >> 3 & 1) + (i >> 5 & 1);
        const int d = (i & 1) + (i >> 2 & 1) + (i >> 6 & 1) + (i >> 8 & 1);
        table.label[i] = diagonal  ? zeroLabelDiagonal(h + v, d)
                         : swapped ? zeroLabel(v, h, d)
                                   : zeroLabel(h, v, d);
    }
    return table;
}

// In the order of QoviWTSubband.
constexpr ZeroContexts zeroContexts[4] = {makeZeroContexts(false, false), makeZeroContexts(false, false),
                                          makeZeroContexts(true, false), makeZeroContexts(false, true)};

// By four bits of significance and, above them, four signs: west, north, south, east. Bit 7 of an entry is
// to be added to the sign bit.
struct SignContexts {
    Qov8u label[256];
};

constexpr SignContexts makeSignContexts()
{
    SignContexts table = {};
    for (int i = 0; i < 256; i++) {
        int part[4] = {};
        for (int k = 0; k < 4; k++) part[k] = (i >> k & 1) ? ((i >> (4 + k) & 1) ? -1 : 1) : 0;
        const int hSum = part[0] + part[3], vSum = part[1] + part[2];
        const int h = (hSum > 0) - (hSum < 0), v = (vSum > 0) - (vSum < 0);
        const int sum = 3 * h + v; // its sign decides whether the table is turned round
        const int label = h ? 12 + h * v : 9 + (v != 0);
        table.label[i] = Qov8u(label | (sum < 0) << 7);
    }
    return table;
}

constexpr SignContexts signContexts = makeSignContexts();

} // namespace
} // namespace qov

#endif
