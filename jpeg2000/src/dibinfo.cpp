#include "dibinfo.h"
#include "depalettize.h"

#include <cmath>

namespace jpeg2000 {

uint32_t infoNOfBytes(const DIBInfo& info)
{
    return info.version == DIBVersion::core ? 12 + 3 * info.nOfColors : 40 + 4 * info.nOfColors;
}

uint64_t EstimateNOfBytes(const DIBInfo& info)
{
    return infoNOfBytes(info) + info.lineNOfBytes() * info.size.height;
}

namespace {

uint32_t dotsPerMetre(double exact)
{
    constexpr double most = 0x7FFFFFFF;
    return exact >= 0.5 ? static_cast<uint32_t>(std::lround(std::fmin(exact, most)))
                        : DIBResolution::standard;
}

} // namespace

void SetBestDIBSizeAndResolution(const MRstrImage& image, DIBInfo& info, bool isUseMeta,
                                 const BDiagnOutputPtr& sink)
{
    info.size = image.size;
    info.resolution = {};
    const MRstrImageResolution &capture = image.captureResolution, &display = image.displayResolution;
    const MRstrImageResolution* used = nullptr;
    if (isUseMeta) used = display.isSet ? &display : capture.isSet ? &capture : nullptr;
    if (used) info.resolution = {dotsPerMetre(used->horizontal), dotsPerMetre(used->vertical)};

    if (capture.isSet && used != &capture) warn<MEDIBWarning{10}>(sink);
    if (display.isSet && used != &display) warn<MEDIBWarning{11}>(sink);
    if (!capture.isSet && !display.isSet) warn<MEDIBWarning{12}>(sink);
}

bool isPaletteKept(const MRstrImage& image)
{
    return image.palette.isPalettized && image.nOfComponents == 1;
}

void SetBestDIBDepthAndPalette(const MRstrImage& image, DIBInfo& info, const BDiagnOutputPtr& sink)
{
    const bool isKept = isPaletteKept(image), isLost = image.palette.isPalettized && !isKept;
    if (isLost) warn<MEDIBWarning{9}>(sink);
    const unsigned nOfChannels = nOfFileChannels(isLost ? image.palette.nOfColumns : image.nOfComponents);
    info.bitCount = 8 * nOfChannels;
    info.nOfColors = nOfChannels == 1 ? DIBInfo::maxNOfColors : 0;
    if (nOfChannels != 1) return;
    if (isKept)
        MakeDIBPalette(image.palette, info, sink);
    else
        makeGreyRamp(info.palette);
}

void MakeDIBPalette(const MRstrImagePalette& palette, DIBInfo& info, const BDiagnOutputPtr& sink)
{
    if (palette.nOfEntries > DIBInfo::maxNOfColors) warn<MEDIBWarning{4}>(sink);
    if (palette.nOfColumns != 1 && palette.nOfColumns != 3) warn<MEDIBWarning{8}>(sink);

    const unsigned n = Min(palette.nOfEntries, DIBInfo::maxNOfColors);
    const unsigned nOfChannels = nOfFileChannels(palette.nOfColumns);
    uint8_t DIBRGBValue::*const channels[] = {&DIBRGBValue::red, &DIBRGBValue::green, &DIBRGBValue::blue};
    int values[DIBInfo::maxNOfColors];
    for (unsigned i = 0; i < 3; i++) { // a single column gives all three
        if (i < nOfChannels) CovertPaletteChannel(palette, i, n, values, sink);
        for (unsigned k = 0; k < n; k++) info.palette[k].*channels[i] = static_cast<uint8_t>(values[k]);
    }
}

void warnOfPaletteDepth(MRstrImageDepth depth, const BDiagnOutputPtr& sink)
{
    if (depth.bitDepth > 8) warn<MEDIBWarning{5}>(sink);
    if (depth.bitDepth < 8) warn<MEDIBWarning{6}>(sink);
    if (depth.isSigned) warn<MEDIBWarning{7}>(sink);
}

void CovertPaletteChannel(const MRstrImagePalette& palette, unsigned column, unsigned n, int* dst,
                          const BDiagnOutputPtr& sink)
{
    warnOfPaletteDepth(palette.depths[column], sink);
    scalePaletteColumn(palette, column, n, 8, dst);
}

} // namespace jpeg2000
