// Wavelet steps at every level against the formulas of T.800, annex F: whole numbers exactly, floating point
// within a bound.
#include "qov_testing.h"
#include "qoviwavelet.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <type_traits>

namespace {

enum class Filter { B53, D97 };

// Of the largest magnitude that a result depends on. Could all roundings add up it would be 5e-6; those of
// random samples do not.
constexpr double floatBound = 2e-6;

// Sample i of the signal (forward), or of its halves: 0 the low one, 1 the high one (inverse).
template <class T>
using Source = std::function<T(int half, int i)>;

template <class T>
Qov64s wrapped(bool inverse, const Source<T>& in, int half, int n)
{
    const auto x = [&](int i) -> Qov64s { return in(0, i); };
    const auto high = [&](int k) -> Qov64s { return T(x(2 * k + 1) - ((x(2 * k) + x(2 * k + 2)) >> 1)); };
    const auto even = [&](int k) -> Qov64s {
        return T(in(0, k) - ((Qov64s(in(1, k - 1)) + in(1, k) + 2) >> 2));
    };
    if (!inverse) return half ? high(n) : T(x(2 * n) + ((high(n - 1) + high(n) + 2) >> 2));
    const int k = n >> 1;
    return n & 1 ? T(in(1, k) + ((even(k) + even(k + 1)) >> 1)) : even(k);
}

enum { a, b, g, d, K, inverseK };
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

// R: Qov64s, or double for floats.
template <class R, class T>
R lifted97(bool inverse, const Source<T>& in, int half, int n)
{
    if (!inverse) {
        const auto x = [&](int i) -> R { return in(0, i); };
        const auto d1 = [&](int k) { return x(2 * k + 1) + product(a, x(2 * k) + x(2 * k + 2)); };
        const auto s1 = [&](int k) { return x(2 * k) + product(b, d1(k - 1) + d1(k)); };
        const auto d2 = [&](int k) { return d1(k) + product(g, s1(k) + s1(k + 1)); };
        return half ? product(K, d2(n)) : product(inverseK, s1(n) + product(d, d2(n - 1) + d2(n)));
    }
    const auto l = [&](int k) { return product(K, R(in(0, k))); };
    const auto h = [&](int k) { return product(inverseK, R(in(1, k))); };
    const auto s1 = [&](int k) { return l(k) - product(d, h(k - 1) + h(k)); };
    const auto d1 = [&](int k) { return h(k) - product(g, s1(k) + s1(k + 1)); };
    const auto s0 = [&](int k) { return s1(k) - product(b, d1(k - 1) + d1(k)); };
    const int k = n >> 1;
    return n & 1 ? d1(k) - product(a, s0(k) + s0(k + 1)) : s0(k);
}

template <class T>
struct Expected {
    T value;
    double tolerance; // 0 for whole numbers

    bool holds(T result) const
    {
        if (tolerance == 0) return result == value;
        return std::abs(double(result) - double(value)) <= tolerance;
    }
};

template <class T>
T limited(Qov64s v)
{
    return T(std::clamp<Qov64s>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

template <class T>
Expected<T> expected(Filter filter, bool inverse, const Source<T>& in, int half, int n)
{
    if constexpr (std::is_integral_v<T>) {
        if (filter == Filter::B53) return {T(wrapped(inverse, in, half, n)), 0};
        return {limited<T>(lifted97<Qov64s>(inverse, in, half, n)), 0};
    } else {
        double largest = 0;
        const Source<T> seen = [&](int side, int i) {
            largest = std::max(largest, std::abs(double(in(side, i))));
            return in(side, i);
        };
        const double value = lifted97<double>(inverse, seen, half, n);
        return {T(value), floatBound * largest + 16. * double(std::numeric_limits<T>::min())};
    }
}

// Whole numbers take the exponent for a choice: any, some more than 16 bits, any of 16 bits, or the extremes
// of those alone, among which there are neighbours that make the largest sums.
template <class T>
T anyValue(Random& random, int exponent)
{
    if constexpr (std::is_integral_v<T>) {
        if (exponent > 20) return random.value<T>();
        if (exponent > -30) return T(random.in(-(1 << 19), 1 << 19));
        if (exponent > -80) return T(random.oneIn(2) ? -32768 : 32767);
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

template <class Visit>
void forEachForm(Visit visit)
{
    for (const auto& f : forms16s) visit(f);
    for (const auto& f : forms32s) visit(f);
    for (const auto& f : forms32f) visit(f);
}

// `lines` signals of indices first to last, along rows or columns, `gap` elements apart.
struct Shape {
    bool columns;
    int lines, first, last, gap;

    int length() const { return last - first + 1; }
    size_t rowElements() const { return size_t(columns ? lines : length()); }
    size_t rows() const { return size_t(columns ? length() : lines); }
    size_t step() const { return rowElements() + size_t(gap); }
    size_t at(int line, int i) const
    {
        const size_t along = size_t(i - first), across = size_t(line);
        return columns ? along * step() + across : across * step() + along;
    }
};

// A side that is read: a block of its own that ends with the last sample, for the address sanitizer.
template <class T>
struct Samples {
    Shape shape;
    size_t misfit;
    std::unique_ptr<T[]> block;

    Samples(const Shape& s, Random& random)
        : shape(s), misfit(size_t(random.in(0, 15))),
          block(std::make_unique<T[]>(misfit + (s.rows() - 1) * s.step() + s.rowElements()))
    {
        for (size_t row = 0; row < s.rows(); row++)
            for (size_t x = 0, e = size_t(anyExponent(random) + 200); x < s.rowElements(); x++)
                block[misfit + row * s.step() + x] = anyValue<T>(random, int(e) - 200);
    }
    T at(int line, int i) const { return block[misfit + shape.at(line, i)]; }
    const T* start() const { return block.get() + misfit + shape.at(0, 0); }
    int step() const { return int(shape.step() * sizeof(T)); }
};

// A side that is written, among bytes that must stay.
template <class T>
struct Results {
    Shape shape;
    Guarded bytes;

    Results(const Shape& s, Random& random)
        : shape(s), bytes(((s.rows() - 1) * s.step() + s.rowElements()) * sizeof(T),
                          sizeof(T) * size_t(random.in(0, 15)))
    {
    }
    T* start() { return bytes.as<T>(); }
    int step() const { return int(shape.step() * sizeof(T)); }
    bool intact() const { return bytes.intact(shape.step() * sizeof(T), shape.rowElements() * sizeof(T)); }
};

template <class T>
void compare(const Form<T>& f, bool inverse, int lines, int pairs, Random& random)
{
    SCOPED_TRACE(testing::Message() << f.name << " " << sizeof(T) * 8 << " bits "
                                    << (inverse ? "inverse " : "") << lines << " lines, " << pairs
                                    << " pairs");
    const bool longer = f.filter == Filter::D97;
    const auto shape = [&](int first, int last) {
        return Shape{f.columns, lines, first, last, random.oneIn(3) ? 0 : random.in(1, 20)};
    };
    std::vector<Samples<T>> src;
    if (inverse) {
        src.emplace_back(shape(longer ? -1 : 0, pairs + longer), random);
        src.emplace_back(shape(longer ? -2 : -1, pairs + longer), random);
    } else {
        src.emplace_back(shape(longer ? -4 : -2, 2 * pairs + 2 * longer), random);
    }
    const std::vector<Shape> to(inverse ? 1 : 2, shape(0, (inverse ? 2 : 1) * pairs - 1));
    std::vector<std::vector<Expected<T>>> wanted(to.size());
    for (size_t half = 0; half < to.size(); half++)
        for (int line = 0; line < lines; line++)
            for (int n = 0; n <= to[half].last; n++)
                wanted[half].push_back(expected<T>(
                    f.filter, inverse, [&](int side, int i) { return src[size_t(side)].at(line, i); },
                    int(half), n));

    forEachLevel([&] {
        std::vector<Results<T>> dst;
        for (const Shape& s : to) dst.emplace_back(s, random);
        const QoviSize roi = f.columns ? QoviSize{lines, pairs} : QoviSize{pairs, lines};
        _mm_setcsr(0x1F80 | _MM_ROUND_UP);
        const QovStatus status = inverse ? f.inverse(src[0].start(), src[0].step(), src[1].start(),
                                                     src[1].step(), dst[0].start(), dst[0].step(), roi)
                                         : f.forward(src[0].start(), src[0].step(), dst[0].start(),
                                                     dst[0].step(), dst[1].start(), dst[1].step(), roi);
        const unsigned state = _mm_getcsr();
        _mm_setcsr(0x1F80);
        ASSERT_EQ(qovStsNoErr, status);
        ASSERT_EQ(0x1F80u | _MM_ROUND_UP, state);
        for (size_t half = 0; half < dst.size(); half++) {
            ASSERT_TRUE(dst[half].intact()) << "half " << half;
            auto want = wanted[half].begin();
            for (int line = 0; line < lines; line++)
                for (int n = 0; n <= to[half].last; n++, ++want) {
                    const T result = dst[half].start()[to[half].at(line, n)];
                    ASSERT_TRUE(want->holds(result)) << "half " << half << ", line " << line << ", sample "
                                                     << n << ": " << result << " for " << want->value;
                }
        }
    });
}

// Catches borders that are not read or read too far, states that get lost between vectors, tails and strips,
// lost bits of sums, and marks left in the floating-point state.
TEST(WaveletTransform, EveryLength)
{
    Random random;
    forEachForm([&](const auto& f) {
        for (int length = 1; length <= 70; length++)
            for (const bool inverse : {false, true}) {
                const int across = f.columns ? random.in(1, 13) : random.in(1, 3);
                compare(f, inverse, f.columns ? length : across, f.columns ? across : length, random);
                if (testing::Test::HasFatalFailure()) return;
            }
        for (const bool inverse : {false, true})
            compare(f, inverse, f.columns ? 2077 : 2, f.columns ? 2 : 1000, random);
    });
}

// The gains of T.800 are 1 for a constant signal and 2 for one that alternates. Catches wrong constants, also
// those that the formulas above share.
template <class T>
void gainsOf97(const Form<T>& f)
{
    if (f.filter != Filter::D97 || f.columns) return;
    for (const int odd : {1000, -1000}) {
        std::vector<T> x(9);
        for (size_t i = 0; i < x.size(); i++) x[i] = T(i % 2 ? odd : 1000);
        T low = 0, high = 0;
        ASSERT_EQ(qovStsNoErr, f.forward(&x[4], 0, &low, 0, &high, 0, {1, 1}));
        EXPECT_NEAR(double(low), odd > 0 ? 1000 : 0, 1.5) << f.name;
        EXPECT_NEAR(double(high), odd > 0 ? 0 : -2000, 1.5) << f.name;
    }
}

TEST(WaveletTransform, GainsOf97)
{
    forEachForm([](const auto& f) { gainsOf97(f); });
}

template <class T>
void transformStatuses(const Form<T>& f)
{
    SCOPED_TRACE(f.name);
    constexpr int columns = 6, rows = 4, size = int(sizeof(T));
    std::vector<T> memory(4000);
    T* const p = memory.data() + 1000;
    const int row = (f.columns ? 1 : 2) * columns * size, half = columns * size;
    struct Call {
        bool srcNull, lowNull, highNull;
        int step, lowStep, highStep;
        QoviSize roi;
        QovStatus wanted;
    };
    const Call calls[] = {
        {false, false, false, row, half, half, {columns, rows}, qovStsNoErr},
        {true, false, false, 0, 0, 0, {0, rows}, qovStsNullPtr},
        {false, true, false, 0, 0, 0, {0, rows}, qovStsNullPtr},
        {false, false, true, 0, 0, 0, {0, rows}, qovStsNullPtr},
        {false, false, false, 0, 0, 0, {0, rows}, qovStsSize},
        {false, false, false, 0, 0, 0, {columns, 0}, qovStsSize},
        {false, false, false, row - 1, half, half, {columns, rows}, qovStsStep},
        {false, false, false, row, half - 1, half, {columns, rows}, qovStsStep},
        {false, false, false, row, half, half - 1, {columns, rows}, qovStsStep},
        // A single row of pairs: along columns there are others in the border.
        {false, false, false, 0, half, half, {columns, 1}, f.columns ? qovStsStep : qovStsNoErr},
    };
    for (const Call& c : calls) {
        T *x = c.srcNull ? nullptr : p, *low = c.lowNull ? nullptr : p + 1000,
          *high = c.highNull ? nullptr : p + 2000;
        EXPECT_EQ(c.wanted, f.forward(x, c.step, low, c.lowStep, high, c.highStep, c.roi)) << &c - calls;
        EXPECT_EQ(c.wanted, f.inverse(low, c.lowStep, high, c.highStep, x, c.step, c.roi)) << &c - calls;
    }
    const QovStatus halfStep = f.columns ? qovStsStep : qovStsNoErr; // borders of the halves are read
    EXPECT_EQ(qovStsNoErr, f.forward(p, row, p + 1000, 0, p + 2000, 0, {columns, 1}));
    EXPECT_EQ(halfStep, f.inverse(p + 1000, 0, p + 2000, half, p, row, {columns, 1}));
    EXPECT_EQ(halfStep, f.inverse(p + 1000, half, p + 2000, 0, p, row, {columns, 1}));
}

TEST(WaveletTransform, Statuses)
{
    forEachForm([](const auto& f) { transformStatuses(f); });
}

// A lift reads and writes six rows, in the order of its arguments.
template <class T>
struct Lift {
    const char* name;
    QovStatus (*call)(T* const rows[6], int width);
    std::vector<size_t> written;
    Expected<T> (*result)(const T in[6], size_t row); // at one place
};

template <auto function, class T>
QovStatus sixRows(T* const r[6], int width)
{
    return function(r[0], r[1], r[2], r[3], r[4], r[5], width);
}

template <class T>
Expected<T> forward53(const T in[6], size_t row)
{
    const Source<T> x = [in](int, int i) { return in[i]; };
    const T high = T(wrapped(false, x, 1, 0));
    return {row == 5 ? high : T(in[0] + ((Qov64s(in[3]) + high + 2) >> 2)), 0};
}

template <class T>
Expected<T> inverse53(const T in[6], size_t row)
{
    const T even = T(in[0] - ((Qov64s(in[1]) + in[2] + 2) >> 2));
    return {row == 5 ? even : T(in[1] + ((Qov64s(in[3]) + even) >> 1)), 0};
}

template <class T, bool inverse>
Expected<T> lift97(const T in[6], size_t row)
{
    using R = std::conditional_t<std::is_integral_v<T>, Qov64s, double>;
    const auto place = [](size_t i) { return inverse ? i ^ 1 : i; }; // newest row first
    R r[6];
    double largest = 0;
    for (size_t i = 0; i < 6; i++) {
        r[i] = in[place(i)];
        largest = std::max(largest, std::abs(double(r[i])));
    }
    for (size_t i = 1; i < 5; i++) {
        r[i] += inverse ? -product(int(d - i + 1), r[i - 1] + r[i + 1])
                        : product(int(i - 1), r[i - 1] + r[i + 1]);
        if constexpr (std::is_integral_v<T>) r[i] = limited<T>(r[i]);
    }
    const T value = T(r[place(row)]);
    if constexpr (std::is_integral_v<T>) return {value, 0};
    return {value, floatBound * largest + 16. * double(std::numeric_limits<float>::min())};
}

template <class T>
void compareLift(const Lift<T>& lift, int width, Random& random)
{
    // 5-3: a destination may be a source.
    const bool apart = lift.written.size() == 2;
    for (size_t low = apart ? 0 : 4; low < 5; low++)
        for (size_t high = apart ? 0 : 5; high < 6; high++) {
            if (low == high || high == 4) continue;
            SCOPED_TRACE(testing::Message() << lift.name << " " << sizeof(T) * 8 << " bits, width " << width
                                            << ", destinations " << low << ", " << high);
            const Shape row = {false, 1, 0, width - 1, 0};
            const size_t memory[6] = {0, 1, 2, 3, low, high};
            std::vector<std::vector<T>> in(6, std::vector<T>(size_t(width)));
            const int exponent = anyExponent(random);
            for (auto& v : in)
                for (T& value : v) value = anyValue<T>(random, exponent);
            forEachLevel([&] {
                std::vector<Results<T>> rows;
                T* pointers[6];
                for (int i = 0; i < 6; i++) rows.emplace_back(row, random);
                for (size_t i = 0; i < 6; i++) {
                    pointers[i] = rows[memory[i]].start();
                    std::copy(in[i].begin(), in[i].end(), rows[i].start());
                }
                ASSERT_EQ(qovStsNoErr, lift.call(pointers, width));
                for (size_t i = 0; i < 6; i++) {
                    ASSERT_TRUE(rows[i].intact()) << "row " << i;
                    const bool writes = std::count(lift.written.begin(), lift.written.end(), i) > 0;
                    const bool overwritten = apart && i < 4 && (i == low || i == high);
                    for (size_t x = 0; x < size_t(width); x++) {
                        const T at[6] = {in[0][x], in[1][x], in[2][x], in[3][x], in[4][x], in[5][x]};
                        const Expected<T> want = writes ? lift.result(at, i) : Expected<T>{at[i], 0};
                        ASSERT_TRUE(overwritten || want.holds(pointers[i][x]))
                            << "row " << i << ", place " << x << ": " << pointers[i][x] << " for "
                            << want.value;
                    }
                }
            });
            if (testing::Test::HasFatalFailure()) return;
        }
}

#define LIFTS_B53(T)                                                                                         \
    {"forward 5-3", sixRows<qoviWTFwdColLift_B53_JPEG2K_##T##_C1>, {4, 5}, forward53<Qov##T>},               \
    {                                                                                                        \
        "inverse 5-3", sixRows<qoviWTInvColLift_B53_JPEG2K_##T##_C1>, {4, 5}, inverse53<Qov##T>              \
    }
#define LIFTS_D97(T)                                                                                         \
    {"forward 9-7", sixRows<qoviWTFwdColLift_D97_JPEG2K_##T##_C1>, {1, 2, 3, 4}, lift97<Qov##T, false>},     \
    {                                                                                                        \
        "inverse 9-7", sixRows<qoviWTInvColLift_D97_JPEG2K_##T##_C1>, {0, 2, 3, 5}, lift97<Qov##T, true>     \
    }
const Lift<Qov16s> lifts16s[] = {LIFTS_B53(16s), LIFTS_D97(16s)};
const Lift<Qov32s> lifts32s[] = {LIFTS_B53(32s), LIFTS_D97(32s)};
const Lift<Qov32f> lifts32f[] = {LIFTS_D97(32f)};

template <class Visit>
void forEachLift(Visit visit)
{
    for (const auto& f : lifts16s) visit(f);
    for (const auto& f : lifts32s) visit(f);
    for (const auto& f : lifts32f) visit(f);
}

// Catches rows of the wrong delay, a source overwritten before its last vector was read, accumulators that
// overflow.
TEST(WaveletLift, EveryWidth)
{
    Random random;
    forEachLift([&](const auto& lift) {
        for (int width = 1; width <= 70; width++) {
            compareLift(lift, width, random);
            if (testing::Test::HasFatalFailure()) return;
        }
    });
}

TEST(WaveletLift, Statuses)
{
    forEachLift([]<class T>(const Lift<T>& lift) {
        T rows[6][3] = {};
        for (int missing = 0; missing < 6; missing++) {
            T* pointers[6];
            for (int i = 0; i < 6; i++) pointers[i] = i == missing ? nullptr : rows[i];
            EXPECT_EQ(qovStsNullPtr, lift.call(pointers, 0)) << lift.name;
            pointers[missing] = rows[missing];
            EXPECT_EQ(qovStsSize, lift.call(pointers, 0)) << lift.name;
            EXPECT_EQ(qovStsNoErr, lift.call(pointers, 1)) << lift.name;
        }
    });
}

} // namespace
