#include "wtfwd.h"

#include "samplememory.h"
#include "wt53fwd.h"
#include "wt97fwd.h"

namespace jpeg2000 {

namespace {

template <class Agregate, class T>
void transformLevels(const ImageCoreC<T, 1u>& src, const Rect& rect, const SBTree<T>& dst)
{
    if (dst.nOfLevels == 0) return copyPlane(src, rect, dst.ll);

    ImageC<T, 1u> lowOfBefore;
    ImageCoreC<T, 1u> input = src;
    for (unsigned level = 0; level < dst.nOfLevels; level++) {
        const bool isLast = level + 1 == dst.nOfLevels;
        const Rect lowRect = resolutionRect(rect, level + 1);
        ImageC<T, 1u> low;
        if (!isLast) low.Alloc(lowRect.width, lowRect.height);
        const ImageCoreC<T, 1u> ll = isLast ? dst.ll : low;
        const SBTriplet<T>& bands = dst.triplets[level];
        WTFwd<Agregate>().Transform(input, resolutionRect(rect, level), ll, bands.hl, bands.lh, bands.hh);
        lowOfBefore.Swap(low); // and what the level has read is freed
        input = ll;
    }
}

} // namespace

template <class T>
void WT53Fwd(const ImageCoreC<T, 1u>& src, const Rect& rect, const SBTree<T>& dst)
{
    transformLevels<WT53FwdAgregate<T, ImageRowOutput<T, 1u>>>(src, rect, dst);
}

template <class T>
void WT97Fwd(const ImageCoreC<T, 1u>& src, const Rect& rect, const SBTree<T>& dst)
{
    transformLevels<WT97FwdAgregate<T, ImageRowOutput<T, 1u>>>(src, rect, dst);
}

template void WT53Fwd<int>(const ImageCoreC<int, 1u>&, const Rect&, const SBTree<int>&);
template void WT97Fwd<float>(const ImageCoreC<float, 1u>&, const Rect&, const SBTree<float>&);

} // namespace jpeg2000
