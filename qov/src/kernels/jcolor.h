// Colour conversion of JPEG pictures (JFIF 1.02), and 4:2:2 pixels to and from planes.
#ifndef QOV_KERNELS_JCOLOR_H
#define QOV_KERNELS_JCOLOR_H

#include "planes.h"

namespace qov {

struct ColorKernels {
    SplitPlanes* rgbToY;
    SplitPlanes* bgrToY;
    SplitPlanes* rgbToYCbCr;
    SplitPlanes* bgrToYCbCr;
    SplitPlanes* cmykToYcck;
    JoinPlanes* yCbCrToRgb;
    JoinPlanes* yCbCrToBgr;
    JoinPlanes* ycckToCmyk;
    ConvertPlanes* planesToY;
    ConvertPlanes* planesToYCbCr;
    ConvertPlanes* planesToRgb;
    ConvertPlanes* planesToYcck;
    ConvertPlanes* planesToCmyk;
    void (*split422)(const Qov8u* src, ptrdiff_t srcStep, Qov8u* const dst[3], const int dstStep[3],
                     QoviSize roi);
    void (*join422)(const Qov8u* const src[3], const int srcStep[3], Qov8u* dst, ptrdiff_t dstStep,
                    QoviSize roi);
};

QOV_DECLARE_FAMILY(ColorKernels, colorKernels)

} // namespace qov

#endif
