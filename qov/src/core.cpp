// Choice of the instruction-set level, threads, processor and cache queries.
#include "qovcore.h"

#include "active.h"
#include "cpu.h"

#include <limits.h>

QovCpuType qovGetCpuType(void)
{
    static const QovCpuType best = qov::bestLevel(qov::cpuFeatures(qov::thisCpu()));
    return best;
}

QovStatus qovInit(void)
{
    qov::activate(qovGetCpuType());
    return qovStsNoErr;
}

QovStatus qovInitCpu(QovCpuType cpu)
{
    if (cpu < qovCpuPx || cpu > qovCpuV4) return qovStsBadArg;
    const QovCpuType best = qovGetCpuType();
    qov::activate(cpu <= best ? cpu : best);
    return cpu <= best ? qovStsNoErr : qovStsNotSupportedCpu;
}

QovCpuType qovGetEnabledCpuType(void)
{
    return qov::activeLevel();
}

QovStatus qovGetCpuFeatures(Qov64u* pFeatures)
{
    if (!pFeatures) return qovStsNullPtr;
    *pFeatures = qov::cpuFeatures(qov::thisCpu());
    return qovStsNoErr;
}

Qov64u qovGetEnabledCpuFeatures(void)
{
    return qov::levelFeatures(qov::activeLevel());
}

int qovGetNumCoresOnDie(void)
{
    return qov::coresInPackage(qov::thisCpu());
}

QovStatus qovGetMaxCacheSizeB(int* pSizeByte)
{
    if (!pSizeByte) return qovStsNullPtr;
    const Qov64u size = qov::largestDataCache(qov::thisCpu());
    *pSizeByte = size > INT_MAX ? INT_MAX : int(size);
    return size ? qovStsNoErr : qovStsUnknownCacheSize;
}

QovStatus qovSetNumThreads(int numThreads)
{
    if (numThreads < 1) return qovStsBadArg;
    return numThreads == 1 ? qovStsNoErr : qovStsOneThread;
}

QovStatus qovGetNumThreads(int* pNumThreads)
{
    if (!pNumThreads) return qovStsNullPtr;
    *pNumThreads = 1;
    return qovStsNoErr;
}
