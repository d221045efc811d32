// What precedes the forward wavelets and follows the inverse ones (ITU-T T.800, annex G).
#include "postprocess.h"
#include "preprocess.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

using namespace jpeg2000;

namespace {

// Three planes of 3x2 samples in one image of some step, all samples of a plane alike.
struct Planes {
    ImagePn<int> image;
    ImageCoreC<int, 1u> planes[3];

    template <class T>
    explicit Planes(const T (&values)[3])
    {
        image.Alloc(3, 2, 3);
        for (unsigned i = 0; i < 3; i++) {
            planes[i] = image.plane(i);
            const std::vector<T> row(3, values[i]);
            for (unsigned y = 0; y < 2; y++) std::memcpy(planes[i].row(y), row.data(), 3 * sizeof(T));
        }
    }

    template <class T>
    std::vector<T> plane(unsigned i) const
    {
        std::vector<T> samples(6);
        for (unsigned y = 0; y < 2; y++) std::memcpy(&samples[3 * y], planes[i].row(y), 3 * sizeof(T));
        return samples;
    }
};

constexpr unsigned char isSigned = 128; // of JP2BitsPerComp
constexpr RectSize size{3, 2};

// Values beyond the depth are shifted as any other; planes that are not given stay.
TEST(PreAndPostProcess, ShiftUnsignedSamplesAndTransformThreePlanes)
{
    const struct {
        JP2BitsPerComp depths[3];
        unsigned nOfPlanes;
        bool isMCT;
        int samples[3], reversible[3];
        double irreversible[3];
    } cases[] = {
        {{{7}, {7}, {7}}, 3, false, {0, 255, 628}, {-128, 127, 500}, {-128, 127, 500}},
        {{{7}, {7 | isSigned}, {11}}, 3, false, {1, 2, -952}, {-127, 2, -3000}, {-127, 2, -3000}},
        {{{7}, {7}, {7}},
         3,
         true,
         {10, 20, 41},
         {(10 + 2 * 20 + 41 - 512) >> 2, 21, -10},
         {-118 * 0.299 - 108 * 0.587 - 87 * 0.114, 118 * 0.16875 + 108 * 0.33126 - 87 * 0.5,
          -118 * 0.5 + 108 * 0.41869 + 87 * 0.08131}},
        {{{7 | isSigned}, {7 | isSigned}, {7 | isSigned}},
         3,
         true,
         {4, 8, 4},
         {6, -4, -4},
         {6.348, -1.32508, -1.67476}},
        {{{7}, {7}, {7}}, 2, true, {0, 255, 9}, {-128, 127, 9}, {-128, 127, 9}},
        {{{0}, {30}, {37}},
         3,
         false,
         {1, 5, 5},
         {0, 5 - (1 << 30), 5 - (1 << 30)},
         {0, 5 - double(1 << 30), 5 - double(1 << 30)}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(&one - cases);
        const auto shared = [&](auto process, Planes& planes) {
            process(planes.planes, size, one.depths, one.nOfPlanes, one.isMCT);
        };
        Planes reversible(one.samples), irreversible(one.samples);
        shared(PreProcessWT53<int>, reversible);
        shared(PreProcessWT97_32s32f, irreversible);
        for (unsigned i = 0; i < one.nOfPlanes; i++) {
            EXPECT_EQ(std::vector<int>(6, one.reversible[i]), reversible.plane<int>(i));
            for (const float sample : irreversible.plane<float>(i))
                EXPECT_NEAR(one.irreversible[i], sample, 1e-4 + 1e-7 * std::abs(one.irreversible[i]));
        }
        for (unsigned i = one.nOfPlanes; i < 3; i++)
            EXPECT_EQ(std::vector<int>(6, one.samples[i]), irreversible.plane<int>(i));

        shared(PostProcessWT53<int>, reversible);
        shared(PostProcessWT97_32f32s, irreversible);
        for (unsigned i = 0; i < 3; i++) {
            EXPECT_EQ(std::vector<int>(6, one.samples[i]), reversible.plane<int>(i));
            const int lost = std::abs(one.irreversible[i]) < 1 << 24 ? 0 : 64; // by a float
            for (const int sample : irreversible.plane<int>(i)) EXPECT_NEAR(one.samples[i], sample, lost);
        }
    }
}

TEST(PostProcess, RoundsFloatsToTheNearestNumberAndLimits)
{
    constexpr float infinite = std::numeric_limits<float>::infinity(),
                    nan = std::numeric_limits<float>::quiet_NaN();
    constexpr int most = std::numeric_limits<int>::max();
    const struct {
        JP2BitsPerComp depths[3];
        float src[3];
        int expected[3];
    } cases[] = {
        {{{7}, {7}, {7}}, {-128.4f, 126.6f, 500.f}, {0, 255, 628}},
        {{{7 | isSigned}, {7 | isSigned}, {7}}, {0.5f, 1.5f, -2.5f}, {0, 2, 126}},
        {{{7}, {7}, {7}}, {nan, infinite, -infinite}, {128, most, 128 - most - 1}},
    };
    for (const auto& one : cases) {
        Planes planes(one.src);
        PostProcessWT97_32f32s(planes.planes, size, one.depths, 3, false);
        for (unsigned i = 0; i < 3; i++)
            EXPECT_EQ(std::vector<int>(6, one.expected[i]), planes.plane<int>(i)) << one.src[i];
    }
    const JP2BitsPerComp deep[] = {{30}, {37}, {37}};
    const int src[] = {most, most, most};
    Planes planes(src);
    PostProcessWT53(planes.planes, size, deep, 3, false);
    for (unsigned i = 0; i < 3; i++) EXPECT_EQ(std::vector<int>(6, most), planes.plane<int>(i));
}

} // namespace
