// Points, sizes, rectangles and intervals of the reference grid, and the ruler that cuts an interval.
#ifndef JPEG2000_GEOMETRY_H
#define JPEG2000_GEOMETRY_H

#include "basics.h"
#include "qovdefs.h"

namespace jpeg2000 {

template <class T>
struct Point2D {
    T x = 0, y = 0;

    friend Point2D operator+(const Point2D& a, const Point2D& b) { return {a.x + b.x, a.y + b.y}; }
    friend Point2D operator-(const Point2D& a, const Point2D& b) { return {a.x - b.x, a.y - b.y}; }
};

struct RectSize {
    unsigned width = 0, height = 0;

    // The library's record: sides beyond 2^31 - 1 do not occur, as no image of that size can be allocated.
    operator QoviSize() const { return {static_cast<int>(width), static_cast<int>(height)}; }
};

struct Rect : Point2D<unsigned>, RectSize {
    Rect() = default;
    Rect(unsigned x0, unsigned y0, unsigned w, unsigned h) : Point2D<unsigned>{x0, y0}, RectSize{w, h} {}
};

template <class T>
struct ROpenInterval {
    T origin = 0, size = 0, end = 0; // end is exclusive

    ROpenInterval() = default;
    ROpenInterval(T from, T length) : origin(from), size(length), end(from + length) {}
};

// What both cover. Intervals that do not reach each other have origin and end 0xFFFFFFFF.
inline ROpenInterval<unsigned> Intersection(const ROpenInterval<unsigned>& a,
                                            const ROpenInterval<unsigned>& b)
{
    ROpenInterval<unsigned> common;
    common.origin = Max(a.origin, b.origin);
    common.end = Min(a.end, b.end);
    if (common.end < common.origin)
        common.origin = common.end = 0xFFFFFFFF;
    else
        common.size = common.end - common.origin;
    return common;
}

inline Rect Intersection(const Rect& a, const Rect& b)
{
    using Interval = ROpenInterval<unsigned>;
    const Interval x = Intersection(Interval(a.x, a.width), Interval(b.x, b.width));
    const Interval y = Intersection(Interval(a.y, a.height), Interval(b.y, b.height));
    return {x.origin, y.origin, x.size, y.size};
}

// Cuts an interval at the multiples of 2^order: a subband into precincts, a precinct into code-blocks.
struct RulerPow2 {
    unsigned origin = 0, firstCell = 0, step = 1, order = 0;
    unsigned nOfSegments = 0, firstSegmentSize = 0, lastSegmentSize = 0;

    void Init(unsigned start, unsigned size, unsigned gridOrder)
    {
        origin = start;
        order = gridOrder;
        step = 1u << gridOrder;
        firstCell = start >> gridOrder;
        nOfSegments =
            size == 0 ? 0 : static_cast<unsigned>(((step + 0ull + start + size - 1) >> order) - firstCell);
        firstSegmentSize = nOfSegments > 1 ? (firstCell + 1) * step - start : size;
        lastSegmentSize = nOfSegments > 1 ? size - (nOfSegments - 2) * step - firstSegmentSize : 0;
    }

    unsigned SegmSize(unsigned i) const
    {
        if (i == 0) return firstSegmentSize;
        return i == nOfSegments - 1 ? lastSegmentSize : step;
    }
};

} // namespace jpeg2000

#endif
