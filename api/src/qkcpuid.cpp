// The CPUID instruction and the questions about the processor that the harness answers with it.
#include "qkcpuid.h"

#include <climits>
#include <cpuid.h>
#include <cstring>
#include <unistd.h>

#include "qklibenv.h"

static const unsigned firstExtendedLeaf = 0x80000000u;
static const unsigned brandLeaf = 0x80000002u; // and the next two
static const unsigned cacheLeaf = 4;

static void executeCpuid(unsigned leaf, unsigned subLeaf, CPUID::Registers& regs)
{
    __cpuid_count(leaf, subLeaf, regs[CPUID::EAX], regs[CPUID::EBX], regs[CPUID::ECX], regs[CPUID::EDX]);
}

void (*CPUID::s_execute)(unsigned, unsigned, CPUID::Registers&) = executeCpuid;

CPUID::CPUID(unsigned leaf, unsigned subLeaf)
{
    s_execute(leaf, subLeaf, m_regs);
}

unsigned CPUID::getBits(int reg, int high, int low) const
{
    return m_regs[reg] << (31 - high) >> (31 - high + low);
}

unsigned largestFunction()
{
    return CPUID(0)[CPUID::EAX];
}

unsigned largestExFunction()
{
    return CPUID(firstExtendedLeaf)[CPUID::EAX];
}

bool validFunction(unsigned leaf)
{
    return leaf <= (leaf >= firstExtendedLeaf ? largestExFunction() : largestFunction());
}

qkString cpuVendor()
{
    const CPUID id(0);
    const unsigned words[] = {id[CPUID::EBX], id[CPUID::EDX], id[CPUID::ECX]};
    char text[sizeof words + 1] = "";
    std::memcpy(text, words, sizeof words);
    return text;
}

qkString cpuBrand()
{
    char text[3 * sizeof(CPUID::Registers) + 1] = "";
    if (!validFunction(brandLeaf + 2)) return text;
    char* part = text;
    for (unsigned leaf = brandLeaf; leaf <= brandLeaf + 2; leaf++) {
        const CPUID id(leaf);
        for (int reg = CPUID::EAX; reg <= CPUID::EDX; reg++) {
            const unsigned word = id[reg];
            std::memcpy(part, &word, sizeof word);
            part += sizeof word;
        }
    }
    return text;
}

CpuCache::CpuCache(unsigned index)
{
    if (!validFunction(cacheLeaf)) return;
    const CPUID id(cacheLeaf, index);
    type = id.getBits(CPUID::EAX, 4, 0);
    level = id.getBits(CPUID::EAX, 7, 5);
    fullyAssociative = id.getBit(CPUID::EAX, 9);
    threads = id.getBits(CPUID::EAX, 25, 14) + 1;
    lineSize = id.getBits(CPUID::EBX, 11, 0) + 1;
    partitions = id.getBits(CPUID::EBX, 21, 12) + 1;
    ways = id.getBits(CPUID::EBX, 31, 22) + 1;
    sets = id[CPUID::ECX] + 1;
    inclusive = id.getBit(CPUID::EDX, 1);
}

// The widths of the fields, 10, 10, 12 and 32 bits, make 64 at most.
unsigned long long CpuCache::sizeB() const
{
    return exists() ? 1ULL * ways * partitions * lineSize * sets : 0;
}

int getCacheSizeB(unsigned index)
{
    const unsigned long long size = CpuCache(index).sizeB();
    return size < INT_MAX ? static_cast<int>(size) : INT_MAX;
}

int getMaxCacheSizeB()
{
    int largest = 0;
    for (unsigned i = 0; i < maxCpuCaches && CpuCache(i).exists(); i++) {
        const int size = getCacheSizeB(i);
        if (size > largest) largest = size;
    }
    return largest;
}

// The library knows processors that are silent on leaf 4.
int qkGetMaxCacheSizeB()
{
    int size = 0;
    if (qov_GetMaxCacheSizeB && qov_GetMaxCacheSizeB(&size) == qovStsNoErr && size > 0) return size;
    return getMaxCacheSizeB();
}

int qkGetNumOfProcessors()
{
    const long online = sysconf(_SC_NPROCESSORS_ONLN);
    return online > 0 ? static_cast<int>(online) : 1;
}
