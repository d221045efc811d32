// What follows the inverse wavelets, in place: component transform (ITU-T T.800, annex G), the change from
// float to int, level shift. Everything runs row by row, so that a row is in the cache for all steps. Values
// are not limited to the depth.
#ifndef JPEG2000_POSTPROCESS_H
#define JPEG2000_POSTPROCESS_H

#include "image.h"
#include "jp2bitspercomp.h"

namespace jpeg2000 {

// One row. Signed samples stay as they are.
template <class T>
void LevShiftInv(T* row, unsigned width, JP2BitsPerComp depth);

// RCT and level shift of three planes.
template <class T>
void LevShiftRCTInv(const ImageCoreC<T, 1u>* planes, const RectSize& size, const JP2BitsPerComp* depths);

// ICT, conversion to the nearest number and level shift of three planes. The memory holds float before and
// int after.
void LevShiftICTInv32f32s(const ImageCoreC<int, 1u>* planes, const RectSize& size,
                          const JP2BitsPerComp* depths);

// For the reversible path. The component transform runs with isMCT and exactly three planes.
template <class T>
void PostProcessWT53(const ImageCoreC<T, 1u>* planes, const RectSize& size, const JP2BitsPerComp* depths,
                     unsigned nOfPlanes, bool isMCT);

// For the irreversible path. The memory of every plane holds float before and int after.
void PostProcessWT97_32f32s(const ImageCoreC<int, 1u>* planes, const RectSize& size,
                            const JP2BitsPerComp* depths, unsigned nOfPlanes, bool isMCT);

} // namespace jpeg2000

#endif
