// Differences of samples or DC values: the decoding of one (ITU-T T.81, F.2.2.1, H.1.2.2).
#ifndef QOV_KERNELS_JHUFFDEC_DIFFERENCE_H
#define QOV_KERNELS_JHUFFDEC_DIFFERENCE_H

#include "jhuffdec_code.h"

namespace qov {
namespace {

const int maxSize = 15;     // of a coefficient
const int maxCategory = 16; // of a difference

// A difference. Only 32768 is of category 16, and no bits follow. False: the code or the category is not one.
// It takes up to 31 bits. Behind it there are as many as before less one window, or 56, unless the data end.
QOV_INLINE bool takeDifference(BitReader& in, const HuffDecSpec* spec, int highestCategory, int& difference)
{
    const Qov32u entry = look(in, spec);
    difference = valueOf(entry);
    if (difference) [[likely]] {
        in.skip(lengthOf(entry));
        return runEndOf(entry) == 1;
    }
    const int category = takeSymbol(in, spec, entry);
    if (category > highestCategory) return false;
    if (category == maxCategory)
        difference = -32768;
    else if (category > 0)
        difference = in.takeValue(category);
    in.refill();
    return true;
}

} // namespace
} // namespace qov

#endif
