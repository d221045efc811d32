#include "active.h"
#include "planescheck.h"
#include "qovipacked.h"

using namespace qov;

// Both directions between words of a format and planes.
#define PACKED(format, toYCbCr, fromYCbCr)                                                                   \
    QovStatus qovi##format##ToYCbCr_JPEG_16u8u_C3P3R(const Qov16u* pSrc, int srcStep, Qov8u* const pDst[3],  \
                                                     int dstStep, QoviSize roi)                              \
    {                                                                                                        \
        return convert(active.packed->toYCbCr, Pixels(pSrc, srcStep, 1), Planes(pDst, dstStep, 3), roi);     \
    }                                                                                                        \
    QovStatus qoviYCbCrTo##format##_JPEG_8u16u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov16u* pDst,  \
                                                     int dstStep, QoviSize roi)                              \
    {                                                                                                        \
        return convert(active.packed->fromYCbCr, Planes(pSrc, srcStep, 3), Pixels(pDst, dstStep, 1), roi);   \
    }

PACKED(RGB555, rgb555ToYCbCr, yCbCrToRgb555)
PACKED(BGR555, bgr555ToYCbCr, yCbCrToBgr555)
PACKED(RGB565, rgb565ToYCbCr, yCbCrToRgb565)
PACKED(BGR565, bgr565ToYCbCr, yCbCrToBgr565)

QovStatus qoviYCbCr422ToRGB_JPEG_8u_C2C3R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep,
                                          QoviSize roi)
{
    return convert(active.packed->yCbCr422ToRgb, Pixels(pSrc, srcStep, 2), Pixels(pDst, dstStep, 3), roi);
}
