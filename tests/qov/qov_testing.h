// What the tests of the library share: visiting every level of this machine, random numbers with a printed
// seed, and buffers whose surroundings are watched.
#ifndef TESTS_QOV_TESTING_H
#define TESTS_QOV_TESTING_H

#include "qovcore.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <random>
#include <string>
#include <vector>

// QOV_TEST_SEED=N repeats a run.
inline unsigned testSeed()
{
    static const unsigned seed = [] {
        const char* given = std::getenv("QOV_TEST_SEED");
        const unsigned s = given ? unsigned(std::strtoul(given, nullptr, 10)) : std::random_device{}();
        std::cout << "random data: QOV_TEST_SEED=" << s << "\n";
        return s;
    }();
    return seed;
}

class Random {
public:
    Random() : m_engine(testSeed()) {}
    int in(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_engine); }
    bool oneIn(int n) { return in(1, n) == 1; }

    // Any value of T, its extremes and small values favoured.
    template <class T>
    T value()
    {
        const int low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
        switch (in(0, 3)) {
        case 0: return T(oneIn(2) ? low + in(0, 2) : high - in(0, 2));
        case 1: return T(low < 0 ? in(-130, 130) : in(0, 260));
        default: return T(in(low, high));
        }
    }

private:
    std::mt19937 m_engine;
};

// Calls `visit` with each level that this machine runs made active, px first, and leaves the best one.
template <class Visit>
void forEachLevel(Visit visit)
{
    static const char* const names[] = {"?", "px", "v2", "v3", "v4"};
    for (int level = qovCpuPx; level <= qovGetCpuType(); level++) {
        ASSERT_EQ(qovStsNoErr, qovInitCpu(QovCpuType(level)));
        SCOPED_TRACE(std::string("level ") + names[level]);
        visit();
        if (testing::Test::HasFatalFailure()) break;
    }
    qovInit();
}

// `bytes` bytes at `offset` behind a 64-byte boundary, with bytes around them that must not change.
class Guarded {
public:
    Guarded(size_t bytes, size_t offset) : m_bytes(bytes), m_block(margin + offset + bytes + margin + 64)
    {
        for (size_t i = 0; i < m_block.size(); i++) m_block[i] = guard(i);
        const size_t misfit = (64 - reinterpret_cast<uintptr_t>(m_block.data()) % 64) % 64;
        m_start = misfit + margin + offset;
    }

    template <class T>
    T* as()
    {
        return reinterpret_cast<T*>(m_block.data() + m_start);
    }

    // Bytes before and behind are untouched, and so are those between rows of `rowBytes` that lie `step`
    // apart.
    bool intact(size_t step, size_t rowBytes) const
    {
        for (size_t i = 0; i < m_block.size(); i++) {
            const bool inside = i >= m_start && i < m_start + m_bytes && (i - m_start) % step < rowBytes;
            if (!inside && m_block[i] != guard(i)) return false;
        }
        return true;
    }
    bool intact() const { return intact(m_bytes, m_bytes); }

private:
    static constexpr size_t margin = 128;
    static unsigned char guard(size_t i) { return static_cast<unsigned char>(0xA5 ^ (i * 7)); }

    size_t m_bytes, m_start;
    std::vector<unsigned char> m_block;
};

#endif
