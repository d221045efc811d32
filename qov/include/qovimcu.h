// Conversions between an MCU of pixels and blocks of level-shifted samples. Conventions of qovi.h.
//
// The region is 8x8 pixels for 444, 16x8 for 422 and 16x16 for 411, where Cb and Cr have half the columns, or
// half the columns and rows; K is never subsampled. Each plane pointer leads to the blocks of its component,
// 64 values by rows each, one after the other: left, right (422); top left, top right, bottom left, bottom
// right (411).
//
// To blocks: colour conversion, then Cb and Cr as (a + b + 1) >> 1 or (a + b + c + d + 2) >> 2, then less
// 128. From blocks: plus 128 limited to 0..255, Cb and Cr repeated, colour conversion.
#ifndef QOV_QOVIMCU_H
#define QOV_QOVIMCU_H

#include "qovdefs.h"

// Colour conversion as in qovicolor.h.
QOV_API QovStatus qoviRGBToYCbCr444LS_MCU_8u16s_C3P3R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviRGBToYCbCr422LS_MCU_8u16s_C3P3R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviRGBToYCbCr411LS_MCU_8u16s_C3P3R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviYCbCr444ToRGBLS_MCU_16s8u_P3C3R(const Qov16s* const pSrcMCU[3], Qov8u* pDst,
                                                      int dstStep);
QOV_API QovStatus qoviYCbCr422ToRGBLS_MCU_16s8u_P3C3R(const Qov16s* const pSrcMCU[3], Qov8u* pDst,
                                                      int dstStep);
QOV_API QovStatus qoviYCbCr411ToRGBLS_MCU_16s8u_P3C3R(const Qov16s* const pSrcMCU[3], Qov8u* pDst,
                                                      int dstStep);

QOV_API QovStatus qoviBGRToYCbCr444LS_MCU_8u16s_C3P3R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviBGRToYCbCr422LS_MCU_8u16s_C3P3R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviBGRToYCbCr411LS_MCU_8u16s_C3P3R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviYCbCr444ToBGRLS_MCU_16s8u_P3C3R(const Qov16s* const pSrcMCU[3], Qov8u* pDst,
                                                      int dstStep);
QOV_API QovStatus qoviYCbCr422ToBGRLS_MCU_16s8u_P3C3R(const Qov16s* const pSrcMCU[3], Qov8u* pDst,
                                                      int dstStep);
QOV_API QovStatus qoviYCbCr411ToBGRLS_MCU_16s8u_P3C3R(const Qov16s* const pSrcMCU[3], Qov8u* pDst,
                                                      int dstStep);

QOV_API QovStatus qoviCMYKToYCCK444LS_MCU_8u16s_C4P4R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[4]);
QOV_API QovStatus qoviCMYKToYCCK422LS_MCU_8u16s_C4P4R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[4]);
QOV_API QovStatus qoviCMYKToYCCK411LS_MCU_8u16s_C4P4R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[4]);
QOV_API QovStatus qoviYCCK444ToCMYKLS_MCU_16s8u_P4C4R(const Qov16s* const pSrcMCU[4], Qov8u* pDst,
                                                      int dstStep);
QOV_API QovStatus qoviYCCK422ToCMYKLS_MCU_16s8u_P4C4R(const Qov16s* const pSrcMCU[4], Qov8u* pDst,
                                                      int dstStep);
QOV_API QovStatus qoviYCCK411ToCMYKLS_MCU_16s8u_P4C4R(const Qov16s* const pSrcMCU[4], Qov8u* pDst,
                                                      int dstStep);

// 16-bit words as in qovipacked.h: blue in the lowest bits.
QOV_API QovStatus qoviBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const Qov16u* pSrc, int srcStep,
                                                          Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const Qov16u* pSrc, int srcStep,
                                                          Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const Qov16u* pSrc, int srcStep,
                                                          Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviYCbCr444ToBGR555LS_MCU_16s16u_P3C3R(const Qov16s* const pSrcMCU[3], Qov16u* pDst,
                                                          int dstStep);
QOV_API QovStatus qoviYCbCr422ToBGR555LS_MCU_16s16u_P3C3R(const Qov16s* const pSrcMCU[3], Qov16u* pDst,
                                                          int dstStep);
QOV_API QovStatus qoviYCbCr411ToBGR555LS_MCU_16s16u_P3C3R(const Qov16s* const pSrcMCU[3], Qov16u* pDst,
                                                          int dstStep);

QOV_API QovStatus qoviBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const Qov16u* pSrc, int srcStep,
                                                          Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const Qov16u* pSrc, int srcStep,
                                                          Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const Qov16u* pSrc, int srcStep,
                                                          Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviYCbCr444ToBGR565LS_MCU_16s16u_P3C3R(const Qov16s* const pSrcMCU[3], Qov16u* pDst,
                                                          int dstStep);
QOV_API QovStatus qoviYCbCr422ToBGR565LS_MCU_16s16u_P3C3R(const Qov16s* const pSrcMCU[3], Qov16u* pDst,
                                                          int dstStep);
QOV_API QovStatus qoviYCbCr411ToBGR565LS_MCU_16s16u_P3C3R(const Qov16s* const pSrcMCU[3], Qov16u* pDst,
                                                          int dstStep);

// No colour conversion.
QOV_API QovStatus qoviSampleDown444LS_MCU_8u16s_C3P3R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviSampleDown422LS_MCU_8u16s_C3P3R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviSampleDown411LS_MCU_8u16s_C3P3R(const Qov8u* pSrc, int srcStep,
                                                      Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviSampleUp444LS_MCU_16s8u_P3C3R(const Qov16s* const pSrcMCU[3], Qov8u* pDst, int dstStep);
QOV_API QovStatus qoviSampleUp422LS_MCU_16s8u_P3C3R(const Qov16s* const pSrcMCU[3], Qov8u* pDst, int dstStep);
QOV_API QovStatus qoviSampleUp411LS_MCU_16s8u_P3C3R(const Qov16s* const pSrcMCU[3], Qov8u* pDst, int dstStep);

// A region of 16x8 pixels in bytes Y0 Cb Y1 Cr.
QOV_API QovStatus qoviSplit422LS_MCU_8u16s_C2P3R(const Qov8u* pSrc, int srcStep, Qov16s* const pDstMCU[3]);
QOV_API QovStatus qoviJoin422LS_MCU_16s8u_P3C2R(const Qov16s* const pSrcMCU[3], Qov8u* pDst, int dstStep);

#endif
