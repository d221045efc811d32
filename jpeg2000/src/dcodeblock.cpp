#include "dcodeblock.h"

#include "boundedinput.h"

#include <cstdint>

namespace jpeg2000 {

namespace {

QoviDecodeCBState* libraryState(FixedBuffer<uint8_t>& bytes)
{
    return reinterpret_cast<QoviDecodeCBState*>(static_cast<uint8_t*>(bytes));
}

} // namespace

void DCodeBlock::Init(const ImageCoreC<int, 1u>& corner, const RectSize& blockSize)
{
    image = corner;
    size = blockSize;
    for (unsigned y = 0; y < size.height; y++) Zero<int>(image.row(y), size.width);
}

// The magnitude bits that a band can have (ITU-T T.800, E-2), less the planes that are missing.
void DCodeBlock::SetNOfZeroBits(int n, const DCBSubband& band)
{
    const int64_t bits = int64_t{band.nOfGuardBits} + band.dynamicRange + band.shift - n - 1;
    if (bits > 31) warn<DEBCOTWarning{2}>(band.workspace->sink);
    if (bits < 0) warn<DEBCOTWarning{3}>(band.workspace->sink);
    significantBits = static_cast<int>(Min<int64_t>(Max<int64_t>(bits, 0), 31));
}

// Bound to this block's samples: the shared state anew for its one layer, an own one at its first.
QoviDecodeCBState* DCodeBlock::attachedState(const DCBSubband& band)
{
    if (state) return libraryState(state);
    DCBWorkspace& workspace = *band.workspace;
    int stateSize = 0;
    qoviDecodeCBProgrGetStateSize_JPEG2K(size, &stateSize);
    if (!workspace.isOneLayer) {
        workspace.budget->Take(static_cast<uint64_t>(stateSize));
        state.Alloc(static_cast<size_t>(stateSize));
    } else if (stateSize > workspace.sharedStateSize) {
        workspace.sharedState.Free();
        workspace.sharedStateSize = 0;
        workspace.budget->Take(static_cast<uint64_t>(stateSize));
        workspace.sharedState.Alloc(static_cast<size_t>(stateSize));
        workspace.sharedStateSize = stateSize;
    }
    QoviDecodeCBState* const decoder = libraryState(workspace.isOneLayer ? workspace.sharedState : state);
    qoviDecodeCBProgrInit_JPEG2K(decoder);
    qoviDecodeCBProgrAttach_JPEG2K_32s_C1R(image.data, static_cast<int>(image.step), size, decoder,
                                           band.subband, significantBits, band.codeBlockStyle.flags);
    return decoder;
}

template <class Input>
void DCodeBlock::DecodeLayer(const DCBLayer& layer, const DCBSubband& band, Input& input)
{
    const DCBWorkspace& workspace = *band.workspace;
    QoviDecodeCBState* const decoder = attachedState(band);
    qoviDecodeCBProgrSetPassCounter_JPEG2K(static_cast<int>(layer.nOfPasses), decoder);
    for (unsigned i = 0; i < layer.nOfSegments; i++) {
        const unsigned length = workspace.segments[layer.firstSegment + i];
        input.SeekPos(length);
        const int usable = static_cast<int>(Min(length, 0x7FFFFFFFu));
        const QovStatus status = qoviDecodeCBProgrStep_JPEG2K(input.position, usable, decoder);
        input.position += length;
        if (status == qovStsDamagedBlock) warn<DEBCOTWarning{0}>(workspace.sink);
    }
    int left = 0;
    qoviDecodeCBProgrGetPassCounter_JPEG2K(decoder, &left);
    if (left != 0) warn<DEBCOTWarning{1}>(workspace.sink);
}

template void DCodeBlock::DecodeLayer(const DCBLayer& layer, const DCBSubband& band,
                                      MemoryBoundedInputBE& input);

} // namespace jpeg2000
