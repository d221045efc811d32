// Colour conversion between packed 16-bit pixels, Y Cb Y Cr and planes. Steps in bytes; the picture is not
// empty; source and destination are apart.
#ifndef QOV_KERNELS_JPACKED_H
#define QOV_KERNELS_JPACKED_H

#include "family.h"

namespace qov {

typedef void PackedToPlanes(const Qov16u* src, ptrdiff_t srcStep, Qov8u* const dst[], ptrdiff_t dstStep,
                            QoviSize roi);
typedef void PlanesToPacked(const Qov8u* const src[], ptrdiff_t srcStep, Qov16u* dst, ptrdiff_t dstStep,
                            QoviSize roi);

struct PackedKernels {
    PackedToPlanes* rgb555ToYCbCr;
    PackedToPlanes* bgr555ToYCbCr;
    PackedToPlanes* rgb565ToYCbCr;
    PackedToPlanes* bgr565ToYCbCr;
    PlanesToPacked* yCbCrToRgb555;
    PlanesToPacked* yCbCrToBgr555;
    PlanesToPacked* yCbCrToRgb565;
    PlanesToPacked* yCbCrToBgr565;
    void (*yCbCr422ToRgb)(const Qov8u* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize roi);
};

QOV_DECLARE_FAMILY(PackedKernels, packedKernels)

} // namespace qov

#endif
