#include "dibwrite.h"

namespace jpeg2000 {

namespace {

constexpr uint32_t coreHeaderNOfBytes = 12, infoHeaderNOfBytes = 40;

void writeCoreHeader(DIBOutput& out, const DIBInfo& info, const BDiagnOutputPtr& sink)
{
    // The format has neither field; a palette has as many entries as there are indices.
    if (info.resolution.horizontal != 0 || info.resolution.vertical != 0) warn<EDIBWarning{0}>(sink);
    if (info.isTopDown) warn<EDIBWarning{1}>(sink);
    if (info.nOfColors != (info.bitCount > 8 ? 0 : 1u << info.bitCount)) warn<EDIBWarning{2}>(sink);
    out.Write32u(coreHeaderNOfBytes);
    out.Write16u(static_cast<uint16_t>(info.size.width));
    out.Write16u(static_cast<uint16_t>(info.size.height));
    out.Write16u(1); // planes of the device
    out.Write16u(static_cast<uint16_t>(info.bitCount));
}

void writeInfoHeader(DIBOutput& out, const DIBInfo& info)
{
    const auto height = static_cast<int32_t>(info.size.height);
    out.Write32u(infoHeaderNOfBytes);
    out.Write32s(static_cast<int32_t>(info.size.width));
    out.Write32s(info.isTopDown ? -height : height);
    out.Write16u(1); // planes of the device
    out.Write16u(static_cast<uint16_t>(info.bitCount));
    out.Write32u(0); // not compressed
    out.Write32u(static_cast<uint32_t>(info.lineNOfBytes() * info.size.height));
    out.Write32u(info.resolution.horizontal);
    out.Write32u(info.resolution.vertical);
    out.Write32u(info.nOfColors);
    out.Write32u(0); // all are important
}

// The first samples of n planes go to every nth byte.
template <unsigned nOfPlanes>
uint8_t* writeRow(uint8_t* dst, const int* const (&rows)[nOfPlanes], unsigned width)
{
    for (unsigned x = 0; x < width; x++)
        for (const int* row : rows) *dst++ = static_cast<uint8_t>(row[x]);
    return dst;
}

} // namespace

void WriteDIBFileHeader(DIBOutput& out, const DIBInfo& info)
{
    out.Write8u('B');
    out.Write8u('M');
    out.Write32u(static_cast<uint32_t>(DIBFileHeaderNOfBytes + EstimateNOfBytes(info)));
    out.Write32u(0); // two reserved fields
    out.Write32u(DIBFileHeaderNOfBytes + infoNOfBytes(info));
}

void WriteInfoHeader(DIBOutput& out, const DIBInfo& info, const BDiagnOutputPtr& sink)
{
    if (info.version == DIBVersion::core)
        writeCoreHeader(out, info, sink);
    else
        writeInfoHeader(out, info);
}

void WritePalette(DIBOutput& out, const DIBInfo& info)
{
    for (unsigned i = 0; i < info.nOfColors; i++) {
        const DIBRGBValue& color = info.palette[i];
        out.Write8u(color.blue);
        out.Write8u(color.green);
        out.Write8u(color.red);
        if (info.version == DIBVersion::info) out.Write8u(0);
    }
}

void WriteDIBImageData(DIBOutput& out, const DIBInfo& info, const ImageComponents& planes)
{
    const unsigned width = info.size.width, height = info.size.height;
    const uint64_t padding = info.lineNOfBytes() - uint64_t{width} * info.nOfChannels();
    for (unsigned i = 0; i < height; i++) {
        const unsigned y = info.isTopDown ? i : height - 1 - i;
        if (info.nOfChannels() == 1)
            out.position = writeRow<1>(out.position, {planes[0].row(y)}, width);
        else
            out.position =
                writeRow<3>(out.position, {planes[2].row(y), planes[1].row(y), planes[0].row(y)}, width);
        for (uint64_t k = 0; k < padding; k++) out.Write8u(0);
    }
}

} // namespace jpeg2000
