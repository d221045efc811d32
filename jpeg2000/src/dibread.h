// Reads the pixel rows of bitmaps (DIB): from the bottom up, padded to four bytes.
#ifndef JPEG2000_DIBREAD_H
#define JPEG2000_DIBREAD_H

#include "byteio.h"
#include "image.h"
#include "memoryio.h"

namespace jpeg2000 {

using DIBInput = ByteInputSigned<ByteInputLE<MemoryInput>>;

// One plane.
void ReadDIBImageDataDepth_8(DIBInput& in, const ImagePn<int>& image);
// Three planes, R, G, B; the file has B first.
void ReadDIBImageDataDepth_24(DIBInput& in, const ImagePn<int>& image);

} // namespace jpeg2000

#endif
