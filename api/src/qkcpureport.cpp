// The report of the processor, printed at the level that g_ostrm has.
#include "qkcpuid.h"
#include "qkformat.h"
#include "qklibenv.h"
#include "qkstream.h"

static const unsigned l2Leaf = 0x80000006u;

// The bits of the library's feature mask.
static const struct {
    Qov64u bit;
    const char* mnemonic;
} qovFeatures[] = {
    {QOV_CPU_SSE3, "SSE3"},         {QOV_CPU_SSSE3, "SSSE3"},       {QOV_CPU_SSE41, "SSE4.1"},
    {QOV_CPU_SSE42, "SSE4.2"},      {QOV_CPU_POPCNT, "POPCNT"},     {QOV_CPU_CX16, "CX16"},
    {QOV_CPU_AVX, "AVX"},           {QOV_CPU_F16C, "F16C"},         {QOV_CPU_FMA, "FMA"},
    {QOV_CPU_MOVBE, "MOVBE"},       {QOV_CPU_LZCNT, "LZCNT"},       {QOV_CPU_BMI1, "BMI1"},
    {QOV_CPU_BMI2, "BMI2"},         {QOV_CPU_AVX2, "AVX2"},         {QOV_CPU_AVX512F, "AVX512F"},
    {QOV_CPU_AVX512BW, "AVX512BW"}, {QOV_CPU_AVX512CD, "AVX512CD"}, {QOV_CPU_AVX512DQ, "AVX512DQ"},
    {QOV_CPU_AVX512VL, "AVX512VL"}, {QOV_CPU_LAHF, "LAHF"},
};

static const int descriptionWidth = -48;

static qkString rule(char c)
{
    qkString line;
    line.resize(79, c);
    return line + "\n";
}

static void putTitle(const char* title)
{
    g_ostrm << "\n" << rule('=') << title;
}

void printCpuIdInfo()
{
    printHeader();
    printSignature();
    printMultiThreading();
    printCacheParms();
    printL2Features();
}

void printHeader()
{
    const qkString vendor = cpuVendor();
    const qkString brand = cpuBrand();
    g_ostrm << rule('*') << "    Processor Identification\n"
            << "    Got by CPUID Instruction Functions\n";
    if (vendor != "GenuineVorex") {
        g_ostrm << "\n    This is not a processor of the maker GenuineVorex.\n"
                << "    Information below may be inadequate.\n";
    }
    g_ostrm << rule('*') << "\n";
    g_ostrm << INFO << qkFormat("Largest Standard Function 0x%08X\n", largestFunction())
            << qkFormat("Largest Extended Function 0x%08X\n", largestExFunction()) << END_MSG;
    g_ostrm << "Vendor-ID      " << vendor << "\n";
    if (!brand.empty()) g_ostrm << "Brand String   " << brand << "\n";
}

// The extended family counts whatever the family is.
void printSignature()
{
    if (!validFunction(1)) return;
    const CPUID id(1);
    putTitle("    Processor Identification Signature\n\n");
    g_ostrm << "Family   " << id.getBits(CPUID::EAX, 27, 20) + id.getBits(CPUID::EAX, 11, 8) << "\n";
    g_ostrm << "Model    " << (id.getBits(CPUID::EAX, 19, 16) << 4) + id.getBits(CPUID::EAX, 7, 4) << "\n";
    g_ostrm << "Stepping " << id.getBits(CPUID::EAX, 3, 0) << "\n";
    g_ostrm << "Type     " << id.getBits(CPUID::EAX, 13, 12) << "\n";
    const unsigned brandId = id.getByte(CPUID::EBX, 0);
    if (brandId) g_ostrm << qkFormat("Brand ID 0x%02X\n", brandId);
}

void printMultiThreading()
{
    if (!validFunction(1)) return;
    const unsigned logical = CPUID(1).getByte(CPUID::EBX, 2);
    putTitle("    Multi Threading Features\n\n");
    if (isFeatureFlag("HTT") && logical >= 2) {
        g_ostrm << "The processor has several logical processors per physical package\n";
    } else {
        g_ostrm << "The processor has one logical processor per physical package\n";
    }
    g_ostrm << "Logical Processors " << logical << " - Number of logical processors per physical package\n";
    if (validFunction(4)) {
        g_ostrm << "Cores per Package  " << CPUID(4).getBits(CPUID::EAX, 31, 26) + 1
                << " - Maximum number of processor cores per package\n";
    }
}

void printCacheParms()
{
    for (unsigned i = 0; i < maxCpuCaches && printCacheParms(i);) i++;
}

static qkString cacheTypeName(unsigned type)
{
    static const char* const names[] = {"Data Cache", "Instruction Cache", "Unified Cache"};
    if (type >= 1 && type <= 3) return names[type - 1];
    return qkFormat("Cache Type %u", type);
}

static void putCacheNumber(const char* label, long long value, const char* tail)
{
    g_ostrm << sFormat(label, -18) << sFormat(value, -4) << tail << "\n";
}

bool printCacheParms(unsigned index)
{
    const CpuCache cache(index);
    if (!cache.exists()) return false;
    putTitle("    Deterministic Cache Parameters\n");
    g_ostrm << "\n" << cacheTypeName(cache.type) << "\n";
    putCacheNumber("Cache Level", cache.level, "");
    putCacheNumber("Cache Size Kb", static_cast<long long>(cache.sizeB() / 1024), "");
    if (cache.fullyAssociative) g_ostrm << "Fully Associative cache\n";
    putCacheNumber("Associativity", cache.ways, " - Ways of associativity");
    putCacheNumber("Line Partitions", cache.partitions, " - Physical line partitions");
    putCacheNumber("Line Size", cache.lineSize, " - System coherency line size");
    putCacheNumber("Sets", cache.sets, " - Number of sets");
    putCacheNumber("Threads Sharing", cache.threads, " - Maximum number of threads sharing this cache");
    if (cache.inclusive) g_ostrm << "Cache is inclusive to lower cache levels\n";
    return true;
}

static qkString associativityName(unsigned code)
{
    switch (code) {
    case 0: return "Disabled";
    case 1: return "Direct mapped";
    case 2: return "2-Way";
    case 4: return "4-Way";
    case 6: return "8-Way";
    case 8: return "16-Way";
    case 15: return "Fully associative";
    default: return qkFormat("Code %u", code);
    }
}

void printL2Features()
{
    if (!validFunction(l2Leaf)) return;
    const CPUID id(l2Leaf);
    putTitle("    Extended L2 Cache Features\n\n");
    g_ostrm << "L2 Cache Line Size     " << id.getByte(CPUID::ECX, 0) << "\n";
    g_ostrm << "L2 Cache Associativity " << associativityName(id.getBits(CPUID::ECX, 15, 12)) << "\n";
    g_ostrm << "L2 Cache Size Kb       " << id.getBits(CPUID::ECX, 31, 16) << "\n";
}

static void putFlag(const FeatureFlag& flag, bool value)
{
    g_ostrm << sFormat(flag.description, descriptionWidth) << (value ? "yes" : "no") << "\n";
}

void printFlags()
{
    putTitle("    Feature Flags\n");
    for (int i = 0; i < numFeatureFlags; i++) putFlag(FeatureFlags[i], isFeatureFlag(FeatureFlags[i]));
}

void printFeatureFlag(const qkString& mnemonic)
{
    printFeatureFlag(mnemonic, isFeatureFlag(mnemonic));
}

void printFeatureFlag(const qkString& mnemonic, bool value)
{
    const FeatureFlag* flag = findFlagInfo(mnemonic, FeatureFlags, numFeatureFlags);
    if (flag)
        putFlag(*flag, value);
    else
        g_ostrm << "? - unknown flag???????\n";
}

void printMaskFlag(const qkString& description, bool supported, bool enabled)
{
    g_ostrm << sFormat(description, descriptionWidth) << sFormat(supported ? "supported" : "-", -12)
            << (enabled ? "enabled" : "-") << "\n";
}

void printQovFeaturues()
{
    Qov64u supported = 0;
    if (!qov_GetCpuFeatures || qov_GetCpuFeatures(&supported) != qovStsNoErr) return;
    const Qov64u enabled = qov_GetEnabledCpuFeatures ? qov_GetEnabledCpuFeatures() : 0;
    putTitle("    Selected Feature Flags\n\n");
    g_ostrm << sFormat("Features", descriptionWidth) << "Info\n";
    for (const auto& feature : qovFeatures) {
        const FeatureFlag* flag = findFlagInfo(feature.mnemonic, FeatureFlags, numFeatureFlags);
        printMaskFlag(flag->description, supported & feature.bit, enabled & feature.bit);
    }
}
