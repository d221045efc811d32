// A tile-component of the encoder: its bands, from the deepest low band to the finest triplet.
#ifndef JPEG2000_ETILECOMP_H
#define JPEG2000_ETILECOMP_H

#include "esubband.h"
#include "quant.h"
#include "sbtree.h"

namespace jpeg2000 {

class EResLevelTriplet {
public:
    ESubband hl, lh, hh;
    int nOfPrecincts = 0; // of the resolution

    void ScaleDist(double hlWeight, double lhWeight, double hhWeight);
    void ScaleDist(double weight) { ScaleDist(weight, weight, weight); }
};

// How a component is cut, by resolution; arrays of nOfLevels + 1 exponents at least.
struct PartitionExps {
    const int *precinctWidth, *precinctHeight, *codeBlockWidth, *codeBlockHeight;

    ExpPair precinct(int resolution) const;
    ExpPair codeBlock(int resolution) const;
};

class ETileComp {
public:
    ESubband ll;
    FixedBuffer<EResLevelTriplet> triplets; // index 0 is the finest level, nOfLevels - 1 the coarsest
    int nOfLevels = 0;

    // rect: the component's samples on the reference grid. range: its bits.
    void Init(const Rect& rect, const PartitionExps& exps, int range, const QuantComponent& quant,
              int levels);
    // Codes every block. The bands are altered: a tile is coded once.
    void Encode(CBEncoder& encoder, const SBTree<int>& bands);

    void WeightDistAsWT53();
    void WeightDistAsWT97();
    void ScaleDist(double weight);

    EResLevelTriplet& tripletOf(int resolution) { return triplets[nOfLevels - resolution]; } // above 0
    int NOfPrecincts(int resolution) const;

    template <class Output, class Body>
    void WriteToPacket(int resolution, unsigned precinct, int layer, PHBitOut<Output>& bits, Body& body)
    {
        if (resolution == 0) {
            ll.WriteToPacket(precinct, layer, bits, body);
        } else {
            EResLevelTriplet& triplet = tripletOf(resolution);
            triplet.hl.WriteToPacket(precinct, layer, bits, body);
            triplet.lh.WriteToPacket(precinct, layer, bits, body);
            triplet.hh.WriteToPacket(precinct, layer, bits, body);
        }
    }

    template <class F>
    void forEachPrecinct(F f)
    {
        ll.forEachPrecinct(f);
        for (int i = 0; i < nOfLevels; i++) {
            triplets[i].hl.forEachPrecinct(f);
            triplets[i].lh.forEachPrecinct(f);
            triplets[i].hh.forEachPrecinct(f);
        }
    }

private:
    struct LevelWeights;

    void weightDist(const LevelWeights& weights);

    // Squared norms of the synthesis functions, by decomposition level 0 to 32.
    static const double m_wt53DistWeightsLxLy[33], m_wt53DistWeightsLxHyHxLy[33], m_wt53DistWeightsHxHy[33];
    static const double m_wt97DistWeightsLxLy[33], m_wt97DistWeightsLxHyHxLy[33], m_wt97DistWeightsHxHy[33];
};

} // namespace jpeg2000

#endif
