// Chroma sampling of pictures.
#ifndef QOV_KERNELS_JRESAMPLE_H
#define QOV_KERNELS_JRESAMPLE_H

#include "family.h"

namespace qov {

// Steps in bytes; any alignment; sources and destination apart; dstSize not empty.
typedef void ResamplePicture(const Qov8u* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep,
                             QoviSize dstSize);

struct ResampleKernels {
    // src has 2 dstSize.width samples a row; at H2V2 there are 2 dstSize.height rows of them.
    ResamplePicture* downH2V1;
    ResamplePicture* downH2V2;

    // src has dstSize.width / 2 >= 1 samples a row and one more on either side; at H2V2 there are
    // dstSize.height / 2 >= 1 such rows and one more above and below.
    ResamplePicture* upH2V1;
    ResamplePicture* upH2V2;
};

QOV_DECLARE_FAMILY(ResampleKernels, resampleKernels)

} // namespace qov

#endif
