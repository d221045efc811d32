#include "tiff.h"

#include "simd256.h"

#include <string.h>

namespace qov::QOV_LEVEL {
namespace {

// A header h below noOperation stands before h + 1 bytes; one above it before a byte that is to be repeated
// repeatBase - h times.
constexpr ptrdiff_t longestPacket = 128;
constexpr int noOperation = 128;
constexpr int repeatBase = 257;

#if defined(QOV_SIMD256)
constexpr ptrdiff_t vectorBytes = 32;

QOV_W_SET(W, all8, char, set1_epi8)
QOV_W_OP2(W, equal8, cmpeq_epi8)

// A bit for each byte: its highest one.
inline Qov32u byteSigns(W a)
{
#if defined(__AVX2__)
    return Qov32u(_mm256_movemask_epi8(a));
#else
    return Qov32u(_mm_movemask_epi8(a.lo)) | Qov32u(_mm_movemask_epi8(a.hi)) << 16;
#endif
}
#endif

inline ptrdiff_t least(ptrdiff_t a, ptrdiff_t b)
{
    return a < b ? a : b;
}

// How many of the n bytes at s, n >= 1, equal the first before another one comes; longestPacket at most.
inline ptrdiff_t runLength(const Qov8u* s, ptrdiff_t n)
{
    const ptrdiff_t end = least(n, longestPacket);
    ptrdiff_t x = 1;
#if defined(QOV_SIMD256)
    for (; x <= end - vectorBytes; x += vectorBytes) {
        const Qov32u others = ~byteSigns(equal8(load(s + x), all8(char(s[0]))));
        if (others) return x + __builtin_ctz(others);
    }
#endif
    while (x < end && s[x] == s[0]) x++;
    return x;
}

// The first place from x on where three equal bytes begin; n if there is none.
inline ptrdiff_t nextTriple(const Qov8u* s, ptrdiff_t x, ptrdiff_t n)
{
#if defined(QOV_SIMD256)
    for (; x <= n - vectorBytes - 2; x += vectorBytes) {
        const W second = load(s + x + 1);
        const Qov32u triples = byteSigns(both(equal8(load(s + x), second), equal8(second, load(s + x + 2))));
        if (triples) return x + __builtin_ctz(triples);
    }
#endif
    for (; x < n - 2; x++)
        if (s[x] == s[x + 1] && s[x + 1] == s[x + 2]) return x;
    return n;
}

struct Packer {
    Qov8u* dst;
    ptrdiff_t len;
    ptrdiff_t& pos;

    bool repeat(Qov8u byte, ptrdiff_t count)
    {
        if (len - pos < 2) return false;
        dst[pos] = Qov8u(repeatBase - count);
        dst[pos + 1] = byte;
        pos += 2;
        return true;
    }

    bool literal(const Qov8u* bytes, ptrdiff_t count)
    {
        while (count > 0) {
            const ptrdiff_t part = least(count, longestPacket);
            if (len - pos <= part) return false;
            dst[pos] = Qov8u(part - 1);
            memcpy(dst + pos + 1, bytes, size_t(part));
            pos += part + 1;
            bytes += part;
            count -= part;
        }
        return true;
    }
};

// A run of three or more is repeated, and one of two unless a literal packet is open, which it would end.
bool packBits(const Qov8u* src, ptrdiff_t n, Qov8u* dst, ptrdiff_t len, ptrdiff_t& pos)
{
    Packer out{dst, len, pos};
    for (ptrdiff_t x = 0; x < n;) {
        const ptrdiff_t run = runLength(src + x, n - x);
        if (run > 1) {
            if (!out.repeat(src[x], run)) return false;
            x += run;
        } else {
            const ptrdiff_t end = nextTriple(src, x + 1, n);
            if (!out.literal(src + x, end - x)) return false;
            x = end;
        }
    }
    return true;
}

bool unpackBits(const Qov8u* src, ptrdiff_t len, ptrdiff_t& pos, Qov8u* dst, ptrdiff_t n)
{
    for (ptrdiff_t x = 0; x < n;) {
        if (pos >= len) return false;
        const int header = src[pos++];
        if (header == noOperation) continue;
        const bool literal = header < noOperation;
        const ptrdiff_t count = literal ? header + 1 : repeatBase - header;
        const ptrdiff_t given = literal ? least(count, len - pos) : pos < len ? count : 0;
        const ptrdiff_t fitting = least(given, n - x);
        if (literal)
            memcpy(dst + x, src + pos, size_t(fitting));
        else if (fitting)
            memset(dst + x, src[pos], size_t(fitting));
        if (fitting < count) return false;
        pos += literal ? count : 1;
        x += count;
    }
    return true;
}

// Of vectors, the last one ends with the last sample: it makes some samples again.
template <class One, class Vector>
inline void eachSample(ptrdiff_t n, One one, [[maybe_unused]] Vector vector)
{
    assert(n > 0);
#if defined(QOV_SIMD256)
    if (n >= vectorBytes) {
        ptrdiff_t x = 0;
        for (; x <= n - vectorBytes; x += vectorBytes) vector(x);
        if (x < n) vector(n - vectorBytes);
        return;
    }
#endif
    for (ptrdiff_t x = 0; x < n; x++) one(x);
}

void split(const Qov16u* src, Qov8u* high, Qov8u* low, ptrdiff_t n)
{
    eachSample(
        n,
        [&](ptrdiff_t x) {
            high[x] = Qov8u(src[x] >> 8);
            low[x] = Qov8u(src[x]);
        },
        [&]([[maybe_unused]] ptrdiff_t x) {
#if defined(QOV_SIMD256)
            const W a = load(src + x), b = load(src + x + vectorBytes / 2), lowByte = all16(255);
            store(high + x, crossQwords(packU16(shiftRightU16<8>(a), shiftRightU16<8>(b))));
            store(low + x, crossQwords(packU16(both(a, lowByte), both(b, lowByte))));
#endif
        });
}

void join(const Qov8u* high, const Qov8u* low, Qov16u* dst, ptrdiff_t n)
{
    eachSample(
        n, [&](ptrdiff_t x) { dst[x] = Qov16u(high[x] << 8 | low[x]); },
        [&]([[maybe_unused]] ptrdiff_t x) {
#if defined(QOV_SIMD256)
            const W h = load(high + x), l = load(low + x);
            const W first = lowBytes(l, h), second = highBytes(l, h);
            store(dst + x, crossLowLanes(first, second));
            store(dst + x + vectorBytes / 2, crossHighLanes(first, second));
#endif
        });
}

} // namespace

const TiffKernels tiffKernels = {packBits, unpackBits, split, join};

} // namespace qov::QOV_LEVEL
