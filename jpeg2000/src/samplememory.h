// Samples of 32 bits as memory, whose type is another one before and after a step of the codec: it goes to
// the library's primitives only, which move elements as bytes.
#ifndef JPEG2000_SAMPLEMEMORY_H
#define JPEG2000_SAMPLEMEMORY_H

#include "image.h"

namespace jpeg2000 {

// A row under its other type.
inline Qov32f* asFloats(int* row)
{
    return reinterpret_cast<Qov32f*>(row);
}

// Samples move as twice as many of 16 bits.
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
