// Pictures made and pictures scaled. Conventions of qovi.h.
#ifndef QOV_QOVIIMAGE_H
#define QOV_QOVIIMAGE_H

#include "qovdefs.h"

enum { qoviInterpolationNearest = 1, qoviInterpolationLinear = 2 };

// A circular sweep of frequencies around the centre (cx, cy), all channels alike:
// 127.5 * (1 + sin(0.5 * k * ((x - cx)^2 + (y - cy)^2))) cut to a byte, with k = 0.785 / height.
QOV_API QovStatus qoviImageJaehne_8u_C1R(Qov8u* pDst, int dstStep, QoviSize roi);
QOV_API QovStatus qoviImageJaehne_8u_C3R(Qov8u* pDst, int dstStep, QoviSize roi);

// Sample (i, j) of the destination looks at ((i + 0.5) / xFactor - 0.5, (j + 0.5) / yFactor - 0.5) of the
// region srcRoi, held at its edges; nothing outside of it is read. The region lies inside srcSize (else
// qovStsSize); pSrc is the first sample of the whole source. Factors are above 0. A factor of 1 copies, and a
// constant picture stays constant, both exactly.
QOV_API QovStatus qoviResize_32f_C1R(const Qov32f* pSrc, QoviSize srcSize, int srcStep, QoviRect srcRoi,
                                     Qov32f* pDst, int dstStep, QoviSize dstSize, double xFactor,
                                     double yFactor, int interpolation);
QOV_API QovStatus qoviResize_32f_C3R(const Qov32f* pSrc, QoviSize srcSize, int srcStep, QoviRect srcRoi,
                                     Qov32f* pDst, int dstStep, QoviSize dstSize, double xFactor,
                                     double yFactor, int interpolation);

#endif
