// Writes PNM files: bitmaps (PBM), greys (PGM) and colours (PPM), as text or binary.
#ifndef JPEG2000_PNMWRITE_H
#define JPEG2000_PNMWRITE_H

#include "byteio.h"
#include "memoryio.h"
#include "pnminfo.h"

namespace jpeg2000 {

using PNMOutput = ByteOutputSigned<ByteOutputBE<MemoryOutput>>;

void WritePNMHeader(PNMOutput& out, const PNMInfo& info);

// One plane, or three: R, G, B. Samples are 0 to info.maxValue; in a bitmap 1 is white, which the file has
// as 0.
void WritePNMImageData(PNMOutput& out, const PNMInfo& info, const ImageComponents& planes);

} // namespace jpeg2000

#endif
