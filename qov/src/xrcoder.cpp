#include "qovivlc.h"

#include "active.h"
#include "check.h"

using namespace qov;

namespace {

XrCoderState* inside(QoviVLCState_JPEGXR* state)
{
    return reinterpret_cast<XrCoderState*>(state);
}

bool marked(QoviVLCState_JPEGXR* state)
{
    return inside(state)->mark == XrCoderState::markValue;
}

bool outside(int value, int last)
{
    return Qov32u(value) > Qov32u(last);
}

// Is a step shorter than a row of a 4x4 block?
bool shortBlockStep(int step, int elemBytes)
{
    return shortStep(step, {4, 4}, elemBytes);
}

// A place in a stream.
template <class Byte>
bool nullPlace(Byte** ppStream, const int* pBit)
{
    return anyNull(ppStream, pBit) || !*ppStream;
}
bool badPlace(int bit)
{
    return outside(bit, 7);
}

bool badLowBits(int nBits)
{
    return outside(nBits, 15);
}

QovStatus encodeDC(XrCoderKernels::EncodeDC* kernel, const Qov32s* pSrc, Qov8u** ppDst, int* pBit, int chroma,
                   int* pNumNonZero, QoviVLCState_JPEGXR* pState)
{
    if (anyNull(pSrc, pNumNonZero, pState) || nullPlace(ppDst, pBit)) return qovStsNullPtr;
    if (badPlace(*pBit) || outside(chroma, 1)) return qovStsBadArg;
    if (!marked(pState)) return qovStsContext;
    return kernel(pSrc, ppDst, pBit, chroma, pNumNonZero, inside(pState));
}

QovStatus decodeDC(XrCoderKernels::DecodeDC* kernel, const Qov8u** ppSrc, int* pBit, Qov32s* pDst, int chroma,
                   int* pNumNonZero, QoviVLCState_JPEGXR* pState)
{
    if (anyNull(pDst, pNumNonZero, pState) || nullPlace(ppSrc, pBit)) return qovStsNullPtr;
    if (badPlace(*pBit) || outside(chroma, 1)) return qovStsBadArg;
    if (!marked(pState)) return qovStsContext;
    return kernel(ppSrc, pBit, pDst, chroma, pNumNonZero, inside(pState));
}

template <class T>
QovStatus encode4x4(XrCoderKernels::Encode4x4<T>* kernel, const T* pSrc, int srcStep, Qov8u** ppDst,
                    int* pBit, int nBits, int chroma, int* pNumNonZero, QoviVLCState_JPEGXR* pState)
{
    if (anyNull(pSrc, pNumNonZero, pState) || nullPlace(ppDst, pBit)) return qovStsNullPtr;
    if (shortBlockStep(srcStep, sizeof *pSrc)) return qovStsStep;
    if (badPlace(*pBit) || badLowBits(nBits) || outside(chroma, 1)) return qovStsBadArg;
    if (!marked(pState)) return qovStsContext;
    return kernel(pSrc, srcStep, ppDst, pBit, nBits, chroma, pNumNonZero, inside(pState));
}

template <class T>
QovStatus decode4x4(XrCoderKernels::Decode4x4<T>* kernel, const Qov8u** ppSrc, int* pBit, T* pDst,
                    int dstStep, int nBits, int chroma, int* pNumNonZero, QoviVLCState_JPEGXR* pState)
{
    if (anyNull(pDst, pNumNonZero, pState) || nullPlace(ppSrc, pBit)) return qovStsNullPtr;
    if (shortBlockStep(dstStep, sizeof *pDst)) return qovStsStep;
    if (badPlace(*pBit) || badLowBits(nBits) || outside(chroma, 1)) return qovStsBadArg;
    if (!marked(pState)) return qovStsContext;
    return kernel(ppSrc, pBit, pDst, dstStep, nBits, chroma, pNumNonZero, inside(pState));
}

bool badFlexbits(int bit, int elemBytes, int nBits, int nTrim)
{
    return badPlace(bit) || (elemBytes != 2 && elemBytes != 4) || badLowBits(nBits) || outside(nTrim, nBits);
}

} // namespace

QovStatus qoviVLCGetStateSize_JPEGXR(int* pSize)
{
    if (!pSize) return qovStsNullPtr;
    *pSize = int(sizeof(XrCoderState));
    return qovStsNoErr;
}

QovStatus qoviVLCInit_JPEGXR(QoviVLCState_JPEGXR* pState)
{
    if (!pState) return qovStsNullPtr;
    active.xrCoder->init(inside(pState));
    return qovStsNoErr;
}

QovStatus qoviVLCScanReset_JPEGXR(QoviVLCState_JPEGXR* pState, int which, int)
{
    if (!pState) return qovStsNullPtr;
    if (outside(which, XrCoderState::scanCount - 1)) return qovStsBadArg;
    if (!marked(pState)) return qovStsContext;
    active.xrCoder->resetScan(&inside(pState)->scans[which]);
    return qovStsNoErr;
}

QovStatus qoviVLCScanSet_JPEGXR(QoviVLCState_JPEGXR* pState, int which)
{
    if (!pState) return qovStsNullPtr;
    if (outside(which, XrCoderState::vertical)) return qovStsBadArg;
    if (!marked(pState)) return qovStsContext;
    inside(pState)->highPassScan = Qov32u(which);
    return qovStsNoErr;
}

QovStatus qoviVLCAdapt_JPEGXR(QoviVLCState_JPEGXR* pState, int which, int adapt)
{
    if (!pState) return qovStsNullPtr;
    if (outside(which, XrCoderState::setCount - 1)) return qovStsBadArg;
    if (!marked(pState)) return qovStsContext;
    if (adapt) active.xrCoder->adapt(&inside(pState)->sets[which]);
    return qovStsNoErr;
}

QovStatus qoviVLCScan4x4DC_JPEGXR_32s(const Qov32s* pSrc, Qov32s* pDst, QoviVLCState_JPEGXR* pState)
{
    if (anyNull(pSrc, pDst, pState)) return qovStsNullPtr;
    if (!marked(pState)) return qovStsContext;
    active.xrCoder->scanDC(pSrc, pDst, inside(pState));
    return qovStsNoErr;
}

QovStatus qoviVLCEncodeDC444_JPEGXR_32s1u(const Qov32s* pSrc, Qov8u** ppDst, int* pBit, int chroma,
                                          int* pNumNonZero, QoviVLCState_JPEGXR* pState)
{
    return encodeDC(active.xrCoder->encodeDC444, pSrc, ppDst, pBit, chroma, pNumNonZero, pState);
}

QovStatus qoviVLCEncodeDC422_JPEGXR_32s1u(const Qov32s* pSrc, Qov8u** ppDst, int* pBit, int* pNumNonZero,
                                          QoviVLCState_JPEGXR* pState)
{
    return encodeDC(active.xrCoder->encodeDC422, pSrc, ppDst, pBit, 1, pNumNonZero, pState);
}

QovStatus qoviVLCEncodeDC420_JPEGXR_32s1u(const Qov32s* pSrc, Qov8u** ppDst, int* pBit, int* pNumNonZero,
                                          QoviVLCState_JPEGXR* pState)
{
    return encodeDC(active.xrCoder->encodeDC420, pSrc, ppDst, pBit, 1, pNumNonZero, pState);
}

QovStatus qoviVLCDecodeDC444_JPEGXR_1u32s(const Qov8u** ppSrc, int* pBit, Qov32s* pDst, int chroma,
                                          int* pNumNonZero, QoviVLCState_JPEGXR* pState)
{
    return decodeDC(active.xrCoder->decodeDC444, ppSrc, pBit, pDst, chroma, pNumNonZero, pState);
}

QovStatus qoviVLCDecodeDC422_JPEGXR_1u32s(const Qov8u** ppSrc, int* pBit, Qov32s* pDst, int* pNumNonZero,
                                          QoviVLCState_JPEGXR* pState)
{
    return decodeDC(active.xrCoder->decodeDC422, ppSrc, pBit, pDst, 1, pNumNonZero, pState);
}

QovStatus qoviVLCDecodeDC420_JPEGXR_1u32s(const Qov8u** ppSrc, int* pBit, Qov32s* pDst, int* pNumNonZero,
                                          QoviVLCState_JPEGXR* pState)
{
    return decodeDC(active.xrCoder->decodeDC420, ppSrc, pBit, pDst, 1, pNumNonZero, pState);
}

QovStatus qoviVLCEncode4x4_JPEGXR_32s1u_C1R(const Qov32s* pSrc, int srcStep, Qov8u** ppDst, int* pBit,
                                            int nBits, int chroma, int* pNumNonZero,
                                            QoviVLCState_JPEGXR* pState)
{
    return encode4x4(active.xrCoder->encode32s, pSrc, srcStep, ppDst, pBit, nBits, chroma, pNumNonZero,
                     pState);
}

QovStatus qoviVLCEncode4x4_JPEGXR_16s1u_C1R(const Qov16s* pSrc, int srcStep, Qov8u** ppDst, int* pBit,
                                            int nBits, int chroma, int* pNumNonZero,
                                            QoviVLCState_JPEGXR* pState)
{
    return encode4x4(active.xrCoder->encode16s, pSrc, srcStep, ppDst, pBit, nBits, chroma, pNumNonZero,
                     pState);
}

QovStatus qoviVLCEncode4x4Flex_JPEGXR_32s1u_C1R(const Qov32s* pSrc, int srcStep, Qov8u** ppDst, int* pBit,
                                                int nBits, int chroma, int* pNumNonZero,
                                                QoviVLCState_JPEGXR* pState)
{
    return encode4x4(active.xrCoder->encode32s, pSrc, srcStep, ppDst, pBit, nBits, chroma, pNumNonZero,
                     pState);
}

QovStatus qoviVLCEncode4x4Flex_JPEGXR_16s1u_C1R(const Qov16s* pSrc, int srcStep, Qov8u** ppDst, int* pBit,
                                                int nBits, int chroma, int* pNumNonZero,
                                                QoviVLCState_JPEGXR* pState)
{
    return encode4x4(active.xrCoder->encode16s, pSrc, srcStep, ppDst, pBit, nBits, chroma, pNumNonZero,
                     pState);
}

QovStatus qoviVLCDecode4x4_JPEGXR_1u32s_C1R(const Qov8u** ppSrc, int* pBit, Qov32s* pDst, int dstStep,
                                            int nBits, int chroma, int* pNumNonZero,
                                            QoviVLCState_JPEGXR* pState)
{
    return decode4x4(active.xrCoder->decode32s, ppSrc, pBit, pDst, dstStep, nBits, chroma, pNumNonZero,
                     pState);
}

QovStatus qoviVLCDecode4x4_JPEGXR_1u16s_C1R(const Qov8u** ppSrc, int* pBit, Qov16s* pDst, int dstStep,
                                            int nBits, int chroma, int* pNumNonZero,
                                            QoviVLCState_JPEGXR* pState)
{
    return decode4x4(active.xrCoder->decode16s, ppSrc, pBit, pDst, dstStep, nBits, chroma, pNumNonZero,
                     pState);
}

QovStatus qoviFLCEncode4x4_JPEGXR(const void* pSrc, int srcStep, int elemBytes, Qov8u** ppDst, int* pBit,
                                  int nBits, int nTrim)
{
    if (!pSrc || nullPlace(ppDst, pBit)) return qovStsNullPtr;
    if (shortBlockStep(srcStep, elemBytes)) return qovStsStep;
    if (badFlexbits(*pBit, elemBytes, nBits, nTrim)) return qovStsBadArg;
    if (nTrim == nBits) return qovStsNoErr;
    if (elemBytes == 2)
        active.xrCoder->encodeFlex16s(static_cast<const Qov16s*>(pSrc), srcStep, ppDst, pBit, nBits, nTrim);
    else
        active.xrCoder->encodeFlex32s(static_cast<const Qov32s*>(pSrc), srcStep, ppDst, pBit, nBits, nTrim);
    return qovStsNoErr;
}

QovStatus qoviFLCDecode4x4_JPEGXR(const Qov8u** ppSrc, int* pBit, void* pDst, int dstStep, int elemBytes,
                                  int nBits, int nTrim)
{
    if (!pDst || nullPlace(ppSrc, pBit)) return qovStsNullPtr;
    if (shortBlockStep(dstStep, elemBytes)) return qovStsStep;
    if (badFlexbits(*pBit, elemBytes, nBits, nTrim)) return qovStsBadArg;
    if (nTrim == nBits) return qovStsNoErr;
    if (elemBytes == 2)
        active.xrCoder->decodeFlex16s(ppSrc, pBit, static_cast<Qov16s*>(pDst), dstStep, nBits, nTrim);
    else
        active.xrCoder->decodeFlex32s(ppSrc, pBit, static_cast<Qov32s*>(pDst), dstStep, nBits, nTrim);
    return qovStsNoErr;
}
