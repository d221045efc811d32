// The forward wavelet transform of a plane: one level, and the pyramid of levels (ITU-T T.800, F.4). No level
// holds more than a few rows beside its bands.
#ifndef JPEG2000_WTFWD_H
#define JPEG2000_WTFWD_H

#include "sbtree.h"

namespace jpeg2000 {

// One level. Agregate names the column pipeline and the row filter behind it.
template <class Agregate>
class WTFwd {
public:
    using T = typename Agregate::Element;
    using Band = ImageCoreC<T, 1u>;

    // Bands have the sizes that rect's position gives them.
    void Transform(const Band& src, const Rect& rect, const Band& ll, const Band& hl, const Band& lh,
                   const Band& hh)
    {
        if (rect.width == 0 || rect.height == 0) return;
        using Row = typename Agregate::Row;
        const ROpenInterval<unsigned> interval(rect.x, rect.width);
        typename Agregate::ColPipeline columns(src, rect, Row(interval, ll, hl), Row(interval, lh, hh));
        for (unsigned y = 0; y < rect.height; y++) columns.Step();
    }
};

// The whole pyramid into the bands of dst, which AllocSBTree made for the same rectangle. Without levels the
// plane is copied.
template <class T>
void WT53Fwd(const ImageCoreC<T, 1u>& src, const Rect& rect, const SBTree<T>& dst);

template <class T>
void WT97Fwd(const ImageCoreC<T, 1u>& src, const Rect& rect, const SBTree<T>& dst);

} // namespace jpeg2000

#endif
