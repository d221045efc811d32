#include "jpacked.h"

#include "packed16.h"

namespace qov::QOV_LEVEL {
namespace {

template <class Format>
void packedToYCbCr(const Qov16u* src, ptrdiff_t srcStep, Qov8u* const dst[], ptrdiff_t dstStep, QoviSize roi)
{
    typedef PackedRow<const Qov16u, Format> Source;
    convertPicture<RgbToYCbCr>(Source{src}, srcStep, PlanarRow<Qov8u, 3>(dst), dstStep, roi);
}

template <class Format>
void yCbCrToPacked(const Qov8u* const src[], ptrdiff_t srcStep, Qov16u* dst, ptrdiff_t dstStep, QoviSize roi)
{
    typedef PackedRow<Qov16u, Format> Destination;
    convertPicture<YCbCrToRgb>(PlanarRow<const Qov8u, 3>(src), srcStep, Destination{dst}, dstStep, roi);
}

// A row of Y0 Cb Y1 Cr to one of R G B.
struct Rgb422Row {
    const Qov8u* src;
    Qov8u* dst;

    inline void one(ptrdiff_t x, Qov8u cb, Qov8u cr) const
    {
        const Qov8u ycc[3] = {src[2 * x], cb, cr};
        Qov8u rgb[3];
        YCbCrToRgb::convert(ycc, rgb);
        for (int i = 0; i < 3; i++) dst[3 * x + i] = rgb[i];
    }
    inline void pair(ptrdiff_t x) const
    {
        one(x, src[2 * x + 1], src[2 * x + 3]);
        one(x + 1, src[2 * x + 1], src[2 * x + 3]);
    }
    // The last column of an odd width has no Cr of its own.
    inline void lastOdd(ptrdiff_t x) const { one(x, src[2 * x + 1], x > 0 ? src[2 * x - 1] : Qov8u(128)); }
#if defined(QOV_SIMD256)
    inline void vector(ptrdiff_t x) const
    {
        // Of 8 pixels: Y, then each Cb twice; each Cr twice.
        static constexpr LaneBytes luma([](int p) { return p < 8 ? 2 * p : (p - 8) / 2 * 4 + 1; });
        static constexpr LaneBytes red([](int p) { return p % 8 / 2 * 4 + 3; });
        W chunk[2], ycc[3], rgb[3];
        loadChunks(src + 2 * x, chunk);
        const W low = shuffleBytes(chunk[0], constant(luma)), high = shuffleBytes(chunk[1], constant(luma));
        ycc[0] = lowQwords(low, high);
        ycc[1] = highQwords(low, high);
        ycc[2] = lowQwords(shuffleBytes(chunk[0], constant(red)), shuffleBytes(chunk[1], constant(red)));
        YCbCrToRgb::convert(ycc, rgb);
        joinChannels(rgb, dst + 3 * x);
    }
#endif
};

void yCbCr422ToRgb(const Qov8u* src, ptrdiff_t srcStep, Qov8u* dst, ptrdiff_t dstStep, QoviSize roi)
{
    assert(roi.width > 0 && roi.height > 0);
    Rgb422Row row = {src, dst};
    for (int y = 0; y < roi.height; y++) {
        convertPairs(row, roi.width);
        row.src += srcStep;
        row.dst += dstStep;
    }
}

} // namespace

const PackedKernels packedKernels = {.rgb555ToYCbCr = packedToYCbCr<Rgb555>,
                                     .bgr555ToYCbCr = packedToYCbCr<Bgr555>,
                                     .rgb565ToYCbCr = packedToYCbCr<Rgb565>,
                                     .bgr565ToYCbCr = packedToYCbCr<Bgr565>,
                                     .yCbCrToRgb555 = yCbCrToPacked<Rgb555>,
                                     .yCbCrToBgr555 = yCbCrToPacked<Bgr555>,
                                     .yCbCrToRgb565 = yCbCrToPacked<Rgb565>,
                                     .yCbCrToBgr565 = yCbCrToPacked<Bgr565>,
                                     .yCbCr422ToRgb = yCbCr422ToRgb};

} // namespace qov::QOV_LEVEL
