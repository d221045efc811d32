// The output of all writers of boxes, markers and packets.
#ifndef JPEG2000_JP2OUTPUT_H
#define JPEG2000_JP2OUTPUT_H

#include "bufferstream.h"
#include "byteio.h"

namespace jpeg2000 {

using JP2Output = ByteOutputSigned<ByteOutputBE<BufferStream>>;

} // namespace jpeg2000

#endif
