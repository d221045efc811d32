// The writing of entropy-coded data: bits from the high end of each byte, FF 00 for FF (ITU-T T.81, F.1.2.3).
#ifndef QOV_KERNELS_JHUFFENC_BITS_H
#define QOV_KERNELS_JHUFFENC_BITS_H

#include "jhuffenc.h"

#include <string.h>

namespace qov {
namespace {

// No call writes more than these. A refinement pass leads: bits that waited, a run with its corrections, 63
// new coefficients and 3 codes for 16 zeros. All bytes may be FF; and words of 8 bytes are stored.
const int mostBits = 7 + 30 + 1024 + 63 * 17 + 3 * 16;
const int mostBytes = mostBits / 8 * 2 + 8;

QOV_INLINE void storeBigEndian(Qov8u* p, Qov64u word)
{
    word = __builtin_bswap64(word);
    memcpy(p, &word, sizeof word);
}

// A state's bits while they are in use. Bytes are written as they are, and looked over for FF at the end.
struct BitWriter {
    Qov64u bits;   // the last ones, at the low end
    Qov32u count;  // how many of them wait: up to 33, or 7 after a flush
    Qov8u* next;   // where the first of them go; 8 bytes may be written there
    Qov64u someFF; // bit 7 of a byte is set if an FF may have been written
    bool lacking;  // a code does not exist: nothing that was put is of use

    QOV_INLINE_MEMBER BitWriter(const HuffEncState* state, Qov8u* start)
        : bits(state->bits), count(state->count), next(start), someFF(0), lacking(false)
    {
    }

    QOV_INLINE_MEMBER void flush()
    {
        const Qov64u word = bits << (-count & 63);
        const Qov64u ones = 0x0101010101010101;
        someFF |= word & ~(word + ones);
        storeBigEndian(next, word);
        next += count >> 3;
        count &= 7;
    }

    // The low `length` bits of value, whose other bits are 0: up to 31, of a code and what stands behind it.
    QOV_INLINE_MEMBER void put(Qov64u value, Qov32u length)
    {
        append(value, length);
        if (__builtin_expect(count > 64 - 31, false)) settle();
    }
    QOV_INLINE_MEMBER void putAndFlush(Qov64u value, Qov32u length)
    {
        append(value, length);
        if (__builtin_expect(count > 64, false)) settle();
        flush();
    }

    // A symbol of a table, then `length` bits.
    QOV_INLINE_MEMBER void putSymbol(const HuffEncSpec* spec, Qov32u symbol, Qov64u value = 0,
                                     Qov32u length = 0)
    {
        const HuffEncCode& code = spec->symbols[symbol];
        put(Qov64u(code.bits) << length | value, code.length + length);
    }

private:
    QOV_INLINE_MEMBER void append(Qov64u value, Qov32u length)
    {
        bits = bits << (length & 63) | value;
        count += length;
    }
    QOV_INLINE_MEMBER void settle()
    {
        lacking |= count >= HuffEncCode::none;
        if (lacking) count = 0;
        flush();
    }
};

// Puts a 0 behind each FF of the bytes from start to end, and gives the new end.
__attribute__((noinline)) Qov8u* stuffZeros(Qov8u* start, Qov8u* end)
{
    int zeros = 0;
    for (const Qov8u* p = start; p < end; p++) zeros += *p == 0xFF;
    Qov8u* const newEnd = end + zeros;
    for (Qov8u* to = newEnd; to != end;) {
        const Qov8u byte = *--end;
        if (byte == 0xFF) *--to = 0;
        *--to = byte;
    }
    return newEnd;
}

// What was written aside, for want of room: it goes into the last `room` bytes of the buffer.
__attribute__((noinline)) QovStatus copyToLast(Qov8u* dst, int room, const Qov8u* aside, int length, int* pos,
                                               HuffEncState* state)
{
    const int fitting = length < room ? length : room;
    memcpy(dst + *pos, aside, size_t(fitting));
    *pos += fitting;
    if (fitting == length) return qovStsNoErr;
    state->mark = HuffEncState::fullMark;
    return qovStsDstFull;
}

// Calls code(writer), and settles the buffer, its cursor and the state's bits. If a code lacks, these stay.
template <class Code>
QOV_INLINE QovStatus intoBuffer(Qov8u* dst, int dstLen, int* pos, HuffEncState* state, Code code)
{
    Qov8u aside[mostBytes];
    const int room = dstLen - *pos;
    const bool roomy = room >= mostBytes;
    Qov8u* const start = roomy ? dst + *pos : aside;
    BitWriter out(state, start);
    code(out);
    out.flush();
    if (__builtin_expect(out.lacking, false)) return qovStsRange;
    if (__builtin_expect((out.someFF & 0x8080808080808080) != 0, false))
        out.next = stuffZeros(start, out.next);
    const int length = int(out.next - start);
    state->bits = Qov8u(out.bits);
    state->count = Qov8u(out.count);
    if (__builtin_expect(!roomy, false)) return copyToLast(dst, room, aside, length, pos, state);
    *pos += length;
    return qovStsNoErr;
}

} // namespace
} // namespace qov

#endif
