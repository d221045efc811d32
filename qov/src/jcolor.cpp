#include "active.h"
#include "planescheck.h"
#include "qovicolor.h"

using namespace qov;

// The layouts of a conversion of `n` channels.
#define TO_LUMA(pixels, kernel)                                                                              \
    QovStatus qovi##pixels##ToY_JPEG_8u_C3C1R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep,      \
                                              QoviSize roi)                                                  \
    {                                                                                                        \
        return split(active.color->kernel, 3, 1, pSrc, srcStep, &pDst, dstStep, roi);                        \
    }
#define TO_PLANES(name, n, kernel)                                                                           \
    QovStatus qovi##name##_JPEG_8u_C##n##P##n##R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[n],       \
                                                 int dstStep, QoviSize roi)                                  \
    {                                                                                                        \
        return split(active.color->kernel, n, n, pSrc, srcStep, pDst, dstStep, roi);                         \
    }
#define FROM_PLANES(name, n, kernel)                                                                         \
    QovStatus qovi##name##_JPEG_8u_P##n##C##n##R(const Qov8u* const pSrc[n], int srcStep, Qov8u* pDst,       \
                                                 int dstStep, QoviSize roi)                                  \
    {                                                                                                        \
        return join(active.color->kernel, n, pSrc, srcStep, pDst, dstStep, roi);                             \
    }
#define BETWEEN_PLANES(name, n, kernel)                                                                      \
    QovStatus qovi##name##_JPEG_8u_P##n##R(const Qov8u* const pSrc[n], int srcStep, Qov8u* const pDst[n],    \
                                           int dstStep, QoviSize roi)                                        \
    {                                                                                                        \
        return convert(active.color->kernel, Planes(pSrc, srcStep, n), Planes(pDst, dstStep, n), roi);       \
    }

TO_LUMA(RGB, rgbToY)
TO_LUMA(BGR, bgrToY)
TO_PLANES(RGBToYCbCr, 3, rgbToYCbCr)
TO_PLANES(BGRToYCbCr, 3, bgrToYCbCr)
TO_PLANES(CMYKToYCCK, 4, cmykToYcck)
FROM_PLANES(YCbCrToRGB, 3, yCbCrToRgb)
FROM_PLANES(YCbCrToBGR, 3, yCbCrToBgr)
FROM_PLANES(YCCKToCMYK, 4, ycckToCmyk)
BETWEEN_PLANES(RGBToYCbCr, 3, planesToYCbCr)
BETWEEN_PLANES(YCbCrToRGB, 3, planesToRgb)
BETWEEN_PLANES(CMYKToYCCK, 4, planesToYcck)
BETWEEN_PLANES(YCCKToCMYK, 4, planesToCmyk)

QovStatus qoviRGBToY_JPEG_8u_P3C1R(const Qov8u* const pSrc[3], int srcStep, Qov8u* pDst, int dstStep,
                                   QoviSize roi)
{
    return convert(active.color->planesToY, Planes(pSrc, srcStep, 3), Planes(&pDst, dstStep, 1), roi);
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
