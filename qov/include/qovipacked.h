// Colour conversion between packed 16-bit pixels or Y Cb Y Cr and other layouts. Conventions of qovi.h and
// formulas of qovicolor.h.
#ifndef QOV_QOVIPACKED_H
#define QOV_QOVIPACKED_H

#include "qovdefs.h"

// One 16-bit word a pixel; the first-named colour has the lowest bits, green has six of them in 565. Bit 15
// of 555 is ignored, and written as zero. Widening repeats the high bits, narrowing is to nearest.
QOV_API QovStatus qoviRGB555ToYCbCr_JPEG_16u8u_C3P3R(const Qov16u* pSrc, int srcStep, Qov8u* const pDst[3],
                                                     int dstStep, QoviSize roi);
QOV_API QovStatus qoviBGR555ToYCbCr_JPEG_16u8u_C3P3R(const Qov16u* pSrc, int srcStep, Qov8u* const pDst[3],
                                                     int dstStep, QoviSize roi);
QOV_API QovStatus qoviRGB565ToYCbCr_JPEG_16u8u_C3P3R(const Qov16u* pSrc, int srcStep, Qov8u* const pDst[3],
                                                     int dstStep, QoviSize roi);
QOV_API QovStatus qoviBGR565ToYCbCr_JPEG_16u8u_C3P3R(const Qov16u* pSrc, int srcStep, Qov8u* const pDst[3],
                                                     int dstStep, QoviSize roi);
QOV_API QovStatus qoviYCbCrToRGB555_JPEG_8u16u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov16u* pDst,
                                                     int dstStep, QoviSize roi);
QOV_API QovStatus qoviYCbCrToBGR555_JPEG_8u16u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov16u* pDst,
                                                     int dstStep, QoviSize roi);
QOV_API QovStatus qoviYCbCrToRGB565_JPEG_8u16u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov16u* pDst,
                                                     int dstStep, QoviSize roi);
QOV_API QovStatus qoviYCbCrToBGR565_JPEG_8u16u_P3C3R(const Qov8u* const pSrc[3], int srcStep, Qov16u* pDst,
                                                     int dstStep, QoviSize roi);

// Y0 Cb Y1 Cr, two bytes a pixel; both pixels of a pair have its chroma. An odd width ends in Y Cb: the last
// column has the Cr of the pair before it (128 if there is none).
QOV_API QovStatus qoviYCbCr422ToRGB_JPEG_8u_C2C3R(const Qov8u* pSrc, int srcStep, Qov8u* pDst, int dstStep,
                                                  QoviSize roi);

#endif
