// Colour conversion against the formulas in double precision, and equal at every level; 4:2:2 pixels.
#include "planes_testing.h"
#include "qovicolor.h"

#include <algorithm>
#include <cmath>

namespace {

typedef std::array<double, 4> Colour;

Colour toYCbCr(const Colour& c)
{
    const auto [r, g, b, k] = c;
    return {0.299 * r + 0.587 * g + 0.114 * b, -0.168736 * r - 0.331264 * g + 0.5 * b + 128,
            0.5 * r - 0.418688 * g - 0.081312 * b + 128, k};
}

Colour toRgb(const Colour& c)
{
    const auto [y, cb, cr, k] = c;
    return {y + 1.402 * (cr - 128), y - 0.344136 * (cb - 128) - 0.714136 * (cr - 128), y + 1.772 * (cb - 128),
            k};
}

Colour swapped(const Colour& c)
{
    return {c[2], c[1], c[0], c[3]};
}

Colour complement(const Colour& c)
{
    return {255 - c[0], 255 - c[1], 255 - c[2], c[3]};
}

const struct {
    PlanesFunction function;
    Colour (*real)(const Colour&);
} conversions[] = {
    {{"RGBToY", {3}, {1}, call(qoviRGBToY_JPEG_8u_C3C1R)}, toYCbCr},
    {{"BGRToY", {3}, {1}, call(qoviBGRToY_JPEG_8u_C3C1R)},
     [](const Colour& c) { return toYCbCr(swapped(c)); }},
    {{"RGBToY P3", {1, 1, 1}, {1}, call(qoviRGBToY_JPEG_8u_P3C1R)}, toYCbCr},
    {{"RGBToYCbCr P3", {1, 1, 1}, {1, 1, 1}, call(qoviRGBToYCbCr_JPEG_8u_P3R)}, toYCbCr},
    {{"YCbCrToRGB P3", {1, 1, 1}, {1, 1, 1}, call(qoviYCbCrToRGB_JPEG_8u_P3R)}, toRgb},
    {{"CMYKToYCCK P4", {1, 1, 1, 1}, {1, 1, 1, 1}, call(qoviCMYKToYCCK_JPEG_8u_P4R)},
     [](const Colour& c) { return toYCbCr(complement(c)); }},
    {{"YCCKToCMYK P4", {1, 1, 1, 1}, {1, 1, 1, 1}, call(qoviYCCKToCMYK_JPEG_8u_P4R)},
     [](const Colour& c) { return complement(toRgb(c)); }},
    {{"RGBToYCbCr", {3}, {1, 1, 1}, call(qoviRGBToYCbCr_JPEG_8u_C3P3R)}, toYCbCr},
    {{"BGRToYCbCr", {3}, {1, 1, 1}, call(qoviBGRToYCbCr_JPEG_8u_C3P3R)},
     [](const Colour& c) { return toYCbCr(swapped(c)); }},
    {{"YCbCrToRGB", {1, 1, 1}, {3}, call(qoviYCbCrToRGB_JPEG_8u_P3C3R)}, toRgb},
    {{"YCbCrToBGR", {1, 1, 1}, {3}, call(qoviYCbCrToBGR_JPEG_8u_P3C3R)},
     [](const Colour& c) { return swapped(toRgb(c)); }},
    {{"CMYKToYCCK", {4}, {1, 1, 1, 1}, call(qoviCMYKToYCCK_JPEG_8u_C4P4R)},
     [](const Colour& c) { return toYCbCr(complement(c)); }},
    {{"YCCKToCMYK", {1, 1, 1, 1}, {4}, call(qoviYCCKToCMYK_JPEG_8u_P4C4R)},
     [](const Colour& c) { return complement(toRgb(c)); }},
};

const PlanesFunction from422 = {"422 C2P3", {2}, {1, half, half}, [](const Arguments& a) {
                                    return qoviYCbCr422_8u_C2P3R(a.src[0], a.srcStep[0], a.dst, a.dstStep,
                                                                 a.roi);
                                }};
const PlanesFunction to422 = {"422 P3C2", {1, half, half}, {2}, [](const Arguments& a) {
                                  return qoviYCbCr422_8u_P3C2R(a.src, a.srcStep, a.dst[0], a.dstStep[0],
                                                               a.roi);
                              }};

double limited(double v)
{
    return std::clamp(v, 0.0, 255.0);
}

int channels(const Layout& layout)
{
    return layout.size() == 1 ? layout[0] : int(layout.size());
}

// Catches wrong channels, lanes and tails, reads and writes beside the rows, a level that rounds otherwise.
TEST(JpegColour, AnyPicture)
{
    for (const auto& [f, real] : conversions)
        comparePictures(f, false, 150, [&f = f, real = real](const Arguments& a) {
            for (int y = 0; y < a.roi.height; y++)
                for (int x = 0; x < a.roi.width; x++) {
                    Colour in{};
                    for (int c = 0; c < channels(f.src); c++)
                        in[c] = sample(f.src, a.src, a.srcStep, x, y, c);
                    const Colour out = real(in);
                    for (int c = 0; c < channels(f.dst); c++)
                        ASSERT_NEAR(limited(out[c]), sample(f.dst, a.dst, a.dstStep, x, y, c), 1)
                            << "channel " << c << " of pixel " << x << ", " << y;
                }
        });
}

// The cube in steps of 3, greys among it: a coefficient that is a little wrong shows in the share of values
// that are not the nearest.
TEST(JpegColour, NearestInNearlyAllTriples)
{
    constexpr int side = 86, count = side * side * side;
    std::vector<Qov8u> in(3 * count), out(3 * count);
    for (int i = 0; i < count; i++) {
        in[i] = Qov8u(i / side / side * 3);
        in[count + i] = Qov8u(i / side % side * 3);
        in[2 * count + i] = Qov8u(i % side * 3);
    }
    Arguments a{};
    a.roi = {count, 1};
    for (int c = 0; c < 3; c++) {
        a.src[c] = &in[c * count];
        a.dst[c] = &out[c * count];
    }
    forEachLevel([&] {
        for (const auto& [f, real] : conversions) {
            if (f.src.size() != 3 || f.dst.size() != 3) continue;
            ASSERT_EQ(qovStsNoErr, f.call(a));
            int far[3] = {};
            for (int i = 0; i < count; i++) {
                const Colour exact = real({double(in[i]), double(in[count + i]), double(in[2 * count + i])});
                for (int c = 0; c < 3; c++) {
                    const double error = std::abs(limited(exact[c]) - out[c * count + i]);
                    ASSERT_LE(error, 1) << f.name << ", channel " << c << " of " << i;
                    far[c] += error > 0.5 + 1e-9; // either neighbour of a tie will do
                }
            }
            for (int c = 0; c < 3; c++) EXPECT_LE(far[c], count / 1000) << f.name << ", channel " << c;
            for (int grey = 0; real == toYCbCr && grey < side; grey++) {
                const int i = grey * (side * side + side + 1);
                ASSERT_EQ(grey * 3, out[i]);
                ASSERT_EQ(128, out[count + i]);
                ASSERT_EQ(128, out[2 * count + i]);
            }
        }
    });
}

// Catches a mix-up of the byte order or of the planes' steps, and the odd last column.
TEST(YCbCr422, ToPlanes)
{
    comparePictures(from422, true, 150, [](const Arguments& a) {
        for (int y = 0; y < a.roi.height; y++)
            for (int x = 0; x < a.roi.width; x++) {
                const Qov8u* row = a.src[0] + ptrdiff_t(y) * a.srcStep[0];
                const int pair = x / 2, whole = a.roi.width / 2;
                const int cr = pair < whole ? row[4 * pair + 3] : whole > 0 ? row[4 * whole - 1] : 128;
                const int expected[3] = {row[2 * x], row[4 * pair + 1], cr};
                for (int c = 0; c < 3; c++)
                    ASSERT_EQ(expected[c], a.dst[c][ptrdiff_t(y) * a.dstStep[c] + (c == 0 ? x : pair)])
                        << "plane " << c << ", " << x << ", " << y;
            }
    });
}

TEST(YCbCr422, FromPlanes)
{
    comparePictures(to422, true, 150, [](const Arguments& a) {
        for (int y = 0; y < a.roi.height; y++)
            for (int x = 0; x < a.roi.width; x++) {
                const Qov8u* pixel = a.dst[0] + ptrdiff_t(y) * a.dstStep[0] + 2 * x;
                const int c = 1 + x % 2;
                ASSERT_EQ(a.src[0][ptrdiff_t(y) * a.srcStep[0] + x], pixel[0]) << x << ", " << y;
                ASSERT_EQ(a.src[c][ptrdiff_t(y) * a.srcStep[c] + x / 2], pixel[1]) << x << ", " << y;
            }
    });
}

TEST(JpegColour, Statuses)
{
    for (const auto& conversion : conversions) checkStatuses(conversion.function, false);
    checkStatuses(from422, true);
    checkStatuses(to422, true);

    // The array of planes or of steps itself.
    Qov8u bytes[64] = {};
    Qov8u* const dst[3] = {bytes, bytes, bytes};
    const QoviSize roi = {1, 1};
    EXPECT_EQ(qovStsNullPtr, qoviRGBToYCbCr_JPEG_8u_C3P3R(bytes, 3, nullptr, 1, roi));
    EXPECT_EQ(qovStsNullPtr, qoviYCbCrToRGB_JPEG_8u_P3C3R(nullptr, 1, bytes, 3, roi));
    EXPECT_EQ(qovStsNullPtr, qoviYCbCr422_8u_C2P3R(bytes, 2, dst, nullptr, roi));
    EXPECT_EQ(qovStsNullPtr, qoviYCbCr422_8u_P3C2R(dst, nullptr, bytes, 2, roi));
}

} // namespace
