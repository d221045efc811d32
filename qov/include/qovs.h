// Plain vector operations of qov. Conventions of qovi.h. Lengths count elements; below 1 is qovStsSize.
#ifndef QOV_QOVS_H
#define QOV_QOVS_H

#include "qovdefs.h"

QOV_API const QovLibraryVersion* qovsGetLibVersion(void);

QOV_API QovStatus qovsZero_8u(Qov8u* pDst, int len);
QOV_API QovStatus qovsCopy_8u(const Qov8u* pSrc, Qov8u* pDst, int len);
QOV_API QovStatus qovsCopy_16s(const Qov16s* pSrc, Qov16s* pDst, int len);

// Shifts by 0 to 15 bits (else qovStsBadArg): right arithmetic, left keeps the low 16 bits.
QOV_API QovStatus qovsRShiftC_16s_I(int shift, Qov16s* pSrcDst, int len);
QOV_API QovStatus qovsLShiftC_16s(const Qov16s* pSrc, int shift, Qov16s* pDst, int len);

// Shifts by 0 to 31 bits (else qovStsBadArg): right arithmetic, left keeps the low 32 bits.
QOV_API QovStatus qovsRShiftC_32s_I(int shift, Qov32s* pSrcDst, int len);
QOV_API QovStatus qovsLShiftC_32s(const Qov32s* pSrc, int shift, Qov32s* pDst, int len);

// From here on a destination may be a source, also of another type: the same memory holds the one before and
// the other after. _Sfs: the exact result times 2^-scaleFactor, rounded to nearest (ties to even) and limited
// to 32 bits. No form raises a floating-point flag; a subnormal number counts as 0, a result beyond the type
// is an infinity.
QOV_API QovStatus qovsConvert_32s32f_Sfs(const Qov32s* pSrc, Qov32f* pDst, int len, int scaleFactor);

// Rounded as `mode` tells, qovRndNear with ties to even; not-a-number gives 0.
QOV_API QovStatus qovsConvert_32f32s_Sfs(const Qov32f* pSrc, Qov32s* pDst, int len, QovRoundMode mode,
                                         int scaleFactor);

QOV_API QovStatus qovsMulC_32f(const Qov32f* pSrc, Qov32f val, Qov32f* pDst, int len);
QOV_API QovStatus qovsMulC_32f_I(Qov32f val, Qov32f* pSrcDst, int len);
QOV_API QovStatus qovsAdd_32f_I(const Qov32f* pSrc, Qov32f* pSrcDst, int len);

QOV_API QovStatus qovsAdd_32s_Sfs(const Qov32s* pSrc1, const Qov32s* pSrc2, Qov32s* pDst, int len,
                                  int scaleFactor);
QOV_API QovStatus qovsAdd_32s_ISfs(const Qov32s* pSrc, Qov32s* pSrcDst, int len, int scaleFactor);
QOV_API QovStatus qovsAddC_32s_Sfs(const Qov32s* pSrc, Qov32s val, Qov32s* pDst, int len, int scaleFactor);
QOV_API QovStatus qovsAddC_32s_ISfs(Qov32s val, Qov32s* pSrcDst, int len, int scaleFactor);

// pSrc1 - pSrc2, and pSrcDst - val.
QOV_API QovStatus qovsSub_32s_Sfs(const Qov32s* pSrc1, const Qov32s* pSrc2, Qov32s* pDst, int len,
                                  int scaleFactor);
QOV_API QovStatus qovsSubC_32s_ISfs(Qov32s val, Qov32s* pSrcDst, int len, int scaleFactor);

#endif
