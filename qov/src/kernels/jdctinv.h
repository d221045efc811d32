// Inverse DCT of one dequantised 8x8 block, with level shift (ITU-T T.81, A.3.4, A.3.3, A.3.1).
#ifndef QOV_KERNELS_JDCTINV_H
#define QOV_KERNELS_JDCTINV_H

#include "family.h"

namespace qov {

typedef void InverseToBytes(const Qov16s* src, Qov8u* dst, ptrdiff_t dstStep, const Qov16u* table);

// src: 64 coefficients by rows, of which the corner forms read the low NxN only and take the others as 0.
// table: 64 steps by rows; products are limited to 16 bits. dst of the image forms: 8 rows (4, 2), dstStep
// bytes apart. src == dst is allowed for quant_16s.
struct DctInvKernels {
    void (*quant_16s)(const Qov16s* src, Qov16s* dst, const Qov16u* table);
    InverseToBytes *quantShift, *quantShiftCorner4, *quantShiftCorner2, *quantShiftCorner1;
    InverseToBytes *quantShiftTo4x4, *quantShiftTo2x2; // reduced size, from the 4x4 and the 2x2 corner
    void (*quantShift_16s16u)(const Qov16s* src, Qov16u* dst, ptrdiff_t dstStep, const Qov32f* table);
};

QOV_DECLARE_FAMILY(DctInvKernels, dctInvKernels)

} // namespace qov

#endif
