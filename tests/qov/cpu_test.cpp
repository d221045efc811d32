// Detection of the level, cache and cores on processors that this machine is not.
#include "cpu.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using qov::CpuidRegs;

// A processor made of the leaves that a test gives it.
class FakeCpu : public qov::CpuidSource {
public:
    CpuidRegs cpuid(Qov32u leaf, Qov32u subLeaf) const override
    {
        if ((leaf & 0x7fffffff) == 0) return {highest(leaf), 0, 0, 0};
        const auto found = leaves.find({leaf, subLeaf});
        return found == leaves.end() ? CpuidRegs{} : found->second;
    }
    Qov64u xcr0() const override { return saved; }

    std::map<std::pair<Qov32u, Qov32u>, CpuidRegs> leaves;
    Qov64u saved = 0xE7;

private:
    Qov32u highest(Qov32u base) const
    {
        Qov32u top = base;
        for (const auto& [key, regs] : leaves)
            if (key.first >= base && (key.first & 0x80000000) == base) top = std::max(top, key.first);
        return top;
    }
};

const Qov32u osxsave = 1u << 27;

FakeCpu fullCpu()
{
    FakeCpu cpu;
    cpu.leaves[{1, 0}] = {0, 0,
                          1u << 0 | 1u << 9 | 1u << 12 | 1u << 13 | 1u << 19 | 1u << 20 | 1u << 22 |
                              1u << 23 | osxsave | 1u << 28 | 1u << 29,
                          0};
    cpu.leaves[{7, 0}] = {
        0, 1u << 3 | 1u << 5 | 1u << 8 | 1u << 16 | 1u << 17 | 1u << 28 | 1u << 30 | 1u << 31, 0, 0};
    cpu.leaves[{0x80000001, 0}] = {0, 0, 1u << 0 | 1u << 5 | 1u << 22, 0};
    return cpu;
}

QovCpuType levelOf(const FakeCpu& cpu)
{
    return qov::bestLevel(qov::cpuFeatures(cpu));
}

// Whatever feature of a level is missing, the level below is chosen; catches a feature that nobody asks for.
TEST(Detection, EachFeatureCounts)
{
    ASSERT_EQ(qovCpuV4, levelOf(fullCpu()));
    struct {
        Qov32u leaf;
        char reg;
        int bit;
        QovCpuType without;
    } const cases[] = {
        {1, 'c', 0, qovCpuPx},          {1, 'c', 9, qovCpuPx},  {1, 'c', 13, qovCpuPx},
        {1, 'c', 19, qovCpuPx},         {1, 'c', 20, qovCpuPx}, {1, 'c', 23, qovCpuPx},
        {0x80000001, 'c', 0, qovCpuPx}, {1, 'c', 12, qovCpuV2}, {1, 'c', 22, qovCpuV2},
        {1, 'c', 27, qovCpuV2},         {1, 'c', 28, qovCpuV2}, {1, 'c', 29, qovCpuV2},
        {7, 'b', 3, qovCpuV2},          {7, 'b', 5, qovCpuV2},  {7, 'b', 8, qovCpuV2},
        {0x80000001, 'c', 5, qovCpuV2}, {7, 'b', 16, qovCpuV3}, {7, 'b', 17, qovCpuV3},
        {7, 'b', 28, qovCpuV3},         {7, 'b', 30, qovCpuV3}, {7, 'b', 31, qovCpuV3},
    };
    for (const auto& c : cases) {
        FakeCpu cpu = fullCpu();
        CpuidRegs& regs = cpu.leaves[{c.leaf, 0}];
        (c.reg == 'b' ? regs.ebx : regs.ecx) &= ~(1u << c.bit);
        EXPECT_EQ(c.without, levelOf(cpu)) << std::hex << c.leaf << " " << c.reg << std::dec << c.bit;
    }
}

TEST(Detection, TheSystemMustSaveTheRegisters)
{
    struct {
        Qov64u saved;
        QovCpuType level;
    } const cases[] = {{0xE7, qovCpuV4}, {0xE6, qovCpuV4}, {0x67, qovCpuV3}, {0x07, qovCpuV3},
                       {0x03, qovCpuV2}, {0x05, qovCpuV2}, {0xE3, qovCpuV2}};
    for (const auto& c : cases) {
        FakeCpu cpu = fullCpu();
        cpu.saved = c.saved;
        EXPECT_EQ(c.level, levelOf(cpu)) << std::hex << c.saved;
    }
}

// An old processor answers leaves above its highest with other leaves' data: they must not be asked.
TEST(Detection, LeavesBeyondTheHighest)
{
    FakeCpu cpu = fullCpu();
    cpu.leaves.erase({7, 0});
    EXPECT_EQ(qovCpuV2, levelOf(cpu));
    cpu.leaves.clear();
    EXPECT_EQ(qovCpuPx, levelOf(cpu));
}

// One cache in the layout of leaf 4: type 1 data, 2 instructions, 3 unified.
CpuidRegs cache(int type, Qov32u cores, Qov32u line, Qov32u partitions, Qov32u ways, Qov32u sets)
{
    return {(cores - 1) << 26 | Qov32u(type), (ways - 1) << 22 | (partitions - 1) << 12 | (line - 1),
            sets - 1, 0};
}

TEST(Caches, LargestOfLeaf4)
{
    FakeCpu cpu = fullCpu();
    cpu.leaves[{4, 0}] = cache(1, 6, 64, 1, 8, 64);
    cpu.leaves[{4, 1}] = cache(2, 6, 64, 8, 16, 4096); // instructions: does not count
    cpu.leaves[{4, 2}] = cache(3, 6, 64, 2, 8, 1024);
    cpu.leaves[{4, 4}] = cache(3, 6, 64, 1, 16, 65536); // behind the end of the list
    EXPECT_EQ(64u * 2 * 8 * 1024, qov::largestDataCache(cpu));
    EXPECT_EQ(6, qov::coresInPackage(cpu));
}

TEST(Caches, SecondSourceWhenLeaf4IsEmpty)
{
    FakeCpu cpu = fullCpu();
    cpu.leaves[{4, 0}] = {};
    cpu.leaves[{0x8000001D, 0}] = cache(1, 1, 64, 1, 8, 64);
    cpu.leaves[{0x8000001D, 1}] = cache(3, 1, 64, 1, 16, 32768);
    cpu.leaves[{0x80000008, 0}] = {0, 0, 15, 0};
    EXPECT_EQ(64u * 16 * 32768, qov::largestDataCache(cpu));
    EXPECT_EQ(16, qov::coresInPackage(cpu));
    cpu.leaves[{0x8000001E, 0}] = {0, 1 << 8, 0, 0};
    EXPECT_EQ(8, qov::coresInPackage(cpu));
    cpu.leaves[{0x80000001, 0}].ecx &= ~(1u << 22); // no topology extensions: the leaf is not to be trusted
    EXPECT_EQ(0u, qov::largestDataCache(cpu));
}

TEST(Caches, NothingTold)
{
    FakeCpu cpu;
    EXPECT_EQ(0u, qov::largestDataCache(cpu));
    EXPECT_EQ(1, qov::coresInPackage(cpu));
}

} // namespace
