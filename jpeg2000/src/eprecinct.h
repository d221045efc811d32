// A precinct of the encoder: the code-blocks of one band whose contributions stand together in a packet.
#ifndef JPEG2000_EPRECINCT_H
#define JPEG2000_EPRECINCT_H

#include "cbencoder.h"
#include "ecodeblock.h"
#include "phbitout.h"
#include "tagtree.h"

namespace jpeg2000 {

class EPrecinct {
public:
    RulerPow2 xRuler, yRuler; // cut the precinct at the code-block grid
    unsigned nOfCodeBlocks = 0;
    FixedBuffer<ECodeBlock> codeBlocks; // row by row
    TagTreeEncoder inclusionTree, zeroBitsTree;

    // The precinct's place in its band; exponents of the code-block sides.
    void Init(const Rect& rect, unsigned codeBlockWidthExp, unsigned codeBlockHeightExp);

    // `samples` begins at the precinct's corner.
    void Encode(CBEncoder& encoder, const ImageCoreC<int, 1u>& samples, QoviWTSubband subband,
                int dynamicRange, int shift);

    void StoreEncodingState();
    void RestoreEncodingState();

    // Header bits to `bits`, code-block bytes to `body` (ITU-T T.800, B.10).
    template <class Output, class Body>
    void WriteToPacket(int layer, PHBitOut<Output>& bits, Body& body)
    {
        SetTagTrees(layer);
        for (unsigned i = 0; i < nOfCodeBlocks; i++) writeCodeBlock(i, layer, bits, body);
    }

private:
    using PassIterator = ECodeBlock::PassIterator;

    void SetTagTrees(int layer);

    // Bits to add to lblock, so that the lengths of all segments of [first, last) can be written.
    static int FindLblockAdjustment(PassIterator first, PassIterator last, int lblock);

    // Calls f(bytes, passes) for each codeword segment of [first, last).
    template <class F>
    static void forEachSegment(PassIterator first, PassIterator last, F f)
    {
        unsigned bytes = 0, passes = 0;
        while (first != last) {
            bytes += first->endRate - first->startRate;
            passes++;
            const bool isTerminated = first->isTerminated;
            if (++first != last && !isTerminated) continue;
            f(bytes, passes);
            bytes = passes = 0;
        }
    }

    // ITU-T T.800, table B.4; 1 to 164 passes.
    template <class Output>
    static void writeNOfPasses(int n, PHBitOut<Output>& bits)
    {
        if (n == 1)
            bits.Write(0, 1);
        else if (n == 2)
            bits.Write(2, 2);
        else if (n <= 5)
            bits.Write(12 | (n - 3), 4);
        else if (n <= 36)
            bits.Write(0x1E0 | (n - 6), 9);
        else
            bits.Write(0xFF80 | (n - 37), 16);
    }

    template <class Output, class Body>
    void writeCodeBlock(unsigned i, int layer, PHBitOut<Output>& bits, Body& body)
    {
        ECodeBlock& block = codeBlocks[i];
        const bool isIncluded = block.isIncludedIn(layer);
        if (block.isFirstInclusion)
            inclusionTree.Encode(i, layer + 1, bits);
        else
            bits.Write(isIncluded);
        if (!isIncluded) return;
        if (block.isFirstInclusion)
            for (int threshold = 1; !zeroBitsTree.Encode(i, threshold, bits);) threshold++;

        const PassIterator first = block.curPass;
        int nOfPasses = 0;
        for (; block.isIncludedIn(layer); ++block.curPass) nOfPasses++;
        writeNOfPasses(nOfPasses, bits);
        const int added = FindLblockAdjustment(first, block.curPass, block.lblock);
        for (int k = 0; k < added; k++) bits.Write1();
        bits.Write0();
        block.lblock += added;
        forEachSegment(first, block.curPass, [&](unsigned bytes, unsigned passes) {
            bits.Write(static_cast<int>(bytes), block.lblock + Log2(passes));
        });
        for (PassIterator pass = first; pass != block.curPass; ++pass)
            body.Write(pass->data, pass->endRate - pass->startRate);
        // With more than one layer this would have to be false; the one layer that is written does not tell.
        block.isFirstInclusion = true;
    }

    TagTreeEncoder savedInclusionTree, savedZeroBitsTree;
};

} // namespace jpeg2000

#endif
