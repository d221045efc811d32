// Whole one-level wavelet transforms of JPEG 2000 (ITU-T T.800, F.3.2 and F.4.2). Conventions of qovi.h;
// the filters are those of qoviwavelet.h.
//
// pRect tells where the samples lie on the grid: the data pointer is the sample at (x, y). x and y are 0 or
// above, sides 1 to 32768. A sample at an even place belongs to the low half, so along x the low half has
// (x + w + 1) / 2 - (x + 1) / 2 samples and the high one (x + w) / 2 - x / 2, and along y alike.
//
// Columns are filtered first and rows then, the inverse goes the other way: so 5-3 gives back every sample.
// Edges are extended by whole-sample symmetry. A single sample is copied at an even place; at an odd one it
// is doubled, and halved by the inverse: like the rest modulo 2^16 or 2^32 and rounded down in 5-3, saturated
// and rounded to nearest, half up, in 9-7. So only there 5-3 may lose something, a bit that does not fit.
//
// 9-7 works in whole numbers as the lifts of qoviwavelet.h do: saturated after every step along columns and
// at the end of rows. If nothing saturates, it stays within 6 units and 2^-11 of the largest sample of the
// exact transform, and the inverse within 6 units and 2^-15 of the image.
#ifndef QOV_QOVIWAVELET2D_H
#define QOV_QOVIWAVELET2D_H

#include "qovdefs.h"

// Bytes of the buffer that a transform works in, forward and inverse alike. 0 is possible, and pBuffer may
// then be null. Errors: qovStsNullPtr, qovStsSize for sides out of their range, qovStsBadArg for a place
// below 0.
QOV_API QovStatus qoviWTGetBufSize_B53_JPEG2K_16s_C1R(const QoviRect* pRect, int* pBufSize);
QOV_API QovStatus qoviWTGetBufSize_B53_JPEG2K_32s_C1R(const QoviRect* pRect, int* pBufSize);
QOV_API QovStatus qoviWTGetBufSize_D97_JPEG2K_16s_C1R(const QoviRect* pRect, int* pBufSize);
QOV_API QovStatus qoviWTGetBufSize_D97_JPEG2K_32s_C1R(const QoviRect* pRect, int* pBufSize);
QOV_API QovStatus qoviWTGetBufSize_B53_JPEG2K_16s_C1IR(const QoviRect* pRect, int* pBufSize);
QOV_API QovStatus qoviWTGetBufSize_B53_JPEG2K_32s_C1IR(const QoviRect* pRect, int* pBufSize);
QOV_API QovStatus qoviWTGetBufSize_D97_JPEG2K_16s_C1IR(const QoviRect* pRect, int* pBufSize);
QOV_API QovStatus qoviWTGetBufSize_D97_JPEG2K_32s_C1IR(const QoviRect* pRect, int* pBufSize);

// To and from the four bands, in the order of QoviWTSubband: LL, LH, HL, HH, each with its own step. The
// pointer of an empty band may be null. The bands are apart from the image and from each other. pBuffer needs
// no alignment.
QOV_API QovStatus qoviWTFwd_B53_JPEG2K_16s_C1R(const Qov16s* pSrc, int srcStep, const QoviRect* pRect,
                                               Qov16s* const pDst[4], const int dstStep[4], Qov8u* pBuffer);
QOV_API QovStatus qoviWTFwd_B53_JPEG2K_32s_C1R(const Qov32s* pSrc, int srcStep, const QoviRect* pRect,
                                               Qov32s* const pDst[4], const int dstStep[4], Qov8u* pBuffer);
QOV_API QovStatus qoviWTFwd_D97_JPEG2K_16s_C1R(const Qov16s* pSrc, int srcStep, const QoviRect* pRect,
                                               Qov16s* const pDst[4], const int dstStep[4], Qov8u* pBuffer);
QOV_API QovStatus qoviWTFwd_D97_JPEG2K_32s_C1R(const Qov32s* pSrc, int srcStep, const QoviRect* pRect,
                                               Qov32s* const pDst[4], const int dstStep[4], Qov8u* pBuffer);
QOV_API QovStatus qoviWTInv_B53_JPEG2K_16s_C1R(const Qov16s* const pSrc[4], const int srcStep[4],
                                               Qov16s* pDst, int dstStep, const QoviRect* pRect,
                                               Qov8u* pBuffer);
QOV_API QovStatus qoviWTInv_B53_JPEG2K_32s_C1R(const Qov32s* const pSrc[4], const int srcStep[4],
                                               Qov32s* pDst, int dstStep, const QoviRect* pRect,
                                               Qov8u* pBuffer);
QOV_API QovStatus qoviWTInv_D97_JPEG2K_16s_C1R(const Qov16s* const pSrc[4], const int srcStep[4],
                                               Qov16s* pDst, int dstStep, const QoviRect* pRect,
                                               Qov8u* pBuffer);
QOV_API QovStatus qoviWTInv_D97_JPEG2K_32s_C1R(const Qov32s* const pSrc[4], const int srcStep[4],
                                               Qov32s* pDst, int dstStep, const QoviRect* pRect,
                                               Qov8u* pBuffer);

// In place: the bands stand side by side in the image's own rectangle, low halves left and on top.
QOV_API QovStatus qoviWTFwd_B53_JPEG2K_16s_C1IR(Qov16s* pSrcDst, int step, const QoviRect* pRect,
                                                Qov8u* pBuffer);
QOV_API QovStatus qoviWTFwd_B53_JPEG2K_32s_C1IR(Qov32s* pSrcDst, int step, const QoviRect* pRect,
                                                Qov8u* pBuffer);
QOV_API QovStatus qoviWTFwd_D97_JPEG2K_16s_C1IR(Qov16s* pSrcDst, int step, const QoviRect* pRect,
                                                Qov8u* pBuffer);
QOV_API QovStatus qoviWTFwd_D97_JPEG2K_32s_C1IR(Qov32s* pSrcDst, int step, const QoviRect* pRect,
                                                Qov8u* pBuffer);
QOV_API QovStatus qoviWTInv_B53_JPEG2K_16s_C1IR(Qov16s* pSrcDst, int step, const QoviRect* pRect,
                                                Qov8u* pBuffer);
QOV_API QovStatus qoviWTInv_B53_JPEG2K_32s_C1IR(Qov32s* pSrcDst, int step, const QoviRect* pRect,
                                                Qov8u* pBuffer);
QOV_API QovStatus qoviWTInv_D97_JPEG2K_16s_C1IR(Qov16s* pSrcDst, int step, const QoviRect* pRect,
                                                Qov8u* pBuffer);
QOV_API QovStatus qoviWTInv_D97_JPEG2K_32s_C1IR(Qov32s* pSrcDst, int step, const QoviRect* pRect,
                                                Qov8u* pBuffer);

#endif
