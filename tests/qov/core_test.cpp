// The library's core: levels, threads, memory, status texts, versions.
#include "qov_testing.h"
#include "qovj.h"

#include <set>

namespace {

// Stands first: no test before it has called qovInit.
TEST(Levels, PlainUntilInitialised)
{
    // The only test that may see the state before qovInit: each test is to run in a process of its own for
    // it.
    EXPECT_EQ(qovCpuPx, qovGetEnabledCpuType());
}

TEST(Levels, Choice)
{
    const int best = qovGetCpuType();
    ASSERT_GE(best, qovCpuPx);
    for (int level = qovCpuPx; level <= qovCpuV4; level++) {
        const QovStatus expected = level <= best ? qovStsNoErr : qovStsNotSupportedCpu;
        EXPECT_EQ(expected, qovInitCpu(QovCpuType(level)));
        EXPECT_EQ(std::min(level, best), qovGetEnabledCpuType());
        EXPECT_EQ(best, qovGetCpuType());
    }
    ASSERT_EQ(qovStsNoErr, qovInitCpu(qovCpuPx));
    for (int code : {-1, 0, 5, 1000}) {
        EXPECT_EQ(qovStsBadArg, qovInitCpu(QovCpuType(code))) << code;
        EXPECT_EQ(qovCpuPx, qovGetEnabledCpuType()) << code;
    }
    EXPECT_EQ(qovStsNoErr, qovInit());
    EXPECT_EQ(best, qovGetEnabledCpuType());
}

TEST(Levels, EnabledFeaturesGrowAndAreThere)
{
    Qov64u has = 0, before = 0;
    ASSERT_EQ(qovStsNoErr, qovGetCpuFeatures(&has));
    EXPECT_EQ(qovStsNullPtr, qovGetCpuFeatures(nullptr));
    forEachLevel([&] {
        const Qov64u enabled = qovGetEnabledCpuFeatures();
        EXPECT_EQ(before, enabled & before);
        EXPECT_EQ(enabled, enabled & has);
        EXPECT_EQ(qovGetEnabledCpuType() == qovCpuPx, enabled == 0);
        before = enabled;
    });
}

TEST(Queries, CacheAndCores)
{
    int size = -1;
    const QovStatus status = qovGetMaxCacheSizeB(&size);
    if (status == qovStsNoErr)
        EXPECT_GT(size, 16 * 1024);
    else
        EXPECT_EQ(0, size);
    EXPECT_EQ(qovStsNullPtr, qovGetMaxCacheSizeB(nullptr));
    EXPECT_GE(qovGetNumCoresOnDie(), 1);
}

TEST(Threads, OneAndHonest)
{
    int n = 0;
    EXPECT_EQ(qovStsNoErr, qovSetNumThreads(1));
    EXPECT_EQ(qovStsOneThread, qovSetNumThreads(2));
    EXPECT_EQ(qovStsBadArg, qovSetNumThreads(0));
    EXPECT_EQ(qovStsNoErr, qovGetNumThreads(&n));
    EXPECT_EQ(1, n);
    EXPECT_EQ(qovStsNullPtr, qovGetNumThreads(nullptr));
}

TEST(Memory, AlignedAndWhole)
{
    for (int length : {1, 63, 64, 65, 100000}) {
        char* p = static_cast<char*>(qovMalloc(length));
        ASSERT_NE(nullptr, p);
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(p) % 64) << length;
        std::memset(p, 1, size_t(length));
        qovFree(p);
    }
    EXPECT_EQ(nullptr, qovMalloc(0));
    EXPECT_EQ(nullptr, qovMalloc(-5));
    qovFree(nullptr);
}

TEST(Memory, AlignPtr)
{
    alignas(64) static char block[129];
    struct {
        int at, align, expected;
    } const cases[] = {{0, 64, 0},    {1, 64, 64}, {63, 64, 64}, {64, 64, 64},
                       {65, 64, 128}, {5, 1, 5},   {5, 2, 6}};
    for (const auto& c : cases) EXPECT_EQ(block + c.expected, qovAlignPtr(block + c.at, c.align)) << c.at;
}

TEST(Status, EachHasItsText)
{
    const QovStatus known[] = {qovStsNoErr,
                               qovStsPartial,
                               qovStsMarker,
                               qovStsNotSupportedCpu,
                               qovStsOneThread,
                               qovStsUnknownCpu,
                               qovStsUnknownCacheSize,
                               qovStsErr,
                               qovStsNotSupported,
                               qovStsNoMemory,
                               qovStsBadArg,
                               qovStsSize,
                               qovStsStep,
                               qovStsRange,
                               qovStsNullPtr,
                               qovStsContext,
                               qovStsDstFull,
                               qovStsTable,
                               qovStsData,
                               qovStsDamagedBlock};
    std::set<std::string> texts;
    for (QovStatus status : known) texts.insert(qovGetStatusString(status));
    EXPECT_EQ(std::size(known), texts.size());
    EXPECT_FALSE(texts.count(qovGetStatusString(-1000)));
    EXPECT_FALSE(texts.count(qovGetStatusString(1000)));
}

TEST(Version, EachDomainNamesItself)
{
    EXPECT_STREQ("qovcore", qovGetLibVersion()->name);
    EXPECT_STREQ("qovi", qoviGetLibVersion()->name);
    EXPECT_STREQ("qovs", qovsGetLibVersion()->name);
    EXPECT_STREQ("qovj", qovjGetLibVersion()->name);
    EXPECT_STREQ("2.0", qovjGetLibVersion()->version);
    EXPECT_EQ(2, qovjGetLibVersion()->major);
}

} // namespace
