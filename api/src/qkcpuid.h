// CPUID, and what the harness reads from it: feature flags, cache sizes and the processor report.
#ifndef QK_CPUID_H
#define QK_CPUID_H

#include "qkstring.h"
#include "qovdefs.h"

constexpr unsigned maxCpuCaches = 32; // ends the walk on a processor that never says that there are no more

class CPUID {
public:
    enum Reg { EAX = 0, EBX = 1, ECX = 2, EDX = 3 };
    using Registers = unsigned[4];

    explicit CPUID(unsigned leaf, unsigned subLeaf = 0);
    unsigned operator[](int reg) const { return m_regs[reg]; }
    unsigned getBits(int reg, int high, int low) const;
    unsigned getBit(int reg, int bit) const { return getBits(reg, bit, bit); }
    // Byte 0 is the lowest.
    unsigned getByte(int reg, int index) const { return getBits(reg, index * 8 + 7, index * 8); }

    // What runs the instruction. Tests put a processor of their own here.
    static void (*s_execute)(unsigned leaf, unsigned subLeaf, Registers& regs);

private:
    Registers m_regs;
};

unsigned largestFunction();
unsigned largestExFunction();
bool validFunction(unsigned leaf);
qkString cpuVendor(); // the twelve bytes of leaf 0
qkString cpuBrand();  // empty if the processor does not tell

// A cache as a sub-leaf of leaf 4 describes it. Without one the type is 0.
struct CpuCache {
    explicit CpuCache(unsigned index);
    bool exists() const { return type != 0; }
    unsigned long long sizeB() const;

    unsigned type = 0; // 1 data, 2 instructions, 3 both
    unsigned level = 0;
    unsigned ways = 0;
    unsigned partitions = 0;
    unsigned lineSize = 0;
    unsigned sets = 0;
    unsigned threads = 0;
    bool fullyAssociative = false;
    bool inclusive = false;
};

// Bytes of the cache of a sub-leaf of leaf 4; 0 if there is none. getMaxCacheSizeB: the largest of them.
int getCacheSizeB(unsigned index);
int getMaxCacheSizeB();

// The largest cache, as the library knows it, else as leaf 4 tells it; 0: unknown. The entry point for all
// others.
int qkGetMaxCacheSizeB();
int qkGetNumOfProcessors();

// One row per CPUID bit.
struct FeatureFlag {
    unsigned leaf;
    unsigned subLeaf;
    int reg;
    int bit;
    const char* mnemonic;
    const char* description;
};
extern const FeatureFlag FeatureFlags[];
extern const int numFeatureFlags;
const FeatureFlag* findFlagInfo(const qkString& mnemonic, const FeatureFlag* table, int count);
bool isFeatureFlag(const qkString& mnemonic);
bool isFeatureFlag(const FeatureFlag& flag);

// The report, to g_ostrm.
void printCpuIdInfo();
void printHeader();
void printSignature();
void printMultiThreading();
void printCacheParms();
bool printCacheParms(unsigned index);
void printL2Features();
void printFlags();
void printFeatureFlag(const qkString& mnemonic);
void printFeatureFlag(const qkString& mnemonic, bool value);
void printMaskFlag(const qkString& description, bool supported, bool enabled);
void printQovFeaturues(); // the library's view of the features; nothing if it has none

// Processor types of the library.
class qkCpuType {
public:
    static int cpuType(const qkString& label); // -1: no such label
    static qkString cpuName(int code);
    static qkString cpuLabel(int code);                 // "Undefined" if no row matches
    static qkString optimizedList();                    // labels of the rows with a non-zero code
    static qkString formatLabel(const qkString& label); // padded to 9
};

#endif
