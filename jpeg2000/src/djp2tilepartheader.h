// The headers of tile parts (ITU-T T.800, A.4.2 and A.6): what a tile has of its own.
#ifndef JPEG2000_DJP2TILEPARTHEADER_H
#define JPEG2000_DJP2TILEPARTHEADER_H

#include "djp2csmainheader.h"

#include <map>

namespace jpeg2000 {

// Of the first part of a tile. What it does not say, the main header says: a tile's COC goes before the
// tile's COD, that before a COC and the COD of the main header; QCC and QCD alike.
class DJP2CSTilePartHeader0 {
public:
    // From behind the segment SOT to SOD, which is consumed. The main header outlives this.
    template <class Input>
    void Read(Input& input, const DJP2CSMainHeader& mainHeader, BDiagnOutputPtr sink);

    const JP2CodingStyleJoint& CodingStyleJoint() const { return m_codingStyleJoint.Get(); }
    const JP2CodingStyleComp& CodingStyleComp(unsigned component) const;
    const DJP2QuantComp& QuantComp(unsigned component) const;
    const FixedArray<JP2ProgrRange>& ProgrRanges() const { return m_progrRanges.Get(); }

private:
    const DJP2CSMainHeader* m_mainHeader = nullptr;
    OptionalRefValue<JP2CodingStyleJoint> m_codingStyleJoint;
    OptionalRefValue<JP2CodingStyleComp> m_codingStyleComp;
    OptionalRefValue<DJP2QuantComp> m_quantComp;
    OptionalRefValue<FixedArray<JP2ProgrRange>> m_progrRanges;
    // By component. Maps, since there may be 65535 tiles with 65535 components: storage grows with the
    // stream alone.
    std::map<unsigned, JP2CodingStyleComp> m_codingStyleComps;
    std::map<unsigned, DJP2QuantComp> m_quantComps;
};

// Of every further part.
struct DJP2CSTilePartHeaderN {
    FixedArray<JP2ProgrRange> progrRanges; // of POC; empty without one

    // From behind the segment SOT to SOD, which is consumed.
    template <class Input>
    void Read(Input& input, unsigned nOfComponents, BDiagnOutputPtr sink);
};

} // namespace jpeg2000

#endif
