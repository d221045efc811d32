// The inverse wavelet pipelines undo the forward ones; and what follows them (ITU-T T.800, annex G).
#include "wavelet_testing.h"

#include "postprocess.h"
#include "preprocess.h"
#include "wt53fwdrow.h"
#include "wt53invrow.h"
#include "wt97fwdrow.h"
#include "wt97inv.h"
#include "wtfwd.h"
#include "wtinv.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <vector>

using namespace jpeg2000;
using namespace jpeg2000::testing;

namespace {

struct Wavelet53 {
    using Sample = int;
    static constexpr int largestInRow = std::numeric_limits<int>::max(); // sums leave 32 bits and come back
    static constexpr double tolerance = 0;
    static constexpr auto forwardRow = WT53FwdRow<int>;
    static constexpr auto row = WT53InvRow<int>;
    static constexpr auto forward = WT53Fwd<int>;
    static constexpr auto inverse = WT53Inv<int>;
};

struct Wavelet97 {
    using Sample = float;
    static constexpr int largestInRow = 4095;
    static constexpr double tolerance = 2e-6; // of the largest sample, for each level
    static constexpr auto forwardRow = WT97FwdRow<float>;
    static constexpr auto row = WT97InvRow<float>;
    static constexpr auto forward = WT97Fwd<float>;
    static constexpr auto inverse = WT97Inv<float>;
};

template <class Wavelet>
class InverseWavelet : public OnBestLevel {
protected:
    using Sample = typename Wavelet::Sample;

    Sample sample(int largest) { return Sample(std::uniform_int_distribution(-largest, largest)(m_random)); }

    // Beside the destination's rows nothing is touched.
    void check(const Rect& rect, unsigned nOfLevels)
    {
        SCOPED_TRACE(::testing::Message() << rect.width << "x" << rect.height << " at " << rect.x << ", "
                                          << rect.y << ", levels " << nOfLevels);
        constexpr int largest = 4095;
        constexpr Sample guard = 12345;
        ImageC<Sample, 1u> src, dst;
        src.Alloc(rect.width, rect.height);
        dst.Alloc(rect.width + 2, rect.height);
        for (unsigned y = 0; y < rect.height; y++) {
            for (unsigned x = 0; x < rect.width; x++) src.row(y)[x] = sample(largest);
            std::fill_n(dst.row(y), rect.width + 2, guard);
        }
        SBTree<Sample> tree;
        AllocSBTree(rect, nOfLevels, tree);
        Wavelet::forward(src, rect, tree);
        Wavelet::inverse(tree, dst.at(1, 0), rect);
        for (unsigned y = 0; y < rect.height; y++) {
            for (unsigned x = 0; x < rect.width; x++)
                ASSERT_NEAR(src.row(y)[x], dst.row(y)[x + 1], Wavelet::tolerance * largest * nOfLevels)
                    << "at " << x << ", " << y;
            ASSERT_EQ(guard, dst.row(y)[0]) << "before row " << y;
            ASSERT_EQ(guard, dst.row(y)[rect.width + 1]) << "behind row " << y;
        }
    }

private:
    std::mt19937 m_random{2000};
};

using Wavelets = ::testing::Types<Wavelet53, Wavelet97>;
TYPED_TEST_SUITE(InverseWavelet, Wavelets);

// Nothing is read beyond either half or written beyond the row: the sanitizer watches buffers that fit.
TYPED_TEST(InverseWavelet, RowsOfEveryLengthAndParity)
{
    using T = typename TypeParam::Sample;
    for (unsigned size = 1; size <= 70; size++)
        for (unsigned origin = 0; origin < 2; origin++) {
            SCOPED_TRACE(::testing::Message() << size << " samples from " << origin);
            std::vector<T> src(size), low((size + 1 - origin) / 2), high((size + origin) / 2), dst(size);
            const int largest = size == 1 ? 4095 : TypeParam::largestInRow; // a single sample is doubled
            for (T& one : src) one = this->sample(largest);
            TypeParam::forwardRow(src.data(), {origin, size}, low.data(), high.data());
            TypeParam::row(low.data(), high.data(), {origin, size}, dst.data());
            for (unsigned i = 0; i < size; i++)
                ASSERT_NEAR(src[i], dst[i], TypeParam::tolerance * TypeParam::largestInRow);
        }
}

// Every schedule of the columns, every cut of the rows into edges and inner part.
TYPED_TEST(InverseWavelet, EverySmallSizeAndParity)
{
    for (unsigned height = 1; height <= 17; height++)
        for (unsigned width = 1; width <= 17; width++)
            for (unsigned parity = 0; parity < 4; parity++) {
                this->check({6 + parity % 2, 10 + parity / 2, width, height}, 1);
                if (this->HasFatalFailure()) return;
            }
}

TYPED_TEST(InverseWavelet, SeveralLevels)
{
    for (const PyramidCase& one : pyramidCases) this->check(one.rect, one.nOfLevels);
}

// Columns of whole numbers, as the base of the pipeline runs them.
template <class T>
class FixedInverseColumns : public OnBestLevel {
protected:
    class Pipeline : public BWT97InvColPipeline<T> {
    public:
        // Row i of src is row i / 2 of its half.
        Pipeline(const std::vector<T>& src, unsigned rowWidth, unsigned origin, std::vector<T>& image)
            : BWT97InvColPipeline<T>({image.data(), unsigned(rowWidth * sizeof(T))}, rowWidth,
                                     unsigned(src.size()) / rowWidth, origin % 2 == 1),
              m_next(src.data()), m_width(rowWidth)
        {
        }
        void NextH() override { put(); }
        void NextL() override { put(); }

    private:
        void put()
        {
            std::copy_n(m_next, m_width, this->DlyRowDst(0));
            m_next += m_width;
        }

        const T* m_next;
        unsigned m_width;
    };

    static void inverseFixed(Signal<T>& x, unsigned origin)
    {
        if (x.size() == 1) {
            if (origin % 2 == 1) x[0] = T(x[0] >> 1);
            return;
        }
        scaleFixed(x, origin, 80621, 53274);
        for (unsigned k = 4; k-- > 0;) liftFixed(x, origin, k, -1);
    }
};

using FixedTypes = ::testing::Types<short, int>;
TYPED_TEST_SUITE(FixedInverseColumns, FixedTypes);

TYPED_TEST(FixedInverseColumns, EqualTheFormulaForEveryHeightAndParity)
{
    using T = TypeParam;
    std::mt19937 random(97);
    constexpr unsigned width = 19;
    for (const int range : {1000, int(std::numeric_limits<T>::max())})
        for (unsigned height = 1; height <= 17; height++)
            for (unsigned origin = 0; origin < 2; origin++) {
                SCOPED_TRACE(::testing::Message()
                             << "height " << height << " from " << origin << ", to " << range);
                std::vector<T> src(width * height), exact(src), dst(src);
                for (T& one : src) one = T(std::uniform_int_distribution(-range, range)(random));
                typename TestFixture::Pipeline columns(src, width, origin, dst);
                for (unsigned y = 0; y < height; y++) columns.Step();

                for (unsigned x = 0; x < width; x++) {
                    Signal<T> column;
                    for (unsigned y = 0; y < height; y++) column.push_back(src[y * width + x]);
                    TestFixture::inverseFixed(column, origin);
                    for (unsigned y = 0; y < height; y++) exact[y * width + x] = column[y];
                }
                ASSERT_EQ(exact, dst);
            }
}

constexpr float infinite = std::numeric_limits<float>::infinity(),
                nan = std::numeric_limits<float>::quiet_NaN();
constexpr int most = std::numeric_limits<int>::max();

template <class T>
struct PostCase {
    JP2BitsPerComp depths[3];
    unsigned nOfPlanes;
    bool isMCT;
    T src[3];
    int expected[3];
};

// Values beyond the depth stay as they are; planes that are not given too.
TEST(PostProcess, TransformsThreePlanesAndShiftsUnsignedSamples)
{
    const PostCase<int> cases[] = {
        {{{7}, {7}, {7}}, 3, false, {-128, 127, 500}, {0, 255, 628}},
        {{{7}, {7 | isSigned}, {11}}, 3, false, {-127, 2, -3000}, {1, 2, -952}},
        {{{7}, {7}, {7}}, 3, true, {-106, 21, -10}, {10, 20, 41}},
        {{{7 | isSigned}, {7 | isSigned}, {7 | isSigned}}, 3, true, {6, -4, -4}, {4, 8, 4}},
        {{{7}, {7}, {7}}, 2, true, {-128, 127, 9}, {0, 255, 9}},
        {{{0}, {30}, {37}}, 3, false, {0, 5 - (1 << 30), most}, {1, 5, most}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(std::distance(cases, &one));
        Planes planes(one.src);
        PostProcessWT53(planes.planes, {3, 2}, one.depths, one.nOfPlanes, one.isMCT);
        for (unsigned i = 0; i < 3; i++)
            EXPECT_EQ(std::vector<int>(6, one.expected[i]), planes.plane<int>(i));
    }
}

TEST(PostProcess, RoundsFloatsToTheNearestNumber)
{
    const PostCase<float> cases[] = {
        {{{7}, {7}, {7}}, 3, false, {-128.4f, 126.6f, 500.f}, {0, 255, 628}},
        {{{7 | isSigned}, {7 | isSigned}, {7}}, 3, false, {0.5f, 1.5f, -2.5f}, {0, 2, 126}},
        {{{7}, {7}, {7}}, 3, false, {nan, infinite, -infinite}, {128, most, 128 - most - 1}},
        {{{7}, {7}, {7}}, 3, true, {-108.6f, 12.2f, -6.7f}, {10, 20, 41}},
        {{{7 | isSigned}, {7 | isSigned}, {7 | isSigned}}, 3, true, {6.348f, -1.325f, -1.675f}, {4, 8, 4}},
        {{{7}, {7 | isSigned}, {7}}, 2, true, {1.f, 2.f, 0.f}, {129, 2, 0}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(std::distance(cases, &one));
        Planes planes(one.src);
        PostProcessWT97_32f32s(planes.planes, {3, 2}, one.depths, one.nOfPlanes, one.isMCT);
        for (unsigned i = 0; i < 3; i++)
            EXPECT_EQ(std::vector<int>(6, one.expected[i]), planes.plane<int>(i));
    }
}

} // namespace
