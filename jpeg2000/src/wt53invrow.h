// The reversible 5-3 filter on one row, backwards (ITU-T T.800, F.3.8.1): low and high samples join, edges by
// symmetric extension. Sources and destination do not overlap.
#ifndef JPEG2000_WT53INVROW_H
#define JPEG2000_WT53INVROW_H

#include "geometry.h"

namespace jpeg2000 {

// The parity of the interval's origin tells which half the first sample comes from. Not empty.
template <class T>
void WT53InvRow(const T* low, const T* high, const ROpenInterval<unsigned>& interval, T* dst);

// A row of `size` samples (1 or more) that begins with a low one.
template <class T>
void WT53InvRowFirstL(const T* low, const T* high, unsigned size, T* dst);

template <class T, class RowInput>
struct WT53InvRowAgregate {
    using Element = T;
    using Input = RowInput;

    static void Filter(const T* low, const T* high, const ROpenInterval<unsigned>& interval, T* dst)
    {
        WT53InvRow(low, high, interval, dst);
    }
};

} // namespace jpeg2000

#endif
