// The processor clock: the time-stamp counter. One tick is one clock of the counter, which on present
// processors runs at a constant rate and not with the core.
#ifndef QK_CLOCK_H
#define QK_CLOCK_H

struct qkTscClock {
    // Fenced on both sides, so that the span between two reads holds just what stands between them; and a
    // barrier for the compiler, so that it moves no load or store of a file-level object across a read.
    [[gnu::always_inline]] static long long read()
    {
        unsigned low, high;
        asm volatile("lfence\n\trdtsc\n\tlfence" : "=a"(low), "=d"(high) : : "memory");
        return static_cast<long long>(static_cast<unsigned long long>(high) << 32 | low);
    }
};

// What a timed loop has measured so far. Clock is qkTscClock in the program and a counting one in tests.
template <class Clock>
struct qkTickRecord {
    long long start = 0;
    long long total = 0;
    int intervals = 0;
    bool finished = false;
    bool stopped = false;

    [[gnu::always_inline]] void clear()
    {
        total = 0;
        intervals = 0;
        finished = stopped = false;
    }
    // Ready for the next interval; a finished sum makes way for a new one.
    [[gnu::always_inline]] void resume()
    {
        if (finished) clear();
        stopped = false;
    }
    [[gnu::always_inline]] void begin() { start = Clock::read(); }
    [[gnu::always_inline]] void end()
    {
        const long long now = Clock::read();
        if (stopped) return;
        stopped = true;
        intervals++;
        total += now - start;
    }
};

#endif
