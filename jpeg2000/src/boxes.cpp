#include "boxes.h"
#include "transfer.h"

namespace jpeg2000 {

namespace {

// The body is built first, so that its length is known when the header is written.
template <class Body>
void writeBox(JP2BoxType type, JP2Output& out, Body writeBody)
{
    JP2Output body;
    writeBody(body);
    WriteBoxHeader(type, body.size, out);
    TransferAllSrc(body, out);
}

} // namespace

void WriteBoxHeader(JP2BoxType type, unsigned bodySize, JP2Output& out)
{
    const bool isShort = bodySize < 0xFFFFFFF8;
    out.Write32u(isShort ? bodySize + 8 : 1);
    out.Write32u(static_cast<uint32_t>(type));
    if (isShort) return;
    const uint64_t length = uint64_t{bodySize} + 16;
    out.Write32u(static_cast<uint32_t>(length >> 32));
    out.Write32u(static_cast<uint32_t>(length));
}

void WriteUknLenBoxHeader(JP2BoxType type, JP2Output& out)
{
    out.Write32u(0);
    out.Write32u(static_cast<uint32_t>(type));
}

void writeSignatureBox(JP2Output& out)
{
    writeBox(JP2BoxType::signature, out, [](JP2Output& body) { body.Write32u(0x0D0A870A); });
}

void writeFileTypeBox(JP2Output& out)
{
    writeBox(JP2BoxType::fileType, out, [](JP2Output& body) {
        body.Write32u(boxCode("jp2 ")); // brand
        body.Write32u(0);               // minor version
        body.Write32u(boxCode("jp2 ")); // the one compatible type
    });
}

void writeImageHeaderBox(JP2Output& out, unsigned height, unsigned width, unsigned nOfComponents,
                         JP2BitsPerComp bitDepthField, bool isIPR)
{
    writeBox(JP2BoxType::imageHeader, out, [&](JP2Output& body) {
        body.Write32u(height);
        body.Write32u(width);
        body.Write16u(static_cast<uint16_t>(nOfComponents));
        body.Write8u(bitDepthField.value);
        body.Write8u(7); // compression type
        body.Write8u(0); // the colour space is known
        body.Write8u(isIPR);
    });
}

void writeBitPerCompBox(JP2Output& out, unsigned nOfComponents, const JP2BitsPerComp* bitDepths)
{
    writeBox(JP2BoxType::bitsPerComp, out, [&](JP2Output& body) {
        for (unsigned c = 0; c < nOfComponents; c++) body.Write8u(bitDepths[c].value);
    });
}

void writeColorSpecBox(JP2Output& out, JP2Colorspace colorspace)
{
    writeBox(JP2BoxType::colorSpec, out, [&](JP2Output& body) {
        body.Write8u(1); // enumerated
        body.Write8u(0); // precedence
        body.Write8u(0); // approximation
        body.Write32u(static_cast<uint32_t>(colorspace));
    });
}

void writePaletteBox(JP2Output& out, const DIBRGBValue* palette, unsigned nOfEntries)
{
    writeBox(JP2BoxType::palette, out, [&](JP2Output& body) {
        body.Write16u(static_cast<uint16_t>(nOfEntries));
        body.Write8u(3);
        for (int column = 0; column < 3; column++) body.Write8u(7); // eight bits, unsigned
        for (unsigned i = 0; i < nOfEntries; i++) {
            body.Write8u(palette[i].blue);
            body.Write8u(palette[i].green);
            body.Write8u(palette[i].red);
        }
    });
}

void writeCompMappingBox(JP2Output& out)
{
    writeBox(JP2BoxType::compMapping, out, [](JP2Output& body) {
        for (uint8_t channel = 0; channel < 3; channel++) {
            body.Write16u(0);      // component
            body.Write8u(1);       // through the palette
            body.Write8u(channel); // column
        }
    });
}

void writeHeaderSuperBox(JP2Output& out, unsigned height, unsigned width, unsigned nOfComponents,
                         JP2BitsPerComp bitDepthField, bool isIPR, JP2Colorspace colorspace,
                         const DIBRGBValue* palette, unsigned nOfEntries, bool isPalette)
{
    writeBox(JP2BoxType::header, out, [&](JP2Output& body) {
        writeImageHeaderBox(body, height, width, nOfComponents, bitDepthField, isIPR);
        writeColorSpecBox(body, colorspace);
        if (!isPalette) return;
        writePaletteBox(body, palette, nOfEntries);
        writeCompMappingBox(body);
    });
}

} // namespace jpeg2000
