// Chroma sampling of JPEG pictures. Conventions of qovi.h.
#ifndef QOV_QOVISAMPLE_H
#define QOV_QOVISAMPLE_H

#include "qovdefs.h"

// Box filter of a row, (a + b + 1) >> 1, or of two rows, (a + b + c + d + 2) >> 2. Writes srcWidth / 2
// samples; a last odd column is not read.
QOV_API QovStatus qoviSampleDownRowH2V1_Box_JPEG_8u_C1(const Qov8u* pSrc, int srcWidth, Qov8u* pDst);
QOV_API QovStatus qoviSampleDownRowH2V2_Box_JPEG_8u_C1(const Qov8u* pSrc1, const Qov8u* pSrc2, int srcWidth,
                                                       Qov8u* pDst);

// Triangle filter, n = srcWidth samples s in, 2 n out, no border read.
// H2V1: dst[2x] = (3 s[x] + s[x-1] + 1) >> 2, dst[2x+1] = (3 s[x] + s[x+1] + 2) >> 2; the first and the last
// sample out are s[0] and s[n-1].
// H2V2, with t = 3 near + far: dst[2x] = (3 t[x] + t[x-1] + 8) >> 4, dst[2x+1] = (3 t[x] + t[x+1] + 7) >> 4;
// the first and the last sample out are (4 t[0] + 8) >> 4 and (4 t[n-1] + 7) >> 4.
QOV_API QovStatus qoviSampleUpRowH2V1_Triangle_JPEG_8u_C1(const Qov8u* pSrc, int srcWidth, Qov8u* pDst);
QOV_API QovStatus qoviSampleUpRowH2V2_Triangle_JPEG_8u_C1(const Qov8u* pNear, const Qov8u* pFar, int srcWidth,
                                                          Qov8u* pDst);

#endif
