#include "eprecinct.h"

namespace jpeg2000 {

void EPrecinct::Init(const Rect& rect, unsigned codeBlockWidthExp, unsigned codeBlockHeightExp)
{
    xRuler.Init(rect.x, rect.width, codeBlockWidthExp);
    yRuler.Init(rect.y, rect.height, codeBlockHeightExp);
    nOfCodeBlocks = xRuler.nOfSegments * yRuler.nOfSegments;
    codeBlocks.Free();
    codeBlocks.Alloc(nOfCodeBlocks);
    inclusionTree.Init({xRuler.nOfSegments, yRuler.nOfSegments});
    zeroBitsTree.Init({xRuler.nOfSegments, yRuler.nOfSegments});
}

void EPrecinct::Encode(CBEncoder& encoder, const ImageCoreC<int, 1u>& samples, QoviWTSubband subband,
                       int dynamicRange, int shift)
{
    unsigned i = 0;
    for (unsigned row = 0, y = 0; row < yRuler.nOfSegments; y += yRuler.SegmSize(row++))
        for (unsigned column = 0, x = 0; column < xRuler.nOfSegments; x += xRuler.SegmSize(column++))
            encoder.Encode(samples, {x, y, xRuler.SegmSize(column), yRuler.SegmSize(row)}, subband,
                           dynamicRange, shift, codeBlocks[i++]);
}

void EPrecinct::StoreEncodingState()
{
    savedInclusionTree = inclusionTree;
    savedZeroBitsTree = zeroBitsTree;
    for (unsigned i = 0; i < nOfCodeBlocks; i++) codeBlocks[i].StoreEncodingState();
}

void EPrecinct::RestoreEncodingState()
{
    inclusionTree = savedInclusionTree;
    zeroBitsTree = savedZeroBitsTree;
    for (unsigned i = 0; i < nOfCodeBlocks; i++) codeBlocks[i].RestoreEncodingState();
}

void EPrecinct::SetTagTrees(int layer)
{
    for (unsigned i = 0; i < nOfCodeBlocks; i++) {
        const ECodeBlock& block = codeBlocks[i];
        if (layer == 0) zeroBitsTree.SetValue(i, block.nOfZeroBits);
        if (block.isIncludedIn(layer) && block.isFirstInclusion) inclusionTree.SetValue(i, layer);
    }
}

int EPrecinct::FindLblockAdjustment(PassIterator first, PassIterator last, int lblock)
{
    int added = 0;
    forEachSegment(first, last, [&](unsigned bytes, unsigned passes) {
        added = Max(added, Log2(bytes) + 1 - (Log2(passes) + lblock));
    });
    return added;
}

} // namespace jpeg2000
