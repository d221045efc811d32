// From a bitmap to a JP2 file, both in memory.
#ifndef JPEG2000_ENCODE_H
#define JPEG2000_ENCODE_H

#include "cmdoptions.h"
#include "codecbuffers.h"

namespace jpeg2000 {

// 0, or -1 with a line on the standard output: for a source that is no bitmap, and for an output buffer that
// is too small. Descriptors are thrown. bmp.bitCount 8 is one plane, anything else 24; its palette is not
// looked at.
int encode(const CmdOptions& options, BDiagnOutput& sink, _BMPBUFF& bmp, _JP2BUFF& jp2);

} // namespace jpeg2000

#endif
