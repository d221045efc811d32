#include "active.h"
#include "planescheck.h"
#include "qovicomponent.h"
#include "quietfloats.h"

using namespace qov;

namespace {

constexpr int planeCount = 3;
template <class T>
constexpr int pixelBytes = int(planeCount * sizeof(T));

template <class T>
QovStatus inPlace(TransformPlanes<T>* kernel, T* const* planes, int step, QoviSize roi)
{
    if (nullPlane(planes, planeCount)) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortStep(step, roi, int(sizeof(T)))) return qovStsStep;
    kernel(planes, step, roi);
    return qovStsNoErr;
}

template <class T>
QovStatus toPlanes(TransformToPlanes<T>* kernel, const T* src, int srcStep, T* const* dst, int dstStep,
                   QoviSize roi)
{
    if (!src || nullPlane(dst, planeCount)) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortStep(srcStep, roi, pixelBytes<T>) || shortStep(dstStep, roi, int(sizeof(T)))) return qovStsStep;
    kernel(src, srcStep, dst, dstStep, roi);
    return qovStsNoErr;
}

template <class T>
QovStatus fromPlanes(TransformFromPlanes<T>* kernel, const T* const* src, int srcStep, T* dst, int dstStep,
                     QoviSize roi)
{
    if (nullPlane(src, planeCount) || !dst) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortStep(srcStep, roi, int(sizeof(T))) || shortStep(dstStep, roi, pixelBytes<T>)) return qovStsStep;
    kernel(src, srcStep, dst, dstStep, roi);
    return qovStsNoErr;
}

} // namespace

QovStatus qoviRCTFwd_JPEG2K_16s_P3IR(Qov16s* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    return inPlace(active.component->rctFwd16s, pSrcDst, srcDstStep, roi);
}

QovStatus qoviRCTFwd_JPEG2K_32s_P3IR(Qov32s* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    return inPlace(active.component->rctFwd32s, pSrcDst, srcDstStep, roi);
}

QovStatus qoviRCTInv_JPEG2K_16s_P3IR(Qov16s* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    return inPlace(active.component->rctInv16s, pSrcDst, srcDstStep, roi);
}

QovStatus qoviRCTInv_JPEG2K_32s_P3IR(Qov32s* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    return inPlace(active.component->rctInv32s, pSrcDst, srcDstStep, roi);
}

QovStatus qoviRCTFwd_JPEG2K_16s_C3P3R(const Qov16s* pSrc, int srcStep, Qov16s* const pDst[3], int dstStep,
                                      QoviSize roi)
{
    return toPlanes(active.component->rctToPlanes16s, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviRCTFwd_JPEG2K_32s_C3P3R(const Qov32s* pSrc, int srcStep, Qov32s* const pDst[3], int dstStep,
                                      QoviSize roi)
{
    return toPlanes(active.component->rctToPlanes32s, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviRCTInv_JPEG2K_16s_P3C3R(const Qov16s* const pSrc[3], int srcStep, Qov16s* pDst, int dstStep,
                                      QoviSize roi)
{
    return fromPlanes(active.component->rctFromPlanes16s, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviRCTInv_JPEG2K_32s_P3C3R(const Qov32s* const pSrc[3], int srcStep, Qov32s* pDst, int dstStep,
                                      QoviSize roi)
{
    return fromPlanes(active.component->rctFromPlanes32s, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviICTFwd_JPEG2K_16s_P3IR(Qov16s* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    const QuietFloats quiet;
    return inPlace(active.component->ictFwd16s, pSrcDst, srcDstStep, roi);
}

QovStatus qoviICTFwd_JPEG2K_32s_P3IR(Qov32s* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    const QuietFloats quiet;
    return inPlace(active.component->ictFwd32s, pSrcDst, srcDstStep, roi);
}

QovStatus qoviICTFwd_JPEG2K_32f_P3IR(Qov32f* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    const QuietFloats quiet;
    return inPlace(active.component->ictFwd32f, pSrcDst, srcDstStep, roi);
}

QovStatus qoviICTInv_JPEG2K_16s_P3IR(Qov16s* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    const QuietFloats quiet;
    return inPlace(active.component->ictInv16s, pSrcDst, srcDstStep, roi);
}

QovStatus qoviICTInv_JPEG2K_32s_P3IR(Qov32s* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    const QuietFloats quiet;
    return inPlace(active.component->ictInv32s, pSrcDst, srcDstStep, roi);
}

QovStatus qoviICTInv_JPEG2K_32f_P3IR(Qov32f* const pSrcDst[3], int srcDstStep, QoviSize roi)
{
    const QuietFloats quiet;
    return inPlace(active.component->ictInv32f, pSrcDst, srcDstStep, roi);
}

QovStatus qoviICTFwd_JPEG2K_32f_C3P3R(const Qov32f* pSrc, int srcStep, Qov32f* const pDst[3], int dstStep,
                                      QoviSize roi)
{
    const QuietFloats quiet;
    return toPlanes(active.component->ictToPlanes32f, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviICTInv_JPEG2K_32f_P3C3R(const Qov32f* const pSrc[3], int srcStep, Qov32f* pDst, int dstStep,
                                      QoviSize roi)
{
    const QuietFloats quiet;
    return fromPlanes(active.component->ictFromPlanes32f, pSrc, srcStep, pDst, dstStep, roi);
}
