// Rows of TIFF pictures (TIFF 6.0). Conventions of qovi.h.
#ifndef QOV_QOVITIFF_H
#define QOV_QOVITIFF_H

#include "qovdefs.h"

// PackBits (section 9) of one row. The position is an offset into the packed buffer, whose whole length is
// given; it moves past what was written or read.
// Packing takes srcLen + (srcLen + 127) / 128 bytes at most. qovStsDstFull: too little room, the position is
// behind the last whole packet.
// Unpacking ends with the row's last byte. qovStsData: a packet goes on past the row, or the packed bytes end
// before it; what fits is written, and the position stays. The count -128 does nothing.
// A position outside its buffer is qovStsBadArg.
QOV_API QovStatus qoviPackBitsRow_TIFF_8u_C1(const Qov8u* pSrc, int srcLen, Qov8u* pDst, int* pDstCurrPos,
                                             int dstLen);
QOV_API QovStatus qoviUnpackBitsRow_TIFF_8u_C1(const Qov8u* pSrc, int* pSrcCurrPos, int srcLen, Qov8u* pDst,
                                               int dstLen);

// Samples of 16 bits to and from a plane of high bytes, 0, and one of low bytes, 1.
QOV_API QovStatus qoviSplitRow_TIFF_16u8u_C1(const Qov16u* pSrc, Qov8u* const pDst[2], int len);
QOV_API QovStatus qoviJoinRow_TIFF_8u16u_C1(const Qov8u* const pSrc[2], Qov16u* pDst, int len);

#endif
