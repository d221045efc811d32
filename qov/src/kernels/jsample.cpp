#include "jsample.h"
#include "samplerow.h"

namespace qov::QOV_LEVEL {
namespace {

void boxH2V1(const Qov8u* src, ptrdiff_t n, Qov8u* dst)
{
    boxRow(BoxOfOneRow{src}, n, dst);
}

void boxH2V2(const Qov8u* src1, const Qov8u* src2, ptrdiff_t n, Qov8u* dst)
{
    boxRow(BoxOfTwoRows{src1, src2}, n, dst);
}

// Beyond the ends the samples go on as they ended.
template <class Triangle>
inline void triangleRow(Triangle in, ptrdiff_t n, Qov8u* dst)
{
    assert(n > 0);
    const ptrdiff_t last = n - 1;
    dst[0] = evenSample(in, 0, 0);
    dst[2 * last + 1] = oddSample(in, last, last);
#if defined(QOV_SIMD256)
    // Of samples 1 to last - 1. The first and the last vector make some of their neighbours' samples again,
    // so that the others lie as the rows do.
    if (last > vectorSamples) {
        dst[1] = oddSample(in, 0, 1);
        dst[2 * last] = evenSample(in, last, last - 1);
        triangleStep(in, 1, dst);
        for (ptrdiff_t x = vectorSamples; x + vectorSamples < last; x += vectorSamples)
            triangleStep(in, x, dst);
        triangleStep(in, last - vectorSamples, dst);
        return;
    }
#endif
    for (ptrdiff_t x = 0; x < last; x++) {
        dst[2 * x + 1] = oddSample(in, x, x + 1);
        dst[2 * x + 2] = evenSample(in, x + 1, x);
    }
}

void triangleH2V1(const Qov8u* src, ptrdiff_t n, Qov8u* dst)
{
    triangleRow(TriangleOfOneRow{src}, n, dst);
}

void triangleH2V2(const Qov8u* nearRow, const Qov8u* farRow, ptrdiff_t n, Qov8u* dst)
{
    triangleRow(TriangleOfTwoRows{nearRow, farRow}, n, dst);
}

} // namespace

const SampleKernels sampleKernels = {boxH2V1, boxH2V2, triangleH2V1, triangleH2V2};

} // namespace qov::QOV_LEVEL
