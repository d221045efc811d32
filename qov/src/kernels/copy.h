// Copies, interleaved pixels to and from planes, conversions of the type, shifts.
#ifndef QOV_KERNELS_COPY_H
#define QOV_KERNELS_COPY_H

#include "planes.h"

namespace qov {

struct CopyKernels {
    void (*zeroBytes)(Qov8u* dst, ptrdiff_t n);
    void (*copyBytes)(const Qov8u* src, Qov8u* dst, ptrdiff_t n);
    void (*copy_8u)(const Qov8u* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize roi);
    SplitPlanes* split3;
    SplitPlanes* split4;
    JoinPlanes* join3;
    JoinPlanes* join4;
    void (*convert_8u16s)(const Qov8u* src, ptrdiff_t srcStep, Qov16s* dst, ptrdiff_t dstStep, QoviSize roi);
    void (*convert_16s8u)(const Qov16s* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize roi);

    // By 0 to 15 bits; src == dst is allowed.
    void (*shiftRight_16s)(const Qov16s* src, int shift, Qov16s* dst, int len);
    void (*shiftLeft_16s)(const Qov16s* src, int shift, Qov16s* dst, int len);
};

QOV_DECLARE_FAMILY(CopyKernels, copyKernels)

} // namespace qov

#endif
