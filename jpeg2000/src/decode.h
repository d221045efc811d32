// From a JP2 file or a codestream to an image: in memory, or as a file of another format.
#ifndef JPEG2000_DECODE_H
#define JPEG2000_DECODE_H

#include "cmdoptions.h"
#include "codecbuffers.h"
#include "mrstrimage.h"

namespace jpeg2000 {

// The image as it was coded. With several codestreams in a file, the last one.
struct _METABUFF {
    MRstrImage image;
    ImageComponents components;
};

// A bitmap or a PNM file, as options.dstType tells, to bmp.buffer; its length to bmp.length. 0, or -1 with a
// line on the standard output for a buffer that is too small; of text, for one that could be too small.
// Descriptors are thrown.
int decode(const CmdOptions& options, BDiagnOutput& sink, const _JP2BUFF& jp2, _BMPBUFF& bmp);

// 0, or -1 with a line on the standard output when the source is neither file nor codestream.
int decode(const CmdOptions& options, BDiagnOutput& sink, const _JP2BUFF& jp2, _METABUFF& meta);

} // namespace jpeg2000

#endif
