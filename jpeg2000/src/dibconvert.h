// Turns a decoded image into the channels of a bitmap.
#ifndef JPEG2000_DIBCONVERT_H
#define JPEG2000_DIBCONVERT_H

#include "dibinfo.h"

namespace jpeg2000 {

// Afterwards the first components are the file's channels, R, G, B or one, of 8 bits and of the image's size.
// isUseResize: some components are sub-sampled.
void ConvertImageChannelsToDIB(const MRstrImage& image, const DIBInfo& info, ImageComponents& components,
                               bool isUseResize, const BDiagnOutputPtr& sink);

void ConverDirectImageComponentsToDIB(const MRstrImage& image, const DIBInfo& info,
                                      const ImageComponents& components, const BDiagnOutputPtr& sink);
void DepalettizeForDIB(const MRstrImage& image, ImageComponents& components, const BDiagnOutputPtr& sink);

} // namespace jpeg2000

#endif
