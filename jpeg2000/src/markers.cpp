#include "markers.h"
#include "transfer.h"

namespace jpeg2000 {

namespace {

template <class Body>
void writeSegment(JP2Marker marker, JP2Output& out, Body writeBody)
{
    JP2Output body;
    writeBody(body);
    WriteMarker(marker, static_cast<unsigned short>(body.size), out);
    TransferAllSrc(body, out);
}

} // namespace

void WriteMarker(JP2Marker marker, JP2Output& out)
{
    out.Write16u(static_cast<uint16_t>(marker));
}

void WriteMarker(JP2Marker marker, unsigned short size, JP2Output& out)
{
    WriteMarker(marker, out);
    out.Write16u(static_cast<uint16_t>(size + 2));
}

void writeSOCMarker(JP2Output& out)
{
    WriteMarker(JP2Marker::SOC, out);
}

void writeSIZMarker(JP2Output& out, unsigned height, unsigned width, unsigned nOfComponents,
                    const JP2BitsPerComp* bitDepths)
{
    writeSegment(JP2Marker::SIZ, out, [&](JP2Output& body) {
        body.Write16u(0);             // capabilities
        for (int i = 0; i < 2; i++) { // the image on the reference grid, then the tile
            body.Write32u(width);
            body.Write32u(height);
            body.Write32u(0); // origin
            body.Write32u(0);
        }
        body.Write16u(static_cast<uint16_t>(nOfComponents));
        for (unsigned c = 0; c < nOfComponents; c++) {
            body.Write8u(bitDepths[c].value);
            body.Write8u(1); // sampling factors
            body.Write8u(1);
        }
    });
}

void writeCODMarker(JP2Output& out, uint8_t progression, uint16_t nOfLayers, bool isMCT, bool isReversible,
                    unsigned nOfLevels, uint8_t scod, const uint8_t* precinctSizes)
{
    writeSegment(JP2Marker::COD, out, [&](JP2Output& body) {
        body.Write8u(scod);
        body.Write8u(progression);
        body.Write16u(nOfLayers);
        body.Write8u(isMCT);
        body.Write8u(static_cast<uint8_t>(nOfLevels));
        body.Write8u(4); // exponents of the code-block's sides, less 2
        body.Write8u(4);
        body.Write8u(0); // code-block style
        body.Write8u(isReversible);
        if ((scod & 1) == 0 || nOfLevels == 0) return;
        body.Write(precinctSizes, nOfLevels + 1);
    });
}

void writeQCDMarker(JP2Output& out, unsigned nOfLevels, const CmdOptions& options, int bits)
{
    constexpr unsigned guardBits = 2 << 5;
    const unsigned range = static_cast<unsigned>(bits);
    writeSegment(JP2Marker::QCD, out, [&](JP2Output& body) {
        if (!options.isReversible && options.isDerivedQuant) {
            body.Write8u(guardBits | 1);
            body.Write16u(static_cast<uint16_t>(options.mantissa | options.exponent << 11));
            return;
        }
        // Exponents of bands with a step of 1: the depth and the band's gain.
        const auto writeExponent = [&](unsigned exponent) {
            if (options.isReversible)
                body.Write8u(static_cast<uint8_t>(exponent << 3));
            else
                body.Write16u(static_cast<uint16_t>(exponent << 11));
        };
        body.Write8u(options.isReversible ? guardBits : guardBits | 2);
        writeExponent(range);
        for (unsigned level = 0; level < nOfLevels; level++) {
            writeExponent(range + 1);
            writeExponent(range + 1);
            writeExponent(range + 2);
        }
    });
}

void writeSOTMarker(JP2Output& out, uint16_t tileIndex, uint32_t tilePartLength, uint8_t tilePartIndex,
                    uint8_t nOfTileParts)
{
    writeSegment(JP2Marker::SOT, out, [&](JP2Output& body) {
        body.Write16u(tileIndex);
        body.Write32u(tilePartLength);
        body.Write8u(tilePartIndex);
        body.Write8u(nOfTileParts);
    });
}

void writeSODMarker(JP2Output& out)
{
    WriteMarker(JP2Marker::SOD, out);
}

void writeEOCMarker(JP2Output& out)
{
    WriteMarker(JP2Marker::EOC, out);
}

} // namespace jpeg2000
