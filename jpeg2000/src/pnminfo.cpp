#include "pnminfo.h"
#include "chars.h"
#include "depalettize.h"

namespace jpeg2000 {

namespace {

uint64_t nOfDigits(unsigned value)
{
    char text[11];
    return IntToStrR10(value, text);
}

} // namespace

uint64_t PNMInfo::EstimateImageDataTxtFmtNOfBytes() const
{
    constexpr unsigned separator = 1; // behind each sample
    return uint64_t{size.width} * size.height * nOfChannels() * (nOfDigits(maxValue) + separator);
}

uint64_t PNMInfo::BinFmtLineNOfBytes() const
{
    if (isBitmap()) return (uint64_t{size.width} + 7) / 8;
    return uint64_t{size.width} * nOfChannels() * sampleNOfBytes();
}

uint64_t PNMInfo::EstimateNOfBytes() const
{
    // "P6\n720 480\n255\n"
    const uint64_t largest = isBitmap() ? 0 : nOfDigits(maxValue) + 1;
    const uint64_t header = 3 + nOfDigits(size.width) + 1 + nOfDigits(size.height) + 1 + largest;
    return header + (isText() ? EstimateImageDataTxtFmtNOfBytes() : BinFmtLineNOfBytes() * size.height);
}

void SetBestPNMInfo(const MRstrImage& image, PNMFormat format, PNMInfo& info)
{
    const MRstrImagePalette& palette = image.palette;
    const MRstrImageDepth* depths = palette.isPalettized ? palette.depths : image.depths;
    const unsigned n = palette.isPalettized ? palette.nOfColumns : image.nOfComponents;
    const unsigned nOfChannels = nOfFileChannels(n);
    // Of a palette, the file has the first columns alone.
    const unsigned nOfUsed = palette.isPalettized ? nOfChannels : n;
    unsigned bits = 1;
    for (unsigned i = 0; i < nOfUsed; i++) bits = Max(bits, Min(depths[i].bitDepth, 31u));

    const char text = nOfChannels == 3 ? '3' : bits > 1 ? '2' : '1';
    info.size = image.size;
    info.maxValue = (1u << bits) - 1;
    info.magic = PNMMagic(static_cast<char>(format == PNMFormat::text ? text : text + 3));
}

} // namespace jpeg2000
