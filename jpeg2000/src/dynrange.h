// From the range of a component to the range of a file's samples.
#ifndef JPEG2000_DYNRANGE_H
#define JPEG2000_DYNRANGE_H

#include "mrstrimage.h"

#include <limits>
#include <type_traits>

namespace jpeg2000 {

template <class Int>
constexpr Int Saturate(Int value, Int low, Int high)
{
    return value < low ? low : high < value ? high : value;
}

// One sample: a signed one is lifted by half its range, bits are taken from or put to its lower end, and what
// is out of range goes to the limit. The result has `toDepth` bits, less than Int.
template <class Int>
class DynRange {
public:
    DynRange(MRstrImageDepth from, unsigned toDepth) : m_max((UInt{1} << toDepth) - 1)
    {
        // Depths beyond Int are told by headers, but no sample has them.
        constexpr unsigned bits = std::numeric_limits<Int>::digits;
        const unsigned depth = Min(from.bitDepth, from.isSigned ? bits + 1 : bits);
        m_low = from.isSigned ? static_cast<Int>(UInt{0} - (UInt{1} << (depth - 1))) : 0;
        // One above the range still turns into too much; what is further above could not be shifted.
        const UInt room = static_cast<UInt>(std::numeric_limits<Int>::max()) - static_cast<UInt>(m_low);
        const UInt span = depth > bits ? room : Min<UInt>(UInt{1} << depth, room);
        m_high = static_cast<Int>(static_cast<UInt>(m_low) + span);
        m_right = depth > toDepth ? depth - toDepth : 0;
        m_left = depth < toDepth ? toDepth - depth : 0;
    }

    Int operator()(Int value) const
    {
        const UInt lifted = static_cast<UInt>(Saturate(value, m_low, m_high)) - static_cast<UInt>(m_low);
        return static_cast<Int>(Min<UInt>(lifted >> m_right << m_left, m_max));
    }

private:
    using UInt = std::make_unsigned_t<Int>;

    UInt m_max;
    Int m_low, m_high;
    unsigned m_right, m_left;
};

// A whole plane, in place. toDepth is 1 to 31.
void ConvertDynRange(const ImageComponent& plane, MRstrImageDepth from, unsigned toDepth);

// The same, and then the average of planes 0, nOfOutputs, 2 * nOfOutputs ... into plane 0, and so on up to
// plane nOfOutputs - 1. All have one size.
void ConvertDynRangeAndAverage(const ImageComponents& planes, const MRstrImageDepth* from, unsigned toDepth,
                               unsigned nOfOutputs);

} // namespace jpeg2000

#endif
