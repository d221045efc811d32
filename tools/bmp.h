// Windows bitmaps. Read: 1, 4 and 8 bits with a palette, 24 and 32 bits, uncompressed, top-down and
// bottom-up; a palette of greys makes a grey picture, the fourth byte of 32 bits is passed over. Written:
// bottom-up, 8 bits with a grey palette or 24 bits.
#ifndef TOOLS_BMP_H
#define TOOLS_BMP_H

#include "picture.h"

bool isBmp(const Bytes& file);
Picture readBmp(const Bytes& file);
void writeBmp(OutputFile& out, const Picture& picture); // 1 or 3 channels, maxval 255

#endif
