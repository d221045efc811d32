#include "active.h"
#include "qovipredict.h"

using namespace qov;

namespace {

QovStatus firstRow(PredictFirstRow* kernel, const Qov16s* pSrc, Qov16s* pDst, int width, int precision,
                   int pt)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (width < 1) return qovStsSize;
    if (precision < 2 || precision > 16 || pt < 0 || pt >= precision) return qovStsBadArg;
    kernel(pSrc, pDst, width, 1 << (precision - pt - 1));
    return qovStsNoErr;
}

QovStatus otherRow(PredictRow* const (&kernels)[7], const Qov16s* pSrc, const Qov16s* pPrevRow, Qov16s* pDst,
                   int width, int predictor)
{
    if (!pSrc || !pPrevRow || !pDst) return qovStsNullPtr;
    if (width < 1) return qovStsSize;
    if (predictor < 1 || predictor > 7) return qovStsBadArg;
    kernels[predictor - 1](pSrc, pPrevRow, pDst, width);
    return qovStsNoErr;
}

} // namespace

QovStatus qoviDiffPredFirstRow_JPEG_16s_C1(const Qov16s* pSrc, Qov16s* pDst, int width, int precision, int pt)
{
    return firstRow(active.predict->diffFirstRow, pSrc, pDst, width, precision, pt);
}

QovStatus qoviReconstructPredFirstRow_JPEG_16s_C1(const Qov16s* pSrc, Qov16s* pDst, int width, int precision,
                                                  int pt)
{
    return firstRow(active.predict->reconstructFirstRow, pSrc, pDst, width, precision, pt);
}

QovStatus qoviDiffPredRow_JPEG_16s_C1(const Qov16s* pSrc, const Qov16s* pPrevRow, Qov16s* pDst, int width,
                                      int predictor)
{
    return otherRow(active.predict->diffRow, pSrc, pPrevRow, pDst, width, predictor);
}

QovStatus qoviReconstructPredRow_JPEG_16s_C1(const Qov16s* pSrc, const Qov16s* pPrevRow, Qov16s* pDst,
                                             int width, int predictor)
{
    return otherRow(active.predict->reconstructRow, pSrc, pPrevRow, pDst, width, predictor);
}
