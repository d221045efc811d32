// The row side of the inverse wavelets: where the rows of a band come from, and the filter bound to its two
// sources.
#ifndef JPEG2000_WTINVROW_H
#define JPEG2000_WTINVROW_H

#include "image.h"

namespace jpeg2000 {

// A read cursor over the rows of a band.
template <class T, unsigned nOfChannels>
class ImageRowInput {
public:
    ImageRowInput(const ImageCoreC<T, nOfChannels>& image) : m_row(image.data), m_step(image.step) {}

    const T* operator*() const { return m_row; }
    ImageRowInput& operator++()
    {
        addrInc(m_row, m_step);
        return *this;
    }

private:
    const T* m_row;
    unsigned m_step;
};

// Joins row by row, from the top, the low and the high half. Agregate names the element, the cursor and the
// filter of one row.
template <class Agregate>
class WTInvRow {
public:
    using Element = typename Agregate::Element;
    using Input = typename Agregate::Input;

    WTInvRow(const ROpenInterval<unsigned>& interval, const Input& low, const Input& high)
        : m_interval(interval), m_low(low), m_high(high)
    {
    }

    void Transform(Element* dst)
    {
        Agregate::Filter(*m_low, *m_high, m_interval, dst);
        ++m_low;
        ++m_high;
    }

private:
    ROpenInterval<unsigned> m_interval;
    Input m_low, m_high;
};

} // namespace jpeg2000

#endif
