// What the marker segments COD, COC and POC say (ITU-T T.800, A.6).
#ifndef JPEG2000_CODINGSTYLE_H
#define JPEG2000_CODINGSTYLE_H

#include "fixedbuffer.h"
#include "geometry.h"

namespace jpeg2000 {

// For all components of a tile.
struct JP2CodingStyleJoint {
    unsigned progression = 0; // 0 LRCP, 1 RLCP, 2 RPCL, 3 PCRL, 4 CPRL
    unsigned nOfLayers = 0;
    bool isSOP = false, isEPH = false, isMCT = false;
};

// For one component.
struct JP2CodingStyleComp {
    int codeBlockStyle = 0; // flags of the library
    int transform = 0;      // 0 is 9-7, 1 is 5-3
    unsigned nOfLevels = 0;
    RectSize codeBlockSizeExp;
    FixedBuffer<RectSize> precinctSizeExp; // nOfLevels + 1, by resolution
};

// One entry of a POC, or the whole that COD tells. Interval ends may reach beyond what there is.
struct JP2ProgrRange {
    unsigned progression = 0;
    ROpenInterval<unsigned> resolutions, components;
    unsigned nOfLayers = 0;
};

} // namespace jpeg2000

#endif
