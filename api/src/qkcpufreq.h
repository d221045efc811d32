// The counter's frequency, measured against the seconds of time().
#ifndef QK_CPU_FREQ_H
#define QK_CPU_FREQ_H

#include <ctime>

// The nominal frequency within 3 percent of the measured one, or the measured one.
int qkNominalFreqMHz(int measured);

// Three rounds back to back, each until `now` has moved on by a second. The first ends at the edge of a
// second, so that the others are whole seconds; these count. Takes two to three seconds. Clock is a parameter
// for tests.
template <class Clock, class Now>
int estimateCpuFreqMHz(Now now)
{
    long long clocks = 0;
    for (int round = 0; round < 3; round++) {
        const std::time_t second = now();
        const long long start = Clock::read();
        while (std::difftime(now(), second) < 1) {
        }
        const long long stop = Clock::read();
        if (round > 0) clocks += stop - start;
    }
    return qkNominalFreqMHz(static_cast<int>(static_cast<float>(clocks) / 1000000 / 2));
}

#endif
