// Chroma sampling of pictures, by the filters of qovisample.h. Conventions of qovi.h.
#ifndef QOV_QOVIRESAMPLE_H
#define QOV_QOVIRESAMPLE_H

#include "qovdefs.h"

// Box filter: dstSize is srcSize, halved and rounded down in width and, at H2V2, in height.
QOV_API QovStatus qoviSampleDownH2V1_JPEG_8u_C1R(const Qov8u* pSrc, int srcStep, QovSize srcSize, Qov8u* pDst,
                                                 int dstStep, QovSize dstSize);
QOV_API QovStatus qoviSampleDownH2V2_JPEG_8u_C1R(const Qov8u* pSrc, int srcStep, QovSize srcSize, Qov8u* pDst,
                                                 int dstStep, QovSize dstSize);

// Triangle filter: dstSize / 2, rounded down, is srcSize in width and, at H2V2, in height. The source is read
// beyond srcSize: one sample to the left and to the right of each row, and at H2V2 one row above and one
// below. Row 2y takes row y - 1 as the far one, row 2y + 1 takes row y + 1. A last odd row or column is
// made of the border in the same way.
QOV_API QovStatus qoviSampleUpH2V1_JPEG_8u_C1R(const Qov8u* pSrc, int srcStep, QovSize srcSize, Qov8u* pDst,
                                               int dstStep, QovSize dstSize);
QOV_API QovStatus qoviSampleUpH2V2_JPEG_8u_C1R(const Qov8u* pSrc, int srcStep, QovSize srcSize, Qov8u* pDst,
                                               int dstStep, QovSize dstSize);

#endif
