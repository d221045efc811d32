// Adaptive coders of JPEG XR coefficients (ITU-T T.832, 8.7.18 and 8.8 to 8.11). Conventions of qovi.h.
//
// A stream's place is a byte pointer and the count of bits used in that byte (0 to 7, from the most
// significant bit); both are moved on by every call that succeeds. A writer keeps the used bits of the
// current byte and clears the rest of each byte it enters, so the buffer need not be zeroed. Neither a writer
// nor a reader touches a byte behind the one that holds its last bit. There is no length: where it isn't
// known what is to come, the buffer has to reach as far as a block can, 100 bytes for a list and 32 for the
// low bits of a block.
//
// Coefficients are coded as level and low bits: level = sign (|x| >> nBits), the low nBits of |x| apart from
// it, nBits 0 to 15. A list without a level other than 0 is written as no bits at all, with *pNumNonZero 0;
// the caller has to know of it, and must not read it. A level above 2^30 + 1 is qovStsRange, and then nothing
// is written or changed.
//
// Decoders take any bytes: a run or a place behind the end of the list is qovStsData. Then the place and the
// list or block are as before, and the state has to be initialised anew. What does not fit into an
// element, in data that no encoder has made, wraps.
#ifndef QOV_QOVIVLC_H
#define QOV_QOVIVLC_H

#include "qovdefs.h"

#ifdef __cplusplus
#define QOV_DEFAULT(value) = value
#else
#define QOV_DEFAULT(value)
#endif

// Two sets of eight adaptive tables, one of the low-pass coders (DC) and one of the high-pass coders (4x4),
// three adaptive scans, and which of the two high-pass scans is in use. Memory of the caller, any address; it
// can be moved and copied.
typedef struct QoviVLCState_JPEGXR QoviVLCState_JPEGXR;

QOV_API QovStatus qoviVLCGetStateSize_JPEGXR(int* pSize);
// The state at the start of a tile: first tables, first orders, high-pass scan 0.
QOV_API QovStatus qoviVLCInit_JPEGXR(QoviVLCState_JPEGXR* pState);
// Scans are 0 high-pass horizontal, 1 high-pass vertical, 2 low-pass; another one is qovStsBadArg. A reset
// restores the totals and leaves the order (8.11). Whether it is the last one of a tile changes nothing.
QOV_API QovStatus qoviVLCScanReset_JPEGXR(QoviVLCState_JPEGXR* pState, int which, int last QOV_DEFAULT(0));
// The scan that the 4x4 coders use from now on, 0 or 1.
QOV_API QovStatus qoviVLCScanSet_JPEGXR(QoviVLCState_JPEGXR* pState, int which);
// The adaptation step (8.8.4) of set 0, low-pass, or 1, high-pass; none with `adapt` 0.
QOV_API QovStatus qoviVLCAdapt_JPEGXR(QoviVLCState_JPEGXR* pState, int which, int adapt QOV_DEFAULT(1));

// Low-pass lists. Scan4x4DC takes 16 coefficients in raster order to a list of 15 in that of the low-pass
// scan, without the first; DecodeDC444 gives raster order again and leaves element 0. Both update the scan.
// Lists of 4:2:2 have 14 places and of 4:2:0 six, U and V in turn, gathered and spread by the caller, and
// always use the tables of chroma. `chroma` is 0 or 1.
QOV_API QovStatus qoviVLCScan4x4DC_JPEGXR_32s(const Qov32s* pSrc, Qov32s* pDst, QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCEncodeDC444_JPEGXR_32s1u(const Qov32s* pSrc, Qov8u** ppDst, int* pBit, int chroma,
                                                  int* pNumNonZero, QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCEncodeDC422_JPEGXR_32s1u(const Qov32s* pSrc, Qov8u** ppDst, int* pBit,
                                                  int* pNumNonZero, QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCEncodeDC420_JPEGXR_32s1u(const Qov32s* pSrc, Qov8u** ppDst, int* pBit,
                                                  int* pNumNonZero, QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCDecodeDC444_JPEGXR_1u32s(const Qov8u** ppSrc, int* pBit, Qov32s* pDst, int chroma,
                                                  int* pNumNonZero, QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCDecodeDC422_JPEGXR_1u32s(const Qov8u** ppSrc, int* pBit, Qov32s* pDst,
                                                  int* pNumNonZero, QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCDecodeDC420_JPEGXR_1u32s(const Qov8u** ppSrc, int* pBit, Qov32s* pDst,
                                                  int* pNumNonZero, QoviVLCState_JPEGXR* pState);

// High-pass coefficients of a 4x4 block, elements 1 to 15 in raster order, by the scan in use, which they
// update; element 0 is neither coded nor written. The Flex form writes the same bits: its low bits go through
// FLCEncode4x4 next. Decoding gives the level shifted back, low bits 0.
QOV_API QovStatus qoviVLCEncode4x4_JPEGXR_32s1u_C1R(const Qov32s* pSrc, int srcStep, Qov8u** ppDst, int* pBit,
                                                    int nBits, int chroma, int* pNumNonZero,
                                                    QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCEncode4x4_JPEGXR_16s1u_C1R(const Qov16s* pSrc, int srcStep, Qov8u** ppDst, int* pBit,
                                                    int nBits, int chroma, int* pNumNonZero,
                                                    QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCEncode4x4Flex_JPEGXR_32s1u_C1R(const Qov32s* pSrc, int srcStep, Qov8u** ppDst,
                                                        int* pBit, int nBits, int chroma, int* pNumNonZero,
                                                        QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCEncode4x4Flex_JPEGXR_16s1u_C1R(const Qov16s* pSrc, int srcStep, Qov8u** ppDst,
                                                        int* pBit, int nBits, int chroma, int* pNumNonZero,
                                                        QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCDecode4x4_JPEGXR_1u32s_C1R(const Qov8u** ppSrc, int* pBit, Qov32s* pDst, int dstStep,
                                                    int nBits, int chroma, int* pNumNonZero,
                                                    QoviVLCState_JPEGXR* pState);
QOV_API QovStatus qoviVLCDecode4x4_JPEGXR_1u16s_C1R(const Qov8u** ppSrc, int* pBit, Qov16s* pDst, int dstStep,
                                                    int nBits, int chroma, int* pNumNonZero,
                                                    QoviVLCState_JPEGXR* pState);

// The low bits of the same coefficients (8.7.19), but for the lowest nTrim of the nBits; elements of 2 or 4
// bytes. A sign follows where the level is 0 and the bits are not. Decoding adds them to what Decode4x4 left.
QOV_API QovStatus qoviFLCEncode4x4_JPEGXR(const void* pSrc, int srcStep, int elemBytes, Qov8u** ppDst,
                                          int* pBit, int nBits, int nTrim);
QOV_API QovStatus qoviFLCDecode4x4_JPEGXR(const Qov8u** ppSrc, int* pBit, void* pDst, int dstStep,
                                          int elemBytes, int nBits, int nTrim);

#endif
