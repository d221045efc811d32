// Photo core transforms of JPEG XR (ITU-T T.832, 9.9.7 and D.4.5), in place on `columns` by `rows`
// macroblocks of one form that stand side by side; neither is 0. Steps in bytes, pointers aligned to their
// elements.
#ifndef QOV_KERNELS_PCT_H
#define QOV_KERNELS_PCT_H

#include "family.h"

namespace qov {

template <class T>
using TransformMacroblocks = void(T* data, ptrdiff_t step, ptrdiff_t columns, ptrdiff_t rows);

template <class T>
struct PctForm {
    TransformMacroblocks<T>* forward;
    TransformMacroblocks<T>* inverse;
};

template <class T>
struct PctForms {
    PctForm<T> form16x16, form8x16, form8x8; // width by height
};

struct PctKernels {
    PctForms<Qov32s> of32s;
    PctForms<Qov16s> of16s;
    PctForms<Qov32f> of32f;
};

QOV_DECLARE_FAMILY(PctKernels, pctKernels)

} // namespace qov

#endif
