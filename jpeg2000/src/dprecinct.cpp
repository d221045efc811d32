#include "dprecinct.h"

#include "boundedinput.h"

#include <limits>

namespace jpeg2000 {

namespace {

// ITU-T T.800, table B.4.
template <class Input>
unsigned readNOfPasses(PHBitIn<Input>& bits)
{
    if (!bits.Read()) return 1;
    if (!bits.Read()) return 2;
    if (const unsigned n = bits.Read(2); n < 3) return n + 3;
    if (const unsigned n = bits.Read(5); n < 31) return n + 6;
    return bits.Read(7) + 37;
}

// The side, as a power of two, of the largest square around a leaf all of which lies beyond the threshold.
unsigned orderOfSquareBeyond(const TagTree::Node& leaf, int threshold)
{
    unsigned order = 0;
    for (const TagTree::Node* up = leaf.parent; up && up->low >= threshold; up = up->parent) order++;
    return order;
}

} // namespace

void DPrecinct::Init(const ImageCoreC<int, 1u>& bandImage, const Point2D<unsigned>& bandCorner,
                     const Rect& rect, const RectSize& codeBlockExps, const CBCodingStyle& codeBlockStyle)
{
    isBypass = codeBlockStyle.IsBypass();
    isTermAll = codeBlockStyle.IsTermAll();
    RulerPow2 columns, rows;
    columns.Init(rect.x, rect.width, codeBlockExps.width);
    rows.Init(rect.y, rect.height, codeBlockExps.height);
    nOfColumns = columns.nOfSegments;
    nOfRows = rows.nOfSegments;
    nOfCodeBlocks = nOfColumns * nOfRows;
    codeBlocks.Free();
    codeBlocks.Alloc(nOfCodeBlocks);
    if (nOfCodeBlocks > 0) {
        inclusionTree.Init({nOfColumns, nOfRows});
        zeroBitsTree.Init({nOfColumns, nOfRows});
    }
    unsigned i = 0, y = rect.y - bandCorner.y;
    for (unsigned row = 0; row < nOfRows; y += rows.SegmSize(row++)) {
        unsigned x = rect.x - bandCorner.x;
        for (unsigned column = 0; column < nOfColumns; x += columns.SegmSize(column++))
            codeBlocks[i++].Init(bandImage.at(x, y), {columns.SegmSize(column), rows.SegmSize(row)});
    }
}

unsigned DPrecinct::SegmentMaxNOfPasses(unsigned passIndex, bool isBypass, bool isTermAll)
{
    if (isTermAll) return 1;
    if (!isBypass) return 94; // all there are: 31 planes have 91
    if (passIndex <= 9) return 10 - passIndex;
    return passIndex % 3 == 1 ? 2 : 1;
}

// Blocks that are not yet included take bits only where the tag tree does not know about them: whole squares
// of them are passed over, or a few bytes for each of many layers would keep this busy with a large precinct.
template <class Input>
void DPrecinct::ReadPacketHeader(unsigned layer, const DCBSubband& band, PHBitIn<Input>& bits)
{
    const int threshold = static_cast<int>(layer + 1);
    for (unsigned row = 0, nextRow = 0; row < nOfRows; row = nextRow) {
        nextRow = row + 1;
        for (unsigned column = 0; column < nOfColumns;) {
            const unsigned i = row * nOfColumns + column;
            const bool isFirst = codeBlocks[i].nOfPasses == 0;
            if (isFirst && !inclusionTree.Decode(bits, i, threshold)) {
                const unsigned order = orderOfSquareBeyond(inclusionTree.nodes[i], threshold);
                const unsigned behind = ((column >> order) + 1) << order;
                if (column == 0 && behind >= nOfColumns) nextRow = ((row >> order) + 1) << order;
                column = behind;
                continue;
            }
            if (isFirst || bits.Read()) readInclusion(i, band, bits);
            column++;
        }
    }
}

template <class Input>
void DPrecinct::readInclusion(unsigned i, const DCBSubband& band, PHBitIn<Input>& bits)
{
    DCodeBlock& block = codeBlocks[i];
    DCBWorkspace& workspace = *band.workspace;
    if (block.nOfPasses == 0) {
        // Without a bound on the threshold this reads the bits that thresholds from 1 on would read, and is
        // not held up by a tree that long runs of zeros have filled with large values.
        zeroBitsTree.Decode(bits, i, std::numeric_limits<int>::max());
        block.SetNOfZeroBits(zeroBitsTree.nodes[i].value, band);
    }
    const unsigned passes = readNOfPasses(bits);
    while (bits.Read())
        if (++block.lblock > 32) fail<ByteInputException{0}>(); // no input holds such a segment
    workspace.included.push_back({&block, &band, {workspace.segments.size(), 0, 0}});
    for (unsigned left = passes; left > 0;) {
        const unsigned k = Min(left, SegmentMaxNOfPasses(block.nOfPasses, isBypass, isTermAll));
        const unsigned lengthBits = block.lblock + static_cast<unsigned>(Log2(k));
        if (lengthBits > 32) fail<ByteInputException{0}>();
        workspace.SetNextSegmentSize(bits.Read(lengthBits), k);
        left -= k;
    }
}

template void DPrecinct::ReadPacketHeader(unsigned layer, const DCBSubband& band,
                                          PHBitIn<MemoryBoundedInputBE>& bits);

} // namespace jpeg2000
