// The timed loops over one plain call, for tests that bring no loops of their own. Nothing but what is named
// stands between two counter reads. Clock is qkTscClock in the program and a counting one in tests.
#ifndef QK_TIM_CALL_H
#define QK_TIM_CALL_H

#include "qktool.h"

struct qkPlainCall {
    qkFuncCall call = nullptr;
    qkFuncCall init = nullptr;        // before each call; may be null
    int (*reset)() = nullptr;         // gives each call its input afresh; may be null
    qkResult (*check)(int) = nullptr; // null: every status is good

    int warmUp() const
    {
        if (init) init();
        return call();
    }
    qkResult checked(int status) const { return check ? check(status) : OK; }
};

// n calls in one span. An init stands inside it. A negative status ends the loop, a positive one is kept.
template <class Clock>
qkResult qkTimeCallLoop(const qkPlainCall form, int n, long long* clocks)
{
    int status = form.warmUp();
    if (form.check && status < 0) return form.check(status);

    const long long start = Clock::read();
    for (int i = 0; i < n; i++) {
        if (form.init) form.init();
        if (form.reset) form.reset();
        const int now = form.call();
        if (now != 0) status = now;
        if (now < 0) break;
    }
    const long long stop = Clock::read();
    *clocks = qkCpuTicker::getClockFactor() * (stop - start);
    return form.checked(status);
}

// Single calls, at least n of them and at least *clocks together; both are replaced by what was done. An init
// stands outside the spans. The second, untimed call of a pass leaves the caches in the state of a repeated
// call.
template <class Clock>
qkResult qkTimeCallStat(const qkPlainCall form, int* n, long long* clocks)
{
    const int minCalls = *n;
    const long long minClocks = *clocks;
    *n = 0;
    *clocks = 0;
    int status = form.warmUp();
    if (form.check && status < 0) return form.check(status);

    long long sum = 0;
    int calls = 0;
    while (calls < minCalls || qkCpuTicker::getClockFactor() * sum < minClocks) {
        if (form.init) form.init();
        const long long start = Clock::read();
        if (form.reset) form.reset();
        status = form.call();
        const long long stop = Clock::read();
        sum += stop - start;
        const int second = form.call();
        if (second != 0) status = second;
        if (second < 0) break;
        calls++;
    }
    *n = calls;
    *clocks = qkCpuTicker::getClockFactor() * sum;
    return form.checked(status);
}

#endif
