#include "codestream.h"
#include "equant.h"
#include "etile.h"
#include "markers.h"
#include "preprocess.h"
#include "transfer.h"
#include "wtfwd.h"

#include "boxes.h"

namespace jpeg2000 {

namespace {

constexpr int guardBits = 2;
constexpr unsigned nOfExponents = 33; // for the most resolutions that the format allows

bool usesMCT(const CmdOptions& options, unsigned nOfComponents)
{
    return options.isMCT && nOfComponents == 3;
}

// The bands of one plane, in whole indices.
void transformReversible(const ImageCoreC<int, 1u>& plane, const Rect& rect, unsigned nOfLevels,
                         SBTree<int>& bands)
{
    AllocSBTree(rect, nOfLevels, bands);
    WT53Fwd<int>(plane, rect, bands);
}

void transformIrreversible(const ImageCoreC<int, 1u>& plane, const Rect& rect, unsigned nOfLevels,
                           const QuantComponent& quant, bool isDerived, int bits, SBTree<int>& bands)
{
    SBTree<float> coefficients;
    AllocSBTree(rect, nOfLevels, coefficients);
    WT97Fwd<float>({reinterpret_cast<float*>(plane.data), plane.step}, rect, coefficients);
    quantise(coefficients, quant, isDerived, bits, bands);
}

// The packets' share of the bytes: what the image takes, divided by the ratio.
int budgetOf(unsigned imageBytes, double ratio)
{
    const double bytes = imageBytes / ratio;
    return bytes < 0x7fffffff ? static_cast<int>(bytes) : 0x7fffffff;
}

void controlRate(ETile& tile, const CmdOptions& options, unsigned imageBytes)
{
    const bool isMCT = usesMCT(options, static_cast<unsigned>(tile.nOfComponents));
    if (options.isReversible) {
        tile.WeightDistAsWT53();
        if (isMCT) tile.WeightDistAsRCT();
    } else {
        tile.WeightDistAsWT97();
        if (isMCT) tile.WeightDistAsICT();
    }
    const int budget = budgetOf(imageBytes, options.ratio);
    tile.SetCurPassToFirst();
    tile.AssignLayers(&budget, 1);
}

// Resolution by resolution; the one layer is both first and last.
void writePackets(ETile& tile, unsigned nOfLevels, JP2Output& out)
{
    for (int r = 0; r <= static_cast<int>(nOfLevels); r++)
        for (int c = 0; c < tile.nOfComponents; c++)
            for (int p = 0; p < tile.NOfPrecincts(0, r); p++) {
                BufferStream body;
                tile.WritePacket(c, r, p, 0, out, body);
                TransferAllSrc(body, out);
            }
}

} // namespace

void writeCodestreamBox(JP2Output& out, unsigned nOfComponents, const JP2BitsPerComp* bitDepths,
                        unsigned nOfLevels, ImagePn<int>& image, int bits, unsigned imageBytes,
                        const CmdOptions& options)
{
    WriteUknLenBoxHeader(JP2BoxType::codestream, out);
    writeCodeStreamMarkers(out, nOfComponents, bitDepths, nOfLevels, image, bits, imageBytes, options);
}

void writeCodeStreamMarkers(JP2Output& out, unsigned nOfComponents, const JP2BitsPerComp* bitDepths,
                            unsigned nOfLevels, ImagePn<int>& image, int bits, unsigned imageBytes,
                            const CmdOptions& options)
{
    writeSOCMarker(out);
    writeSIZMarker(out, image.size.height, image.size.width, nOfComponents, bitDepths);
    writeCODMarker(out, 0, 1, usesMCT(options, nOfComponents), options.isReversible, nOfLevels, 0, nullptr);
    writeQCDMarker(out, nOfLevels, options, bits);
    writeSOTMarker(out, 0, 0, 0, 1);
    writeSODMarker(out);
    writeCodeStream(out, nOfLevels, image, bitDepths[0], imageBytes, options);
    writeEOCMarker(out);
}

void writeCodeStream(JP2Output& out, unsigned nOfLevels, ImagePn<int>& image, JP2BitsPerComp bitDepthField,
                     unsigned imageBytes, const CmdOptions& options)
{
    const unsigned nOfPlanes = image.nOfPlanes;
    const bool isMCT = usesMCT(options, nOfPlanes);
    const bool isDerived = !options.isReversible && options.isDerivedQuant;
    const int bits = static_cast<int>(bitDepthField.BitDepth());
    const Rect rect{0, 0, image.size.width, image.size.height};

    FixedBuffer<ImageCoreC<int, 1u>> planes(nOfPlanes);
    FixedBuffer<JP2BitsPerComp> depths(nOfPlanes);
    for (unsigned c = 0; c < nOfPlanes; c++) planes[c] = image.plane(c);
    SetValue(bitDepthField, depths, nOfPlanes);
    if (options.isReversible)
        PreProcessWT53<int>(planes, image.size, depths, nOfPlanes, isMCT);
    else
        PreProcessWT97_32s32f(planes, image.size, depths, nOfPlanes, isMCT);

    FixedBuffer<QuantComponent> quant(nOfPlanes);
    FixedBuffer2D<int> precinctExps(nOfPlanes, nOfExponents), codeBlockExps(nOfPlanes, nOfExponents);
    FixedBuffer<int> levels(nOfPlanes), ranges(nOfPlanes);
    FixedBuffer<Rect> rects(nOfPlanes);
    for (unsigned c = 0; c < nOfPlanes; c++) {
        fillQuantComponent(options, nOfLevels, bits, quant[c]);
        SetValue(15, precinctExps[c], nOfExponents);
        SetValue(6, codeBlockExps[c], nOfExponents);
    }
    SetValue(static_cast<int>(nOfLevels), levels, nOfPlanes);
    SetValue(bits, ranges, nOfPlanes);
    SetValue(rect, rects, nOfPlanes);

    CBEncoder encoder(guardBits, 0, qoviMQTermShort);
    ETile tile;
    tile.Init(rects, precinctExps, precinctExps, codeBlockExps, codeBlockExps, ranges, quant, levels,
              static_cast<int>(nOfPlanes));
    // The bands of one component at a time: those of all would double the memory that the planes take.
    for (unsigned c = 0; c < nOfPlanes; c++) {
        SBTree<int> bands;
        if (options.isReversible)
            transformReversible(planes[c], rect, nOfLevels, bands);
        else
            transformIrreversible(planes[c], rect, nOfLevels, quant[c], isDerived, bits, bands);
        tile.components[c].Encode(encoder, bands);
    }
    image.Free();
    if (options.ratio > 0) controlRate(tile, options, imageBytes);
    tile.SetCurPassToFirst();
    writePackets(tile, nOfLevels, out);
}

} // namespace jpeg2000
