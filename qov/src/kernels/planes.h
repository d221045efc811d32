// Kernels between interleaved pixels and planes, and from planes to planes. Steps in bytes, any alignment;
// the picture is not empty; source and destination are apart.
#ifndef QOV_KERNELS_PLANES_H
#define QOV_KERNELS_PLANES_H

#include "family.h"

namespace qov {

typedef void SplitPlanes(const Qov8u* src, ptrdiff_t srcStep, Qov8u* const dst[], ptrdiff_t dstStep,
                         QoviSize roi);
typedef void JoinPlanes(const Qov8u* const src[], ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep,
                        QoviSize roi);
typedef void ConvertPlanes(const Qov8u* const src[], ptrdiff_t srcStep, Qov8u* const dst[], ptrdiff_t dstStep,
                           QoviSize roi);

} // namespace qov

#endif
