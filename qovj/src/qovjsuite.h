// What every suite unit starts with: the data layer, the library, the tables of enumeration names, and the
// unit's own binding of the library to the harness. Included once by each unit; all of it has internal
// linkage, so that a unit stands on its own whatever else is linked.
#ifndef QOVJ_SUITE_H
#define QOVJ_SUITE_H

#include "qd.h"
#include "qd_reg.h"
#include "qklibenv.h"
#include "qovcore.h"
#include "qovj.h"

[[maybe_unused]] static const char* const RndStr[] = {"zero", "near"};
[[maybe_unused]] static const int RndVal[] = {qovRndZero, qovRndNear};
[[maybe_unused]] static const int RndNum = 2;
[[maybe_unused]] static const char* const HintStr[] = {"none", "fast", "accurate"};
[[maybe_unused]] static const int HintVal[] = {qovAlgHintNone, qovAlgHintFast, qovAlgHintAccurate};
[[maybe_unused]] static const int HintNum = 3;
[[maybe_unused]] static const char* const CmpStr[] = {"LT", "LE", "EQ", "GE", "GT"};
[[maybe_unused]] static const int CmpVal[] = {qovCmpLess, qovCmpLessEq, qovCmpEq, qovCmpGreaterEq,
                                              qovCmpGreater};
[[maybe_unused]] static const int CmpNum = 5;
[[maybe_unused]] static const char* const FlagStr[] = {"divFwdByN", "divInvByN", "divBySqrtN", "nodivByAny"};
[[maybe_unused]] static const int FlagVal[] = {QOV_FFT_DIV_FWD_BY_N, QOV_FFT_DIV_INV_BY_N,
                                               QOV_FFT_DIV_BY_SQRTN, QOV_FFT_NODIV_BY_ANY};
[[maybe_unused]] static const int FlagNum = 4;

static void qdSetQovEnvironment()
{
    qov_GetCpuType = qovGetCpuType;
    qov_GetCpuFeatures = qovGetCpuFeatures;
    qov_GetEnabledCpuFeatures = qovGetEnabledCpuFeatures;
    qov_GetNumCoresOnDie = qovGetNumCoresOnDie;
    qov_GetMaxCacheSizeB = qovGetMaxCacheSizeB;
    qov_GetStatusString = qovGetStatusString;
    qov_Init = qovInit;
    qov_InitCpu = qovInitCpu;
    qov_SetNumThreads = qovSetNumThreads;
    qov_GetNumThreads = qovGetNumThreads;
}

static const QovLibraryVersion* qdGetQovVersion_qovj()
{
    return qovjGetLibVersion();
}

static const bool regQovEnvironment = qkRegQovEnvironment(qdSetQovEnvironment);
static const bool regVersion_qovj = qkRegQovVersion(qdGetQovVersion_qovj);

#endif
