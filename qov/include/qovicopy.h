// Copies of pictures, interleaved and planar, and conversions of their type. Conventions of qovi.h.
#ifndef QOV_QOVICOPY_H
#define QOV_QOVICOPY_H

#include "qovdefs.h"

QOV_API QovStatus qoviCopy_8u_C1R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep, QoviSize roi);
QOV_API QovStatus qoviCopy_8u_C3P3R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[3], int dstStep,
                                    QoviSize roi);
QOV_API QovStatus qoviCopy_8u_C4P4R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[4], int dstStep,
                                    QoviSize roi);
QOV_API QovStatus qoviCopy_8u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* pDst, int dstStep,
                                    QoviSize roi);
QOV_API QovStatus qoviCopy_8u_P4C4R(const Qov8u* const pSrc[4], int srcStep, Qov8u* pDst, int dstStep,
                                    QoviSize roi);

// Widening, and narrowing limited to 0..255.
QOV_API QovStatus qoviConvert_8u16s_C1R(const Qov8u* pSrc, int srcStep, Qov16s* pDst, int dstStep,
                                        QoviSize roi);
QOV_API QovStatus qoviConvert_16s8u_C1R(const Qov16s* pSrc, int srcStep, Qov8u* pDst, int dstStep,
                                        QoviSize roi);

#endif
