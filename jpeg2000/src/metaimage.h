// What headers say about a decoded image, and the room for its samples.
#ifndef JPEG2000_METAIMAGE_H
#define JPEG2000_METAIMAGE_H

#include "decodingbudget.h"
#include "djp2boxheader.h"
#include "djp2csmainheader.h"
#include "mrstrimage.h"

namespace jpeg2000 {

// Samples are 0 at first. Room is taken from the budget before there is memory for it.
void ReAllocMetaImageComponents(const DJP2CSMainHeader& header, DecodingBudget& budget,
                                ImageComponents& components);

void SetMRstrImageSizeAndDepths(const DJP2CSMainHeader& header, MRstrImage& image);
void SetMRstrImageResolution(const DJP2BoxHeader& header, MRstrImage& image);

// After the size and the depths. Channels that the palette does not make are not kept; nor is a palette
// without entries, without a mapping, or of a component that is not there.
void SetMRstrImagePalette(const DJP2BoxHeader& header, MRstrImage& image);

} // namespace jpeg2000

#endif
