// Crashes inside a test: each becomes a result with the name of the hook, any number of times in one run.
#include <gmock/gmock.h>

#include <cstring>

#include "qkconditions.h"
#include "qkctrl87.h"
#include "qkexception.h"
#include "support/script_test.h"

namespace {

using testing::HasSubstr;
using testing::Not;

// In assembler, so that neither the compiler nor a sanitizer has an opinion of it.
void writeNull()
{
    asm volatile("movb $0, 0" : : : "memory");
}

void illegalInstruction()
{
    asm volatile("ud2");
}

// x87 signals at the next instruction that waits, here the store of the quotient.
void divideByZero()
{
    const double zero = 0;
    double quotient;
    g_ctrl87.init();
    asm volatile("fld1\n\tfdivl %1\n\tfstpl %0" : "=m"(quotient) : "m"(zero));
}

volatile bool s_endless = true;

[[gnu::noinline]] int overflowStack(int depth)
{
    volatile char frame[4096];
    frame[0] = static_cast<char>(depth);
    return s_endless ? overflowStack(depth + 1) + frame[0] : 0;
}

struct Crash {
    const char* what;
    void (*crash)();
    const char* text;
};
const Crash crashes[] = {
    {"null write", writeNull, "Illegal storage access."},
    {"stack overflow", [] { overflowStack(0); }, "Illegal storage access."},
    {"ud2", illegalInstruction, "Illegal instruction."},
    {"x87 division", divideByZero, "FP error, such as overflow, division by zero, invalid operation."},
};

class Signals : public RunFixture {
protected:
    ~Signals() override
    {
        asm volatile("fninit");
        qkTestList::m_startFunc = "";
    }
};

// Every crash in every hook, all in one list: a second crash must be caught as well as the first, and the
// tests between must run.
TEST_F(Signals, EndTheTestAndNotTheRun)
{
    qkTestList list;
    const Strings hooks =
        words("beginTest canStart parmsFromIstrm initData runTiming flushData flushStart endTest");
    for (const std::string& hook : hooks) {
        for (const Crash& crash : crashes) {
            SCOPED_TRACE(hook + ", " + crash.what);
            ScriptTest bad, good;
            bad.m_script[hook] = crash.crash;
            bad.m_results = {OK};
            EXPECT_EQ(bad.run(), EXCPTFAIL);
            EXPECT_EQ(bad.result(), EXCPTFAIL);
            EXPECT_THAT(m_console.take(),
                        HasSubstr("--QOV. Signal: " + std::string(crash.text) + " in " + hook + "\n"));
            EXPECT_EQ(g_ostrm.outLevel(), performance);
            EXPECT_EQ(good.run(), OK);
            m_console.take();
        }
    }
}

TEST_F(Signals, PassOverWhatFreesTheDataButNotEndTest)
{
    g_ostrm.setOutLevel(warnings);
    ScriptTest test;
    test.m_script["runTiming"] = writeNull;
    EXPECT_EQ(test.run(), EXCPTFAIL);
    EXPECT_EQ(test.m_calls,
              words("beginTest canStart parmsFromIstrm initData constToOstrm runTiming endTest"));
    EXPECT_EQ(g_ostrm.outLevel(), warnings) << "the level of the timing is not left behind";
    EXPECT_THAT(m_console.take(), HasSubstr("-EXCPTFAIL"));
    EXPECT_EQ(m_table.take(), "");
}

// Crashes where the run prints it, and where it says so.
class CrashingParm : public qkDefault<int> {
public:
    enum Where { none, onConsole, inRow, inNameRow, inOldSpelling };
    explicit CrashingParm(Where where) : qkDefault<int>(3, "Parm", ""), m_where(where) {}
    void toOStream(qkOStream& out) const override
    {
        if (m_where == onConsole) writeNull();
        qkDefault<int>::toOStream(out);
    }
    void toCStream(qkCStream& out) const override
    {
        if (m_where == inRow) out << "cell";
        if (m_where == inRow || (m_where == inOldSpelling && m_useText)) writeNull();
        qkDefault<int>::toCStream(out);
    }
    void nameToCStream(qkCStream& out) const override
    {
        if (m_where == inNameRow) writeNull();
        qkDefault<int>::nameToCStream(out);
    }
    Where m_where;
};

// Whatever was open when a test crashed, the next one starts afresh: messages, half a row, the sinks that are
// exchanged for the name row, rows with old spellings that are held back.
TEST_F(Signals, LeaveNothingForTheNextTest)
{
    const struct {
        CrashingParm::Where where;
        const char *rows, *names;
    } cases[] = {
        {CrashingParm::onConsole, "good,3,-,nLps=32,100, ,1.6,-\n", ""},
        {CrashingParm::inRow, "good,3,-,nLps=32,100, ,1.6,-\n", ""},
        {CrashingParm::inNameRow, "good,3,-,nLps=32,100, ,1.6,-\n", "good,Parm,-,parmNames,-,-,-,-\n"},
        {CrashingParm::inOldSpelling,
         "bad,3,-,nLps=32,100, ,1.6,-\n"
         "good,3,-,nLps=32,100, ,1.6,-\n"
         "good,three,-,deprecated,100, ,1.6,-\n",
         ""},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.where);
        CrashingParm parm(row.where);
        if (row.where == CrashingParm::inOldSpelling) parm.addDeprecated(3, "three");
        ScriptTest bad("bad"), good("good");
        bad.m_uses = good.m_uses = {&parm};
        bad.m_results = {row.where == CrashingParm::onConsole ? FUNCFAIL : OK};
        good.m_script["constToOstrm"] = [] { g_ostrm << "constants"; };
        g_ostrm.setOutLevel(errors);
        qkSession::m_nameMode = row.where == CrashingParm::inNameRow ? 2 : 0;
        EXPECT_EQ(bad.run(), EXCPTFAIL);
        parm.m_where = CrashingParm::none;
        EXPECT_EQ(good.run(), OK);
        EXPECT_THAT(m_console.take(), Not(HasSubstr("constants"))) << "printed as part of an error";
        EXPECT_EQ(m_table.take(), row.rows);
        EXPECT_EQ(m_names.take(), row.names);
    }
}

TEST_F(Signals, LeaveTheRowsOfSetsThatWereDone)
{
    qkDefault<int> old(3, "Old", "");
    old.addDeprecated(3, "three");
    ScriptTest bad("bad"), good("good");
    bad.m_uses = {&old};
    bad.m_script["flushData"] = writeNull;
    EXPECT_EQ(bad.run(), EXCPTFAIL);
    EXPECT_EQ(good.run(), OK);
    EXPECT_EQ(m_table.take(), "bad,3,-,nLps=32,100, ,1.6,-\n"
                              "bad,three,-,deprecated,100, ,1.6,-\n"
                              "good,-,-,nLps=32,100, ,1.6,-\n");
}

TEST_F(Signals, CrashInEndTestIsNotRepeatedForEver)
{
    ScriptTest test;
    test.m_script["endTest"] = writeNull;
    EXPECT_EQ(test.run(), EXCPTFAIL);
    EXPECT_EQ(std::count(test.m_calls.begin(), test.m_calls.end(), "endTest"), 2);
}

TEST_F(Signals, WhileAskingForParametersAreReported)
{
    for (int i = 0; i < 2; i++) {
        ScriptTest test("asked");
        test.m_script["canStart"] = writeNull;
        test.startAndStop();
        EXPECT_EQ(m_console.take(), "--QOV. Signal: Illegal storage access. in startAndStop of asked test\n");
    }
}

// An inner guard that has ended, well or badly, leaves the outer one live.
TEST_F(Signals, ReachTheInnermostLiveGuard)
{
    for (void (*inner)() : {+[] {}, &writeNull}) {
        Strings caught;
        try {
            qkGuardSignals([&] {
                try {
                    qkGuardSignals(inner);
                } catch (const qkException& exception) {
                    caught.push_back(exception.info());
                }
                illegalInstruction();
            });
        } catch (const qkException& exception) {
            caught.push_back(exception.info());
        }
        ASSERT_FALSE(caught.empty());
        EXPECT_EQ(caught.back(), "Illegal instruction.");
        EXPECT_EQ(caught.size(), inner == &writeNull ? 2U : 1U);
    }
}

TEST(SignalsDeathTest, KillTheProcessIfNothingIsArmed)
{
    const auto afterGuard = [] {
        qkGuardSignals([] {});
        writeNull();
    };
    EXPECT_EXIT(writeNull(), testing::KilledBySignal(SIGSEGV), "");
    EXPECT_EXIT(illegalInstruction(), testing::KilledBySignal(SIGILL), "");
    EXPECT_EXIT(afterGuard(), testing::KilledBySignal(SIGSEGV), "");
}

TEST(Exception, TellsSignalsFromOthersAndCutsLongTexts)
{
    tsSignal::m_code = 99;
    EXPECT_STREQ(tsSignal::getInfo(), "Unknown exception");
    const qkException other(qkString("text"));
    EXPECT_STREQ(other.msg(), "--QOV. Exception: text");
    EXPECT_STREQ(other.what(), "--QOV. Exception: text");
    EXPECT_STREQ(other.info(), "text");
    EXPECT_STREQ(qkException("text").msg(), "--QOV. Signal: text");
    const qkException cut(qkString(std::string(1000, 'x').c_str()));
    EXPECT_EQ(std::strlen(cut.msg()), 255U);
    EXPECT_EQ(cut.info(), std::string(255, 'x'));
}

} // namespace
