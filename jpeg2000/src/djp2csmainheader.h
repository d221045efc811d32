// The main header of a codestream (ITU-T T.800, A.5 and A.6).
#ifndef JPEG2000_DJP2CSMAINHEADER_H
#define JPEG2000_DJP2CSMAINHEADER_H

#include "codingstyle.h"
#include "djp2quantcomp.h"
#include "jp2bitspercomp.h"
#include "optionalvalue.h"

namespace jpeg2000 {

// Components refer to members of the header, so it stays where it is.
struct DJP2CSMainHeader {
    Rect imageRect; // not empty; its corners are below 2^31
    Point2D<unsigned> tileGridOrigin;
    RectSize tileSize;
    unsigned short nOfComponents = 0;
    FixedArray<JP2BitsPerComp> bitsPerComp; // one a component
    FixedArray<RectSize> sampling;          // one a component; not 0
    JP2CodingStyleJoint codingStyleJoint;
    JP2CodingStyleComp codingStyleComp;
    DJP2QuantComp quantComp;
    // One item more than there are components: an index equal to their number is let pass and has no effect.
    // Items that are not a component's own refer to the defaults above.
    OptionalSuperArray<JP2CodingStyleComp> codingStyleComps;
    OptionalSuperArray<DJP2QuantComp> quantComps;
    FixedArray<JP2ProgrRange> progrRanges; // of POC; empty without one
    bool isCODMissing = true, isQCDMissing = true;

    DJP2CSMainHeader() = default;
    DJP2CSMainHeader(const DJP2CSMainHeader&) = delete;
    DJP2CSMainHeader& operator=(const DJP2CSMainHeader&) = delete;

    // From SOC to the first SOT, whose marker is consumed. False when EOC came instead: there is no tile.
    template <class Input>
    bool Read(Input& input, BDiagnOutputPtr sink);

    void Reset();

    // From 1 to 65535 together, once a header with tiles was read.
    unsigned nOfTileColumns() const;
    unsigned nOfTileRows() const;

    // The first sample of a component that is not left of or above a point of the reference grid.
    Point2D<unsigned> ToComponentGrid(const Point2D<unsigned>& point, unsigned component) const;

private:
    template <class Input>
    void ReadSIZBody(Input& input, BDiagnOutputPtr sink);
    void checkTileGrid() const;
    template <class Input>
    bool readSegments(Input& input, BDiagnOutputPtr sink);
};

} // namespace jpeg2000

#endif
