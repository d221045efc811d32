// The harness beside a library and beside none: which function stands behind each pointer, what is told of
// the calls, and what the registration lists hold.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "qkcpuid.h"
#include "qklibenv.h"
#include "qkreg.h"
#include "support/script_test.h"

namespace {

// A library with statuses to choose and a diary.
QovStatus s_initStatus, s_initCpuStatus, s_threadStatus;
Strings s_calls;

void fillFake()
{
    qov_Init = [] {
        s_calls.push_back("init");
        return s_initStatus;
    };
    qov_InitCpu = [](QovCpuType cpu) {
        s_calls.push_back("initCpu " + std::to_string(cpu));
        return s_initCpuStatus;
    };
    qov_SetNumThreads = [](int numThreads) {
        s_calls.push_back("setNumThreads " + std::to_string(numThreads));
        return s_threadStatus;
    };
    qov_GetNumThreads = [](int* numThreads) { return *numThreads = 3, QovStatus(qovStsNoErr); };
    qov_GetStatusString = [](QovStatus status) { return status == -5 ? "size is wrong" : "something else"; };
}

template <char letter>
const QovLibraryVersion* versionOf()
{
    static const char name[] = {'q', 'o', 'v', letter, 0};
    static const QovLibraryVersion version = {1, 2, 3, name, "1.2", "Jan 1 2026"};
    return &version;
}

template <class List>
void drop(List*& list)
{
    delete std::exchange(list, nullptr);
}

Strings strings(const qkStringList* list)
{
    Strings out;
    for (const qkString& text : *list) out.push_back(text.c_str());
    return out;
}

class LibEnvTest : public testing::Test {
protected:
    LibEnvTest()
    {
        clear();
        g_ostrm.setMsgLevel(PERF);
    }
    ~LibEnvTest() override
    {
        EXPECT_EQ(g_ostrm.msgLevel(), PERF);
        clear();
    }

    static void clear()
    {
        qov_Init = nullptr;
        qov_InitCpu = nullptr;
        qov_SetNumThreads = nullptr;
        qov_GetNumThreads = nullptr;
        qov_GetStatusString = nullptr;
        qovEnvironment = nullptr;
        drop(qovVersionList);
        drop(g_pLibInfoList);
        drop(g_pLibFuncList);
        s_cpuType = -1;
        s_numThreads = 0;
        s_initStatus = s_initCpuStatus = s_threadStatus = qovStsNoErr;
        s_calls.clear();
    }

    // With the fake library in place and a console that shows errors alone.
    void useFake()
    {
        qkRegQovEnvironment(fillFake);
        g_ostrm.setOutLevel(1);
        setQovEnvironment();
    }

    std::string text() { return m_console.take(); }

    LevelCapture m_console{g_ostrm, 7};
};

TEST_F(LibEnvTest, WithoutALibraryEverySubstituteAnswers)
{
    setQovEnvironment();
    EXPECT_EQ(text(), "");
    int number = 0;
    Qov64u features = 0;
    EXPECT_EQ(qov_Init(), -2);
    EXPECT_EQ(qov_InitCpu(qovCpuV2), -2);
    EXPECT_EQ(qov_SetNumThreads(2), -2);
    EXPECT_EQ(qov_GetNumThreads(&number), -2);
    EXPECT_EQ(qov_GetCpuFeatures(&features), -2);
    EXPECT_EQ(qov_GetEnabledCpuFeatures(), 0u);
    EXPECT_GE(qov_GetNumCoresOnDie(), 1);
    EXPECT_STREQ(qov_GetStatusString(-7), "Error");
    EXPECT_STREQ(qov_GetStatusString(0), "OK");
    EXPECT_STREQ(qov_GetStatusString(9), "Warning");
}

TEST_F(LibEnvTest, ALibraryKeepsItsPointersAndIsToldWhenTheLevelLetsItThrough)
{
    useFake();
    EXPECT_EQ(text(), "");
    g_ostrm.setOutLevel(7);
    setQovEnvironment();
    EXPECT_EQ(text(), "\nQOV Core library functions have been integrated into QK\n");
    EXPECT_STREQ(qov_GetStatusString(-5), "size is wrong");
    EXPECT_EQ(qov_GetCpuType, qk_qovGetCpuType); // this library has none
}

TEST_F(LibEnvTest, ChoiceOfTheProcessorType)
{
    useFake();
    initStaticCpu();
    EXPECT_EQ(text(), "");
    EXPECT_EQ(s_calls, Strings{"init"});

    const std::string call =
        std::string("\n--calling qovInitCpu( qovCpu") + qkCpuType::cpuLabel(qovCpuV3).c_str() + "=3 )\n";
    const std::string bad = "--QOV ERROR. status = -5: size is wrong\n--calling qovInit()\n";
    const struct {
        QovStatus initCpu, init;
        std::string report;
        Strings calls;
    } rows[] = {
        {0, -5, "--status = qovStsNoErr\n", {"initCpu 3"}},
        {3, -5, "--QOV WARNING. status = 3: something else\n", {"initCpu 3"}},
        {-5, 0, bad, {"initCpu 3", "init"}},
        {-5, -6, bad + "--QOV ERROR. status = -6: something else\n", {"initCpu 3", "init"}},
    };
    s_cpuType = qovCpuV3;
    for (const auto& row : rows) {
        s_calls.clear();
        s_initCpuStatus = row.initCpu;
        s_initStatus = row.init;
        initStaticCpu();
        EXPECT_EQ(text(), call + row.report);
        EXPECT_EQ(s_calls, row.calls);
    }
}

TEST_F(LibEnvTest, NumberOfThreads)
{
    useFake();
    const struct {
        int numThreads;
        QovStatus status;
        std::string report;
    } rows[] = {
        {0, -5, ""},
        {8, 0, "--calling qovSetNumThreads( 8 )\n--status = qovStsNoErr\n"},
        {8, 4, "--calling qovSetNumThreads( 8 )\n--QOV WARNING. status = 4: something else\n"},
    };
    for (const auto& row : rows) {
        s_calls.clear();
        s_numThreads = row.numThreads;
        s_threadStatus = row.status;
        setNumThreads();
        EXPECT_EQ(text(), "\n--calling qovGetNumThreads: numThreads = 3\n" + row.report);
        EXPECT_EQ(s_calls, row.numThreads ? Strings{"setNumThreads 8"} : Strings{});
    }
}

TEST_F(LibEnvTest, LibraryVersionsAreListedOnceEach)
{
    setQovLibInfo();
    EXPECT_EQ(text(), "");

    for (auto getter : {versionOf<'b'>, versionOf<'a'>, versionOf<'b'>})
        qkRegQovVersion(getter); // many suites use one library
    setQovLibInfo();
    EXPECT_EQ(text(), "QOV libraries information has been set into QK\n");
    EXPECT_EQ(strings(g_pLibInfoList), (Strings{"qovb, 1.2, Jan 1 2026", "qova, 1.2, Jan 1 2026"}));
    EXPECT_FALSE(qkRegLibInfo("qova, 1.2, Jan 1 2026"));

    EXPECT_FALSE(qkRegLibFunc(""));
    EXPECT_TRUE(qkRegLibFunc("qoviB") && qkRegLibFunc("qoviA"));
    EXPECT_EQ(strings(g_pLibFuncList), (Strings{"qoviB", "qoviA"}));
}

TEST(Registration, ListsAreMadeOnDemandAndKeepTheOrder)
{
    ASSERT_FALSE(pTestList || g_pHotList || pCmdLine || g_pParmList);
    EXPECT_TRUE(qkRegTest(new ScriptTest("b")) && qkRegTest(new ScriptTest("a")));
    EXPECT_STREQ((*pTestList->begin())->name().c_str(), "b");
    EXPECT_EQ(pTestList->count(), 2);
    drop(pTestList);

    EXPECT_TRUE(qkRegHotFunction("y") && qkRegHotFunction("x"));
    EXPECT_EQ(strings(g_pHotList), (Strings{"y", "x"}));
    drop(g_pHotList);

    EXPECT_TRUE(qkRegCmdLine("-B") && qkRegCmdLine("-fAdd"));
    EXPECT_STREQ(pCmdLine->c_str(), " -B -fAdd");
    drop(pCmdLine);

    qkDefault<int> first(1, "first", "");
    qkDefault<int> second(2, "second", "");
    EXPECT_TRUE(qkRegParm(first) && qkRegParm(second));
    EXPECT_EQ(*g_pParmList->begin(), &first);
    EXPECT_EQ(g_pParmList->count(), 2);
    drop(g_pParmList);
}

TEST(OwnProcessorQueries, LevelIsWhatThisProcessorCanRun)
{
    __builtin_cpu_init();
    const bool v2 = __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt");
    const bool v3 = v2 && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                    __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    const bool v4 = v3 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                    __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
                    __builtin_cpu_supports("avx512vl");
    EXPECT_EQ(qk_qovGetCpuType(), v4 ? qovCpuV4 : v3 ? qovCpuV3 : v2 ? qovCpuV2 : qovCpuPx);
}

TEST(OwnProcessorQueries, CacheSizeOfOneMakerOnlyAndTheSameEachTime)
{
    int size = -1;
    const QovStatus status = qk_qovGetMaxCacheSizeB(&size);
    if (cpuVendor() == "GenuineVorex")
        EXPECT_EQ(status, size > 0 ? 0 : 37);
    else
        EXPECT_EQ(status, 36);
    EXPECT_EQ(size > 0, status == 0);
    int again = -1;
    EXPECT_EQ(qk_qovGetMaxCacheSizeB(&again), status);
    EXPECT_EQ(again, size);
}

TEST(OwnProcessorQueries, DescriptorsOfLeaf2)
{
    const struct {
        unsigned regs[4];
        int size;
    } rows[] = {
        {{0x665B5001, 0, 0, 0x007A7000}, 262144}, // 8 K data, 256 K second level, TLBs, trace cache
        {{0x000000EC, 0, 0, 0}, 0},               // the lowest byte of EAX is a count
        {{0x00000001, 0xEC, 0, 0}, 25165824},
        {{0x00000001, 0x800000EC, 0, 0x4E000000}, 6291456}, // EBX is marked as holding nothing
        {{0x00000001, 0x0A, 0x45, 0xEB}, 18874368},         // the largest, wherever it stands
        {{0x30060801, 0x03, 0x02, 0x01}, 0},                // instruction caches and TLBs do not count
    };
    for (const auto& row : rows) {
        EXPECT_EQ(qkCacheSizeOfDescriptors(row.regs), row.size)
            << std::hex << row.regs[0] << " " << row.regs[1];
    }
}

} // namespace
