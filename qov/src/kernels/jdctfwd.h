// Forward DCT of one 8x8 block, with level shift and quantisation (ITU-T T.81, A.3.1, A.3.3, A.3.4).
#ifndef QOV_KERNELS_JDCTFWD_H
#define QOV_KERNELS_JDCTFWD_H

#include "family.h"

namespace qov {

// dst: 64 coefficients by rows. src of the image forms: 8 rows, srcStep bytes apart. table: 64 steps by rows;
// a step of 0 counts as 1. src == dst is allowed for quant_16s.
struct DctFwdKernels {
    void (*dct_8u16s)(const Qov8u* src, ptrdiff_t srcStep, Qov16s* dst);
    void (*quant_16s)(const Qov16s* src, Qov16s* dst, const Qov16u* table);
    void (*quantShift_8u16s)(const Qov8u* src, ptrdiff_t srcStep, Qov16s* dst, const Qov16u* table);
    void (*quantShift_16u16s)(const Qov16u* src, ptrdiff_t srcStep, Qov16s* dst, const Qov32f* table);
};

QOV_DECLARE_FAMILY(DctFwdKernels, dctFwdKernels)

} // namespace qov

#endif
