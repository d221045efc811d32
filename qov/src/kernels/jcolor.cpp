#include "jcolor.h"

#include "jcolor256.h"

namespace qov::QOV_LEVEL {
namespace {

// Y0 Cb Y1 Cr from and to a row of each plane.
struct Split422Row {
    const Qov8u* src;
    Qov8u* dst[3];

    inline void pair(ptrdiff_t x) const
    {
        dst[0][x] = src[2 * x];
        dst[1][x / 2] = src[2 * x + 1];
        dst[0][x + 1] = src[2 * x + 2];
        dst[2][x / 2] = src[2 * x + 3];
    }
    // The last column of an odd width has no Cr of its own.
    inline void lastOdd(ptrdiff_t x) const
    {
        dst[0][x] = src[2 * x];
        dst[1][x / 2] = src[2 * x + 1];
        dst[2][x / 2] = x > 0 ? src[2 * x - 1] : Qov8u(128);
    }
#if defined(QOV_SIMD256)
    inline void vector(ptrdiff_t x) const
    {
        static constexpr LaneBytes order([](int p) {
            return p < 8 ? 2 * p : p < 12 ? 4 * p - 31 : 4 * p - 45;
        });
        W chunk[2];
        loadChunks(src + 2 * x, chunk);
        for (W& c : chunk) c = shuffleBytes(c, constant(order)); // of each lane: Y by 8, Cb by 4, Cr by 4
        const W chroma = crossQwords(highDwords(chunk[0], chunk[1]));
        store(dst[0] + x, lowQwords(chunk[0], chunk[1]));
        _mm_storeu_si128((__m128i*)(dst[1] + x / 2), lowLane(chroma));
        _mm_storeu_si128((__m128i*)(dst[2] + x / 2), highLane(chroma));
    }
#endif
};

struct Join422Row {
    const Qov8u* src[3];
    Qov8u* dst;

    inline void pair(ptrdiff_t x) const
    {
        lastOdd(x);
        dst[2 * x + 2] = src[0][x + 1];
        dst[2 * x + 3] = src[2][x / 2];
    }
    inline void lastOdd(ptrdiff_t x) const
    {
        dst[2 * x] = src[0][x];
        dst[2 * x + 1] = src[1][x / 2];
    }
#if defined(QOV_SIMD256)
    inline void vector(ptrdiff_t x) const
    {
        static constexpr LaneBytes order([](int p) { return p / 2 + p % 2 * 8; });
        const __m128i cb = _mm_loadu_si128((const __m128i*)(src[1] + x / 2));
        const __m128i cr = _mm_loadu_si128((const __m128i*)(src[2] + x / 2));
        const W y = load(src[0] + x), chroma = shuffleBytes(crossQwords(lanes(cb, cr)), constant(order));
        const W chunk[2] = {lowBytes(y, chroma), highBytes(y, chroma)};
        storeChunks(dst + 2 * x, chunk);
    }
#endif
};

void split422(const Qov8u* src, ptrdiff_t srcStep, Qov8u* const dst[3], const int dstStep[3], QoviSize roi)
{
    assert(roi.width > 0 && roi.height > 0);
    Split422Row row = {src, {dst[0], dst[1], dst[2]}};
    for (int y = 0; y < roi.height; y++) {
        convertPairs(row, roi.width);
        row.src += srcStep;
        for (int i = 0; i < 3; i++) row.dst[i] += dstStep[i];
    }
}

void join422(const Qov8u* const src[3], const int srcStep[3], Qov8u* dst, ptrdiff_t dstStep, QoviSize roi)
{
    assert(roi.width > 0 && roi.height > 0);
    Join422Row row = {{src[0], src[1], src[2]}, dst};
    for (int y = 0; y < roi.height; y++) {
        convertPairs(row, roi.width);
        for (int i = 0; i < 3; i++) row.src[i] += srcStep[i];
        row.dst += dstStep;
    }
}

} // namespace

const ColorKernels colorKernels = {.rgbToY = splitPicture<RgbToY>,
                                   .bgrToY = splitPicture<BgrToY>,
                                   .rgbToYCbCr = splitPicture<RgbToYCbCr>,
                                   .bgrToYCbCr = splitPicture<BgrToYCbCr>,
                                   .cmykToYcck = splitPicture<CmykToYcck>,
                                   .yCbCrToRgb = joinPicture<YCbCrToRgb>,
                                   .yCbCrToBgr = joinPicture<YCbCrToBgr>,
                                   .ycckToCmyk = joinPicture<YcckToCmyk>,
                                   .planesToY = convertPlanes<RgbToY>,
                                   .planesToYCbCr = convertPlanes<RgbToYCbCr>,
                                   .planesToRgb = convertPlanes<YCbCrToRgb>,
                                   .planesToYcck = convertPlanes<CmykToYcck>,
                                   .planesToCmyk = convertPlanes<YcckToCmyk>,
                                   .split422 = split422,
                                   .join422 = join422};

} // namespace qov::QOV_LEVEL
