// The reversible 5-3 wavelet up the columns (ITU-T T.800, annex F). Rows of the bands are joined from the top
// into the rows of the destination and lifted there as soon as their neighbours have come.
#ifndef JPEG2000_WT53INV_H
#define JPEG2000_WT53INV_H

#include "wt53invrow.h"
#include "wtinvrow.h"

namespace jpeg2000 {

template <class T, class Row>
class WT53InvColPipeline {
public:
    // Of `rect`, which is not empty, size and parity matter; dst is its first sample. rowOfLow and rowOfHigh
    // give the rows of the vertical low and high half.
    WT53InvColPipeline(const Row& rowOfLow, const Row& rowOfHigh, const ImageCoreC<T, 1u>& dst,
                       const Rect& rect);

    // Takes the rows in their order, low and high ones in turn; to be called once for each of the
    // destination's.
    void Step();

private:
    // The newest row, or one that came before it.
    T* Dst(unsigned delay) const { return addrAdd(dst, -static_cast<ptrdiff_t>(delay) * dstStep); }
    int Length() const { return static_cast<int>(width); }
    bool IsLow() const { return (rowIndex % 2 == 1) == isOddStart; }

    void StepForHeight1();
    void StepForHeight2();
    void StepForHeight3();
    void StepForHeight4nMore();

    void InnerPair();
    void EvenInner(T* low, const T* high0, const T* high1);
    void EvenEdge(T* low, const T* high);
    void OddInner(T* high, const T* even0, const T* even1);
    void OddEdge(T* high, const T* even);

    Row rowOfLow, rowOfHigh;
    T* dst; // the row that Step fills
    ptrdiff_t dstStep;
    unsigned width, height, rowIndex = 0;
    bool isOddStart;
    FixedBuffer<T> sum;
};

template <class T, class RowInput>
struct WT53InvAgregate {
    using Element = T;
    using Row = WTInvRow<WT53InvRowAgregate<T, RowInput>>;
    using ColPipeline = WT53InvColPipeline<T, Row>;
};

} // namespace jpeg2000

#endif
