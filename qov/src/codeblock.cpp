#include "qovicodeblock.h"

#include "active.h"
#include "check.h"
#include "qovcore.h"

#include <algorithm>
#include <cstring>
#include <new>

using namespace qov;

namespace {

EncodeCBState* inside(QoviEncodeCBState* state)
{
    return reinterpret_cast<EncodeCBState*>(state);
}

bool valid(const EncodeCBState& state)
{
    return state.mark == EncodeCBState::markValue;
}

bool badBlockSize(QoviSize size)
{
    return emptySize(size) || size.width > 1024 || size.height > 1024 ||
           size.width * size.height > EncodeCBState::mostSamples;
}

// Parts of one allocation, each at a multiple of 64.
struct Layout {
    size_t units, planes, bytes, all;
};

Layout layoutFor(QoviSize size)
{
    const auto padded = [](size_t bytes) { return (bytes + 63) / 64 * 64; };
    const size_t columns = (size.width + EncodeCBState::unitColumns - 1) / EncodeCBState::unitColumns;
    const size_t stripes = (size.height + EncodeCBState::unitRows - 1) / EncodeCBState::unitRows;
    const size_t samples = size_t(size.width) * size.height;
    Layout layout;
    layout.units = padded(sizeof(EncodeCBState));
    layout.planes = layout.units + padded(((columns + 1) * (stripes + 2) + 1) * sizeof(CodeBlockUnit));
    layout.bytes =
        layout.planes + padded(columns * stripes * EncodeCBState::mostPlanes * sizeof(Qov64u)) + 64;
    layout.all = layout.bytes + EncodeCBState::bytesPerSample * samples + EncodeCBState::bytesPerBlock;
    return layout;
}

// An element of what is known about the block coded last.
template <class Element>
QovStatus tell(QoviEncodeCBState* pState, int index, int EncodeCBState::*count,
               Element (EncodeCBState::*elements)[EncodeCBState::mostPasses], Element* pAnswer)
{
    if (anyNull(pState, pAnswer)) return qovStsNullPtr;
    const EncodeCBState& state = *inside(pState);
    if (index < 0) return qovStsBadArg;
    if (!valid(state)) return qovStsContext;
    if (index >= state.*count) return qovStsBadArg;
    *pAnswer = (state.*elements)[index];
    return qovStsNoErr;
}

const int encoderStyles = qoviCodeStyleVCausal | qoviCodeStyleBypass | qoviCodeStyleTermAll |
                          qoviCodeStyleReset | qoviCodeStyleSegSym | qoviCodeStyleLossless;

} // namespace

QovStatus qoviEncodeInitAlloc_JPEG2K(QoviEncodeCBState** ppState, QoviSize maxSize)
{
    if (!ppState) return qovStsNullPtr;
    *ppState = nullptr;
    if (badBlockSize(maxSize)) return qovStsSize;
    const Layout layout = layoutFor(maxSize);
    char* memory = static_cast<char*>(qovMalloc(int(layout.all)));
    if (!memory) return qovStsNoMemory;
    EncodeCBState* state = new (memory) EncodeCBState{};
    state->mark = EncodeCBState::markValue;
    state->maxSize = maxSize;
    state->units = reinterpret_cast<CodeBlockUnit*>(memory + layout.units);
    state->planes = reinterpret_cast<Qov64u*>(memory + layout.planes);
    state->bytes = reinterpret_cast<Qov8u*>(memory + layout.bytes);
    state->bytes[-1] = 0;
    *ppState = reinterpret_cast<QoviEncodeCBState*>(state);
    return qovStsNoErr;
}

QovStatus qoviEncodeFree_JPEG2K(QoviEncodeCBState* pState)
{
    if (!pState) return qovStsNoErr;
    if (!valid(*inside(pState))) return qovStsContext;
    inside(pState)->mark = 0;
    qovFree(pState);
    return qovStsNoErr;
}

QovStatus qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R(const Qov32s* pSrc, int srcStep, QoviSize size,
                                                 QoviEncodeCBState* pState, QoviWTSubband subband,
                                                 int magnBits, QoviMQTermination term, QoviMQRate rate,
                                                 int codeStyle, int* pSfBits, int* pNOfPasses,
                                                 int* pNOfTermPasses)
{
    if (anyNull(pSrc, pState, pSfBits, pNOfPasses, pNOfTermPasses)) return qovStsNullPtr;
    EncodeCBState* state = inside(pState);
    if (badBlockSize(size)) return qovStsSize;
    if (valid(*state) && (size.width > state->maxSize.width || size.height > state->maxSize.height))
        return qovStsSize;
    if (shortStep(srcStep, size, sizeof *pSrc)) return qovStsStep;
    if (subband < qoviWTSubbandLxLy || subband > qoviWTSubbandHxHy || magnBits < 0 ||
        magnBits > EncodeCBState::mostPlanes || term < qoviMQTermPlain || term > qoviMQTermPredictable ||
        rate != qoviMQRateSafe || (codeStyle & ~encoderStyles))
        return qovStsBadArg;
    if (!valid(*state)) return qovStsContext;

    const EncodeCBJob job = {pSrc, srcStep,  size, subband, EncodeCBState::mostPlanes - magnBits,
                             term, codeStyle};
    *pSfBits = active.codeBlock->encode(&job, state);
    *pNOfPasses = state->passes;
    *pNOfTermPasses = state->segments;
    return qovStsNoErr;
}

QovStatus qoviEncodeStoreBits_JPEG2K_1u(Qov8u* pDst, int* pSize, QoviEncodeCBState* pState, int* pIsNotFinish)
{
    if (anyNull(pDst, pSize, pState, pIsNotFinish)) return qovStsNullPtr;
    if (*pSize < 1) return qovStsSize;
    EncodeCBState& state = *inside(pState);
    if (!valid(state)) return qovStsContext;
    const int given = std::min(*pSize, state.length - state.given);
    std::memcpy(pDst, state.bytes + state.given, size_t(given));
    state.given += given;
    *pSize = given;
    *pIsNotFinish = state.given < state.length;
    return qovStsNoErr;
}

QovStatus qoviEncodeGetRate_JPEG2K(QoviEncodeCBState* pState, int pass, int* pRate)
{
    return tell(pState, pass, &EncodeCBState::passes, &EncodeCBState::rate, pRate);
}

QovStatus qoviEncodeGetDist_JPEG2K(QoviEncodeCBState* pState, int pass, double* pDist)
{
    return tell(pState, pass, &EncodeCBState::passes, &EncodeCBState::dist, pDist);
}

QovStatus qoviEncodeGetTermPassLen_JPEG2K(QoviEncodeCBState* pState, int termPass, int* pLen)
{
    return tell(pState, termPass, &EncodeCBState::segments, &EncodeCBState::segmentLength, pLen);
}
