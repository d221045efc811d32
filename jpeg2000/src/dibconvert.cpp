#include "dibconvert.h"
#include "depalettize.h"
#include "dynrange.h"
#include "resize.h"

namespace jpeg2000 {

void ConvertImageChannelsToDIB(const MRstrImage& image, const DIBInfo& info, ImageComponents& components,
                               bool isUseResize, const BDiagnOutputPtr& sink)
{
    const bool isKept = isPaletteKept(image), isDirect = !image.palette.isPalettized;
    if (isKept)
        limitIndices(components[image.palette.componentIndex],
                     Min(image.palette.nOfEntries, DIBInfo::maxNOfColors));
    else if (!isDirect)
        DepalettizeForDIB(image, components, sink);
    // There is nothing between two indices.
    if (isUseResize)
        ResizeUp(components, info.size, isKept ? qoviInterpolationNearest : qoviInterpolationLinear);
    if (isDirect) ConverDirectImageComponentsToDIB(image, info, components, sink);
}

void ConverDirectImageComponentsToDIB(const MRstrImage& image, const DIBInfo& info,
                                      const ImageComponents& components, const BDiagnOutputPtr& sink)
{
    if (image.nOfComponents > info.nOfChannels()) warn<MEDIBWarning{13}>(sink);
    ConvertDynRangeAndAverage(components, image.depths, 8, info.nOfChannels());
}

void DepalettizeForDIB(const MRstrImage& image, ImageComponents& components, const BDiagnOutputPtr& sink)
{
    const unsigned nOfChannels = nOfFileChannels(image.palette.nOfColumns);
    for (unsigned i = 0; i < nOfChannels; i++) warnOfPaletteDepth(image.palette.depths[i], sink);
    depalettize(image.palette, 8, components);
}

} // namespace jpeg2000
