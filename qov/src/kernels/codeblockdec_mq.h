// Where the decisions of a block come from: the MQ decoder (ITU-T T.800, C.3) and raw bits (D.6). Behind the
// end of the data both see ones.
#ifndef QOV_KERNELS_CODEBLOCKDEC_MQ_H
#define QOV_KERNELS_CODEBLOCKDEC_MQ_H

#include "codeblock_contexts.h"

#include <string.h>

namespace qov {
namespace {

// State 4 of table C.2, more probable symbol 1: followed by 5 and 29.
static_assert(mqStates.word[2 * 4 + 1] == (0x80000521 | (2 * 5 + 1) << 16 | (2 * 29 + 1) << 23));

// The registers A and C of figure C.13, Chigh in bits 48 to 63. C is filled some bytes ahead of what the
// standard has, which adds what lies below Chigh and changes no comparison. Only a byte of 80 to 8F behind FF
// carries into what is there: such a one waits until it is due, so that damaged data give what they give
// everywhere.
struct MqDecoder {
    static const bool raw = false;

    Qov64u a, c;
    int ct;                        // bits of C below Chigh; below 0: bits of Chigh that are missing
    Qov32u contexts[contextCount]; // words of mqStates
    struct Input {
        const Qov8u *first, *next, *end;
        Qov32u previous; // B
        int fill;        // bytes behind the end
    } * input;

    // INITDEC. Byte 0 goes to bits 7 to 14 of Chigh.
    QOV_INLINE_MEMBER void begin(const Qov8u* src, int length)
    {
        a = Qov64u(0x8000) << 48;
        c = 0;
        ct = -15;
        *input = {src, src, src + length, 0, 0};
        refill();
    }

    // DECODE, without a branch on what is decoded: at low bit planes decisions are as good as random, and
    // what depends on them is best the only branch that fails.
    QOV_INLINE_MEMBER Qov32u decode(Qov32u context) { return decodeWith(contexts[context]); }

    // The same; a context whose state is in a register.
    QOV_INLINE_MEMBER Qov32u decodeWith(Qov32u& context)
    {
        const Qov32u state = context;
        const Qov64u qe = Qov64u(state) << 48, rest = a - qe;
        // All ones or nothing; the conditional exchange turns the decision round.
        const Qov64u lower = Qov64u(0) - Qov64u(c < qe), exchange = Qov64u(0) - Qov64u(rest < qe);
        const Qov32u turned = Qov32u(lower ^ exchange), less = turned & 1;
        const Qov64u interval = rest ^ ((rest ^ qe) & lower), code = c - (qe & ~lower);
        const int shift = __builtin_clzll(interval);
        const Qov32u after = mqStates.word[state >> (16 | (turned & 7)) & 0x7F];
        context = shift ? after : state;
        a = interval << shift;
        c = code << shift;
        ct -= shift;
        if (__builtin_expect(ct < 0, false)) refill();
        return state >> 31 ^ less;
    }

    // The same for a decision that is likely 0 and only shortens the interval.
    QOV_INLINE_MEMBER Qov32u decodeRare(Qov32u context)
    {
        const Qov32u state = contexts[context];
        const Qov64u qe = Qov64u(state) << 48, rest = a - qe;
        if (__builtin_expect((c >= qe) & (rest >> 63 & ~state >> 31), true)) {
            a = rest;
            c -= qe;
            return 0;
        }
        return decode(context);
    }

    // After the last decision of a segment: is it as long as the flush of D.4.2 makes it, which ends with the
    // byte that holds bit 15 of the encoder's C, and is nothing but ones behind it?
    bool endsAsPredicted() const
    {
        const int taken = int(input->next - input->first), length = int(input->end - input->first);
        int bytes = taken + input->fill, lowest = -ct; // bit of Chigh that the last byte ends with
        for (; bytes > 0; bytes--) {
            const bool stuffed = bytes >= 2 && bytes <= taken && input->first[bytes - 2] == 0xFF;
            const int bits = stuffed ? 7 : 8;
            if (lowest + bits > 15) break;
            lowest += bits;
        }
        // An FF at the end is not written.
        const bool wholeRead = input->fill == 0 || taken == length;
        return wholeRead && (bytes == length || bytes == length + 1) && !(c >> (48 + lowest));
    }

private:
    struct Filled {
        Qov64u c;
        int ct;
    };

    // BYTEIN, until C is well filled.
    static __attribute__((noinline)) Filled fillBytewise(Input& in, Filled filled)
    {
        do {
            const bool ones = in.next == in.end || (in.previous == 0xFF && *in.next > 0x8F);
            const int bits = in.previous == 0xFF && !ones ? 7 : 8;
            const Qov32u byte = ones ? 0xFF : *in.next;
            if (byte >> bits && filled.ct >= 0) break;
            filled.c += Qov64u(byte) << (48 - bits - filled.ct);
            filled.ct += bits;
            in.previous = byte;
            in.next += !ones;
            in.fill += ones;
        } while (filled.ct <= 40);
        return filled;
    }

    QOV_INLINE_MEMBER void refill()
    {
        Input& in = *input;
        if (__builtin_expect(in.end - in.next >= 8, true)) {
            Qov64u word;
            memcpy(&word, in.next, sizeof word);
            word = __builtin_bswap64(word);
            // A byte FF, among the six to be taken and the one before?
            const Qov64u inverse = ~(word >> 8 | Qov64u(in.previous) << 56);
            const Qov64u stuffed = (inverse - 0x0101010101010101) & ~inverse & 0x8080808080808000;
            if (__builtin_expect(!stuffed, true)) {
                c += word >> 16 << -ct;
                ct += 48;
                in.previous = Qov32u(word >> 16 & 0xFF);
                in.next += 6;
                return;
            }
        }
        const Filled filled = fillBytewise(in, {c, ct});
        c = filled.c;
        ct = filled.ct;
    }
};

struct RawDecoder {
    static const bool raw = true;

    const Qov8u *next, *end;
    Qov32u byte;
    int left; // bits of the byte
    int fill; // bytes behind the end

    QOV_INLINE_MEMBER void begin(const Qov8u* src, int length)
    {
        next = src;
        end = src + length;
        byte = 0;
        left = fill = 0;
    }

    QOV_INLINE_MEMBER Qov32u get()
    {
        if (left == 0) {
            const bool ones = next == end;
            left = byte == 0xFF && !ones ? 7 : 8;
            byte = ones ? 0xFF : *next;
            next += !ones;
            fill += ones;
        }
        return byte >> --left & 1;
    }

    // The last byte ends in 0, 1, 0...; behind a full FF this may be a whole byte, and a full FF at the end
    // may be missing.
    bool endsAsPredicted() const
    {
        const bool fullFF = byte == 0xFF && left == 0;
        if (fill) return fill == 1 && fullFF;
        if (fullFF && end - next == 1) return *next == 0x2A;
        return next == end && (byte & ((1u << left) - 1)) == 0x55u >> (8 - left);
    }
};

} // namespace
} // namespace qov

#endif
