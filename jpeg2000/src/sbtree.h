// The subbands of a tile-component.
#ifndef JPEG2000_SBTREE_H
#define JPEG2000_SBTREE_H

#include "image.h"

namespace jpeg2000 {

// The bands of one decomposition level: horizontal high and vertical low, the reverse, both high.
template <class T>
struct SBTriplet {
    ImageC<T, 1u> hl, lh, hh;
};

template <class T>
struct SBTree {
    unsigned nOfLevels = 0;
    FixedBuffer<SBTriplet<T>> triplets; // index 0 is the finest level
    ImageC<T, 1u> ll;                   // the deepest low band
};

// What is left of a component rectangle after `level` decompositions, 0 to 32 (ITU-T T.800, B-14).
inline Rect resolutionRect(const Rect& rect, unsigned level)
{
    const unsigned x0 = ceilDivPow2(rect.x, level), x1 = ceilDivPow2(rect.x + rect.width, level);
    const unsigned y0 = ceilDivPow2(rect.y, level), y1 = ceilDivPow2(rect.y + rect.height, level);
    return {x0, y0, x1 - x0, y1 - y0};
}

// A band of triplet `index` (T.800, B-15): of that resolution's samples the even or the odd ones along each
// axis.
inline Rect subbandRect(const Rect& rect, unsigned index, bool isHighX, bool isHighY)
{
    const Rect samples = resolutionRect(rect, index);
    const auto half = [](unsigned corner, bool isHigh) {
        return isHigh ? corner >> 1 : static_cast<unsigned>((corner + 1ull) >> 1);
    };
    const unsigned x0 = half(samples.x, isHighX), x1 = half(samples.x + samples.width, isHighX);
    const unsigned y0 = half(samples.y, isHighY), y1 = half(samples.y + samples.height, isHighY);
    return {x0, y0, x1 - x0, y1 - y0};
}

// Gives the bands of a component rectangle their storage, finest level first. What the tree held is freed.
template <class T>
void AllocSBTree(const Rect& rect, unsigned nOfLevels, SBTree<T>& tree)
{
    const auto alloc = [](ImageC<T, 1u>& band, const Rect& size) {
        band.Free();
        band.Alloc(size.width, size.height);
    };
    tree.triplets.Free();
    tree.triplets.Alloc(nOfLevels);
    tree.nOfLevels = nOfLevels;
    for (unsigned i = 0; i < nOfLevels; i++) {
        SBTriplet<T>& bands = tree.triplets[i];
        alloc(bands.hl, subbandRect(rect, i, true, false));
        alloc(bands.lh, subbandRect(rect, i, false, true));
        alloc(bands.hh, subbandRect(rect, i, true, true));
    }
    alloc(tree.ll, resolutionRect(rect, nOfLevels));
}

} // namespace jpeg2000

#endif
