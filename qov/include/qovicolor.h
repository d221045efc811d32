// Colour conversion of JPEG pictures (JFIF 1.02, ITU-T T.871). Conventions of qovi.h; one step serves all
// planes unless an array of steps is shown.
//
//   Y  =  0.299 R    + 0.587 G    + 0.114 B          R = Y + 1.402 (Cr - 128)
//   Cb = -0.168736 R - 0.331264 G + 0.5 B + 128      G = Y - 0.344136 (Cb - 128) - 0.714136 (Cr - 128)
//   Cr =  0.5 R - 0.418688 G - 0.081312 B + 128      B = Y + 1.772 (Cb - 128)
//
// rounded to nearest and limited to 0..255: within 1 of the real number and equal to its rounding in 99.9 %
// of all triples. A grey stays exactly that grey, with Cb = Cr = 128.
#ifndef QOV_QOVICOLOR_H
#define QOV_QOVICOLOR_H

#include "qovdefs.h"

QOV_API QovStatus qoviRGBToY_JPEG_8u_C3C1R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep,
                                           QoviSize roi);
QOV_API QovStatus qoviBGRToY_JPEG_8u_C3C1R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep,
                                           QoviSize roi);
QOV_API QovStatus qoviRGBToY_JPEG_8u_P3C1R(const Qov8u* const pSrc[3], int srcStep, Qov8u* pDst, int dstStep,
                                           QoviSize roi);
QOV_API QovStatus qoviRGBToYCbCr_JPEG_8u_C3P3R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[3],
                                               int dstStep, QoviSize roi);
QOV_API QovStatus qoviBGRToYCbCr_JPEG_8u_C3P3R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[3],
                                               int dstStep, QoviSize roi);
QOV_API QovStatus qoviRGBToYCbCr_JPEG_8u_P3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* const pDst[3],
                                             int dstStep, QoviSize roi);
QOV_API QovStatus qoviYCbCrToRGB_JPEG_8u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* pDst,
                                               int dstStep, QoviSize roi);
QOV_API QovStatus qoviYCbCrToBGR_JPEG_8u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* pDst,
                                               int dstStep, QoviSize roi);
QOV_API QovStatus qoviYCbCrToRGB_JPEG_8u_P3R(const Qov8u* const pSrc[3], int srcStep, Qov8u* const pDst[3],
                                             int dstStep, QoviSize roi);

// R, G, B = 255 - C, 255 - M, 255 - Y, then as above; K is copied. Back is the mirror.
QOV_API QovStatus qoviCMYKToYCCK_JPEG_8u_C4P4R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[4],
                                               int dstStep, QoviSize roi);
QOV_API QovStatus qoviCMYKToYCCK_JPEG_8u_P4R(const Qov8u* const pSrc[4], int srcStep, Qov8u* const pDst[4],
                                             int dstStep, QoviSize roi);
QOV_API QovStatus qoviYCCKToCMYK_JPEG_8u_P4C4R(const Qov8u* const pSrc[4], int srcStep, Qov8u* pDst,
                                               int dstStep, QoviSize roi);
QOV_API QovStatus qoviYCCKToCMYK_JPEG_8u_P4R(const Qov8u* const pSrc[4], int srcStep, Qov8u* const pDst[4],
                                             int dstStep, QoviSize roi);

// Y0 Cb Y1 Cr, two bytes a pixel, from and to planes; the chroma planes have (width + 1) / 2 columns. An odd
// width ends in Y Cb: the last column has the Cr of the pair before it (128 if there is none).
QOV_API QovStatus qoviYCbCr422_8u_C2P3R(const Qov8u* pSrc, int srcStep, Qov8u* const pDst[3],
                                        const int dstStep[3], QoviSize roi);
QOV_API QovStatus qoviYCbCr422_8u_P3C2R(const Qov8u* const pSrc[3], const int srcStep[3], Qov8u* pDst,
                                        int dstStep, QoviSize roi);

#endif
