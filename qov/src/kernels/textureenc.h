// Coding of texture blocks. `columns` by `rows` blocks of 4x4 texels, neither 0; the step of the texels in
// bytes. Blocks are written one after another.
#ifndef QOV_KERNELS_TEXTUREENC_H
#define QOV_KERNELS_TEXTUREENC_H

#include "family.h"

namespace qov {

using EncodeTexels = void(const Qov8u* src, ptrdiff_t step, ptrdiff_t columns, ptrdiff_t rows, Qov8u* dst);

struct TextureEncKernels {
    EncodeTexels *bc4, *bc5;          // of one and two bytes a texel
    EncodeTexels *dxt1, *dxt3, *dxt5; // of R, G, B, A bytes
};

QOV_DECLARE_FAMILY(TextureEncKernels, textureEncKernels)

} // namespace qov

#endif
