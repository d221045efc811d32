// What the processor tells of itself by CPUID, and what the operating system adds in XCR0. Never asks who
// made it.
#ifndef QOV_CPU_H
#define QOV_CPU_H

#include "qovcore.h"

namespace qov {

struct CpuidRegs {
    Qov32u eax, ebx, ecx, edx;
};

// CPUID as a function, so that tests can play other processors.
class CpuidSource {
public:
    virtual CpuidRegs cpuid(Qov32u leaf, Qov32u subLeaf) const = 0;
    virtual Qov64u xcr0() const = 0; // asked only where CPUID says that XGETBV exists

protected:
    ~CpuidSource() = default;
};

const CpuidSource& thisCpu();

Qov64u cpuFeatures(const CpuidSource& cpu); // QOV_CPU_ bits that programs may use
Qov64u levelFeatures(QovCpuType level); // QOV_CPU_ bits that the compiler may use in the kernels of a level
QovCpuType bestLevel(Qov64u features);  // px to v4
int coresInPackage(const CpuidSource& cpu);      // 1 if the processor does not tell
Qov64u largestDataCache(const CpuidSource& cpu); // bytes; 0 if the processor does not tell

} // namespace qov

#endif
