#include "qdvector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "fill_cases.h"
#include "fill_expected.h"
#include "qktest.h"
#include "support/capture.h"

using std::string;

namespace {

const double inf = std::numeric_limits<double>::infinity();
const double two63 = 9223372036854775808.0;

// The session's alignment, and the counters that the run loop clears for each parameter set.
class Vector : public testing::Test {
protected:
    Vector()
    {
        qkTest::m_vectorNum = qkTest::m_vectorShift = 0;
        qdVector::m_seed = 456;
    }
    ~Vector() override
    {
        qkSetVectorAlign(0);
        qkSetAlignByByte(true);
        qkSetAlignSrc(true);
    }
};

} // namespace

TEST_F(Vector, OnlyThePointerOfItsTypeIsSet){
#define CHECK(name, part, code)                                                                              \
    {                                                                                                        \
        qdVector v(qd##name);                                                                                \
        EXPECT_EQ(v.m_##name, nullptr);                                                                      \
        ASSERT_TRUE(v.createVector(3));                                                                      \
        EXPECT_EQ(static_cast<void*>(v.m_##name), v.m_data);                                                 \
        EXPECT_EQ(v.size(), int(3 * sizeof(Qov##name)));                                                     \
        EXPECT_EQ(v.getPointerAt(2), v.m_##name + 2);                                                        \
        EXPECT_EQ(static_cast<void*>(v.m_8u) != nullptr, qd##name == qd8u);                                  \
        EXPECT_EQ(static_cast<void*>(v.m_64fc) != nullptr, qd##name == qd64fc);                              \
        v.deleteVector();                                                                                    \
        EXPECT_EQ(v.m_##name, nullptr);                                                                      \
        EXPECT_EQ(v.getPointerAt(0), nullptr);                                                               \
    }
    QD_TYPES(CHECK)
#undef CHECK
}

TEST_F(Vector, TakesItsTypeFromTheFunction)
{
    const qdFunc func("qoviAdd128_JPEG_16s8u_C3P3R");
    qdVector v(func, qdArgDst);
    EXPECT_EQ(v.m_type, qd8u);
    EXPECT_STREQ(v.func().c_str(), "_8u_P3");
    ASSERT_TRUE(v.createVector(5));
    EXPECT_STREQ(v.objectInfo().c_str(), "Vector 8u len=5");
    v.init(func, 1);
    EXPECT_EQ(v.m_type, qd16s);
    EXPECT_STREQ(v.func().c_str(), "_16s_C3");
    EXPECT_EQ(v.m_data, nullptr) << "a new type empties the vector";
    EXPECT_EQ(qdVector::item(v.func()), 2);
}

TEST_F(Vector, LimitsOfProducts)
{
    EXPECT_EQ(qdVector::MAXABS_32F, 0.4 * std::sqrt(3.4028234663852886e+38));
    EXPECT_EQ(qdVector::MAXABS_64F, 0.4 * std::sqrt(1.7976931348623157e+308));
    EXPECT_EQ(qdVector::getMaxValue(qd64u), two63);
    EXPECT_EQ(qdVector::getMinValue(qd16sc), -32768);
    EXPECT_EQ(qdVector::getMinAbsValue(qd32fc), 1.1754943508222875e-38);
    EXPECT_EQ(qdVector::getMaxValue(qdUndef), 0);
}

// ---- Memory

TEST_F(Vector, RefusesWhatCannotBeAllocated)
{
    struct {
        qdType type;
        int len;
        const char* bytes;
    } const cases[] = {{qd8u, 0, "0"},
                       {qd16s, -3, "-6"},
                       {qd64f, 0x20000000, "4294967296"}, // 32 bits would wrap to 0
                       {qd64fc, 0x7FFFFFFF, "34359738352"},
                       {qdUndef, 7, "0"}};
    for (const auto& c : cases) {
        LevelCapture out(g_ostrm);
        qdVector v(c.type);
        EXPECT_FALSE(v.createVector(c.len));
        EXPECT_EQ(out.take(), string("-- Memory error: can't allocate ") + c.bytes + " bytes\n");
        EXPECT_EQ(v.m_data, nullptr);
        EXPECT_EQ(v.m_len, 0);
    }
}

// A negative alignment counts the session's misalignment in bytes or in elements, for the first vector only.
TEST_F(Vector, AlignsByBytesOrElements)
{
    struct {
        bool byByte;
        int align;
        int distance;
    } const cases[] = {{true, -1, 3}, {false, -1, 12}, {true, 5, 5}, {false, 5, 5}, {true, 0, 0}};
    qkSetVectorAlign(3);
    for (const auto& c : cases) {
        qkTest::m_vectorNum = 0;
        qkSetAlignByByte(c.byByte);
        qdVector first(qd32s), second(qd32s);
        ASSERT_TRUE(first.createVector(10, c.align) && second.createVector(10, c.align));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(first.m_data) % 64, unsigned(c.distance));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(second.m_data) % 64, unsigned(c.align < 0 ? 0 : c.align));
    }
}

TEST_F(Vector, IsItsOwnOwnerOrHasOne)
{
    qdVector a(qd8u), b(qd8u);
    ASSERT_TRUE(a.createVector(4) && b.createVector(4, 0, MEM_OBJECT_IS_SUBOBJECT));
    void* owner = nullptr;
    int size = 0;
    ASSERT_TRUE(qkMallocInfo(a.m_data, &size, &owner));
    EXPECT_EQ(owner, static_cast<qkObject*>(&a));
    EXPECT_EQ(size, 4);
    ASSERT_TRUE(qkMallocInfo(b.m_data, &size, &owner));
    EXPECT_EQ(owner, MEM_OBJECT_IS_SUBOBJECT);
}

// ---- Fills

TEST_F(Vector, FillsAreFixedToTheBit)
{
    for (const FillCase& c : vectorCases) {
        qdVector v(c.type);
        ASSERT_TRUE(v.createVector(c.n));
        qdVector::m_seed = 456;
        if (c.fill == fillJaehne)
            v.setJaehne(c.a);
        else
            v.setVector(c.fill == fillRandom ? SET_RANDOM : SET_SEQUENCE, c.a, c.b);
        Digest digest;
        digest.add(v.m_data, v.size());
        SCOPED_TRACE(testing::Message() << v.objectInfo().c_str() << " fill " << c.fill);
        EXPECT_EQ(digest.head(), c.head);
        EXPECT_EQ(digest.value(), c.digest);
        EXPECT_EQ(qdVector::m_seed, c.seed);
    }
}

// A misaligned vector gets the same data.
TEST_F(Vector, FillsAtAnyAddress)
{
    qdVector aligned(qd32f), odd(qd32f);
    ASSERT_TRUE(aligned.createVector(50, 0) && odd.createVector(50, 3));
    for (SetMode mode : {SET_RANDOM, SET_SEQUENCE, SET_DEFAULT}) {
        qdVector::m_seed = 1;
        aligned.setVector(mode, 0, 9);
        qdVector::m_seed = 1;
        odd.setVector(mode, 0, 9);
        EXPECT_EQ(aligned.getString(), odd.getString());
    }
    odd.setJaehne();
    aligned.setJaehne();
    EXPECT_EQ(std::memcmp(aligned.m_data, odd.m_data, 200), 0);
}

TEST_F(Vector, RandomGoesOnFromTheSeed)
{
    qdVector v(qd8u);
    ASSERT_TRUE(v.createVector(64));
    v.setRandom(0, 255, 456);
    const qkString first = v.getString();
    v.setRandom(0, 255);
    EXPECT_NE(first, v.getString());
    v.setRandom(0, 255, 456);
    EXPECT_EQ(first, v.getString());
    const unsigned seed = qdVector::m_seed;
    v.setDataRandom(v.m_data, 0, 0, 1);
    EXPECT_EQ(qdVector::m_seed, seed) << "nothing was drawn";
}

// Truncation towards zero, low bits of the 64-bit value, both halves of 64u, the ends of 64s.
TEST_F(Vector, ConstantsAreConverted)
{
    struct {
        qdType type;
        double value;
        double stored;
    } const cases[] = {
        {qd8u, 300.9, 44},
        {qd8u, -1.9, 255},
        {qd8s, 128, -128},
        {qd16s, -32769, 32767},
        {qd32u, -1, 4294967295.0},
        {qd32s, 3e9, -1294967296.0},
        {qd64s, 1e30, two63},
        {qd64s, -1e30, -two63},
        {qd64u, two63, two63},
        {qd64u, two63 + 4096, two63 + 4096},
        {qd64u, 5.5, 5},
        {qd64s, std::nan(""), 0},
        {qd32f, 0.1, double(0.1f)},
        {qd64f, 0.1, 0.1},
    };
    for (const auto& c : cases) {
        qdVector v(c.type);
        ASSERT_TRUE(v.createVector(2, SET_CONST, c.value));
        EXPECT_EQ(v.getIndex(1), c.stored) << v.objectInfo().c_str() << " " << c.value;
    }
}

TEST_F(Vector, ModesOfWholeVectors)
{
    struct {
        SetMode mode;
        const char *bytes, *floatComplex;
    } const cases[] = {
        {SET_DEFAULT, "   2   2", " (       1.00001,       1.00001)"},
        {SET_ZERO, "   0   0", " (             0,             0)"},
        {SET_ONE, "   1   1", " (             1,             0)"},
        {SET_MAX, " 255 255", " (    7.3787e+18,    7.3787e+18)"},
        {SET_MIN, "   0   0", " (   -7.3787e+18,   -7.3787e+18)"},
        {SET_CONST, "   5   5", " (             5,            -6)"},
        {SET_SEQUENCE, "   5   5", " (             5,             5)"},
    };
    for (const auto& c : cases) {
        qdVector bytes(qd8u), complex(qd32fc);
        ASSERT_TRUE(bytes.createVector(2, c.mode, 5, -6) && complex.createVector(1, c.mode, 5, -6));
        EXPECT_STREQ(bytes.getString().c_str(), c.bytes) << c.mode;
        EXPECT_STREQ(complex.getString().c_str(), c.floatComplex) << c.mode;
    }
}

TEST_F(Vector, EndsOf64BitIntegersAreExact)
{
    qdVector s(qd64sc), u(qd64u);
    ASSERT_TRUE(s.createVector(2, SET_MAX) && u.createVector(1, SET_MAX));
    EXPECT_EQ(s.m_64sc[1].re, INT64_MAX);
    EXPECT_EQ(s.m_64sc[1].im, INT64_MAX);
    EXPECT_EQ(u.m_64u[0], 1ull << 63);
    s.setMinValue();
    EXPECT_EQ(s.m_64sc[1].im, INT64_MIN);
}

// Whole ramps are among the fixed fills.
TEST_F(Vector, RampsOfStepsStayAtTheEndOrBeginAgain)
{
    qdVector v(qd16s);
    ASSERT_TRUE(v.createVector(11));
    v.setSequence(0, 4, 2, false);
    EXPECT_EQ(v.getIndex(2), 4);
    EXPECT_EQ(v.getIndex(3), 4);
    v.setSequence(0, 4, 2, true);
    EXPECT_EQ(v.getIndex(3), 0);
    ASSERT_TRUE(v.createVector(1));
    v.setSequence(3, 10);
    EXPECT_EQ(v.m_16s[0], 3);
}

TEST_F(Vector, SingleElements)
{
    qdVector v(qd16sc);
    ASSERT_TRUE(v.createVector(3));
    double re, im;
    struct {
        SetMode mode;
        double re, im;
    } const cases[] = {{SET_DEFAULT, 0, 0},       {SET_ONE, 1, 0},   {SET_MAX, 32767, 32767},
                       {SET_MIN, -32768, -32768}, {SET_CONST, 5, 6}, {SET_SEQUENCE, 5, 0}};
    for (const auto& c : cases) {
        v.setIndex(1, c.mode, 5, 6);
        v.getIndex(1, re, im);
        EXPECT_TRUE(re == c.re && im == c.im) << c.mode;
    }
    v.setIndex(1, SET_RANDOM, 10, 12);
    v.getIndex(1, re, im);
    EXPECT_TRUE(re >= 10 && re <= 12 && im >= 10 && im <= 12);
    EXPECT_EQ(v.getIndex(0), 2) << "the neighbours stay";
    EXPECT_EQ(v.getIndex(2), 2);
}

// A random float element takes the type's limits, where a vector takes -1 to 1.
TEST_F(Vector, RandomElementSpansTheType)
{
    qdVector v(qd64f);
    ASSERT_TRUE(v.createVector(1, SET_RANDOM));
    EXPECT_LE(std::fabs(v.getIndex(0)), 1);
    v.setIndex(0, SET_RANDOM);
    EXPECT_GT(std::fabs(v.getIndex(0)), 1e100);
}

TEST_F(Vector, NothingHappensWithoutDataOrType)
{
    qdVector empty(qd8u);
    empty.setVector(SET_RANDOM);
    empty.setIndex(0, SET_ONE);
    empty.setJaehne();
    EXPECT_EQ(empty.getIndex(0), 0);
    ASSERT_TRUE(empty.createVector(2, SET_CONST, 77));
    empty.setJaehne(-1.0);
    EXPECT_STREQ(empty.getString().c_str(), "  77  77") << "no amplitude";
    qdVector undef;
    char bytes[4] = {9, 9, 9, 9};
    undef.setDataConst(bytes, 4, 1, 1);
    undef.setDataRandom(bytes, 4, 0, 1);
    undef.setDataSequence(bytes, 4, 0, 1, 1, true);
    undef.setVectorJaehne(bytes, 4, 0);
    EXPECT_EQ(string(bytes, 4), string(4, 9));
    EXPECT_EQ(qdVector::m_seed, 456u);
}

TEST_F(Vector, NumberOfTwoHalves)
{
    std::srand(5);
    const double low = std::rand() & 0xFFFF;
    const double high = std::rand() & 0xFFFF;
    std::srand(5);
    EXPECT_EQ(qdVector::rnd(), low + high * 65536);
}

// ---- Text

TEST_F(Vector, TextHasColumnsOfAFixedWidth)
{
    struct {
        qdType type;
        double re, im;
        const char* text;
    } const cases[] = {
        {qd8u, 255, 0, " 255"},
        {qd16u, 65535, 0, " 65535"},
        {qd32u, 4294967295.0, 0, " 4294967295"},
        {qd64u, two63, 0, "     9223372036854775808"},
        {qd8s, -128, 0, " -128"},
        {qd16s, -32768, 0, " -32768"},
        {qd32s, -2147483648.0, 0, " -2147483648"},
        {qd64s, -two63, 0, "    -9223372036854775808"},
        {qd32f, -inf, 0, "          -inf"},
        {qd32f, 1.0 / 3, 0, "      0.333333"},
        {qd64f, -1e-100 / 3, 0, " -3.33333333333e-101"},
        {qd8sc, -1, 2, " (   -1,    2)"},
        {qd16sc, -1, 2, " (     -1,      2)"},
        {qd16uc, 1, 2, " (     1,     2)"},
        {qd32sc, 1, -2, " (           1,          -2)"},
        {qd64sc, 1, 2, " (                       1,                       2)"},
        {qd32fc, 0.5, 2, " (           0.5,             2)"},
        {qd64fc, 0.5, 2, " (                 0.5,                   2)"},
    };
    for (const auto& c : cases) {
        qdVector v(c.type);
        ASSERT_TRUE(v.createVector(2, SET_CONST, c.re, c.im));
        const string text = c.text;
        EXPECT_EQ(v.getString().c_str(), text + text);
        EXPECT_EQ(qdVector::dataStringWidth(c.type), int(text.size()));
    }
}

TEST_F(Vector, NoTextForNothing)
{
    const char byte = 'A';
    EXPECT_STREQ(qdVector::getDataString(qd8u, nullptr, 5).c_str(), "");
    EXPECT_STREQ(qdVector::getDataString(qd8u, &byte, 0).c_str(), "");
    EXPECT_STREQ(qdVector::getDataString(qdUndef, &byte, 1).c_str(), "");
    EXPECT_STREQ(qdVector::getByteString("A\xff", 2).c_str(), " 41 FF");
}
