// Vector and picture helpers at every level against their definitions, apart and in place.
#include "qov_testing.h"
#include "qovivector.h"
#include "qovs.h"

#include <xmmintrin.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace {

// Elements of either type as their bits, for memory changes its type.
using Bits = Qov32u;
Qov32s whole(Bits v)
{
    return std::bit_cast<Qov32s>(v);
}
Qov32f number(Bits v)
{
    return std::bit_cast<Qov32f>(v);
}
Bits bits(Qov32s v)
{
    return std::bit_cast<Bits>(v);
}
Bits bits(Qov32f v)
{
    const Qov32f normal = std::abs(v) < std::numeric_limits<Qov32f>::min() ? std::copysign(0.f, v) : v;
    return std::bit_cast<Bits>(normal);
}
Qov32f normal(Bits v)
{
    return number(bits(number(v)));
}

Bits held(long double v)
{
    return bits(Qov32s(std::clamp<long double>(v, -2147483648.L, 2147483647.L)));
}
Bits scaled(long double exact, int scale)
{
    return held(std::nearbyint(std::ldexp(exact, -scale)));
}

struct Call {
    void *src1, *src2, *dst;
    int len;
    Bits value;
    int scale;

    const Qov32s* whole1() const { return static_cast<const Qov32s*>(src1); }
    const Qov32s* whole2() const { return static_cast<const Qov32s*>(src2); }
    Qov32s* wholes() const { return static_cast<Qov32s*>(dst); }
    const Qov32f* number1() const { return static_cast<const Qov32f*>(src1); }
    Qov32f* numbers() const { return static_cast<Qov32f*>(dst); }
};

enum Operands { one, two };
enum Places { anywhere, inPlace }; // of the first operand
struct Function {
    const char* name;
    Operands operands;
    Places places;
    bool floats, floatResult;
    QovStatus (*call)(const Call&);
    Bits (*wanted)(Bits a, Bits b, Bits value, int scale);
};

Bits sum(Bits a, Bits b, Bits, int scale)
{
    return scaled(static_cast<long double>(whole(a)) + whole(b), scale);
}
Bits difference(Bits a, Bits b, Bits, int scale)
{
    return scaled(static_cast<long double>(whole(a)) - whole(b), scale);
}
Bits sumC(Bits a, Bits, Bits value, int scale)
{
    return sum(a, value, 0, scale);
}
Bits differenceC(Bits a, Bits, Bits value, int scale)
{
    return difference(a, value, 0, scale);
}
Bits productC(Bits a, Bits, Bits value, int)
{
    return bits(normal(a) * normal(value));
}
Bits floatSum(Bits a, Bits b, Bits, int)
{
    return bits(normal(a) + normal(b));
}
Bits toFloat(Bits a, Bits, Bits, int scale)
{
    return bits(Qov32f(std::ldexp(static_cast<long double>(whole(a)), -scale)));
}
long double exactNumber(Bits a, int scale)
{
    return std::isnan(number(a)) ? 0 : std::ldexp(static_cast<long double>(normal(a)), -scale);
}
Bits toZero(Bits a, Bits, Bits, int scale)
{
    return held(std::trunc(exactNumber(a, scale)));
}
Bits toNearest(Bits a, Bits, Bits, int scale)
{
    return held(std::nearbyint(exactNumber(a, scale)));
}

const Function functions[] = {
    {"Convert_32s32f", one, anywhere, false, true,
     [](const Call& c) { return qovsConvert_32s32f_Sfs(c.whole1(), c.numbers(), c.len, c.scale); }, toFloat},
    {"Convert_32f32s zero", one, anywhere, true, false,
     [](const Call& c) {
         return qovsConvert_32f32s_Sfs(c.number1(), c.wholes(), c.len, qovRndZero, c.scale);
     },
     toZero},
    {"Convert_32f32s near", one, anywhere, true, false,
     [](const Call& c) {
         return qovsConvert_32f32s_Sfs(c.number1(), c.wholes(), c.len, qovRndNear, c.scale);
     },
     toNearest},
    {"MulC_32f", one, anywhere, true, true,
     [](const Call& c) { return qovsMulC_32f(c.number1(), number(c.value), c.numbers(), c.len); }, productC},
    {"MulC_32f_I", one, inPlace, true, true,
     [](const Call& c) { return qovsMulC_32f_I(number(c.value), c.numbers(), c.len); }, productC},
    {"Add_32f_I", two, inPlace, true, true,
     [](const Call& c) { return qovsAdd_32f_I(static_cast<const Qov32f*>(c.src2), c.numbers(), c.len); },
     floatSum},
    {"Add_32s", two, anywhere, false, false,
     [](const Call& c) { return qovsAdd_32s_Sfs(c.whole1(), c.whole2(), c.wholes(), c.len, c.scale); }, sum},
    {"Sub_32s", two, anywhere, false, false,
     [](const Call& c) { return qovsSub_32s_Sfs(c.whole1(), c.whole2(), c.wholes(), c.len, c.scale); },
     difference},
    {"Add_32s_I", two, inPlace, false, false,
     [](const Call& c) { return qovsAdd_32s_ISfs(c.whole2(), c.wholes(), c.len, c.scale); }, sum},
    {"AddC_32s", one, anywhere, false, false,
     [](const Call& c) { return qovsAddC_32s_Sfs(c.whole1(), whole(c.value), c.wholes(), c.len, c.scale); },
     sumC},
    {"AddC_32s_I", one, inPlace, false, false,
     [](const Call& c) { return qovsAddC_32s_ISfs(whole(c.value), c.wholes(), c.len, c.scale); }, sumC},
    {"SubC_32s_I", one, inPlace, false, false,
     [](const Call& c) { return qovsSubC_32s_ISfs(whole(c.value), c.wholes(), c.len, c.scale); },
     differenceC},
    {"RShiftC_32s_I", one, inPlace, false, false,
     [](const Call& c) { return qovsRShiftC_32s_I(int(c.value % 32), c.wholes(), c.len); },
     [](Bits a, Bits, Bits value, int) { return bits(whole(a) >> value % 32); }},
    {"LShiftC_32s", one, anywhere, false, false,
     [](const Call& c) { return qovsLShiftC_32s(c.whole1(), int(c.value % 32), c.wholes(), c.len); },
     [](Bits a, Bits, Bits value, int) { return a << value % 32; }},
};

Bits anyElement(Random& random, bool floats)
{
    if (!floats) return bits(random.value<Qov32s>());
    switch (random.in(0, 4)) {
    case 0: return bits(random.value<Qov32s>());       // also infinities and what is no number
    case 1: return bits(Qov32f(random.in(-9, 9)) / 2); // ties
    case 2: return bits(std::ldexp(Qov32f(random.in(-2, 2)), 30) * (random.oneIn(2) ? 1 : 0.9999999f));
    default: return bits(std::ldexp(Qov32f(random.in(-1 << 24, 1 << 24)), random.in(-26, 10)));
    }
}

bool same(Bits wanted, Bits result, bool floats)
{
    return wanted == result || (floats && std::isnan(number(wanted)) && std::isnan(number(result)));
}

void compare(const Function& f, int len, Random& random)
{
    const size_t n = size_t(len);
    std::vector<Bits> a(n), b(n);
    for (Bits& v : a) v = anyElement(random, f.floats);
    for (Bits& v : b) v = anyElement(random, f.floats);
    const int scales[] = {0, 1, random.in(-40, 40), random.oneIn(2) ? -2000000000 : 2000000000};
    const int scale = scales[random.in(0, 3)];
    const Bits value = anyElement(random, f.floats);
    for (int where = f.places == inPlace ? 1 : 0; where <= (f.places == inPlace ? 1 : int(f.operands) + 1);
         where++) {
        SCOPED_TRACE(testing::Message()
                     << f.name << ", " << len << " elements, scale " << scale << ", destination " << where);
        forEachLevel([&] {
            std::vector<Guarded> memory;
            for (const std::vector<Bits>* v : {&a, &a, &b}) { // destination, first and second operand
                memory.emplace_back(4 * n, 4 * size_t(random.in(0, 15)));
                std::copy(v->begin(), v->end(), memory.back().as<Bits>());
            }
            const Call call = {memory[1].as<void>(),
                               memory[2].as<void>(),
                               memory[size_t(where)].as<void>(),
                               len,
                               value,
                               scale};
            _mm_setcsr(0x1F80 | _MM_ROUND_UP);
            const QovStatus status = f.call(call);
            const unsigned state = _mm_getcsr();
            _mm_setcsr(0x1F80);
            ASSERT_EQ(qovStsNoErr, status);
            ASSERT_EQ(0x1F80u | _MM_ROUND_UP, state);
            for (const Guarded& m : memory) ASSERT_TRUE(m.intact());
            for (size_t i = 0; i < n; i++) {
                const Bits result = memory[size_t(where)].as<Bits>()[i],
                           wanted = f.wanted(a[i], b[i], value, scale);
                ASSERT_TRUE(same(wanted, result, f.floatResult))
                    << std::hex << a[i] << ", " << b[i] << ", " << value << ": " << result << " for "
                    << wanted;
            }
        });
    }
}

// Catches a last vector that is worked on twice in place, sums that wrap, wrong ties, conversions beyond the
// range, and a caller's rounding that counts.
TEST(Vector, EveryLength)
{
    Random random;
    for (const Function& f : functions)
        for (int len = 1; len <= 70; len++) {
            compare(f, len, random);
            if (HasFatalFailure()) return;
        }
}

TEST(Vector, Statuses)
{
    Bits memory[3][2] = {};
    for (const Function& f : functions) {
        SCOPED_TRACE(f.name);
        const Call good = {memory[0], memory[1], memory[2], 1, 0, 0};
        EXPECT_EQ(qovStsNoErr, f.call(good));
        const auto expect = [&](QovStatus status, auto spoil) {
            Call c = good;
            c.len = 0;
            spoil(c);
            EXPECT_EQ(status, f.call(c));
        };
        expect(qovStsSize, [](Call&) {});
        expect(qovStsNullPtr, [](Call& c) { c.dst = nullptr; });
        if (f.places == anywhere) expect(qovStsNullPtr, [](Call& c) { c.src1 = nullptr; });
        if (f.operands == two) expect(qovStsNullPtr, [](Call& c) { c.src2 = nullptr; });
    }
    Qov32s w = 0;
    Qov32f x = 0;
    EXPECT_EQ(qovStsBadArg, qovsConvert_32f32s_Sfs(&x, &w, 1, QovRoundMode(2), 0));
    EXPECT_EQ(qovStsBadArg, qovsRShiftC_32s_I(32, &w, 1));
    EXPECT_EQ(qovStsBadArg, qovsLShiftC_32s(&w, -1, &w, 1));
}

struct PictureFunction {
    const char* name;
    bool floats;
    QovStatus (*call)(void* p, int step, QoviSize roi, Bits value);
    Bits (*wanted)(Bits a, Bits value);
};
const PictureFunction pictureFunctions[] = {
    {"Complement", false,
     [](void* p, int step, QoviSize roi, Bits) {
         return qoviComplement_32s_C1IR(static_cast<Qov32s*>(p), step, roi);
     },
     [](Bits a, Bits) { return whole(a) >= 0 ? a : 0x80000000u - a; }},
    {"LShiftC", false,
     [](void* p, int step, QoviSize roi, Bits value) {
         return qoviLShiftC_32s_C1IR(value, static_cast<Qov32s*>(p), step, roi);
     },
     [](Bits a, Bits value) { return value > 31 ? 0 : a << value; }},
    {"RShiftC", false,
     [](void* p, int step, QoviSize roi, Bits value) {
         return qoviRShiftC_32s_C1IR(value, static_cast<Qov32s*>(p), step, roi);
     },
     [](Bits a, Bits value) { return bits(whole(a) >> std::min(value, 31u)); }},
    {"MulC", true,
     [](void* p, int step, QoviSize roi, Bits value) {
         return qoviMulC_32f_C1IR(number(value), static_cast<Qov32f*>(p), step, roi);
     },
     [](Bits a, Bits value) { return productC(a, 0, value, 0); }},
};

TEST(Picture, EverySize)
{
    Random random;
    for (const PictureFunction& f : pictureFunctions)
        for (int round = 0; round < 100; round++) {
            const QoviSize roi = {random.in(1, 40), random.in(1, 4)};
            const size_t step = size_t(roi.width + (random.oneIn(3) ? 0 : random.in(1, 9)));
            const size_t elements = step * size_t(roi.height), offset = 4 * size_t(random.in(0, 15));
            const Bits counts[] = {Bits(random.in(0, 40)), 32, 0xFFFFFFFF};
            const Bits value = f.floats ? anyElement(random, true) : counts[random.in(0, 2)];
            SCOPED_TRACE(testing::Message()
                         << f.name << " by " << value << ", " << roi.width << "x" << roi.height);
            std::vector<Bits> in(elements);
            for (Bits& v : in) v = anyElement(random, f.floats);
            forEachLevel([&] {
                Guarded memory(4 * elements, offset);
                const auto inside = [&](size_t i) { return i % step < size_t(roi.width); };
                for (size_t i = 0; i < elements; i++)
                    if (inside(i)) memory.as<Bits>()[i] = in[i];
                ASSERT_EQ(qovStsNoErr, f.call(memory.as<void>(), int(4 * step), roi, value));
                ASSERT_TRUE(memory.intact(4 * step, 4 * size_t(roi.width)));
                for (size_t i = 0; i < elements; i++)
                    ASSERT_TRUE(!inside(i) || same(f.wanted(in[i], value), memory.as<Bits>()[i], f.floats))
                        << std::hex << in[i] << ": " << memory.as<Bits>()[i];
            });
            if (HasFatalFailure()) return;
        }
}

TEST(Picture, Statuses)
{
    Bits memory[4] = {};
    for (const PictureFunction& f : pictureFunctions) {
        EXPECT_EQ(qovStsNullPtr, f.call(nullptr, 0, {0, 2}, 1)) << f.name;
        EXPECT_EQ(qovStsSize, f.call(memory, 0, {0, 2}, 1)) << f.name;
        EXPECT_EQ(qovStsSize, f.call(memory, 0, {2, 0}, 1)) << f.name;
        EXPECT_EQ(qovStsStep, f.call(memory, 7, {2, 2}, 1)) << f.name;
        EXPECT_EQ(qovStsNoErr, f.call(memory, 0, {2, 1}, 1)) << f.name;
    }
}

TEST(Picture, Copy)
{
    const Qov16s src[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    const struct {
        int srcStep, dstStep;
        QoviSize roi;
        std::vector<Qov16s> wanted;
    } cases[] = {{6, 6, {3, 2}, {1, 2, 3, 4, 5, 6, 0, 0}},
                 {8, 6, {2, 2}, {1, 2, 0, 5, 6, 0, 0, 0}},
                 {4, 8, {2, 2}, {1, 2, 0, 0, 3, 4, 0, 0}},
                 {0, 0, {5, 1}, {1, 2, 3, 4, 5, 0, 0, 0}}};
    for (const auto& c : cases) {
        std::vector<Qov16s> dst(8);
        EXPECT_EQ(qovStsNoErr, qoviCopy_16s_C1R(src, c.srcStep, dst.data(), c.dstStep, c.roi));
        EXPECT_EQ(c.wanted, dst);
        EXPECT_EQ(qovStsNoErr, qoviCopy_16s_C1R(dst.data(), c.dstStep, dst.data(), c.dstStep, c.roi));
        EXPECT_EQ(c.wanted, dst);
    }
    Qov16s to[2];
    EXPECT_EQ(qovStsNullPtr, qoviCopy_16s_C1R(nullptr, 0, to, 0, {0, 1}));
    EXPECT_EQ(qovStsNullPtr, qoviCopy_16s_C1R(src, 0, nullptr, 0, {0, 1}));
    EXPECT_EQ(qovStsSize, qoviCopy_16s_C1R(src, 0, to, 0, {0, 2}));
    EXPECT_EQ(qovStsStep, qoviCopy_16s_C1R(src, 1, to, 2, {1, 2}));
    EXPECT_EQ(qovStsStep, qoviCopy_16s_C1R(src, 2, to, 1, {1, 2}));
}

TEST(Picture, Memory)
{
    for (const int width : {1, 64, 65, 1000}) {
        int step = 0;
        Qov8u* const p = qoviMalloc_8u_C1(width, 3, &step);
        ASSERT_NE(nullptr, p);
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(p) % 64);
        EXPECT_EQ((width + 63) / 64 * 64, step);
        std::memset(p, 1, 3 * size_t(step));
        qoviFree(p);
    }
    int step = 5;
    const int most = std::numeric_limits<int>::max();
    const QoviSize wrong[] = {{0, 1},      {1, 0}, {-1, -1}, {most, 1}, {1, most}, {1 << 16, 1 << 15},
                              {most, most}};
    for (const QoviSize& size : wrong) EXPECT_EQ(nullptr, qoviMalloc_8u_C1(size.width, size.height, &step));
    EXPECT_EQ(nullptr, qoviMalloc_8u_C1(1, 1, nullptr));
    EXPECT_EQ(5, step);
    qoviFree(nullptr);
}

} // namespace
