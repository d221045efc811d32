// Copying planes of 32-bit samples.
#ifndef JPEG2000_COPYPLANE_H
#define JPEG2000_COPYPLANE_H

#include "image.h"

namespace jpeg2000 {

// By the library, which moves the samples as twice as many of 16 bits.
template <class T>
void copyPlane(const ImageCoreC<T, 1u>& src, const RectSize& size, const ImageCoreC<T, 1u>& dst)
{
    static_assert(sizeof(T) == 2 * sizeof(Qov16s));
    qoviCopy_16s_C1R(reinterpret_cast<const Qov16s*>(src.data), static_cast<int>(src.step),
                     reinterpret_cast<Qov16s*>(dst.data), static_cast<int>(dst.step),
                     RectSize{size.width * 2, size.height});
}

} // namespace jpeg2000

#endif
