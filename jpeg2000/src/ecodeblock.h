// A code-block of the encoder: its bytes, its coding passes, and how far packets have taken it.
#ifndef JPEG2000_ECODEBLOCK_H
#define JPEG2000_ECODEBLOCK_H

#include "fixedbuffer.h"
#include "list.h"

#include <cstdint>

namespace jpeg2000 {

struct ECBPass {
    const uint8_t* data = nullptr;       // the pass's first byte, in the block's data
    unsigned startRate = 0, endRate = 0; // bytes of the block before and behind the pass
    double dist = 0;                     // fall of the squared error up to the pass's end, later weighted
    double slope = -1.0;                 // 0 or below for passes off the convex hull
    int layer = 0;                       // -1 for none
    bool isTerminated = false;
};

class ECodeBlock {
public:
    using PassIterator = List<ECBPass>::Iterator;

    unsigned nOfPasses = 0;
    int nOfZeroBits = 0;
    FixedBuffer<uint8_t> data; // all bytes of the block
    List<ECBPass> passes;
    PassIterator curPass = passes.begin();
    int lblock = 3;
    bool isFirstInclusion = true;

    void SetNOfZeroBits(int n) { nOfZeroBits = n; }
    // `data` must be there already. rate and dist are those at the pass's end.
    void PushPass(int rate, double dist);

    void ScaleDist(double weight);
    void SetCurPassToFirst() { curPass = passes.begin(); }

    // Gives each pass on the convex hull of rate against distortion its slope, the others 0 or -1.
    void CalcRDSlopes();
    // Widens min and max by the slopes above 0.
    void RDSlopesMinMax(double& min, double& max) const;

    // From curPass up to the last pass with a slope of at least `threshold`: into the layer; the rest into
    // none.
    void AssignLayerTillCurPass(int layer, double threshold);
    // The passes before curPass into the layer, the rest into none.
    void AssignLayerTillCurPass(int layer);

    bool isIncludedIn(int layer) const { return curPass != passes.end() && curPass->layer == layer; }

    void StoreEncodingState();
    void RestoreEncodingState();

private:
    PassIterator savedCurPass;
    int savedLblock = 3;
    bool savedIsFirstInclusion = true;
};

} // namespace jpeg2000

#endif
