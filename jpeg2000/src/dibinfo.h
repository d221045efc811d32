// What a bitmap file (DIB) tells of its image, and the best choice of it for a decoded image.
#ifndef JPEG2000_DIBINFO_H
#define JPEG2000_DIBINFO_H

#include "diagn.h"
#include "dibrgbvalue.h"
#include "mrstrimage.h"

#include <cstdint>

namespace jpeg2000 {

enum class DIBVersion { core = 0, info = 1 };

struct DIBResolution {
    static constexpr uint32_t standard = 3780; // about 96 dots an inch

    uint32_t horizontal = standard, vertical = standard; // dots a metre
};

struct DIBInfo {
    static constexpr unsigned maxNOfColors = 256;

    DIBVersion version = DIBVersion::info;
    RectSize size;
    unsigned bitCount = 24; // 24, or 8 with a palette
    unsigned nOfColors = 0;
    DIBResolution resolution;
    DIBRGBValue palette[maxNOfColors] = {};
    bool isTopDown = false;

    unsigned nOfChannels() const { return bitCount / 8; }
    uint64_t lineNOfBytes() const { return (uint64_t{size.width} * nOfChannels() + 3) / 4 * 4; }
};

constexpr unsigned DIBFileHeaderNOfBytes = 14;

// All behind the file header.
uint64_t EstimateNOfBytes(const DIBInfo& info);
// Header and palette.
uint32_t infoNOfBytes(const DIBInfo& info);

// isUseMeta: the resolution of the display, or else that of the capture, is told to the file.
void SetBestDIBSizeAndResolution(const MRstrImage& image, DIBInfo& info, bool isUseMeta,
                                 const BDiagnOutputPtr& sink);
void SetBestDIBDepthAndPalette(const MRstrImage& image, DIBInfo& info, const BDiagnOutputPtr& sink);

// The file has indices and the image's own palette.
bool isPaletteKept(const MRstrImage& image);
void MakeDIBPalette(const MRstrImagePalette& palette, DIBInfo& info, const BDiagnOutputPtr& sink);

// The first n entries of a column as 8 bits.
void CovertPaletteChannel(const MRstrImagePalette& palette, unsigned column, unsigned n, int* dst,
                          const BDiagnOutputPtr& sink);
// What is lost by that.
void warnOfPaletteDepth(MRstrImageDepth depth, const BDiagnOutputPtr& sink);

} // namespace jpeg2000

#endif
