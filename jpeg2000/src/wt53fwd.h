// The reversible 5-3 wavelet down the columns (ITU-T T.800, annex F). Rows come in from the top; a finished
// row goes through the row filter at once, so three rows are all that is held.
#ifndef JPEG2000_WT53FWD_H
#define JPEG2000_WT53FWD_H

#include "ring.h"
#include "wt53fwdrow.h"
#include "wtfwdrow.h"

namespace jpeg2000 {

template <class T, class Row>
class WT53FwdColPipeline {
public:
    // Of `rect`, which is not empty, size and parity matter; src is its first sample. rowOfLow and rowOfHigh
    // filter the rows of the vertical low and high half.
    WT53FwdColPipeline(const ImageCoreC<T, 1u>& src, const Rect& rect, const Row& rowOfLow,
                       const Row& rowOfHigh);

    // Takes the next row of the source; to be called once for each.
    void Step();

private:
    const T* Source(unsigned delay) const { return addrAdd(src, -static_cast<ptrdiff_t>(delay) * srcStep); }
    T* HighRow(unsigned delay) { return high.data[high.position ^ delay]; } // 0 or 1
    int Length() const { return static_cast<int>(width); }

    void StepForHeight1();
    void StepForHeight2();
    void StepForHeight3();
    void StepForHeight4nMore();

    void InnerPair();
    void HighInner(const T* odd, const T* even0, const T* even1);
    void HighEdge(const T* odd, const T* even);
    void LowInner(const T* even);
    void LowEdge(const T* even);

    const T* src; // the row that Step takes
    ptrdiff_t srcStep;
    unsigned width, height, rowIndex = 0;
    bool isOddStart;
    FixedBuffer<T> low;
    RingBuffer<FixedBuffer<T>> high; // the latest two
    Row rowOfLow, rowOfHigh;
};

template <class T, class RowOutput>
struct WT53FwdAgregate {
    using Element = T;
    using Row = WTFwdRow<WT53FwdRowAgregate<T, RowOutput>>;
    using ColPipeline = WT53FwdColPipeline<T, Row>;
};

} // namespace jpeg2000

#endif
