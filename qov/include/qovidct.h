// Level shift, quantisation and DCT of 8x8 blocks. Conventions of qovi.h.
#ifndef QOV_QOVIDCT_H
#define QOV_QOVIDCT_H

#include "qovdefs.h"

// JPEG level shift (ITU-T T.81, A.3.1).
// Add128: dst = s + 128, saturated to 0..255 without wrapping on the way. Sub128: dst = s - 128.
QOV_API QovStatus qoviAdd128_JPEG_16s8u_C1R(const Qov16s* pSrc, int srcStep, Qov8u* pDst, int dstStep,
                                            QoviSize roi);
QOV_API QovStatus qoviSub128_JPEG_8u16s_C1R(const Qov8u* pSrc, int srcStep, Qov16s* pDst, int dstStep,
                                            QoviSize roi);

// Quantisation tables. A raw table has 64 steps in zig-zag order, as a DQT segment has it; a prepared one has
// the steps themselves in natural order, so that a table of ones changes nothing. Callers may pass longer
// prepared tables: 64 entries are read. A prepared step of 0 counts as 1 in the forward direction and is a
// plain factor in the inverse one. RawTableInit scales the steps in place for a quality of 1 to 100 (others
// are limited to it), within 1..255. FwdTableInit answers qovStsBadArg to a raw step of 0.
QOV_API QovStatus qoviQuantFwdRawTableInit_JPEG_8u(Qov8u* pRaw, int quality);
QOV_API QovStatus qoviQuantFwdTableInit_JPEG_8u16u(const Qov8u* pRaw, Qov16u* pTable);
QOV_API QovStatus qoviQuantInvTableInit_JPEG_8u16u(const Qov8u* pRaw, Qov16u* pTable);

// Quantisation of a block of 64 coefficients in natural order (ITU-T T.81, A.3.4).
// Fwd: c = c / step to nearest, halves away from zero, exact. Inv: c = c * step, saturated to 16 bits.
QOV_API QovStatus qoviQuantFwd8x8_JPEG_16s_C1I(Qov16s* pSrcDst, const Qov16u* pTable);
QOV_API QovStatus qoviQuantInv8x8_JPEG_16s_C1I(Qov16s* pSrcDst, const Qov16u* pTable);

// Forward DCT (ITU-T T.81, A.3.3: orthonormal, DC is 8 times the mean) of 8x8 samples. With steps of 1 each
// coefficient is within 1 of the real number rounded to nearest, and nearly always equal to it. The
// coefficient is not rounded before it is divided by its step. Results saturate to 16 bits. DCT8x8Fwd: no
// level shift, no quantisation. LS: the samples are shifted by 128, those of 12 bits by 2048.
QOV_API QovStatus qoviDCT8x8Fwd_8u16s_C1R(const Qov8u* pSrc, int srcStep, Qov16s* pDst);
QOV_API QovStatus qoviDCTQuantFwd8x8_JPEG_16s_C1(const Qov16s* pSrc, Qov16s* pDst, const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantFwd8x8_JPEG_16s_C1I(Qov16s* pSrcDst, const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantFwd8x8LS_JPEG_8u16s_C1R(const Qov8u* pSrc, int srcStep, Qov16s* pDst,
                                                      const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantFwd8x8LS_JPEG_16u16s_C1R(const Qov16u* pSrc, int srcStep, Qov16s* pDst,
                                                       const Qov32f* pTable);

// Dequantisation, each product limited to 16 bits, and inverse DCT; the accuracy is that of the forward
// direction. Blocks of any 16-bit values are valid. LS: plus 128 and limited to 0..255, or plus 2048 and
// limited to 0..4095. The others saturate to 16 bits. 4x4, 2x2, 1x1: only that low corner of the block is
// read, all other coefficients count as 0. To4x4, To2x2: so many samples at half and quarter size, from that
// corner, with the mean of the block.
QOV_API QovStatus qoviDCTQuantInv8x8_JPEG_16s_C1(const Qov16s* pSrc, Qov16s* pDst, const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantInv8x8_JPEG_16s_C1I(Qov16s* pSrcDst, const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                      const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                          const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                          const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                          const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                           const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(const Qov16s* pSrc, Qov8u* pDst, int dstStep,
                                                           const Qov16u* pTable);
QOV_API QovStatus qoviDCTQuantInv8x8LS_JPEG_16s16u_C1R(const Qov16s* pSrc, Qov16u* pDst, int dstStep,
                                                       const Qov32f* pTable);

#endif
