// A block of 64 coefficients cleared or copied by the widest vectors of the level. Of memset and memcpy, the
// compiler makes `rep` instructions for such lengths, which cost more than all the rest of a short block.
#ifndef QOV_KERNELS_JHUFFDEC_BLOCK_H
#define QOV_KERNELS_JHUFFDEC_BLOCK_H

#include "family.h"

namespace qov {
namespace {

#if defined(__AVX512F__)
const int blockPartBytes = 64;
#elif defined(__AVX__)
const int blockPartBytes = 32;
#else
const int blockPartBytes = 16;
#endif
typedef Qov8u BlockPart __attribute__((vector_size(blockPartBytes), aligned(2), may_alias));
const int blockParts = 64 * int(sizeof(Qov16s)) / blockPartBytes;

QOV_INLINE void clearBlock(Qov16s* block)
{
    BlockPart* part = (BlockPart*)block;
#pragma GCC unroll 8
    for (int i = 0; i < blockParts; i++) part[i] = BlockPart{};
}

QOV_INLINE void copyBlock(const Qov16s* from, Qov16s* to)
{
    const BlockPart* in = (const BlockPart*)from;
    BlockPart* out = (BlockPart*)to;
#pragma GCC unroll 8
    for (int i = 0; i < blockParts; i++) out[i] = in[i];
}

} // namespace
} // namespace qov

#endif
