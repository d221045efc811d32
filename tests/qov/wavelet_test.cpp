// Wavelet steps at every level against the formulas of T.800, annex F: whole numbers exactly, floating point
// within a bound.
#include "qov_testing.h"
#include "qoviwavelet.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace {

enum class Filter { B53, D97 };

// Of the largest magnitude that a result depends on. Could all roundings add up it would be 5e-6; those of
// random samples do not.
constexpr double floatBound = 2e-6;

// The steps of 9-7 and its scales, K and 1 / K.
double product(int constant, double v)
{
    const double values[] = {-1.586134342, -0.052980118, 0.882911075,
                             0.443506852,  1.230174105,  1 / 1.230174105};
    return values[constant] * v;
}
Qov64s product(int constant, Qov64s v)
{
    const int values[] = {-103949, -3472, 57862, 29066, 80621, 53274};
    return (values[constant] * v + 0x8000) >> 16;
}

template <class T>
using Exact = std::conditional_t<std::is_integral_v<T>, Qov64s, double>;

// A sample that a step is added to, or taken from again. 5-3 wraps.
template <class T>
Exact<T> lifted(Filter filter, bool inverse, int step, Exact<T> x, Exact<T> neighbours)
{
    if constexpr (std::is_integral_v<T>)
        if (filter == Filter::B53) {
            const Qov64s change = step == 0 ? -(neighbours >> 1) : (neighbours + 2) >> 2;
            return T(inverse ? x - change : x + change);
        }
    const Exact<T> change = product(step, neighbours);
    return inverse ? x - change : x + change;
}

// Samples of both halves in turn, from place `first` on. Every step spoils one more place at the ends.
template <class T>
void transform(Filter filter, bool inverse, std::vector<Exact<T>>& x, int first)
{
    const int steps = filter == Filter::B53 ? 2 : 4;
    const auto odd = [&](size_t i) { return ((int(i) + first) & 1) != 0; };
    const auto scale = [&] {
        for (size_t i = 0; steps == 4 && i < x.size(); i++) x[i] = product(4 + (odd(i) == inverse), x[i]);
    };
    if (inverse) scale();
    for (int s = 0; s < steps; s++) {
        const int step = inverse ? steps - 1 - s : s;
        for (size_t i = 1; i + 1 < x.size(); i++)
            if (odd(i) == (step % 2 == 0)) x[i] = lifted<T>(filter, inverse, step, x[i], x[i - 1] + x[i + 1]);
    }
    if (!inverse) scale();
}

template <class T>
Exact<T> limited(Exact<T> v)
{
    if constexpr (std::is_integral_v<T>)
        return std::clamp<Qov64s>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
    return v;
}

// `largest` is that of all that the right value comes from.
template <class T>
void expectNear(Exact<T> right, double largest, T result)
{
    if constexpr (std::is_integral_v<T>) {
        ASSERT_EQ(limited<T>(right), result);
    } else {
        const double bound = floatBound * largest + 16. * double(std::numeric_limits<T>::min());
        ASSERT_LE(std::abs(double(result) - right), bound) << result << " for " << right;
    }
}

template <class Iterator>
double largestOf(Iterator begin, Iterator end)
{
    double largest = 0;
    for (; begin != end; ++begin) largest = std::max(largest, std::abs(double(*begin)));
    return largest;
}

// Whole numbers take the exponent for a choice: any, some more than 16 bits, any of 16 bits, or the extremes
// of those alone, among which there are neighbours that make the largest sums.
template <class T>
T anyValue(Random& random, int exponent)
{
    if constexpr (std::is_integral_v<T>) {
        if (exponent > 20) return random.value<T>();
        if (exponent > -30) return T(random.in(-(1 << 19), 1 << 19));
        if (exponent > -55) return T(random.oneIn(2) ? -32768 : 32767);
        if (exponent > -80) return T(random.oneIn(2) ? -3841 : 3840); // what 9-7 lifts in 16 bits
        return T(random.value<Qov16s>());
    } else
        return random.oneIn(5) ? T(0) : std::ldexp(T(random.in(-1 << 24, 1 << 24)), exponent - 24);
}
int anyExponent(Random& random)
{
    return random.oneIn(6) ? -130 : random.in(-100, 99); // subnormal, or below 1e30
}

template <class T>
struct Form {
    const char* name;
    Filter filter;
    bool columns;
    QovStatus (*forward)(const T*, int, T*, int, T*, int, QoviSize);
    QovStatus (*inverse)(const T*, int, const T*, int, T*, int, QoviSize);
};
#define FORM(direction, filter, T)                                                                           \
    {                                                                                                        \
#direction " " #filter, Filter::filter,                                                              \
            #direction[0] == 'C', qoviWTFwd##direction##_##filter##_JPEG2K_##T##_C1R,                        \
                       qoviWTInv##direction##_##filter##_JPEG2K_##T##_C1R                                    \
    }
const Form<Qov16s> forms16s[] = {FORM(Row, B53, 16s), FORM(Row, D97, 16s), FORM(Col, B53, 16s)};
const Form<Qov32s> forms32s[] = {FORM(Row, B53, 32s), FORM(Row, D97, 32s), FORM(Col, B53, 32s)};
const Form<Qov32f> forms32f[] = {FORM(Row, D97, 32f), FORM(Col, D97, 32f)};

// Visits forms, or lifts.
template <class Visit, class... Array>
void forEachOf(Visit visit, const Array&... arrays)
{
    const auto visitAll = [&](const auto& array) {
        for (const auto& f : array)
            if (!testing::Test::HasFatalFailure()) visit(f);
    };
    (visitAll(arrays), ...);
}

// `lines` signals of indices first to last, along rows or columns, at any address and step. A side that is
// read ends with its last sample, for the address sanitizer; one that is written lies among samples that must
// stay.
template <class T>
struct Side {
    static constexpr T guard = 77;

    bool columns;
    int lines, first, last;
    size_t width = size_t(columns ? lines : last - first + 1),
           height = size_t(columns ? last - first + 1 : lines);
    size_t gap = 0, start = 0;
    std::vector<T> block = {};

    void place(Random& random, size_t margin)
    {
        gap = size_t(random.oneIn(3) ? 0 : random.in(1, 20));
        start = margin + size_t(random.in(0, 15));
        block.assign(start + (height - 1) * (width + gap) + width + margin, guard);
    }
    void fill(Random& random)
    {
        place(random, 0);
        for (size_t y = 0; y < height; y++) {
            const int exponent = anyExponent(random);
            for (size_t x = 0; x < width; x++)
                block[start + y * (width + gap) + x] = anyValue<T>(random, exponent);
        }
    }
    T* at(int line, int i)
    {
        const size_t along = size_t(i - first), across = size_t(line);
        return &block[start + (columns ? along * (width + gap) + across : across * (width + gap) + along)];
    }
    int step() const { return int((width + gap) * sizeof(T)); }
    bool intact() const
    {
        for (size_t i = 0; i < block.size(); i++) {
            const size_t from = i - start;
            const bool inside = i >= start && from % (width + gap) < width && from / (width + gap) < height;
            if (!inside && block[i] != guard) return false;
        }
        return true;
    }
};

// A place of the signal is in the only side, or in that of its half.
auto placeIn(auto& sides, int line, int place)
{
    return sides.size() == 1 ? sides[0].at(line, place) : sides[size_t(place & 1)].at(line, place >> 1);
}

template <class T>
void compare(const Form<T>& f, bool inverse, int lines, int pairs, Random& random)
{
    SCOPED_TRACE(testing::Message() << f.name << " " << sizeof(T) * 8 << " bits "
                                    << (inverse ? "inverse " : "") << lines << " lines, " << pairs
                                    << " pairs");
    const bool longer = f.filter == Filter::D97;
    const auto side = [&](int first, int last) { return Side<T>{f.columns, lines, first, last}; };
    std::vector<Side<T>> src;
    if (inverse) src = {side(longer ? -1 : 0, pairs + longer), side(longer ? -2 : -1, pairs + longer)};
    if (!inverse) src = {side(longer ? -4 : -2, 2 * pairs + 2 * longer)};
    for (auto& s : src) s.fill(random);
    const int first = inverse ? 2 * src[1].first + 1 : src[0].first;
    const int last = inverse ? 2 * src[1].last + 1 : src[0].last;
    std::vector<std::vector<Exact<T>>> signals(static_cast<size_t>(lines)), right;
    for (int line = 0; line < lines; line++) {
        auto& signal = signals[size_t(line)];
        for (int place = first; place <= last; place++) signal.push_back(*placeIn(src, line, place));
        right.push_back(signal);
        transform<T>(f.filter, inverse, right.back(), first);
    }

    forEachLevel([&] {
        std::vector<Side<T>> dst(inverse ? 1 : 2, side(0, (inverse ? 2 : 1) * pairs - 1));
        for (auto& d : dst) d.place(random, 64);
        const QoviSize roi = f.columns ? QoviSize{lines, pairs} : QoviSize{pairs, lines};
        _mm_setcsr(0x1F80 | _MM_ROUND_UP);
        const QovStatus status = inverse ? f.inverse(src[0].at(0, 0), src[0].step(), src[1].at(0, 0),
                                                     src[1].step(), dst[0].at(0, 0), dst[0].step(), roi)
                                         : f.forward(src[0].at(0, 0), src[0].step(), dst[0].at(0, 0),
                                                     dst[0].step(), dst[1].at(0, 0), dst[1].step(), roi);
        const unsigned state = _mm_getcsr();
        _mm_setcsr(0x1F80);
        ASSERT_EQ(qovStsNoErr, status);
        ASSERT_EQ(0x1F80u | _MM_ROUND_UP, state);
        for (const auto& d : dst) ASSERT_TRUE(d.intact());
        for (int line = 0; line < lines; line++)
            for (int place = 0; place < 2 * pairs; place++) {
                const int reach = longer ? 3 + ((place & 1) == inverse) : 1;
                const auto at = signals[size_t(line)].begin() + (place - first);
                ASSERT_NO_FATAL_FAILURE(expectNear<T>(right[size_t(line)][size_t(place - first)],
                                                      largestOf(at - reach, at + reach + 1),
                                                      *placeIn(dst, line, place)))
                    << "line " << line << ", place " << place;
            }
    });
}

// Catches borders that are not read or read too far, states that get lost between vectors, tails and strips,
// lost bits of sums, and marks left in the floating-point state.
TEST(WaveletTransform, EveryLength)
{
    Random random;
    const auto visit = [&](const auto& f) {
        for (int length = 1; length <= 71; length++)
            for (const bool inverse : {false, true}) {
                const bool longest = length == 71;
                const int along = !longest ? length : f.columns ? 2077 : 1000;
                const int across = longest ? 2 : f.columns ? random.in(1, 13) : random.in(1, 3);
                ASSERT_NO_FATAL_FAILURE(
                    compare(f, inverse, f.columns ? along : across, f.columns ? across : along, random));
            }
    };
    forEachOf(visit, forms16s, forms32s, forms32f);
}

// The gains of T.800 are 1 for a constant signal and 2 for one that alternates. Catches wrong constants, also
// those that the formulas above share.
TEST(WaveletTransform, GainsOf97)
{
    const auto visit = []<class T>(const Form<T>& f) {
        for (const int odd : {1000, -1000}) {
            T x[9], low = 0, high = 0;
            for (int i = 0; i < 9; i++) x[i] = T(i % 2 ? odd : 1000);
            ASSERT_EQ(qovStsNoErr, f.forward(x + 4, 0, &low, 0, &high, 0, {1, 1}));
            EXPECT_NEAR(double(low), odd > 0 ? 1000 : 0, 1.5) << f.name;
            EXPECT_NEAR(double(high), odd > 0 ? 0 : -2000, 1.5) << f.name;
        }
    };
    visit(forms16s[1]);
    visit(forms32s[1]);
    visit(forms32f[0]);
}

TEST(WaveletTransform, Statuses)
{
    const auto visit = []<class T>(const Form<T>& f) {
        SCOPED_TRACE(f.name);
        constexpr int columns = 6, size = int(sizeof(T)), half = columns * size;
        const int row = (f.columns ? 1 : 2) * half;
        const QoviSize roi = {columns, 4}, empty = {0, 4}, pair = {columns, 1};
        // Of a single row of pairs, columns have others in the border.
        const QovStatus border = f.columns ? qovStsStep : qovStsNoErr;
        struct Call {
            char null; // image, low or high half
            int step, lowStep, highStep;
            QoviSize roi;
            QovStatus forward, inverse;
        };
        const Call calls[] = {
            {' ', row, half, half, roi, qovStsNoErr, qovStsNoErr},
            {'i', 0, 0, 0, empty, qovStsNullPtr, qovStsNullPtr},
            {'l', 0, 0, 0, empty, qovStsNullPtr, qovStsNullPtr},
            {'h', 0, 0, 0, empty, qovStsNullPtr, qovStsNullPtr},
            {' ', 0, 0, 0, empty, qovStsSize, qovStsSize},
            {' ', 0, 0, 0, {columns, 0}, qovStsSize, qovStsSize},
            {' ', row - 1, half, half, roi, qovStsStep, qovStsStep},
            {' ', row, half - 1, half, roi, qovStsStep, qovStsStep},
            {' ', row, half, half - 1, roi, qovStsStep, qovStsStep},
            {' ', 0, half, half, pair, border, border},
            {' ', row, 0, half, pair, qovStsNoErr, border},
            {' ', row, half, 0, pair, qovStsNoErr, border},
        };
        std::vector<T> memory(4000);
        for (const Call& c : calls) {
            const auto given = [&](char name, int at) { return c.null == name ? nullptr : &memory[at]; };
            T *const x = given('i', 1000), *const low = given('l', 2000), *const high = given('h', 3000);
            EXPECT_EQ(c.forward, f.forward(x, c.step, low, c.lowStep, high, c.highStep, c.roi)) << &c - calls;
            EXPECT_EQ(c.inverse, f.inverse(low, c.lowStep, high, c.highStep, x, c.step, c.roi)) << &c - calls;
        }
    };
    forEachOf(visit, forms16s, forms32s, forms32f);
}

// A lift takes six rows: of 9-7 in place, of 5-3 from four to two. `order` is that of its arguments from the
// newest row on, and each row between others is lifted, one after the other.
template <class T>
struct Lift {
    const char* name;
    Filter filter;
    bool inverse;
    QovStatus (*call)(T* const rows[6], int width);
    std::vector<size_t> order;

    bool apart() const { return filter == Filter::B53; }
    // Where row i of the order is left.
    size_t written(size_t i) const { return apart() ? 6 - i : order[i]; }
};

template <auto function, class T>
QovStatus sixRows(T* const r[6], int width)
{
    return function(r[0], r[1], r[2], r[3], r[4], r[5], width);
}

#define LIFT(direction, filter, T, ...)                                                                      \
    {                                                                                                        \
#direction " " #filter, Filter::filter,                                                              \
            #direction[0] == 'I', sixRows < qoviWT##direction##ColLift_##filter##_JPEG2K_##T##_C1>,          \
                       __VA_ARGS__                                                                           \
    }
#define LIFTS_B53(T) LIFT(Fwd, B53, T, {2, 1, 0, 3}), LIFT(Inv, B53, T, {2, 0, 1, 3})
#define LIFTS_D97(T) LIFT(Fwd, D97, T, {0, 1, 2, 3, 4, 5}), LIFT(Inv, D97, T, {1, 0, 3, 2, 5, 4})
const Lift<Qov16s> lifts16s[] = {LIFTS_B53(16s), LIFTS_D97(16s)};
const Lift<Qov32s> lifts32s[] = {LIFTS_B53(32s), LIFTS_D97(32s)};
const Lift<Qov32f> lifts32f[] = {LIFTS_D97(32f)};

// The destinations of 5-3, arguments 4 and 5, may be rows `low` and `high` instead.
template <class T>
void compareLift(const Lift<T>& lift, int width, size_t low, size_t high, Random& random)
{
    SCOPED_TRACE(testing::Message() << lift.name << " " << sizeof(T) * 8 << " bits, width " << width
                                    << ", destinations " << low << ", " << high);
    const size_t memory[6] = {0, 1, 2, 3, low, high};
    std::vector<std::vector<T>> in(6, std::vector<T>(size_t(width)));
    const int exponent = anyExponent(random);
    for (auto& v : in)
        for (T& value : v) value = anyValue<T>(random, exponent);
    forEachLevel([&] {
        std::vector<Side<T>> rows(6, Side<T>{false, 1, 0, width - 1});
        T* pointers[6];
        for (auto& row : rows) row.place(random, 64);
        for (size_t i = 0; i < 6; i++) {
            std::copy(in[i].begin(), in[i].end(), rows[i].at(0, 0));
            pointers[i] = rows[memory[i]].at(0, 0);
        }
        ASSERT_EQ(qovStsNoErr, lift.call(pointers, width));
        for (const auto& row : rows) ASSERT_TRUE(row.intact());
        for (size_t x = 0; x < size_t(width); x++) {
            std::vector<Exact<T>> right, r;
            for (const auto& v : in) right.push_back(v[x]);
            for (const size_t i : lift.order) r.push_back(right[i]);
            const double largest = largestOf(right.begin(), right.end());
            for (size_t i = 1; i + 1 < r.size(); i++) {
                const int step = lift.inverse ? int(r.size()) - 2 - int(i) : int(i) - 1;
                r[i] = limited<T>(lifted<T>(lift.filter, lift.inverse, step, r[i], r[i - 1] + r[i + 1]));
                right[memory[lift.written(i)]] = r[i];
            }
            for (size_t i = 0; i < 6; i++)
                ASSERT_NO_FATAL_FAILURE(expectNear<T>(right[i], largest, rows[i].at(0, 0)[x]))
                    << "row " << i << ", place " << x;
        }
    });
}

// Catches rows of the wrong delay, a source overwritten before its last vector was read, accumulators that
// overflow.
TEST(WaveletLift, EveryWidth)
{
    Random random;
    const auto visit = [&](const auto& lift) {
        for (int width = 1; width <= 70; width++)
            for (size_t low = lift.apart() ? 0 : 4; low < 5; low++)
                for (size_t high = lift.apart() ? 0 : 5; high < 6; high++)
                    if (low != high && high != 4) {
                        ASSERT_NO_FATAL_FAILURE(compareLift(lift, width, low, high, random));
                    }
    };
    forEachOf(visit, lifts16s, lifts32s, lifts32f);
}

TEST(WaveletLift, Statuses)
{
    const auto visit = []<class T>(const Lift<T>& lift) {
        T rows[6][3] = {};
        for (int missing = 0; missing < 6; missing++) {
            T* pointers[6];
            for (int i = 0; i < 6; i++) pointers[i] = i == missing ? nullptr : rows[i];
            EXPECT_EQ(qovStsNullPtr, lift.call(pointers, 0)) << lift.name;
            pointers[missing] = rows[missing];
            EXPECT_EQ(qovStsSize, lift.call(pointers, 0)) << lift.name;
            EXPECT_EQ(qovStsNoErr, lift.call(pointers, 1)) << lift.name;
        }
    };
    forEachOf(visit, lifts16s, lifts32s, lifts32f);
}

} // namespace
