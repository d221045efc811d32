// Chroma sampling of rows.
#ifndef QOV_KERNELS_JSAMPLE_H
#define QOV_KERNELS_JSAMPLE_H

#include "family.h"

namespace qov {

// Any alignment; sources and destination apart. Nothing beside the rows is read or written.
struct SampleKernels {
    // n samples out, 2 n in; n may be 0.
    void (*boxH2V1)(const Qov8u* src, ptrdiff_t n, Qov8u* dst);
    void (*boxH2V2)(const Qov8u* src1, const Qov8u* src2, ptrdiff_t n, Qov8u* dst);

    // n samples in, 2 n out; n >= 1.
    void (*triangleH2V1)(const Qov8u* src, ptrdiff_t n, Qov8u* dst);
    void (*triangleH2V2)(const Qov8u* nearRow, const Qov8u* farRow, ptrdiff_t n, Qov8u* dst);
};

QOV_DECLARE_FAMILY(SampleKernels, sampleKernels)

} // namespace qov

#endif
