// Where segments end and where they can be cut (ITU-T T.800, C.2.9, D.4).
//
// What decodes the same is best seen as one number: the bytes of a segment, the ones that a decoder feeds
// behind them included. Its bits stand on those of the register C. Any number from C up to, but not at, C + A
// decodes what was coded so far. A byte behind FF overlaps it by one bit, the one for a carry.
#ifndef QOV_KERNELS_CODEBLOCK_RATES_H
#define QOV_KERNELS_CODEBLOCK_RATES_H

#include "codeblock_mq.h"

namespace qov {
namespace {

// FF at the end of a segment is what a decoder feeds anyway.
template <class Byte>
QOV_INLINE Byte* withoutFF(Byte* end, const Qov8u* first)
{
    return end - (end > first && end[-1] == 0xFF);
}

inline Qov8u* endPlain(MqCoder coder, const Qov8u* first)
{
    // SETBITS.
    const Qov32u beyond = coder.c + coder.a;
    coder.c |= 0xFFFF;
    if (coder.c >= beyond) coder.c -= 0x8000;
    for (int i = 0; i < 2; i++) {
        coder.c <<= coder.ct;
        coder.byteOut();
    }
    return withoutFF(coder.last + 1, first);
}

inline Qov8u* endPredictable(MqCoder coder, const Qov8u* first)
{
    for (int bits = 12 - coder.ct; bits > 0; bits -= coder.ct) {
        coder.c <<= coder.ct;
        coder.ct = 0;
        coder.byteOut();
    }
    return withoutFF(coder.last + 1, first);
}

// Drops ones, which are FF and the pair FF 7F.
inline Qov8u* withoutOnes(Qov8u* end, const Qov8u* first)
{
    while (end > first) {
        if (end[-1] == 0xFF)
            end--;
        else if (end - first > 1 && end[-1] == 0x7F && end[-2] == 0xFF)
            end -= 2;
        else
            break;
    }
    return end;
}

// Takes the number in the interval with the most ones at its end, and leaves them to the decoder.
inline Qov8u* endShort(MqCoder coder, const Qov8u* first)
{
    const Qov32u beyond = coder.c + coder.a;
    int ones = 27;
    while ((beyond >> ones << ones) <= coder.c) ones--;
    coder.c = (beyond >> ones << ones) - 1;
    for (int i = 0; i < 4; i++) {
        coder.c = ((coder.c + 1) << coder.ct) - 1;
        coder.byteOut();
    }
    return withoutOnes(coder.last + 1, first);
}

inline Qov8u* endSegment(const MqCoder& coder, Qov8u* first, int term)
{
    switch (term) {
    case 0: return endPlain(coder, first);
    case 1: return endShort(coder, first);
    default: return endPredictable(coder, first);
    }
}

// D.6: what is left of a byte is filled, with 0101... if the end is to be predictable.
inline Qov8u* endSegment(RawCoder coder, Qov8u* first, int term)
{
    if (coder.partial(first) || (term == 2 && coder.afterFF(first))) {
        const Qov32u fill = term == 0 ? 0 : term == 1 ? 0xFF : 0x55 >> (8 - coder.room) % 2;
        *coder.next++ = Qov8u(coder.byte | (fill & ((1u << coder.room) - 1)));
    }
    return term == 1 ? withoutOnes(coder.next, first) : withoutFF(coder.next, first);
}

// The state of a coder at the end of a pass.
struct MqMark {
    MqCoder coder;
    Qov32u byte; // *coder.last then: a carry may have come since

    // The shortest cut of the segment that ends at `end` from which all up to here is decoded. The ones
    // behind a cut may take the number too high; and too low, if a carry stands in the byte that follows an
    // FF.
    const Qov8u* cut(const Qov8u* end) const
    {
        // Bits below those of C. Once all of C is covered by whole bytes, one more at most is looked at, so
        // that the weight stays above 0.
        const int fraction = 16;
        const Qov64u low = Qov64u(coder.c) << fraction, beyond = Qov64u(coder.c + coder.a) << fraction;
        const Qov8u* next = coder.last + 1;
        int weight = 27 - coder.ct + fraction; // of the lowest bit in front of `next`
        Qov64u number = Qov64u(coder.last[0] - byte) << weight;
        for (; next < end; next++) {
            const Qov64u above = number + (Qov64u(1) << weight); // what the ones just do not reach
            if (above > low && above <= beyond) break;
            weight -= next[-1] == 0xFF ? 7 : 8;
            number += Qov64u(*next) << weight;
        }
        return next < end ? next : end;
    }
};

struct RawMark {
    const Qov8u* next;

    const Qov8u* cut(const Qov8u* end) const { return next < end ? next : end; }
};

QOV_INLINE MqMark markOf(const MqCoder& coder, const Qov8u*)
{
    return {coder, *coder.last};
}
QOV_INLINE RawMark markOf(const RawCoder& coder, const Qov8u* first)
{
    return {coder.next + coder.partial(first)};
}

} // namespace
} // namespace qov

#endif
