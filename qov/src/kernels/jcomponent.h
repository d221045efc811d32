// Component transforms of JPEG 2000 (ITU-T T.800, annex G). Steps in bytes, pointers aligned to their
// elements; the picture is not empty; planes are apart from each other and, but for the forms in place,
// source from destination. The floating-point forms rely on rounding to nearest.
#ifndef QOV_KERNELS_JCOMPONENT_H
#define QOV_KERNELS_JCOMPONENT_H

#include "family.h"

namespace qov {

template <class T>
using TransformPlanes = void(T* const planes[3], ptrdiff_t step, QoviSize roi);
template <class T>
using TransformToPlanes = void(const T* src, ptrdiff_t srcStep, T* const dst[3], ptrdiff_t dstStep,
                               QoviSize roi);
template <class T>
using TransformFromPlanes = void(const T* const src[3], ptrdiff_t srcStep, T* dst, ptrdiff_t dstStep,
                                 QoviSize roi);

struct ComponentKernels {
    TransformPlanes<Qov16s>* rctFwd16s;
    TransformPlanes<Qov32s>* rctFwd32s;
    TransformPlanes<Qov16s>* rctInv16s;
    TransformPlanes<Qov32s>* rctInv32s;
    TransformToPlanes<Qov16s>* rctToPlanes16s;
    TransformToPlanes<Qov32s>* rctToPlanes32s;
    TransformFromPlanes<Qov16s>* rctFromPlanes16s;
    TransformFromPlanes<Qov32s>* rctFromPlanes32s;
    TransformPlanes<Qov16s>* ictFwd16s;
    TransformPlanes<Qov32s>* ictFwd32s;
    TransformPlanes<Qov32f>* ictFwd32f;
    TransformPlanes<Qov16s>* ictInv16s;
    TransformPlanes<Qov32s>* ictInv32s;
    TransformPlanes<Qov32f>* ictInv32f;
    TransformToPlanes<Qov32f>* ictToPlanes32f;
    TransformFromPlanes<Qov32f>* ictFromPlanes32f;
};

QOV_DECLARE_FAMILY(ComponentKernels, componentKernels)

} // namespace qov

#endif
