// Vector and matrix helpers in 32 bits. Rows are not empty; a destination may be a source, also where it
// holds another type afterwards. A result is the exact one times 2^-scale, rounded to nearest, ties to even,
// and saturated. The floating-point forms rely on rounding to nearest.
#ifndef QOV_KERNELS_VECTOR_H
#define QOV_KERNELS_VECTOR_H

#include "family.h"

namespace qov {

typedef void CombineVectors_32s(const Qov32s* src1, const Qov32s* src2, Qov32s* dst, ptrdiff_t len,
                                int scale);
typedef void AddConstant_32s(const Qov32s* src, Qov32s value, Qov32s* dst, ptrdiff_t len, int scale);
typedef void ShiftPicture_32s(const Qov32s* src, ptrdiff_t srcStep, int shift, Qov32s* dst, ptrdiff_t dstStep,
                              QoviSize roi);

struct VectorKernels {
    void (*convert_32s32f)(const Qov32s* src, Qov32f* dst, ptrdiff_t len, int scale);
    void (*convert_32f32s)(const Qov32f* src, Qov32s* dst, ptrdiff_t len, QovRoundMode mode, int scale);
    void (*add_32f)(const Qov32f* src1, const Qov32f* src2, Qov32f* dst, ptrdiff_t len);
    CombineVectors_32s* add_32s;
    CombineVectors_32s* subtract_32s; // src1 - src2
    AddConstant_32s* addConstant_32s;
    AddConstant_32s* subtractConstant_32s; // src - value

    // Steps in bytes.
    void (*multiply_32f)(const Qov32f* src, ptrdiff_t srcStep, Qov32f factor, Qov32f* dst, ptrdiff_t dstStep,
                         QoviSize roi);
    ShiftPicture_32s* shiftRight_32s; // by 0 to 31
    ShiftPicture_32s* shiftLeft_32s;
    void (*complement_32s)(Qov32s* srcDst, ptrdiff_t step, QoviSize roi); // x >= 0 ? x : 2^31 - x
};

QOV_DECLARE_FAMILY(VectorKernels, vectorKernels)

} // namespace qov

#endif
