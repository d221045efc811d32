#include "etilecomp.h"

namespace jpeg2000 {

namespace {

unsigned exponent(int value)
{
    return static_cast<unsigned>(value);
}

} // namespace

void EResLevelTriplet::ScaleDist(double hlWeight, double lhWeight, double hhWeight)
{
    hl.ScaleDist(hlWeight);
    lh.ScaleDist(lhWeight);
    hh.ScaleDist(hhWeight);
}

ExpPair PartitionExps::precinct(int resolution) const
{
    return {exponent(precinctWidth[resolution]), exponent(precinctHeight[resolution])};
}

ExpPair PartitionExps::codeBlock(int resolution) const
{
    return {exponent(codeBlockWidth[resolution]), exponent(codeBlockHeight[resolution])};
}

void ETileComp::Init(const Rect& rect, const PartitionExps& exps, int range, const QuantComponent& quant,
                     int levels)
{
    nOfLevels = levels;
    ll.Init(qoviWTSubbandLxLy, resolutionRect(rect, static_cast<unsigned>(levels)), exps.precinct(0),
            exps.codeBlock(0), range, quant.ll.exponent);

    triplets.Free();
    triplets.Alloc(static_cast<size_t>(levels));
    for (int i = 0; i < levels; i++) {
        const int resolution = levels - i;
        const ExpPair precinct = exps.precinct(resolution), codeBlock = exps.codeBlock(resolution);
        const QuantTriplet& steps = quant.triplets[i];
        EResLevelTriplet& triplet = triplets[i];
        const auto initBand = [&](ESubband& band, QoviWTSubband type, bool isHighX, bool isHighY, int step) {
            band.Init(type, subbandRect(rect, static_cast<unsigned>(i), isHighX, isHighY), precinct,
                      codeBlock, range, step);
        };
        initBand(triplet.hl, qoviWTSubbandHxLy, true, false, steps.hl.exponent);
        initBand(triplet.lh, qoviWTSubbandLxHy, false, true, steps.lh.exponent);
        initBand(triplet.hh, qoviWTSubbandHxHy, true, true, steps.hh.exponent);

        // Precincts are counted on the rectangle of the bands, half the resolution's: the same up to 32768
        // samples a side with precincts of 2^15.
        const Rect cells = resolutionRect(rect, static_cast<unsigned>(i) + 1);
        RulerPow2 columns, rows;
        columns.Init(cells.x, cells.width, precinct.width);
        rows.Init(cells.y, cells.height, precinct.height);
        triplet.nOfPrecincts = static_cast<int>(columns.nOfSegments * rows.nOfSegments);
    }
}

void ETileComp::Encode(CBEncoder& encoder, const SBTree<int>& bands)
{
    ll.Encode(encoder, bands.ll);
    for (int i = 0; i < nOfLevels; i++) {
        triplets[i].hl.Encode(encoder, bands.triplets[i].hl);
        triplets[i].lh.Encode(encoder, bands.triplets[i].lh);
        triplets[i].hh.Encode(encoder, bands.triplets[i].hh);
    }
}

struct ETileComp::LevelWeights {
    const double *lxLy, *lxHyHxLy, *hxHy;
};

void ETileComp::weightDist(const LevelWeights& weights)
{
    ll.ScaleDist(weights.lxLy[nOfLevels]);
    for (int i = 0; i < nOfLevels; i++)
        triplets[i].ScaleDist(weights.lxHyHxLy[i + 1], weights.lxHyHxLy[i + 1], weights.hxHy[i + 1]);
}

void ETileComp::WeightDistAsWT53()
{
    weightDist({m_wt53DistWeightsLxLy, m_wt53DistWeightsLxHyHxLy, m_wt53DistWeightsHxHy});
}

void ETileComp::WeightDistAsWT97()
{
    weightDist({m_wt97DistWeightsLxLy, m_wt97DistWeightsLxHyHxLy, m_wt97DistWeightsHxHy});
}

void ETileComp::ScaleDist(double weight)
{
    ll.ScaleDist(weight);
    for (int i = 0; i < nOfLevels; i++) triplets[i].ScaleDist(weight);
}

int ETileComp::NOfPrecincts(int resolution) const
{
    return resolution == 0 ? static_cast<int>(ll.nOfPrecincts)
                           : triplets[nOfLevels - resolution].nOfPrecincts;
}

} // namespace jpeg2000
