#include "codeblockdec.h"

#if defined __AVX512F__

// Nothing is gained by AVX-512, and some percent lost.
namespace qov {

namespace v3 {
void startContexts(Qov32u* contexts);
bool decodeSegment(DecodeCBState* state, DecodeCBUnit* units, int passes, const Qov8u* src, int length);
} // namespace v3

namespace v4 {
extern const CodeBlockDecKernels codeBlockDecKernels = {v3::startContexts, v3::decodeSegment};
}

} // namespace qov

#else

#include "codeblockdec_passes.h"

namespace qov::QOV_LEVEL {
namespace {

enum Style {
    causal = 1,
    bypass = 2,
    resetAlways = 8,
    segmentSymbols = 16,
    lossless = 32,
    predictableEnd = 0x100000
};
enum PassKind { significance, refining, cleanup };

const int firstRawPass = 10; // the first pass of the fifth plane

PassKind kindOf(int pass)
{
    return PassKind((pass + 2) % 3);
}

DecodedBlock blockOf(const DecodeCBState& state, DecodeCBUnit* units)
{
    DecodedBlock block;
    block.units = units;
    block.columns = unitsAcross(state.size);
    block.stripes = unitsDown(state.size);
    block.size = state.size;
    block.dst = (LooseWord*)state.dst;
    block.step = state.step;
    block.zeroLabels = zeroContexts[state.subband].label;
    block.causal = state.style & causal;
    block.middle = !(state.style & lossless);
    memset(block.places, 0, sizeof block.places);
    for (int row = 0; row < DecodeCBState::unitRows; row++) {
        block.rows[row] = row * block.step;
        for (int column = 0; column < DecodeCBState::unitColumns; column++)
            block.places[columnBits * (column + 1) + row + 1] =
                row * block.step + column * ptrdiff_t(sizeof *block.dst);
    }
    return block;
}

// Answers whether the data are damaged.
template <class Coder>
bool decodePasses(const DecodedBlock& block, Coder& coder, DecodeCBState* state, int passes)
{
    bool damaged = false;
    for (; passes; passes--, state->pass++) {
        const int plane = state->sfBits - 1 - (state->pass + 2) / 3;
        if constexpr (!Coder::raw)
            if (state->style & resetAlways) resetContexts(coder.contexts);
        switch (kindOf(state->pass)) {
        case significance: decodeSignificance(block, coder, plane); break;
        case refining: decodeRefinement(block, coder, plane); break;
        default:
            if constexpr (!Coder::raw)
                damaged |= !decodeCleanup(block, coder, plane, state->style & segmentSymbols);
        }
    }
    return damaged | (state->style & predictableEnd && !coder.endsAsPredicted());
}

static_assert(DecodeCBState::contextCount == contextCount);

} // namespace

bool decodeSegment(DecodeCBState* state, DecodeCBUnit* units, int passes, const Qov8u* src, int length)
{
    const DecodedBlock block = blockOf(*state, units);
    if (state->style & bypass && state->pass >= firstRawPass && kindOf(state->pass) != cleanup) {
        RawDecoder coder;
        coder.begin(src, length);
        return decodePasses(block, coder, state, passes);
    }
    MqDecoder::Input input;
    MqDecoder coder;
    memcpy(coder.contexts, state->contexts, sizeof coder.contexts);
    coder.input = &input;
    coder.begin(src, length);
    const bool damaged = decodePasses(block, coder, state, passes);
    memcpy(state->contexts, coder.contexts, sizeof coder.contexts);
    return damaged;
}

void startContexts(Qov32u* contexts)
{
    resetContexts(contexts);
}

extern const CodeBlockDecKernels codeBlockDecKernels = {startContexts, decodeSegment};

} // namespace qov::QOV_LEVEL

#endif
