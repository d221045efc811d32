// Binary PGM (P5), PPM (P6) and PAM (P7) of the netpbm family, maxval 1 to 65535; PAM of 1, 3 or 4 channels,
// whatever its tuple type says.
#ifndef TOOLS_PNM_H
#define TOOLS_PNM_H

#include "picture.h"

bool isPnm(const Bytes& file);
Picture readPnm(const Bytes& file);

// PGM for one channel, PPM for three.
void writePnm(OutputFile& out, const Picture& picture);
void writePam(OutputFile& out, const Picture& picture);

#endif
