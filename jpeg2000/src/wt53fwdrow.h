// The reversible 5-3 filter on one row (ITU-T T.800, F.4.8.1): low and high samples apart, edges by symmetric
// extension. Source and destinations do not overlap.
#ifndef JPEG2000_WT53FWDROW_H
#define JPEG2000_WT53FWDROW_H

#include "geometry.h"

namespace jpeg2000 {

// The parity of the interval's origin tells which half the first sample belongs to. Not empty.
template <class T>
void WT53FwdRow(const T* src, const ROpenInterval<unsigned>& interval, T* low, T* high);

// A row of `size` samples (1 or more) that begins with a low one.
template <class T>
void WT53FwdRowFirstL(const T* src, unsigned size, T* low, T* high);

template <class T, class RowOutput>
struct WT53FwdRowAgregate {
    using Element = T;
    using Output = RowOutput;

    static void Filter(const T* src, const ROpenInterval<unsigned>& interval, T* low, T* high)
    {
        WT53FwdRow(src, interval, low, high);
    }
};

} // namespace jpeg2000

#endif
