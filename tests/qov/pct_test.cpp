// Photo core transforms at every level: known coefficients, whole numbers undone bit for bit, floating point
// within bounds, regions made of macroblocks.
#include "qov_testing.h"
#include "qovipct.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace {

template <class T>
using OneCall = QovStatus (*)(T*, int);
template <class T>
using RegionCall = QovStatus (*)(T*, int, QoviSize);

template <class T>
struct Form {
    int width, height;
    OneCall<T> forward, inverse;
};
template <class T>
struct Forms {
    RegionCall<T> forward, inverse;
    Form<T> form[3]; // in the order in which a region chooses
};
#define FORM(format, T, w, h)                                                                                \
    {                                                                                                        \
        w, h, qoviPCTFwd##w##x##h##_##format##_##T##_C1IR, qoviPCTInv##w##x##h##_##format##_##T##_C1IR       \
    }
#define FORMS(format, T)                                                                                     \
    {                                                                                                        \
        qoviPCTFwd_##format##_##T##_C1IR, qoviPCTInv_##format##_##T##_C1IR,                                  \
        {                                                                                                    \
            FORM(format, T, 16, 16), FORM(format, T, 8, 16), FORM(format, T, 8, 8)                           \
        }                                                                                                    \
    }
const Forms<Qov32s> forms32s[] = {FORMS(JPEGXR, 32s), FORMS(HDP, 32s)};
const Forms<Qov16s> forms16s = FORMS(JPEGXR, 16s);
const Forms<Qov32f> forms32f = FORMS(JPEGXR, 32f);

template <class Visit>
void forEachType(Visit visit)
{
    for (const auto& f : forms32s) visit(f);
    visit(forms16s);
    visit(forms32f);
}

int pattern(int x, int y)
{
    return (3 * x * x + 5 * x * y + 7 * y + 11) % 201 - 100;
}

// Errors of floating-point results, of the largest magnitude that went in.
constexpr double roundTripBound = 1e-5, levelBound = 1e-5;

template <class T>
bool near(T a, T b, double tolerance)
{
    if constexpr (std::is_integral_v<T>)
        return a == b;
    else
        return std::abs(double(a) - double(b)) <= tolerance;
}

// Samples of one macroblock in rows of 16.
template <class T>
struct Macroblock {
    T sample[256] = {};

    template <class Value>
    explicit Macroblock(Value value)
    {
        for (int i = 0; i < 256; i++) sample[i] = T(value(i % 16, i / 16));
    }
    T& at(int x, int y) { return sample[16 * y + x]; }
    Macroblock& through(OneCall<T> call)
    {
        EXPECT_EQ(qovStsNoErr, call(sample, 16 * sizeof(T)));
        return *this;
    }
};

// Catches a wrong operator, constant or permutation: coefficients of single blocks, beside empty ones.
TEST(Pct, KnownBlocks)
{
    const struct {
        int in[16], out[16];
    } cases[] = {
        {{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15},
         {30, -4, 0, -1, -17, 0, 0, 0, 0, 0, 0, 0, -2, 0, 0, 0}},
        {{0, 10, 20, 30, 0, 10, 20, 30, 0, 10, 20, 30, 0, 10, 20, 30},
         {60, -42, 0, -6, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0}},
        {{-45, -25, 9, -44, 18, -7, -18, -15, 2, 33, -23, 36, 8, -6, -6, 8},
         {-18, 3, 3, -12, -42, 1, -35, 27, -32, -15, -25, 31, 7, -23, -12, -25}},
        {{64}, {16, 20, 16, 10, 20, 28, 22, 12, 16, 22, 16, 8, 10, 12, 8, 4}},
        {{0, 0, 0, 0, 0, 0, 64}, {16, -8, -16, 22, 8, -4, -10, 12, -16, 10, 16, -20, -22, 12, 20, -28}},
    };
    forEachLevel([&] {
        for (const auto& c : cases)
            for (const auto& form : forms16s.form) {
                Macroblock<Qov16s> m([&](int x, int y) { return x < 4 && y < 4 ? c.in[4 * y + x] : 0; });
                m.through(form.forward);
                for (int i = 1; i < 16; i++)
                    EXPECT_EQ(c.out[i], m.at(i % 4, i / 4)) << &c - cases << ", coefficient " << i;
                if (form.height == 8) { // where the second level halves a single DC coefficient
                    EXPECT_EQ(c.out[0], m.at(0, 0) + m.at(4, 0)) << &c - cases;
                }
            }
    });
}

TEST(Pct, KnownMacroblocks)
{
    forEachLevel([&] {
        for (const auto& forms : forms32s) {
            Macroblock<Qov32s> all(pattern), half(pattern), quarter(pattern);
            all.through(forms.form[0].forward);
            unsigned hash = 2166136261u;
            for (const Qov32s coefficient : all.sample) hash = (hash ^ unsigned(coefficient)) * 16777619u;
            EXPECT_EQ(0x64e3325au, hash);

            const int g[2][8] = {{-27, -138, -66, -166, 110, 26, -66, -16}, {-82, -138, -66, -166}};
            half.through(forms.form[1].forward);
            quarter.through(forms.form[2].forward);
            for (int i = 0; i < 8; i++) EXPECT_EQ(g[0][i], half.at(i % 2 * 4, i / 2 * 4)) << i;
            for (int i = 0; i < 4; i++) EXPECT_EQ(g[1][i], quarter.at(i % 2 * 4, i / 2 * 4)) << i;
        }
        forEachType([](const auto& forms) {
            for (const auto& form : forms.form) {
                Macroblock m = [&]<class T>(const Form<T>&) {
                    return Macroblock<T>([](int, int) { return 100; });
                }(form);
                m.through(form.forward);
                for (int y = 0; y < form.height; y++)
                    for (int x = 0; x < form.width; x++)
                        ASSERT_EQ(x || y ? 0 : form.width == 16 ? 1600 : 800, m.at(x, y));
            }
        });
    });
}

// The header's limits of 16s, and how far 32f may be off.
TEST(Pct, TypesAgree)
{
    const int limit16s[3] = {1489, 2047, 4095};
    Random random;
    forEachLevel([&] {
        for (int round = 0; round < 300; round++)
            for (int f = 0; f < 3; f++) {
                const int limit = limit16s[f];
                Macroblock<Qov32s> wide([&](int, int) {
                    return round % 2 ? random.in(0, 1) * 2 * limit - limit : random.in(-limit, limit);
                });
                Macroblock<Qov16s> narrow([&](int x, int y) { return wide.at(x, y); });
                Macroblock<Qov32s> small([&](int, int) { return random.in(-100, 100); });
                Macroblock<Qov32f> real([&](int x, int y) { return small.at(x, y); });
                wide.through(forms32s[0].form[f].forward);
                narrow.through(forms16s.form[f].forward);
                small.through(forms32s[0].form[f].forward);
                real.through(forms32f.form[f].forward);
                for (int i = 0; i < 256; i++) {
                    ASSERT_EQ(wide.sample[i], narrow.sample[i]) << "form " << f << ", sample " << i;
                    ASSERT_NEAR(double(small.sample[i]), double(real.sample[i]), 4) << "form " << f;
                }
            }
    });
}

template <class T>
T anySample(Random& random, int exponent)
{
    if constexpr (std::is_integral_v<T>)
        return random.value<T>();
    else
        return std::ldexp(T(random.in(-1 << 24, 1 << 24)), exponent - 24);
}

// Regions of any samples at every level: what the macroblocks of the region give one by one at px, and the
// way back. Catches lanes mixed up, a bound of the words' arithmetic, the wrong form, writes into gaps.
template <class T>
void compareRegion(const Forms<T>& forms, QoviSize roi, int gap, Random& random)
{
    SCOPED_TRACE(testing::Message() << roi.width << "x" << roi.height << ", gap " << gap);
    const int form = roi.height % 16 ? 2 : roi.width % 16 ? 1 : 0;
    const size_t rowBytes = size_t(roi.width) * sizeof(T), step = rowBytes + size_t(gap) * sizeof(T);
    const size_t bytes = step * size_t(roi.height), offset = sizeof(T) * size_t(random.in(0, 15));
    const int exponent = random.in(-90, 90);
    const double largest = std::ldexp(1., exponent);
    Guarded source(bytes, offset), wanted(bytes, offset);
    const auto at = [&](Guarded& samples, int x, int y) -> T& {
        return *(reinterpret_cast<T*>(samples.template as<char>() + size_t(y) * step) + x);
    };
    for (int y = 0; y < roi.height; y++)
        for (int x = 0; x < roi.width; x++)
            at(source, x, y) = at(wanted, x, y) = anySample<T>(random, exponent);
    qovInitCpu(qovCpuPx);
    const Form<T>& one = forms.form[form];
    for (int y = 0; y < roi.height; y += one.height)
        for (int x = 0; x < roi.width; x += one.width)
            ASSERT_EQ(qovStsNoErr, one.forward(&at(wanted, x, y), int(step)));

    const auto expectNear = [&](Guarded& expected, Guarded& result, double bound) {
        for (int y = 0; y < roi.height; y++)
            for (int x = 0; x < roi.width; x++)
                ASSERT_TRUE(near(at(expected, x, y), at(result, x, y), bound * largest))
                    << at(result, x, y) << " for " << at(expected, x, y) << " at " << x << ", " << y;
        ASSERT_TRUE(result.intact(step, rowBytes));
    };
    forEachLevel([&] {
        Guarded result(bytes, offset);
        for (int y = 0; y < roi.height; y++) std::memcpy(&at(result, 0, y), &at(source, 0, y), rowBytes);
        _mm_setcsr(0x1F80 | _MM_ROUND_UP);
        const QovStatus there = forms.forward(&at(result, 0, 0), int(step), roi);
        const unsigned state = _mm_getcsr();
        _mm_setcsr(0x1F80);
        ASSERT_EQ(qovStsNoErr, there);
        ASSERT_EQ(0x1F80u | _MM_ROUND_UP, state);
        expectNear(wanted, result, levelBound);
        ASSERT_EQ(qovStsNoErr, forms.inverse(&at(result, 0, 0), int(step), roi));
        expectNear(source, result, roundTripBound);
    });
}

TEST(Pct, AnyRegion)
{
    const QoviSize sizes[] = {{16, 16}, {32, 16}, {80, 48}, {8, 16}, {24, 32}, {8, 8}, {16, 24}, {24, 8}};
    Random random;
    for (const QoviSize roi : sizes)
        for (int round = 0; round < 12; round++)
            forEachType([&](const auto& forms) {
                if (!testing::Test::HasFatalFailure()) compareRegion(forms, roi, round % 4 * round, random);
            });
}

// The inverse of single macroblocks, of whatever coefficients, and the way back.
TEST(Pct, AnyCoefficients)
{
    Random random;
    forEachType([&]<class T>(const Forms<T>& forms) {
        for (const auto& form : forms.form)
            for (int round = 0; round < 50; round++) {
                const Macroblock<T> source([&](int, int) { return anySample<T>(random, 0); });
                Macroblock<T> wanted = source;
                qovInitCpu(qovCpuPx);
                wanted.through(form.inverse);
                forEachLevel([&] {
                    Macroblock<T> result = source;
                    result.through(form.inverse);
                    for (int i = 0; i < 256; i++)
                        ASSERT_TRUE(near(wanted.sample[i], result.sample[i], levelBound)) << i;
                    result.through(form.forward);
                    for (int i = 0; i < 256; i++)
                        ASSERT_TRUE(near(source.sample[i], result.sample[i], roundTripBound)) << i;
                });
            }
    });
}

// One wrong argument alone, then with all later ones wrong too: the earlier kind of error decides.
TEST(Pct, Statuses)
{
    const struct {
        bool null;
        int elements; // of a step
        QoviSize roi;
        QovStatus status;
    } calls[] = {
        {true, 16, {16, 16}, qovStsNullPtr},      {true, 0, {0, 0}, qovStsNullPtr},
        {false, 16, {0, 16}, qovStsSize},         {false, 16, {16, -16}, qovStsSize},
        {false, 16, {12, 16}, qovStsSize},        {false, 16, {16, 4}, qovStsSize},
        {false, 0, {4, 4}, qovStsSize},           {false, 15, {16, 16}, qovStsStep},
        {false, -16, {16, 16}, qovStsStep},       {false, 7, {8, 8}, qovStsStep},
        {false, 4, {0x7ffffff0, 16}, qovStsStep}, {false, 8, {8, 8}, qovStsNoErr},
        {false, 16, {16, 16}, qovStsNoErr},
    };
    forEachType([&]<class T>(const Forms<T>& forms) {
        Macroblock<T> m([](int, int) { return 1; });
        T* const samples = m.sample;
        for (const auto& c : calls) {
            EXPECT_EQ(c.status,
                      forms.forward(c.null ? nullptr : samples, c.elements * int(sizeof(T)), c.roi));
            EXPECT_EQ(c.status,
                      forms.inverse(c.null ? nullptr : samples, c.elements * int(sizeof(T)), c.roi));
        }
        for (const auto& form : forms.form)
            for (const auto call : {form.forward, form.inverse}) {
                const int step = form.width * int(sizeof(T));
                EXPECT_EQ(qovStsNullPtr, call(nullptr, 0));
                EXPECT_EQ(qovStsStep, call(samples, step - 1));
                EXPECT_EQ(qovStsStep, call(samples, -step));
                EXPECT_EQ(qovStsNoErr, call(samples, step));
            }
    });
}

} // namespace
