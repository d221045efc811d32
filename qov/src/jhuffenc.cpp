#include "active.h"
#include "huffcheck.h"

using namespace qov;

namespace {

// Differences of the marks from those of tables and of a state that can be written from.
Qov32u misfit(const QoviEncodeHuffmanSpec* spec)
{
    return inside(spec)->mark ^ HuffEncSpec::markValue;
}
Qov32u misfit(QoviEncodeHuffmanState* state)
{
    return inside(state)->mark ^ HuffEncState::markValue;
}

[[gnu::cold]] QovStatus stateStatus(const HuffEncState* state)
{
    switch (state->mark) {
    case HuffEncState::markValue: return qovStsNoErr;
    case HuffEncState::fullMark: return qovStsDstFull;
    default: return qovStsContext;
    }
}

// The status for these blocks when the marks of some of them do not fit.
template <class... Spec>
[[gnu::cold]] QovStatus contextStatus(QoviEncodeHuffmanState* state, const Spec*... spec)
{
    if ((... | misfit(spec)) != 0) return qovStsContext;
    return stateStatus(inside(state));
}
[[gnu::cold]] QovStatus contextStatus(QoviEncodeHuffmanState* state)
{
    return stateStatus(inside(state));
}

[[gnu::cold]] QovStatus flushBits(Qov8u* pDst, int dstLen, int* pDstCurrPos,
                                  const QoviEncodeHuffmanSpec* pAcSpec, QoviEncodeHuffmanState* pState)
{
    if (anyNull(pDst, pDstCurrPos, pState)) return qovStsNullPtr;
    if (dstLen < 1) return qovStsSize;
    if (badPosition(*pDstCurrPos, dstLen)) return qovStsBadArg;
    if (misfit(pState)) return contextStatus(pState);
    if (inside(pState)->eobRun) {
        if (!pAcSpec) return qovStsNullPtr;
        if (misfit(pAcSpec)) return qovStsContext;
    }
    return active.huffEnc->flush(pDst, dstLen, pDstCurrPos, inside(pAcSpec), inside(pState));
}

QovStatus codeBand(HuffEncKernels::AC* kernel, const Qov16s* pSrc, Qov8u* pDst, int dstLen, int* pDstCurrPos,
                   int ss, int se, int al, const QoviEncodeHuffmanSpec* pAcSpec,
                   QoviEncodeHuffmanState* pState)
{
    if (anyNull(pSrc, pDst, pDstCurrPos, pAcSpec, pState)) return qovStsNullPtr;
    if (dstLen < 1) return qovStsSize;
    if (badPosition(*pDstCurrPos, dstLen) || badBand(ss, se, al)) return qovStsBadArg;
    if (misfit(pAcSpec) | misfit(pState)) return contextStatus(pState, pAcSpec);
    return kernel(pSrc, pDst, dstLen, pDstCurrPos, ss, se, al, inside(pAcSpec), inside(pState));
}

QovStatus countBand(HuffEncKernels::CountAC* kernel, const Qov16s* pSrc, int* pStatistics, int ss, int se,
                    int al, QoviEncodeHuffmanState* pState, int flush)
{
    if (anyNull(pStatistics, pState) || (!pSrc && !flush)) return qovStsNullPtr;
    if (!flush && badBand(ss, se, al)) return qovStsBadArg;
    if (misfit(pState)) return contextStatus(pState);
    if (flush)
        active.huffEnc->countRun(pStatistics, inside(pState));
    else
        kernel(pSrc, pStatistics, ss, se, al, inside(pState));
    return qovStsNoErr;
}

} // namespace

QovStatus qoviEncodeHuffmanStateGetBufSize_JPEG_8u(int* pSize)
{
    if (!pSize) return qovStsNullPtr;
    *pSize = int(sizeof(HuffEncState));
    return qovStsNoErr;
}

QovStatus qoviEncodeHuffmanStateInit_JPEG_8u(QoviEncodeHuffmanState* pState)
{
    if (!pState) return qovStsNullPtr;
    *inside(pState) = {};
    inside(pState)->mark = HuffEncState::markValue;
    return qovStsNoErr;
}

QovStatus qoviEncodeHuffman8x8_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen, int* pDstCurrPos,
                                             Qov16s* pLastDC, const QoviEncodeHuffmanSpec* pDcSpec,
                                             const QoviEncodeHuffmanSpec* pAcSpec,
                                             QoviEncodeHuffmanState* pState, int flush)
{
    if (flush) return flushBits(pDst, dstLen, pDstCurrPos, pAcSpec, pState);
    if (anyNull(pSrc, pDst, pDstCurrPos, pLastDC, pDcSpec, pAcSpec, pState)) return qovStsNullPtr;
    if (dstLen < 1) return qovStsSize;
    if (badPosition(*pDstCurrPos, dstLen)) return qovStsBadArg;
    if (misfit(pDcSpec) | misfit(pAcSpec) | misfit(pState)) return contextStatus(pState, pDcSpec, pAcSpec);
    return active.huffEnc->block(pSrc, pDst, dstLen, pDstCurrPos, pLastDC, inside(pDcSpec), inside(pAcSpec),
                                 inside(pState));
}

QovStatus qoviEncodeHuffmanOne_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen, int* pDstCurrPos,
                                             const QoviEncodeHuffmanSpec* pSpec,
                                             QoviEncodeHuffmanState* pState, int flush)
{
    if (flush) return flushBits(pDst, dstLen, pDstCurrPos, nullptr, pState);
    if (anyNull(pSrc, pDst, pDstCurrPos, pSpec, pState)) return qovStsNullPtr;
    if (dstLen < 1) return qovStsSize;
    if (badPosition(*pDstCurrPos, dstLen)) return qovStsBadArg;
    if (misfit(pSpec) | misfit(pState)) return contextStatus(pState, pSpec);
    return active.huffEnc->one(pSrc, pDst, dstLen, pDstCurrPos, inside(pSpec), inside(pState));
}

QovStatus qoviEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                     int* pDstCurrPos, Qov16s* pLastDC, int al,
                                                     const QoviEncodeHuffmanSpec* pDcSpec,
                                                     QoviEncodeHuffmanState* pState, int flush)
{
    if (flush) return flushBits(pDst, dstLen, pDstCurrPos, nullptr, pState);
    if (anyNull(pSrc, pDst, pDstCurrPos, pLastDC, pDcSpec, pState)) return qovStsNullPtr;
    if (dstLen < 1) return qovStsSize;
    if (badPosition(*pDstCurrPos, dstLen) || badShift(al)) return qovStsBadArg;
    if (misfit(pDcSpec) | misfit(pState)) return contextStatus(pState, pDcSpec);
    return active.huffEnc->dcFirst(pSrc, pDst, dstLen, pDstCurrPos, pLastDC, al, inside(pDcSpec),
                                   inside(pState));
}

QovStatus qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                      int* pDstCurrPos, int al,
                                                      QoviEncodeHuffmanState* pState, int flush)
{
    if (flush) return flushBits(pDst, dstLen, pDstCurrPos, nullptr, pState);
    if (anyNull(pSrc, pDst, pDstCurrPos, pState)) return qovStsNullPtr;
    if (dstLen < 1) return qovStsSize;
    if (badPosition(*pDstCurrPos, dstLen) || badShift(al)) return qovStsBadArg;
    if (misfit(pState)) return contextStatus(pState);
    return active.huffEnc->dcRefine(pSrc, pDst, dstLen, pDstCurrPos, al, inside(pState));
}

QovStatus qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                     int* pDstCurrPos, int ss, int se, int al,
                                                     const QoviEncodeHuffmanSpec* pAcSpec,
                                                     QoviEncodeHuffmanState* pState, int flush)
{
    if (flush) return flushBits(pDst, dstLen, pDstCurrPos, pAcSpec, pState);
    return codeBand(active.huffEnc->acFirst, pSrc, pDst, dstLen, pDstCurrPos, ss, se, al, pAcSpec, pState);
}

QovStatus qoviEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int dstLen,
                                                      int* pDstCurrPos, int ss, int se, int al,
                                                      const QoviEncodeHuffmanSpec* pAcSpec,
                                                      QoviEncodeHuffmanState* pState, int flush)
{
    if (flush) return flushBits(pDst, dstLen, pDstCurrPos, pAcSpec, pState);
    return codeBand(active.huffEnc->acRefine, pSrc, pDst, dstLen, pDstCurrPos, ss, se, al, pAcSpec, pState);
}

QovStatus qoviGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(const Qov16s* pSrc, int pStatistics[256],
                                                          Qov16s* pLastDC, int al)
{
    if (anyNull(pSrc, pStatistics, pLastDC)) return qovStsNullPtr;
    if (badShift(al)) return qovStsBadArg;
    return active.huffEnc->countDC(pSrc, pStatistics, pLastDC, al);
}

QovStatus qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(const Qov16s* pSrc, int pStatistics[256], int ss,
                                                          int se, int al, QoviEncodeHuffmanState* pState,
                                                          int flush)
{
    return countBand(active.huffEnc->countFirst, pSrc, pStatistics, ss, se, al, pState, flush);
}

QovStatus qoviGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(const Qov16s* pSrc, int pStatistics[256], int ss,
                                                           int se, int al, QoviEncodeHuffmanState* pState,
                                                           int flush)
{
    return countBand(active.huffEnc->countRefine, pSrc, pStatistics, ss, se, al, pState, flush);
}
