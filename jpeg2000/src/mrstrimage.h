// A decoded image in memory, of any depth and any number of components: what forms for files are made from.
#ifndef JPEG2000_MRSTRIMAGE_H
#define JPEG2000_MRSTRIMAGE_H

#include "fixedbuffer.h"
#include "geometry.h"
#include "image.h"

namespace jpeg2000 {

struct MRstrImageDepth {
    unsigned bitDepth = 8; // from 1 on
    bool isSigned = false;
};

// Samples a metre.
struct MRstrImageResolution {
    bool isSet = false;
    double horizontal = 0, vertical = 0;
};

struct MRstrImagePalette {
    bool isPalettized = false;   // only then the others count
    unsigned componentIndex = 0; // the component of indices
    unsigned nOfEntries = 0, nOfColumns = 0;
    FixedBuffer<MRstrImageDepth> depths; // one a column
    FixedBuffer2D<long long> values;     // [column][entry]
};

struct MRstrImage {
    RectSize size;
    unsigned nOfComponents = 0;
    FixedBuffer<MRstrImageDepth> depths; // one a component
    MRstrImageResolution captureResolution, displayResolution;
    MRstrImagePalette palette;
};

// The samples of the components. Those of sub-sampled components are fewer than the image has.
using ImageComponent = ImageC<int, 1>;
using ImageComponents = FixedArray<ImageComponent>;

} // namespace jpeg2000

#endif
