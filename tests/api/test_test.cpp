// One test's run: the order of its hooks, the walk over the parameter sets, what becomes of the results, and
// the texts and table rows that come of it.
#include <gmock/gmock.h>

#include <utility>

#include "qklibenv.h"
#include "qkmem.h"
#include "qkresult.h"
#include "support/script_test.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class TestRun : public RunFixture {
protected:
    ScriptTest m_test;
    qkIterator<int> m_outer{"Outer", ""};
    qkIterator<int> m_inner{"Inner", ""};
};

TEST(TestInfo, SplitsAtTheFirstTwoSlashes)
{
    const Strings cases[] = {{"TimjAdd//QD_REG", "TimjAdd", "", "QD_REG"},
                             {"a/b", "a", "b", ""},
                             {"a/b/c/d", "a", "b", "c/d"},
                             {"", "", "", ""}};
    for (const Strings& row : cases) {
        const qkTestInfo info(row[0].c_str());
        EXPECT_EQ(Strings({info.m_class.c_str(), info.m_description.c_str(), info.m_macro.c_str()}),
                  Strings(row.begin() + 1, row.end()))
            << row[0];
    }
}

TEST(Result, HasANameAndATextWithinTheRange)
{
    EXPECT_STREQ(qkResultName(0), "UNDEFINED");
    EXPECT_STREQ(qkResultName(3), "BADSTSWRN");
    EXPECT_STREQ(qkResultString(11), "error");
    for (const int other : {-1, 12}) {
        EXPECT_STREQ(qkResultName(other), "UNKNOWN");
        EXPECT_STREQ(qkResultString(other), "unknown result");
    }
}

TEST_F(TestRun, CallsTheHooksInOrder)
{
    fill(m_inner, {1, 2});
    m_test.m_uses = {&m_inner};
    EXPECT_EQ(m_test.run(), OK);
    EXPECT_EQ(m_test.m_calls,
              words("beginTest canStart parmsFromIstrm initData constToOstrm runTiming flushData "
                    "initData runTiming flushData flushStart endTest"));
}

// The trace is kept as text too; it must not grow with the parameter sets and the tests.
TEST_F(TestRun, ForgetsTheTraceOfEarlierSets)
{
    fill(m_inner, {1, 2, 3});
    m_test.m_uses = {&m_inner};
    std::vector<int> lengths;
    m_test.m_script["initData"] = [&] { lengths.push_back(g_trace.m_lastLine.length()); };
    m_test.run();
    m_test.run();
    EXPECT_EQ(lengths, std::vector<int>(6, lengths.at(0)));
}

TEST_F(TestRun, EndsEarlyWithoutMeasuring)
{
    const struct {
        const char* what;
        std::function<void(ScriptTest&)> prepare;
        qkResult result;
        const char* calls;
        const char* text;
    } cases[] = {
        {"refused", [](ScriptTest& test) { test.m_refuses = "canStart"; }, DATAFAIL,
         "beginTest canStart flushStart endTest", "-- Can't start timing\n"},
        {"-C", [](ScriptTest&) { qkTest::m_cache = true; }, UNDEFINED,
         "beginTest canStart flushStart endTest",
         "-- Can't run In-Outof-Cache timing: no program support for function qoviScript\n"},
        {"-Q", [](ScriptTest&) { qkSession::m_nameExit = true; }, OK,
         "beginTest canStart parmsFromIstrm flushStart endTest", "OK"},
        {"empty list",
         [this](ScriptTest& test) {
             test.m_uses = {&m_outer, &m_inner};
         },
         DATAFAIL, "beginTest canStart parmsFromIstrm flushStart endTest",
         "-- One of argument list for timing is empty\n"},
        {"no data",
         [this](ScriptTest& test) {
             test.m_uses = {&m_outer};
             test.m_refuses = "initData";
         },
         DATAFAIL,
         "beginTest canStart parmsFromIstrm initData flushData initData flushData flushStart endTest",
         "-- Error while initialization of function data\n"},
    };
    fill(m_outer, {1, 2});
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        ScriptTest test;
        row.prepare(test);
        EXPECT_EQ(test.run(), row.result);
        EXPECT_EQ(test.result(), row.result);
        EXPECT_EQ(test.m_calls, words(row.calls));
        EXPECT_THAT(m_console.take(), HasSubstr(row.text));
        qkTest::m_cache = qkSession::m_nameExit = false;
    }
}

TEST_F(TestRun, TurnsTheLastParameterFastest)
{
    fill(m_outer, {1, 2});
    fill(m_inner, {3, 4, 5});
    m_test.m_uses = {&m_outer, &m_inner};
    EXPECT_EQ(m_test.run(), OK);
    EXPECT_EQ(m_test.m_sets, words("13 14 15 23 24 25"));
}

// With errors alone on the console a warning counts as success, yet its row is in the table. An error has no
// row and ends the loop.
TEST_F(TestRun, MergesTheResultsOfItsSets)
{
    const struct {
        OutputLevel level;
        std::vector<qkResult> results;
        qkResult merged;
        std::size_t sets;
        int rows;
    } cases[] = {
        {performance, {OK, DATAWRN, ACCURWRN}, DATAWRN, 3, 3},
        {warnings, {WARNING, OK, OK}, WARNING, 3, 3},
        {errors, {ACCURWRN, WARNING, OK}, OK, 3, 3},
        {performance, {ACCURWRN, FUNCFAIL, OK}, FUNCFAIL, 2, 1},
        {performance, {OK, UNDEFINED, OK}, FAIL, 2, 1},
    };
    fill(m_inner, {1, 2, 3});
    for (const auto& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.results));
        m_table.take();
        ScriptTest test;
        test.m_uses = {&m_inner};
        test.m_results = row.results;
        g_ostrm.setOutLevel(row.level);
        EXPECT_EQ(test.run(), row.merged);
        EXPECT_EQ(test.m_sets.size(), row.sets);
        const std::string text = m_table.take();
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), row.rows);
    }
}

TEST_F(TestRun, ShowsTheToolsMessagesWhenWarningsAreShown)
{
    for (const auto& [before, during] :
         {std::pair{errors, errors}, {warnings, performance}, {traced, traced}}) {
        ScriptTest test;
        g_ostrm.setOutLevel(before);
        OutputLevel seen = 0;
        test.m_script["runTiming"] = [&] { seen = g_ostrm.outLevel(); };
        test.run();
        EXPECT_EQ(seen, during);
        EXPECT_EQ(g_ostrm.outLevel(), before);
    }
}

TEST_F(TestRun, CopiesTheToolAndMarksInitBeforeStart)
{
    g_tool.setMethodLoop(77);
    ScriptTest plain, ibs("qoviIbs", "TimIbs//QK_REG_Ibs");
    plain.run();
    ibs.run();
    int loops = 0;
    EXPECT_TRUE(plain.tool().getMethodLoop(loops));
    EXPECT_EQ(loops, 77);
    EXPECT_FALSE(plain.tool().m_initBeforeStart);
    EXPECT_TRUE(ibs.tool().m_initBeforeStart);
    EXPECT_FALSE(g_tool.m_initBeforeStart);
}

TEST_F(TestRun, WritesRowsForTheNameTableAndTheResults)
{
    fill(m_inner, {7});
    m_test.m_uses = {&m_inner};
    qkSession::m_nameMode = 3;
    m_test.run();
    const std::string names = "qoviScript,Inner,-,parmNames,-,-,-,-\n";
    EXPECT_EQ(m_table.take(), names + "qoviScript,7,-,nLps=32,100, ,1.6,-\n");
    EXPECT_EQ(m_names.take(), names);
}

TEST_F(TestRun, AddsRowsWithOldSpellingsBehindTheOthers)
{
    qkDefault<int> old(3, "Old", "");
    old.addDeprecated(3, "three");
    fill(m_inner, {1, 2});
    m_test.m_uses = {&old, &m_inner};
    m_test.run();
    EXPECT_EQ(m_table.take(), "qoviScript,3,1,nLps=32,100, ,1.6,-\n"
                              "qoviScript,3,2,nLps=32,100, ,1.6,-\n"
                              "qoviScript,three,1,deprecated,100, ,1.6,-\n"
                              "qoviScript,three,2,deprecated,100, ,1.6,-\n");
    EXPECT_FALSE(m_test.m_deprecated);
    qkDefault<int> unchanged(4, "Unchanged", "");
    unchanged.addDeprecated(9, "nine");
    m_test.m_uses.push_back(&unchanged);
    m_test.run();
    EXPECT_THAT(m_table.take(), Not(HasSubstr("deprecated"))) << "a value without an old spelling";
}

TEST_F(TestRun, WarnsOfEqualRows)
{
    fill(m_inner, {5, 5});
    for (const auto& [level, result] : {std::pair{errors, OK}, {warnings, DATAWRN}}) {
        ScriptTest test;
        test.m_uses = {&m_inner};
        g_ostrm.setOutLevel(level);
        EXPECT_EQ(test.run(), result);
    }
    EXPECT_THAT(m_console.take(), HasSubstr("-- Warning: duplicate lines in performance table (csv-file)\n"));
}

TEST_F(TestRun, PrintsAnErrorWithItsParameters)
{
    fill(m_inner, {1, 2, 3});
    m_test.m_uses = {&m_inner};
    m_test.m_results = {OK, ACCURWRN, FUNCFAIL};
    m_test.run();
    const std::string line = "  acc=100.0%  nLps=32     perf=  1.6e+03/       16=      100 clocks\n";
    EXPECT_THAT(m_console.take(),
                HasSubstr("Inner=1 \n" + line + "Inner=2 \n" +
                          "-- wrong measure accuracy on test parameters:\nInner=2 \n" + "-- performance:\n" +
                          line + "Inner=3 \n" + "-- lib function error on test parameters:\nInner=3 \n"));
}

TEST_F(TestRun, ShowsTheNumbersOfASetWithAWarning)
{
    m_test.m_results = {ACCURWRN};
    g_ostrm.setOutLevel(warnings);
    m_test.run();
    EXPECT_THAT(m_console.take(), HasSubstr("-- performance:\n  acc="));
}

TEST_F(TestRun, OmitsTheAccuracyOfFixedMethods)
{
    m_test.setTimingResult(12.5, "by hand, at length");
    m_test.tool().setMethodLoop(5);
    EXPECT_STREQ(m_test.testResultString().c_str(),
                 "  by hand, at length  perf=     12.5/       16=    0.781 clocks");
}

// A test that leaves its parameters to the ini file must find them; one that comes later must not.
TEST_F(TestRun, KeepsItsIniValuesToItself)
{
    qkIterator<int> shared{"Size", ""}, empty{"Empty", ""};
    fill(shared, {1, 2});
    qkRegParm(shared);
    qkRegParm(empty);
    useIniFile("[first]\nSize=30;40\nEmpty=8\n[crash]\nSize=50\n[later]\n", false);
    const auto setsOf = [&](const char* name, const char* throwIn) {
        ScriptTest test(name);
        test.m_uses = {&shared};
        if (*name == 'f') test.m_uses.push_back(&empty);
        test.m_script[throwIn] = [] { throw qkException(qkString("no luck")); };
        test.run();
        return test.m_sets;
    };
    EXPECT_EQ(setsOf("first", ""), words("308 408"));
    EXPECT_TRUE(empty.qkList<int>::empty());
    EXPECT_EQ(setsOf("crash", "flushData"), words("50"));
    EXPECT_THAT(m_console.take(), HasSubstr("--QOV. Exception: no luck in flushData\n"));
    EXPECT_EQ(setsOf("later", ""), words("1 2"));
}

TEST_F(TestRun, MarksHotFunctionsAndWithHonlyMeasuresNoOther)
{
    qkRegHotFunction("qoviHot");
    ScriptTest hot("qoviHot");
    qkTest::m_numResultColm = 6;
    qkTest::m_hot = 2;
    EXPECT_EQ(hot.run(), OK);
    EXPECT_EQ(m_table.take(), "qoviHot,-,-,nLps=32,100, ,1.6,-,Hot\n");
    m_test.run();
    EXPECT_TRUE(m_test.m_sets.empty());
    EXPECT_THAT(m_console.take(), HasSubstr("  measuring is omitted: not hot line\n"));
}

TEST_F(TestRun, GivesUpWhenNoSizeFitsTheCache)
{
    const auto oldSize = std::exchange(qov_GetMaxCacheSizeB, [](int* size) {
        *size = 1 << 20;
        return QovStatus(0);
    });
    qkTest::m_cache = true;
    fill(m_outer, {1});
    fill(m_inner, {8});
    m_test.m_script["canStart"] = [this] {
        for (qkIterator<int>* parm : {&m_inner, &m_outer})
            m_test.regCacheParm(*parm, nullptr, [](qkParameter*, int, int, bool) { return false; });
    };
    EXPECT_EQ(m_test.run(), DATAFAIL);
    qov_GetMaxCacheSizeB = oldSize;
    EXPECT_EQ(*--m_test.parms().end(), &m_outer) << "only the first size is wrapped";
    const std::string text = m_console.take();
    EXPECT_THAT(text, HasSubstr("inCache:Inner=8 Outer=1 \n-- Fail to allocate inCache data\n"));
    EXPECT_THAT(text, Not(HasSubstr("initialization")));
    EXPECT_TRUE(m_test.m_sets.empty());
}

TEST_F(TestRun, TellsHowItWillBeMeasured)
{
    enum Form { aLoop = 1, aStat = 2, aCall = 4, anInit = 8, anOld = 16, dataUse = 32, useStat = 64 };
    const struct {
        int forms, method;
        const char* text;
    } cases[] = {
        {anInit, qkTool::Auto, " without any function to call.\n No standard timing method is available"},
        {aLoop | aStat, qkTool::Auto, " with loopMethod, statMethod\n   loopMethod is called for measuring."},
        {aLoop | aStat | useStat, qkTool::Iterative,
         " with loopMethod, statMethod\n   statMethod is called for measuring."},
        {aLoop | aStat | useStat, qkTool::Manual,
         " with loopMethod, statMethod\n   loopMethod is called for measuring."},
        {aStat, qkTool::Manual, " with statMethod\n   statMethod is called for measuring."},
        {aLoop | aCall | anInit, qkTool::Statistic,
         " with loopMethod, funcCall, funcInit\n   loopMethod is called for measuring."},
        {aLoop | dataUse, qkTool::Auto, " with loopMethod\n   loopMethod is called for measuring."},
        {aCall, qkTool::Statistic, " with funcCall\n   funcCall is called for measuring."},
        {aLoop | aStat | aCall | dataUse, qkTool::Auto,
         " with loopMethod, statMethod, funcCall\n   funcCall with Set&Use is called for measuring."},
        {anOld | aCall | dataUse, qkTool::Auto,
         " with oldMethod, funcCall\n   oldMethod is called for measuring."},
    };
    const qkFuncCall call = [] { return 0; };
    for (const auto& row : cases) {
        m_test.m_funcLoop = nullptr;
        m_test.m_funcStat = nullptr;
        m_test.m_funcOld = nullptr;
        if (row.forms & aLoop) m_test.m_funcLoop = [](int, long long*) { return OK; };
        if (row.forms & aStat) m_test.m_funcStat = [](int*, long long*) { return OK; };
        if (row.forms & anOld) m_test.m_funcOld = [](qkTool&, int) { return OK; };
        m_test.m_funcCall = row.forms & aCall ? call : nullptr;
        m_test.m_funcInit = row.forms & anInit ? call : nullptr;
        m_test.tool().m_dataUse = row.forms & dataUse;
        m_test.tool().m_useStat = row.forms & useStat;
        m_test.tool().m_method = row.method;
        EXPECT_EQ(m_test.regInfo().c_str(),
                  std::string("   Test has been registered by QK_REG macro") + row.text);
    }
}

TEST_F(TestRun, FormatsClocksWithThreeDigits)
{
    const std::pair<double, const char*> cases[] = {
        {-1, ""},           {0, ""},          {0.00009, "9.000e-05"}, {0.0001, "0.000100"},
        {0.001, "0.00100"}, {0.01, "0.0100"}, {0.999, "0.999"},       {9.99, "9.99"},
        {10, "10.0"},       {100, "100"},     {1e7, "10000000"},      {1.0001e7, "1.000e+07"}};
    for (const auto& [clocks, text] : cases)
        EXPECT_STREQ(m_test.formatClocks(clocks).c_str(), text) << clocks;
}

TEST_F(TestRun, DividesByElementsOrTellsMegaflops)
{
    m_test.tool().setFuncTicks(800);
    EXPECT_DOUBLE_EQ(m_test.performance(false), 50);
    EXPECT_DOUBLE_EQ(m_test.performance(true), 0) << "no float function";
    m_test.m_flops = 1600;
    EXPECT_DOUBLE_EQ(m_test.performance(true), 2000);
    EXPECT_STREQ(m_test.perfString(true).c_str(), "2000");
    m_test.tool().setFuncTicks(0);
    EXPECT_DOUBLE_EQ(m_test.performance(true), 0);
}

// Distance of a block from a 64-byte boundary, for each block of a set: the sign of `align` means that it
// counts multiples of the session's misalignment, and the mutual shift is a multiple of 64.
TEST_F(TestRun, AllocatesWithAlignmentAndMutualShift)
{
    const struct {
        bool firstOnly;
        int align, shift;
        std::vector<int> distances;
    } cases[] = {
        {false, 3, 64, {3, 3, 3}},
        {false, -2, 64, {10, 10, 10}},
        {true, -2, 0, {10, 0, 0}},
        {true, 7, 0, {7, 7, 7}},
    };
    qkSetVectorAlign(5);
    const int oldShift = qkGetVectorShift();
    for (const auto& row : cases) {
        qkSetAlignSrc(row.firstOnly);
        qkSetVectorShift(row.shift);
        qkTest::m_vectorNum = qkTest::m_vectorShift = 0;
        for (const int expected : row.distances) {
            void* block = qkTest::allocate(10, row.align);
            EXPECT_EQ(static_cast<int>(reinterpret_cast<std::uintptr_t>(block) % 64), expected);
            qkTest::deallocate(block);
        }
        EXPECT_EQ(qkTest::m_vectorNum, 3);
        EXPECT_EQ(qkTest::m_vectorShift, 3 * row.shift);
    }
    qkTest::m_vectorShift = 32768 - 512;
    qkSetVectorShift(512);
    qkTest::deallocate(qkTest::allocate(1, 0));
    EXPECT_EQ(qkTest::m_vectorShift, 0) << "the shift wraps";
    qkSetVectorAlign(0);
    qkSetAlignSrc(true);
    qkSetVectorShift(oldShift);
}

class CopyingObject : public qkObject {
public:
    bool reserveCopy() override { return ++m_reserved, true; }
    bool setReservedCopy() override { return ++m_reset, m_hasCopy; }
    int m_reserved = 0;
    int m_reset = 0;
    bool m_hasCopy = true;
};

TEST_F(TestRun, ReservesTheDataOfEachOwner)
{
    CopyingObject first, second;
    second.m_hasCopy = false;
    void* blocks[] = {qkTest::allocate(8, 0, static_cast<qkObject*>(&first)), qkTest::allocate(8, 0),
                      qkTest::allocate(8, 0, static_cast<qkObject*>(&second)),
                      qkTest::allocate(8, 0, nullptr)};
    EXPECT_EQ(qkTest::reserveAllVectors(), 2);
    EXPECT_EQ(qkTest::resetAllVectors(), 1);
    EXPECT_EQ(first.m_reserved + first.m_reset + second.m_reserved + second.m_reset, 4);
    for (void* block : blocks) qkTest::deallocate(block);
}

} // namespace
