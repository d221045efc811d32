// The wavelet pipelines: the forward ones against the formulas of ITU-T T.800, annex F, applied to whole
// columns and rows, and the inverse ones, which undo them.
#include "wt53fwdrow.h"
#include "wt53invrow.h"
#include "wt97fwd.h"
#include "wt97fwdrow.h"
#include "wt97inv.h"
#include "wtfwd.h"
#include "wtinv.h"

#include "qovcore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

using namespace jpeg2000;

namespace {

class OnBestLevel : public testing::Test {
protected:
    static void SetUpTestSuite() { qovInit(); }
};

template <class T>
using Signal = std::vector<T>;

// The sample at i of a signal that is mirrored at its two ends.
template <class T>
T mirrored(const Signal<T>& x, long i)
{
    const long period = 2 * (long(x.size()) - 1);
    i = ((i % period) + period) % period;
    return x[size_t(std::min(i, period - i))];
}

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

// Transforms a signal in place, 5-3 in whole numbers and 9-7 in real ones; low samples end at even positions.
template <class T>
void forward(Signal<T>& x, unsigned origin)
{
    if (x.size() == 1) {
        if (origin % 2 == 1) x[0] *= 2;
    } else if constexpr (std::is_same_v<T, int>) {
        liftEach(x, origin, 1, [](int t, int a, int b) { return t - ((a + b) >> 1); });
        liftEach(x, origin, 0, [](int t, int a, int b) { return t + ((a + b + 2) >> 2); });
    } else {
        const double steps[] = {-1.586134342059924, -0.052980118572961, 0.882911075530934, 0.443506852043971};
        for (unsigned k = 0; k < 4; k++)
            liftEach(x, origin, 1 - k % 2, [&](T t, T a, T b) { return t + steps[k] * (a + b); });
        const double K = 1.230174104914001;
        for (size_t i = 0; i < x.size(); i++) (origin + i) % 2 == 1 ? x[i] *= K : x[i] /= K;
    }
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

constexpr int largest = 4095;

struct Wavelet53 {
    using Sample = int;
    using Exact = int;
    static constexpr int largestInRow = std::numeric_limits<int>::max(); // sums leave 32 bits and come back
    static constexpr double tolerance = 0;
    static constexpr auto forwardRow = WT53FwdRow<int>;
    static constexpr auto inverseRow = WT53InvRow<int>;
    static constexpr auto pyramid = WT53Fwd<int>;
    static constexpr auto inverse = WT53Inv<int>;
};

struct Wavelet97 {
    using Sample = float;
    using Exact = double;
    static constexpr int largestInRow = largest;
    static constexpr double tolerance = 2e-6; // of the largest sample, for each level
    static constexpr auto forwardRow = WT97FwdRow<float>;
    static constexpr auto inverseRow = WT97InvRow<float>;
    static constexpr auto pyramid = WT97Fwd<float>;
    static constexpr auto inverse = WT97Inv<float>;
};

template <class Wavelet>
class WaveletTest : public OnBestLevel {
protected:
    using Sample = typename Wavelet::Sample;
    using Exact = typename Wavelet::Exact;

    int sample(int most = largest) { return std::uniform_int_distribution(-most, most)(m_random); }

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

    // The bands by the formulas, and the samples back from them; beside the rows nothing is touched.
    void check(const Rect& rect, unsigned nOfLevels)
    {
        SCOPED_TRACE(testing::Message() << rect.width << "x" << rect.height << " at " << rect.x << ", "
                                        << rect.y << ", levels " << nOfLevels);
        constexpr Sample guard = 12345;
        Plane<Exact> exact(rect);
        ImageC<Sample, 1u> src, dst;
        src.Alloc(rect.width, rect.height);
        dst.Alloc(rect.width + 2, rect.height);
        for (unsigned y = 0; y < rect.height; y++) {
            for (unsigned x = 0; x < rect.width; x++) src.row(y)[x] = Sample(exact.at(x, y) = sample());
            std::fill_n(dst.row(y), rect.width + 2, guard);
        }

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

using Wavelets = testing::Types<Wavelet53, Wavelet97>;
TYPED_TEST_SUITE(WaveletTest, Wavelets);

// Nothing is touched beyond either half or the row: the sanitizer watches buffers that fit.
TYPED_TEST(WaveletTest, RowsOfEveryLengthAndParity)
{
    using T = typename TypeParam::Sample;
    for (unsigned size = 1; size <= 70; size++)
        for (unsigned origin = 0; origin < 2; origin++) {
            SCOPED_TRACE(testing::Message() << size << " samples from " << origin);
            const auto roundTrip = [&](int most, auto check) {
                std::vector<T> src(size), low((size + 1 - origin) / 2), high((size + origin) / 2), dst(size);
                for (T& one : src) one = T(this->sample(most));
                TypeParam::forwardRow(src.data(), {origin, size}, low.data(), high.data());
                TypeParam::inverseRow(low.data(), high.data(), {origin, size}, dst.data());
                for (unsigned i = 0; i < size; i++) ASSERT_NEAR(src[i], dst[i], TypeParam::tolerance * most);
                check(src, low, high);
            };
            roundTrip(largest, [&](const auto& src, const auto& low, const auto& high) {
                Signal<typename TypeParam::Exact> exact(src.begin(), src.end());
                forward(exact, origin);
                for (unsigned i = 0; i < size; i++)
                    ASSERT_NEAR(exact[i], ((origin + i) % 2 == 1 ? high : low)[i / 2],
                                TypeParam::tolerance * largest);
            });
            if (size > 1) roundTrip(TypeParam::largestInRow, [](auto&&...) {}); // a single one is doubled
        }
}

// Every schedule of the columns, every cut of the rows into edges and inner part.
TYPED_TEST(WaveletTest, EverySmallSizeAndParity)
{
    for (unsigned height = 1; height <= 17; height++)
        for (unsigned width = 1; width <= 17; width++)
            for (unsigned parity = 0; parity < 4; parity++) {
                this->check({6 + parity % 2, 10 + parity / 2, width, height}, 1);
                if (this->HasFatalFailure()) return;
            }
}

// Bands that run empty, levels beyond what the image holds, no level at all, rows longer than vectors.
TYPED_TEST(WaveletTest, SeveralLevels)
{
    const struct {
        Rect rect;
        unsigned nOfLevels;
    } cases[] = {
        {{0, 0, 1, 1}, 1},     {{1, 1, 1, 1}, 1},          {{0, 0, 1, 1}, 32},  {{5, 3, 1, 1}, 4},
        {{3, 3, 3, 3}, 3},     {{0, 0, 1, 37}, 6},         {{1, 0, 1, 37}, 6},  {{7, 11, 40, 1}, 6},
        {{0, 0, 29, 17}, 0},   {{3, 0, 13, 11}, 0},        {{0, 0, 64, 64}, 7}, {{0, 0, 131, 67}, 5},
        {{13, 7, 133, 90}, 5}, {{1023, 4095, 301, 35}, 4},
    };
    for (const auto& one : cases) this->check(one.rect, one.nOfLevels);
}

// The 9-7 filter in whole numbers: factors are over 65536, products rounded half up, what is stored is
// limited to T.
template <class T>
T limited(long long value)
{
    return T(std::clamp<long long>(value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

inline long long fixedProduct(long long factor, long long value)
{
    return (factor * value + 0x8000) >> 16;
}

// Step k of 0 to 3 lifts the samples at odd positions, even ones, odd ones, even ones. sign: 1 or, backwards,
// -1.
template <class T>
void liftFixed(Signal<T>& x, unsigned origin, unsigned k, int sign)
{
    const long long steps[] = {-103949, -3472, 57862, 29066}, doubled[] = {-207898, -6944, 115725, 58131};
    const Signal<T> before = x;
    for (size_t i = 0; i < x.size(); i++) {
        if ((origin + i) % 2 == k % 2) continue;
        const bool isEdge = i == 0 || i + 1 == x.size();
        const T a = mirrored(before, long(i) - 1), b = mirrored(before, long(i) + 1);
        x[i] = limited<T>(
            x[i] + sign * (isEdge ? fixedProduct(doubled[k], a) : fixedProduct(steps[k], 0ll + a + b)));
    }
}

template <class T>
void scaleFixed(Signal<T>& x, unsigned origin, long long even, long long odd)
{
    for (size_t i = 0; i < x.size(); i++)
        x[i] = limited<T>(fixedProduct((origin + i) % 2 == 1 ? odd : even, x[i]));
}

// Columns of whole numbers, as the bases of the pipelines run them.
template <class T>
class FixedColumns : public OnBestLevel {
protected:
    class Forward : public BWT97FwdColPipeline<T> {
    public:
        Forward(const std::vector<T>& src, unsigned rowWidth, unsigned origin)
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

    class Inverse : public BWT97InvColPipeline<T> {
    public:
        // Row i of src is row i / 2 of its half.
        Inverse(const std::vector<T>& src, unsigned rowWidth, unsigned origin, std::vector<T>& image)
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

    static void forwardFixed(Signal<T>& x, unsigned origin)
    {
        if (x.size() == 1) {
            if (origin % 2 == 1) x[0] = limited<T>(2ll * x[0]);
            return;
        }
        for (unsigned k = 0; k < 4; k++) liftFixed(x, origin, k, 1);
        scaleFixed(x, origin, 53274, 80621);
    }

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

using FixedTypes = testing::Types<short, int>;
TYPED_TEST_SUITE(FixedColumns, FixedTypes);

TYPED_TEST(FixedColumns, EqualTheFormulaForEveryHeightAndParity)
{
    using T = TypeParam;
    std::mt19937 random(97);
    constexpr unsigned width = 19;
    for (const int range : {1000, int(std::numeric_limits<T>::max())})
        for (unsigned height = 1; height <= 17; height++)
            for (unsigned origin = 0; origin < 2; origin++) {
                SCOPED_TRACE(testing::Message()
                             << "height " << height << " from " << origin << ", to " << range);
                std::vector<T> src(width * height), dst(src);
                for (T& sample : src) sample = T(std::uniform_int_distribution(-range, range)(random));
                typename TestFixture::Forward forwardColumns(src, width, origin);
                typename TestFixture::Inverse inverseColumns(src, width, origin, dst);
                for (unsigned y = 0; y < height; y++) forwardColumns.Step(), inverseColumns.Step();

                std::vector<T> low, high, image(src);
                std::vector<Signal<T>> lifted(width);
                for (unsigned x = 0; x < width; x++) {
                    for (unsigned y = 0; y < height; y++) lifted[x].push_back(src[y * width + x]);
                    Signal<T> column = lifted[x];
                    TestFixture::forwardFixed(lifted[x], origin);
                    TestFixture::inverseFixed(column, origin);
                    for (unsigned y = 0; y < height; y++) image[y * width + x] = column[y];
                }
                for (unsigned y = 0; y < height; y++)
                    for (unsigned x = 0; x < width; x++)
                        ((origin + y) % 2 == 1 ? high : low).push_back(lifted[x][y]);
                ASSERT_EQ(low, forwardColumns.low);
                ASSERT_EQ(high, forwardColumns.high);
                ASSERT_EQ(image, dst);
            }
}

} // namespace
