// Writes the codestream of an image: one tile, one layer, packets in the order LRCP.
#ifndef JPEG2000_CODESTREAM_H
#define JPEG2000_CODESTREAM_H

#include "cmdoptions.h"
#include "image.h"
#include "jp2bitspercomp.h"
#include "jp2output.h"

namespace jpeg2000 {

// The box of the codestream; it reaches to the end of the file.
//
// image: planes of `bits` bits, freed on the way. imageBytes: the size that option `ratio` divides to give
// the budget of the packets.
void writeCodestreamBox(JP2Output& out, unsigned nOfComponents, const JP2BitsPerComp* bitDepths,
                        unsigned nOfLevels, ImagePn<int>& image, int bits, unsigned imageBytes,
                        const CmdOptions& options);

// From SOC to EOC.
void writeCodeStreamMarkers(JP2Output& out, unsigned nOfComponents, const JP2BitsPerComp* bitDepths,
                            unsigned nOfLevels, ImagePn<int>& image, int bits, unsigned imageBytes,
                            const CmdOptions& options);

// Everything between SOD and EOC. bitDepthField is that of every plane.
void writeCodeStream(JP2Output& out, unsigned nOfLevels, ImagePn<int>& image, JP2BitsPerComp bitDepthField,
                     unsigned imageBytes, const CmdOptions& options);

} // namespace jpeg2000

#endif
