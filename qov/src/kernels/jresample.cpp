#include "jresample.h"
#include "samplerow.h"

namespace qov::QOV_LEVEL {
namespace {

void downH2V1(const Qov8u* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize dstSize)
{
    for (ptrdiff_t y = 0; y < dstSize.height; y++)
        boxRow(BoxOfOneRow{src + y * srcStep}, dstSize.width, dst + y * dstStep);
}

void downH2V2(const Qov8u* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize dstSize)
{
    for (ptrdiff_t y = 0; y < dstSize.height; y++) {
        const Qov8u* row = src + 2 * y * srcStep;
        boxRow(BoxOfTwoRows{row, row + srcStep}, dstSize.width, dst + y * dstStep);
    }
}

// A row between two samples of border. A width that is odd ends with a sample of the border itself.
template <class Triangle>
inline void borderedRow(Triangle in, ptrdiff_t width, Qov8u* dst)
{
    const ptrdiff_t n = width / 2;
    assert(n > 0);
    if (width & 1) dst[2 * n] = evenSample(in, n, n - 1);
#if defined(QOV_SIMD256)
    if (n >= vectorSamples) {
        ptrdiff_t x = 0;
        for (; x <= n - vectorSamples; x += vectorSamples) triangleStep(in, x, dst);
        if (x < n) triangleStep(in, n - vectorSamples, dst); // makes some samples again
        return;
    }
#endif
    for (ptrdiff_t x = 0; x < n; x++) {
        dst[2 * x] = evenSample(in, x, x - 1);
        dst[2 * x + 1] = oddSample(in, x, x + 1);
    }
}

void upH2V1(const Qov8u* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize dstSize)
{
    for (ptrdiff_t y = 0; y < dstSize.height; y++)
        borderedRow(TriangleOfOneRow{src + y * srcStep}, dstSize.width, dst + y * dstStep);
}

// Of the rows out an even one has the row above as the far one, an odd one the row below.
void upH2V2(const Qov8u* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize dstSize)
{
    for (ptrdiff_t y = 0; y < dstSize.height; y++) {
        const Qov8u* nearRow = src + (y >> 1) * srcStep;
        const Qov8u* farRow = y & 1 ? nearRow + srcStep : nearRow - srcStep;
        borderedRow(TriangleOfTwoRows{nearRow, farRow}, dstSize.width, dst + y * dstStep);
    }
}

} // namespace

const ResampleKernels resampleKernels = {downH2V1, downH2V2, upH2V1, upH2V2};

} // namespace qov::QOV_LEVEL
