// The inverse wavelet transform of a plane: one level, and the pyramid of levels (ITU-T T.800, F.3). Rows are
// joined first and columns after, in the destination itself.
#ifndef JPEG2000_WTINV_H
#define JPEG2000_WTINV_H

#include "sbtree.h"

namespace jpeg2000 {

// One level. Agregate names the column pipeline and the row filter before it.
template <class Agregate>
class WTInv {
public:
    using T = typename Agregate::Element;
    using Band = ImageCoreC<T, 1u>;

    // Bands have the sizes that rect's position gives them.
    void Transform(const Band& ll, const Band& hl, const Band& lh, const Band& hh, const Band& dst,
                   const Rect& rect)
    {
        if (rect.width == 0 || rect.height == 0) return;
        using Row = typename Agregate::Row;
        const ROpenInterval<unsigned> interval(rect.x, rect.width);
        typename Agregate::ColPipeline columns(Row(interval, ll, hl), Row(interval, lh, hh), dst, rect);
        for (unsigned y = 0; y < rect.height; y++) columns.Step();
    }
};

// The whole pyramid from the bands of src, which have the sizes that AllocSBTree gives them for the same
// rectangle. Without levels the low band is copied.
template <class T>
void WT53Inv(const SBTree<T>& src, const ImageCoreC<T, 1u>& dst, const Rect& rect);

template <class T>
void WT97Inv(const SBTree<T>& src, const ImageCoreC<T, 1u>& dst, const Rect& rect);

} // namespace jpeg2000

#endif
