// Component transforms of JPEG 2000 (ITU-T T.800, annex G). Conventions of qovi.h; one step serves all
// planes, in the order R, G, B and Y, Cb (U), Cr (V). No level shift.
//
// Reversible (RCT):    Y = (R + 2 G + B) >> 2       G = Y - ((U + V) >> 2)
//                      U = B - G                    R = V + G
//                      V = R - G                    B = U + G
//
// Sums are exact; what does not fit the type is reduced modulo 2^16 or 2^32. So the inverse gives back any
// picture whose differences B - G and R - G fit.
//
// Irreversible (ICT):  Y  =  0.299 R   + 0.587 G   + 0.114 B       R = Y + 1.402 Cr
//                      Cb = -0.16875 R - 0.33126 G + 0.5 B         G = Y - 0.344136 Cb - 0.714136 Cr
//                      Cr =  0.5 R     - 0.41869 G - 0.08131 B     B = Y + 1.772 Cb
//
// Whole numbers are rounded to nearest (a tie goes up in 16s, either way in 32s) and saturated. In 32f a
// result beyond the type is an infinity and a subnormal number counts as 0; no form raises a floating-point
// flag, whatever its input.
#ifndef QOV_QOVICOMPONENT_H
#define QOV_QOVICOMPONENT_H

#include "qovdefs.h"

QOV_API QovStatus qoviRCTFwd_JPEG2K_16s_P3IR(Qov16s* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviRCTFwd_JPEG2K_32s_P3IR(Qov32s* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviRCTInv_JPEG2K_16s_P3IR(Qov16s* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviRCTInv_JPEG2K_32s_P3IR(Qov32s* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviRCTFwd_JPEG2K_16s_C3P3R(const Qov16s* pSrc, int srcStep, Qov16s* const pDst[3],
                                              int dstStep, QoviSize roi);
QOV_API QovStatus qoviRCTFwd_JPEG2K_32s_C3P3R(const Qov32s* pSrc, int srcStep, Qov32s* const pDst[3],
                                              int dstStep, QoviSize roi);
QOV_API QovStatus qoviRCTInv_JPEG2K_16s_P3C3R(const Qov16s* const pSrc[3], int srcStep, Qov16s* pDst,
                                              int dstStep, QoviSize roi);
QOV_API QovStatus qoviRCTInv_JPEG2K_32s_P3C3R(const Qov32s* const pSrc[3], int srcStep, Qov32s* pDst,
                                              int dstStep, QoviSize roi);

QOV_API QovStatus qoviICTFwd_JPEG2K_16s_P3IR(Qov16s* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviICTFwd_JPEG2K_32s_P3IR(Qov32s* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviICTFwd_JPEG2K_32f_P3IR(Qov32f* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviICTInv_JPEG2K_16s_P3IR(Qov16s* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviICTInv_JPEG2K_32s_P3IR(Qov32s* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviICTInv_JPEG2K_32f_P3IR(Qov32f* const pSrcDst[3], int srcDstStep, QoviSize roi);
QOV_API QovStatus qoviICTFwd_JPEG2K_32f_C3P3R(const Qov32f* pSrc, int srcStep, Qov32f* const pDst[3],
                                              int dstStep, QoviSize roi);
QOV_API QovStatus qoviICTInv_JPEG2K_32f_P3C3R(const Qov32f* const pSrc[3], int srcStep, Qov32f* pDst,
                                              int dstStep, QoviSize roi);

#endif
