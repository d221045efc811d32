// The decoding of a sequential block of which nothing but its bytes is known: not even how many there are
// (ITU-T T.81, F.2.2).
#ifndef QOV_KERNELS_JHUFFROW_DIRECT_H
#define QOV_KERNELS_JHUFFROW_DIRECT_H

#include "jhuffdec_difference.h"
#include "zigzag.h"

#include <limits.h>

namespace qov {
namespace {

// The bits that a caller keeps. None of them with this value: the position is behind a marker.
const Qov32u behindMarker = 0xFFFFFFFF;
// Positions are bits in an int: the last bytes that one can lead to are not read.
const int endOfPositions = INT_MAX / 8;

// Takes bytes from the stream one by one, when a code cannot be told without them.
class DirectReader {
public:
    QOV_INLINE_MEMBER
    DirectReader(const Qov8u* src, int bitPos, Qov32u prefetched, int count, int* marker)
        : m_src(src), m_marker(marker), m_bits(Qov64u(prefetched) << 32 << (32 - count)), m_count(count),
          m_byte(bitPos / 8), m_used(bitPos % 8)
    {
    }

    // The entry of the next code (HuffDecSpec::look), or noCode, which has no value to look at; it is passed.
    // False: the stream ends before.
    QOV_INLINE_MEMBER bool takeCode(const HuffDecSpec* spec, Qov32u& entry)
    {
        // Zeros stand behind the bits there are. What an entry says of the first bits of these does not
        // depend on them.
        while (lengthOf(entry = entryOf(spec)) > Qov32u(m_count))
            if (!takeByte()) return false;
        skip(int(lengthOf(entry)));
        return true;
    }

    // The value of a size of 1 to 15 (F.2.2.1, EXTEND).
    QOV_INLINE_MEMBER bool takeValue(int size, int& value)
    {
        while (size > m_count)
            if (!takeByte()) return false;
        const int low = int(~m_bits >> 63); // the first bit is 0: a negative value
        value = int(m_bits >> (64 - size)) - (low << size) + low;
        skip(size);
        return true;
    }

    QOV_INLINE_MEMBER void keep(int* bitPos, Qov32u* prefetched, int* count) const
    {
        *bitPos = m_byte * 8 + m_used;
        *prefetched = Qov32u(m_bits >> 32 >> (32 - m_count));
        *count = m_count;
    }
    void keepEnd(int* bitPos, Qov32u* prefetched, int* count) const
    {
        *bitPos = m_byte * 8 + m_used;
        *prefetched = behindMarker;
        *count = 0;
    }

private:
    QOV_INLINE_MEMBER Qov32u entryOf(const HuffDecSpec* spec) const
    {
        const Qov32u entry = spec->look[m_bits >> (64 - HuffDecSpec::window)];
        return lengthOf(entry) == 0 ? longCode(spec, m_bits) : entry;
    }
    QOV_INLINE_MEMBER void skip(int n) // n below 64
    {
        m_bits <<= n;
        m_count -= n;
    }

    // With up to 38 bits there; what is left of the byte if the first bits of it are passed. False: a marker,
    // or the end of the positions.
    QOV_INLINE_MEMBER bool takeByte()
    {
        if (m_byte >= endOfPositions) return false;
        const Qov8u byte = m_src[m_byte];
        if (byte == 0xFF && !passEscape()) return false;
        m_byte++;
        m_bits |= Qov64u(Qov8u(byte << m_used)) << (56 - m_count);
        m_count += 8 - m_used;
        m_used = 0;
        return true;
    }
    // From an FF to the 0 behind it, over fill bytes; or past a marker.
    __attribute__((noinline)) bool passEscape()
    {
        int next = m_byte + 1;
        while (next < endOfPositions && m_src[next] == 0xFF) next++;
        if (next >= endOfPositions) return false;
        m_byte = next;
        if (m_src[next] == 0) return true;
        *m_marker = m_src[next];
        m_byte = next + 1;
        m_used = 0;
        return false;
    }

    const Qov8u* m_src;
    int* m_marker;
    Qov64u m_bits; // from the high end, zeros behind
    int m_count;
    int m_byte, m_used; // the position; of the byte there, bits that are passed
};

QOV_INLINE QovStatus takeDirectDifference(DirectReader& in, const HuffDecSpec* spec, int& difference)
{
    Qov32u entry;
    if (!in.takeCode(spec, entry)) return qovStsMarker;
    if (entry == noCode) return qovStsData;
    difference = valueOf(entry);
    if (difference) return runEndOf(entry) == 1 ? qovStsNoErr : qovStsData;
    const int category = int(entry >> 8);
    if (category > maxSize) return qovStsData;
    return category == 0 || in.takeValue(category, difference) ? qovStsNoErr : qovStsMarker;
}

// The AC coefficients of a block of zeros (F.2.2.2).
QOV_INLINE QovStatus takeDirectCoefficients(DirectReader& in, const HuffDecSpec* spec, Qov16s* dst)
{
    const int lastPlace = 63;
    for (int k = 0; k < lastPlace;) {
        Qov32u entry;
        if (!in.takeCode(spec, entry)) return qovStsMarker;
        if (entry == noCode) return qovStsData;
        int value = valueOf(entry);
        if (value) {
            k += runEndOf(entry);
            if (k > lastPlace) return qovStsData;
        } else {
            const int symbol = int(entry >> 8), run = symbol >> 4, size = symbol & 15;
            if (size == 0 && run < 15) return qovStsNoErr; // any other run ends the block too (figure F.13)
            k += run + 1;
            if (k > lastPlace) return qovStsData;
            if (size == 0) continue;
            if (!in.takeValue(size, value)) return qovStsMarker;
        }
        dst[zigzag[k]] = Qov16s(value);
    }
    return qovStsNoErr;
}

} // namespace
} // namespace qov

#endif
