// What the harness tells about the machine: CPUID on processors made up for the purpose and on the host's,
// processor types, the texts of the host, the information tests.
#include "qkcpuid.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cpuid.h>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

#include "qkhost.h"
#include "qkinfotest.h"
#include "qklibenv.h"
#include "qovcore.h"
#include "support/capture.h"

namespace {

using Leaf = std::pair<unsigned, unsigned>;
using Regs = std::array<unsigned, 4>;
std::map<Leaf, Regs> s_processor; // a leaf that is not there answers zeros

unsigned chars(const char* text)
{
    unsigned word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

// The registers of a sub-leaf of leaf 4 with lines of 64 bytes in a package of 4 cores.
Regs cacheRegs(unsigned type, unsigned level, unsigned ways, unsigned partitions, unsigned sets,
               unsigned threads, bool full, bool inclusive)
{
    return {type | level << 5 | unsigned(full) << 9 | (threads - 1) << 14 | 3u << 26,
            63 | (partitions - 1) << 12 | (ways - 1) << 22, sets - 1, unsigned(inclusive) << 1};
}

class Cpuid : public testing::Test {
protected:
    Cpuid() { setUp(7); }
    ~Cpuid() override
    {
        setUp(1);
        CPUID::s_execute = m_execute;
    }
    static void setUp(OutputLevel level)
    {
        qov_GetMaxCacheSizeB = nullptr;
        qov_GetCpuFeatures = nullptr;
        qov_GetEnabledCpuFeatures = nullptr;
        g_ostrm.setOutLevel(level);
    }
    static void makeUp(const std::map<Leaf, Regs>& processor)
    {
        s_processor = processor;
        CPUID::s_execute = [](unsigned leaf, unsigned subLeaf, CPUID::Registers& regs) {
            const auto found = s_processor.find({leaf, subLeaf});
            for (int i = 0; i < 4; i++) regs[i] = found == s_processor.end() ? 0 : found->second[i];
        };
    }
    static std::string printed(void (*print)())
    {
        SinkText<qkOStream> capture(g_ostrm);
        print();
        return capture.take();
    }

private:
    void (*m_execute)(unsigned, unsigned, CPUID::Registers&) = CPUID::s_execute;
};

const std::map<Leaf, Regs> vorex = {
    {{0, 0}, {7, chars("Genu"), chars("orex"), chars("ineV")}},
    {{1, 0}, {0x00123F45, 0x00080000, 0, 1u << 28}},
    {{4, 0}, cacheRegs(1, 1, 8, 1, 64, 2, false, false)},
    {{4, 1}, cacheRegs(2, 1, 4, 1, 128, 2, false, false)},
    {{4, 2}, cacheRegs(3, 2, 16, 2, 16384, 16, true, true)},
    {{4, 4}, cacheRegs(1, 3, 64, 64, 16384, 1, false, false)}, // behind the end
    {{0x80000000, 0}, {0x80000006, 0, 0, 0}},
    {{0x80000002, 0}, {chars("Vore"), chars("x pr"), chars("oces"), chars("sor ")}},
    {{0x80000003, 0}, {chars("7 @ "), chars("2.00"), chars("GHz\0"), 0}},
    {{0x80000006, 0}, {0, 0, 0x02006040, 0}},
};

const std::string stars = std::string(79, '*') + "\n";
const std::string equals = "\n" + std::string(79, '=') + "\n";

} // namespace

TEST_F(Cpuid, knowsWhichLeavesThereAre)
{
    makeUp(vorex);
    for (const unsigned leaf : {0u, 7u, 0x80000000u, 0x80000006u}) EXPECT_TRUE(validFunction(leaf)) << leaf;
    for (const unsigned leaf : {8u, 0x40000000u, 0x80000007u}) EXPECT_FALSE(validFunction(leaf)) << leaf;
    makeUp({{{0x80000000, 0}, {2, 0, 0, 0}}});
    EXPECT_FALSE(validFunction(0x80000000)) << "without extended leaves the answer is anything";
}

TEST_F(Cpuid, largestCacheOfLeaf4UnlessTheLibraryKnows)
{
    auto processor = vorex;
    makeUp(processor);
    EXPECT_EQ(getCacheSizeB(0), 8 * 64 * 64);
    EXPECT_EQ(getCacheSizeB(3), 0) << "the last type is 0";
    EXPECT_EQ(getMaxCacheSizeB(), 16 * 2 * 64 * 16384);
    const std::pair<QovStatus (*)(int*), int> cases[] = {
        {nullptr, 32 << 20},
        {[](int* size) { return *size = 1000, QovStatus(qovStsNoErr); }, 1000},
        {[](int* size) { return *size = 0, QovStatus(qovStsNoErr); }, 32 << 20},
        {[](int* size) { return *size = 1000, QovStatus(qovStsUnknownCpu); }, 32 << 20},
    };
    for (const auto& [getter, size] : cases) {
        qov_GetMaxCacheSizeB = getter;
        EXPECT_EQ(qkGetMaxCacheSizeB(), size);
    }
    processor[{4, 2}] = cacheRegs(3, 3, 1024, 1024, 65536, 1, false, false);
    makeUp(processor);
    EXPECT_EQ(getMaxCacheSizeB(), INT_MAX);
    processor[{4, 2}] = {3, ~0u, ~1u, 0}; // the largest that the fields can tell, close to 2^64
    makeUp(processor);
    EXPECT_EQ(getMaxCacheSizeB(), INT_MAX);
    processor[{0, 0}][0] = 3; // the leaf is not there
    makeUp(processor);
    EXPECT_EQ(getMaxCacheSizeB(), 0);
}

TEST_F(Cpuid, headerTellsMakerAndBrand)
{
    const std::string identification =
        "    Processor Identification\n    Got by CPUID Instruction Functions\n";
    const std::string brand = "Vendor-ID      GenuineVorex\nBrand String   Vorex processor 7 @ 2.00GHz\n";
    makeUp(vorex);
    EXPECT_EQ(printed(printHeader), stars + identification + stars + "\n" + brand);
    g_ostrm.setOutLevel(15);
    EXPECT_EQ(printed(printHeader), stars + identification + stars + "\n" +
                                        "Largest Standard Function 0x00000007\n"
                                        "Largest Extended Function 0x80000006\n" +
                                        brand);

    makeUp({{{0, 0}, {1, chars("Some"), chars("else"), chars("body")}},
            {{0x80000000, 0}, {0x80000003, 0, 0, 0}}});
    g_ostrm.setOutLevel(7);
    EXPECT_EQ(printed(printHeader), stars + identification +
                                        "\n    This is not a processor of the maker GenuineVorex.\n"
                                        "    Information below may be inadequate.\n" +
                                        stars + "\nVendor-ID      Somebodyelse\n");
}

TEST_F(Cpuid, signatureAddsTheExtendedFields)
{
    auto processor = vorex;
    makeUp(processor);
    const std::string head = equals + "    Processor Identification Signature\n\n";
    EXPECT_EQ(printed(printSignature), head + "Family   16\nModel    36\nStepping 5\nType     3\n");
    processor[{1, 0}] = {0x000006A9, 0x0000000B, 0, 0};
    makeUp(processor);
    EXPECT_EQ(printed(printSignature),
              head + "Family   6\nModel    10\nStepping 9\nType     0\nBrand ID 0x0B\n");
    makeUp({});
    EXPECT_EQ(printed(printSignature), "");
}

TEST_F(Cpuid, threadsOfAPackage)
{
    const std::string head = equals + "    Multi Threading Features\n\n";
    const char* const logical = " - Number of logical processors per physical package\n";
    makeUp(vorex);
    EXPECT_EQ(printed(printMultiThreading),
              head +
                  "The processor has several logical processors per physical package\nLogical Processors 8" +
                  logical + "Cores per Package  4 - Maximum number of processor cores per package\n");
    const std::string one =
        "The processor has one logical processor per physical package\nLogical Processors ";
    const struct {
        unsigned count, flags;
    } cases[] = {{1, 1u << 28}, {8, ~(1u << 28)}};
    for (const auto& c : cases) {
        makeUp({{{0, 0}, {3, 0, 0, 0}}, {{1, 0}, {0, c.count << 16, 0, c.flags}}});
        EXPECT_EQ(printed(printMultiThreading), head + one + std::to_string(c.count) + logical);
    }
}

TEST_F(Cpuid, cachesOneBlockEach)
{
    const std::string head = equals + "    Deterministic Cache Parameters\n\n";
    const auto block = [&](const char* sizes, const char* ways, const char* partitions, const char* sets,
                           const char* threads) {
        return head + sizes + "Associativity     " + ways + " - Ways of associativity\nLine Partitions   " +
               partitions +
               " - Physical line partitions\nLine Size         64   - System coherency line size\n" +
               "Sets              " + sets + " - Number of sets\nThreads Sharing   " + threads +
               " - Maximum number of threads sharing this cache\n";
    };
    auto processor = vorex;
    processor[{4, 3}] = cacheRegs(5, 4, 1, 1, 16, 1, false, false);
    processor[{4, 4}] = {};
    makeUp(processor);
    EXPECT_EQ(
        printed([] { printCacheParms(); }),
        block("Data Cache\nCache Level       1   \nCache Size Kb     32  \n", "8   ", "1   ", "64  ",
              "2   ") +
            block("Instruction Cache\nCache Level       1   \nCache Size Kb     32  \n", "4   ", "1   ",
                  "128 ", "2   ") +
            block("Unified Cache\nCache Level       2   \nCache Size Kb     32768\nFully Associative cache\n",
                  "16  ", "2   ", "16384", "16  ") +
            "Cache is inclusive to lower cache levels\n" +
            block("Cache Type 5\nCache Level       4   \nCache Size Kb     1   \n", "1   ", "1   ", "16  ",
                  "1   "));
    processor[{0, 0}][0] = 2;
    makeUp(processor);
    EXPECT_EQ(printed([] { printCacheParms(); }), "");
}

TEST_F(Cpuid, l2CacheOfTheExtendedLeaf)
{
    const std::pair<unsigned, const char*> words[] = {
        {0, "Disabled"}, {1, "Direct mapped"}, {6, "8-Way"}, {9, "Code 9"}, {15, "Fully associative"}};
    for (const auto& [code, word] : words) {
        makeUp({{{0x80000000, 0}, {0x80000006, 0, 0, 0}},
                {{0x80000006, 0}, {0, 0, 0x04000040 | code << 12, 0}}});
        EXPECT_EQ(printed(printL2Features),
                  equals + "    Extended L2 Cache Features\n\nL2 Cache Line Size     64\n" +
                      "L2 Cache Associativity " + word + "\nL2 Cache Size Kb       1024\n");
    }
    makeUp({{{0x80000000, 0}, {0x80000005, 0, 0, 0}}});
    EXPECT_EQ(printed(printL2Features), "");
}

// The compiler's own header is the judge of the bits, as far as it names them.
TEST_F(Cpuid, flagsStandForTheirBits)
{
    using Flag = std::pair<const char*, unsigned>;
    // clang-format off
    const struct {
        unsigned leaf, subLeaf;
        int reg;
        std::vector<Flag> flags;
    } known[] = {
        {1, 0, CPUID::EDX,
         {{"FPU", 1u << 0}, {"HTT", 1u << 28}, {"CMOV", bit_CMOV}, {"MMX", bit_MMX}, {"SSE", bit_SSE}, {"SSE2", bit_SSE2}}},
        {1, 0, CPUID::ECX,
         {{"SSE3", bit_SSE3}, {"PCLMULQDQ", bit_PCLMUL}, {"SSSE3", bit_SSSE3}, {"FMA", bit_FMA},
          {"CX16", bit_CMPXCHG16B}, {"SSE4.1", bit_SSE4_1}, {"SSE4.2", bit_SSE4_2}, {"MOVBE", bit_MOVBE},
          {"POPCNT", bit_POPCNT}, {"AES", bit_AES}, {"XSAVE", bit_XSAVE}, {"OSXSAVE", bit_OSXSAVE},
          {"AVX", bit_AVX}, {"F16C", bit_F16C}, {"RDRAND", bit_RDRND},
          {"TSC-DEADLINE", 1u << 24}, {"HYPERVISOR", 1u << 31}}},
        {6, 0, CPUID::EAX, {{"ARAT", 1u << 2}}},
        {7, 0, CPUID::EBX,
         {{"FSGSBASE", bit_FSGSBASE}, {"BMI1", bit_BMI}, {"AVX2", bit_AVX2}, {"BMI2", bit_BMI2},
          {"AVX512F", bit_AVX512F}, {"AVX512DQ", bit_AVX512DQ}, {"RDSEED", bit_RDSEED}, {"ADX", bit_ADX},
          {"AVX512_IFMA", bit_AVX512IFMA}, {"CLWB", bit_CLWB}, {"AVX512CD", bit_AVX512CD}, {"SHA", bit_SHA},
          {"AVX512BW", bit_AVX512BW}, {"AVX512VL", bit_AVX512VL}, {"SMEP", 1u << 7}, {"ERMS", 1u << 9}}},
        {7, 0, CPUID::ECX,
         {{"AVX512_VBMI", bit_AVX512VBMI}, {"PKU", bit_PKU}, {"OSPKE", bit_OSPKE}, {"WAITPKG", bit_WAITPKG},
          {"AVX512_VBMI2", bit_AVX512VBMI2}, {"GFNI", bit_GFNI}, {"VAES", bit_VAES},
          {"AVX512_VNNI", bit_AVX512VNNI}, {"AVX512_BITALG", bit_AVX512BITALG},
          {"AVX512_VPOPCNTDQ", bit_AVX512VPOPCNTDQ}, {"RDPID", bit_RDPID}, {"CLDEMOTE", bit_CLDEMOTE},
          {"MOVDIRI", bit_MOVDIRI}, {"MOVDIR64B", bit_MOVDIR64B}, {"ENQCMD", bit_ENQCMD},
          {"UMIP", 1u << 2}}},
        {7, 0, CPUID::EDX, {{"FSRM", 1u << 4}}},
        {7, 1, CPUID::EAX, {{"AVX_VNNI", bit_AVXVNNI}, {"AVX512_BF16", bit_AVX512BF16}}},
        {0xD, 1, CPUID::EAX, {{"XSAVEOPT", bit_XSAVEOPT}, {"XSAVEC", bit_XSAVEC}, {"XSAVES", bit_XSAVES},
          {"XGETBV1", 1u << 2}}},
        {0x80000001, 0, CPUID::ECX,
         {{"LAHF", bit_LAHF_LM}, {"LZCNT", bit_LZCNT}, {"SSE4A", bit_SSE4a}, {"MWAITX", bit_MWAITX},
          {"TOPOEXT", 1u << 22}}},
        {0x80000001, 0, CPUID::EDX,
         {{"LM", bit_LM}, {"NX", 1u << 20}, {"PAGE1GB", 1u << 26}, {"RDTSCP", 1u << 27}}},
        {0x80000008, 0, CPUID::EBX, {{"CLZERO", bit_CLZERO}}},
    };
    // clang-format on
    for (const auto& row : known) {
        for (const auto& [mnemonic, mask] : row.flags) {
            for (const unsigned bits : {mask, ~mask}) {
                std::map<Leaf, Regs> processor = {{{0, 0}, {0x1F, 0, 0, 0}},
                                                  {{0x80000000, 0}, {0x80000021, 0, 0, 0}}};
                processor[{7, 0}] = {1, 0, 0, 0};
                processor[{row.leaf, row.subLeaf}][row.reg] = bits;
                makeUp(processor);
                EXPECT_EQ(isFeatureFlag(mnemonic), bits == mask) << mnemonic;
            }
        }
    }
    makeUp({{{0, 0}, {7, 0, 0, 0}}, {{7, 1}, {~0u, 0, 0, 0}}, {{0xD, 1}, {~0u, 0, 0, 0}}});
    EXPECT_FALSE(isFeatureFlag("AVX_VNNI")) << "leaf 7 tells of no sub-leaf 1";
    EXPECT_FALSE(isFeatureFlag("XSAVEC")) << "there is no leaf 0xD";
    EXPECT_FALSE(isFeatureFlag("HTT?"));
}

TEST_F(Cpuid, flagsAreNamedOnce)
{
    std::set<std::string> names, texts;
    std::set<std::array<unsigned, 4>> bits;
    for (int i = 0; i < numFeatureFlags; i++) {
        const FeatureFlag& flag = FeatureFlags[i];
        EXPECT_TRUE(names.insert(flag.mnemonic).second) << flag.mnemonic;
        EXPECT_TRUE(texts.insert(flag.description).second) << flag.description;
        EXPECT_TRUE(bits.insert({flag.leaf, flag.subLeaf, unsigned(flag.reg), unsigned(flag.bit)}).second)
            << flag.mnemonic;
        EXPECT_LT(std::strlen(flag.description), 48u) << flag.description;
    }
}

TEST_F(Cpuid, flagsInPrint)
{
    const std::string htt = "Several logical processors in a package         ";
    EXPECT_EQ(printed([] { printFeatureFlag("HTT", false); }), htt + "no\n");
    EXPECT_EQ(printed([] { printFeatureFlag("nonsense"); }), "? - unknown flag???????\n");
    makeUp(vorex);
    EXPECT_EQ(printed([] { printFeatureFlag("HTT"); }), htt + "yes\n");
    const std::string all = printed(printFlags);
    EXPECT_EQ(all.rfind(equals + "    Feature Flags\n", 0), 0u);
    EXPECT_NE(all.find("\n" + htt + "yes\n"), std::string::npos);
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), numFeatureFlags + 3);
}

TEST_F(Cpuid, featuresOfTheLibrary)
{
    EXPECT_EQ(printed(printQovFeaturues), "") << "no library";
    qov_GetCpuFeatures = s_qovGetCpuFeatures;
    EXPECT_EQ(printed(printQovFeaturues), "") << "substitute";

    static Qov64u mask;
    qov_GetCpuFeatures = [](Qov64u* features) { return *features = mask, QovStatus(qovStsNoErr); };
    qov_GetEnabledCpuFeatures = []() -> Qov64u { return mask & (QOV_CPU_SSE42 | QOV_CPU_AVX512VL); };
    // clang-format off
    const std::pair<Qov64u, const char*> features[] = {
        {QOV_CPU_SSE3, "SSE3"}, {QOV_CPU_SSSE3, "SSSE3"}, {QOV_CPU_SSE41, "SSE4.1"}, {QOV_CPU_SSE42, "SSE4.2"},
        {QOV_CPU_POPCNT, "POPCNT"}, {QOV_CPU_CX16, "CX16"}, {QOV_CPU_AVX, "AVX"}, {QOV_CPU_F16C, "F16C"},
        {QOV_CPU_FMA, "FMA"}, {QOV_CPU_MOVBE, "MOVBE"}, {QOV_CPU_LZCNT, "LZCNT"}, {QOV_CPU_BMI1, "BMI1"},
        {QOV_CPU_BMI2, "BMI2"}, {QOV_CPU_AVX2, "AVX2"}, {QOV_CPU_AVX512F, "AVX512F"},
        {QOV_CPU_AVX512BW, "AVX512BW"}, {QOV_CPU_AVX512CD, "AVX512CD"}, {QOV_CPU_AVX512DQ, "AVX512DQ"},
        {QOV_CPU_AVX512VL, "AVX512VL"}, {QOV_CPU_LAHF, "LAHF"}};
    // clang-format on
    const std::string head =
        equals + "    Selected Feature Flags\n\nFeatures" + std::string(40, ' ') + "Info\n";
    for (const auto& [bit, mnemonic] : features) {
        mask = bit;
        const std::string text = printed(printQovFeaturues);
        EXPECT_EQ(text.rfind(head, 0), 0u);
        std::string line = findFlagInfo(mnemonic, FeatureFlags, numFeatureFlags)->description;
        line.resize(48, ' ');
        const bool enabled = qov_GetEnabledCpuFeatures() != 0;
        EXPECT_NE(text.find("\n" + line + "supported   " + (enabled ? "enabled\n" : "-\n")),
                  std::string::npos);
        EXPECT_EQ(text.find("supported"), text.rfind("supported")) << mnemonic;
    }
}

TEST(CpuType, labelsAndCodes)
{
    const std::pair<const char*, int> cases[] = {{"Px", 1},      {"V2", 2}, {"v3", 3},   {"V4", 4}, {"px", 1},
                                                 {"unknown", 0}, {"V", -1}, {"V44", -1}, {"", -1}};
    for (const auto& [label, code] : cases) EXPECT_EQ(qkCpuType::cpuType(label), code) << label;
    EXPECT_STREQ(qkCpuType::cpuLabel(qovCpuV3).c_str(), "V3");
    EXPECT_STREQ(qkCpuType::cpuLabel(-1).c_str(), "Undefined");
    EXPECT_STREQ(qkCpuType::cpuName(qovCpuV4).c_str(), "x86-64-v4 (AVX-512)");
    EXPECT_STREQ(qkCpuType::cpuName(77).c_str(), qkCpuType::cpuName(qovCpuUnknown).c_str());
    EXPECT_STREQ(qkCpuType::formatLabel("V2").c_str(), "V2       ");
    EXPECT_STREQ(qkCpuType::formatLabel("muchlonger").c_str(), "muchlonger");
    EXPECT_STREQ(qkCpuType::optimizedList().c_str(), "    Px       V2       V3       V4       \n");
}

TEST(Host, nameOfTheSystemForPeople)
{
    const std::pair<const char*, const char*> cases[] = {
        {"NAME=x\nPRETTY_NAME=\"Some System 12 (name)\"\nID=x\n", "Some System 12 (name)"},
        {"PRETTY_NAME='a \\ b'\n", "a \\ b"},
        {"PRETTY_NAME=plain\n", "plain"},
        {"PRETTY_NAME=\"a \\\"b\\\" \\$c\"", "a \"b\" $c"},
        {"PRETTY_NAME=\nOLD_PRETTY_NAME=x\n", ""},
    };
    const std::string path = testing::TempDir() + "os-release-" + std::to_string(getpid());
    for (const auto& [content, name] : cases) {
        std::ofstream(path) << content;
        EXPECT_STREQ(qkOS::prettyName(path.c_str()).c_str(), name) << content;
    }
    std::remove(path.c_str());
    EXPECT_STREQ(qkOS::prettyName(path.c_str()).c_str(), "");

    char host[256] = "";
    gethostname(host, sizeof host - 1);
    EXPECT_TRUE(qkHost().m_text.startsWith(qkString(host) + ", x86_64, "));
    EXPECT_TRUE(qkOS().m_text.contains("Linux "));
}

TEST_F(Cpuid, informationTestsPrintAndSucceed)
{
    makeUp(vorex);
    __qkVorexCpuTest cpu;
    __qkOSTest os;
    __qkHostTest host;
    const std::string cpuText = printed([] {
        printHeader();
        printSignature();
        printMultiThreading();
        printCacheParms();
        printL2Features();
        printFlags();
    });
    const struct {
        __qkInfoTest& test;
        const char *name, *testName;
        std::string text;
    } cases[] = {
        {cpu, "__qkVorexCpu", "__qkVorexCpuTest", cpuText},
        {os, "__qkOS", "__qkOSTest", std::string(qkOS().m_text.c_str()) + "\n"},
        {host, "__qkHost", "__qkHostTest", std::string(qkHost().m_text.c_str()) + "\n"},
    };
    for (const auto& c : cases) {
        EXPECT_STREQ(c.test.name().c_str(), c.name);
        EXPECT_STREQ(c.test.info().m_class.c_str(), c.testName);
        qkTest::m_currentResult = UNDEFINED;
        SinkText<qkOStream> capture(g_ostrm);
        c.test.loopData();
        EXPECT_EQ(capture.take(), c.text) << c.name;
        EXPECT_EQ(qkTest::m_currentResult, OK);
    }
    EXPECT_STREQ(cpu.info().m_description.c_str(), "Vorex CPU information");
    qkTest::m_currentResult = UNDEFINED;
}
