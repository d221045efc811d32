#include "active.h"
#include "huffcheck.h"
#include "qovihuffrow.h"

using namespace qov;

namespace {

const int maxRows = 4;

// Planes or tables past `rows` are not looked at.
template <class Pointer>
bool anyRowNull(Pointer const* p, int rows)
{
    for (int r = 0; r < rows && r < maxRows; r++)
        if (!p[r]) return true;
    return false;
}

// The checks of rows, less that of the state.
template <class Row, class PublicSpec, class Spec>
QovStatus checkRows(Row const* planes, int width, int rows, const void* coded, int length, const int* pos,
                    int* marker, const PublicSpec* const* publicSpecs, const void* state, const Spec** specs)
{
    if (anyNull(planes, publicSpecs) || anyNull(coded, state) || anyNull(pos, marker)) return qovStsNullPtr;
    if (anyRowNull(planes, rows) || anyRowNull(publicSpecs, rows)) return qovStsNullPtr;
    if (width < 1 || length < 1) return qovStsSize;
    if (rows < 1 || rows > maxRows || badPosition(*pos, length)) return qovStsBadArg;
    for (int r = 0; r < rows; r++) {
        specs[r] = inside(publicSpecs[r]);
        if (!marked(specs[r])) return qovStsContext;
    }
    return qovStsNoErr;
}

} // namespace

QovStatus qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(const Qov16s* const pSrc[4], int srcLen, int nRows,
                                               Qov8u* pDst, int dstLen, int* pDstCurrPos,
                                               const QoviEncodeHuffmanSpec* const pSpec[4],
                                               QoviEncodeHuffmanState* pState, int flush)
{
    if (flush)
        return qoviEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, pDst, dstLen, pDstCurrPos, nullptr, pState, flush);
    const HuffEncSpec* specs[maxRows];
    int noMarker;
    if (const QovStatus s =
            checkRows(pSrc, srcLen, nRows, pDst, dstLen, pDstCurrPos, &noMarker, pSpec, pState, specs))
        return s;
    HuffEncState* const state = inside(pState);
    if (state->mark == HuffEncState::fullMark) return qovStsDstFull;
    if (!marked(state)) return qovStsContext;
    return active.huffRow->codeRows(pSrc, srcLen, nRows, pDst, dstLen, pDstCurrPos, specs, state);
}

QovStatus qoviDecodeHuffmanRow_JPEG_1u16s_C1P4(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                               Qov16s* const pDst[4], int dstLen, int nRows, int* pMarker,
                                               const QoviDecodeHuffmanSpec* const pSpec[4],
                                               QoviDecodeHuffmanState* pState)
{
    const HuffDecSpec* specs[maxRows];
    if (const QovStatus s =
            checkRows(pDst, dstLen, nRows, pSrc, srcLen, pSrcCurrPos, pMarker, pSpec, pState, specs))
        return s;
    if (!marked(inside(pState))) return qovStsContext;
    return active.huffRow->takeRows(pSrc, srcLen, pSrcCurrPos, pDst, dstLen, nRows, pMarker, specs,
                                    inside(pState));
}

QovStatus qoviEncodeHuffman8x8_Direct_JPEG_16s1u_C1(const Qov16s* pSrc, Qov8u* pDst, int* pDstBitPos,
                                                    Qov16s* pLastDC, const QoviEncodeHuffmanSpec* pDcSpec,
                                                    const QoviEncodeHuffmanSpec* pAcSpec)
{
    if (anyNull(pSrc, pDst, pDstBitPos, pLastDC, pDcSpec, pAcSpec)) return qovStsNullPtr;
    if (*pDstBitPos < 0) return qovStsBadArg;
    const HuffEncSpec *dc = inside(pDcSpec), *ac = inside(pAcSpec);
    if (!marked(dc, ac)) return qovStsContext;
    return active.huffRow->codeBlock(pSrc, pDst, pDstBitPos, pLastDC, dc, ac);
}

QovStatus qoviDecodeHuffman8x8_Direct_JPEG_1u16s_C1(const Qov8u* pSrc, int* pSrcBitPos, Qov16s* pDst,
                                                    Qov16s* pLastDC, int* pMarker, Qov32u* pPrefetchedBits,
                                                    int* pNumValidPrefetchedBits,
                                                    const QoviDecodeHuffmanSpec* pDcSpec,
                                                    const QoviDecodeHuffmanSpec* pAcSpec)
{
    if (anyNull(pSrc, pSrcBitPos, pDst, pLastDC, pMarker, pPrefetchedBits, pNumValidPrefetchedBits, pDcSpec,
                pAcSpec))
        return qovStsNullPtr;
    if (*pSrcBitPos < 0 || *pNumValidPrefetchedBits < 0 || *pNumValidPrefetchedBits > 32) return qovStsBadArg;
    const HuffDecSpec *dc = inside(pDcSpec), *ac = inside(pAcSpec);
    if (!marked(dc, ac)) return qovStsContext;
    return active.huffRow->takeBlock(pSrc, pSrcBitPos, pDst, pLastDC, pMarker, pPrefetchedBits,
                                     pNumValidPrefetchedBits, dc, ac);
}
