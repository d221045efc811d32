// Pictures made and scaled, against their definitions.
#include "qovi.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using Floats = std::vector<float>;

TEST(ImageJaehne, SweepsFromTheCentreInAllChannelsAlike)
{
    constexpr int width = 31, height = 20, step = 3 * width + 5;
    std::vector<Qov8u> grey(width * height), colour(step * height, 77);
    ASSERT_EQ(qovStsNoErr, qoviImageJaehne_8u_C1R(grey.data(), width, {width, height}));
    ASSERT_EQ(qovStsNoErr, qoviImageJaehne_8u_C3R(colour.data(), step, {width, height}));
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            const double square = std::pow(x - 15.0, 2) + std::pow(y - 9.5, 2);
            const int expected = int(127.5 * (1 + std::sin(0.5 * 0.785 / height * square)));
            ASSERT_EQ(expected, grey[size_t(y * width + x)]) << x << ',' << y;
            for (int c = 0; c < 3; c++) ASSERT_EQ(expected, colour[size_t(y * step + 3 * x + c)]);
        }
        for (int i = 3 * width; i < step; i++) ASSERT_EQ(77, colour[size_t(y * step + i)]);
    }
}

// A row of one channel, scaled along x.
Floats scaledRow(const Floats& src, QoviRect roi, int width, double factor, int interpolation)
{
    Floats dst(size_t(width), -1);
    EXPECT_EQ(qovStsNoErr, qoviResize_32f_C1R(src.data(), {int(src.size()), 1}, 0, roi, dst.data(), 0,
                                              {width, 1}, factor, 1, interpolation));
    return dst;
}

TEST(Resize, LooksAtCentresHeldAtTheEdges)
{
    const QoviRect all{0, 0, 4, 1};
    const Floats ramp{0, 8, 16, 100};
    EXPECT_EQ(scaledRow(ramp, all, 8, 2, 2), (Floats{0, 2, 6, 10, 14, 37, 79, 100}));
    EXPECT_EQ(scaledRow(ramp, all, 8, 2, 1), (Floats{0, 0, 8, 8, 16, 16, 100, 100}));
    EXPECT_EQ(scaledRow(ramp, all, 2, 0.5, 2), (Floats{4, 58}));
    // What lies outside the region is not looked at.
    EXPECT_EQ(scaledRow({NAN, 8, 16, NAN}, {1, 0, 2, 1}, 5, 2, 2), (Floats{8, 10, 14, 16, 16}));
    EXPECT_EQ(scaledRow(ramp, all, 3, std::numeric_limits<double>::denorm_min(), 2), (Floats{100, 100, 100}));
}

TEST(Resize, CopiesAndConstantPicturesAreExact)
{
    const float huge = std::numeric_limits<float>::max(), third = 1.0f / 3;
    const Floats odd{huge, -huge, third, INFINITY, -0.0f, std::numeric_limits<float>::denorm_min()};
    EXPECT_EQ(scaledRow(odd, {0, 0, 6, 1}, 6, 1, 2), odd);
    EXPECT_EQ(scaledRow({third, third, third}, {0, 0, 3, 1}, 1000, 333.3, 2), Floats(1000, third));
}

TEST(Resize, RowsAndChannelsAreScaledApart)
{
    // 2x2 pixels of three channels, of which the first grows along x, the second along y.
    const Floats src{0, 0, 5, 4, 0, 5, /**/ 0, 8, 5, 4, 8, 5};
    Floats dst(4 * 3 * 3, -1);
    ASSERT_EQ(qovStsNoErr,
              qoviResize_32f_C3R(src.data(), {2, 2}, 24, {0, 0, 2, 2}, dst.data(), 36, {3, 4}, 1.5, 2, 2));
    const float across[] = {0, 2, 4}, down[] = {0, 2, 6, 8};
    for (size_t y = 0; y < 4; y++) {
        for (size_t x = 0; x < 3; x++) {
            const float* pixel = &dst[(y * 3 + x) * 3];
            EXPECT_NEAR(pixel[0], across[x], 1e-6);
            EXPECT_NEAR(pixel[1], down[y], 1e-6);
            EXPECT_EQ(pixel[2], 5);
        }
    }
}

TEST(Resize, ArgumentsAreChecked)
{
    const QoviSize size{2, 2};
    const QoviRect all{0, 0, 2, 2};
    float src[4] = {}, dst[4];
    const auto call = [&](const float* from, QoviRect roi, int step, double factor, int interpolation) {
        return qoviResize_32f_C1R(from, size, step, roi, dst, 8, size, factor, 1, interpolation);
    };
    EXPECT_EQ(call(src, all, 8, 1, 2), qovStsNoErr);
    EXPECT_EQ(call(nullptr, all, 8, 1, 2), qovStsNullPtr);
    for (const QoviRect roi : {QoviRect{1, 0, 2, 2}, {0, -1, 2, 2}, {0, 0, 0, 2}, {1, 0, 0x7fffffff, 1}})
        EXPECT_EQ(call(src, roi, 8, 1, 2), qovStsSize);
    EXPECT_EQ(call(src, all, 7, 1, 2), qovStsStep);
    for (const double factor : {0.0, -1.0, double(NAN)})
        EXPECT_EQ(call(src, all, 8, factor, 2), qovStsBadArg);
    EXPECT_EQ(call(src, all, 8, 1, 0), qovStsBadArg);
    EXPECT_EQ(qoviImageJaehne_8u_C3R(nullptr, 6, size), qovStsNullPtr);
}

} // namespace
