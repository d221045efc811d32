// Conversions between an MCU of pixels and blocks of level-shifted samples.
#ifndef QOV_KERNELS_JMCU_H
#define QOV_KERNELS_JMCU_H

#include "family.h"

namespace qov {

// Steps in bytes, any alignment of pixels and blocks; source and destination are apart.
template <class Pixel>
using McuToBlocks = void(const Pixel* src, ptrdiff_t srcStep, Qov16s* const dst[]);
template <class Pixel>
using McuFromBlocks = void(const Qov16s* const src[], Pixel* dst, ptrdiff_t dstStep);

// A pair of conversions for one region and one kind of pixels.
template <class Pixel>
struct McuPair {
    McuToBlocks<Pixel>* toBlocks;
    McuFromBlocks<Pixel>* fromBlocks;
};

template <class Pixel>
struct McuRegions {
    McuPair<Pixel> region444, region422, region411;
};

struct McuKernels {
    McuRegions<Qov8u> rgb, bgr, cmyk, samples;
    McuRegions<Qov16u> bgr555, bgr565;
    McuPair<Qov8u> pairs422;
};

QOV_DECLARE_FAMILY(McuKernels, mcuKernels)

} // namespace qov

#endif
