// The forward wavelet pipelines against the formulas of ITU-T T.800, annex F, applied to whole columns and
// rows, and what precedes them (annex G).
#include "wavelet_testing.h"

#include "preprocess.h"
#include "wt53fwdrow.h"
#include "wt97fwd.h"
#include "wtfwd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <random>
#include <string>
#include <vector>

using namespace jpeg2000;
using namespace jpeg2000::testing;

namespace {

// Applies `step` to the samples of one parity: target, neighbour before, neighbour behind.
template <class T, class Step>
void liftEach(Signal<T>& x, unsigned origin, unsigned parity, Step step)
{
    Signal<T> lifted = x;
    for (size_t i = 0; i < x.size(); i++)
        if ((origin + i) % 2 == parity)
            lifted[i] = step(x[i], mirrored(x, long(i) - 1), mirrored(x, long(i) + 1));
    x = lifted;
}

// Transforms a signal in place; low samples end at even positions.
void forward(Signal<int>& x, unsigned origin)
{
    if (x.size() == 1) {
        if (origin % 2 == 1) x[0] *= 2;
        return;
    }
    liftEach(x, origin, 1, [](int t, int a, int b) { return t - ((a + b) >> 1); });
    liftEach(x, origin, 0, [](int t, int a, int b) { return t + ((a + b + 2) >> 2); });
}

void forward(Signal<double>& x, unsigned origin)
{
    if (x.size() == 1) {
        if (origin % 2 == 1) x[0] *= 2;
        return;
    }
    const double steps[] = {-1.586134342059924, -0.052980118572961, 0.882911075530934, 0.443506852043971};
    for (unsigned k = 0; k < 4; k++)
        liftEach(x, origin, 1 - k % 2, [&](double t, double a, double b) { return t + steps[k] * (a + b); });
    const double K = 1.230174104914001;
    for (size_t i = 0; i < x.size(); i++) (origin + i) % 2 == 1 ? x[i] *= K : x[i] /= K;
}

template <class T>
struct Plane {
    Rect rect;
    std::vector<T> samples;

    explicit Plane(const Rect& r) : rect(r), samples(size_t{r.width} * r.height) {}
    T& at(unsigned x, unsigned y) { return samples[size_t{y} * rect.width + x]; }
};

template <class T>
void filterColumnsAndRows(Plane<T>& plane)
{
    Signal<T> line;
    for (unsigned x = 0; x < plane.rect.width; x++) {
        line.clear();
        for (unsigned y = 0; y < plane.rect.height; y++) line.push_back(plane.at(x, y));
        forward(line, plane.rect.y);
        for (unsigned y = 0; y < plane.rect.height; y++) plane.at(x, y) = line[y];
    }
    for (unsigned y = 0; y < plane.rect.height; y++) {
        const auto row = plane.samples.begin() + long(y) * plane.rect.width;
        line.assign(row, row + plane.rect.width);
        forward(line, plane.rect.x);
        std::copy(line.begin(), line.end(), row);
    }
}

// The samples of one parity along each axis, in their place on the halved grid.
template <class T>
Plane<T> every2nd(Plane<T>& plane, unsigned parityX, unsigned parityY)
{
    const auto firstOf = [](unsigned origin, unsigned parity) { return (origin + parity) % 2; };
    const unsigned x0 = firstOf(plane.rect.x, parityX), y0 = firstOf(plane.rect.y, parityY);
    const auto count = [](unsigned size, unsigned first) {
        return size > first ? (size - first + 1) / 2 : 0;
    };
    Plane<T> half({(plane.rect.x + x0) / 2, (plane.rect.y + y0) / 2, count(plane.rect.width, x0),
                   count(plane.rect.height, y0)});
    for (unsigned y = 0; y < half.rect.height; y++)
        for (unsigned x = 0; x < half.rect.width; x++) half.at(x, y) = plane.at(x0 + 2 * x, y0 + 2 * y);
    return half;
}

struct Wavelet53 {
    using Sample = int;
    using Exact = int;
    static constexpr double tolerance = 0;
    static constexpr auto row = WT53FwdRow<int>;
    static constexpr auto pyramid = WT53Fwd<int>;
};

struct Wavelet97 {
    using Sample = float;
    using Exact = double;
    static constexpr double tolerance = 2e-6; // of the largest sample, for each level
    static constexpr auto row = WT97FwdRow<float>;
    static constexpr auto pyramid = WT97Fwd<float>;
};

constexpr int largest = 4095;

template <class Wavelet>
class ForwardWavelet : public OnBestLevel {
protected:
    using Sample = typename Wavelet::Sample;
    using Exact = typename Wavelet::Exact;

    int sample() { return std::uniform_int_distribution(-largest, largest)(m_random); }

    void expectBand(const char* name, unsigned level, const ImageC<Sample, 1u>& band, Plane<Exact> exact)
    {
        SCOPED_TRACE(std::string(name) + " after " + std::to_string(level));
        ASSERT_EQ(exact.rect.width, band.size.width);
        ASSERT_EQ(exact.rect.height, band.size.height);
        for (unsigned y = 0; y < exact.rect.height; y++)
            for (unsigned x = 0; x < exact.rect.width; x++)
                ASSERT_NEAR(exact.at(x, y), band.row(y)[x], Wavelet::tolerance * largest * level)
                    << "at " << x << ", " << y;
    }

    void check(const Rect& rect, unsigned nOfLevels)
    {
        SCOPED_TRACE(::testing::Message() << rect.width << "x" << rect.height << " at " << rect.x << ", "
                                          << rect.y << ", levels " << nOfLevels);
        Plane<Exact> exact(rect);
        ImageC<Sample, 1u> src;
        src.Alloc(rect.width, rect.height);
        for (unsigned y = 0; y < rect.height; y++)
            for (unsigned x = 0; x < rect.width; x++) src.row(y)[x] = Sample(exact.at(x, y) = sample());

        SBTree<Sample> tree;
        AllocSBTree(rect, nOfLevels, tree);
        Wavelet::pyramid(src, rect, tree);
        for (unsigned level = 0; level < nOfLevels && !HasFatalFailure(); level++) {
            const SBTriplet<Sample>& bands = tree.triplets[level];
            filterColumnsAndRows(exact);
            expectBand("HL", level + 1, bands.hl, every2nd(exact, 1, 0));
            expectBand("LH", level + 1, bands.lh, every2nd(exact, 0, 1));
            expectBand("HH", level + 1, bands.hh, every2nd(exact, 1, 1));
            exact = every2nd(exact, 0, 0);
        }
        expectBand("LL", nOfLevels, tree.ll, exact);
    }

private:
    std::mt19937 m_random{2000};
};

using Wavelets = ::testing::Types<Wavelet53, Wavelet97>;
TYPED_TEST_SUITE(ForwardWavelet, Wavelets);

// Nothing is touched beyond either half: the sanitizer watches buffers that fit.
TYPED_TEST(ForwardWavelet, RowsOfEveryLengthAndParity)
{
    for (unsigned size = 1; size <= 70; size++)
        for (unsigned origin = 0; origin < 2; origin++) {
            SCOPED_TRACE(::testing::Message() << size << " samples from " << origin);
            Signal<typename TypeParam::Exact> exact;
            for (unsigned i = 0; i < size; i++) exact.push_back(this->sample());
            const std::vector<typename TypeParam::Sample> src(exact.begin(), exact.end());
            std::vector<typename TypeParam::Sample> low((size + 1 - origin) / 2), high((size + origin) / 2);
            TypeParam::row(src.data(), {origin, size}, low.data(), high.data());
            forward(exact, origin);
            for (unsigned i = 0; i < size; i++)
                ASSERT_NEAR(exact[i], ((origin + i) % 2 == 1 ? high : low)[i / 2],
                            TypeParam::tolerance * largest);
        }
}

// Every schedule of the columns, every cut of the rows into edges and inner part.
TYPED_TEST(ForwardWavelet, EverySmallSizeAndParity)
{
    for (unsigned height = 1; height <= 17; height++)
        for (unsigned width = 1; width <= 17; width++)
            for (unsigned parity = 0; parity < 4; parity++) {
                this->check({6 + parity % 2, 10 + parity / 2, width, height}, 1);
                if (this->HasFatalFailure()) return;
            }
}

TYPED_TEST(ForwardWavelet, SeveralLevels)
{
    for (const PyramidCase& one : pyramidCases) this->check(one.rect, one.nOfLevels);
}

// Columns of whole numbers, as the base of the pipeline runs them.
template <class T>
class FixedColumns : public OnBestLevel {
protected:
    class Pipeline : public BWT97FwdColPipeline<T> {
    public:
        Pipeline(const std::vector<T>& src, unsigned rowWidth, unsigned origin)
            : BWT97FwdColPipeline<T>(rowWidth, unsigned(src.size()) / rowWidth, origin % 2 == 1),
              m_next(src.data()), m_width(rowWidth)
        {
        }
        void NextH() override { take(); }
        void NextL() override { take(); }

        std::vector<T> low, high;

    private:
        void OutputL(T* row) override { low.insert(low.end(), row, row + m_width); }
        void OutputH(T* row) override { high.insert(high.end(), row, row + m_width); }
        void take()
        {
            std::copy_n(m_next, m_width, this->NextRow());
            m_next += m_width;
        }

        const T* m_next;
        unsigned m_width;
    };

    static void forwardFixed(Signal<T>& x, unsigned origin)
    {
        if (x.size() == 1) {
            if (origin % 2 == 1) x[0] = limited<T>(2ll * x[0]);
            return;
        }
        for (unsigned k = 0; k < 4; k++) liftFixed(x, origin, k, 1);
        scaleFixed(x, origin, 53274, 80621);
    }
};

using FixedTypes = ::testing::Types<short, int>;
TYPED_TEST_SUITE(FixedColumns, FixedTypes);

TYPED_TEST(FixedColumns, EqualTheFormulaForEveryHeightAndParity)
{
    using T = TypeParam;
    std::mt19937 random(97);
    constexpr unsigned width = 19;
    for (const int range : {1000, int(std::numeric_limits<T>::max())})
        for (unsigned height = 1; height <= 17; height++)
            for (unsigned origin = 0; origin < 2; origin++) {
                SCOPED_TRACE(::testing::Message()
                             << "height " << height << " from " << origin << ", to " << range);
                std::vector<T> src(width * height);
                for (T& sample : src) sample = T(std::uniform_int_distribution(-range, range)(random));
                typename TestFixture::Pipeline columns(src, width, origin);
                for (unsigned y = 0; y < height; y++) columns.Step();

                std::vector<T> low, high;
                std::vector<Signal<T>> lifted(width);
                for (unsigned x = 0; x < width; x++) {
                    for (unsigned y = 0; y < height; y++) lifted[x].push_back(src[y * width + x]);
                    TestFixture::forwardFixed(lifted[x], origin);
                }
                for (unsigned y = 0; y < height; y++)
                    for (unsigned x = 0; x < width; x++)
                        ((origin + y) % 2 == 1 ? high : low).push_back(lifted[x][y]);
                ASSERT_EQ(low, columns.low);
                ASSERT_EQ(high, columns.high);
            }
}

TEST(PreProcess, ShiftsUnsignedSamplesAndTransformsThreePlanes)
{
    const struct {
        JP2BitsPerComp depths[3];
        unsigned nOfPlanes;
        bool isMCT;
        int src[3], reversible[3];
        double irreversible[3];
    } cases[] = {
        {{{7}, {7}, {7}}, 3, false, {0, 255, 128}, {-128, 127, 0}, {-128, 127, 0}},
        {{{7}, {7 | isSigned}, {11}}, 3, false, {1, 2, 3}, {-127, 2, 3 - 2048}, {-127, 2, 3 - 2048}},
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
        {{{7}, {7}, {7}}, 2, true, {0, 255, 9}, {-128, 127, 9}, {-128, 127, 0}},
        {{{0}, {30}, {37}},
         3,
         false,
         {1, 5, 5},
         {0, 5 - (1 << 30), 5 - (1 << 30)},
         {0, 5 - double(1 << 30), 5 - double(1 << 30)}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(std::distance(cases, &one));
        Planes reversible(one.src), irreversible(one.src);
        PreProcessWT53(reversible.planes, {3, 2}, one.depths, one.nOfPlanes, one.isMCT);
        PreProcessWT97_32s32f(irreversible.planes, {3, 2}, one.depths, one.nOfPlanes, one.isMCT);
        for (unsigned i = 0; i < one.nOfPlanes; i++) {
            EXPECT_EQ(std::vector<int>(6, one.reversible[i]), reversible.plane<int>(i));
            for (const float sample : irreversible.plane<float>(i))
                EXPECT_NEAR(one.irreversible[i], sample, 1e-4 + 1e-7 * std::abs(one.irreversible[i]));
        }
        for (unsigned i = one.nOfPlanes; i < 3; i++) // planes that are not given stay
            EXPECT_EQ(std::vector<int>(6, one.src[i]), irreversible.plane<int>(i));
    }
}

} // namespace
