#include "active.h"
#include "huffcheck.h"
#include "qovcore.h"

using namespace qov;

namespace {

const int window = HuffDecSpec::window;

// The entry for `bits`, the bits of the window behind a code of `length` bits (ITU-T T.81, F.2.2.1, EXTEND).
Qov32u lookEntry(int length, Qov8u symbol, int bits)
{
    const int size = symbol & 15, run = symbol >> 4, rest = window - length - size;
    if (size == 0 || rest < 0) return Qov32u(length | symbol << 8);
    const int magnitude = bits >> rest,
              value = magnitude >> (size - 1) ? magnitude : magnitude - (1 << size) + 1;
    return Qov32u(length + size) | Qov32u(run + 1) << 8 | Qov32u(value) << 16;
}

// Annex C. False: the counts are not those of a table.
bool makeSpec(const Qov8u* pBits, const Qov8u* pVals, HuffDecSpec& spec)
{
    spec = {};
    int code = 0, total = 0;
    for (int n = 1; n <= 16; n++) {
        const int count = pBits[n - 1], room = 1 << n;
        code <<= 1;
        if (code + count > room || total + count > 256) return false;
        spec.offset[n] = total - code;
        for (int i = 0; i < count; i++, code++, total++) {
            spec.values[total] = pVals[total];
            if (n > window) continue;
            const int places = 1 << (window - n);
            for (int bits = 0; bits < places; bits++)
                spec.look[code * places + bits] = lookEntry(n, pVals[total], bits);
        }
        spec.limit[n] = Qov32u(code) << (16 - n);
    }
    spec.mark = HuffDecSpec::markValue;
    return true;
}

// The checks that follow those for null.
template <class... Contexts>
QovStatus check(int srcLen, int pos, bool badArg, const Contexts*... contexts)
{
    if (srcLen < 1) return qovStsSize;
    if (badPosition(pos, srcLen) || badArg) return qovStsBadArg;
    return marked(contexts...) ? qovStsNoErr : qovStsContext;
}

QovStatus decodeAC(HuffDecKernels::AC* kernel, const Qov8u* pSrc, int srcLen, int* pSrcCurrPos, Qov16s* pDst,
                   int* pMarker, int ss, int se, int al, const QoviDecodeHuffmanSpec* pAcSpec,
                   QoviDecodeHuffmanState* pState)
{
    if (anyNull(pSrc, pSrcCurrPos, pDst, pMarker, pAcSpec, pState)) return qovStsNullPtr;
    if (const auto s = check(srcLen, *pSrcCurrPos, badBand(ss, se, al), inside(pAcSpec), inside(pState)))
        return s;
    return kernel(pSrc, srcLen, pSrcCurrPos, pDst, pMarker, ss, se, al, inside(pAcSpec), inside(pState));
}

} // namespace

QovStatus qoviDecodeHuffmanSpecGetBufSize_JPEG_8u(int* pSize)
{
    if (!pSize) return qovStsNullPtr;
    *pSize = sizeof(HuffDecSpec);
    return qovStsNoErr;
}

QovStatus qoviDecodeHuffmanSpecInit_JPEG_8u(const Qov8u* pBits, const Qov8u* pVals,
                                            QoviDecodeHuffmanSpec* pSpec)
{
    if (anyNull(pBits, pVals, pSpec)) return qovStsNullPtr;
    return makeSpec(pBits, pVals, *inside(pSpec)) ? qovStsNoErr : qovStsTable;
}

QovStatus qoviDecodeHuffmanSpecInitAlloc_JPEG_8u(const Qov8u* pBits, const Qov8u* pVals,
                                                 QoviDecodeHuffmanSpec** ppSpec)
{
    if (anyNull(pBits, pVals, ppSpec)) return qovStsNullPtr;
    *ppSpec = nullptr;
    void* memory = qovMalloc(sizeof(HuffDecSpec));
    if (!memory) return qovStsNoMemory;
    auto* spec = static_cast<QoviDecodeHuffmanSpec*>(memory);
    const QovStatus status = qoviDecodeHuffmanSpecInit_JPEG_8u(pBits, pVals, spec);
    if (status == qovStsNoErr)
        *ppSpec = spec;
    else
        qovFree(memory);
    return status;
}

QovStatus qoviDecodeHuffmanSpecFree_JPEG_8u(QoviDecodeHuffmanSpec* pSpec)
{
    if (!pSpec) return qovStsNullPtr;
    if (!marked(inside(pSpec))) return qovStsContext;
    qovFree(pSpec);
    return qovStsNoErr;
}

QovStatus qoviDecodeHuffmanStateGetBufSize_JPEG_8u(int* pSize)
{
    if (!pSize) return qovStsNullPtr;
    *pSize = sizeof(HuffDecState);
    return qovStsNoErr;
}

QovStatus qoviDecodeHuffmanStateInit_JPEG_8u(QoviDecodeHuffmanState* pState)
{
    if (!pState) return qovStsNullPtr;
    *inside(pState) = {};
    inside(pState)->mark = HuffDecState::markValue;
    return qovStsNoErr;
}

QovStatus qoviDecodeHuffman8x8_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos, Qov16s* pDst,
                                             Qov16s* pLastDC, int* pMarker,
                                             const QoviDecodeHuffmanSpec* pDcSpec,
                                             const QoviDecodeHuffmanSpec* pAcSpec,
                                             QoviDecodeHuffmanState* pState)
{
    if (anyNull(pSrc, pSrcCurrPos, pDst, pLastDC, pMarker, pDcSpec, pAcSpec, pState)) return qovStsNullPtr;
    const HuffDecSpec *dc = inside(pDcSpec), *ac = inside(pAcSpec);
    if (const auto s = check(srcLen, *pSrcCurrPos, false, dc, ac, inside(pState))) return s;
    return active.huffDec->block(pSrc, srcLen, pSrcCurrPos, pDst, pLastDC, pMarker, dc, ac, inside(pState));
}

QovStatus qoviDecodeHuffmanOne_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos, Qov16s* pDst,
                                             int* pMarker, const QoviDecodeHuffmanSpec* pSpec,
                                             QoviDecodeHuffmanState* pState)
{
    if (anyNull(pSrc, pSrcCurrPos, pDst, pMarker, pSpec, pState)) return qovStsNullPtr;
    if (const auto s = check(srcLen, *pSrcCurrPos, false, inside(pSpec), inside(pState))) return s;
    return active.huffDec->one(pSrc, srcLen, pSrcCurrPos, pDst, pMarker, inside(pSpec), inside(pState));
}

QovStatus qoviDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                     Qov16s* pDst, Qov16s* pLastDC, int* pMarker, int al,
                                                     const QoviDecodeHuffmanSpec* pDcSpec,
                                                     QoviDecodeHuffmanState* pState)
{
    if (anyNull(pSrc, pSrcCurrPos, pDst, pLastDC, pMarker, pDcSpec, pState)) return qovStsNullPtr;
    const HuffDecSpec* dc = inside(pDcSpec);
    if (const auto s = check(srcLen, *pSrcCurrPos, badShift(al), dc, inside(pState))) return s;
    return active.huffDec->dcFirst(pSrc, srcLen, pSrcCurrPos, pDst, pLastDC, pMarker, al, dc, inside(pState));
}

QovStatus qoviDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                      Qov16s* pDst, int* pMarker, int al,
                                                      QoviDecodeHuffmanState* pState)
{
    if (anyNull(pSrc, pSrcCurrPos, pDst, pMarker, pState)) return qovStsNullPtr;
    if (const auto s = check(srcLen, *pSrcCurrPos, badShift(al), inside(pState))) return s;
    return active.huffDec->dcRefine(pSrc, srcLen, pSrcCurrPos, pDst, pMarker, al, inside(pState));
}

QovStatus qoviDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                     Qov16s* pDst, int* pMarker, int ss, int se, int al,
                                                     const QoviDecodeHuffmanSpec* pAcSpec,
                                                     QoviDecodeHuffmanState* pState)
{
    return decodeAC(active.huffDec->acFirst, pSrc, srcLen, pSrcCurrPos, pDst, pMarker, ss, se, al, pAcSpec,
                    pState);
}

QovStatus qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(const Qov8u* pSrc, int srcLen, int* pSrcCurrPos,
                                                      Qov16s* pDst, int* pMarker, int ss, int se, int al,
                                                      const QoviDecodeHuffmanSpec* pAcSpec,
                                                      QoviDecodeHuffmanState* pState)
{
    return decodeAC(active.huffDec->acRefine, pSrc, srcLen, pSrcCurrPos, pDst, pMarker, ss, se, al, pAcSpec,
                    pState);
}
