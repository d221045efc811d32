#include "active.h"
#include "check.h"
#include "qovi.h"

using namespace qov;

namespace {

template <class Src, class Dst>
QovStatus check(const Src* pSrc, int srcStep, const Dst* pDst, int dstStep, QoviSize roi)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortStep(srcStep, roi, sizeof(Src)) || shortStep(dstStep, roi, sizeof(Dst))) return qovStsStep;
    return qovStsNoErr;
}

} // namespace

QovStatus qoviAdd128_JPEG_16s8u_C1R(const Qov16s* pSrc, int srcStep, Qov8u* pDst, int dstStep, QoviSize roi)
{
    const QovStatus status = check(pSrc, srcStep, pDst, dstStep, roi);
    if (status == qovStsNoErr) active.add->add128_16s8u(pSrc, srcStep, pDst, dstStep, roi);
    return status;
}

QovStatus qoviSub128_JPEG_8u16s_C1R(const Qov8u* pSrc, int srcStep, Qov16s* pDst, int dstStep, QoviSize roi)
{
    const QovStatus status = check(pSrc, srcStep, pDst, dstStep, roi);
    if (status == qovStsNoErr) active.add->sub128_8u16s(pSrc, srcStep, pDst, dstStep, roi);
    return status;
}
