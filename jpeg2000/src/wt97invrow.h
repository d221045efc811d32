// The irreversible 9-7 filter on one row, backwards (ITU-T T.800, F.3.8.2): low samples are scaled by K and
// high ones by 1 / K, then they join, edges by symmetric extension. Sources and destination do not overlap.
#ifndef JPEG2000_WT97INVROW_H
#define JPEG2000_WT97INVROW_H

#include "geometry.h"

namespace jpeg2000 {

// The parity of the interval's origin tells which half the first sample comes from. Not empty.
template <class T>
void WT97InvRow(const T* low, const T* high, const ROpenInterval<unsigned>& interval, T* dst);

// A row of `size` samples (1 or more) that begins with a low one.
template <class T>
void WT97InvRowFirstL(const T* low, const T* high, unsigned size, T* dst);

// The same for one that begins with a high sample.
template <class T>
void WT97InvRowFirstH(const T* low, const T* high, unsigned size, T* dst);

template <class T, class RowInput>
struct WT97InvRowAgregate {
    using Element = T;
    using Input = RowInput;

    static void Filter(const T* low, const T* high, const ROpenInterval<unsigned>& interval, T* dst)
    {
        WT97InvRow(low, high, interval, dst);
    }
};

} // namespace jpeg2000

#endif
