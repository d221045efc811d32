// Huffman coding of rows of differences, and of blocks without a state (ITU-T T.81).
#ifndef QOV_KERNELS_JHUFFROW_H
#define QOV_KERNELS_JHUFFROW_H

#include "jhuffdec.h"
#include "jhuffenc.h"

namespace qov {

// The arguments are those of the public functions, all of them checked.
struct HuffRowKernels {
    typedef QovStatus CodeRows(const Qov16s* const* src, int width, int rows, Qov8u* dst, int dstLen,
                               int* pos, const HuffEncSpec* const* specs, HuffEncState* state);
    typedef QovStatus TakeRows(const Qov8u* src, int srcLen, int* pos, Qov16s* const* dst, int width,
                               int rows, int* marker, const HuffDecSpec* const* specs, HuffDecState* state);
    typedef QovStatus CodeBlock(const Qov16s* src, Qov8u* dst, int* bitPos, Qov16s* lastDC,
                                const HuffEncSpec* dc, const HuffEncSpec* ac);
    typedef QovStatus TakeBlock(const Qov8u* src, int* bitPos, Qov16s* dst, Qov16s* lastDC, int* marker,
                                Qov32u* prefetched, int* prefetchedCount, const HuffDecSpec* dc,
                                const HuffDecSpec* ac);

    CodeRows* codeRows;
    TakeRows* takeRows;
    CodeBlock* codeBlock;
    TakeBlock* takeBlock;
};

QOV_DECLARE_FAMILY(HuffRowKernels, huffRowKernels)

} // namespace qov

#endif
