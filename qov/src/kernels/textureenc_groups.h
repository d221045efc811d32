// Blocks in groups of as many as are coded at a time.
#ifndef QOV_KERNELS_TEXTUREENC_GROUPS_H
#define QOV_KERNELS_TEXTUREENC_GROUPS_H

#include "family.h"

namespace qov::QOV_LEVEL {
namespace {

// Codes a group of blocks that stand side by side.
using CodeGroup = void(const Qov8u* src, ptrdiff_t step, Qov8u* dst);

// Groups run on from one row of blocks to the next; one that does not stand side by side is copied together.
template <int group, int texelBytes, int blockBytes, CodeGroup* code>
void codeGroups(const Qov8u* src, ptrdiff_t step, ptrdiff_t columns, ptrdiff_t rows, Qov8u* dst)
{
    assert(columns > 0 && rows > 0);
    constexpr int rowBytes = 4 * texelBytes, gatheredStep = group * rowBytes;
    ptrdiff_t x = 0;
    for (ptrdiff_t left = columns * rows; left > 0; left -= group, dst += group * blockBytes) {
        if (x == columns) {
            x = 0;
            src += 4 * step;
        }
        if (x + group <= columns) {
            code(src + x * rowBytes, step, dst);
            x += group;
            continue;
        }
        alignas(64) Qov8u gathered[4 * gatheredStep] = {}, coded[group * blockBytes];
        const int count = left < group ? int(left) : group;
        for (int i = 0; i < count; i++, x++) {
            if (x == columns) {
                x = 0;
                src += 4 * step;
            }
            for (int y = 0; y < 4; y++)
                __builtin_memcpy(gathered + y * gatheredStep + i * rowBytes, src + y * step + x * rowBytes,
                                 rowBytes);
        }
        code(gathered, gatheredStep, coded);
        __builtin_memcpy(dst, coded, size_t(count) * blockBytes);
    }
}

} // namespace
} // namespace qov::QOV_LEVEL

#endif
