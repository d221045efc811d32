// The table of pointers to the library's core, its substitutes, and the texts that tell what was called.
#include "qklibenv.h"

#include "qkcpuid.h"
#include "qkreg.h"
#include "qkstream.h"

QovCpuType (*qov_GetCpuType)() = nullptr;
QovStatus (*qov_GetCpuFeatures)(Qov64u* pFeatures) = nullptr;
Qov64u (*qov_GetEnabledCpuFeatures)() = nullptr;
int (*qov_GetNumCoresOnDie)() = nullptr;
QovStatus (*qov_GetMaxCacheSizeB)(int* pSizeByte) = nullptr;
const char* (*qov_GetStatusString)(QovStatus status) = nullptr;
QovStatus (*qov_Init)() = nullptr;
QovStatus (*qov_InitCpu)(QovCpuType cpu) = nullptr;
QovStatus (*qov_SetNumThreads)(int numThreads) = nullptr;
QovStatus (*qov_GetNumThreads)(int* pNumThreads) = nullptr;

int s_cpuType = -1;
int s_numThreads = 0;

qkStringList* g_pLibInfoList = nullptr;
qkStringList* g_pLibFuncList = nullptr;

namespace {

template <class Function>
void substitute(Function*& pointer, Function* own)
{
    if (!pointer) pointer = own;
}

void putError(QovStatus status)
{
    g_ostrm << (status < 0 ? "--QOV ERROR. " : "--QOV WARNING. ") << "status = " << status << ": "
            << qov_GetStatusString(status) << "\n";
}

void putStatus(QovStatus status)
{
    if (status == qovStsNoErr)
        g_ostrm << "--status = qovStsNoErr\n";
    else
        putError(status);
}

} // namespace

Qov64u s_qovGetEnabledCpuFeatures()
{
    return 0;
}

QovStatus s_qovGetCpuFeatures(Qov64u*)
{
    return qovStsNotSupported;
}

const char* s_qovGetStatusString(QovStatus status)
{
    if (status < 0) return "Error";
    return status == 0 ? "OK" : "Warning";
}

QovStatus s_qovInit()
{
    return qovStsNotSupported;
}

QovStatus s_qovInitCpu(QovCpuType)
{
    return qovStsNotSupported;
}

QovStatus s_qovSetNumThreads(int)
{
    return qovStsNotSupported;
}

QovStatus s_qovGetNumThreads(int*)
{
    return qovStsNotSupported;
}

// The text has no level of its own: what the stream's present level lets through decides.
void setQovEnvironment()
{
    if (qovEnvironment) {
        qovEnvironment();
        g_ostrm << "\nQOV Core library functions have been integrated into QK\n";
    }
    substitute(qov_GetCpuType, qk_qovGetCpuType);
    substitute(qov_GetCpuFeatures, s_qovGetCpuFeatures);
    substitute(qov_GetEnabledCpuFeatures, s_qovGetEnabledCpuFeatures);
    substitute(qov_GetNumCoresOnDie, qk_qovGetNumCoresOnDie);
    substitute(qov_GetMaxCacheSizeB, qk_qovGetMaxCacheSizeB);
    substitute(qov_GetStatusString, s_qovGetStatusString);
    substitute(qov_Init, s_qovInit);
    substitute(qov_InitCpu, s_qovInitCpu);
    substitute(qov_SetNumThreads, s_qovSetNumThreads);
    substitute(qov_GetNumThreads, s_qovGetNumThreads);
}

void initStaticCpu()
{
    if (s_cpuType == -1) {
        qov_Init();
        return;
    }
    g_ostrm << ERR << "\n--calling qovInitCpu( qovCpu" << qkCpuType::cpuLabel(s_cpuType) << "=" << s_cpuType
            << " )\n";
    QovStatus status = qov_InitCpu(static_cast<QovCpuType>(s_cpuType));
    putStatus(status);
    if (status < 0) {
        g_ostrm << "--calling qovInit()\n";
        status = qov_Init();
        if (status < 0) putError(status);
    }
    g_ostrm << END_MSG;
}

void setNumThreads()
{
    int numThreads = 0;
    qov_GetNumThreads(&numThreads);
    g_ostrm << ERR << "\n--calling qovGetNumThreads: numThreads = " << numThreads << "\n";
    if (s_numThreads > 0) {
        g_ostrm << "--calling qovSetNumThreads( " << s_numThreads << " )\n";
        putStatus(qov_SetNumThreads(s_numThreads));
    }
    g_ostrm << END_MSG;
}

void setQovLibInfo()
{
    if (!qovVersionList) return;
    for (auto getter = qovVersionList->begin(); getter != qovVersionList->end(); ++getter) {
        const QovLibraryVersion* version = (*getter)();
        qkString text;
        text << version->name << ", " << version->version << ", " << version->buildDate;
        qkRegLibInfo(text);
    }
    g_ostrm << "QOV libraries information has been set into QK\n";
}

bool qkRegLibInfo(const qkString& text)
{
    if (!g_pLibInfoList) g_pLibInfoList = new qkStringList;
    for (auto known = g_pLibInfoList->begin(); known != g_pLibInfoList->end(); ++known) {
        if (*known == text) return false;
    }
    g_pLibInfoList->append(text);
    return true;
}

bool qkRegLibFunc(const qkString& name)
{
    if (name.empty()) return false;
    if (!g_pLibFuncList) g_pLibFuncList = new qkStringList;
    g_pLibFuncList->append(name);
    return true;
}
