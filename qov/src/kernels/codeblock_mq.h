// The coders of symbols: the MQ coder (ITU-T T.800, C.2) and raw bits (D.6).
#ifndef QOV_KERNELS_CODEBLOCK_MQ_H
#define QOV_KERNELS_CODEBLOCK_MQ_H

#include "codeblock_contexts.h"

namespace qov {
namespace {

// The registers A, C, CT of figure C.3. Their bytes go where `last` points; a carry may still come to *last.
struct MqCoder {
    static const bool raw = false;

    Qov32u a, c;
    int ct;
    Qov8u* last;      // B
    Qov32u* contexts; // words of mqStates

    // INITENC. The byte before the first one is not FF and gets no carry: C begins with 12 bits to spare.
    QOV_INLINE_MEMBER void begin(Qov8u* first)
    {
        a = 0x8000;
        c = 0;
        ct = 12;
        last = first - 1;
    }

    // ENCODE, without a branch on what is coded: at low bit planes decisions are as good as random. Nor do
    // compilers find one in masks, as they would in choices.
    QOV_INLINE_MEMBER void code(Qov32u context, Qov32u decision)
    {
        const Qov32u state = contexts[context];
        const Qov32u qe = state & 0xFFFF;
        // All ones for the less probable symbol.
        const Qov32u less = Qov32u(Qov32s(state ^ decision << 31) >> 31);
        const Qov32u next = mqStates.word[state >> (16 + (less & 7)) & 0x7F];
        const Qov32u rest = a - qe;
        // The conditional exchange: the larger part is that of the more probable symbol.
        const Qov32u lower = less ^ Qov32u(Qov32s(rest - qe) >> 31);
        a = rest ^ ((rest ^ qe) & lower);
        c += qe & ~lower;
        const int shift = __builtin_clz(a) - 16;
        contexts[context] = shift ? next : state;
        a <<= shift;
        advance(shift);
    }

    // `count` decisions 0, likely ones: those that only shorten the interval go fast.
    QOV_INLINE_MEMBER void codeZeros(Qov32u context, int count)
    {
        while (count) {
            const Qov32u state = contexts[context], qe = state & 0xFFFF;
            if (!(state >> 31))
                for (; count && a - qe >= 0x8000; count--) {
                    a -= qe;
                    c += qe;
                }
            if (!count) return;
            code(context, 0);
            count--;
        }
    }

    // BYTEOUT.
    QOV_INLINE_MEMBER void byteOut()
    {
        if (__builtin_expect(*last != 0xFF, true)) {
            *last = Qov8u(*last + (c >> 27));
            c &= 0x7FFFFFF;
        }
        const int bits = *last == 0xFF ? 20 : 19;
        *++last = Qov8u(c >> bits);
        c &= (1u << bits) - 1;
        ct = 27 - bits;
    }

private:
    QOV_INLINE_MEMBER void advance(int shift)
    {
        while (__builtin_expect(shift >= ct, false)) {
            c <<= ct;
            shift -= ct;
            byteOut();
        }
        c <<= shift;
        ct -= shift;
    }
};

// Bits from the high end of each byte; a byte behind FF has 7.
struct RawCoder {
    static const bool raw = true;

    Qov8u* next;
    Qov32u byte;
    int room; // bits free in the byte

    QOV_INLINE_MEMBER void begin(Qov8u* first)
    {
        next = first;
        byte = 0;
        room = 8;
    }

    QOV_INLINE_MEMBER void put(Qov32u bit)
    {
        byte |= bit << --room;
        if (room) return;
        *next++ = Qov8u(byte);
        room = byte == 0xFF ? 7 : 8;
        byte = 0;
    }

    bool partial(const Qov8u* first) const { return room < (afterFF(first) ? 7 : 8); }
    bool afterFF(const Qov8u* first) const { return next > first && next[-1] == 0xFF; }
};

} // namespace
} // namespace qov

#endif
