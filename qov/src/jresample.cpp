#include "active.h"
#include "check.h"
#include "qoviresample.h"

using namespace qov;

namespace {

bool same(QovSize a, QovSize b)
{
    return a.width == b.width && a.height == b.height;
}

// Halves, rounded down, of what the filter halves.
QovSize halved(QovSize size, bool bothWays)
{
    return {size.width / 2, bothWays ? size.height / 2 : size.height};
}

QovStatus down(ResamplePicture* kernel, bool bothWays, const Qov8u* pSrc, int srcStep, QovSize srcSize,
               Qov8u* pDst, int dstStep, QovSize dstSize)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (emptySize(dstSize) || !same(dstSize, halved(srcSize, bothWays))) return qovStsSize;
    if (shortStep(srcStep, srcSize, 1) || shortStep(dstStep, dstSize, 1)) return qovStsStep;
    kernel(pSrc, srcStep, pDst, dstStep, dstSize);
    return qovStsNoErr;
}

QovStatus up(ResamplePicture* kernel, bool bothWays, const Qov8u* pSrc, int srcStep, QovSize srcSize,
             Qov8u* pDst, int dstStep, QovSize dstSize)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (emptySize(srcSize) || !same(srcSize, halved(dstSize, bothWays))) return qovStsSize;
    // dstSize.height: a source of one row with a border above and below has a step as well.
    if (shortStep(srcStep, {srcSize.width, dstSize.height}, 1) || shortStep(dstStep, dstSize, 1))
        return qovStsStep;
    kernel(pSrc, srcStep, pDst, dstStep, dstSize);
    return qovStsNoErr;
}

} // namespace

QovStatus qoviSampleDownH2V1_JPEG_8u_C1R(const Qov8u* pSrc, int srcStep, QovSize srcSize, Qov8u* pDst,
                                         int dstStep, QovSize dstSize)
{
    return down(active.resample->downH2V1, false, pSrc, srcStep, srcSize, pDst, dstStep, dstSize);
}

QovStatus qoviSampleDownH2V2_JPEG_8u_C1R(const Qov8u* pSrc, int srcStep, QovSize srcSize, Qov8u* pDst,
                                         int dstStep, QovSize dstSize)
{
    return down(active.resample->downH2V2, true, pSrc, srcStep, srcSize, pDst, dstStep, dstSize);
}

QovStatus qoviSampleUpH2V1_JPEG_8u_C1R(const Qov8u* pSrc, int srcStep, QovSize srcSize, Qov8u* pDst,
                                       int dstStep, QovSize dstSize)
{
    return up(active.resample->upH2V1, false, pSrc, srcStep, srcSize, pDst, dstStep, dstSize);
}

QovStatus qoviSampleUpH2V2_JPEG_8u_C1R(const Qov8u* pSrc, int srcStep, QovSize srcSize, Qov8u* pDst,
                                       int dstStep, QovSize dstSize)
{
    return up(active.resample->upH2V2, true, pSrc, srcStep, srcSize, pDst, dstStep, dstSize);
}
