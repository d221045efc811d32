// The floating-point watch: the words in text, the state before a measurement, and what a measured function
// that changes it gets to hear.
#include <gmock/gmock.h>

#include <cstring>
#include <immintrin.h>

#include "qkctrl87.h"
#include "support/script_test.h"

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(FpText, NamesBitsAndFields)
{
    const std::pair<unsigned, const char*> status[] = {
        {0, "Ok"}, {0x7, "?Invalid ?Denormal ?Zerodivide "}, {0x3838, "?Overflow ?Underflow _Inexact "}};
    for (const auto& [word, text] : status) {
        EXPECT_STREQ(ts87Base::strSW(word).c_str(), text);
        EXPECT_STREQ(tsSSXBase(true).strExceptionState(word).c_str(), text);
    }
    const std::pair<unsigned, const char*> x87[] = {
        {0x23B, "Near 53 Invalid Denormal Overflow Underflow Inexact "},
        {0x37F, "Near 64 Invalid Denormal Zerodivide Overflow Underflow Inexact "},
        {0xC00, "Zero 24 "},
        {0x800, "Up 24 "},
        {0x604, "Down 53 Zerodivide "}};
    for (const auto& [word, text] : x87) EXPECT_STREQ(ts87Base::strCW(word).c_str(), text);
    const std::pair<unsigned, const char*> ssx[] = {
        {0x1F80, "Near Invalid Denormal Zerodivide Overflow Underflow Inexact "},
        {0x6000, "Zero "},
        {0x4080, "Up Invalid "},
        {0x303F, "Down Inexact "}};
    for (const auto& [word, text] : ssx) EXPECT_STREQ(tsSSXBase(true).strCW(word).c_str(), text);
    EXPECT_STREQ(tsSSXBase(false).strExceptionState(1).c_str(), "cpu has not SSX extension");
    EXPECT_STREQ(tsSSXBase(false).strCW(0).c_str(), "cpu has not SSX extension");
}

class FpState : public RunFixture {
protected:
    ~FpState() override
    {
        asm volatile("fninit");
        _mm_setcsr(0x1F80);
    }
};

TEST_F(FpState, OfX87IsSetByFields)
{
    ts87Base base;
    base.setDefault();
    EXPECT_EQ(base.getCW() & 0xF3FU, 0x23BU);
    base.set(0xFFFF, 0xC00);
    EXPECT_EQ(base.getCW() & 0xF3FU, 0xE3BU);
    base.enableExceptions();
    EXPECT_EQ(base.getCW() & 0x3FU, 0U);
    base.disableInexactException();
    EXPECT_EQ(base.getCW() & 0x3FU, 0x20U);
    base.disableExceptions();
    EXPECT_EQ(base.getCW() & 0xF3FU, 0xE3FU);
}

TEST_F(FpState, OfSSXIsSetByFields)
{
    _mm_setcsr(0x7FBF); // rounding to zero and every flag raised
    tsSSXBase base;
    ASSERT_TRUE(base.exists());
    base.setDefault();
    EXPECT_EQ(base.get(), 0x9F80U);
    base.enableExceptions();
    EXPECT_EQ(base.get(), 0x8000U);
    base.disableInexactException();
    EXPECT_EQ(base.get(), 0x9000U);
    base.disableExceptions();
    EXPECT_EQ(base.get(), 0x9F80U);
    tsSSXBase(false).set(0, 0xFFFF);
    EXPECT_EQ(base.get(), 0x9F80U);
}

TEST_F(FpState, DestroyFillsTheVectorRegisters)
{
    unsigned char low[16], high[16];
    qk_destroy_ssx();
    asm volatile("movups %%xmm0, %0\n\tmovups %%xmm15, %1" : "=m"(low), "=m"(high));
    for (const auto& reg : {low, high}) {
        for (int i = 0; i < 16; i++) EXPECT_EQ(reg[i], 0xFF);
    }
    EXPECT_EQ(_mm_getcsr() & 0x3F, 0U);
}

// What a measured function does, and what is said of it.
void divideSSE(double by)
{
    volatile double one = 1, divisor = by;
    one = one / divisor;
}

void divideX87(double dividend, double divisor)
{
    asm volatile("fldl %0\n\tfdivl %1\n\tfstp %%st(0)" : : "m"(dividend), "m"(divisor) : "st");
}

const struct {
    const char* what;
    void (*deed)();
    qkResult result;
    bool bad87, badSSX;
    const char* text;
} deeds[] = {
    {"nothing", [] {}, OK, false, false, ""},
    {"inexact in SSE", [] { divideSSE(3); }, OK, false, false, ""},
    {"zero in SSE", [] { divideSSE(0); }, BADSTSWRN, false, true, "-- Status    SSX: ?Zerodivide "},
    {"invalid in x87", [] { divideX87(0, 0); }, BADSTSWRN, true, false, "-- Status    87: ?Invalid "},
    {"inexact in x87", [] { divideX87(1, 3); }, OK, false, false, ""},
};

TEST_F(FpState, LeftByAFunctionIsAWarning)
{
    for (const auto& row : deeds) {
        SCOPED_TRACE(row.what);
        ScriptTest test;
        test.m_script["initData"] = [] { divideSSE(0); }; // not the function's doing
        test.m_script["runTiming"] = [&] {
            g_ctrl87.start();
            row.deed();
            g_ctrl87.stop();
            g_ssx.collect();
        };
        EXPECT_EQ(test.run(), row.result);
        EXPECT_EQ(test.bad87(), row.bad87);
        EXPECT_EQ(test.badSSX(), row.badSSX);
        const std::string text = m_console.take();
        if (row.result == OK)
            EXPECT_THAT(text, Not(HasSubstr("-- Status")));
        else
            EXPECT_THAT(text, HasSubstr(row.text));
        EXPECT_EQ(test.checkCtrlStatus(), UNDEFINED) << "the check has cleared what it found";
        EXPECT_EQ(_mm_getcsr() & 0x3F, 0U);
    }
}

// The signal of an x87 division waits for the next x87 instruction. If the function ends before, the watch
// must still see it, and clearing must drop it.
TEST_F(FpState, StopSeesADivisionWhoseSignalIsPending)
{
    const double zero = 0;
    g_ctrl87.init();
    asm volatile("fld1\n\tfdivl %0" : : "m"(zero));
    g_ctrl87.stop();
    EXPECT_TRUE(g_ctrl87.badStatus());
    EXPECT_STREQ(g_ctrl87.strSW().c_str(), "?Zerodivide ");
    g_ctrl87.clear();
    asm volatile("fwait\n\tfninit");
    EXPECT_FALSE(g_ctrl87.badStatus());
    EXPECT_EQ(g_ctrl87.getCW(), 0U);
}

TEST_F(FpState, CollectsOverSeveralMeasurements)
{
    g_ctrl87.init();
    g_ssx.init();
    divideSSE(0);
    g_ssx.collect();
    _mm_setcsr(0x1F80);
    g_ssx.collect();
    g_ctrl87.stop();
    EXPECT_TRUE(g_ssx.badStatus());
    EXPECT_FALSE(g_ctrl87.badStatus());
    EXPECT_THAT(g_ctrl87.strCW().c_str(), HasSubstr("Near 53 "));
    g_ssx.clear();
    EXPECT_FALSE(g_ssx.badStatus());
    EXPECT_EQ(g_ssx.get(), 0U);
}

} // namespace
