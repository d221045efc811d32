#include "decode.h"
#include "boundedinput.h"
#include "djp2file.h"
#include "imageform.h"
#include "metaimage.h"

#include <cstdio>

namespace jpeg2000 {

namespace {

using Input = MemoryBoundedInputBE;

// Behind the main header.
void decodeCodestream(DJP2Codestream<Input>& codestream, _METABUFF& meta)
{
    SetMRstrImageSizeAndDepths(codestream.mainHeader, meta.image);
    ReAllocMetaImageComponents(codestream.mainHeader, codestream.budget, meta.components);
    while (codestream.ReadNextTilePartHeader()) {
        while (codestream.ReadPacket()) {
        }
    }
    codestream.UpdateImageComponents(meta.components);
}

void describe(const DJP2BoxHeader& header, MRstrImage& image)
{
    SetMRstrImageResolution(header, image);
    SetMRstrImagePalette(header, image);
}

void decodeFile(Input& input, BDiagnOutput& sink, _METABUFF& meta)
{
    DJP2File<Input> file(input, sink);
    file.ReadSignatureBox();
    file.ReadFileTypeBox();
    file.FindAndReadHeaderBox();
    bool isFound = false;
    for (; file.ReadNextCSMainHeader(); isFound = true) decodeCodestream(file.codestream, meta);
    if (!isFound) fail<TranscodingException{0}>();
    describe(file.boxHeader, meta.image);
}

void decodeSource(const CmdOptions& options, BDiagnOutput& sink, const _JP2BUFF& jp2, _METABUFF& meta)
{
    Input input(jp2.buffer, jp2.length);
    if (options.srcType == FileType::jp2) return decodeFile(input, sink, meta);
    DJP2Codestream<Input> codestream(input, sink);
    codestream.ReadMainHeader();
    decodeCodestream(codestream, meta);
    describe({}, meta.image);
}

} // namespace

int decode(const CmdOptions& options, BDiagnOutput& sink, const _JP2BUFF& jp2, _BMPBUFF& bmp)
{
    _METABUFF meta;
    decodeSource(options, sink, jp2, meta);
    bmp.length = 0;
    const std::unique_ptr<ImageForm> form = MakeImageForm(options, meta.image, sink);
    if (!form) return 0; // there is no display
    const uint64_t needed = form->EstimateNOfBytes();
    if (needed > bmp.bufferSize) {
        printf("Error: the buffer for %s %u bytes is small,indispensable size %llu bytes\n",
               options.dstType == FileType::bmp ? "bmpFile" : "pnmFile", bmp.bufferSize,
               static_cast<unsigned long long>(needed));
        return -1;
    }
    bmp.length = static_cast<uint32_t>(form->Write(meta.components, bmp.buffer) - bmp.buffer);
    return 0;
}

int decode(const CmdOptions& options, BDiagnOutput& sink, const _JP2BUFF& jp2, _METABUFF& meta)
{
    if (options.srcType != FileType::jp2 && options.srcType != FileType::codestream) {
        printf("\n  Error decode(): CmdOptions::jp2 ");
        return -1;
    }
    decodeSource(options, sink, jp2, meta);
    return 0;
}

} // namespace jpeg2000
