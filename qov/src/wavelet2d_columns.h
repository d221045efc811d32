// All columns of an image, or of a strip of it, through the lifts of a filter, row by row. Rows come and go
// through an object `rows`:
//
//   forward   const T* sample(int place);             // a row of samples
//             T* room(int place);                     // where that row of the halves is to stand
//             void give(int place, T* row);           // it stands there, if `place` is one of the span
//   inverse   const T* half(int place, T* spare);     // a row of the halves, made in `spare` or standing
//                                                     // elsewhere
//             T* room(int place);                     // where that row of samples is to stand
//
// sample and half are asked for places of the span, some more than once at its ends. room is asked for two
// places beyond as well; what is put there stays until room is asked for the next place of its half.
//
// Both filters see a column extended by symmetry: rows that lie outside are mirrored, and lifted again.
#ifndef QOV_WAVELET2D_COLUMNS_H
#define QOV_WAVELET2D_COLUMNS_H

#include "wavelet2d_filters.h"

namespace qov {

constexpr int columnRows = 6; // of the buffer

template <class T, class Rows>
void analyseColumns(const B53<T>& filter, Span y, int width, const BufferRows<T>&, Rows& rows)
{
    const T* highBefore = rows.sample(y.first); // of a low row that is not wanted
    for (int place = 2 * (y.first - 1); place <= y.last(); place += 2) {
        T *const low = rows.room(place), *const high = rows.room(place + 1);
        filter.lift.forward(rows.sample(y.mirrored(place)), rows.sample(y.mirrored(place + 1)),
                            rows.sample(y.mirrored(place + 2)), highBefore, low, high, width);
        if (y.holds(place)) rows.give(place, low);
        if (y.holds(place + 1)) rows.give(place + 1, high);
        highBefore = high;
    }
}

template <class T, class Rows>
void synthesiseColumns(const B53<T>& filter, Span y, int width, const BufferRows<T>& buffer, Rows& rows)
{
    const auto half = [&](int place, T* spare) { return rows.half(y.mirrored(place), spare); };
    T *spare = buffer[0], *otherSpare = buffer[1];
    const T* high0 = half(-1, otherSpare);
    const T* even0 = high0; // of an odd row that is not wanted
    for (int place = 0; place - 1 <= y.last(); place += 2) {
        const T *const low1 = half(place, buffer[2]), *const high1 = half(place + 1, spare);
        T *const odd = rows.room(place - 1), *const even1 = rows.room(place);
        filter.lift.inverse(low1, high0, high1, even0, odd, even1, width);
        high0 = high1;
        even0 = even1;
        std::swap(spare, otherSpare);
    }
}

// The rows of a 9-7 pipeline: those of three pairs, a new one taking the room of the oldest.
template <class T>
class Ring97 {
public:
    Ring97(const BufferRows<T>& buffer, int width) : m_buffer(buffer)
    {
        for (int i = 0; i < columnRows; i++) std::memset(buffer[i], 0, size_t(width) * sizeof(T));
    }
    T* low(int pair) const { return m_buffer[slot(pair)]; }
    T* high(int pair) const { return m_buffer[3 + slot(pair)]; }

private:
    static int slot(int pair) { return (pair + 6) % 3; } // from pair -4 on

    const BufferRows<T>& m_buffer;
};

// The first lifts work on rows that are not there yet; what they make of them never comes to a row that is
// wanted.
template <class T, class Rows>
void analyseColumns(const D97<T>& filter, Span y, int width, const BufferRows<T>& buffer, Rows& rows)
{
    const Ring97<T> ring(buffer, width);
    const auto load = [&](int place, T* row) {
        std::memcpy(row, rows.sample(y.mirrored(place)), size_t(width) * sizeof(T));
    };
    const auto give = [&](int place, auto* scale, const T* row) {
        if (!y.holds(place)) return;
        T* const room = rows.room(place);
        scale(row, room, width);
        rows.give(place, room);
    };
    load(-4, ring.low(-2));
    for (int n = -1; 2 * n - 4 <= y.last(); n++) {
        load(2 * n - 1, ring.high(n - 1));
        load(2 * n, ring.low(n));
        filter.lift.forward(ring.low(n), ring.high(n - 1), ring.low(n - 1), ring.high(n - 2), ring.low(n - 2),
                            ring.high(n - 3), width);
        give(2 * n - 4, filter.scale.over, ring.low(n - 2));
        give(2 * n - 3, filter.scale.times, ring.high(n - 2));
    }
}

template <class T, class Rows>
void synthesiseColumns(const D97<T>& filter, Span y, int width, const BufferRows<T>& buffer, Rows& rows)
{
    const Ring97<T> ring(buffer, width);
    const auto load = [&](int place, auto* scale, T* row) {
        scale(rows.half(y.mirrored(place), row), row, width);
    };
    const auto give = [&](int place, const T* row) {
        if (y.holds(place)) std::memcpy(rows.room(place), row, size_t(width) * sizeof(T));
    };
    load(-3, filter.scale.over, ring.high(-2));
    for (int n = -1; 2 * n - 3 <= y.last(); n++) {
        load(2 * n, filter.scale.times, ring.low(n));
        load(2 * n + 1, filter.scale.over, ring.high(n));
        filter.lift.inverse(ring.low(n), ring.high(n), ring.low(n - 1), ring.high(n - 1), ring.low(n - 2),
                            ring.high(n - 2), width);
        give(2 * n - 3, ring.high(n - 2));
        give(2 * n - 2, ring.low(n - 1));
    }
}

// A single row is no signal to filter.
template <template <class> class Filter, class T, class Rows>
void analyseAll(const Filter<T>& filter, Span y, int width, const BufferRows<T>& buffer, Rows& rows)
{
    if (y.count > 1) return analyseColumns(filter, y, width, buffer, rows);
    T* const room = rows.room(y.first);
    singleToHalf<Filter<T>>(halfOf(y.first), rows.sample(y.first), room, width);
    rows.give(y.first, room);
}

template <template <class> class Filter, class T, class Rows>
void synthesiseAll(const Filter<T>& filter, Span y, int width, const BufferRows<T>& buffer, Rows& rows)
{
    if (y.count > 1) return synthesiseColumns(filter, y, width, buffer, rows);
    singleFromHalf<Filter<T>>(halfOf(y.first), rows.half(y.first, buffer[0]), rows.room(y.first), width);
}

} // namespace qov

#endif
