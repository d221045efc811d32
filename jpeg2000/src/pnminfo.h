// What a PNM file tells of its image, and the best choice of it for a decoded image.
#ifndef JPEG2000_PNMINFO_H
#define JPEG2000_PNMINFO_H

#include "mrstrimage.h"

#include <cstdint>

namespace jpeg2000 {

enum class PNMFormat { text, binary };

constexpr uint16_t PNMMagic(char digit)
{
    return static_cast<uint16_t>('P' << 8 | digit);
}

struct PNMInfo {
    uint16_t magic = PNMMagic('6'); // "P1" to "P3": text of bitmaps, greys, colours; "P4" to "P6": binary
    unsigned maxValue = 255;
    RectSize size;

    bool isText() const { return magic <= PNMMagic('3'); }
    bool isBitmap() const { return magic == PNMMagic('1') || magic == PNMMagic('4'); }
    unsigned nOfChannels() const { return magic == PNMMagic('3') || magic == PNMMagic('6') ? 3 : 1; }
    unsigned sampleNOfBytes() const { return maxValue < 256 ? 1 : maxValue < 65536 ? 2 : 4; }

    // No text is longer.
    uint64_t EstimateImageDataTxtFmtNOfBytes() const;
    uint64_t BinFmtLineNOfBytes() const;
    // Header included.
    uint64_t EstimateNOfBytes() const;
};

// Samples of as many bits as the deepest component has, 31 at most. A single component of one bit is a
// bitmap.
void SetBestPNMInfo(const MRstrImage& image, PNMFormat format, PNMInfo& info);

} // namespace jpeg2000

#endif
