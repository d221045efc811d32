#include "encode.h"
#include "boxes.h"
#include "codestream.h"
#include "dibread.h"
#include "memoryio.h"
#include "transfer.h"

#include <bit>
#include <cstdio>

namespace jpeg2000 {

namespace {

void readPlanes(const _BMPBUFF& bmp, ImagePn<int>& image)
{
    const unsigned nOfPlanes = bmp.bitCount == 8 ? 1 : 3;
    image.Alloc(static_cast<unsigned>(bmp.width), static_cast<unsigned>(bmp.height), nOfPlanes);
    DIBInput in(bmp.data);
    if (nOfPlanes == 1)
        ReadDIBImageDataDepth_8(in, image);
    else
        ReadDIBImageDataDepth_24(in, image);
}

// No more levels than halve the shorter side to one sample; a single sample still has one.
unsigned levelsFor(const RectSize& size, int wanted)
{
    const unsigned side = Min(size.width, size.height);
    if (side == 0) return 0;
    const unsigned most = static_cast<unsigned>(std::bit_width(side % 2 == 0 ? side - 1 : side));
    return Min(static_cast<unsigned>(wanted), most);
}

// Returns the bytes of the codestream, which stands last.
uint32_t writeFile(JP2Output& out, ImagePn<int>& image, const CmdOptions& options)
{
    constexpr JP2BitsPerComp depth{7}; // 8 bits, unsigned
    const unsigned nOfPlanes = image.nOfPlanes;
    const bool isPalette = nOfPlanes == 1 && options.grayMode == GrayMode::never;
    const bool isColour = nOfPlanes == 3 || isPalette;
    DIBRGBValue palette[256];
    makeGreyRamp(palette);

    const unsigned nOfLevels = levelsFor(image.size, options.nOfLevels);
    const unsigned imageBytes = image.size.height * ((image.size.width * nOfPlanes + 3) & ~3u);
    FixedBuffer<JP2BitsPerComp> depths(nOfPlanes);
    SetValue(depth, depths, nOfPlanes);

    writeSignatureBox(out);
    writeFileTypeBox(out);
    writeHeaderSuperBox(out, image.size.height, image.size.width, nOfPlanes, depth, false,
                        isColour ? JP2Colorspace::sRGB : JP2Colorspace::grey, palette, 256, isPalette);
    constexpr unsigned boxHeader = 8;
    const uint32_t before = out.size + boxHeader;
    writeCodestreamBox(out, nOfPlanes, depths, nOfLevels, image, static_cast<int>(depth.BitDepth()),
                       imageBytes, options);
    return out.size - before;
}

} // namespace

int encode(const CmdOptions& options, BDiagnOutput&, _BMPBUFF& bmp, _JP2BUFF& jp2)
{
    if (options.srcType != FileType::bmp) {
        printf("\n Error encode(): not pnm \n");
        return -1;
    }
    ImagePn<int> image;
    readPlanes(bmp, image);
    JP2Output out;
    const uint32_t codestreamLength = writeFile(out, image, options);
    if (out.size > jp2.bufferSize) {
        printf("Error: the buffer %u bytes is small,indispensable size %u bytes\n", jp2.bufferSize, out.size);
        return -1;
    }
    jp2.length = out.size;
    jp2.codestreamLength = codestreamLength;
    MemoryOutput memory(jp2.buffer);
    TransferAllSrc(out, memory);
    return 0;
}

} // namespace jpeg2000
