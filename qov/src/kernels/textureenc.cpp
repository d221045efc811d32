#include "textureenc.h"

#include "textureenc_colour.h"
#include "textureenc_groups.h"
#include "textureenc_ramp.h"

namespace qov::QOV_LEVEL {
namespace {

void codeBc4(const Qov8u* src, ptrdiff_t step, Qov8u* dst)
{
    codeRamps<1, 0, 8>(src, step, dst);
}

void codeBc5(const Qov8u* src, ptrdiff_t step, Qov8u* dst)
{
    codeRamps<2, 0, 16>(src, step, dst);
    codeRamps<2, 1, 16>(src, step, dst + 8);
}

void codeDxt1(const Qov8u* src, ptrdiff_t step, Qov8u* dst)
{
    Texels t;
    load(src, step, t);
    if (allOpaque(t))
        codeColours<false>(t, dst, 8);
    else
        codeColours<true>(t, dst, 8);
}

// byteLanes blocks of 16 bytes, the colours in the second half.
QOV_INLINE void codeColourHalves(const Qov8u* src, ptrdiff_t step, Qov8u* dst)
{
    for (int i = 0; i < byteLanes; i += lanes) {
        Texels t;
        load(src + i * 16, step, t);
        codeColours<false>(t, dst + i * 16 + 8, 16);
    }
}

void codeDxt3(const Qov8u* src, ptrdiff_t step, Qov8u* dst)
{
    Bytes alpha[16], block[8];
    loadBlocks<4, 3>(src, step, alpha);
    for (Bytes& a : alpha) a = weighted<1, 1, 17>(a, allBytes(8)); // the nearest multiple of 17
    for (int i = 0; i < 8; i++) block[i] = alpha[2 * i] | shiftLeft<4>(alpha[2 * i + 1]);
    storeBlocks<16>(block, dst);
    codeColourHalves(src, step, dst);
}

void codeDxt5(const Qov8u* src, ptrdiff_t step, Qov8u* dst)
{
    codeRamps<4, 3, 16>(src, step, dst);
    codeColourHalves(src, step, dst);
}

} // namespace

const TextureEncKernels textureEncKernels = {
    codeGroups<byteLanes, 1, 8, codeBc4>, codeGroups<byteLanes, 2, 16, codeBc5>,
    codeGroups<lanes, 4, 8, codeDxt1>, codeGroups<byteLanes, 4, 16, codeDxt3>,
    codeGroups<byteLanes, 4, 16, codeDxt5>};

} // namespace qov::QOV_LEVEL
