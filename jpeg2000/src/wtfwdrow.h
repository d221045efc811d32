// The row side of the forward wavelets: where filtered rows go, and the filter bound to its two destinations.
#ifndef JPEG2000_WTFWDROW_H
#define JPEG2000_WTFWDROW_H

#include "image.h"

namespace jpeg2000 {

// The samples of a row that is written.
template <class T>
using RowIterator = T*;

// A write cursor over the rows of a band.
template <class T, unsigned nOfChannels>
class ImageRowOutput {
public:
    ImageRowOutput(const ImageCoreC<T, nOfChannels>& image) : m_row(image.data), m_step(image.step) {}

    RowIterator<T> operator*() const { return m_row; }
    ImageRowOutput& operator++()
    {
        addrInc(m_row, m_step);
        return *this;
    }

private:
    RowIterator<T> m_row;
    unsigned m_step;
};

// Filters row by row, from the top, into the low and the high half. Agregate names the element, the cursor
// and the filter of one row.
template <class Agregate>
class WTFwdRow {
public:
    using Element = typename Agregate::Element;
    using Output = typename Agregate::Output;

    WTFwdRow(const ROpenInterval<unsigned>& interval, const Output& low, const Output& high)
        : m_interval(interval), m_low(low), m_high(high)
    {
    }

    void Transform(const Element* src)
    {
        Agregate::Filter(src, m_interval, *m_low, *m_high);
        ++m_low;
        ++m_high;
    }

private:
    ROpenInterval<unsigned> m_interval;
    Output m_low, m_high;
};

} // namespace jpeg2000

#endif
