#include "qktool.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "qkinfoline.h"
#include "qkstream.h"
#include "qktraced.h"

qkResult (*qkTool::m_pCheckStatus)(int) = nullptr;
int qkTool::m_priority = 0;

// An old-style function under measurement, and the tool that measures it.
static qkFuncOld _funcOld = nullptr;
static qkTool* _pTool = nullptr;

static qkResult _funcLoop(int numLoops, long long* clocks)
{
    const qkResult result = _funcOld(*_pTool, numLoops);
    *clocks = qkCpuTicker::getClockFactor() * _pTool->m_numClocks;
    return result;
}

static void attention(const char* chosen, const char* possible)
{
    g_ostrm << ERR << " ATTENTION! The test cannot execute " << chosen << " timing.\n " << possible
            << " timing will be run instead.\n"
            << END_MSG;
}

static int capped(long long count)
{
    return static_cast<int>(std::clamp<long long>(count, INT_MIN, INT_MAX));
}

qkTool::qkTool() : m_startTime(std::time(nullptr)), m_stopTime(m_startTime) {}

qkTool::~qkTool() = default;

void qkTool::setMethodAuto()
{
    m_method = Auto;
}

void qkTool::setMethodLoop(int loops)
{
    m_method = Manual;
    m_loops = std::max(loops, 1);
}

void qkTool::setMethodStat(int numCalls, long long totalClocks)
{
    m_method = Statistic;
    m_numCalls = numCalls;
    m_totalClocks = totalClocks;
}

void qkTool::setMethodBest(int start, int stop, long long minClocks)
{
    m_method = Iterative;
    m_startLoops = std::max(start, 1);
    m_stopLoops = std::max(capped(start * 8LL), stop);
    m_minClocks = minClocks;
}

bool qkTool::getMethodAuto() const
{
    return m_method == Auto;
}

bool qkTool::getMethodLoop(int& loops) const
{
    if (m_method != Manual) return false;
    loops = m_loops;
    return true;
}

bool qkTool::getMethodStat(int& numCalls, long long& totalClocks) const
{
    if (m_method != Statistic) return false;
    numCalls = m_numCalls;
    totalClocks = m_totalClocks;
    return true;
}

bool qkTool::getMethodBest(int& start, int& stop, long long& minClocks) const
{
    if (m_method != Iterative) return false;
    start = m_startLoops;
    stop = m_stopLoops;
    minClocks = m_minClocks;
    return true;
}

void qkTool::getAutoParameters(int& start, int& stop, long long& minClocks)
{
    const int factor = qkCpuTicker::getClockFactor();
    start = 1;
    stop = 2048;
    minClocks = factor == 1 ? 10000 : 100 * factor;
}

// A positive factor halves the automatic method's counts that many times, for functions that take long.
void qkTool::setLoopFactor(int factor)
{
    m_startFactor = m_stopFactor = 0;
    if (factor == 0) return;

    int start, stop;
    long long minClocks;
    getAutoParameters(start, stop, minClocks);
    const int shift = std::abs(std::clamp(factor, -31, 31));
    const auto shifted = [=](long long count) {
        return capped(factor > 0 ? count >> shift : count << shift);
    };
    m_startFactor = shifted(start);
    m_stopFactor = shifted(stop);
}

void qkTool::reset()
{
    m_accResult = 1.0;
    m_result = UNDEFINED;
    m_funcClocks = 0;
    m_resultText = "";
    m_info = "";
    m_history = "";
    m_funcLoop = nullptr;
    m_funcStat = nullptr;
    m_funcCall = nullptr;
    m_funcInit = nullptr;
    m_numClocks = 0;
    m_numLoops = 0;
    m_startTime = std::time(nullptr);
}

qkResult qkTool::timing(qkFuncOld funcOld)
{
    _funcOld = funcOld;
    _pTool = this;
    return timing(_funcLoop, nullptr, nullptr, nullptr);
}

qkResult qkTool::timing(qkFuncLoop funcLoop, qkFuncStat funcStat, qkFuncCall funcCall, qkFuncCall funcInit)
{
    reset();
    if (!funcLoop && !funcStat && !funcCall) {
        g_ostrm << ERR
                << " Internal test problem: The test cannot execute standard timing.\n"
                   " No one of funcLoop, funcStat or funcCall is registered\n"
                << END_MSG;
        updateResult(FAIL);
        return m_result;
    }
    // Fresh data for each call can only be had where the tool itself makes the calls.
    if (m_dataUse && !funcCall) return m_result;

    m_funcLoop = funcLoop;
    m_funcStat = funcStat;
    m_funcCall = funcCall;
    m_funcInit = funcInit;
    switch (m_method) {
    case Auto: qkTraced("autoTiming", [this] { autoLoopTiming(); }); break;
    case Manual:
        if (!funcLoop && !funcCall) {
            attention("Manual loop", "Statistic");
            setMethodStat(m_loops, 0);
            return timing(nullptr, funcStat, nullptr, funcInit);
        }
        qkTraced("customLoopTiming", [this] { customLoopTiming(); });
        break;
    case Statistic:
        if (!funcStat && !funcCall) {
            attention("Statistic", "Manual loop");
            setMethodLoop(m_numCalls);
            return timing(funcLoop, nullptr, nullptr, funcInit);
        }
        qkTraced("statisticTiming", [this] { statisticTiming(); });
        break;
    case Iterative:
        qkTraced("iterativeTiming", [this] { bestTiming(m_startLoops, m_stopLoops, m_minClocks); });
        break;
    default: updateResult(internalError());
    }
    m_stopTime = std::time(nullptr);
    return m_result;
}

void qkTool::autoLoopTiming()
{
    int start, stop;
    long long minClocks;
    getAutoParameters(start, stop, minClocks);
    if (m_startFactor) start = m_startFactor;
    if (m_stopFactor) stop = m_stopFactor;
    bestTiming(start, stop, minClocks);
}

void qkTool::customLoopTiming()
{
    writeInfo("    Manual method: \n");
    writeInfo(qkInfoLine("numLoops", m_loops));
    m_numLoops = m_loops;
    runTimFunc(m_loops, &m_funcClocks, true);
    m_accResult = 0;
    m_info << "nLps=" << m_loops;
    writeInfo(qkInfoLine("funcClocks", m_funcClocks));
    writeInfo(qkInfoLine("result", qkResultName(m_result)));
}

void qkTool::statisticTiming()
{
    writeInfo("    Statistical method:\n");
    writeInfo(qkInfoLine("minCalls", m_numCalls));
    writeInfo(qkInfoLine("maxClocks", clockStr(m_totalClocks)));
    int calls = m_numCalls;
    runTimFuncStat(calls, &m_funcClocks);
    m_numLoops = calls;
    m_accResult = 0;
    m_info << "nCalls=" << calls;
    writeInfo(qkInfoLine("numCalls", calls));
    writeInfo(qkInfoLine("funcClocks", m_funcClocks));
    writeInfo(qkInfoLine("result", qkResultName(m_result)));
}

void qkTool::updateResult(qkResult status)
{
    m_result = qkWorse(m_result, status);
    m_resultText = qkResultString(m_result);
}

void qkTool::writeInfo(const qkString& text)
{
    g_ostrm << INFO << text << END_MSG;
    m_history += text;
}

void qkTool::writeError()
{
    if (g_ostrm.outLevel() < INFO) g_ostrm << ERR << m_history << END_MSG;
    m_history = "";
}

qkString qkTool::getAccuracyStr(double accuracy)
{
    const double percent = accuracy * 100;
    return percent < 0.1 ? qkFormat("%.2f%c", percent, '%') : qkFormat("%.1f%c", percent, '%');
}

// Beyond 32 bits the last digits are shown as zeros.
qkString qkTool::clockStr(long long clocks)
{
    qkString zeros;
    for (; clocks > INT_MAX; clocks /= 10) zeros << "0";
    qkString text;
    text << clocks << zeros;
    return text;
}

// Without clocks there is nothing that could agree, and nothing to divide by.
double qkTool::computeAccuracy(double a, double b)
{
    const double sum = a + b;
    return sum > 0 ? 2 * std::fabs(a - b) / sum : 1.0;
}

double qkTool::computeAccuracy(const double* values, int n)
{
    double sum = 0;
    for (int i = 0; i < n; i++) sum += values[i];
    if (sum <= 0) return 1.0;

    const double mean = sum / n;
    double worst = 0;
    for (int i = 0; i < n; i++) worst = std::max(worst, std::fabs(values[i] - mean));
    return worst / mean;
}

double qkTool::computeBest(const double* values, int n)
{
    return *std::min_element(values, values + n);
}

// The largest result is 0x40000000.
int qkTool::roundUpToPow2(int value)
{
    if (value <= 0) return 0;
    int power = 0x40000000;
    while (power > value) power >>= 1;
    return power < value && power < 0x40000000 ? power << 1 : power;
}
