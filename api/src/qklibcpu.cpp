// What the harness finds out about the processor by itself when no library tells: level, cores and largest
// cache.
#include "qklibenv.h"

#include <initializer_list>

#include "qkcpuid.h"

namespace {

constexpr unsigned bits(std::initializer_list<int> list)
{
    unsigned mask = 0;
    for (const int bit : list) mask |= 1u << bit;
    return mask;
}

// What one register of one leaf must hold for a level.
struct LevelNeed {
    QovCpuType level;
    unsigned leaf;
    CPUID::Reg reg;
    unsigned mask;
};

// The levels of the x86-64 psABI; each needs those before it. The comments name the bits in their order.
const LevelNeed levelNeeds[] = {
    // SSE3, SSSE3, CMPXCHG16B, SSE4.1, SSE4.2, POPCNT; LAHF
    {qovCpuV2, 1, CPUID::ECX, bits({0, 9, 13, 19, 20, 23})},
    {qovCpuV2, 0x80000001, CPUID::ECX, bits({0})},
    // FMA, MOVBE, OSXSAVE, AVX, F16C; BMI1, AVX2, BMI2; LZCNT
    {qovCpuV3, 1, CPUID::ECX, bits({12, 22, 27, 28, 29})},
    {qovCpuV3, 7, CPUID::EBX, bits({3, 5, 8})},
    {qovCpuV3, 0x80000001, CPUID::ECX, bits({5})},
    // AVX-512 F, DQ, CD, BW, VL
    {qovCpuV4, 7, CPUID::EBX, bits({16, 17, 28, 30, 31})},
};

// Register state that the operating system must save: XMM and YMM; opmask and ZMM besides.
constexpr unsigned savedV3 = bits({1, 2});
constexpr unsigned savedV4 = savedV3 | bits({5, 6, 7});

bool hasFeatures(QovCpuType level)
{
    for (const LevelNeed& need : levelNeeds) {
        if (need.level != level) continue;
        if (!validFunction(need.leaf) || (CPUID(need.leaf)[need.reg] & need.mask) != need.mask) return false;
    }
    return true;
}

// Only for a processor with OSXSAVE.
unsigned savedState()
{
    unsigned low;
    unsigned high;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

struct CacheDescriptor {
    unsigned descriptor;
    int size; // bytes
};

constexpr int K = 1024;

// One-byte descriptors of leaf 2 that stand for data and unified caches. The size falls from row to row, so
// the first row that is present is the largest cache.
const CacheDescriptor tableCache[] = {
    {0xEC, 24576 * K}, {0xEB, 18432 * K}, {0x4D, 16384 * K}, {0xEA, 12288 * K}, {0x4C, 12288 * K},
    {0xE4, 8192 * K},  {0xDE, 8192 * K},  {0x4B, 8192 * K},  {0x47, 8192 * K},  {0x4E, 6144 * K},
    {0x4A, 6144 * K},  {0xE3, 4096 * K},  {0xD8, 4096 * K},  {0x49, 4096 * K},  {0x46, 4096 * K},
    {0x29, 4096 * K},  {0xDD, 3072 * K},  {0x48, 3072 * K},  {0xE2, 2048 * K},  {0xD7, 2048 * K},
    {0xD2, 2048 * K},  {0x85, 2048 * K},  {0x7D, 2048 * K},  {0x45, 2048 * K},  {0x25, 2048 * K},
    {0xDC, 1536 * K},  {0xD6, 1024 * K},  {0xD1, 1024 * K},  {0x87, 1024 * K},  {0x84, 1024 * K},
    {0x7C, 1024 * K},  {0x78, 1024 * K},  {0x44, 1024 * K},  {0x24, 1024 * K},  {0x23, 1024 * K},
    {0xD0, 512 * K},   {0x86, 512 * K},   {0x83, 512 * K},   {0x80, 512 * K},   {0x7F, 512 * K},
    {0x7B, 512 * K},   {0x43, 512 * K},   {0x3E, 512 * K},   {0x22, 512 * K},   {0x3D, 384 * K},
    {0x82, 256 * K},   {0x7A, 256 * K},   {0x42, 256 * K},   {0x3C, 256 * K},   {0x21, 256 * K},
    {0x3A, 192 * K},   {0x79, 128 * K},   {0x41, 128 * K},   {0x3B, 128 * K},   {0x39, 128 * K},
    {0x1D, 128 * K},   {0x68, 32 * K},    {0x2C, 32 * K},    {0x0E, 24 * K},    {0x67, 16 * K},
    {0x60, 16 * K},    {0x0D, 16 * K},    {0x0C, 16 * K},    {0x66, 8 * K},     {0x0A, 8 * K},
};

// The lowest byte of EAX is no descriptor but a repeat count, and a register with its top bit set holds none.
bool hasDescriptor(const unsigned (&regs)[4], unsigned descriptor)
{
    for (int reg = 0; reg < 4; reg++) {
        if (regs[reg] >> 31) continue;
        for (int byte = reg == CPUID::EAX ? 1 : 0; byte < 4; byte++) {
            if (((regs[reg] >> 8 * byte) & 0xFF) == descriptor) return true;
        }
    }
    return false;
}

int maxSizeByLeaf2()
{
    const CPUID leaf(2);
    const unsigned regs[4] = {leaf[0], leaf[1], leaf[2], leaf[3]};
    return qkCacheSizeOfDescriptors(regs);
}

int maxSizeByLeaf4()
{
    constexpr unsigned instructionCache = 2;
    int size = 0;
    for (unsigned index = 0; index < 32; index++) {
        const unsigned type = CPUID(4, index).getBits(CPUID::EAX, 4, 0);
        if (type == 0) break;
        if (type == instructionCache) continue;
        const int own = getCacheSizeB(index);
        if (own > size) size = own;
    }
    return size;
}

QovStatus findCacheSize(int& size)
{
    size = 0;
    if (largestFunction() <= 1 || cpuVendor() != "GenuineVorex") return qovStsUnknownCpu;
    size = largestFunction() < 4 ? maxSizeByLeaf2() : maxSizeByLeaf4();
    return size > 0 ? qovStsNoErr : qovStsUnknownCacheSize;
}

} // namespace

int qkCacheSizeOfDescriptors(const unsigned (&regs)[4])
{
    for (const CacheDescriptor& row : tableCache) {
        if (hasDescriptor(regs, row.descriptor)) return row.size;
    }
    return 0;
}

// The best level whose features the processor has and whose registers the operating system saves.
QovCpuType qk_qovGetCpuType()
{
    if (largestFunction() < 1) return qovCpuUnknown;
    if (!hasFeatures(qovCpuV2)) return qovCpuPx;
    if (!hasFeatures(qovCpuV3) || (savedState() & savedV3) != savedV3) return qovCpuV2;
    if (!hasFeatures(qovCpuV4) || (savedState() & savedV4) != savedV4) return qovCpuV3;
    return qovCpuV4;
}

// By leaf 4 where the processor fills it, else by the extended leaf for sizes.
int qk_qovGetNumCoresOnDie()
{
    if (validFunction(4)) {
        const CPUID cache(4);
        if (cache.getBits(CPUID::EAX, 4, 0) != 0)
            return static_cast<int>(cache.getBits(CPUID::EAX, 31, 26)) + 1;
    }
    if (validFunction(0x80000008)) return static_cast<int>(CPUID(0x80000008).getByte(CPUID::ECX, 0)) + 1;
    return 1;
}

QovStatus qk_qovGetMaxCacheSizeB(int* pSizeByte)
{
    static int cacheSize = 0;
    static QovStatus ownStatus = 1; // 1: not looked for yet
    if (ownStatus == 1) ownStatus = findCacheSize(cacheSize);
    *pSizeByte = cacheSize;
    return ownStatus;
}
