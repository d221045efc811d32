// Images of indices: their palettes brought to the depth of a file, and put in the place of the indices.
#ifndef JPEG2000_DEPALETTIZE_H
#define JPEG2000_DEPALETTIZE_H

#include "mrstrimage.h"

namespace jpeg2000 {

// Files take one channel or three.
constexpr unsigned nOfFileChannels(unsigned nOfChannels)
{
    return nOfChannels < 3 ? 1 : 3;
}

// The first n values of a column.
void scalePaletteColumn(const MRstrImagePalette& palette, unsigned column, unsigned n, unsigned toDepth,
                        int* dst);

// Limits indices to the palette's entries.
void limitIndices(const ImageComponent& indices, unsigned nOfEntries);

// The component of indices turns into as many planes of toDepth bits as a file takes; columns beyond them
// and other components go.
void depalettize(const MRstrImagePalette& palette, unsigned toDepth, ImageComponents& components);

} // namespace jpeg2000

#endif
