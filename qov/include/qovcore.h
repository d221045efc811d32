// The core of qov: choice of instruction set, threads, processor and cache queries, status texts, aligned
// memory.
#ifndef QOV_QOVCORE_H
#define QOV_QOVCORE_H

#include "qovdefs.h"

// Makes the best level active that the processor and the operating system can run. Every program calls it (or
// qovInitCpu) before the first primitive; until then the plain level px is active.
QOV_API QovStatus qovInit(void);

// Makes the level `cpu` active. qovStsNotSupportedCpu (a warning) when the machine can't run it: the best it
// can run is active then. qovStsBadArg for a code that names no level: the active level stays.
QOV_API QovStatus qovInitCpu(QovCpuType cpu);

// The best level that this machine can run, whichever is active.
QOV_API QovCpuType qovGetCpuType(void);

// The level whose kernels are active now.
QOV_API QovCpuType qovGetEnabledCpuType(void);

// Bits QOV_CPU_... of the features that the processor has (the operating system's consent included), and of
// those that the active level's kernels were allowed to use.
QOV_API QovStatus qovGetCpuFeatures(Qov64u* pFeatures);
QOV_API Qov64u qovGetEnabledCpuFeatures(void);

// Processor cores in this package; 1 if the processor does not tell.
QOV_API int qovGetNumCoresOnDie(void);

// Bytes of the largest data or unified cache, on a processor of any maker. qovStsUnknownCacheSize and 0 if
// the processor does not tell.
QOV_API QovStatus qovGetMaxCacheSizeB(int* pSizeByte);

// English text of a status, for any value.
QOV_API const char* qovGetStatusString(QovStatus status);

// The library runs on the caller's thread alone: 1 is taken, more is answered with qovStsOneThread, less than
// 1 with qovStsBadArg.
QOV_API QovStatus qovSetNumThreads(int numThreads);
QOV_API QovStatus qovGetNumThreads(int* pNumThreads);

// `length` bytes, aligned to 64; null if length is below 1 or there is no memory. qovFree takes null.
QOV_API void* qovMalloc(int length);
QOV_API void qovFree(void* ptr);

// The first address at or behind `ptr` that is a multiple of `alignBytes`, a power of two.
QOV_API void* qovAlignPtr(void* ptr, int alignBytes);

QOV_API const QovLibraryVersion* qovGetLibVersion(void);

#endif
