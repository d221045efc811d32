// The two filters of whole wavelet transforms: the kernels of each, what becomes of a single sample, and rows
// to and from their halves.
#ifndef QOV_WAVELET2D_FILTERS_H
#define QOV_WAVELET2D_FILTERS_H

#include "active.h"
#include "wavelet2d_span.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace qov {

template <class T>
struct B53 {
    WaveletPair<T> row;
    Lifts53<T> lift;

    static T doubled(T v) { return T(v * Qov64s(2)); }
    static T halved(T v) { return T(v >> 1); }
};

// Twice and half in the manner of the other products of 9-7: rounded and saturated.
template <class T>
struct D97 {
    WaveletPair<T> row;
    Lifts97<T> lift;
    Scales97<T> scale;

    static T doubled(T v)
    {
        typedef std::numeric_limits<T> Limits;
        return T(std::clamp<Qov64s>(v * Qov64s(2), Limits::min(), Limits::max()));
    }
    static T halved(T v) { return T((v + Qov64s(1)) >> 1); }
};

// A single sample, or a row of them along columns, to its half and back.
template <class Filter, class T>
void singleToHalf(Half half, const T* src, T* dst, int width)
{
    std::transform(src, src + width, dst, [=](T v) { return half == lowHalf ? v : Filter::doubled(v); });
}
template <class Filter, class T>
void singleFromHalf(Half half, const T* src, T* dst, int width)
{
    std::transform(src, src + width, dst, [=](T v) { return half == lowHalf ? v : Filter::halved(v); });
}

// `row` has room for its border. Pairs that lack one of the two go through places of their own: the kernel
// always gives both.
template <template <class> class Filter, class T>
void analyseRow(const Filter<T>& filter, Span x, T* row, T* low, T* high)
{
    if (x.count == 1) {
        const Half half = halfOf(x.first);
        return singleToHalf<Filter<T>>(half, row, half == lowHalf ? low : high, 1);
    }
    T* const origin = row - x.first;
    extend(x, [=](int place) -> T& { return origin[place]; });
    const int from = x.first, to = (x.last() + 1) / 2;
    if (from < to) filter.row.forward(origin + 2 * from, 0, low, 0, high + from, 0, {to - from, 1});
    T unused;
    if (from > 0) filter.row.forward(origin, 0, &unused, 0, high, 0, {1, 1});
    if (to < x.pairs()) filter.row.forward(origin + 2 * to, 0, low + (to - from), 0, &unused, 0, {1, 1});
}

// `halves` are two rows of the buffer; `row` has room for its border.
template <template <class> class Filter, class T>
void synthesiseRow(const Filter<T>& filter, Span x, const T* low, const T* high, T* const halves[2], T* row)
{
    if (x.count == 1) {
        const Half half = halfOf(x.first);
        return singleFromHalf<Filter<T>>(half, half == lowHalf ? low : high, row, 1);
    }
    std::memcpy(halves[lowHalf], low, size_t(x.size(lowHalf)) * sizeof(T));
    std::memcpy(halves[highHalf], high, size_t(x.size(highHalf)) * sizeof(T));
    T* const bordered[2] = {halves[lowHalf] - x.first, halves[highHalf]};
    extend(x, [&](int place) -> T& { return bordered[halfOf(place)][place >> 1]; });
    filter.row.inverse(bordered[lowHalf], 0, bordered[highHalf], 0, row - x.first, 0, {x.pairs(), 1});
}

} // namespace qov

#endif
