// Wavelet steps of JPEG 2000 (ITU-T T.800, annex F). Conventions of qovi.h.
//
// Of a signal x, low[n] and high[n] stand at the even sample x[2n] and the odd one x[2n + 1]. All shifts are
// arithmetic.
//
// 5-3 (B53)    high[n] = x[2n + 1] - ((x[2n] + x[2n + 2]) >> 1)
//              low[n]  = x[2n] + ((high[n - 1] + high[n] + 2) >> 2)
//
// and for the inverse the same solved for x. Sums and shifts are exact, each result is then reduced modulo
// 2^16 or 2^32: the two undo each other, whatever the samples are.
//
// 9-7 (D97)    high[n]  = x[2n + 1] + a (x[2n] + x[2n + 2])         a = -1.586134342
//              low[n]   = x[2n] + b (high[n - 1] + high[n])         b = -0.052980118
//              high[n] += g (low[n] + low[n + 1])                   g =  0.882911075
//              low[n]  += d (high[n - 1] + high[n])                 d =  0.443506852
//              high[n] *= K, low[n] /= K                            K =  1.230174105
//
// and for the inverse the same backwards. In 32f a result is within 5e-6 of the largest magnitude in reach
// from the exact one, fused or not; a subnormal number counts as 0, and no floating-point flag is raised.
// Whole numbers take the constants over 65536 (a -103949, b -3472, g 57862, d 29066, K 80621, 1/K 53274),
// round every product by (c v + 0x8000) >> 16, v being the sum of the two neighbours or the sample, and
// saturate what is stored.
#ifndef QOV_QOVIWAVELET_H
#define QOV_QOVIWAVELET_H

#include "qovdefs.h"

// The inner part of rows and columns. `roi` counts pairs of samples along the filtered direction and rows (or
// columns) across it. pSrc and pDst point at x[0], pLow and pHigh at low[0] and high[0] of the first row or
// column. N pairs are made; nothing is extended, so beside them the caller's memory is read:
//
//   forward 5-3:  x[-2 .. 2N]                        inverse 5-3:  low[0 .. N], high[-1 .. N]
//   forward 9-7:  x[-4 .. 2N + 2]                    inverse 9-7:  low[-1 .. N + 1], high[-2 .. N + 1]
QOV_API QovStatus qoviWTFwdRow_B53_JPEG2K_16s_C1R(const Qov16s* pSrc, int srcStep, Qov16s* pLow, int lowStep,
                                                  Qov16s* pHigh, int highStep, QoviSize roi);
QOV_API QovStatus qoviWTFwdRow_B53_JPEG2K_32s_C1R(const Qov32s* pSrc, int srcStep, Qov32s* pLow, int lowStep,
                                                  Qov32s* pHigh, int highStep, QoviSize roi);
QOV_API QovStatus qoviWTFwdRow_D97_JPEG2K_16s_C1R(const Qov16s* pSrc, int srcStep, Qov16s* pLow, int lowStep,
                                                  Qov16s* pHigh, int highStep, QoviSize roi);
QOV_API QovStatus qoviWTFwdRow_D97_JPEG2K_32s_C1R(const Qov32s* pSrc, int srcStep, Qov32s* pLow, int lowStep,
                                                  Qov32s* pHigh, int highStep, QoviSize roi);
QOV_API QovStatus qoviWTFwdRow_D97_JPEG2K_32f_C1R(const Qov32f* pSrc, int srcStep, Qov32f* pLow, int lowStep,
                                                  Qov32f* pHigh, int highStep, QoviSize roi);
QOV_API QovStatus qoviWTInvRow_B53_JPEG2K_16s_C1R(const Qov16s* pLow, int lowStep, const Qov16s* pHigh,
                                                  int highStep, Qov16s* pDst, int dstStep, QoviSize roi);
QOV_API QovStatus qoviWTInvRow_B53_JPEG2K_32s_C1R(const Qov32s* pLow, int lowStep, const Qov32s* pHigh,
                                                  int highStep, Qov32s* pDst, int dstStep, QoviSize roi);
QOV_API QovStatus qoviWTInvRow_D97_JPEG2K_16s_C1R(const Qov16s* pLow, int lowStep, const Qov16s* pHigh,
                                                  int highStep, Qov16s* pDst, int dstStep, QoviSize roi);
QOV_API QovStatus qoviWTInvRow_D97_JPEG2K_32s_C1R(const Qov32s* pLow, int lowStep, const Qov32s* pHigh,
                                                  int highStep, Qov32s* pDst, int dstStep, QoviSize roi);
QOV_API QovStatus qoviWTInvRow_D97_JPEG2K_32f_C1R(const Qov32f* pLow, int lowStep, const Qov32f* pHigh,
                                                  int highStep, Qov32f* pDst, int dstStep, QoviSize roi);

QOV_API QovStatus qoviWTFwdCol_B53_JPEG2K_16s_C1R(const Qov16s* pSrc, int srcStep, Qov16s* pLow, int lowStep,
                                                  Qov16s* pHigh, int highStep, QoviSize roi);
QOV_API QovStatus qoviWTFwdCol_B53_JPEG2K_32s_C1R(const Qov32s* pSrc, int srcStep, Qov32s* pLow, int lowStep,
                                                  Qov32s* pHigh, int highStep, QoviSize roi);
QOV_API QovStatus qoviWTFwdCol_D97_JPEG2K_32f_C1R(const Qov32f* pSrc, int srcStep, Qov32f* pLow, int lowStep,
                                                  Qov32f* pHigh, int highStep, QoviSize roi);
QOV_API QovStatus qoviWTInvCol_B53_JPEG2K_16s_C1R(const Qov16s* pLow, int lowStep, const Qov16s* pHigh,
                                                  int highStep, Qov16s* pDst, int dstStep, QoviSize roi);
QOV_API QovStatus qoviWTInvCol_B53_JPEG2K_32s_C1R(const Qov32s* pLow, int lowStep, const Qov32s* pHigh,
                                                  int highStep, Qov32s* pDst, int dstStep, QoviSize roi);
QOV_API QovStatus qoviWTInvCol_D97_JPEG2K_32f_C1R(const Qov32f* pLow, int lowStep, const Qov32f* pHigh,
                                                  int highStep, Qov32f* pDst, int dstStep, QoviSize roi);

// One step of a pipeline along columns, on rows of `width` samples.
//
// 5-3 forward: of x[2n], x[2n + 1], x[2n + 2] and high[n - 1] come low[n] and high[n]. Inverse: of low[n +
// 1], high[n], high[n + 1] and x[2n] come x[2n + 1] and x[2n + 2]. A destination may be one of the sources.
QOV_API QovStatus qoviWTFwdColLift_B53_JPEG2K_16s_C1(const Qov16s* pEven0, const Qov16s* pOdd,
                                                     const Qov16s* pEven1, const Qov16s* pHighPrev,
                                                     Qov16s* pLow, Qov16s* pHigh, int width);
QOV_API QovStatus qoviWTFwdColLift_B53_JPEG2K_32s_C1(const Qov32s* pEven0, const Qov32s* pOdd,
                                                     const Qov32s* pEven1, const Qov32s* pHighPrev,
                                                     Qov32s* pLow, Qov32s* pHigh, int width);
QOV_API QovStatus qoviWTInvColLift_B53_JPEG2K_16s_C1(const Qov16s* pLow1, const Qov16s* pHigh0,
                                                     const Qov16s* pHigh1, const Qov16s* pEven0, Qov16s* pOdd,
                                                     Qov16s* pEven1, int width);
QOV_API QovStatus qoviWTInvColLift_B53_JPEG2K_32s_C1(const Qov32s* pLow1, const Qov32s* pHigh0,
                                                     const Qov32s* pHigh1, const Qov32s* pEven0, Qov32s* pOdd,
                                                     Qov32s* pEven1, int width);

// 9-7, in place on the rows of a ring, all of them different; the number is the delay. Whole numbers are
// saturated in every row.
//
// Forward: high0 += a (low0 + low1), low1 += b (high0 + high1), high1 += g (low1 + low2), low2 += d (high1 +
// high2). low0 is the newest even row, high0 the odd one before it. Finished but for their scale are low2 and
// high1, of which high1 is read once more by the next step.
//
// Inverse, on rows that are scaled already: low0 -= d (high0 + high1), high1 -= g (low0 + low1), low1 -= b
// (high1 + high2), high2 -= a (low1 + low2). Finished are the even row low1 and the odd row high2.
QOV_API QovStatus qoviWTFwdColLift_D97_JPEG2K_16s_C1(const Qov16s* pLow0, Qov16s* pHigh0, Qov16s* pLow1,
                                                     Qov16s* pHigh1, Qov16s* pLow2, const Qov16s* pHigh2,
                                                     int width);
QOV_API QovStatus qoviWTFwdColLift_D97_JPEG2K_32s_C1(const Qov32s* pLow0, Qov32s* pHigh0, Qov32s* pLow1,
                                                     Qov32s* pHigh1, Qov32s* pLow2, const Qov32s* pHigh2,
                                                     int width);
QOV_API QovStatus qoviWTFwdColLift_D97_JPEG2K_32f_C1(const Qov32f* pLow0, Qov32f* pHigh0, Qov32f* pLow1,
                                                     Qov32f* pHigh1, Qov32f* pLow2, const Qov32f* pHigh2,
                                                     int width);
QOV_API QovStatus qoviWTInvColLift_D97_JPEG2K_16s_C1(Qov16s* pLow0, const Qov16s* pHigh0, Qov16s* pLow1,
                                                     Qov16s* pHigh1, const Qov16s* pLow2, Qov16s* pHigh2,
                                                     int width);
QOV_API QovStatus qoviWTInvColLift_D97_JPEG2K_32s_C1(Qov32s* pLow0, const Qov32s* pHigh0, Qov32s* pLow1,
                                                     Qov32s* pHigh1, const Qov32s* pLow2, Qov32s* pHigh2,
                                                     int width);
QOV_API QovStatus qoviWTInvColLift_D97_JPEG2K_32f_C1(Qov32f* pLow0, const Qov32f* pHigh0, Qov32f* pLow1,
                                                     Qov32f* pHigh1, const Qov32f* pLow2, Qov32f* pHigh2,
                                                     int width);

#endif
