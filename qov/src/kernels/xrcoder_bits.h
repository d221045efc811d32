// Bits of JPEG XR: from the most significant one of each byte, at a place between any two bits. Neither side
// knows how long the buffer is, so neither touches a byte behind the one that holds its last bit.
#ifndef QOV_KERNELS_XRCODER_BITS_H
#define QOV_KERNELS_XRCODER_BITS_H

#include "family.h"

#include <string.h>

namespace qov {
namespace {

QOV_INLINE Qov64u bigEndian(Qov64u x)
{
    return __builtin_bswap64(x);
}
QOV_INLINE Qov32u bigEndian(Qov32u x)
{
    return __builtin_bswap32(x);
}
QOV_INLINE Qov16u bigEndian(Qov16u x)
{
    return __builtin_bswap16(x);
}

template <class Word>
QOV_INLINE Word load(const Qov8u* p)
{
    Word word;
    memcpy(&word, p, sizeof word);
    return bigEndian(word);
}
template <class Word>
QOV_INLINE void store(Qov8u* p, Word word)
{
    word = bigEndian(word);
    memcpy(p, &word, sizeof word);
}

// Each put stores the 8 bytes that end with its last bit: those before are stored again as they are. Only the
// first 8 bytes have to wait until they are full, or until the end.
struct BitWriter {
    static constexpr Qov32u most = 57; // bits at once: what 8 bytes hold at any place

    Qov8u* start;
    Qov64u bits;  // the last 64, at the low end
    Qov32u total; // bits from `start` on

    QOV_INLINE_MEMBER BitWriter(Qov8u* dst, int used)
        : start(dst), bits(Qov64u(*dst >> (8 - used))), total(Qov32u(used))
    {
    }

    // `length` up to `most`; the bits above them are 0.
    QOV_INLINE_MEMBER void put(Qov64u value, Qov32u length)
    {
        const Qov32u before = total;
        const Qov64u waiting = bits;
        total += length;
        bits = bits << length | value;
        if (total < 64) return;
        if (before < 64) store(start, waiting << (64 - before) | value >> (total - 64));
        store(start + ((total + 7) >> 3) - 8, bits << (-total & 7));
    }

    // At least one bit was put.
    QOV_INLINE_MEMBER void finish(Qov8u** dst, int* used) const
    {
        *dst = start + (total >> 3);
        *used = int(total & 7);
        if (total >= 64) return;
        const Qov32u bytes = (total + 7) >> 3;
        const Qov64u word = bits << (64 - total);
        if (bytes >= 4) {
            store(start, Qov32u(word >> 32));
            store(start + bytes - 4, Qov32u(word << 8 * (bytes - 4) >> 32));
        } else if (bytes >= 2) {
            store(start, Qov16u(word >> 48));
            store(start + bytes - 2, Qov16u(word << 8 * (bytes - 2) >> 48));
        } else {
            *start = Qov8u(word >> 56);
        }
    }
};

// The next bits at the high end, `count` of them, and zeros.
struct Window {
    Qov64u bits;
    Qov32u count;

    // The first bits, 1 to 32 of them.
    QOV_INLINE_MEMBER Qov32u first(Qov32u length) const { return Qov32u(bits >> (-length & 63)); }
    QOV_INLINE_MEMBER Qov32u bit(Qov32u place) const { return Qov32u(bits << place >> 63); }
    // What is behind the first `length` bits.
    QOV_INLINE_MEMBER Window behind(Qov32u length) const { return {bits << length, count - length}; }
};

// A reader keeps nothing but its place: each window comes from memory, up to the last byte that is sure to
// have a bit of the stream.
struct BitReader {
    static constexpr Qov32u most = 57;
    // From so many bits on a reader is far from its start: every window ends with the eighth byte or behind
    // it.
    static constexpr Qov32u far = 7 * 8;

    const Qov8u* start;
    Qov32u total; // bits from `start` on

    QOV_INLINE_MEMBER BitReader(const Qov8u* src, int used) : start(src), total(Qov32u(used)) {}

    // `sure`, 1 to `most`: as many bits of the stream do follow. The window has up to 7 more.
    template <bool isFar = false>
    QOV_INLINE_MEMBER Window look(Qov32u sure) const
    {
        const Qov32u bytes = (total + sure + 7) >> 3, count = 8 * bytes - total;
        const Qov64u last = isFar || bytes >= 8 ? load<Qov64u>(start + bytes - 8) : fewBytes(bytes);
        return {last << (-count & 63), count};
    }

    QOV_INLINE_MEMBER void skip(Qov32u length) { total += length; }

    QOV_INLINE_MEMBER void finish(const Qov8u** src, int* used) const
    {
        *src = start + (total >> 3);
        *used = int(total & 7);
    }

private:
    // So many bytes from the start on, 1 to 7, at the low end. Some are loaded twice.
    QOV_INLINE_MEMBER Qov64u fewBytes(Qov32u bytes) const
    {
        if (bytes >= 4) {
            const Qov64u first = load<Qov32u>(start);
            return first << 8 * (bytes - 4) | load<Qov32u>(start + bytes - 4);
        }
        const Qov32u middle = bytes >> 1, last = bytes - 1;
        return Qov32u(start[0]) << 8 * last | Qov32u(start[middle]) << 8 * (last - middle) | start[last];
    }
};

} // namespace
} // namespace qov

#endif
