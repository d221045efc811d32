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

#endif
