// What precedes the forward wavelets, in place: level shift, component transform (ITU-T T.800, annex G) and
// the change from int to float. Everything runs row by row, so that a row is in the cache for all steps.
#ifndef JPEG2000_PREPROCESS_H
#define JPEG2000_PREPROCESS_H

#include "image.h"
#include "jp2bitspercomp.h"

namespace jpeg2000 {

// One row. Signed samples stay as they are.
template <class T>
void LevShiftFwd(T* row, unsigned width, JP2BitsPerComp depth);

// Level shift and RCT of three planes.
template <class T>
void LevShiftRCTFwd(const ImageCoreC<T, 1u>* planes, const RectSize& size, const JP2BitsPerComp* depths);

// Level shift, conversion and ICT of three planes. The memory holds int before and float after.
void LevShiftICTFwd32s32f(const ImageCoreC<int, 1u>* planes, const RectSize& size,
                          const JP2BitsPerComp* depths);

// For the reversible path. The component transform runs with isMCT and exactly three planes.
template <class T>
void PreProcessWT53(const ImageCoreC<T, 1u>* planes, const RectSize& size, const JP2BitsPerComp* depths,
                    unsigned nOfPlanes, bool isMCT);

// For the irreversible path. The memory of every plane holds int before and float after.
void PreProcessWT97_32s32f(const ImageCoreC<int, 1u>* planes, const RectSize& size,
                           const JP2BitsPerComp* depths, unsigned nOfPlanes, bool isMCT);

} // namespace jpeg2000

#endif
