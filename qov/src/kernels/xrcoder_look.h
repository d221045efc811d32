// Look-ups of the codes of JPEG XR coefficients by the next bits, for the decoder.
#ifndef QOV_KERNELS_XRCODER_LOOK_H
#define QOV_KERNELS_XRCODER_LOOK_H

#include "xrcoder_adaptive.h"

namespace qov {
namespace {

struct Found {
    Qov8u length, symbol;
};

template <int window>
struct Look {
    Found found[1 << window];

    constexpr void add(Code code)
    {
        const int open = window - code.length;
        for (int i = 0; i < 1 << open; i++) found[(code.bits << open) + i] = {code.length, code.symbol};
    }
    // Of bits at the high end.
    QOV_INLINE_MEMBER Found operator[](Qov64u bits) const { return found[bits >> (64 - window)]; }
};

// By table: the look-up, and of each symbol the length and what it changes.
template <class Printed, int window>
struct Decoding {
    Look<window> look[Printed::tables];
    Qov8u lengths[Printed::tables][Printed::symbols];
    Qov32u changes[Printed::tables][Printed::symbols];
};

template <int window, class Printed>
constexpr Decoding<Printed, window> makeDecoding(const Printed& printed)
{
    Decoding<Printed, window> decoding = {};
    for (int t = 0; t < Printed::tables; t++)
        for (int s = 0; s < Printed::symbols; s++) {
            const Code code = parseWord(printed.words[s][t], s);
            decoding.look[t].add(code);
            decoding.lengths[t][s] = code.length;
            decoding.changes[t][s] = packChanges(firstDelta(printed, t, s), secondDelta(printed, t, s));
        }
    return decoding;
}

constexpr auto firstDecoding = makeDecoding<8>(printedFirst);
constexpr auto indexDecoding = makeDecoding<5>(printedIndex);
constexpr auto indexBDecoding = makeDecoding<3>(printedIndexB);
constexpr auto indexLastDecoding = makeDecoding<1>(printedIndexLast);
constexpr auto levelDecoding = makeDecoding<6>(printedLevel);

// Runs by their maximum, which those that are found may exceed: the last codes reach as far as the longest
// list of their kind needs.
struct RunDecoding {
    Look<7> look[longestRun + 1];
};

constexpr RunDecoding makeRunDecoding()
{
    RunDecoding decoding = {};
    for (int m = 1; m <= longestRun; m++) {
        const int last = m <= 4 ? m : m <= 6 ? 6 : m <= 10 ? 10 : longestRun;
        for (int run = 1; run <= last; run++) decoding.look[m].add(runCode(m, run));
    }
    return decoding;
}

constexpr RunDecoding runDecoding = makeRunDecoding();

} // namespace
} // namespace qov

#endif
