// Coding of code-blocks (ITU-T T.800, annexes C and D). Conventions of qovi.h.
//
// Samples are 32-bit words, bit 31 the sign and bits 0 to 30 the magnitude. Bit 0 is the unit of everything
// here: bit plane p is bit p.
#ifndef QOV_QOVICODEBLOCK_H
#define QOV_QOVICODEBLOCK_H

#include "qovdefs.h"

// LL, LH, HL, HH: low- or high-pass along x, then along y.
typedef enum QOV_IN_INT {
    qoviWTSubbandLxLy = 0,
    qoviWTSubbandLxHy = 1,
    qoviWTSubbandHxLy = 2,
    qoviWTSubbandHxHy = 3
} QoviWTSubband;

// How a segment of arithmetic-coded data ends: by the flush of C.2.9; as short as a decoder that sees ones
// behind the end allows; or predictably (D.4.2).
typedef enum QOV_IN_INT {
    qoviMQTermPlain = 0,
    qoviMQTermShort = 1,
    qoviMQTermPredictable = 2
} QoviMQTermination;

typedef enum QOV_IN_INT { qoviMQRateSafe = 0 } QoviMQRate;

// The code style word, the same for coding and decoding.
enum {
    qoviCodeStyleVCausal = 1,        // neighbours below the stripe count as insignificant
    qoviCodeStyleBypass = 2,         // from the fifth plane on, the first two passes of a plane are raw bits
    qoviCodeStyleTermAll = 4,        // every pass ends its own segment
    qoviCodeStyleReset = 8,          // contexts start anew with every pass
    qoviCodeStyleSegSym = 16,        // 1010 after every cleanup pass
    qoviCodeStyleLossless = 32,      // decoding only: no middle of the interval, just the bits that were read
    qoviCodeStylePredTerm = 0x100000 // decoding only: segments end predictably and may be checked
};

// Encoder. One state serves all blocks up to maxSize, sides 1 to 1024 and at most 4096 samples: qovStsSize
// and *ppState null otherwise, qovStsNoMemory and null without memory. Only InitAlloc allocates. Free takes
// null.
typedef struct QoviEncodeCBState QoviEncodeCBState;

QOV_API QovStatus qoviEncodeInitAlloc_JPEG2K(QoviEncodeCBState** ppState, QoviSize maxSize);
QOV_API QovStatus qoviEncodeFree_JPEG2K(QoviEncodeCBState* pState);

// Codes a whole block.
// magnBits (0 to 31): planes from bit 30 downwards that may be coded; the last plane is 31 - magnBits.
// codeStyle: any of VCausal to SegSym; Lossless is ignored.
// *pSfBits: bits of the largest magnitude, counted from bit 0, whatever magnBits is.
// *pNOfPasses: 3 * (sfBits - (31 - magnBits)) - 2, or 0 when nothing is left to code: the cleanup of plane
// sfBits - 1, then significance, refinement, cleanup plane by plane.
// *pNOfTermPasses: the passes that end a segment. No segment ends in FF.
QOV_API QovStatus qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R(const Qov32s* pSrc, int srcStep, QoviSize size,
                                                         QoviEncodeCBState* pState, QoviWTSubband subband,
                                                         int magnBits, QoviMQTermination term,
                                                         QoviMQRate rate, int codeStyle, int* pSfBits,
                                                         int* pNOfPasses, int* pNOfTermPasses);

// Hands out the block's bytes piece by piece. *pSize in: room at pDst, 1 or more (else qovStsSize); out:
// bytes given. *pIsNotFinish: 0 once nothing is left.
QOV_API QovStatus qoviEncodeStoreBits_JPEG2K_1u(Qov8u* pDst, int* pSize, QoviEncodeCBState* pState,
                                                int* pIsNotFinish);

// Bytes from the block's start that decode every pass up to and with `pass`, ones following them. Never falls
// from pass to pass, is above 0, and never leaves an FF as the last byte.
QOV_API QovStatus qoviEncodeGetRate_JPEG2K(QoviEncodeCBState* pState, int pass, int* pRate);

// How much the squared error has fallen by the end of `pass`, against a block of zeros; in units of bit 0,
// squared, for a decoder that takes the middle of intervals.
QOV_API QovStatus qoviEncodeGetDist_JPEG2K(QoviEncodeCBState* pState, int pass, double* pDist);

// Bytes of segment number termPass.
QOV_API QovStatus qoviEncodeGetTermPassLen_JPEG2K(QoviEncodeCBState* pState, int termPass, int* pLen);

// Decoder, segment by segment. The state lives in memory of the caller, at any address, and keeps the
// destination of Attach, which Step alone may write. Any bytes, lengths and counters are safe.
typedef struct QoviDecodeCBState QoviDecodeCBState;

// Sides 1 to 1024 each, else qovStsSize.
QOV_API QovStatus qoviDecodeCBProgrGetStateSize_JPEG2K(QoviSize size, int* pStateSize);
QOV_API QovStatus qoviDecodeCBProgrInit_JPEG2K(QoviDecodeCBState* pState);

// Binds the state to a block for one decoding: zeros the destination, forgets everything earlier.
// sfBits (0 to 31): plane sfBits - 1 comes first. codeStyle: any of the enumeration.
QOV_API QovStatus qoviDecodeCBProgrAttach_JPEG2K_32s_C1R(Qov32s* pDst, int dstStep, QoviSize size,
                                                         QoviDecodeCBState* pState, QoviWTSubband subband,
                                                         int sfBits, int codeStyle);

// How many passes the coming segments hold together; how many of them no segment has reached.
QOV_API QovStatus qoviDecodeCBProgrSetPassCounter_JPEG2K(int nOfPasses, QoviDecodeCBState* pState);
QOV_API QovStatus qoviDecodeCBProgrGetPassCounter_JPEG2K(QoviDecodeCBState* pState, int* pLeft);

// Decodes one segment, behind whose end stand ones: 1 pass with TermAll; with Bypass the passes up to and
// with pass 9, then 2 raw passes or 1 cleanup in turn; otherwise all that are left. Never more passes than
// the counter holds, or than 3 * sfBits - 2 in all. pSrc may be null if srcLen is 0. A significant sample
// then holds the bits that were read and half of what is not known of it; nothing is added at plane 0, or
// with Lossless. qovStsDamagedBlock: the segmentation symbol is not 1010, or with PredTerm the end is not as
// predicted. The samples stay as decoded, and further calls work.
QOV_API QovStatus qoviDecodeCBProgrStep_JPEG2K(const Qov8u* pSrc, int srcLen, QoviDecodeCBState* pState);

// A whole block of at most 4096 samples at once, its segments one after another. qovStsDamagedBlock also when
// segments and passes do not fit together.
QOV_API QovStatus qoviDecodeCodeBlock_JPEG2K_1u32s_C1R(const Qov8u* pSrc, Qov32s* pDst, int dstStep,
                                                       QoviSize size, QoviWTSubband subband, int sfBits,
                                                       int nOfPasses, const int* pTermPassLen,
                                                       int nOfTermPasses, int codeStyle);

#endif
