// A tile-component of the decoder: its bands, from the deepest low band to the finest triplet.
#ifndef JPEG2000_DTILECOMP_H
#define JPEG2000_DTILECOMP_H

#include "codingstyle.h"
#include "dsubband.h"
#include "quant.h"
#include "sbtree.h"

namespace jpeg2000 {

struct DResLevelTriplet {
    DSubband hl, lh, hh;
};

class DTileComp {
public:
    DSubband ll;
    FixedBuffer<DResLevelTriplet> triplets; // index 0 is the finest level, nOfLevels - 1 the coarsest
    unsigned nOfLevels = 0;
    // The lowest resolution that has a band which is not empty: those below it have no packets.
    unsigned firstCodedResolution = 0xFFFFFFFF;

    // What a component rectangle costs, told before anything is allocated.
    struct Demand {
        uint64_t nOfNodes = 0; // precincts and code-blocks
        uint64_t bytes = 0;    // with the samples of the bands
    };
    static Demand DemandOf(const Rect& rect, const JP2CodingStyleComp& style);

    // rect: the component's samples on its own grid; `bands` are cut from it. bits: its depth. precinctExps:
    // by resolution.
    void Init(const SBTree<int>& bands, const Rect& rect, int bits, unsigned levels,
              const RectSize* precinctExps, const RectSize& codeBlockExps, const CBCodingStyle& style,
              int nOfGuardBits, const QuantComponent& quant, DCBWorkspace& workspace);

    // The packet of a precinct and a layer: header, then the bytes of its code-blocks, which are decoded.
    template <class Input>
    void ReadPacket(Input& input, unsigned resolution, const Point2D<unsigned>& precinct, unsigned layer);

private:
    template <class F>
    void forEachBand(unsigned resolution, F f)
    {
        if (resolution == 0) {
            f(ll);
        } else {
            DResLevelTriplet& triplet = triplets[nOfLevels - resolution];
            f(triplet.hl);
            f(triplet.lh);
            f(triplet.hh);
        }
    }

    DCBWorkspace* m_workspace = nullptr;
};

} // namespace jpeg2000

#endif
