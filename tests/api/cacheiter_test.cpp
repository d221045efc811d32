#include "qkcacheiter.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "qklibenv.h"
#include "support/capture.h"

namespace {

int s_cacheSize = 0;

constexpr int cache = 1 << 20;

class FakeData : public qkObject {
public:
    int objectSize() const override { return m_size; }
    int m_size = 0;
};

// The library tells of a cache of our choice.
class CacheIterator : public testing::Test {
protected:
    CacheIterator()
    {
        qov_GetMaxCacheSizeB = [](int* size) { return *size = s_cacheSize, QovStatus(qovStsNoErr); };
        s_cacheSize = cache;
        m_length.add(64);
    }
    ~CacheIterator() override { qov_GetMaxCacheSizeB = m_old; }

    // Blocks of a data set: the destination is the object, the others lie beside it.
    struct Blocks {
        Blocks(long long objectSize, long long otherSize)
            : m_object(qkMalloc(static_cast<int>(objectSize), 0, 0, nullptr)),
              m_other(qkMalloc(static_cast<int>(otherSize), 0, 0, nullptr))
        {
        }
        ~Blocks()
        {
            qkFree(m_object);
            qkFree(m_other);
        }
        void* m_object;
        void* m_other;
    };

    // The run loop's part: prepares data until the size fits. Returns the tries, or 0 if they ran out.
    template <class SizeOf>
    int prepare(qkCacheIterator& iterator, double objectShare, SizeOf totalSize)
    {
        for (int tries = 1; tries < 50; tries++) {
            const long long total = totalSize();
            m_data.m_size = static_cast<int>(static_cast<double>(total) * objectShare);
            const Blocks blocks(m_data.m_size, total - m_data.m_size);
            if (iterator.validateSize()) {
                EXPECT_EQ(iterator.getTotalSize(), total);
                return tries;
            }
            if (!iterator.repeatValue()) return 0;
        }
        ADD_FAILURE() << "the attempts do not end";
        return 0;
    }

    FakeData m_data;
    qkIterator<int> m_length{"len", ""}; // of one value, 64
    QovStatus (*m_old)(int*) = qov_GetMaxCacheSizeB;
};

TEST_F(CacheIterator, FindsALengthInAndOutOfCache)
{
    const struct {
        int start;
        int bytes;          // of all data, for each element
        double objectShare; // of the object in it
    } cases[] = {{64, 1, 1.0}, {64, 3, 0.33}, {1, 8, 0.5}, {1 << 24, 4, 0.5}, {100000, 5, 0.2}, {7, 1, 0.12}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "start " << c.start << " bytes " << c.bytes);
        qkIterator<int> length("len", "");
        length.add(c.start);
        qkCacheIteratorInt iterator(length, &m_data, nullptr);
        const auto size = [&] { return static_cast<long long>(length.value()) * c.bytes; };

        ASSERT_TRUE(iterator.firstValue());
        EXPECT_STREQ(iterator.getComment().c_str(), "inCache");
        EXPECT_GT(prepare(iterator, c.objectShare, size), 0);
        EXPECT_GE(m_data.m_size, iterator.lowSize());
        EXPECT_LE(size(), cache * 9 / 10);

        ASSERT_TRUE(iterator.nextValue());
        EXPECT_EQ(length.value(), c.start) << "each mode starts from the parameter's own first value";
        EXPECT_STREQ(iterator.getComment().c_str(), "outofCache");
        EXPECT_GT(prepare(iterator, c.objectShare, size), 0);
        EXPECT_GT(m_data.m_size, cache);
        EXPECT_FALSE(iterator.nextValue());
    }
}

// The object is 2 percent of the data: only the widened range has a size for it.
TEST_F(CacheIterator, WidensTheRangeOnce)
{
    for (const auto& [share, fits] : {std::pair(0.02, true), std::pair(0.005, false)}) {
        qkIterator<int> length("len", "");
        length.add(1100);
        qkCacheIteratorInt iterator(length, &m_data, nullptr);
        ASSERT_TRUE(iterator.firstValue());
        EXPECT_EQ(iterator.lowSize(), cache / 10);
        const int tries = prepare(iterator, share, [&] { return static_cast<long long>(length.value()); });
        EXPECT_EQ(tries > 0, fits) << share;
        EXPECT_EQ(iterator.lowSize(), cache / 100);
        ASSERT_TRUE(iterator.nextValue());
        iterator.firstValue();
        EXPECT_EQ(iterator.lowSize(), cache / 10) << "a new value starts with the narrow range";
    }
}

TEST_F(CacheIterator, AttemptsEnd)
{
    int calls = 0;
    static int* s_calls;
    s_calls = &calls;
    // A parameter whose value changes nothing.
    qkCacheIteratorInt iterator(m_length, &m_data,
                                [](qkParameter*, int, int, bool) { return ++*s_calls > 0; });
    iterator.firstValue();
    EXPECT_EQ(prepare(iterator, 1.0, [] { return 100LL; }), 0);
    EXPECT_EQ(calls, 11);

    s_cacheSize = 0; // nothing fits a cache of no size
    qkCacheIteratorInt noCache(m_length, &m_data, nullptr);
    noCache.firstValue();
    EXPECT_EQ(noCache.highSize(), 0);
    EXPECT_EQ(prepare(noCache, 1.0, [&] { return static_cast<long long>(m_length.value()); }), 0);
}

TEST_F(CacheIterator, TellsTheUpdateFunctionWhatIsWrong)
{
    static std::string s_call;
    qkCacheIteratorInt iterator(m_length, &m_data, [](qkParameter*, int current, int target, bool fast) {
        s_call = std::to_string(current) + " to " + std::to_string(target) + (fast ? ", fast" : "");
        return true;
    });
    LevelCapture console(g_ostrm, PERF);
    const struct {
        int object, other;
        const char *call, *text;
    } cases[] = {
        {1000, 200000, "1000 to 104857", " objectSize=1000 < 104857\n"},
        {0, 1000, "1000 to 104857, fast", " totalSize=1000 < 104857\n"},
        {200000, 2000000, "2200000 to 943718, fast", " totalSize=2200000 > 943718\n"},
    };
    iterator.firstValue();
    for (const auto& c : cases) {
        m_data.m_size = c.object;
        const Blocks blocks(c.object, c.other);
        EXPECT_FALSE(iterator.validateSize());
        EXPECT_EQ(console.take(), std::string("      inCache try: cacheParm=64") + c.text);
        EXPECT_TRUE(iterator.repeatValue());
        EXPECT_EQ(s_call, c.call);
    }
}

TEST_F(CacheIterator, InfoIsForThoseWhoDidNotSeeTheAttempts)
{
    qkCacheIteratorInt iterator(m_length, nullptr, nullptr);
    const Blocks blocks(10, 10);
    for (OutputLevel mask : {ERR | WARN | PERF, ERR | WARN}) {
        LevelCapture console(g_ostrm, mask);
        iterator.firstValue();
        EXPECT_FALSE(iterator.validateSize());
        const std::string attempt = "      inCache try: cacheParm=64 totalSize=20 < 104857\n";
        const bool seen = mask & PERF;
        EXPECT_EQ(console.take(), seen ? attempt : "");
        iterator.outputInfo();
        EXPECT_EQ(console.take(), seen ? "" : attempt);
    }
}

TEST(CacheUpdate, Lengths)
{
    const struct {
        int value, current, target;
        bool fast;
        int result; // 0: refused
    } cases[] = {
        {64, 64, 1000, false, 512},      {64, 63, 64, false, 64}, {64, 1000, 64, false, 4},
        {1, 1000, 64, false, 0},         {64, 0, 64, false, 0},   {64, 100, 50, true, 32},
        {64, 49, 50, true, 128},         {1, 2, 1, true, 0},      {1 << 30, 1, 2, true, 0},
        {1, 1, INT_MAX, false, 1 << 30},
    };
    for (const auto& c : cases) {
        int value = c.value;
        const bool done = qkCacheIteratorInt::updateValue(value, c.current, c.target, c.fast);
        EXPECT_EQ(done ? value : 0, c.result)
            << c.value << " " << c.current << " " << c.target << " " << c.fast;
    }
}

TEST(CacheUpdate, Sizes)
{
    const struct {
        QovSize value;
        int current, target;
        bool fast;
        QovSize result; // width 0: refused
    } cases[] = {
        {{64, 64}, 1, 9, false, {128, 256}},   {{64, 32}, 1, 9, false, {128, 128}},
        {{64, 64}, 8, 2, false, {32, 16}},     {{64, 64}, 10, 20, true, {64, 128}},
        {{64, 128}, 10, 20, true, {128, 128}}, {{64, 64}, 20, 10, true, {32, 64}},
        {{32, 64}, 20, 10, true, {32, 32}},    {{1, 1}, 20, 10, true, {0, 0}},
        {{64, 1}, 20, 10, false, {0, 0}},      {{64, 64}, 0, 10, false, {0, 0}},
    };
    for (const auto& c : cases) {
        QovSize value = c.value;
        const bool done = qkCacheIteratorSize::updateValue(value, c.current, c.target, c.fast);
        EXPECT_EQ(done, c.result.width > 0);
        EXPECT_TRUE(!done || (value.width == c.result.width && value.height == c.result.height))
            << c.value.width << "x" << c.value.height << " to " << value.width << "x" << value.height;
    }
}

} // namespace
