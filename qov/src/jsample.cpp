#include "active.h"
#include "qovisample.h"

using namespace qov;

QovStatus qoviSampleDownRowH2V1_Box_JPEG_8u_C1(const Qov8u* pSrc, int srcWidth, Qov8u* pDst)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (srcWidth < 1) return qovStsSize;
    active.sample->boxH2V1(pSrc, srcWidth / 2, pDst);
    return qovStsNoErr;
}

QovStatus qoviSampleDownRowH2V2_Box_JPEG_8u_C1(const Qov8u* pSrc1, const Qov8u* pSrc2, int srcWidth,
                                               Qov8u* pDst)
{
    if (!pSrc1 || !pSrc2 || !pDst) return qovStsNullPtr;
    if (srcWidth < 1) return qovStsSize;
    active.sample->boxH2V2(pSrc1, pSrc2, srcWidth / 2, pDst);
    return qovStsNoErr;
}

QovStatus qoviSampleUpRowH2V1_Triangle_JPEG_8u_C1(const Qov8u* pSrc, int srcWidth, Qov8u* pDst)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (srcWidth < 1) return qovStsSize;
    active.sample->triangleH2V1(pSrc, srcWidth, pDst);
    return qovStsNoErr;
}

QovStatus qoviSampleUpRowH2V2_Triangle_JPEG_8u_C1(const Qov8u* pNear, const Qov8u* pFar, int srcWidth,
                                                  Qov8u* pDst)
{
    if (!pNear || !pFar || !pDst) return qovStsNullPtr;
    if (srcWidth < 1) return qovStsSize;
    active.sample->triangleH2V2(pNear, pFar, srcWidth, pDst);
    return qovStsNoErr;
}
