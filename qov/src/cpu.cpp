#include "cpu.h"

#include <cpuid.h>
#include <initializer_list>

namespace qov {
namespace {

class HostCpu : public CpuidSource {
public:
    CpuidRegs cpuid(Qov32u leaf, Qov32u subLeaf) const override
    {
        CpuidRegs r;
        __cpuid_count(leaf, subLeaf, r.eax, r.ebx, r.ecx, r.edx);
        return r;
    }

    Qov64u xcr0() const override
    {
        Qov32u low, high;
        __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
        return (Qov64u(high) << 32) | low;
    }
};

enum Register { regEbx, regEcx };

// Which vector registers the operating system must save for a feature to be of use.
enum Needs { needsNothing, needsYmm, needsZmm };

struct FeatureBit {
    Qov64u feature;
    Qov32u leaf;
    Register reg;
    int bit;
    Needs needs;
    QovCpuType level; // the first level whose code may use it
};

const FeatureBit featureBits[] = {
    {QOV_CPU_SSE3, 1, regEcx, 0, needsNothing, qovCpuV2},
    {QOV_CPU_SSSE3, 1, regEcx, 9, needsNothing, qovCpuV2},
    {QOV_CPU_CX16, 1, regEcx, 13, needsNothing, qovCpuV2},
    {QOV_CPU_SSE41, 1, regEcx, 19, needsNothing, qovCpuV2},
    {QOV_CPU_SSE42, 1, regEcx, 20, needsNothing, qovCpuV2},
    {QOV_CPU_POPCNT, 1, regEcx, 23, needsNothing, qovCpuV2},
    {QOV_CPU_LAHF, 0x80000001, regEcx, 0, needsNothing, qovCpuV2},
    {QOV_CPU_FMA, 1, regEcx, 12, needsYmm, qovCpuV3},
    {QOV_CPU_MOVBE, 1, regEcx, 22, needsNothing, qovCpuV3},
    {QOV_CPU_AVX, 1, regEcx, 28, needsYmm, qovCpuV3},
    {QOV_CPU_F16C, 1, regEcx, 29, needsYmm, qovCpuV3},
    {QOV_CPU_BMI1, 7, regEbx, 3, needsNothing, qovCpuV3},
    {QOV_CPU_AVX2, 7, regEbx, 5, needsYmm, qovCpuV3},
    {QOV_CPU_BMI2, 7, regEbx, 8, needsNothing, qovCpuV3},
    {QOV_CPU_LZCNT, 0x80000001, regEcx, 5, needsNothing, qovCpuV3},
    {QOV_CPU_AVX512F, 7, regEbx, 16, needsZmm, qovCpuV4},
    {QOV_CPU_AVX512DQ, 7, regEbx, 17, needsZmm, qovCpuV4},
    {QOV_CPU_AVX512CD, 7, regEbx, 28, needsZmm, qovCpuV4},
    {QOV_CPU_AVX512BW, 7, regEbx, 30, needsZmm, qovCpuV4},
    {QOV_CPU_AVX512VL, 7, regEbx, 31, needsZmm, qovCpuV4},
};

bool bitOf(Qov32u value, int bit)
{
    return (value >> bit) & 1;
}

bool hasLeaf(const CpuidSource& cpu, Qov32u leaf)
{
    return cpu.cpuid(leaf & 0x80000000u, 0).eax >= leaf;
}

// Leaf 0x8000001D has the layout of leaf 4. Type 0 ends the list.
struct CacheLeaf {
    Qov32u leaf;
    CpuidRegs first;
};

// The leaf that describes caches on this processor; leaf 0 if none does.
CacheLeaf cacheLeaf(const CpuidSource& cpu)
{
    const int topologyExtensions = 22; // in ECX of leaf 0x80000001
    for (Qov32u leaf : {4u, 0x8000001Du}) {
        if (!hasLeaf(cpu, leaf)) continue;
        if (leaf != 4 && !bitOf(cpu.cpuid(0x80000001, 0).ecx, topologyExtensions)) continue;
        const CpuidRegs first = cpu.cpuid(leaf, 0);
        if (first.eax & 31) return {leaf, first};
    }
    return {0, {}};
}

} // namespace

const CpuidSource& thisCpu()
{
    static const HostCpu host;
    return host;
}

Qov64u cpuFeatures(const CpuidSource& cpu)
{
    const Qov64u xmmYmm = 0x06, xmmYmmZmm = 0xE6;
    const int osxsave = 27; // in ECX of leaf 1
    const Qov64u saved = bitOf(cpu.cpuid(1, 0).ecx, osxsave) ? cpu.xcr0() : 0;
    Qov64u features = 0;
    for (const FeatureBit& f : featureBits) {
        if (!hasLeaf(cpu, f.leaf)) continue;
        if (f.needs == needsYmm && (saved & xmmYmm) != xmmYmm) continue;
        if (f.needs == needsZmm && (saved & xmmYmmZmm) != xmmYmmZmm) continue;
        const CpuidRegs r = cpu.cpuid(f.leaf, 0);
        if (bitOf(f.reg == regEbx ? r.ebx : r.ecx, f.bit)) features |= f.feature;
    }
    return features;
}

Qov64u levelFeatures(QovCpuType level)
{
    Qov64u features = 0;
    for (const FeatureBit& f : featureBits)
        if (f.level <= level) features |= f.feature;
    return features;
}

QovCpuType bestLevel(Qov64u features)
{
    for (QovCpuType level : {qovCpuV4, qovCpuV3, qovCpuV2})
        if ((levelFeatures(level) & ~features) == 0) return level;
    return qovCpuPx;
}

int coresInPackage(const CpuidSource& cpu)
{
    const CacheLeaf cache = cacheLeaf(cpu);
    if (cache.leaf == 4) return int(cache.first.eax >> 26) + 1;
    if (!hasLeaf(cpu, 0x80000008)) return 1;
    const int threads = int(cpu.cpuid(0x80000008, 0).ecx & 255) + 1;
    if (cache.leaf == 0 || !hasLeaf(cpu, 0x8000001E)) return threads;
    const int threadsPerCore = int((cpu.cpuid(0x8000001E, 0).ebx >> 8) & 255) + 1;
    return threads > threadsPerCore ? threads / threadsPerCore : 1;
}

Qov64u largestDataCache(const CpuidSource& cpu)
{
    const CacheLeaf cache = cacheLeaf(cpu);
    if (cache.leaf == 0) return 0;
    const Qov32u instructions = 2; // the type to pass over
    Qov64u largest = 0;
    for (Qov32u i = 0; i < 32; i++) {
        const CpuidRegs r = cpu.cpuid(cache.leaf, i);
        const Qov32u type = r.eax & 31;
        if (type == 0) break;
        if (type == instructions) continue;
        const Qov64u line = (r.ebx & 0xFFF) + 1, partitions = ((r.ebx >> 12) & 0x3FF) + 1;
        const Qov64u ways = (r.ebx >> 22) + 1, sets = Qov64u(r.ecx) + 1;
        const Qov64u size = sets * line * partitions * ways;
        if (size > largest) largest = size;
    }
    return largest;
}

} // namespace qov
