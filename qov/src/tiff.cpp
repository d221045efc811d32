#include "active.h"
#include "planescheck.h"
#include "qovitiff.h"

using namespace qov;

QovStatus qoviPackBitsRow_TIFF_8u_C1(const Qov8u* pSrc, int srcLen, Qov8u* pDst, int* pDstCurrPos, int dstLen)
{
    if (!pSrc || !pDst || !pDstCurrPos) return qovStsNullPtr;
    if (srcLen < 1 || dstLen < 1) return qovStsSize;
    ptrdiff_t pos = *pDstCurrPos;
    if (pos < 0 || pos > dstLen) return qovStsBadArg;
    const bool whole = active.tiff->packBits(pSrc, srcLen, pDst, dstLen, pos);
    *pDstCurrPos = int(pos);
    return whole ? qovStsNoErr : qovStsDstFull;
}

QovStatus qoviUnpackBitsRow_TIFF_8u_C1(const Qov8u* pSrc, int* pSrcCurrPos, int srcLen, Qov8u* pDst,
                                       int dstLen)
{
    if (!pSrc || !pSrcCurrPos || !pDst) return qovStsNullPtr;
    if (srcLen < 1 || dstLen < 1) return qovStsSize;
    ptrdiff_t pos = *pSrcCurrPos;
    if (pos < 0 || pos > srcLen) return qovStsBadArg;
    if (!active.tiff->unpackBits(pSrc, srcLen, pos, pDst, dstLen)) return qovStsData;
    *pSrcCurrPos = int(pos);
    return qovStsNoErr;
}

QovStatus qoviSplitRow_TIFF_16u8u_C1(const Qov16u* pSrc, Qov8u* const pDst[2], int len)
{
    if (!pSrc || nullPlane(pDst, 2)) return qovStsNullPtr;
    if (len < 1) return qovStsSize;
    active.tiff->split(pSrc, pDst[0], pDst[1], len);
    return qovStsNoErr;
}

QovStatus qoviJoinRow_TIFF_8u16u_C1(const Qov8u* const pSrc[2], Qov16u* pDst, int len)
{
    if (nullPlane(pSrc, 2) || !pDst) return qovStsNullPtr;
    if (len < 1) return qovStsSize;
    active.tiff->join(pSrc[0], pSrc[1], pDst, len);
    return qovStsNoErr;
}
