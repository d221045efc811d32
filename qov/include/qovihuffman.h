// Huffman tables and coding of JPEG coefficients and differences (ITU-T T.81). Conventions of qovi.h.
//
// A block is 64 coefficients in natural order. Tables and states are opaque blocks of GetBufSize bytes at any
// address; a copy of their bytes is as good as the original. Each carries a mark that every use checks
// (qovStsContext). A table may be shared by any number of states.
#ifndef QOV_QOVIHUFFMAN_H
#define QOV_QOVIHUFFMAN_H

#include "qovdefs.h"

typedef struct QoviEncodeHuffmanSpec QoviEncodeHuffmanSpec;
typedef struct QoviDecodeHuffmanSpec QoviDecodeHuffmanSpec;
typedef struct QoviEncodeHuffmanState QoviEncodeHuffmanState;
typedef struct QoviDecodeHuffmanState QoviDecodeHuffmanState;

// Tables. pBits: 16 counts, of the codes of 1 to 16 bits; pVals: the values in order of their codes (annex
// C), of which only as many as the counts add up to are read. qovStsTable: more codes of a length than there
// can be, or more than 256 in all. An empty table is valid, and so is one that uses the code of ones alone;
// any value may stand in a table. SpecInitAlloc makes a null of *ppSpec where it fails; SpecFree takes what
// it made.
QOV_API QovStatus qoviEncodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);
QOV_API QovStatus qoviEncodeHuffmanSpecInit_JPEG_8u(const Qov8u* pBits, const Qov8u* pVals,
                                                    QoviEncodeHuffmanSpec* pSpec);
QOV_API QovStatus qoviEncodeHuffmanSpecInitAlloc_JPEG_8u(const Qov8u* pBits, const Qov8u* pVals,
                                                         QoviEncodeHuffmanSpec** ppSpec);
QOV_API QovStatus qoviEncodeHuffmanSpecFree_JPEG_8u(QoviEncodeHuffmanSpec* pSpec);
QOV_API QovStatus qoviDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize);
QOV_API QovStatus qoviDecodeHuffmanSpecInit_JPEG_8u(const Qov8u* pBits, const Qov8u* pVals,
                                                    QoviDecodeHuffmanSpec* pSpec);
QOV_API QovStatus qoviDecodeHuffmanSpecInitAlloc_JPEG_8u(const Qov8u* pBits, const Qov8u* pVals,
                                                         QoviDecodeHuffmanSpec** ppSpec);
QOV_API QovStatus qoviDecodeHuffmanSpecFree_JPEG_8u(QoviDecodeHuffmanSpec* pSpec);

// A table made for the counts of 256 symbols by the procedure of annex K.2: at most 16 bits, the code of ones
// alone stays free, values in order of length and then of value, no code for a count of 0. Writes 16 counts
// and as many values as there are codes.
QOV_API QovStatus qoviEncodeHuffmanRawTableInit_JPEG_8u(const int pStatistics[256], Qov8u* pBits,
                                                        Qov8u* pVals);

QOV_API QovStatus qoviEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);
QOV_API QovStatus qoviEncodeHuffmanStateInit_JPEG_8u(QoviEncodeHuffmanState* pState);
QOV_API QovStatus qoviDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize);
QOV_API QovStatus qoviDecodeHuffmanStateInit_JPEG_8u(QoviDecodeHuffmanState* pState);

// Encoders. pDst, dstLen: the whole buffer; *pDstCurrPos: offset of the next byte to write. Bits go in from
// the high end of each byte; FF is followed by 00. When a call returns, at most 7 bits wait in the state,
// besides an end-of-band run and its correction bits. flush != 0 codes nothing and reads no source (all but
// the buffer and the state may be null; the AC table only if no run is pending): it settles the run, fills
// the last byte with ones and leaves the state as after Init. *pLastDC: the DC predictor, read and replaced.
// qovStsDstFull: the buffer ran out; what fits has been written, and every later call with this state says
// the same, flush included, up to the next Init. qovStsRange: the table has no code for a value; the cursor
// and the bits that wait stay, *pLastDC may be replaced and a pending run lost.
//
// Decoders. pSrc, srcLen: the whole stream; *pSrcCurrPos: offset of the next byte that the state has not
// taken. Bytes may be taken ahead of need, never past a marker. As soon as a marker is seen its second byte
// goes to *pMarker, which is written only then, and the cursor stands just behind it. When the bits end there
// or at the end of the data, this call and all later ones up to the next Init answer qovStsMarker and deliver
// a flat continuation: a sequential block is the predictor and 63 zeros, a first DC pass the predictor, the
// other passes leave the block as it is, differences are 0. That goes for a block whose bits end half way
// too: nothing of it is delivered and *pLastDC stays. The sequential decoder alone also puts D9 into
// *pMarker when the data end without a marker. qovStsData: a code that is not in the table, a category or
// size that the pass does not have, or a run past the band; the block holds what was decoded of it.
//
// Both. qovStsSize: dstLen or srcLen below 1. qovStsBadArg: a cursor outside 0..dstLen or 0..srcLen, not
// 0 <= al <= 13, or not 1 <= ss <= se <= 63.

// Sequential coding (F.1.2, F.2.2). DC categories 0 to 15, AC sizes 1 to 15.
QOV_API QovStatus qoviEncodeHuffman8x8_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                     int* pDstCurrPos, Qov16s* pLastDC,
                                                     const QoviEncodeHuffmanSpec* pDcSpec,
                                                     const QoviEncodeHuffmanSpec* pAcSpec,
                                                     QoviEncodeHuffmanState* pState, int flush);
QOV_API QovStatus qoviDecodeHuffman8x8_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                     Qov16s* pDst, Qov16s* pLastDC, int* pMarker,
                                                     const QoviDecodeHuffmanSpec* pDcSpec,
                                                     const QoviDecodeHuffmanSpec* pAcSpec,
                                                     QoviDecodeHuffmanState* pState);

// One difference, the value itself (H.1.2.2). -32768 stands for 32768: category 16 without further bits.
QOV_API QovStatus qoviEncodeHuffmanOne_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                     int* pDstCurrPos, const QoviEncodeHuffmanSpec* pSpec,
                                                     QoviEncodeHuffmanState* pState, int flush);
QOV_API QovStatus qoviDecodeHuffmanOne_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                     Qov16s* pDst, int* pMarker,
                                                     const QoviDecodeHuffmanSpec* pSpec,
                                                     QoviDecodeHuffmanState* pState);

// Progressive coding (G.1.2, G.2). Encoders are given the whole coefficients in every pass. Decoders of a
// first pass store only what is not zero, so the band has to hold zeros; refining ones change the block in
// place. End-of-band runs go up to 32767.
QOV_API QovStatus qoviEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                             int* pDstCurrPos, Qov16s* pLastDC, int al,
                                                             const QoviEncodeHuffmanSpec* pDcSpec,
                                                             QoviEncodeHuffmanState* pState, int flush);
QOV_API QovStatus qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                              int* pDstCurrPos, int al,
                                                              QoviEncodeHuffmanState* pState, int flush);
QOV_API QovStatus qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                             int* pDstCurrPos, int ss, int se, int al,
                                                             const QoviEncodeHuffmanSpec* pAcSpec,
                                                             QoviEncodeHuffmanState* pState, int flush);
QOV_API QovStatus qoviEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                              int* pDstCurrPos, int ss, int se, int al,
                                                              const QoviEncodeHuffmanSpec* pAcSpec,
                                                              QoviEncodeHuffmanState* pState, int flush);
QOV_API QovStatus qoviDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                             Qov16s* pDst, Qov16s* pLastDC, int* pMarker,
                                                             int al, const QoviDecodeHuffmanSpec* pDcSpec,
                                                             QoviDecodeHuffmanState* pState);
QOV_API QovStatus qoviDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                              Qov16s* pDst, int* pMarker, int al,
                                                              QoviDecodeHuffmanState* pState);
QOV_API QovStatus qoviDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                             Qov16s* pDst, int* pMarker, int ss, int se,
                                                             int al, const QoviDecodeHuffmanSpec* pAcSpec,
                                                             QoviDecodeHuffmanState* pState);
QOV_API QovStatus qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                              Qov16s* pDst, int* pMarker, int ss, int se,
                                                              int al, const QoviDecodeHuffmanSpec* pAcSpec,
                                                              QoviDecodeHuffmanState* pState);

// Counts the symbols that the coding pass with the same arguments will emit; counts are added to. flush != 0
// reads no block and settles a pending end-of-band run.
QOV_API QovStatus qoviGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(const Qov16s* pSrc, int pStatistics[256],
                                                                  Qov16s* pLastDC, int al);
QOV_API QovStatus qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(const Qov16s* pSrc, int pStatistics[256],
                                                                  int ss, int se, int al,
                                                                  QoviEncodeHuffmanState* pState, int flush);
QOV_API QovStatus qoviGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(const Qov16s* pSrc, int pStatistics[256],
                                                                   int ss, int se, int al,
                                                                   QoviEncodeHuffmanState* pState, int flush);

#endif
