// Component transforms against the formulas of T.800, annex G, and equal at every level; the reversible one
// there and back; no traces in the floating-point state.
#include "qov_testing.h"
#include "qovicomponent.h"

#include <xmmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <type_traits>

namespace {

template <class T>
using Pixel = std::array<T, 3>;

enum class Shape { inPlace, toPlanes, fromPlanes };

// What a call is given; an interleaved side has one plane only, and a call in place no source.
template <class T>
struct Arguments {
    const T* src[3];
    int srcStep;
    T* dst[3];
    int dstStep;
    QoviSize roi;
};

template <class T>
struct Function {
    const char* name;
    Shape shape;
    QovStatus (*call)(const Arguments<T>&);
    void (*verify)(const Pixel<T>& in, const Pixel<T>& out);

    int srcChannels() const { return shape == Shape::toPlanes ? 3 : 1; }
    int dstChannels() const { return shape == Shape::fromPlanes ? 3 : 1; }
    size_t srcPlanes() const { return shape == Shape::toPlanes ? 1 : 3; }
    size_t dstPlanes() const { return shape == Shape::fromPlanes ? 1 : 3; }
};

template <auto function, class T>
QovStatus inPlace(const Arguments<T>& a)
{
    return function(a.dst, a.dstStep, a.roi);
}
template <auto function, class T>
QovStatus toPlanes(const Arguments<T>& a)
{
    return function(a.src[0], a.srcStep, a.dst, a.dstStep, a.roi);
}
template <auto function, class T>
QovStatus fromPlanes(const Arguments<T>& a)
{
    return function(a.src, a.srcStep, a.dst[0], a.dstStep, a.roi);
}

template <class T>
void rctForward(const Pixel<T>& in, const Pixel<T>& out)
{
    const Qov64s r = in[0], g = in[1], b = in[2];
    ASSERT_EQ(T((r + 2 * g + b) >> 2), out[0]);
    ASSERT_EQ(T(b - g), out[1]);
    ASSERT_EQ(T(r - g), out[2]);
}

template <class T>
void rctInverse(const Pixel<T>& in, const Pixel<T>& out)
{
    const Qov64s y = in[0], u = in[1], v = in[2], g = T(y - ((u + v) >> 2));
    ASSERT_EQ(T(v + g), out[0]);
    ASSERT_EQ(T(g), out[1]);
    ASSERT_EQ(T(u + g), out[2]);
}

typedef Pixel<Pixel<long double>> Matrix;
const Matrix forwardMatrix = {
    {{0.299L, 0.587L, 0.114L}, {-0.16875L, -0.33126L, 0.5L}, {0.5L, -0.41869L, -0.08131L}}};
const Matrix inverseMatrix = {{{1, 0, 1.402L}, {1, -0.344136L, -0.714136L}, {1, 1.772L, 0}}};

template <class T, const Matrix& matrix>
void ict(const Pixel<T>& in, const Pixel<T>& out)
{
    for (size_t c = 0; c < 3; c++) {
        long double exact = 0, largest = 0;
        for (size_t k = 0; k < 3; k++) {
            exact += matrix[c][k] * in[k];
            largest = std::max(largest, std::abs(static_cast<long double>(in[k])));
        }
        if constexpr (std::is_integral_v<T>) {
            exact =
                std::clamp<long double>(exact, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
            ASSERT_LE(std::abs(exact - out[c]), 0.5L + 1e-5L) << "component " << c;
        } else {
            ASSERT_LE(std::abs(exact - static_cast<long double>(out[c])), 3e-7L * largest)
                << "component " << c;
        }
    }
}

#define RCT(T)                                                                                               \
    {"RCTFwd P3I", Shape::inPlace, inPlace<qoviRCTFwd_JPEG2K_##T##_P3IR>, rctForward<Qov##T>},               \
        {"RCTInv P3I", Shape::inPlace, inPlace<qoviRCTInv_JPEG2K_##T##_P3IR>, rctInverse<Qov##T>},           \
        {"RCTFwd C3P3", Shape::toPlanes, toPlanes<qoviRCTFwd_JPEG2K_##T##_C3P3R>, rctForward<Qov##T>},       \
    {                                                                                                        \
        "RCTInv P3C3", Shape::fromPlanes, fromPlanes<qoviRCTInv_JPEG2K_##T##_P3C3R>, rctInverse<Qov##T>      \
    }
#define ICT(T)                                                                                               \
    {"ICTFwd P3I", Shape::inPlace, inPlace<qoviICTFwd_JPEG2K_##T##_P3IR>, ict<Qov##T, forwardMatrix>},       \
    {                                                                                                        \
        "ICTInv P3I", Shape::inPlace, inPlace<qoviICTInv_JPEG2K_##T##_P3IR>, ict<Qov##T, inverseMatrix>      \
    }
const Function<Qov16s> functions16s[] = {RCT(16s), ICT(16s)};
const Function<Qov32s> functions32s[] = {RCT(32s), ICT(32s)};
const Function<Qov32f> functions32f[] = {
    ICT(32f),
    {"ICTFwd C3P3", Shape::toPlanes, toPlanes<qoviICTFwd_JPEG2K_32f_C3P3R>, ict<Qov32f, forwardMatrix>},
    {"ICTInv P3C3", Shape::fromPlanes, fromPlanes<qoviICTInv_JPEG2K_32f_P3C3R>, ict<Qov32f, inverseMatrix>}};

template <class T>
T anyValue(Random& random)
{
    if constexpr (std::is_integral_v<T>)
        return random.value<T>();
    else
        return std::ldexp(T(random.in(-1 << 24, 1 << 24)), random.in(-60, 60));
}

// Element x of row y of component c.
template <class Plane>
auto& element(Plane* const* planes, int step, int channels, int x, int y, int c)
{
    auto* row = reinterpret_cast<std::conditional_t<std::is_const_v<Plane>, const char, char>*>(
                    planes[channels == 1 ? c : 0]) +
                ptrdiff_t(y) * step;
    return reinterpret_cast<Plane*>(row)[x * channels + (channels == 1 ? 0 : c)];
}

template <class T>
void comparePictures(const Function<T>& f)
{
    Random random;
    for (int round = 0; round < 150; round++) {
        Arguments<T> a{};
        a.roi = {random.oneIn(3) ? random.in(60, 300) : random.in(1, 60), random.in(1, 5)};
        SCOPED_TRACE(testing::Message() << f.name << " " << a.roi.width << "x" << a.roi.height);
        const bool packed = random.oneIn(3);
        const auto rowBytes = [&](int channels) { return int(sizeof(T)) * channels * a.roi.width; };
        const auto step = [&](int channels) {
            return rowBytes(channels) + (packed ? 0 : int(sizeof(T)) * random.in(0, 20));
        };
        a.srcStep = step(f.srcChannels());
        a.dstStep = f.shape == Shape::inPlace ? a.srcStep : step(f.dstChannels());

        // A source is a block of its own that ends with the last pixel, for the address sanitizer.
        const size_t misfit = size_t(random.in(0, 15)), step0 = size_t(a.srcStep) / sizeof(T);
        const size_t elements =
            misfit + step0 * size_t(a.roi.height - 1) + size_t(rowBytes(f.srcChannels())) / sizeof(T);
        std::unique_ptr<T[]> blocks[3];
        for (size_t i = 0; i < f.srcPlanes(); i++) {
            blocks[i] = std::make_unique<T[]>(elements);
            for (size_t k = 0; k < elements; k++) blocks[i][k] = anyValue<T>(random);
            a.src[i] = blocks[i].get() + misfit;
        }
        const size_t offset = sizeof(T) * size_t(random.in(0, 63 / int(sizeof(T))));
        const size_t dstBytes = size_t(rowBytes(f.dstChannels()));
        std::vector<Guarded> first, other;
        forEachLevel([&] {
            const bool isFirst = first.empty();
            std::vector<Guarded>& to = isFirst ? first : other;
            to.clear();
            for (size_t i = 0; i < f.dstPlanes(); i++)
                to.emplace_back(size_t(a.dstStep) * size_t(a.roi.height), offset);
            for (size_t i = 0; i < f.dstPlanes(); i++) {
                a.dst[i] = to[i].template as<T>();
                for (int y = 0; f.shape == Shape::inPlace && y < a.roi.height; y++)
                    std::memcpy(&element(a.dst, a.dstStep, 1, 0, y, int(i)),
                                &element(a.src, a.srcStep, 1, 0, y, int(i)), dstBytes);
            }
            ASSERT_EQ(qovStsNoErr, f.call(a));
            for (size_t i = 0; i < f.dstPlanes(); i++) {
                ASSERT_TRUE(to[i].intact(size_t(a.dstStep), dstBytes)) << "plane " << i;
                for (int y = 0; y < a.roi.height; y++)
                    ASSERT_EQ(0, std::memcmp(first[i].template as<char>() + ptrdiff_t(y) * a.dstStep,
                                             to[i].template as<char>() + ptrdiff_t(y) * a.dstStep, dstBytes))
                        << "plane " << i << ", row " << y;
            }
            for (int y = 0; isFirst && y < a.roi.height; y++)
                for (int x = 0; x < a.roi.width; x++) {
                    Pixel<T> in, out;
                    for (size_t c = 0; c < 3; c++) {
                        in[c] = element(a.src, a.srcStep, f.srcChannels(), x, y, int(c));
                        out[c] = element(a.dst, a.dstStep, f.dstChannels(), x, y, int(c));
                    }
                    SCOPED_TRACE(testing::Message() << "pixel " << x << ", " << y);
                    ASSERT_NO_FATAL_FAILURE(f.verify(in, out));
                }
        });
        if (testing::Test::HasFatalFailure()) return;
    }
}

template <class T>
void checkStatuses(const Function<T>& f)
{
    SCOPED_TRACE(f.name);
    std::vector<T> elements(300);
    Arguments<T> good{};
    good.roi = {9, 2};
    for (int i = 0; i < 3; i++) {
        good.src[i] = elements.data();
        good.dst[i] = elements.data() + 60 * (i + 1);
    }
    good.srcStep = int(sizeof(T)) * 9 * f.srcChannels();
    good.dstStep = int(sizeof(T)) * 9 * f.dstChannels();
    EXPECT_EQ(qovStsNoErr, f.call(good));

    // One wrong argument, and with it all those that are looked at later.
    const auto expect = [&](QovStatus status, auto spoil, bool withLater = true) {
        Arguments<T> a = good;
        if (withLater) a.srcStep = a.dstStep = -1;
        spoil(a);
        EXPECT_EQ(status, f.call(a));
    };
    const bool hasSource = f.shape != Shape::inPlace;
    if (hasSource)
        expect(
            qovStsStep, [](auto& a) { a.srcStep--; }, false);
    expect(
        qovStsStep, [](auto& a) { a.dstStep--; }, false);
    expect(qovStsNoErr, [](auto& a) { a.roi.height = 1; });
    expect(qovStsSize, [](auto& a) { a.roi.width = 0; });
    expect(qovStsSize, [](auto& a) { a.roi.height = -1; });
    for (size_t i = 0; hasSource && i < f.srcPlanes(); i++)
        expect(qovStsNullPtr, [i](auto& a) { a.src[i] = nullptr, a.roi.width = 0; });
    for (size_t i = 0; i < f.dstPlanes(); i++)
        expect(qovStsNullPtr, [i](auto& a) { a.dst[i] = nullptr, a.roi.width = 0; });
}

// Catches wrong components, lanes and tails, sums that lose their top bits, accesses beside the rows, and a
// level that rounds otherwise.
TEST(ComponentTransform, AnyPicture)
{
    for (const auto& f : functions16s) comparePictures(f);
    for (const auto& f : functions32s) comparePictures(f);
    for (const auto& f : functions32f) comparePictures(f);
}

TEST(ComponentTransform, Statuses)
{
    for (const auto& f : functions16s) checkStatuses(f);
    for (const auto& f : functions32s) checkStatuses(f);
    for (const auto& f : functions32f) checkStatuses(f);
    EXPECT_EQ(qovStsNullPtr, qoviRCTFwd_JPEG2K_16s_P3IR(nullptr, 2, {1, 1}));
}

template <class T, auto forward, auto inverse>
void thereAndBack()
{
    Random random;
    // Differences of these fit, also where the sums don't.
    const int low = std::numeric_limits<T>::min() / 2, high = std::numeric_limits<T>::max() / 2;
    constexpr int count = 20000;
    std::vector<T> pixels(3 * count), back(3 * count), planes(3 * count);
    for (T& v : pixels) v = T(random.oneIn(3) ? random.oneIn(2) ? low : high : random.in(low, high));
    T* const to[3] = {planes.data(), planes.data() + count, planes.data() + 2 * count};
    const T* const from[3] = {to[0], to[1], to[2]};
    forEachLevel([&] {
        ASSERT_EQ(qovStsNoErr, forward(pixels.data(), 0, to, 0, {count, 1}));
        ASSERT_EQ(qovStsNoErr, inverse(from, 0, back.data(), 0, {count, 1}));
        ASSERT_EQ(pixels, back);
    });
}

TEST(ComponentTransform, ReversibleThereAndBack)
{
    thereAndBack<Qov16s, qoviRCTFwd_JPEG2K_16s_C3P3R, qoviRCTInv_JPEG2K_16s_P3C3R>();
    thereAndBack<Qov32s, qoviRCTFwd_JPEG2K_32s_C3P3R, qoviRCTInv_JPEG2K_32s_P3C3R>();
}

// Any bits, and a state that the caller has set up otherwise: nothing is raised, the state is as before, and
// the caller's rounding does not count.
TEST(ComponentTransform, FloatingPointState)
{
    const Qov32f nan = std::numeric_limits<Qov32f>::signaling_NaN(), most = 3.4e38f, tiny = 1e-42f;
    const Qov32f infinity = std::numeric_limits<Qov32f>::infinity();
    const Qov32f odd[] = {1, tiny, -tiny, most, -most, infinity, -infinity, nan, 1.2e-38f, -1.3e-38f, 0};
    const unsigned usual = _mm_getcsr();
    forEachLevel([&] {
        for (const unsigned state : {0x1F80u, 0x1F80u | _MM_ROUND_UP, 0x1F80u | _MM_EXCEPT_INVALID})
            for (const auto& f : functions32f) {
                std::vector<Qov32f> src(3 * 121), dst(3 * 121);
                for (size_t i = 0; i < src.size(); i++) src[i] = odd[(i % 3 == 0 ? i : i * 7 / 11) % 11];
                if (f.shape == Shape::inPlace) dst = src;
                Qov32f *s = src.data(), *d = dst.data();
                const Arguments<Qov32f> a = {{s, s + 121, s + 242}, 0, {d, d + 121, d + 242}, 0, {121, 1}};
                _mm_setcsr(state);
                const QovStatus status = f.call(a);
                const unsigned after = _mm_getcsr();
                _mm_setcsr(usual);
                ASSERT_EQ(qovStsNoErr, status);
                ASSERT_EQ(state, after) << f.name;
            }
    });

    // 0.299 goes to the nearest number, not to the next one upwards.
    Qov16s planes[3][1] = {{1}, {0}, {0}};
    Qov16s* const pixel[3] = {planes[0], planes[1], planes[2]};
    _mm_setcsr(usual | _MM_ROUND_UP);
    qoviICTFwd_JPEG2K_16s_P3IR(pixel, 2, {1, 1});
    _mm_setcsr(usual);
    EXPECT_EQ(0, planes[0][0]);
}

} // namespace
