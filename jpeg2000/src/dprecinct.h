// A precinct of a decoder's subband: its code-blocks, and what their packet headers say.
#ifndef JPEG2000_DPRECINCT_H
#define JPEG2000_DPRECINCT_H

#include "dcodeblock.h"
#include "phbitin.h"
#include "tagtree.h"

namespace jpeg2000 {

class DPrecinct {
public:
    unsigned nOfCodeBlocks = 0;
    FixedBuffer<DCodeBlock> codeBlocks; // row by row
    TagTreeDecoder inclusionTree, zeroBitsTree;

    // The precinct's place in its band, and the exponents of the code-block sides. `bandImage` begins at
    // `bandCorner`.
    void Init(const ImageCoreC<int, 1u>& bandImage, const Point2D<unsigned>& bandCorner, const Rect& rect,
              const RectSize& codeBlockExps, const CBCodingStyle& codeBlockStyle);

    // Lists the code-blocks that the packet includes, and their segments (ITU-T T.800, B.10).
    template <class Input>
    void ReadPacketHeader(unsigned layer, const DCBSubband& band, PHBitIn<Input>& bits);

    // How many passes a codeword segment can hold that begins with pass number `passIndex` (T.800, D.6).
    static unsigned SegmentMaxNOfPasses(unsigned passIndex, bool isBypass, bool isTermAll);

private:
    template <class Input>
    void readInclusion(unsigned i, const DCBSubband& band, PHBitIn<Input>& bits);

    unsigned nOfRows = 0, nOfColumns = 0;
    bool isBypass = false, isTermAll = false;
};

} // namespace jpeg2000

#endif
