#include "active.h"
#include "check.h"
#include "qovcore.h"
#include "qovivector.h"
#include "qovs.h"
#include "quietfloats.h"

using namespace qov;

QovStatus qovsZero_8u(Qov8u* pDst, int len)
{
    if (!pDst) return qovStsNullPtr;
    if (len < 1) return qovStsSize;
    active.copy->zeroBytes(pDst, len);
    return qovStsNoErr;
}

namespace {

template <class T>
QovStatus copy(const T* pSrc, T* pDst, int len)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (len < 1) return qovStsSize;
    const ptrdiff_t bytes = ptrdiff_t(len) * ptrdiff_t(sizeof(T));
    active.copy->copyBytes(reinterpret_cast<const Qov8u*>(pSrc), reinterpret_cast<Qov8u*>(pDst), bytes);
    return qovStsNoErr;
}

template <class T>
QovStatus checkShift(const T* pSrc, const T* pDst, int shift, int len)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (len < 1) return qovStsSize;
    if (shift < 0 || shift >= int(8 * sizeof(T))) return qovStsBadArg;
    return qovStsNoErr;
}

template <class... Pointer>
QovStatus checkVectors(int len, const Pointer*... p)
{
    if (anyNull(p...)) return qovStsNullPtr;
    return len < 1 ? qovStsSize : qovStsNoErr;
}

template <class T>
QovStatus checkPicture(const T* pSrc, int srcStep, const T* pDst, int dstStep, QoviSize roi)
{
    if (anyNull(pSrc, pDst)) return qovStsNullPtr;
    if (emptySize(roi)) return qovStsSize;
    if (shortStep(srcStep, roi, sizeof(T)) || shortStep(dstStep, roi, sizeof(T))) return qovStsStep;
    return qovStsNoErr;
}

QovStatus shift(ShiftPicture_32s* kernel, const Qov32s* pSrc, int count, Qov32s* pDst, int len)
{
    const QovStatus status = checkShift(pSrc, pDst, count, len);
    if (status == qovStsNoErr) kernel(pSrc, 0, count, pDst, 0, {len, 1});
    return status;
}

QovStatus combine(CombineVectors_32s* kernel, const Qov32s* pSrc1, const Qov32s* pSrc2, Qov32s* pDst, int len,
                  int scaleFactor)
{
    const QovStatus status = checkVectors(len, pSrc1, pSrc2, pDst);
    if (status == qovStsNoErr) kernel(pSrc1, pSrc2, pDst, len, scaleFactor);
    return status;
}

QovStatus addConstant(AddConstant_32s* kernel, const Qov32s* pSrc, Qov32s val, Qov32s* pDst, int len,
                      int scaleFactor)
{
    const QovStatus status = checkVectors(len, pSrc, pDst);
    if (status == qovStsNoErr) kernel(pSrc, val, pDst, len, scaleFactor);
    return status;
}

QovStatus multiply(const Qov32f* pSrc, int srcStep, Qov32f val, Qov32f* pDst, int dstStep, QoviSize roi)
{
    const QovStatus status = checkPicture(pSrc, srcStep, pDst, dstStep, roi);
    if (status != qovStsNoErr) return status;
    const QuietFloats quiet;
    active.vector->multiply_32f(pSrc, srcStep, val, pDst, dstStep, roi);
    return qovStsNoErr;
}

} // namespace

QovStatus qovsCopy_8u(const Qov8u* pSrc, Qov8u* pDst, int len)
{
    return copy(pSrc, pDst, len);
}

QovStatus qovsCopy_16s(const Qov16s* pSrc, Qov16s* pDst, int len)
{
    return copy(pSrc, pDst, len);
}

QovStatus qovsRShiftC_16s_I(int shift, Qov16s* pSrcDst, int len)
{
    const QovStatus status = checkShift(pSrcDst, pSrcDst, shift, len);
    if (status == qovStsNoErr) active.copy->shiftRight_16s(pSrcDst, shift, pSrcDst, len);
    return status;
}

QovStatus qovsLShiftC_16s(const Qov16s* pSrc, int shift, Qov16s* pDst, int len)
{
    const QovStatus status = checkShift(pSrc, pDst, shift, len);
    if (status == qovStsNoErr) active.copy->shiftLeft_16s(pSrc, shift, pDst, len);
    return status;
}

QovStatus qovsRShiftC_32s_I(int count, Qov32s* pSrcDst, int len)
{
    return shift(active.vector->shiftRight_32s, pSrcDst, count, pSrcDst, len);
}

QovStatus qovsLShiftC_32s(const Qov32s* pSrc, int count, Qov32s* pDst, int len)
{
    return shift(active.vector->shiftLeft_32s, pSrc, count, pDst, len);
}

QovStatus qovsConvert_32s32f_Sfs(const Qov32s* pSrc, Qov32f* pDst, int len, int scaleFactor)
{
    const QovStatus status = checkVectors(len, pSrc, pDst);
    if (status != qovStsNoErr) return status;
    const QuietFloats quiet;
    active.vector->convert_32s32f(pSrc, pDst, len, scaleFactor);
    return qovStsNoErr;
}

QovStatus qovsConvert_32f32s_Sfs(const Qov32f* pSrc, Qov32s* pDst, int len, QovRoundMode mode,
                                 int scaleFactor)
{
    const QovStatus status = checkVectors(len, pSrc, pDst);
    if (status != qovStsNoErr) return status;
    if (mode != qovRndZero && mode != qovRndNear) return qovStsBadArg;
    const QuietFloats quiet;
    active.vector->convert_32f32s(pSrc, pDst, len, mode, scaleFactor);
    return qovStsNoErr;
}

QovStatus qovsMulC_32f(const Qov32f* pSrc, Qov32f val, Qov32f* pDst, int len)
{
    return multiply(pSrc, 0, val, pDst, 0, {len, 1});
}

QovStatus qovsMulC_32f_I(Qov32f val, Qov32f* pSrcDst, int len)
{
    return multiply(pSrcDst, 0, val, pSrcDst, 0, {len, 1});
}

QovStatus qovsAdd_32f_I(const Qov32f* pSrc, Qov32f* pSrcDst, int len)
{
    const QovStatus status = checkVectors(len, pSrc, pSrcDst);
    if (status != qovStsNoErr) return status;
    const QuietFloats quiet;
    active.vector->add_32f(pSrcDst, pSrc, pSrcDst, len);
    return qovStsNoErr;
}

QovStatus qovsAdd_32s_Sfs(const Qov32s* pSrc1, const Qov32s* pSrc2, Qov32s* pDst, int len, int scaleFactor)
{
    return combine(active.vector->add_32s, pSrc1, pSrc2, pDst, len, scaleFactor);
}

QovStatus qovsSub_32s_Sfs(const Qov32s* pSrc1, const Qov32s* pSrc2, Qov32s* pDst, int len, int scaleFactor)
{
    return combine(active.vector->subtract_32s, pSrc1, pSrc2, pDst, len, scaleFactor);
}

QovStatus qovsAdd_32s_ISfs(const Qov32s* pSrc, Qov32s* pSrcDst, int len, int scaleFactor)
{
    return combine(active.vector->add_32s, pSrcDst, pSrc, pSrcDst, len, scaleFactor);
}

QovStatus qovsAddC_32s_Sfs(const Qov32s* pSrc, Qov32s val, Qov32s* pDst, int len, int scaleFactor)
{
    return addConstant(active.vector->addConstant_32s, pSrc, val, pDst, len, scaleFactor);
}

QovStatus qovsAddC_32s_ISfs(Qov32s val, Qov32s* pSrcDst, int len, int scaleFactor)
{
    return addConstant(active.vector->addConstant_32s, pSrcDst, val, pSrcDst, len, scaleFactor);
}

QovStatus qovsSubC_32s_ISfs(Qov32s val, Qov32s* pSrcDst, int len, int scaleFactor)
{
    return addConstant(active.vector->subtractConstant_32s, pSrcDst, val, pSrcDst, len, scaleFactor);
}

QovStatus qoviComplement_32s_C1IR(Qov32s* pSrcDst, int srcDstStep, QoviSize roi)
{
    const QovStatus status = checkPicture(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roi);
    if (status == qovStsNoErr) active.vector->complement_32s(pSrcDst, srcDstStep, roi);
    return status;
}

QovStatus qoviLShiftC_32s_C1IR(unsigned count, Qov32s* pSrcDst, int srcDstStep, QoviSize roi)
{
    const QovStatus status = checkPicture(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roi);
    if (status != qovStsNoErr) return status;
    // 32 bits are 31 and one more.
    if (count > 31) active.vector->shiftLeft_32s(pSrcDst, srcDstStep, 1, pSrcDst, srcDstStep, roi);
    active.vector->shiftLeft_32s(pSrcDst, srcDstStep, int(count > 31 ? 31 : count), pSrcDst, srcDstStep, roi);
    return qovStsNoErr;
}

QovStatus qoviRShiftC_32s_C1IR(unsigned count, Qov32s* pSrcDst, int srcDstStep, QoviSize roi)
{
    const QovStatus status = checkPicture(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roi);
    if (status != qovStsNoErr) return status;
    active.vector->shiftRight_32s(pSrcDst, srcDstStep, int(count > 31 ? 31 : count), pSrcDst, srcDstStep,
                                  roi);
    return qovStsNoErr;
}

QovStatus qoviMulC_32f_C1IR(Qov32f val, Qov32f* pSrcDst, int srcDstStep, QoviSize roi)
{
    return multiply(pSrcDst, srcDstStep, val, pSrcDst, srcDstStep, roi);
}

QovStatus qoviCopy_16s_C1R(const Qov16s* pSrc, int srcStep, Qov16s* pDst, int dstStep, QoviSize roi)
{
    const QovStatus status = checkPicture(pSrc, srcStep, pDst, dstStep, roi);
    if (status != qovStsNoErr) return status;
    ptrdiff_t bytes = ptrdiff_t(sizeof(Qov16s)) * roi.width;
    int rows = roi.height;
    if (rows > 1 && srcStep == bytes && dstStep == bytes) {
        bytes *= rows;
        rows = 1;
    }
    const Qov8u* src = reinterpret_cast<const Qov8u*>(pSrc);
    Qov8u* dst = reinterpret_cast<Qov8u*>(pDst);
    for (; rows > 0; rows--, src += srcStep, dst += dstStep)
        if (src != dst) active.copy->copyBytes(src, dst, bytes);
    return qovStsNoErr;
}

Qov8u* qoviMalloc_8u_C1(int widthBytes, int height, int* pStepBytes)
{
    if (widthBytes < 1 || height < 1 || !pStepBytes) return nullptr;
    const Qov64s step = (Qov64s(widthBytes) + 63) & ~Qov64s(63), most = 0x7FFFFFFF;
    if (step > most / height) return nullptr;
    void* const memory = qovMalloc(int(step * height));
    if (memory) *pStepBytes = int(step);
    return static_cast<Qov8u*>(memory);
}

void qoviFree(void* p)
{
    qovFree(p);
}
