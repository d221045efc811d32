// Rows of TIFF pictures: PackBits (TIFF 6.0, section 9), bytes of 16-bit samples.
#ifndef QOV_KERNELS_TIFF_H
#define QOV_KERNELS_TIFF_H

#include "family.h"

namespace qov {

// Any alignment; sources and destinations apart; nothing beside them is read or written.
struct TiffKernels {
    // `pos` moves from packet to packet through the packed bytes, of which there are `len`. False from
    // packBits: the next packet does not fit. False from unpackBits: the packets do not make n bytes; it has
    // written what they make of them.
    bool (*packBits)(const Qov8u* src, ptrdiff_t n, Qov8u* dst, ptrdiff_t len, ptrdiff_t& pos);
    bool (*unpackBits)(const Qov8u* src, ptrdiff_t len, ptrdiff_t& pos, Qov8u* dst, ptrdiff_t n);

    void (*split)(const Qov16u* src, Qov8u* high, Qov8u* low, ptrdiff_t n);
    void (*join)(const Qov8u* high, const Qov8u* low, Qov16u* dst, ptrdiff_t n);
};

QOV_DECLARE_FAMILY(TiffKernels, tiffKernels)

} // namespace qov

#endif
