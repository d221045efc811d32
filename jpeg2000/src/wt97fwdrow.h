// The irreversible 9-7 filter on one row (ITU-T T.800, F.4.8.2): low samples scaled by 1 / K and high ones by
// K, apart, edges by symmetric extension. Source and destinations do not overlap.
#ifndef JPEG2000_WT97FWDROW_H
#define JPEG2000_WT97FWDROW_H

#include "geometry.h"

namespace jpeg2000 {

// The parity of the interval's origin tells which half the first sample belongs to. Not empty.
template <class T>
void WT97FwdRow(const T* src, const ROpenInterval<unsigned>& interval, T* low, T* high);

// A row of `size` samples (1 or more) that begins with a low one.
template <class T>
void WT97FwdRowFirstL(const T* src, unsigned size, T* low, T* high);

// The same for one that begins with a high sample.
template <class T>
void WT97FwdRowFirstH(const T* src, unsigned size, T* low, T* high);

template <class T, class RowOutput>
struct WT97FwdRowAgregate {
    using Element = T;
    using Output = RowOutput;

    static void Filter(const T* src, const ROpenInterval<unsigned>& interval, T* low, T* high)
    {
        WT97FwdRow(src, interval, low, high);
    }
};

} // namespace jpeg2000

#endif
