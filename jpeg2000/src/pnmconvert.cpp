#include "pnmconvert.h"
#include "depalettize.h"
#include "dynrange.h"
#include "resize.h"

#include <bit>

namespace jpeg2000 {

namespace {

unsigned bitsOf(const PNMInfo& info)
{
    return static_cast<unsigned>(std::bit_width(info.maxValue));
}

} // namespace

void ConvertImageChannelsToPNM(const MRstrImage& image, const PNMInfo& info, ImageComponents& components,
                               bool isUseResize, const BDiagnOutputPtr& sink)
{
    const MRstrImagePalette& palette = image.palette;
    if (palette.isPalettized) depalettize(palette, bitsOf(info), components);
    if (isUseResize) ResizeUp(components, info.size, qoviInterpolationLinear);
    if (!palette.isPalettized) ConverDirectImageComponentsToPNM(image, info, components, sink);
}

void ConverDirectImageComponentsToPNM(const MRstrImage& image, const PNMInfo& info,
                                      const ImageComponents& components, const BDiagnOutputPtr& sink)
{
    if (image.nOfComponents > info.nOfChannels()) warn<MEPNMWarning{0}>(sink);
    ConvertDynRangeAndAverage(components, image.depths, bitsOf(info), info.nOfChannels());
}

} // namespace jpeg2000
