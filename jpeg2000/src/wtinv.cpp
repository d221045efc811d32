#include "wtinv.h"

#include "samplememory.h"
#include "wt53inv.h"
#include "wt97inv.h"

namespace jpeg2000 {

namespace {

template <class Agregate, class T>
void transformLevels(const SBTree<T>& src, const ImageCoreC<T, 1u>& dst, const Rect& rect)
{
    if (src.nOfLevels == 0) return copyPlane(src.ll, rect, dst);

    ImageC<T, 1u> lowOfBefore;
    ImageCoreC<T, 1u> ll = src.ll;
    for (unsigned level = src.nOfLevels; level-- > 0;) {
        const Rect levelRect = resolutionRect(rect, level);
        ImageC<T, 1u> joined;
        if (level > 0) joined.Alloc(levelRect.width, levelRect.height);
        const ImageCoreC<T, 1u> output = level > 0 ? joined : dst;
        const SBTriplet<T>& bands = src.triplets[level];
        WTInv<Agregate>().Transform(ll, bands.hl, bands.lh, bands.hh, output, levelRect);
        lowOfBefore.Swap(joined); // and what the level has read is freed
        ll = output;
    }
}

} // namespace

template <class T>
void WT53Inv(const SBTree<T>& src, const ImageCoreC<T, 1u>& dst, const Rect& rect)
{
    transformLevels<WT53InvAgregate<T, ImageRowInput<T, 1u>>>(src, dst, rect);
}

template <class T>
void WT97Inv(const SBTree<T>& src, const ImageCoreC<T, 1u>& dst, const Rect& rect)
{
    transformLevels<WT97InvAgregate<T, ImageRowInput<T, 1u>>>(src, dst, rect);
}

template void WT53Inv<int>(const SBTree<int>&, const ImageCoreC<int, 1u>&, const Rect&);
template void WT97Inv<float>(const SBTree<float>&, const ImageCoreC<float, 1u>&, const Rect&);

} // namespace jpeg2000
