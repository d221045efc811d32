#include "etile.h"

#include <limits>

namespace jpeg2000 {

void ETile::Init(const Rect* componentRects, const FixedBuffer2D<int>& precinctWidthExp,
                 const FixedBuffer2D<int>& precinctHeightExp, const FixedBuffer2D<int>& codeBlockWidthExp,
                 const FixedBuffer2D<int>& codeBlockHeightExp, const int* dynamicRanges,
                 const QuantComponent* quant, const int* nOfLevels, int componentCount)
{
    nOfComponents = componentCount;
    components.Free();
    components.Alloc(static_cast<size_t>(componentCount));
    for (int c = 0; c < componentCount; c++) {
        const unsigned row = static_cast<unsigned>(c);
        const PartitionExps exps{precinctWidthExp[row], precinctHeightExp[row], codeBlockWidthExp[row],
                                 codeBlockHeightExp[row]};
        components[c].Init(componentRects[c], exps, dynamicRanges[c], quant[c], nOfLevels[c]);
    }
}

void ETile::WeightDistAsWT53()
{
    for (int c = 0; c < nOfComponents; c++) components[c].WeightDistAsWT53();
}

void ETile::WeightDistAsWT97()
{
    for (int c = 0; c < nOfComponents; c++) components[c].WeightDistAsWT97();
}

void ETile::WeightDistAsRCT()
{
    for (int c = 0; c < nOfComponents; c++) components[c].ScaleDist(m_rctDistWeights[c]);
}

void ETile::WeightDistAsICT()
{
    for (int c = 0; c < nOfComponents; c++) components[c].ScaleDist(m_ictDistWeights[c]);
}

void ETile::SetCurPassToFirst()
{
    forEachCodeBlock([](ECodeBlock& block) { block.SetCurPassToFirst(); });
}

void ETile::CalcRDSlopes()
{
    forEachCodeBlock([](ECodeBlock& block) { block.CalcRDSlopes(); });
}

void ETile::RDSlopesMinMax(double& min, double& max)
{
    min = std::numeric_limits<double>::max();
    max = 0;
    forEachCodeBlock([&](ECodeBlock& block) { block.RDSlopesMinMax(min, max); });
}

void ETile::AssignLayerTillCurPass(int layer, double slope)
{
    forEachCodeBlock([&](ECodeBlock& block) { block.AssignLayerTillCurPass(layer, slope); });
}

void ETile::AssignLayerTillCurPass(int layer)
{
    forEachCodeBlock([&](ECodeBlock& block) { block.AssignLayerTillCurPass(layer); });
}

void ETile::AssignLayers(const int* sizeLimits, int nOfLayers)
{
    CalcRDSlopes();
    double min, max;
    RDSlopesMinMax(min, max);
    for (int layer = 0; layer < nOfLayers; layer++) {
        const bool takesAll = sizeLimits[layer] == 0x7fffffff;
        bool isFound = takesAll;
        double best = takesAll ? -1.0 : 0.0; // the lowest slope whose packets fit
        double low = min, high = max;
        for (int round = 0; !takesAll && round < 32; round++) {
            const double mid = (low + high) * 0.5;
            StoreEncodingState();
            AssignLayerTillCurPass(layer, mid);
            if (PacketsLengthSimulate(layer) <= sizeLimits[layer]) {
                high = mid;
                if (!isFound || best > mid) best = mid;
                isFound = true;
            } else {
                low = mid;
            }
            RestoreEncodingState();
            if (high - low < 0.001) break;
        }
        if (isFound)
            AssignLayerTillCurPass(layer, best);
        else
            AssignLayerTillCurPass(layer);
    }
}

void ETile::StoreEncodingState()
{
    forEachPrecinct([](EPrecinct& precinct) { precinct.StoreEncodingState(); });
}

void ETile::RestoreEncodingState()
{
    forEachPrecinct([](EPrecinct& precinct) { precinct.RestoreEncodingState(); });
}

int ETile::PacketsLengthSimulate(int layer)
{
    DummyOutput counter;
    for (int c = 0; c < nOfComponents; c++)
        for (int r = 0; r < NOfResLevels(c); r++)
            for (int p = 0; p < NOfPrecincts(c, r); p++) WritePacket(c, r, p, layer, counter, counter);
    return static_cast<int>(counter.size);
}

} // namespace jpeg2000
