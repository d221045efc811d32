// Writes bitmap files (DIB).
#ifndef JPEG2000_DIBWRITE_H
#define JPEG2000_DIBWRITE_H

#include "byteio.h"
#include "dibinfo.h"
#include "memoryio.h"

namespace jpeg2000 {

using DIBOutput = ByteOutputSigned<ByteOutputLE<MemoryOutput>>;

void WriteDIBFileHeader(DIBOutput& out, const DIBInfo& info);
void WriteInfoHeader(DIBOutput& out, const DIBInfo& info, const BDiagnOutputPtr& sink);
void WritePalette(DIBOutput& out, const DIBInfo& info);
// One plane or three, R, G, B, of samples of 8 bits.
void WriteDIBImageData(DIBOutput& out, const DIBInfo& info, const ImageComponents& planes);

} // namespace jpeg2000

#endif
