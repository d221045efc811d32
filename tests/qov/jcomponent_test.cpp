// Component transforms against the formulas of T.800, annex G, and equal at every level; the reversible one
// there and back; no traces in the floating-point state.
#include "planes_testing.h"
#include "qovicomponent.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <limits>

// Numbers of 24 bits, and of sizes far from the ends of the range.
template <>
Qov32f Random::value<Qov32f>()
{
    return std::ldexp(Qov32f(in(-1 << 24, 1 << 24)), in(-60, 60));
}

namespace {

template <class T>
using Pixel = std::array<T, 3>;

// A call in place, after the planes are copied to where it works. A short step is handed on.
template <class T>
auto inPlace(QovStatus (*function)(T* const*, int, QoviSize))
{
    return [function](const Arguments& a) {
        const Side<T* const*> planes(a.dst);
        const size_t rowBytes = sizeof(T) * size_t(std::max(a.roi.width, 0));
        T* given[3];
        for (int i = 0; i < 3; i++) {
            given[i] = a.src[i] ? planes.planes[i] : nullptr;
            for (int y = 0; given[i] && a.srcStep[0] > 0 && a.dstStep[0] > 0 && y < a.roi.height; y++)
                std::memcpy(a.dst[i] + ptrdiff_t(y) * a.dstStep[0], a.src[i] + ptrdiff_t(y) * a.srcStep[0],
                            rowBytes);
        }
        const bool shortSource = a.srcStep[0] < int(rowBytes);
        return function(given, shortSource ? a.srcStep[0] : a.dstStep[0], a.roi);
    };
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
        const long double low = std::numeric_limits<T>::lowest(), high = std::numeric_limits<T>::max();
        if constexpr (sizeof(T) == 2) // sums of millionths
            ASSERT_EQ(std::clamp(std::floor(exact + 0.5L + 1e-8L), low, high), out[c]) << "component " << c;
        else if constexpr (std::is_integral_v<T>)
            ASSERT_LE(std::abs(std::clamp(exact, low, high) - out[c]), 0.5L + 1e-5L) << "component " << c;
        else
            ASSERT_LE(std::abs(exact - static_cast<long double>(out[c])), 3e-7L * largest)
                << "component " << c;
    }
}

template <class T>
struct Function {
    PlanesFunction function;
    void (*verify)(const Pixel<T>& in, const Pixel<T>& out);
};

template <class T>
Function<T> make(const char* name, const Layout& src, const Layout& dst,
                 std::function<QovStatus(const Arguments&)> call,
                 void (*verify)(const Pixel<T>&, const Pixel<T>&))
{
    const auto inBytes = [](Layout layout) {
        for (int& elements : layout) elements *= int(sizeof(T));
        return layout;
    };
    return {{name, inBytes(src), inBytes(dst), call, sizeof(T), fillWith<T>}, verify};
}

#define IN_PLACE(name, T, verify)                                                                            \
    make<Qov##T>(#name " P3I", {1, 1, 1}, {1, 1, 1}, inPlace(qovi##name##_JPEG2K_##T##_P3IR), verify)
#define TO_PLANES(name, T, verify)                                                                           \
    make<Qov##T>(#name " C3P3", {3}, {1, 1, 1}, call(qovi##name##_JPEG2K_##T##_C3P3R), verify)
#define FROM_PLANES(name, T, verify)                                                                         \
    make<Qov##T>(#name " P3C3", {1, 1, 1}, {3}, call(qovi##name##_JPEG2K_##T##_P3C3R), verify)
#define RCT(T)                                                                                               \
    IN_PLACE(RCTFwd, T, rctForward<Qov##T>), IN_PLACE(RCTInv, T, rctInverse<Qov##T>),                        \
        TO_PLANES(RCTFwd, T, rctForward<Qov##T>), FROM_PLANES(RCTInv, T, rctInverse<Qov##T>)
#define ICT(T)                                                                                               \
    IN_PLACE(ICTFwd, T, (ict<Qov##T, forwardMatrix>)), IN_PLACE(ICTInv, T, (ict<Qov##T, inverseMatrix>))
const Function<Qov16s> functions16s[] = {RCT(16s), ICT(16s)};
const Function<Qov32s> functions32s[] = {RCT(32s), ICT(32s)};
const Function<Qov32f> functions32f[] = {ICT(32f), TO_PLANES(ICTFwd, 32f, (ict<Qov32f, forwardMatrix>)),
                                         FROM_PLANES(ICTInv, 32f, (ict<Qov32f, inverseMatrix>))};

// Catches wrong components, lanes and tails, sums that lose their top bits, accesses beside the rows, and a
// level that rounds otherwise; then the statuses.
template <class T, size_t count>
void check(const Function<T> (&functions)[count])
{
    for (const auto& [f, verify] : functions) {
        comparePictures(f, false, 150, [&f = f, verify = verify](const Arguments& a) {
            for (int y = 0; y < a.roi.height; y++)
                for (int x = 0; x < a.roi.width; x++) {
                    Pixel<T> in, out;
                    for (size_t c = 0; c < 3; c++) {
                        in[c] = sample<T>(f.src, a.src, a.srcStep, x, y, int(c));
                        out[c] = sample<T>(f.dst, a.dst, a.dstStep, x, y, int(c));
                    }
                    SCOPED_TRACE(testing::Message() << "pixel " << x << ", " << y);
                    ASSERT_NO_FATAL_FAILURE(verify(in, out));
                }
        });
        checkStatuses(f, false);
    }
}

TEST(ComponentTransform, AnyPictureAndStatuses)
{
    check(functions16s);
    check(functions32s);
    check(functions32f);
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
            for (const auto& [f, verify] : functions32f) {
                std::vector<Qov32f> src(3 * 121), dst(3 * 121);
                for (size_t i = 0; i < src.size(); i++) src[i] = odd[(i % 3 == 0 ? i : i * 7 / 11) % 11];
                Arguments a{};
                for (size_t i = 0; i < 3; i++) {
                    a.src[i] = reinterpret_cast<Qov8u*>(src.data() + 121 * i);
                    a.dst[i] = reinterpret_cast<Qov8u*>(dst.data() + 121 * i);
                }
                a.srcStep[0] = a.dstStep[0] = 121 * int(sizeof(Qov32f));
                a.roi = {121, 1};
                _mm_setcsr(state);
                const QovStatus status = f.call(a);
                const unsigned after = _mm_getcsr();
                _mm_setcsr(usual);
                ASSERT_EQ(qovStsNoErr, status);
                ASSERT_EQ(state, after) << f.name;
            }
    });

    // 0.299 goes to the nearest number, not to the next one upwards.
    Qov32s planes[3][1] = {{1}, {0}, {0}};
    Qov32s* const pixel[3] = {planes[0], planes[1], planes[2]};
    _mm_setcsr(usual | _MM_ROUND_UP);
    qoviICTFwd_JPEG2K_32s_P3IR(pixel, 4, {1, 1});
    _mm_setcsr(usual);
    EXPECT_EQ(0, planes[0][0]);
}

} // namespace
