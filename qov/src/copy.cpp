#include "active.h"
#include "planescheck.h"
#include "qovicopy.h"

using namespace qov;

namespace {

template <class Src, class Dst>
using PictureKernel = void(const Src*, ptrdiff_t, Dst*, ptrdiff_t, QoviSize);

template <class Src, class Dst>
QovStatus picture(PictureKernel<Src, Dst>* kernel, const Src* pSrc, int srcStep, Dst* pDst, int dstStep,
                  QoviSize roi)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortStep(srcStep, roi, sizeof(Src)) || shortStep(dstStep, roi, sizeof(Dst))) return qovStsStep;
    kernel(pSrc, srcStep, pDst, dstStep, roi);
    return qovStsNoErr;
}

} // namespace

QovStatus qoviCopy_8u_C1R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep, QoviSize roi)
{
    return picture(active.copy->copy_8u, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviCopy_8u_C3P3R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[3], int dstStep, QoviSize roi)
{
    return split(active.copy->split3, 3, 3, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviCopy_8u_C4P4R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[4], int dstStep, QoviSize roi)
{
    return split(active.copy->split4, 4, 4, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviCopy_8u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* pDst, int dstStep, QoviSize roi)
{
    return join(active.copy->join3, 3, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviCopy_8u_P4C4R(const Qov8u* const pSrc[4], int srcStep, Qov8u* pDst, int dstStep, QoviSize roi)
{
    return join(active.copy->join4, 4, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviConvert_8u16s_C1R(const Qov8u* pSrc, int srcStep, Qov16s* pDst, int dstStep, QoviSize roi)
{
    return picture(active.copy->convert_8u16s, pSrc, srcStep, pDst, dstStep, roi);
}

QovStatus qoviConvert_16s8u_C1R(const Qov16s* pSrc, int srcStep, Qov8u* pDst, int dstStep, QoviSize roi)
{
    return picture(active.copy->convert_16s8u, pSrc, srcStep, pDst, dstStep, roi);
}
