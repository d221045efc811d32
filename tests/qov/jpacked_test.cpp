// Packed 16-bit and 4:2:2 pixels: each conversion is the chain of its steps, exactly and at every level.
#include "planes_testing.h"
#include "qovicolor.h"
#include "qovipacked.h"

#include <cmath>

namespace {

const struct Format {
    PlanesFunction unpacking, packing;
    struct {
        int place, bits;
    } field[3]; // red, green, blue
} formats[] = {
#define FORMAT(name, ...)                                                                                    \
    {                                                                                                        \
        {#name, {2}, {1, 1, 1}, call(qovi##name##ToYCbCr_JPEG_16u8u_C3P3R), 2},                              \
            {#name, {1, 1, 1}, {2}, call(qoviYCbCrTo##name##_JPEG_8u16u_P3C3R), 2},                          \
        {                                                                                                    \
            __VA_ARGS__                                                                                      \
        }                                                                                                    \
    }
    FORMAT(RGB555, {0, 5}, {5, 5}, {10, 5}),
    FORMAT(BGR555, {10, 5}, {5, 5}, {0, 5}),
    FORMAT(RGB565, {0, 5}, {5, 6}, {11, 5}),
    FORMAT(BGR565, {11, 5}, {5, 6}, {0, 5}),
};

const PlanesFunction from422 = {"422ToRGB", {2}, {3}, call(qoviYCbCr422ToRGB_JPEG_8u_C2C3R)};

typedef std::array<Qov8u, 3> Pixel;

template <auto function>
Pixel convertPixel(const Pixel& in)
{
    Pixel out{};
    const Qov8u* const from[3] = {&in[0], &in[1], &in[2]};
    Qov8u* const to[3] = {&out[0], &out[1], &out[2]};
    EXPECT_EQ(qovStsNoErr, function(from, 1, to, 1, QoviSize{1, 1}));
    return out;
}

// Catches swapped ends, a green field of the wrong width, bit 15 that is not ignored, lanes and tails.
TEST(PackedPixels, Unpacked)
{
    for (const Format& format : formats)
        comparePictures(format.unpacking, false, 100, [&](const Arguments& a) {
            for (int y = 0; y < a.roi.height; y++)
                for (int x = 0; x < a.roi.width; x++) {
                    const int word = sample<Qov16u>({2}, a.src, a.srcStep, x, y, 0);
                    Pixel rgb;
                    for (int c = 0; c < 3; c++) {
                        const auto [place, bits] = format.field[c];
                        const int n = word >> place & ((1 << bits) - 1);
                        rgb[size_t(c)] = Qov8u(n << (8 - bits) | n >> (2 * bits - 8));
                    }
                    const Pixel expected = convertPixel<qoviRGBToYCbCr_JPEG_8u_P3R>(rgb);
                    for (int c = 0; c < 3; c++)
                        ASSERT_EQ(expected[size_t(c)], a.dst[c][ptrdiff_t(y) * a.dstStep[0] + x])
                            << "plane " << c << ", word " << std::hex << word;
                }
        });
}

// Catches another rounding than to nearest, and fields that spill over.
TEST(PackedPixels, Packed)
{
    for (const Format& format : formats)
        comparePictures(format.packing, false, 100, [&](const Arguments& a) {
            for (int y = 0; y < a.roi.height; y++)
                for (int x = 0; x < a.roi.width; x++) {
                    const ptrdiff_t at = ptrdiff_t(y) * a.srcStep[0] + x;
                    const Pixel rgb =
                        convertPixel<qoviYCbCrToRGB_JPEG_8u_P3R>({a.src[0][at], a.src[1][at], a.src[2][at]});
                    long expected = 0;
                    for (int c = 0; c < 3; c++) {
                        const auto [place, bits] = format.field[c];
                        expected |= std::lround(rgb[size_t(c)] * ((1 << bits) - 1) / 255.0) << place;
                    }
                    ASSERT_EQ(expected, sample<Qov16u>({2}, a.dst, a.dstStep, x, y, 0)) << x << ", " << y;
                }
        });
}

// Catches the other pixel's chroma, and the odd last column.
TEST(PackedPixels, From422)
{
    comparePictures(from422, false, 150, [](const Arguments& a) {
        for (int y = 0; y < a.roi.height; y++) {
            const Qov8u* row = a.src[0] + ptrdiff_t(y) * a.srcStep[0];
            for (int x = 0; x < a.roi.width; x++) {
                const int pair = x / 2, whole = a.roi.width / 2;
                const Qov8u cr = pair < whole ? row[4 * pair + 3]
                                 : whole > 0  ? row[4 * whole - 1]
                                              : Qov8u(128);
                const Pixel expected =
                    convertPixel<qoviYCbCrToRGB_JPEG_8u_P3R>({row[2 * x], row[4 * pair + 1], cr});
                for (int c = 0; c < 3; c++)
                    ASSERT_EQ(expected[size_t(c)], a.dst[0][ptrdiff_t(y) * a.dstStep[0] + 3 * x + c])
                        << x << ", " << y << ", channel " << c;
            }
        }
    });
}

TEST(PackedPixels, Statuses)
{
    for (const Format& format : formats) {
        checkStatuses(format.unpacking, false);
        checkStatuses(format.packing, false);
    }
    checkStatuses(from422, false);
}

} // namespace
