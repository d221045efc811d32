// The image primitives of qov.
//
// Every primitive answers a QovStatus. Arguments stand in the order source, destination, size, tables. Steps
// are bytes from row to row and are looked at only when there is more than one row. Pointers need the
// alignment of their element type only. Arguments are checked once, in this order: null pointers, size, step,
// others. Integer results are the same at every instruction-set level.
#ifndef QOV_QOVI_H
#define QOV_QOVI_H

#include "qovdefs.h"

QOV_API const QovLibraryVersion* qoviGetLibVersion(void);

// JPEG level shift (ITU-T T.81, A.3.1).
// Add128: dst = s + 128, saturated to 0..255 without wrapping on the way. Sub128: dst = s - 128.
QOV_API QovStatus qoviAdd128_JPEG_16s8u_C1R(const Qov16s* pSrc, int srcStep, Qov8u* pDst, int dstStep,
                                            QoviSize roi);
QOV_API QovStatus qoviSub128_JPEG_8u16s_C1R(const Qov8u* pSrc, int srcStep, Qov16s* pDst, int dstStep,
                                            QoviSize roi);

#endif
