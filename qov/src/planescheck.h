// The argument checks of functions between interleaved pixels and planes.
#ifndef QOV_PLANESCHECK_H
#define QOV_PLANESCHECK_H

#include "check.h"
#include "kernels/planes.h"

namespace qov {

template <class T>
bool nullPlane(T* const* planes, int count)
{
    if (!planes) return true;
    for (int i = 0; i < count; i++)
        if (!planes[i]) return true;
    return false;
}

// The kernel's call, or what is wrong with its arguments.
inline QovStatus split(SplitPlanes* kernel, int channels, int planes, const Qov8u* pSrc, int srcStep,
                       Qov8u* const* pDst, int dstStep, QoviSize roi)
{
    if (!pSrc || nullPlane(pDst, planes)) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortStep(srcStep, roi, channels) || shortStep(dstStep, roi, 1)) return qovStsStep;
    kernel(pSrc, srcStep, pDst, dstStep, roi);
    return qovStsNoErr;
}

inline QovStatus join(JoinPlanes* kernel, int channels, const Qov8u* const* pSrc, int srcStep, Qov8u* pDst,
                      int dstStep, QoviSize roi)
{
    if (nullPlane(pSrc, channels) || !pDst) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortStep(srcStep, roi, 1) || shortStep(dstStep, roi, channels)) return qovStsStep;
    kernel(pSrc, srcStep, pDst, dstStep, roi);
    return qovStsNoErr;
}

} // namespace qov

#endif
