// Samples along one side of an image and their halves, as a whole wavelet transform counts them, and the rows
// of its buffer.
#ifndef QOV_WAVELET2D_SPAN_H
#define QOV_WAVELET2D_SPAN_H

#include "qovdefs.h"

#include <cstddef>
#include <cstdint>

namespace qov {

enum Half { lowHalf, highHalf }; // of the even places and the odd ones

inline Half halfOf(int place)
{
    return Half(place & 1);
}

// `count` samples from place `first` on, 0 or 1. Pair n are the places 2 n and 2 n + 1.
struct Span {
    int first, count;

    Span(int place, int samples) : first(place & 1), count(samples) {}

    int last() const { return first + count - 1; }
    bool holds(int place) const { return place >= first && place <= last(); }
    int size(Half half) const
    {
        return half == lowHalf ? count - size(highHalf) : count / 2 + (count & first);
    }
    int pairs() const { return (first + count + 1) / 2; }

    // Where the sample at a place stands in its half, and where if the low half stands before the high one.
    int inHalf(int place) const { return (place - (halfOf(place) == lowHalf ? first : 0)) >> 1; }
    int inHalves(int place) const { return inHalf(place) + (halfOf(place) == lowHalf ? 0 : size(lowHalf)); }

    // The place that whole-sample symmetric extension has the sample of; of two samples or more.
    int mirrored(int place) const
    {
        if (holds(place)) return place;
        const int period = 2 * (count - 1), turn = (place - first) % period;
        const int ahead = turn < 0 ? turn + period : turn;
        return first + (ahead < count ? ahead : period - ahead);
    }
};

// How far beyond a row the filters look at it, from whatever place: 9-7 needs four places on either side, and
// one more completes a pair.
constexpr int rowBorder = 5;

// Extends a row of two samples or more, `at` giving the one at a place. From inside to outside on both sides
// in turn, so that what is copied is there also in a row shorter than its border.
template <class At>
inline void extend(Span span, At at)
{
    const int first = span.first, last = span.last();
    for (int i = 1; i <= rowBorder; i++) {
        at(first - i) = at(first + i);
        at(last + i) = at(last - i);
    }
}

// Rows of a buffer that may lie anywhere: each begins at a multiple of 64 bytes and has room for its border
// before and behind.
template <class T>
class BufferRows {
public:
    BufferRows(Qov8u* buffer, int width) : m_start(buffer + misfit(buffer) + before), m_step(stepOf(width)) {}

    T* operator[](ptrdiff_t i) const { return reinterpret_cast<T*>(m_start + i * m_step); }
    Qov8u* behind(ptrdiff_t rows) const { return m_start - before + rows * m_step; }

    static ptrdiff_t bytes(int width, ptrdiff_t rows) { return rows * stepOf(width) + alignment - 1; }

private:
    static constexpr ptrdiff_t alignment = 64, before = 64;
    static constexpr ptrdiff_t border = (rowBorder + 1) * ptrdiff_t(sizeof(T));
    static_assert(border <= before);

    static ptrdiff_t misfit(const Qov8u* p) { return ptrdiff_t(-reinterpret_cast<uintptr_t>(p) % alignment); }
    static ptrdiff_t stepOf(int width)
    {
        const ptrdiff_t row = width * ptrdiff_t(sizeof(T)) + border;
        return before + (row + alignment - 1) / alignment * alignment;
    }

    Qov8u* m_start;
    ptrdiff_t m_step;
};

} // namespace qov

#endif
