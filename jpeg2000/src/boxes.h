// Writers of the boxes of a JP2 file (ITU-T T.800, annex I).
#ifndef JPEG2000_BOXES_H
#define JPEG2000_BOXES_H

#include "dibrgbvalue.h"
#include "jp2bitspercomp.h"
#include "jp2boxtype.h"
#include "jp2output.h"

namespace jpeg2000 {

// A body of 2^32 - 8 bytes and more takes the long form of the header.
void WriteBoxHeader(JP2BoxType type, unsigned bodySize, JP2Output& out);
// A box that reaches to the end of the file.
void WriteUknLenBoxHeader(JP2BoxType type, JP2Output& out);

void writeSignatureBox(JP2Output& out);
void writeFileTypeBox(JP2Output& out);

void writeImageHeaderBox(JP2Output& out, unsigned height, unsigned width, unsigned nOfComponents,
                         JP2BitsPerComp bitDepthField, bool isIPR);
void writeBitPerCompBox(JP2Output& out, unsigned nOfComponents, const JP2BitsPerComp* bitDepths);
void writeColorSpecBox(JP2Output& out, JP2Colorspace colorspace);
void writePaletteBox(JP2Output& out, const DIBRGBValue* palette, unsigned nOfEntries); // up to 1024
void writeCompMappingBox(JP2Output& out); // three channels of component 0 through the palette

// "jp2h": image header, colour and, with isPalette, palette and its mapping.
void writeHeaderSuperBox(JP2Output& out, unsigned height, unsigned width, unsigned nOfComponents,
                         JP2BitsPerComp bitDepthField, bool isIPR, JP2Colorspace colorspace,
                         const DIBRGBValue* palette, unsigned nOfEntries, bool isPalette);

} // namespace jpeg2000

#endif
