#include "active.h"
#include "qovs.h"

QovStatus qovsZero_8u(Qov8u* pDst, int len)
{
    if (!pDst) return qovStsNullPtr;
    if (len < 1) return qovStsSize;
    qov::active.copy->zeroBytes(pDst, len);
    return qovStsNoErr;
}

namespace {

template <class T>
QovStatus copy(const T* pSrc, T* pDst, int len)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (len < 1) return qovStsSize;
    const ptrdiff_t bytes = ptrdiff_t(len) * ptrdiff_t(sizeof(T));
    qov::active.copy->copyBytes(reinterpret_cast<const Qov8u*>(pSrc), reinterpret_cast<Qov8u*>(pDst), bytes);
    return qovStsNoErr;
}

QovStatus check(const Qov16s* pSrc, const Qov16s* pDst, int shift, int len)
{
    if (!pSrc || !pDst) return qovStsNullPtr;
    if (len < 1) return qovStsSize;
    if (shift < 0 || shift > 15) return qovStsBadArg;
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
    const QovStatus status = check(pSrcDst, pSrcDst, shift, len);
    if (status == qovStsNoErr) qov::active.copy->shiftRight_16s(pSrcDst, shift, pSrcDst, len);
    return status;
}

QovStatus qovsLShiftC_16s(const Qov16s* pSrc, int shift, Qov16s* pDst, int len)
{
    const QovStatus status = check(pSrc, pDst, shift, len);
    if (status == qovStsNoErr) qov::active.copy->shiftLeft_16s(pSrc, shift, pDst, len);
    return status;
}
