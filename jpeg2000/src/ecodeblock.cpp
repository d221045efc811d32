#include "ecodeblock.h"
#include "basics.h"

namespace jpeg2000 {

void ECodeBlock::PushPass(int rate, double dist)
{
    const unsigned start = passes.IsEmpty() ? 0 : passes.Tail().endRate;
    ECBPass& pass = passes.PushBack();
    pass.data = data + start;
    pass.startRate = start;
    pass.endRate = static_cast<unsigned>(rate);
    pass.dist = dist;
    nOfPasses++;
}

void ECodeBlock::ScaleDist(double weight)
{
    for (ECBPass& pass : passes) pass.dist *= weight;
}

void ECodeBlock::CalcRDSlopes()
{
    const PassIterator end = passes.end();
    PassIterator next = passes.begin(); // the first pass not yet examined
    while (next != end) {
        // The hull as far as it stands, each time from the first pass on, until one of its corners falls.
        const ECBPass noPass;
        ECBPass* prev = nullptr;
        PassIterator p = passes.begin();
        for (; p != end; ++p) {
            const ECBPass& from = prev ? *prev : noPass;
            const double gain = p->dist - from.dist;
            const double bytes = static_cast<double>(p->endRate) - from.endRate;
            if (!(gain > 0)) {
                p->slope = -1.0;
            } else if (p == next || p->slope > 0) {
                const bool isFree = bytes <= 0;
                if (prev && (isFree || gain / bytes >= prev->slope)) {
                    prev->slope = 0;
                    break;
                }
                // A first pass without bytes lends its gain to the next one.
                p->slope = isFree ? 0 : gain / bytes;
                if (!isFree) prev = &*p;
            }
            if (p == next) ++next;
        }
    }
}

void ECodeBlock::RDSlopesMinMax(double& min, double& max) const
{
    for (const ECBPass& pass : passes) {
        if (!(pass.slope > 0)) continue;
        min = Min(min, pass.slope);
        max = Max(max, pass.slope);
    }
}

void ECodeBlock::AssignLayerTillCurPass(int layer, double threshold)
{
    PassIterator firstLeft = curPass;
    for (PassIterator p = curPass; p != passes.end();) {
        const bool isIn = p->slope >= threshold;
        ++p;
        if (isIn) firstLeft = p;
    }
    for (PassIterator p = curPass; p != firstLeft; ++p) p->layer = layer;
    for (PassIterator p = firstLeft; p != passes.end(); ++p) p->layer = -1;
}

void ECodeBlock::AssignLayerTillCurPass(int layer)
{
    for (PassIterator p = passes.begin(); p != curPass; ++p) p->layer = layer;
    for (PassIterator p = curPass; p != passes.end(); ++p) p->layer = -1;
}

void ECodeBlock::StoreEncodingState()
{
    savedCurPass = curPass;
    savedLblock = lblock;
    savedIsFirstInclusion = isFirstInclusion;
}

void ECodeBlock::RestoreEncodingState()
{
    curPass = savedCurPass;
    lblock = savedLblock;
    isFirstInclusion = savedIsFirstInclusion;
}

} // namespace jpeg2000
