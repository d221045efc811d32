// The library as the harness sees it: a table of pointers to its core functions. The test side fills it if a
// library is linked; the substitutes below stand in for what is missing, so that the harness starts and runs
// without one.
#ifndef QK_LIBENV_H
#define QK_LIBENV_H

#include "qkstring.h"
#include "qovdefs.h"

extern QovCpuType (*qov_GetCpuType)();
extern QovStatus (*qov_GetCpuFeatures)(Qov64u* pFeatures);
extern Qov64u (*qov_GetEnabledCpuFeatures)();
extern int (*qov_GetNumCoresOnDie)();
extern QovStatus (*qov_GetMaxCacheSizeB)(int* pSizeByte);
extern const char* (*qov_GetStatusString)(QovStatus status);
extern QovStatus (*qov_Init)();
extern QovStatus (*qov_InitCpu)(QovCpuType cpu);
extern QovStatus (*qov_SetNumThreads)(int numThreads);
extern QovStatus (*qov_GetNumThreads)(int* pNumThreads);

// Substitutes.
QovCpuType qk_qovGetCpuType();
QovStatus s_qovGetCpuFeatures(Qov64u* pFeatures);
Qov64u s_qovGetEnabledCpuFeatures();
int qk_qovGetNumCoresOnDie();
QovStatus qk_qovGetMaxCacheSizeB(int* pSizeByte);
const char* s_qovGetStatusString(QovStatus status);
QovStatus s_qovInit();
QovStatus s_qovInitCpu(QovCpuType cpu);
QovStatus s_qovSetNumThreads(int numThreads);
QovStatus s_qovGetNumThreads(int* pNumThreads);

// Bytes of the largest cache that the registers of CPUID leaf 2 name; 0: none.
int qkCacheSizeOfDescriptors(const unsigned (&regs)[4]);

extern int s_cpuType;    // -T; -1: not given
extern int s_numThreads; // -N; 0: not given

void setQovEnvironment();
void initStaticCpu();
void setNumThreads();
void setQovLibInfo();

extern qkStringList* g_pLibInfoList; // "name, version, build date" of each linked library
extern qkStringList* g_pLibFuncList; // names of the library's functions, for -e+
bool qkRegLibInfo(const qkString& text);
bool qkRegLibFunc(const qkString& name);

#endif
