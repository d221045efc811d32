// Turns a decoded image into the channels of a PNM file.
#ifndef JPEG2000_PNMCONVERT_H
#define JPEG2000_PNMCONVERT_H

#include "diagn.h"
#include "pnminfo.h"

namespace jpeg2000 {

// Afterwards the first components are the file's channels, R, G, B or one, of 0 to info.maxValue and of the
// image's size. isUseResize: some components are sub-sampled.
void ConvertImageChannelsToPNM(const MRstrImage& image, const PNMInfo& info, ImageComponents& components,
                               bool isUseResize, const BDiagnOutputPtr& sink);

void ConverDirectImageComponentsToPNM(const MRstrImage& image, const PNMInfo& info,
                                      const ImageComponents& components, const BDiagnOutputPtr& sink);

} // namespace jpeg2000

#endif
