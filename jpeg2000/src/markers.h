// Writers of the marker segments of a codestream (ITU-T T.800, annex A).
#ifndef JPEG2000_MARKERS_H
#define JPEG2000_MARKERS_H

#include "cmdoptions.h"
#include "jp2bitspercomp.h"
#include "jp2marker.h"
#include "jp2output.h"

namespace jpeg2000 {

void WriteMarker(JP2Marker marker, JP2Output& out);
// With the length field of a segment whose body has `size` bytes.
void WriteMarker(JP2Marker marker, unsigned short size, JP2Output& out);

void writeSOCMarker(JP2Output& out);
// One tile that covers the image; components are not sub-sampled.
void writeSIZMarker(JP2Output& out, unsigned height, unsigned width, unsigned nOfComponents,
                    const JP2BitsPerComp* bitDepths);
// Code-blocks of 64 by 64, style 0. precinctSizes, one byte a resolution, are written where bit 0 of scod is
// set and there are levels.
void writeCODMarker(JP2Output& out, uint8_t progression, uint16_t nOfLayers, bool isMCT, bool isReversible,
                    unsigned nOfLevels, uint8_t scod, const uint8_t* precinctSizes);
// Two guard bits. `bits` is the depth of the components.
void writeQCDMarker(JP2Output& out, unsigned nOfLevels, const CmdOptions& options, int bits);
// A tilePartLength of 0 reaches to EOC.
void writeSOTMarker(JP2Output& out, uint16_t tileIndex, uint32_t tilePartLength, uint8_t tilePartIndex,
                    uint8_t nOfTileParts);
void writeSODMarker(JP2Output& out);
void writeEOCMarker(JP2Output& out);

} // namespace jpeg2000

#endif
