// Prediction of lossless JPEG (ITU-T T.81, H.1.2).
//
// Samples are unsigned numbers of 16 bits kept in Qov16s; differences and sums are taken modulo 2^16. In the
// first row the first sample is predicted by 2^(precision - pt - 1), the others by their left neighbour; in
// other rows the first column by the sample above and the rest by `predictor`, 1 to 7. precision: 2 to 16;
// 0 <= pt < precision; else qovStsBadArg. The Reconstruct forms allow pSrc == pDst.
#ifndef QOV_QOVIPREDICT_H
#define QOV_QOVIPREDICT_H

#include "qovdefs.h"

QOV_API QovStatus qoviDiffPredFirstRow_JPEG_16s_C1(const Qov16s* pSrc, Qov16s* pDst, int width, int precision,
                                                   int pt);
QOV_API QovStatus qoviReconstructPredFirstRow_JPEG_16s_C1(const Qov16s* pSrc, Qov16s* pDst, int width,
                                                          int precision, int pt);
QOV_API QovStatus qoviDiffPredRow_JPEG_16s_C1(const Qov16s* pSrc, const Qov16s* pPrevRow, Qov16s* pDst,
                                              int width, int predictor);
QOV_API QovStatus qoviReconstructPredRow_JPEG_16s_C1(const Qov16s* pSrc, const Qov16s* pPrevRow, Qov16s* pDst,
                                                     int width, int predictor);

#endif
