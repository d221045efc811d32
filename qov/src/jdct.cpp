#include "active.h"
#include "check.h"
#include "qovi.h"

using namespace qov;

namespace {

// A block of `size` x `size` samples in an image.
template <class Sample>
QovStatus check(const void* pSrc, const void* pDst, const void* pTable, int imageStep, int size)
{
    if (!pSrc || !pDst || !pTable) return qovStsNullPtr;
    return imageStep < size * int(sizeof(Sample)) ? qovStsStep : qovStsNoErr;
}

QovStatus forwardBlock(const Qov16s* pSrc, Qov16s* pDst, const Qov16u* pTable)
{
    if (!pSrc || !pDst || !pTable) return qovStsNullPtr;
    active.dctFwd->quant_16s(pSrc, pDst, pTable);
    return qovStsNoErr;
}

QovStatus inverseBlock(const Qov16s* pSrc, Qov16s* pDst, const Qov16u* pTable)
{
    if (!pSrc || !pDst || !pTable) return qovStsNullPtr;
    active.dctInv->quant_16s(pSrc, pDst, pTable);
    return qovStsNoErr;
}

QovStatus inverseToBytes(InverseToBytes* kernel, const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                         const Qov16u* pTable, int size)
{
    const QovStatus status = check<Qov8u>(pSrc, pDst, pTable, dstStep, size);
    if (status == qovStsNoErr) kernel(pSrc, pDst, dstStep, pTable);
    return status;
}

} // namespace

QovStatus qoviDCT8x8Fwd_8u16s_C1R(const Qov8u* pSrc, int srcStep, Qov16s* pDst)
{
    const QovStatus status = check<Qov8u>(pSrc, pDst, pDst, srcStep, 8);
    if (status == qovStsNoErr) active.dctFwd->dct_8u16s(pSrc, srcStep, pDst);
    return status;
}

QovStatus qoviDCTQuantFwd8x8_JPEG_16s_C1(const Qov16s* pSrc, Qov16s* pDst, const Qov16u* pTable)
{
    return forwardBlock(pSrc, pDst, pTable);
}

QovStatus qoviDCTQuantFwd8x8_JPEG_16s_C1I(Qov16s* pSrcDst, const Qov16u* pTable)
{
    return forwardBlock(pSrcDst, pSrcDst, pTable);
}

QovStatus qoviDCTQuantInv8x8_JPEG_16s_C1(const Qov16s* pSrc, Qov16s* pDst, const Qov16u* pTable)
{
    return inverseBlock(pSrc, pDst, pTable);
}

QovStatus qoviDCTQuantInv8x8_JPEG_16s_C1I(Qov16s* pSrcDst, const Qov16u* pTable)
{
    return inverseBlock(pSrcDst, pSrcDst, pTable);
}

QovStatus qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const Qov8u* pSrc, int srcStep, Qov16s* pDst,
                                              const Qov16u* pTable)
{
    const QovStatus status = check<Qov8u>(pSrc, pDst, pTable, srcStep, 8);
    if (status == qovStsNoErr) active.dctFwd->quantShift_8u16s(pSrc, srcStep, pDst, pTable);
    return status;
}

QovStatus qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                              const Qov16u* pTable)
{
    return inverseToBytes(active.dctInv->quantShift, pSrc, pDst, dstStep, pTable, 8);
}

QovStatus qoviDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                  const Qov16u* pTable)
{
    return inverseToBytes(active.dctInv->quantShiftCorner4, pSrc, pDst, dstStep, pTable, 8);
}

QovStatus qoviDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                  const Qov16u* pTable)
{
    return inverseToBytes(active.dctInv->quantShiftCorner2, pSrc, pDst, dstStep, pTable, 8);
}

QovStatus qoviDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                  const Qov16u* pTable)
{
    return inverseToBytes(active.dctInv->quantShiftCorner1, pSrc, pDst, dstStep, pTable, 8);
}

QovStatus qoviDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                   const Qov16u* pTable)
{
    return inverseToBytes(active.dctInv->quantShiftTo4x4, pSrc, pDst, dstStep, pTable, 4);
}

QovStatus qoviDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                   const Qov16u* pTable)
{
    return inverseToBytes(active.dctInv->quantShiftTo2x2, pSrc, pDst, dstStep, pTable, 2);
}

QovStatus qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const Qov16u* pSrc, int srcStep, Qov16s* pDst,
                                               const Qov32f* pTable)
{
    const QovStatus status = check<Qov16u>(pSrc, pDst, pTable, srcStep, 8);
    if (status == qovStsNoErr) active.dctFwd->quantShift_16u16s(pSrc, srcStep, pDst, pTable);
    return status;
}

QovStatus qoviDCTQuantInv8x8LS_JPEG_16s16u_C1R(const Qov16s* pSrc, Qov16u* pDst, int dstStep,
                                               const Qov32f* pTable)
{
    const QovStatus status = check<Qov16u>(pSrc, pDst, pTable, dstStep, 8);
    if (status == qovStsNoErr) active.dctInv->quantShift_16s16u(pSrc, pDst, dstStep, pTable);
    return status;
}
