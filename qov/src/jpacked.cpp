#include "active.h"
#include "planescheck.h"
#include "qovipacked.h"

using namespace qov;

QovStatus qoviRGB555ToYCbCr_JPEG_16u8u_C3P3R(const Qov16u* pSrc, int srcStep, Qov8u* const pDst[3],
                                             int dstStep, QoviSize roi)
{
    return convert(active.packed->rgb555ToYCbCr, Pixels(pSrc, srcStep, 1), Planes(pDst, dstStep, 3), roi);
}

QovStatus qoviBGR555ToYCbCr_JPEG_16u8u_C3P3R(const Qov16u* pSrc, int srcStep, Qov8u* const pDst[3],
                                             int dstStep, QoviSize roi)
{
    return convert(active.packed->bgr555ToYCbCr, Pixels(pSrc, srcStep, 1), Planes(pDst, dstStep, 3), roi);
}

QovStatus qoviRGB565ToYCbCr_JPEG_16u8u_C3P3R(const Qov16u* pSrc, int srcStep, Qov8u* const pDst[3],
                                             int dstStep, QoviSize roi)
{
    return convert(active.packed->rgb565ToYCbCr, Pixels(pSrc, srcStep, 1), Planes(pDst, dstStep, 3), roi);
}

QovStatus qoviBGR565ToYCbCr_JPEG_16u8u_C3P3R(const Qov16u* pSrc, int srcStep, Qov8u* const pDst[3],
                                             int dstStep, QoviSize roi)
{
    return convert(active.packed->bgr565ToYCbCr, Pixels(pSrc, srcStep, 1), Planes(pDst, dstStep, 3), roi);
}

QovStatus qoviYCbCrToRGB555_JPEG_8u16u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov16u* pDst,
                                             int dstStep, QoviSize roi)
{
    return convert(active.packed->yCbCrToRgb555, Planes(pSrc, srcStep, 3), Pixels(pDst, dstStep, 1), roi);
}

QovStatus qoviYCbCrToBGR555_JPEG_8u16u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov16u* pDst,
                                             int dstStep, QoviSize roi)
{
    return convert(active.packed->yCbCrToBgr555, Planes(pSrc, srcStep, 3), Pixels(pDst, dstStep, 1), roi);
}

QovStatus qoviYCbCrToRGB565_JPEG_8u16u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov16u* pDst,
                                             int dstStep, QoviSize roi)
{
    return convert(active.packed->yCbCrToRgb565, Planes(pSrc, srcStep, 3), Pixels(pDst, dstStep, 1), roi);
}

QovStatus qoviYCbCrToBGR565_JPEG_8u16u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov16u* pDst,
                                             int dstStep, QoviSize roi)
{
    return convert(active.packed->yCbCrToBgr565, Planes(pSrc, srcStep, 3), Pixels(pDst, dstStep, 1), roi);
}

QovStatus qoviYCbCr422ToRGB_JPEG_8u_C2C3R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep,
                                          QoviSize roi)
{
    return convert(active.packed->yCbCr422ToRgb, Pixels(pSrc, srcStep, 2), Pixels(pDst, dstStep, 3), roi);
}
