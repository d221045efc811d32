#include "resize.h"
#include "decodingbudget.h"

#include "qovs.h"

namespace jpeg2000 {

namespace {

bool isSame(const RectSize& a, const RectSize& b)
{
    return a.width == b.width && a.height == b.height;
}

void copy(const ImageComponent& src, const ImageComponent& dst)
{
    // A sample is two of 16 bits.
    qoviCopy_16s_C1R(reinterpret_cast<const Qov16s*>(src.data), static_cast<int>(src.step),
                     reinterpret_cast<Qov16s*>(dst.data), static_cast<int>(dst.step),
                     RectSize{src.size.width * 2, src.size.height});
}

void clear(const ImageComponent& plane)
{
    for (unsigned y = 0; y < plane.size.height; y++) Zero(plane.row(y), plane.size.width);
}

// The destination holds floats until its last conversion: its memory is reached through the library alone.
void scale(const ImageComponent& src, const ImageComponent& dst, int interpolation)
{
    ImageC<float, 1> floats;
    floats.Alloc(src.size.width, src.size.height);
    for (unsigned y = 0; y < src.size.height; y++)
        qovsConvert_32s32f_Sfs(src.row(y), floats.row(y), static_cast<int>(src.size.width), 0);

    const QoviSize from = src.size, to = dst.size;
    const auto scaled = reinterpret_cast<Qov32f*>(dst.data);
    const int step = static_cast<int>(dst.step);
    qoviResize_32f_C1R(floats.data, from, static_cast<int>(floats.step), {0, 0, from.width, from.height},
                       scaled, step, to, double{1} * to.width / from.width,
                       double{1} * to.height / from.height, interpolation);
    for (unsigned y = 0; y < dst.size.height; y++)
        qovsConvert_32f32s_Sfs(reinterpret_cast<const Qov32f*>(dst.row(y)), dst.row(y), to.width, qovRndNear,
                               0);
}

} // namespace

void Resize(const ImageComponent& src, const ImageComponent& dst, int interpolation)
{
    if (!dst.data) return;
    if (!src.data) return clear(dst);
    if (isSame(src.size, dst.size)) return copy(src, dst);
    scale(src, dst, interpolation);
}

void ResizeUp(ImageComponents& planes, const RectSize& size, int interpolation)
{
    DecodingBudget budget;
    for (unsigned i = 0; i < planes.size; i++) budget.Take(planeNOfBytes(size));
    for (unsigned i = 0; i < planes.size; i++) {
        if (isSame(planes[i].size, size)) continue;
        ImageComponent larger;
        larger.Alloc(size.width, size.height);
        Resize(planes[i], larger, interpolation);
        planes[i].Swap(larger);
    }
}

bool isResizeNeeded(const ImageComponents& planes, const RectSize& size)
{
    for (unsigned i = 0; i < planes.size; i++)
        if (!isSame(planes[i].size, size)) return true;
    return false;
}

} // namespace jpeg2000
