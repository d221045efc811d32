// Photo core transforms of JPEG XR and HD Photo (ITU-T T.832, 9.9.7 and D.4.5), in place: two levels, of the
// 4x4 blocks and of their DC coefficients. Conventions of qovi.h.
//
// Coefficient k of a 4x4 block lies at (k mod 4, k / 4) of it, low-pass coefficient j of a macroblock at the
// origin of its block j, and so the macroblock's DC at its own origin. A macroblock is 16x16 samples (luma,
// and chroma of 4:4:4), 8 wide and 16 high (chroma of 4:2:2) or 8x8 (chroma of 4:2:0).
//
// 32s and 16s: forward and inverse undo each other for any samples; results that do not fit are reduced
// modulo 2^32 or 2^16. 16s gives the coefficients of 32s for samples up to 1489 in magnitude (16x16), 2047
// (8x16) and 4095 (8x8). 32f is the same transform without its rounding: forward and inverse undo each other
// within 1e-5 of the largest magnitude that goes in, if no number on the way is beyond the range (variables
// reach 22 times that magnitude); subnormal numbers count as 0.
//
// The step is looked at for every form: rows of the macroblock may not overlap. It need not be a multiple of
// anything but the element.
#ifndef QOV_QOVIPCT_H
#define QOV_QOVIPCT_H

#include "qovdefs.h"

// A region of macroblocks: of 16x16 when both sides are multiples of 16, else of 8x16 when the width is one
// of 8 and the height of 16, else of 8x8 when both are multiples of 8; qovStsSize otherwise.
//
// HD Photo's transform is that of JPEG XR.
QOV_API QovStatus qoviPCTFwd_HDP_32s_C1IR(Qov32s* pSrcDst, int step, QoviSize roi);
QOV_API QovStatus qoviPCTInv_HDP_32s_C1IR(Qov32s* pSrcDst, int step, QoviSize roi);
QOV_API QovStatus qoviPCTFwd16x16_HDP_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv16x16_HDP_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd8x16_HDP_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv8x16_HDP_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd8x8_HDP_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv8x8_HDP_32s_C1IR(Qov32s* pSrcDst, int step);

QOV_API QovStatus qoviPCTFwd_JPEGXR_32s_C1IR(Qov32s* pSrcDst, int step, QoviSize roi);
QOV_API QovStatus qoviPCTInv_JPEGXR_32s_C1IR(Qov32s* pSrcDst, int step, QoviSize roi);
QOV_API QovStatus qoviPCTFwd_JPEGXR_16s_C1IR(Qov16s* pSrcDst, int step, QoviSize roi);
QOV_API QovStatus qoviPCTInv_JPEGXR_16s_C1IR(Qov16s* pSrcDst, int step, QoviSize roi);
QOV_API QovStatus qoviPCTFwd_JPEGXR_32f_C1IR(Qov32f* pSrcDst, int step, QoviSize roi);
QOV_API QovStatus qoviPCTInv_JPEGXR_32f_C1IR(Qov32f* pSrcDst, int step, QoviSize roi);
QOV_API QovStatus qoviPCTFwd16x16_JPEGXR_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv16x16_JPEGXR_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd16x16_JPEGXR_16s_C1IR(Qov16s* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv16x16_JPEGXR_16s_C1IR(Qov16s* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd16x16_JPEGXR_32f_C1IR(Qov32f* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv16x16_JPEGXR_32f_C1IR(Qov32f* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd8x16_JPEGXR_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv8x16_JPEGXR_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd8x16_JPEGXR_16s_C1IR(Qov16s* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv8x16_JPEGXR_16s_C1IR(Qov16s* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd8x16_JPEGXR_32f_C1IR(Qov32f* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv8x16_JPEGXR_32f_C1IR(Qov32f* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd8x8_JPEGXR_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv8x8_JPEGXR_32s_C1IR(Qov32s* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd8x8_JPEGXR_16s_C1IR(Qov16s* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv8x8_JPEGXR_16s_C1IR(Qov16s* pSrcDst, int step);
QOV_API QovStatus qoviPCTFwd8x8_JPEGXR_32f_C1IR(Qov32f* pSrcDst, int step);
QOV_API QovStatus qoviPCTInv8x8_JPEGXR_32f_C1IR(Qov32f* pSrcDst, int step);

#endif
