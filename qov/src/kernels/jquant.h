// Quantisation of one 8x8 block of coefficients (ITU-T T.81, A.3.4).
#ifndef QOV_KERNELS_JQUANT_H
#define QOV_KERNELS_JQUANT_H

#include "family.h"

namespace qov {

// block: 64 coefficients, in place. table: 64 steps, in the same order.
struct QuantKernels {
    void (*fwd_16s)(Qov16s* block, const Qov16u* table); // a step of 0 counts as 1
    void (*inv_16s)(Qov16s* block, const Qov16u* table); // products limited to 16 bits
};

QOV_DECLARE_FAMILY(QuantKernels, quantKernels)

} // namespace qov

#endif
