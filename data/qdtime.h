// The timed loops of the suites, once for all of them. `call` performs the measured call and answers its
// status; `init`, where there is one, prepares what a call consumes. Between two counter reads stand only the
// call and the loads of its arguments, and `init` where told. Clock and Check are parameters for tests.
#ifndef QD_TIME_H
#define QD_TIME_H

#include "qdtest.h"
#include "qkclock.h"
#include "qktool.h"

struct qdStatusCheck {
    static qkResult check(QovStatus status, const qkString& name)
    {
        return qdTest::checkStatus(status, name);
    }
};

// n calls in one span, after one that brings code and data into the caches. Only the last status counts.
template <class Clock = qkTscClock, class Check = qdStatusCheck, class Call>
[[gnu::always_inline]] inline qkResult qdTimeLoop(const char* name, int n, long long* clocks, Call call)
{
    QovStatus status = call();
    qkTickRecord<Clock> ticks;
    ticks.clear();
    ticks.begin();
    for (int i = 0; i < n; i++) status = call();
    ticks.end();
    ticks.finished = true;
    *clocks = qkCpuTicker::getClockFactor() * ticks.total;
    return Check::check(status, name);
}

// The same with `init` before every call, inside the span too.
template <class Clock = qkTscClock, class Check = qdStatusCheck, class Init, class Call>
[[gnu::always_inline]] inline qkResult qdTimeLoopInit(const char* name, int n, long long* clocks, Init init,
                                                      Call call)
{
    return qdTimeLoop<Clock, Check>(name, n, clocks, [&] {
        init();
        return call();
    });
}

// Single calls, each in a span of its own with `init` outside of it: at least *n of them and at least *clocks
// together, both replaced by what was done. The first pass, -1, warms the caches; its time is dropped. The
// last status that is not 0 counts, and a negative one ends the loop.
template <class Clock = qkTscClock, class Check = qdStatusCheck, class Init, class Call>
[[gnu::always_inline]] inline qkResult qdTimeStatInit(const char* name, int* n, long long* clocks, Init init,
                                                      Call call)
{
    QovStatus kept = 0;
    qkTickRecord<Clock> ticks;
    ticks.finished = ticks.stopped = true;
    int i = -1;
    for (;;) {
        if (i == 0) {
            ticks.clear();
            ticks.begin();
        }
        if (i >= *n && qkCpuTicker::getClockFactor() * ticks.total >= *clocks) break;
        init();
        ticks.resume();
        ticks.begin();
        const QovStatus status = call();
        ticks.end();
        if (status != 0) kept = status;
        if (status < 0) break;
        i++;
    }
    *n = i;
    *clocks = qkCpuTicker::getClockFactor() * ticks.total;
    return Check::check(kept, name);
}

template <class Clock = qkTscClock, class Check = qdStatusCheck, class Call>
[[gnu::always_inline]] inline qkResult qdTimeStat(const char* name, int* n, long long* clocks, Call call)
{
    return qdTimeStatInit<Clock, Check>(
        name, n, clocks, [] {}, call);
}

using qdTicks = qkTickRecord<qkTscClock>;

// For a routine that times itself: it calls ticks.resume(), ticks.begin() and ticks.end() around what counts.
// The first pass warms the caches and its time is dropped; then n passes. A negative status ends the loop.
template <class Check = qdStatusCheck, class Ticks, class Routine>
inline qkResult qdTimeLoopTicks(const char* name, int n, long long* clocks, Ticks ticks, Routine routine)
{
    QovStatus kept = 0;
    ticks.finished = ticks.stopped = true;
    for (int i = -1; i < n; i++) {
        const QovStatus status = routine(ticks);
        if (status != 0) kept = status;
        if (status < 0) break;
        if (i < 0) {
            ticks.end();
            ticks.finished = true;
        }
    }
    *clocks = qkCpuTicker::getClockFactor() * ticks.total;
    return Check::check(kept, name);
}

// The same, until at least *n passes and *clocks clocks are done; both are replaced by what was done.
template <class Check = qdStatusCheck, class Ticks, class Routine>
inline qkResult qdTimeStatTicks(const char* name, int* n, long long* clocks, Ticks ticks, Routine routine)
{
    QovStatus kept = 0;
    ticks.finished = ticks.stopped = true;
    int i = -1;
    while (i < *n || qkCpuTicker::getClockFactor() * ticks.total < *clocks) {
        const QovStatus status = routine(ticks);
        if (status != 0) kept = status;
        if (status < 0) break;
        if (i < 0) {
            ticks.end();
            ticks.finished = true;
        }
        i++;
    }
    *n = i;
    *clocks = qkCpuTicker::getClockFactor() * ticks.total;
    return Check::check(kept, name);
}

#endif
