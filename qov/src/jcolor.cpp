#include "active.h"
#include "planescheck.h"
#include "qovicolor.h"

using namespace qov;

QovStatus qoviRGBToY_JPEG_8u_C3C1R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep, QoviSize roi)
{
    return split(active.color->rgbToY, 3, 1, pSrc, srcStep, &pDst, dstStep, roi);
}

QovStatus qoviBGRToY_JPEG_8u_C3C1R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep, QoviSize roi)
{
    return split(active.color->bgrToY, 3, 1, pSrc, srcStep, &pDst, dstStep, roi);
}

QovStatus qoviRGBToY_JPEG_8u_P3C1R(const Qov8u* const pSrc[3], int srcStep, Qov8u* pDst, int dstStep,
                                   QoviSize roi)
{
    return convert(active.color->planesToY, Planes(pSrc, srcStep, 3), Planes(&pDst, dstStep, 1), roi);
}

QovStatus qoviRGBToYCbCr_JPEG_8u_C3P3R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[3], int dstStep,
                                       QoviSize roi)
{
    return split(active.color->rgbToYCbCr, 3, 3, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviBGRToYCbCr_JPEG_8u_C3P3R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[3], int dstStep,
                                       QoviSize roi)
{
    return split(active.color->bgrToYCbCr, 3, 3, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviRGBToYCbCr_JPEG_8u_P3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* const pDst[3],
                                     int dstStep, QoviSize roi)
{
    return convert(active.color->planesToYCbCr, Planes(pSrc, srcStep, 3), Planes(pDst, dstStep, 3), roi);
}

QovStatus qoviYCbCrToRGB_JPEG_8u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* pDst, int dstStep,
                                       QoviSize roi)
{
    return join(active.color->yCbCrToRgb, 3, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviYCbCrToBGR_JPEG_8u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* pDst, int dstStep,
                                       QoviSize roi)
{
    return join(active.color->yCbCrToBgr, 3, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviYCbCrToRGB_JPEG_8u_P3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* const pDst[3],
                                     int dstStep, QoviSize roi)
{
    return convert(active.color->planesToRgb, Planes(pSrc, srcStep, 3), Planes(pDst, dstStep, 3), roi);
}

QovStatus qoviCMYKToYCCK_JPEG_8u_C4P4R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[4], int dstStep,
                                       QoviSize roi)
{
    return split(active.color->cmykToYcck, 4, 4, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviCMYKToYCCK_JPEG_8u_P4R(const Qov8u* const pSrc[4], int srcStep, Qov8u* const pDst[4],
                                     int dstStep, QoviSize roi)
{
    return convert(active.color->planesToYcck, Planes(pSrc, srcStep, 4), Planes(pDst, dstStep, 4), roi);
}

QovStatus qoviYCCKToCMYK_JPEG_8u_P4C4R(const Qov8u* const pSrc[4], int srcStep, Qov8u* pDst, int dstStep,
                                       QoviSize roi)
{
    return join(active.color->ycckToCmyk, 4, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviYCCKToCMYK_JPEG_8u_P4R(const Qov8u* const pSrc[4], int srcStep, Qov8u* const pDst[4],
                                     int dstStep, QoviSize roi)
{
    return convert(active.color->planesToCmyk, Planes(pSrc, srcStep, 4), Planes(pDst, dstStep, 4), roi);
}

namespace {

template <class Plane>
QovStatus check422(const void* packed, int packedStep, Plane* const* planes, const int* steps, QoviSize roi)
{
    if (!packed || !steps || nullPlane(planes, 3)) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    const QoviSize chroma = {int((Qov64s(roi.width) + 1) / 2), roi.height};
    if (shortStep(packedStep, roi, 2) || shortStep(steps[0], roi, 1) || shortStep(steps[1], chroma, 1) ||
        shortStep(steps[2], chroma, 1))
        return qovStsStep;
    return qovStsNoErr;
}

} // namespace

QovStatus qoviYCbCr422_8u_C2P3R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[3], const int dstStep[3],
                                QoviSize roi)
{
    const QovStatus status = check422(pSrc, srcStep, pDst, dstStep, roi);
    if (status == qovStsNoErr) active.color->split422(pSrc, srcStep, pDst, dstStep, roi);
    return status;
}

QovStatus qoviYCbCr422_8u_P3C2R(const Qov8u* const pSrc[3], const int srcStep[3], Qov8u* pDst, int dstStep,
                                QoviSize roi)
{
    const QovStatus status = check422(pDst, dstStep, pSrc, srcStep, roi);
    if (status == qovStsNoErr) active.color->join422(pSrc, srcStep, pDst, dstStep, roi);
    return status;
}
