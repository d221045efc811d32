// The bits of entropy-coded data: bytes with FF 00 for FF, up to a marker (ITU-T T.81, F.2.2.5, B.1.1).
#ifndef QOV_KERNELS_JHUFFDEC_BITS_H
#define QOV_KERNELS_JHUFFDEC_BITS_H

#include "jhuffdec.h"

#include <string.h>

namespace qov {
namespace {

struct Refilled {
    Qov64u bits;
    Qov32s count, pos;
};

// Byte by byte until there are 56 to 63 bits, the data end or a marker stands there. An FF that the data
// end with is not taken: what it is remains open.
__attribute__((noinline)) Refilled refillByBytes(const Qov8u* src, int srcLen, Refilled r,
                                                 HuffDecState* state, int* marker)
{
    while (r.count < 56 && r.pos < srcLen && !state->marker) {
        const Qov8u byte = src[r.pos];
        int next = r.pos + 1;
        if (byte == 0xFF) {
            while (next < srcLen && src[next] == 0xFF) next++; // fill bytes
            if (next == srcLen) {
                r.pos = srcLen - 1;
                break;
            }
            if (src[next] != 0) {
                *marker = src[next];
                state->marker = 1;
                r.pos = next + 1;
                break;
            }
            next++;
        }
        r.bits |= Qov64u(byte) << (56 - r.count);
        r.count += 8;
        r.pos = next;
    }
    return r;
}

// A state's bits while they are in use. Using more of them than there are is allowed for 64 bits: zeros or
// bits of the next byte come, and count becomes negative. So callers look at dry() after the fact.
struct BitReader {
    Qov64u bits; // from the high end; behind the first `count` of them: zeros, or bits of the bytes at pos
    int count, pos;
    int lastFast; // up to this position 8 bytes may be read at once
    const Qov8u* src;
    int srcLen;
    HuffDecState* state;
    int* marker;

    QOV_INLINE_MEMBER
    BitReader(const Qov8u* data, int dataLen, int position, HuffDecState* s, int* m)
        : bits(s->bits), count(s->count), pos(position), lastFast(s->marker ? -1 : dataLen - 8), src(data),
          srcLen(dataLen), state(s), marker(m)
    {
    }

    // At least 56 bits, unless the data end before.
    QOV_INLINE_MEMBER void refill()
    {
        if (pos <= lastFast) {
            Qov64u x;
            memcpy(&x, src + pos, sizeof x);
            const Qov64u ones = 0x0101010101010101;
            if (!(x & ~(x + ones) & (ones << 7))) { // no FF
                bits |= __builtin_bswap64(x) >> count;
                pos += (63 - count) >> 3;
                count |= 56;
                return;
            }
        }
        const Refilled r = refillByBytes(src, srcLen, {bits, count, pos}, state, marker);
        bits = r.bits;
        count = r.count;
        pos = r.pos;
        if (state->marker) lastFast = -1;
    }

    QOV_INLINE_MEMBER bool dry() const { return count < 0; }
    QOV_INLINE_MEMBER void skip(Qov32u n) // n below 64
    {
        bits <<= n & 63;
        count -= int(n);
    }
    QOV_INLINE_MEMBER Qov32u take(int n) // 0 to 16 bits
    {
        const Qov32u value = Qov32u((bits >> 1) >> (63 - n));
        skip(Qov32u(n));
        return value;
    }
    // 0 to 63 bits, of which 32 at least are there if the data have not ended.
    QOV_INLINE_MEMBER Qov64u takeMany(int n)
    {
        Qov64u high = 0;
        if (n > 32) {
            high = bits >> 32;
            skip(32);
            n -= 32;
            refill();
        }
        const Qov64u low = (bits >> 1) >> (63 - n);
        skip(Qov32u(n));
        return high << n | low;
    }
    // The value of a size of 1 to 16 (F.2.2.1, EXTEND).
    QOV_INLINE_MEMBER int takeValue(int size)
    {
        const int low = int(~bits >> 63); // the first bit is 0: a negative value
        return int(take(size)) - (low << size) + low;
    }

    QOV_INLINE_MEMBER void keep(int* position) const
    {
        *position = pos;
        state->bits = bits;
        state->count = count;
    }
    QOV_INLINE_MEMBER QovStatus runDry(int* position) const
    {
        *position = pos;
        state->bits = 0;
        state->count = -1;
        return qovStsMarker;
    }
};

} // namespace
} // namespace qov

#endif
