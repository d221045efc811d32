// JPEG level shift (ITU-T T.81, A.3.1).
#ifndef QOV_KERNELS_JADD_H
#define QOV_KERNELS_JADD_H

#include "family.h"

namespace qov {

struct AddKernels {
    void (*add128_16s8u)(const Qov16s* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize roi);
    void (*sub128_8u16s)(const Qov8u* src, ptrdiff_t srcStep, Qov16s* dst, ptrdiff_t dstStep, QoviSize roi);
};

QOV_DECLARE_FAMILY(AddKernels, addKernels)

} // namespace qov

#endif
