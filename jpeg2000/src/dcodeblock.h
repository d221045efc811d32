// A code-block of the decoder: how far packets have filled it, and where its samples go.
#ifndef JPEG2000_DCODEBLOCK_H
#define JPEG2000_DCODEBLOCK_H

#include "decodingbudget.h"
#include "image.h"

#include "qovicodeblock.h"

#include <vector>

namespace jpeg2000 {

// How the code-blocks of a tile-component are coded.
struct CBCodingStyle {
    int flags = 0; // of the library

    bool IsBypass() const { return (flags & qoviCodeStyleBypass) != 0; }
    bool IsTermAll() const { return (flags & qoviCodeStyleTermAll) != 0; }
};

struct DCBWorkspace;

// What the code-blocks of a subband have in common.
struct DCBSubband {
    QoviWTSubband subband = qoviWTSubbandLxLy;
    int nOfGuardBits = 0, dynamicRange = 0, shift = 0;
    CBCodingStyle codeBlockStyle;
    DCBWorkspace* workspace = nullptr;
};

// A layer's part of a code-block.
struct DCBLayer {
    size_t firstSegment = 0; // in the workspace's list
    unsigned nOfSegments = 0, nOfPasses = 0;
};

class DCodeBlock {
public:
    unsigned nOfPasses = 0; // of all layers so far
    unsigned lblock = 3;
    ImageCoreC<int, 1u> image;
    RectSize size;

    // The samples begin at `corner`; they are zero as long as nothing was decoded.
    void Init(const ImageCoreC<int, 1u>& corner, const RectSize& blockSize);

    void SetNOfZeroBits(int n, const DCBSubband& band);

    // The layer's segments stand next in the input.
    template <class Input>
    void DecodeLayer(const DCBLayer& layer, const DCBSubband& band, Input& input);

private:
    QoviDecodeCBState* attachedState(const DCBSubband& band);

    int significantBits = 0;
    FixedBuffer<uint8_t> state; // of the library, from the first inclusion on; none with one layer
};

// A code-block that the current packet includes.
struct DCBInclusion {
    DCodeBlock* block;
    const DCBSubband* band;
    DCBLayer layer;
};

// What the code-blocks of a tile use in turn, so that none of them has to allocate for a packet. Layers are
// decoded as they come: those of the current packet are all there are.
struct DCBWorkspace {
    BDiagnOutputPtr sink;
    DecodingBudget* budget = nullptr;
    std::vector<DCBInclusion> included; // by the current packet, in the order of their bytes
    std::vector<unsigned> segments;     // their lengths, in the same order
    // With one layer a block is finished by its one packet, and all blocks may share a state.
    bool isOneLayer = false;
    FixedBuffer<uint8_t> sharedState;
    int sharedStateSize = 0;

    void StartPacket()
    {
        included.clear();
        segments.clear();
    }
    void SetNextSegmentSize(unsigned bytes, unsigned passes)
    {
        DCBInclusion& inclusion = included.back();
        segments.push_back(bytes);
        inclusion.layer.nOfSegments++;
        inclusion.layer.nOfPasses += passes;
        inclusion.block->nOfPasses += passes;
    }
};

} // namespace jpeg2000

#endif
