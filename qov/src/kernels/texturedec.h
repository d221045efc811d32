// Decoding of texture blocks. `columns` by `rows` blocks of 4x4 texels, neither 0; the step of the texels in
// bytes. Blocks are read one after another, any bytes.
#ifndef QOV_KERNELS_TEXTUREDEC_H
#define QOV_KERNELS_TEXTUREDEC_H

#include "family.h"

namespace qov {

using DecodeTexels = void(const Qov8u* src, Qov8u* dst, ptrdiff_t step, ptrdiff_t columns, ptrdiff_t rows);

struct TextureDecKernels {
    DecodeTexels *bc4, *bc5;          // to one and two bytes a texel
    DecodeTexels *dxt1, *dxt3, *dxt5; // to R, G, B, A bytes
};

QOV_DECLARE_FAMILY(TextureDecKernels, textureDecKernels)

} // namespace qov

#endif
