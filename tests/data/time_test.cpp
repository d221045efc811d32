// The timed loops step by step, on a clock that only the calls move: which counter reads, calls and inits
// happen in which order, what the clocks and counts on return are, and which status counts. A read too many,
// an init on the wrong side of a read, or a warm call that is timed shows as another text or number.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qd_reg.h"
#include "qkreg.h"
#include "qktest.h"

namespace {

std::string s_events; // R counter read, C call, I init, S set-up, K status check
long long s_now;
std::vector<int> s_statuses; // of the calls in turn, then 0
size_t s_calls;
int s_checked;
std::string s_name;

struct EventClock {
    static long long read()
    {
        s_events += 'R';
        return s_now;
    }
};

struct EventCheck {
    static qkResult check(QovStatus status, const qkString& name)
    {
        s_events += 'K';
        s_checked = status;
        s_name = name.c_str();
        return WARNING;
    }
};

int call()
{
    s_events += 'C';
    s_now += 10;
    return s_calls < s_statuses.size() ? s_statuses[s_calls++] : 0;
}

void init()
{
    s_events += 'I';
    s_now += 1000;
}

struct Case {
    const char* what;
    int n;
    long long clocks;
    std::vector<int> statuses;
    const char* events;
    int doneCalls;
    long long doneClocks;
    int status;
};

void start(const std::vector<int>& statuses)
{
    s_events = s_name = "";
    s_now = 500;
    s_statuses = statuses;
    s_calls = 0;
    s_checked = 99;
}

// timed(&n, &clocks); a loop leaves n as it is.
template <class Timed>
void run(const std::vector<Case>& cases, Timed timed)
{
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        start(c.statuses);
        int n = c.n;
        long long clocks = c.clocks;
        EXPECT_EQ(timed(&n, &clocks), WARNING);
        EXPECT_EQ(s_events, c.events);
        EXPECT_EQ(n, c.doneCalls);
        EXPECT_EQ(clocks, c.doneClocks);
        EXPECT_EQ(s_checked, c.status);
        EXPECT_EQ(s_name, "func");
    }
}

TEST(TimeLoop, OneSpanOverAllCalls)
{
    const std::vector<Case> cases = {
        {"three calls", 3, 7777, {}, "CRCCCRK", 3, 30, 0},
        {"none: the span is empty, the warm call's status counts", 0, 7777, {4}, "CRRK", 0, 0, 4},
        {"negative count", -2, 7777, {}, "CRRK", -2, 0, 0},
        {"only the last status counts, no error stops", 3, 0, {-1, 5, -7, 0}, "CRCCCRK", 3, 30, 0},
        {"last one bad", 2, 0, {0, 0, -7}, "CRCCRK", 2, 20, -7},
    };
    run(cases, [](int* n, long long* clocks) {
        return qdTimeLoop<EventClock, EventCheck>("func", *n, clocks, call);
    });
}

TEST(TimeLoop, InitStandsInsideTheSpan)
{
    const std::vector<Case> cases = {
        {"two calls", 2, 0, {}, "ICRICICRK", 2, 2020, 0},
        {"none", 0, 0, {}, "ICRRK", 0, 0, 0},
    };
    run(cases, [](int* n, long long* clocks) {
        return qdTimeLoopInit<EventClock, EventCheck>("func", *n, clocks, init, call);
    });
}

TEST(TimeStat, OneSpanPerCallUntilBothLimits)
{
    const std::vector<Case> cases = {
        {"by count", 2, 0, {}, "RCRRRCRRCRK", 2, 20, 0},
        {"by clocks", 1, 25, {}, "RCRRRCRRCRRCRK", 3, 30, 0},
        {"clocks just reached", 1, 20, {}, "RCRRRCRRCRK", 2, 20, 0},
        {"nothing wanted: the warm call and the fresh start", 0, 0, {}, "RCRRK", 0, 0, 0},
        {"not even the warm call", -1, 0, {}, "K", -1, 0, 0},
        {"warm call fails", 5, 100, {-9}, "RCRK", -1, 10, -9},
        {"a later call fails and is not counted", 5, 100, {0, 0, -9}, "RCRRRCRRCRK", 1, 20, -9},
        {"a warning survives clean calls", 2, 0, {3}, "RCRRRCRRCRK", 2, 20, 3},
        {"the last warning", 3, 0, {3, 0, 5, 0}, "RCRRRCRRCRRCRK", 3, 30, 5},
    };
    run(cases, [](int* n, long long* clocks) {
        return qdTimeStat<EventClock, EventCheck>("func", n, clocks, call);
    });
}

TEST(TimeStat, InitStandsOutsideTheSpans)
{
    const std::vector<Case> cases = {
        {"two calls", 2, 0, {}, "IRCRRIRCRIRCRK", 2, 20, 0},
        {"init is no part of the clocks wanted", 0, 15, {}, "IRCRRIRCRIRCRK", 2, 20, 0},
        {"warm call fails", 2, 0, {-9}, "IRCRK", -1, 10, -9},
    };
    run(cases, [](int* n, long long* clocks) {
        return qdTimeStatInit<EventClock, EventCheck>("func", n, clocks, init, call);
    });
}

// Times itself: the set-up stands outside of the span, and may fail before it begins.
template <class Ticks>
int selfTimed(Ticks& ticks)
{
    s_events += 'S';
    s_now += 1000;
    if (s_calls < s_statuses.size() && s_statuses[s_calls] == -2) return -2;
    ticks.resume();
    ticks.begin();
    const int status = call();
    ticks.end();
    return status;
}

// The read behind the first pass is the record being closed; the next pass starts a fresh sum. Without a next
// pass the first one's time is all there is.
TEST(TimeLoopTicks, WarmPassIsDropped)
{
    const std::vector<Case> cases = {
        {"three passes", 3, 7777, {}, "SRCRRSRCRSRCRSRCRK", 3, 30, 0},
        {"the warm pass alone", 0, 7777, {}, "SRCRRK", 0, 10, 0},
        {"nothing", -1, 7777, {}, "K", -1, 0, 0},
        {"a warning survives clean passes", 2, 0, {3, 0, 5, 0}, "SRCRRSRCRSRCRK", 2, 20, 5},
        {"a negative status ends it", 5, 0, {0, 4, -7, 0}, "SRCRRSRCRSRCRK", 5, 20, -7},
        {"warm pass fails", 5, 0, {-7}, "SRCRK", 5, 10, -7},
        {"set-up of the warm pass fails", 5, 7777, {-2}, "SK", 5, 0, -2},
        {"set-up of a later pass fails", 5, 0, {0, 0, -2}, "SRCRRSRCRSK", 5, 10, -2},
    };
    run(cases, [](int* n, long long* clocks) {
        const qkTickRecord<EventClock> ticks;
        return qdTimeLoopTicks<EventCheck>("func", *n, clocks, ticks, selfTimed<qkTickRecord<EventClock>>);
    });
}

TEST(TimeStatTicks, UntilBothLimits)
{
    const std::vector<Case> cases = {
        {"by count", 2, 0, {}, "SRCRRSRCRSRCRK", 2, 20, 0},
        {"by clocks", 1, 25, {}, "SRCRRSRCRSRCRSRCRK", 3, 30, 0},
        {"clocks just reached", 1, 20, {}, "SRCRRSRCRSRCRK", 2, 20, 0},
        {"the warm pass's time is no part of the sum", 0, 15, {}, "SRCRRSRCRSRCRK", 2, 20, 0},
        {"the warm pass alone", 0, 0, {}, "SRCRRK", 0, 10, 0},
        {"not even the warm pass", -1, 0, {}, "K", -1, 0, 0},
        {"warm pass fails", 5, 100, {-7}, "SRCRK", -1, 10, -7},
        {"a later pass fails and is not counted", 5, 100, {0, 0, -7}, "SRCRRSRCRSRCRK", 1, 20, -7},
        {"set-up fails", 5, 100, {0, 0, -2}, "SRCRRSRCRSK", 1, 10, -2},
        {"the last warning", 3, 0, {3, 0, 5, 0}, "SRCRRSRCRSRCRSRCRK", 3, 30, 5},
    };
    run(cases, [](int* n, long long* clocks) {
        const qkTickRecord<EventClock> ticks;
        return qdTimeStatTicks<EventCheck>("func", n, clocks, ticks, selfTimed<qkTickRecord<EventClock>>);
    });
}

// ---- The six forms of registration, on the real clock

class Suite : public qdTest {
public:
    using qdTest::m_funcCall;
    using qdTest::m_funcInit;
    using qdTest::m_funcLoop;
    using qdTest::m_funcStat;
    using qdTest::qdTest;
};

int primitive(int value)
{
    return call() + value;
}
constexpr auto primitiveI = primitive, primitiveIbs = primitive;

int s_argument;
QD_REG(Suite, primitive, s_argument);
QD_REG_X(Suite, primitiveX, call);
QD_REG_I(Suite, primitiveI, init, s_argument);
QD_REG_I_X(Suite, primitiveIX, init, call);
QD_REG_Ibs(Suite, primitiveIbs, init, s_argument);
QD_REG_T(Suite, primitiveT, selfTimed<qdTicks>);

// What each form calls for two measured calls behind a warm one, and that the tests stand in the order of
// their blocks.
TEST(Registration, FormsCallAndInit)
{
    const struct {
        const char *name, *macro;
        const char *loop, *stat, *alone;
    } forms[] = {
        {"primitive", "QD_REG", "CCC", "CCC", "C"},
        {"primitiveX", "QD_REG_X", "CCC", "CCC", "C"},
        {"primitiveI", "QD_REG_I", "ICICIC", "ICICIC", "IC"},
        {"primitiveIX", "QD_REG_I_X", "ICICIC", "ICICIC", "IC"},
        {"primitiveIbs", "QD_REG_Ibs", "CCC", "ICICIC", "IC"},
        {"primitiveT", "QD_REG_T", "SCSCSC", "SCSCSC", ""},
    };
    ASSERT_NE(pTestList, nullptr);
    auto entry = pTestList->begin();
    for (const auto& form : forms) {
        SCOPED_TRACE(form.name);
        ASSERT_NE(entry, pTestList->end());
        const auto* test = dynamic_cast<const Suite*>(*entry);
        ++entry;
        ASSERT_NE(test, nullptr);
        EXPECT_STREQ(test->name().c_str(), form.name);
        EXPECT_STREQ(test->fileName().c_str(), "time_test");
        EXPECT_STREQ(test->info().m_class.c_str(), "Suite");
        EXPECT_STREQ(test->info().m_description.c_str(), "");
        EXPECT_STREQ(test->info().m_macro.c_str(), form.macro);

        start({});
        int n = 2;
        long long clocks = 0;
        EXPECT_EQ(test->m_funcLoop(n, &clocks), OK);
        EXPECT_EQ(s_events, form.loop);
        start({});
        clocks = 0;
        EXPECT_EQ(test->m_funcStat(&n, &clocks), OK);
        EXPECT_EQ(s_events, form.stat);
        EXPECT_EQ(n, 2);
        EXPECT_GT(clocks, 0);

        start({5});
        EXPECT_EQ(test->m_funcInit ? test->m_funcInit() : 0, 0);
        EXPECT_EQ(test->m_funcCall ? test->m_funcCall() : 5, 5);
        EXPECT_EQ(s_events, form.alone);
    }
    EXPECT_EQ(entry, pTestList->end());
}

// The real counter and the real status check, as the suites use them.
TEST(TimeStat, RealClockCountsUp)
{
    int n = 3;
    long long clocks = 2000;
    EXPECT_EQ(qdTimeStat("func", &n, &clocks, [] { return 0; }), OK);
    EXPECT_GE(n, 3);
    EXPECT_GE(clocks, 2000);
}

} // namespace
