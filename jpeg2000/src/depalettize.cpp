#include "depalettize.h"
#include "dynrange.h"

#include <utility>

namespace jpeg2000 {

namespace {

void lookUp(const ImageComponent& indices, const int* values, const ImageComponent& dst)
{
    for (unsigned y = 0; y < indices.size.height; y++) {
        const int* from = indices.row(y);
        int* to = dst.row(y);
        for (unsigned x = 0; x < indices.size.width; x++) to[x] = values[from[x]];
    }
}

} // namespace

void scalePaletteColumn(const MRstrImagePalette& palette, unsigned column, unsigned n, unsigned toDepth,
                        int* dst)
{
    const DynRange<long long> convert(palette.depths[column], toDepth);
    for (unsigned i = 0; i < n; i++) dst[i] = static_cast<int>(convert(palette.values[column][i]));
}

void limitIndices(const ImageComponent& indices, unsigned nOfEntries)
{
    const int last = static_cast<int>(nOfEntries) - 1;
    for (unsigned y = 0; y < indices.size.height; y++) {
        int* row = indices.row(y);
        for (unsigned x = 0; x < indices.size.width; x++) row[x] = Saturate(row[x], 0, last);
    }
}

void depalettize(const MRstrImagePalette& palette, unsigned toDepth, ImageComponents& components)
{
    ImageComponents channels;
    channels.ReAlloc(nOfFileChannels(palette.nOfColumns));
    ImageComponent& indices = channels[0];
    indices.Swap(components[palette.componentIndex]);
    limitIndices(indices, palette.nOfEntries);
    FixedBuffer<int> values(palette.nOfEntries);
    // The first channel, last, takes the place of the indices.
    for (unsigned i = channels.size; i-- > 0;) {
        if (i > 0) channels[i].Alloc(indices.size.width, indices.size.height);
        scalePaletteColumn(palette, i, palette.nOfEntries, toDepth, values);
        lookUp(indices, values, channels[i]);
    }
    components = std::move(channels);
}

} // namespace jpeg2000
