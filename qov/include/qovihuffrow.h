// Huffman coding of rows of differences, and of blocks without a state (ITU-T T.81). Conventions of qovi.h
// and qovihuffman.h.
#ifndef QOV_QOVIHUFFROW_H
#define QOV_QOVIHUFFROW_H

#include "qovihuffman.h"

// Rows of differences as those of qoviEncodeHuffmanOne, interleaved: of each column, row 0 by table 0, row 1
// by table 1 and so on. pSrc or pDst: nRows (1 to 4) rows of srcLen or dstLen elements; rows and tables past
// nRows are not looked at. Behind the bits that ran dry or are no code, all differences decoded are 0.
QOV_API QovStatus qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(const Qov16s* const pSrc[4], int srcLen, int nRows,
                                                       Qov8u* pDst, int dstLen, int* pDstCurrPos,
                                                       const QoviEncodeHuffmanSpec* const pSpec[4],
                                                       QoviEncodeHuffmanState* pState, int flush);
QOV_API QovStatus qoviDecodeHuffmanRow_JPEG_1u16s_C1P4(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                       Qov16s* const pDst[4], int dstLen, int nRows,
                                                       int* pMarker,
                                                       const QoviDecodeHuffmanSpec* const pSpec[4],
                                                       QoviDecodeHuffmanState* pState);

// Sequential coding without a state and without a length (F.1.2, F.2.2).
//
// Encoder: *pDstBitPos counts the bits of pDst, those of the bytes stuffed in included. The bits behind it in
// the last byte are cleared; no byte behind that is written. qovStsDstFull: the position does not fit an int.
//
// Decoder: *pSrcBitPos counts the bits taken from the stream, stuffed bytes included. The low
// *pNumValidPrefetchedBits bits (0 to 32) of *pPrefetchedBits are those of them that are not used yet; both
// are 0 at the beginning of a segment. Bytes are taken one by one and only if a code goes on in them. In
// front of a marker the bits run dry: the position stands behind it then, and no bit valid of FFFFFFFF says
// so to the calls that follow, until the caller puts another value there.
QOV_API QovStatus qoviEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int* pDstBitPos,
                                                            Qov16s* pLastDC,
                                                            const QoviEncodeHuffmanSpec* pDcSpec,
                                                            const QoviEncodeHuffmanSpec* pAcSpec);
QOV_API QovStatus qoviDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
    const Qov8u* pSrc, int* pSrcBitPos, Qov16s* pDst, Qov16s* pLastDC, int* pMarker, Qov32u* pPrefetchedBits,
    int* pNumValidPrefetchedBits, const QoviDecodeHuffmanSpec* pDcSpec, const QoviDecodeHuffmanSpec* pAcSpec);

#endif
