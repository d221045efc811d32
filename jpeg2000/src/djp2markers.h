// Reading markers and the segments that main and tile-part headers share (ITU-T T.800, annex A).
#ifndef JPEG2000_DJP2MARKERS_H
#define JPEG2000_DJP2MARKERS_H

#include "codingstyle.h"
#include "diagn.h"
#include "djp2quantcomp.h"
#include "jp2marker.h"

#include <cstdint>

namespace jpeg2000 {

template <class Input>
JP2Marker ReadMarker(Input& input)
{
    return MarkerType(input.Read16u());
}

// The bytes behind the length field.
template <class Input>
unsigned ReadMarkerBodySize(Input& input)
{
    const unsigned length = input.Read16u();
    if (length < 2) fail<DJP2MarkerException{0}>();
    return length - 2;
}

// The segment behind a marker, under a limit. `readBody` tells by its answer whether it read the body or
// passes it over, which is no padding.
template <class Input, class ReadBody>
void ReadMarkerSegment(Input& input, BDiagnOutputPtr sink, ReadBody readBody)
{
    const unsigned size = ReadMarkerBodySize(input);
    if (input.PushSize(size) != size) warn<DJP2CSWarning{18}>(sink);
    const bool isRead = readBody();
    if (input.PopSize() != 0 && isRead) warn<DJP2CSWarning{17}>(sink);
}

template <class Input>
unsigned ReadMarkerCompIndex(Input& input, unsigned nOfComponents)
{
    return nOfComponents < 257 ? input.Read8u() : input.Read16u();
}

// The component index of a COC or QCC. One that is equal to nOfComponents passes, and has no effect.
template <auto exception, class Input>
unsigned ReadOverrideIndex(Input& input, unsigned nOfComponents)
{
    const unsigned index = ReadMarkerCompIndex(input, nOfComponents);
    if (index > nOfComponents) fail<exception>();
    return index;
}

// The bodies, from where the innermost limit stands. COC and QCC begin behind the component index.

template <class Input>
void ReadCODBody(Input& input, JP2CodingStyleJoint& joint, JP2CodingStyleComp& style, BDiagnOutputPtr sink);
template <class Input>
void ReadCOCBody(Input& input, JP2CodingStyleComp& style, BDiagnOutputPtr sink);
template <class Input>
void ReadQCDBody(Input& input, DJP2QuantComp& quant, BDiagnOutputPtr sink);
template <class Input>
void ReadQCCBody(Input& input, DJP2QuantComp& quant, BDiagnOutputPtr sink);
// As many entries as fit.
template <class Input>
void ReadPOCBody(Input& input, unsigned nOfComponents, FixedArray<JP2ProgrRange>& ranges,
                 BDiagnOutputPtr sink);

// Of a tile part (SOT).
struct DJP2TilePartStart {
    unsigned tileIndex = 0;
    uint32_t length = 0; // Psot; 0 reaches to the end of the codestream
    unsigned partIndex = 0, nOfParts = 0;
};

template <class Input>
DJP2TilePartStart ReadSOTBody(Input& input)
{
    DJP2TilePartStart start;
    start.tileIndex = input.Read16u();
    start.length = input.Read32u();
    start.partIndex = input.Read8u();
    start.nOfParts = input.Read8u();
    return start;
}

} // namespace jpeg2000

#endif
