// One measurement of qkTool: the function's own timed loop, or the tool's loop over the plain call, with the
// floating-point watch and the priority around it.
#include "qkclock.h"
#include "qkctrl87.h"
#include "qkstream.h"
#include "qktest.h"
#include "qktimcall.h"
#include "qktool.h"
#include "qktraced.h"

static double perCall(long long clocks, int calls)
{
    return calls > 0 ? static_cast<double>(clocks) / calls : 0;
}

static qkPlainCall plainCall(const qkTool& tool, bool reset)
{
    return {tool.m_funcCall, tool.m_funcInit, reset ? qkTest::resetAllVectors : nullptr,
            qkTool::m_pCheckStatus};
}

// A measurement without clocks is tried once more.
void qkTool::runTimFunc(int numLoops, double* result, bool forceLoop)
{
    const bool loop = forceLoop || !m_useStat;
    int calls = numLoops;
    for (int attempt = 0; attempt < 2; attempt++) {
        m_numClocks = 0;
        calls = numLoops;
        updateResult(measure(loop, calls));
        if (qkIsError(m_result) || m_numClocks > 0) break;
    }
    *result = perCall(m_numClocks, calls);
}

void qkTool::runTimFuncStat(int& numCalls, double* result)
{
    m_numClocks = m_totalClocks;
    updateResult(measure(false, numCalls));
    *result = perCall(m_numClocks, numCalls);
}

qkResult qkTool::measure(bool loop, int& numCalls)
{
    if (m_dataUse) {
        return qkTraced("qovFunctionCalls",
                        [&] { return loop ? timCall_Loop(numCalls, true) : timCall_Stat(numCalls, true); });
    }
    if (m_initBeforeStart && m_funcInit) qkTraced("initFunc call", [this] { m_funcInit(); });
    ctrlStart();
    qkSetPriority(m_priority);
    const qkResult result = callFunction(loop, numCalls);
    qkResetPriority();
    ctrlStop();
    return result;
}

qkResult qkTool::callFunction(bool loop, int& numCalls)
{
    if (loop) return m_funcLoop ? m_funcLoop(numCalls, &m_numClocks) : timCall_Loop(numCalls, false);
    return m_funcStat ? m_funcStat(&numCalls, &m_numClocks) : timCall_Stat(numCalls, false);
}

qkResult qkTool::timCall_Loop(int numLoops, bool reset)
{
    if (!m_funcCall) return internalError();
    return qkTimeCallLoop<qkTscClock>(plainCall(*this, reset), numLoops, &m_numClocks);
}

qkResult qkTool::timCall_Stat(int& numCalls, bool reset)
{
    if (!m_funcCall) return internalError();
    return qkTimeCallStat<qkTscClock>(plainCall(*this, reset), &numCalls, &m_numClocks);
}

// The vector registers are filled with ones, so that a function that relies on their content is found out.
void qkTool::ctrlStart()
{
    g_ctrl87.start();
    tsSSXBase::destroy();
}

void qkTool::ctrlStop()
{
    g_ctrl87.stop();
    g_ssx.collect();
}

qkResult qkTool::internalError(const char* file, int line)
{
    g_ostrm << ERR << "QK internal error: file " << file << ", line " << line << "\n" << END_MSG;
    return FAIL;
}
