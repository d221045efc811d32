#include "qovicodeblock.h"

#include "active.h"
#include "check.h"

#include <algorithm>
#include <cstring>

using namespace qov;

namespace {

const int anyStyle = qoviCodeStyleVCausal | qoviCodeStyleBypass | qoviCodeStyleTermAll | qoviCodeStyleReset |
                     qoviCodeStyleSegSym | qoviCodeStyleLossless | qoviCodeStylePredTerm;
const int mostPlanes = 31;
const int mostSamplesAtOnce = 4096;
const int lastOpenPass = 9; // with Bypass: the passes up to this one share a segment

bool badBlockSize(QoviSize size)
{
    return emptySize(size) || size.width > DecodeCBState::longestSide ||
           size.height > DecodeCBState::longestSide;
}

size_t unitBytes(QoviSize size)
{
    return sizeof(DecodeCBUnit) * size_t(unitsAcross(size) * unitsDown(size));
}

// A state at any address, worked on in a copy.
class OpenState {
public:
    explicit OpenState(QoviDecodeCBState* memory) : m_memory(reinterpret_cast<char*>(memory))
    {
        std::memcpy(&m_state, m_memory, sizeof m_state);
    }
    DecodeCBState* operator->() { return &m_state; }
    DecodeCBState* inside() { return &m_state; }
    DecodeCBUnit* units() { return reinterpret_cast<DecodeCBUnit*>(m_memory + sizeof m_state); }
    bool valid() const { return m_state.mark == DecodeCBState::markValue; }
    void close() { std::memcpy(m_memory, &m_state, sizeof m_state); }

private:
    char* m_memory;
    DecodeCBState m_state;
};

void init(QoviDecodeCBState* memory)
{
    DecodeCBState state = {};
    state.mark = DecodeCBState::markValue;
    std::memcpy(reinterpret_cast<char*>(memory), &state, sizeof state);
}

bool badBlock(QoviWTSubband subband, int sfBits, int codeStyle)
{
    return subband < qoviWTSubbandLxLy || subband > qoviWTSubbandHxHy || sfBits < 0 || sfBits > mostPlanes ||
           (codeStyle & ~anyStyle);
}

void attach(OpenState& state, Qov32s* dst, int dstStep, QoviSize size, QoviWTSubband subband, int sfBits,
            int codeStyle)
{
    state->size = size;
    state->dst = dst;
    state->step = dstStep;
    state->subband = subband;
    state->style = codeStyle;
    state->sfBits = sfBits;
    state->pass = state->left = 0;
    active.codeBlockDec->resetContexts(state->contexts);
    std::memset(state.units(), 0, unitBytes(size));
    char* row = reinterpret_cast<char*>(dst);
    for (int y = 0; y < size.height; y++, row += dstStep)
        std::memset(row, 0, size_t(size.width) * sizeof *dst);
}

bool endsSegment(int pass, int codeStyle)
{
    if (codeStyle & qoviCodeStyleTermAll) return true;
    const bool significance = pass % 3 == 1;
    return (codeStyle & qoviCodeStyleBypass) && pass >= lastOpenPass && !significance;
}

// Passes that the next segment holds.
int passesOfSegment(const DecodeCBState& state)
{
    const int all = std::min(state.left, 3 * state.sfBits - 2 - state.pass);
    for (int count = 1; count < all; count++)
        if (endsSegment(state.pass + count - 1, state.style)) return count;
    return std::max(all, 0);
}

enum class Segment { none, good, damaged };

Segment decodeNext(OpenState& state, const Qov8u* src, int length)
{
    const int passes = passesOfSegment(*state.inside());
    if (passes == 0) return Segment::none;
    const bool damaged =
        active.codeBlockDec->decodeSegment(state.inside(), state.units(), passes, src, length);
    state->left -= passes;
    return damaged ? Segment::damaged : Segment::good;
}

} // namespace

QovStatus qoviDecodeCBProgrGetStateSize_JPEG2K(QoviSize size, int* pStateSize)
{
    if (!pStateSize) return qovStsNullPtr;
    if (badBlockSize(size)) return qovStsSize;
    *pStateSize = int(sizeof(DecodeCBState) + unitBytes(size));
    return qovStsNoErr;
}

QovStatus qoviDecodeCBProgrInit_JPEG2K(QoviDecodeCBState* pState)
{
    if (!pState) return qovStsNullPtr;
    init(pState);
    return qovStsNoErr;
}

QovStatus qoviDecodeCBProgrAttach_JPEG2K_32s_C1R(Qov32s* pDst, int dstStep, QoviSize size,
                                                 QoviDecodeCBState* pState, QoviWTSubband subband, int sfBits,
                                                 int codeStyle)
{
    if (anyNull(pDst, pState)) return qovStsNullPtr;
    if (badBlockSize(size)) return qovStsSize;
    if (shortStep(dstStep, size, sizeof *pDst)) return qovStsStep;
    if (badBlock(subband, sfBits, codeStyle)) return qovStsBadArg;
    OpenState state(pState);
    if (!state.valid()) return qovStsContext;
    attach(state, pDst, dstStep, size, subband, sfBits, codeStyle);
    state.close();
    return qovStsNoErr;
}

QovStatus qoviDecodeCBProgrSetPassCounter_JPEG2K(int nOfPasses, QoviDecodeCBState* pState)
{
    if (!pState) return qovStsNullPtr;
    if (nOfPasses < 0) return qovStsBadArg;
    OpenState state(pState);
    if (!state.valid()) return qovStsContext;
    state->left = nOfPasses;
    state.close();
    return qovStsNoErr;
}

QovStatus qoviDecodeCBProgrStep_JPEG2K(const Qov8u* pSrc, int srcLen, QoviDecodeCBState* pState)
{
    if (!pState || (!pSrc && srcLen != 0)) return qovStsNullPtr;
    if (srcLen < 0) return qovStsSize;
    OpenState state(pState);
    if (!state.valid()) return qovStsContext;
    const Segment segment = decodeNext(state, pSrc, srcLen);
    state.close();
    return segment == Segment::damaged ? qovStsDamagedBlock : qovStsNoErr;
}

QovStatus qoviDecodeCBProgrGetPassCounter_JPEG2K(QoviDecodeCBState* pState, int* pLeft)
{
    if (anyNull(pState, pLeft)) return qovStsNullPtr;
    OpenState state(pState);
    if (!state.valid()) return qovStsContext;
    *pLeft = state->left;
    return qovStsNoErr;
}

QovStatus qoviDecodeCodeBlock_JPEG2K_1u32s_C1R(const Qov8u* pSrc, Qov32s* pDst, int dstStep, QoviSize size,
                                               QoviWTSubband subband, int sfBits, int nOfPasses,
                                               const int* pTermPassLen, int nOfTermPasses, int codeStyle)
{
    if (anyNull(pSrc, pDst, pTermPassLen)) return qovStsNullPtr;
    if (badBlockSize(size) || size.width * size.height > mostSamplesAtOnce) return qovStsSize;
    if (std::any_of(pTermPassLen, pTermPassLen + std::max(nOfTermPasses, 0), [](int len) { return len < 0; }))
        return qovStsSize;
    if (shortStep(dstStep, size, sizeof *pDst)) return qovStsStep;
    if (badBlock(subband, sfBits, codeStyle) || nOfPasses < 0 || nOfTermPasses < 0) return qovStsBadArg;

    // 4 bytes a sample, and at most three rows of one unit that are not in the block.
    char memory[sizeof(DecodeCBState) + 4 * mostSamplesAtOnce + 12];
    QoviDecodeCBState* pState = reinterpret_cast<QoviDecodeCBState*>(memory);
    init(pState);
    OpenState state(pState);
    attach(state, pDst, dstStep, size, subband, sfBits, codeStyle);
    state->left = nOfPasses;
    bool damaged = false;
    for (int i = 0; i < nOfTermPasses; pSrc += pTermPassLen[i++])
        if (decodeNext(state, pSrc, pTermPassLen[i]) != Segment::good) damaged = true;
    return damaged || state->left ? qovStsDamagedBlock : qovStsNoErr;
}
