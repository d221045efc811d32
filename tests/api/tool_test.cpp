// The timing tool on functions that make up their clocks, so that every number is exact: which counts it
// tries, when it stops, what it answers and what it tells.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <sched.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>
#include <xmmintrin.h>

#include "qkcpufreq.h"
#include "qkctrl87.h"
#include "qkstream.h"
#include "qktimcall.h"
#include "qktool.h"
#include "support/capture.h"

namespace {

using Counts = std::vector<int>;

Counts s_counts;                      // with which the measured function was called
std::function<double(int)> s_perCall; // clocks of one call, told the number of calls
qkResult s_answer;
int s_plainCalls;
int s_inits;

long long measured(int n)
{
    s_counts.push_back(n);
    return static_cast<long long>(s_perCall(n) * n);
}

qkResult loopFunc(int n, long long* clocks)
{
    *clocks = measured(n);
    return s_answer;
}

qkResult statFunc(int* n, long long* clocks)
{
    s_counts.push_back(-*n); // told from a loop by the sign
    *n += 2;
    *clocks = *clocks + static_cast<long long>(s_perCall(*n) * *n);
    return s_answer;
}

qkResult oldFunc(qkTool& tool, int n)
{
    tool.m_numClocks = measured(n);
    return s_answer;
}

const qkFuncCall plainCall = [] { return s_plainCalls++, 0; };
const qkFuncCall initFunc = [] { return s_inits++, 0; };

// The given clocks in turn, again and again.
std::function<double(int)> inTurn(const std::vector<double>& clocks)
{
    return [clocks, i = size_t(0)](int) mutable { return clocks[i++ % clocks.size()]; };
}

class ToolTest : public testing::Test {
protected:
    ToolTest()
    {
        s_counts.clear();
        s_perCall = [](int) { return 100.0; };
        s_answer = OK;
        s_plainCalls = s_inits = 0;
        g_ctrl87.init();
        g_ssx.init();
    }

    static void show(OutputLevel mask) { g_ostrm.setOutLevel(mask); }
    std::string printed() { return m_screen.take(); }

    LevelCapture m_screen{g_ostrm, PERF | WARN | ERR};
    qkTool m_tool;
};

// What the methods take besides is seen in the timing, and in the common data of a session.
TEST_F(ToolTest, CountsHaveLimits)
{
    int a = -1, b = -2;
    long long clocks = -3;
    m_tool.setMethodLoop(0);
    EXPECT_TRUE(m_tool.getMethodLoop(a));
    EXPECT_EQ(a, 1);
    const int limits[][4] = {{4, 8, 4, 32}, {4, 100, 4, 100}, {0, 5, 1, 5}, {INT_MAX, 1, INT_MAX, INT_MAX}};
    for (const auto& l : limits) {
        m_tool.setMethodBest(l[0], l[1], 55);
        EXPECT_TRUE(m_tool.getMethodBest(a, b, clocks));
        EXPECT_EQ(a, l[2]);
        EXPECT_EQ(b, l[3]);
    }
}

TEST_F(ToolTest, LoopFactorShiftsTheAutomaticCounts)
{
    const int rows[][3] = {{3, 0, 256}, {-3, 8, 16384}, {-40, INT_MAX, INT_MAX}, {40, 0, 0}, {0, 0, 0}};
    for (const auto& row : rows) {
        m_tool.setLoopFactor(row[0]);
        EXPECT_EQ(m_tool.m_startFactor, row[1]) << row[0];
        EXPECT_EQ(m_tool.m_stopFactor, row[2]) << row[0];
    }
    // 1 loop takes 100 of 10000 clocks: 256 loops are tried. Then four times as many agree at once.
    m_tool.timing(loopFunc, nullptr, nullptr, nullptr);
    m_tool.setLoopFactor(-3);
    s_perCall = [](int) { return 5000.0; };
    m_tool.timing(loopFunc, nullptr, nullptr, nullptr);
    EXPECT_EQ(s_counts, (Counts{1, 256, 1024, 8, 32}));
}

TEST_F(ToolTest, Texts)
{
    const std::pair<double, const char*> accuracies[] = {
        {0.001, "0.1%"}, {0.0009, "0.09%"}, {0, "0.00%"}, {500.0, "50000.0%"}};
    for (const auto& [value, text] : accuracies) EXPECT_STREQ(qkTool::getAccuracyStr(value).c_str(), text);

    const std::pair<long long, const char*> clocks[] = {
        {0, "0"}, {2147483647, "2147483647"}, {2147483648, "2147483640"}, {98765432109876, "98765432100000"}};
    for (const auto& [value, text] : clocks) EXPECT_STREQ(qkTool::clockStr(value).c_str(), text);
}

TEST_F(ToolTest, Arithmetic)
{
    const int powers[][2] = {{0, 0},   {1, 1},    {2, 2},  {3, 4},
                             {64, 64}, {65, 128}, {-5, 0}, {INT_MAX, 1 << 30}};
    for (const auto& [value, power] : powers) EXPECT_EQ(qkTool::roundUpToPow2(value), power) << value;

    EXPECT_DOUBLE_EQ(qkTool::computeAccuracy(90, 110), 0.2);
    EXPECT_DOUBLE_EQ(qkTool::computeAccuracy(110, 90), 0.2);
    const double values[] = {100, 110, 60};
    EXPECT_DOUBLE_EQ(qkTool::computeAccuracy(values, 3), 1.0 / 3);
    EXPECT_DOUBLE_EQ(qkTool::computeBest(values, 3), 60);
    const double zeros[] = {0, 0};
    EXPECT_DOUBLE_EQ(qkTool::computeAccuracy(zeros, 2), 1);
}

TEST_F(ToolTest, AutomaticCounts)
{
    const auto overhead = [](double clocks) { return [clocks](int n) { return 100 + clocks / n; }; };
    const auto fromOne = [](int n) { return n == 1 ? 1.0 : 1.0 + 1.0e9 / n; };
    const struct {
        const char* what;
        std::function<double(int)> perCall;
        int stop;
        long long minClocks;
        qkResult answer, result;
        Counts counts;
        const char* info;
    } rows[] = {
        // clang-format off
        {"doubles until two agree, then confirms", overhead(1000),
         2048, 10000, OK, OK, {1, 32, 128, 256, 256, 256}, "nLps=256"},
        {"goes on after a failed confirmation, up to the limit", inTurn({100, 104, 300, 100, 104, 104, 104}),
         10, 10, OK, OK, {1, 4, 4, 4, 10, 10, 10}, "nLps=10"},
        {"a worse warning stays", inTurn({100, 200}),
         8, 10, FUNCWRN, FUNCWRN, {1, 4, 8, 8, 8}, "nLps=8 acc=50.0%"},
        {"no clocks in the iterations", inTurn({100, 0, 0}), 8, 10, OK, ACCURFAIL, {1, 4, 4}, ""},
        {"nor in the confirmation", inTurn({100, 102, 0, 0, 103}), 8, 10, OK, ACCURFAIL, {1, 4, 4, 4, 4}, ""},
        {"an error ends it", overhead(0), 8, 10, FUNCFAIL, FUNCFAIL, {1}, ""},
        {"counts end at the largest int", fromOne,
         INT_MAX, LLONG_MAX, OK, OK, {1, 1 << 30, INT_MAX, INT_MAX, INT_MAX}, "nLps=2147483647"},
        // clang-format on
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        s_counts.clear();
        s_perCall = row.perCall;
        s_answer = row.answer;
        m_tool.setMethodBest(1, row.stop, row.minClocks);
        EXPECT_EQ(m_tool.timing(loopFunc, nullptr, nullptr, nullptr), row.result);
        EXPECT_EQ(s_counts, row.counts);
        EXPECT_STREQ(m_tool.m_info.c_str(), row.info);
        EXPECT_STREQ(m_tool.m_resultText.c_str(), qkResultString(row.result));
    }
}

TEST_F(ToolTest, UnsteadyClocksEndInAWarningAndAStory)
{
    show(INFO | PERF | WARN | ERR);
    s_perCall = inTurn({100, 200});
    m_tool.setMethodBest(1, 8, 10);
    EXPECT_EQ(m_tool.timing(loopFunc, nullptr, nullptr, nullptr), ACCURWRN);
    EXPECT_EQ(s_counts, (Counts{1, 4, 8, 8, 8}));
    EXPECT_STREQ(m_tool.m_info.c_str(), "nLps=8 acc=50.0%");
    EXPECT_STREQ(m_tool.m_resultText.c_str(), "actual accuracy = 50.0%");
    EXPECT_EQ(m_tool.m_funcClocks, 100); // the best
    EXPECT_EQ(printed(), R"(    Auto method: start
        minClocks  = 10
    Prior Measurement: 
        numLoops   = 1
        numClocks  = 100
        funcClocks = 100
        result     = OK
    Iteration Measurement: 
        startLoops = 4
        maxLoops   = 8
        stopLoops  = 8
        stopClocks = 800
        accuracy   = 66.7%
        funcClocks = 100
        result     = ACCURWRN
    Simple Measurements: 
        numLoops   = 8
        numClocks  = 1600
        funcClocks = 200
        numLoops   = 8
        numClocks  = 800
        funcClocks = 100
        accuracy   = 50.0%
        bestClocks = 100
        result     = ACCURWRN
    Auto method: stop
)");
}

TEST_F(ToolTest, NoClocksFailWithTheWholeStory)
{
    s_perCall = [](int) { return 0.0; };
    EXPECT_EQ(m_tool.timing(loopFunc, nullptr, nullptr, nullptr), ACCURFAIL);
    EXPECT_EQ(s_counts, (Counts{1, 1, 10, 10})); // two tries each
    const std::string story = printed();
    EXPECT_TRUE(story.starts_with("    Auto method: start\n"));
    EXPECT_TRUE(story.ends_with("        result     = ACCURFAIL\n    Auto method: exit\n")) << story;

    show(INFO | WARN | ERR); // told as it goes, so not again at the end
    m_tool.timing(loopFunc, nullptr, nullptr, nullptr);
    EXPECT_EQ(printed(), story);
}

TEST_F(ToolTest, ManualAndStatistic)
{
    show(INFO | WARN | ERR);
    m_tool.setMethodLoop(40);
    m_tool.m_useStat = true; // of no matter here
    EXPECT_EQ(m_tool.timing(loopFunc, statFunc, nullptr, nullptr), OK);
    EXPECT_STREQ(m_tool.m_info.c_str(), "nLps=40");
    EXPECT_EQ(m_tool.m_accResult, 0);
    m_tool.setMethodStat(8, 500);
    EXPECT_EQ(m_tool.timing(loopFunc, statFunc, nullptr, nullptr), OK);
    EXPECT_STREQ(m_tool.m_info.c_str(), "nCalls=10");
    EXPECT_EQ(s_counts, (Counts{40, -8}));
    EXPECT_EQ(m_tool.m_funcClocks, 150); // (500 + 10 * 100) / 10
    EXPECT_EQ(printed(), R"(    Manual method: 
        numLoops   = 40
        funcClocks = 100
        result     = OK
    Statistical method:
        minCalls   = 8
        maxClocks  = 500
        numCalls   = 10
        funcClocks = 150
        result     = OK
)");
}

TEST_F(ToolTest, AMissingFormGivesWayToTheOther)
{
    m_tool.setMethodLoop(6);
    EXPECT_EQ(m_tool.timing(nullptr, statFunc, nullptr, initFunc), OK);
    EXPECT_EQ(m_tool.m_funcClocks, 100); // no least number of clocks
    m_tool.setMethodStat(5, 900);
    EXPECT_EQ(m_tool.timing(loopFunc, nullptr, nullptr, initFunc), OK);
    EXPECT_EQ(s_counts, (Counts{-6, 5}));
    EXPECT_STREQ(m_tool.m_info.c_str(), "nLps=5");
    EXPECT_EQ(printed(), " ATTENTION! The test cannot execute Manual loop timing.\n"
                         " Statistic timing will be run instead.\n"
                         " ATTENTION! The test cannot execute Statistic timing.\n"
                         " Manual loop timing will be run instead.\n");
}

TEST_F(ToolTest, StatisticFormInTheAutomaticMethod)
{
    m_tool.m_useStat = true;
    m_tool.setMethodBest(3, 100, 10);
    EXPECT_EQ(m_tool.timing(loopFunc, statFunc, nullptr, nullptr), OK);
    EXPECT_STREQ(m_tool.m_info.c_str(), "nCalls=12");
    EXPECT_EQ(m_tool.timing(loopFunc, nullptr, nullptr, nullptr), OK);
    EXPECT_FALSE(m_tool.m_useStat);
    EXPECT_STREQ(m_tool.m_info.c_str(), "nLps=12");
    EXPECT_EQ(s_counts, (Counts{-3, -12, 3, 12}));
}

TEST_F(ToolTest, NothingToCall)
{
    EXPECT_EQ(m_tool.timing(nullptr, nullptr, nullptr, initFunc), FAIL);
    EXPECT_EQ(printed(), " Internal test problem: The test cannot execute standard timing.\n"
                         " No one of funcLoop, funcStat or funcCall is registered\n");
    EXPECT_EQ(m_tool.timing(nullptr, statFunc, nullptr, nullptr), FAIL); // no loop for the automatic method
    m_tool.m_method = 9;
    EXPECT_EQ(m_tool.timing(loopFunc, nullptr, nullptr, nullptr), FAIL);
    EXPECT_EQ(s_counts, Counts{});
    EXPECT_NE(printed().find("QK internal error: file "), std::string::npos);
}

TEST_F(ToolTest, FreshDataNeedThePlainCall)
{
    m_tool.m_dataUse = true;
    for (int method : {qkTool::Auto, qkTool::Manual, qkTool::Statistic, qkTool::Iterative}) {
        m_tool.m_method = method;
        EXPECT_EQ(m_tool.timing(loopFunc, statFunc, nullptr, nullptr), UNDEFINED) << method;
    }
    EXPECT_EQ(m_tool.timing(oldFunc), UNDEFINED);
    EXPECT_EQ(printed(), "");

    m_tool.setMethodLoop(5);
    EXPECT_EQ(m_tool.timing(loopFunc, statFunc, plainCall, initFunc), OK);
    EXPECT_EQ(s_counts, Counts{});
    EXPECT_EQ(s_plainCalls, 6); // one to warm up
    EXPECT_EQ(s_inits, 6);
    EXPECT_GT(m_tool.m_funcClocks, 0);

    m_tool.m_dataUse = false;
    EXPECT_EQ(m_tool.timing(oldFunc), OK);
    EXPECT_EQ(s_counts, (Counts{5}));
    EXPECT_EQ(m_tool.m_funcClocks, 100);
}

TEST_F(ToolTest, ResetForgetsTheOutcomeAndKeepsTheMethod)
{
    s_perCall = inTurn({100, 200});
    m_tool.setMethodBest(2, 16, 10);
    m_tool.timing(loopFunc, statFunc, plainCall, initFunc);
    m_tool.reset();
    EXPECT_EQ(m_tool.m_result, UNDEFINED);
    EXPECT_EQ(m_tool.m_accResult, 1.0);
    EXPECT_EQ(m_tool.m_numLoops + m_tool.m_numClocks + m_tool.m_funcClocks, 0);
    EXPECT_TRUE(m_tool.m_info.empty() && m_tool.m_resultText.empty());
    EXPECT_FALSE(m_tool.m_funcLoop || m_tool.m_funcStat || m_tool.m_funcCall || m_tool.m_funcInit);
    EXPECT_EQ(m_tool.m_method, qkTool::Iterative);
}

// A function whose data overflow from some number of calls on. With fewer the status stays clean, and the
// repeated measurements may then differ by twice the accuracy.
TEST_F(ToolTest, BadStatusIsAvoidedWithFewerLoops)
{
    const struct {
        const char* what;
        bool watch;
        int from;
        double last; // clocks of the last measurement
        qkResult result;
        size_t measurements;
        const char* told;
        const char* info;
    } rows[] = {
        {"clean", true, 16, 100, OK, 8, "-- Attempt is successful\n", "nLps=8"},
        {"less accurate", true, 16, 108, ACCURWRN, 8, "-- Attempt is successful\n", "nLps=8 acc=6.6%"},
        {"too inaccurate", true, 16, 130, ACCURWRN, 8, "-- Attempt fails: Accuracy is unsatisfactory.\n",
         "nLps=8 acc=23.8%"},
        {"bad with fewer too", true, 4, 100, ACCURWRN, 7, "-- Attempt fails: Bad control status repeats.\n",
         "nLps=4 acc=71.4%"},
        {"not watched", false, 4, 100, OK, 3, "", "nLps=16"},
    };
    m_tool.setMethodBest(2, 64, 10);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        g_ssx.init();
        s_counts.clear();
        s_perCall = [&row](int n) {
            if (n >= row.from) _mm_setcsr(_mm_getcsr() | _MM_EXCEPT_OVERFLOW);
            return n == 2 ? 200.0 : s_counts.size() == 8 ? row.last : 100.0;
        };
        m_tool.m_initBeforeStart = row.watch;
        EXPECT_EQ(m_tool.timing(loopFunc, nullptr, nullptr, nullptr), row.result);
        EXPECT_EQ(s_counts.size(), row.measurements);
        EXPECT_STREQ(m_tool.m_info.c_str(), row.info);
        const std::string text = printed();
        EXPECT_NE(text.find(row.told), std::string::npos) << text;
        EXPECT_EQ(text.find("-- Attempting to avoid bad control status\n") != std::string::npos, row.watch);
        EXPECT_EQ(text.find("-- Status    SSX: ?Overflow ") != std::string::npos, row.watch) << text;
    }
}

TEST_F(ToolTest, InitBeforeEachMeasurementOnRequest)
{
    show(TRACE);
    m_tool.setMethodBest(1, 8, 10);
    m_tool.timing(loopFunc, nullptr, nullptr, initFunc);
    EXPECT_EQ(s_inits, 0);
    printed();
    m_tool.m_initBeforeStart = true;
    m_tool.timing(loopFunc, nullptr, nullptr, initFunc);
    EXPECT_EQ(s_inits, 2);
    const std::string text = printed();
    size_t at = 0;
    for (const char* name :
         {"iterativeTiming", "runTimFunc", "initFunc call", "initFunc call", "runTimFunc"}) {
        at = text.find(name, at + 1);
        EXPECT_NE(at, std::string::npos) << name << "\n" << text;
    }
    EXPECT_TRUE(g_trace.empty());
}

// Root in a container may be allowed to lower the priority only.
bool priorityComesBack()
{
    const pid_t child = fork();
    if (child == 0) {
        const int nice = getpriority(PRIO_PROCESS, 0);
        setpriority(PRIO_PROCESS, 0, nice + 1);
        _exit(setpriority(PRIO_PROCESS, 0, nice) != 0);
    }
    int status = 1;
    waitpid(child, &status, 0);
    return status == 0;
}

// Nothing but root's own wish changes the priority, and it is put back. Tried with the low one, which does no
// harm.
TEST_F(ToolTest, PriorityIsPutBack)
{
    if (getuid() == 0 && !priorityComesBack())
        GTEST_SKIP() << "skipped: root without the right to raise priorities";
    const int nice = getpriority(PRIO_PROCESS, 0);
    const int policy = sched_getscheduler(0);
    s_perCall = [](int) { return 100.0 + getpriority(PRIO_PROCESS, 0); };
    for (int priority : {0, 3}) {
        qkTool::m_priority = priority;
        m_tool.setMethodLoop(4);
        m_tool.timing(loopFunc, nullptr, nullptr, nullptr);
        qkTool::m_priority = 0;
        EXPECT_EQ(m_tool.m_funcClocks, 100 + (priority == 3 && getuid() == 0 ? 10 : nice));
        EXPECT_EQ(getpriority(PRIO_PROCESS, 0), nice);
        EXPECT_EQ(sched_getscheduler(0), policy);
    }
    // A measurement that a signal left comes back to the first state too.
    qkSetPriority(3);
    qkSetPriority(3);
    qkResetPriority();
    EXPECT_EQ(getpriority(PRIO_PROCESS, 0), nice);
}

// Calls, inits and resets among the counter reads of the loops over a plain call.
std::string s_events;
long long s_now;
std::vector<int> s_statuses;
size_t s_call;

struct EventClock {
    static long long read()
    {
        s_events += 'R';
        return s_now;
    }
};

int event(char what, int clocks)
{
    s_events += what;
    s_now += clocks;
    return 0;
}

int eventCall()
{
    event('C', 10);
    return s_call < s_statuses.size() ? s_statuses[s_call++] : 0;
}
const qkFuncCall eventInit = [] { return event('I', 1000); };
const qkFuncCall eventReset = [] { return event('S', 100); };

qkResult eventCheck(int status)
{
    return status < 0 ? FUNCFAIL : status > 0 ? FUNCWRN : OK;
}

struct PlainCase {
    const char* what;
    bool stat, init, reset, check;
    int n;
    long long clocks;
    std::vector<int> statuses;
    const char* events;
    int doneCalls;
    long long doneClocks;
    qkResult result;
};

TEST(PlainCall, Steps)
{
    const PlainCase cases[] = {
        {"loop", false, false, false, true, 3, 0, {}, "CRCCCR", 3, 30, OK},
        {"init and reset in the span", false, true, true, true, 2, 0, {}, "ICRISCISCR", 2, 2220, OK},
        {"no pass", false, true, true, true, 0, 0, {}, "ICRR", 0, 0, OK},
        {"bad warm call", false, false, false, true, 3, 0, {-1}, "C", 3, 0, FUNCFAIL},
        {"an error stops", false, false, false, true, 3, 0, {0, 0, -1}, "CRCCR", 3, 20, FUNCFAIL},
        {"a warning stays", false, false, false, true, 3, 0, {0, 2}, "CRCCCR", 3, 30, FUNCWRN},
        {"nobody checks", false, false, false, false, 2, 0, {-1, -1}, "CRCR", 2, 10, OK},
        {"stat", true, false, false, true, 2, 0, {}, "CRCRCRCRC", 2, 20, OK},
        {"by clocks", true, false, false, true, 0, 25, {}, "CRCRCRCRCRCRC", 3, 30, OK},
        {"init before, reset in the span", true, true, true, true, 1, 0, {}, "ICIRSCRC", 1, 110, OK},
        {"bad warm call", true, false, false, true, 2, 50, {-1}, "C", 0, 0, FUNCFAIL},
        {"second call fails", true, false, false, true, 2, 0, {0, 0, 0, 0, -1}, "CRCRCRCRC", 1, 20, FUNCFAIL},
        {"a timed error is taken back", true, false, false, true, 2, 0, {0, -1}, "CRCRCRCRC", 2, 20, OK},
        {"second call warns", true, false, false, true, 1, 0, {0, 0, 4}, "CRCRC", 1, 10, FUNCWRN},
        {"timed call warns", true, false, false, true, 1, 0, {0, 4, 0}, "CRCRC", 1, 10, FUNCWRN},
    };
    for (const PlainCase& c : cases) {
        SCOPED_TRACE(std::string(c.stat ? "stat, " : "loop, ") + c.what);
        s_events = "";
        s_now = 0;
        s_statuses = c.statuses;
        s_call = 0;
        int n = c.n;
        long long clocks = c.clocks;
        const qkPlainCall form = {eventCall, c.init ? eventInit : nullptr, c.reset ? eventReset : nullptr,
                                  c.check ? eventCheck : nullptr};
        const qkResult result = c.stat ? qkTimeCallStat<EventClock>(form, &n, &clocks)
                                       : qkTimeCallLoop<EventClock>(form, n, &clocks);
        EXPECT_EQ(s_events, c.events);
        EXPECT_EQ(n, c.doneCalls);
        EXPECT_EQ(clocks, c.doneClocks);
        EXPECT_EQ(result, c.result);
    }
}

TEST(CpuFrequency, NominalWithinThreePercent)
{
    const std::pair<int, int> rows[] = {{2596, 2600}, {2594, 2600}, {2631, 2660}, {59, 60},     {58, 58},
                                        {2970, 3060}, {2968, 2968}, {3151, 3060}, {3152, 3152}, {5000, 5000}};
    for (const auto& [measured, nominal] : rows) EXPECT_EQ(qkNominalFreqMHz(measured), nominal) << measured;
}

// A second has 1000 looks at the clock. The first round, started within one, must not count.
struct SecondClock {
    static long long read() { return s_now * 4000000; }
};

TEST(CpuFrequency, CountsTwoWholeSeconds)
{
    s_now = 1650;
    const auto now = [] { return static_cast<std::time_t>(++s_now / 1000); };
    EXPECT_NEAR(estimateCpuFreqMHz<SecondClock>(now), 4000, 10);
    EXPECT_EQ(s_now / 1000, 4);
}

} // namespace
