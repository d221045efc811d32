// The automatic method of qkTool. A prior measurement finds a count of calls that takes enough clocks; then
// the count is doubled until two measurements in a row agree within the accuracy, and repeated measurements
// confirm it.
#include <algorithm>
#include <climits>

#include "qkinfoline.h"
#include "qkstream.h"
#include "qktest.h"
#include "qktool.h"
#include "qktraced.h"

// An agreement this close needs no confirmation.
static constexpr double closeAccuracy = 0.01;

// Counts grow in 64 bits and end at the largest int, whatever limits the user gave.
static long long grown(long long count, long long factor)
{
    return std::min<long long>(count * factor, INT_MAX);
}

static bool badStatus()
{
    bool bad87, badSSX;
    return qkTest::badCtrlStatus(bad87, badSSX);
}

void qkTool::bestTiming(int start, int stop, long long minClocks)
{
    m_watchStatus = m_initBeforeStart;
    if (m_useStat && !m_funcStat && !m_funcCall) m_useStat = false;
    writeInfo("    Auto method: start\n");
    writeInfo(qkInfoLine("minClocks", clockStr(minClocks)));

    long long maxLoops = stop;
    if (!priorMeasurement(start, maxLoops, minClocks) || !iterate(maxLoops)) return;
    reportAccuracy();
    writeInfo("    Auto method: stop\n");
}

// Too few clocks, or none at all, get one second chance with larger counts.
bool qkTool::priorMeasurement(int start, long long& maxLoops, long long minClocks)
{
    long long loops = start;
    for (bool again = false;; again = true) {
        writeInfo("    Prior Measurement: \n");
        writeInfo(qkInfoLine(countName(), loops));
        const qkResult r = startIterations(static_cast<int>(loops), minClocks);
        writeInfo(qkInfoLine("numClocks", clockStr(m_numClocks)));
        writeInfo(qkInfoLine("funcClocks", m_funcClocks));
        writeInfo(qkInfoLine("result", qkResultName(r)));

        if (r > ACCURFAIL || (r == ACCURFAIL && again)) return exitBestTiming(r);
        if (again || (r != ACCURFAIL && r != ACCURWRN)) return true;
        int factor = 10;
        if (r == ACCURWRN) {
            const long long wanted = 2 * std::min(minClocks, LLONG_MAX / 2);
            factor = roundUpToPow2(static_cast<int>(std::min<long long>(wanted / m_numClocks, INT_MAX)));
        }
        loops = grown(loops, factor);
        maxLoops = grown(maxLoops, factor);
    }
}

bool qkTool::iterate(long long maxLoops)
{
    while (m_numLoops < maxLoops) {
        const long long startLoops = 4LL * m_numLoops;
        writeInfo("    Iteration Measurement: \n");
        writeInfo(qkInfoLine("startLoops", startLoops));
        writeInfo(qkInfoLine("maxLoops", maxLoops));
        const qkResult r = continueIterations(startLoops, maxLoops);
        writeInfo(qkInfoLine("stopLoops", m_numLoops));
        writeInfo(qkInfoLine("stopClocks", clockStr(m_numClocks)));
        writeInfo(qkInfoLine("accuracy", getAccuracyStr(m_accResult)));
        writeInfo(qkInfoLine("funcClocks", m_funcClocks));
        writeInfo(qkInfoLine("result", qkResultName(r)));

        if (r == ACCURFAIL) return exitBestTiming(r);
        if (r == BADSTSWRN) return avoidBadStatus();
        if (m_accResult <= closeAccuracy) break;
        writeInfo("    Simple Measurements: \n");
        const qkResult repeated = repeatTiming(3);
        if (repeated == ACCURFAIL) return exitBestTiming(repeated);
        if (repeated != ACCURWRN) break;
    }
    return true;
}

// The data that the calls work on may have overflowed with the number of calls: fewer may keep the status
// clean.
bool qkTool::avoidBadStatus()
{
    const double limit = 2 * m_accuracy;
    bool bad87, badSSX;
    qkTest::badCtrlStatus(bad87, badSSX);
    qkTest::printCtrlStatus(bad87, badSSX);
    g_ostrm << WARN << "-- Attempting to avoid bad control status\n" << END_MSG;
    writeInfo("    Reduce loops to avoid bad ctrl status.\n");
    writeInfo("    Simple Measurements: \n");
    qkTest::clearCtrlStatus();

    const qkResult r = repeatTiming(6);
    if (r == ACCURFAIL) return exitBestTiming(r);
    if (r != BADSTSWRN && m_accResult <= limit) {
        g_ostrm << WARN << "-- Attempt is successful\n" << END_MSG;
        return true;
    }
    writeInfo("    Cannot avoid bad ctrl status\n");
    g_ostrm << WARN << "-- Attempt fails: "
            << (r == BADSTSWRN ? "Bad control status repeats.\n" : "Accuracy is unsatisfactory.\n")
            << END_MSG;
    return true;
}

bool qkTool::exitBestTiming(qkResult result)
{
    updateResult(result);
    writeInfo("    Auto method: exit\n");
    if (result == ACCURFAIL) writeError();
    return false;
}

void qkTool::reportAccuracy()
{
    m_info << (m_useStat ? "nCalls=" : "nLps=") << m_numLoops;
    if (m_accResult <= m_accuracy) return;
    const qkString accuracy = getAccuracyStr(m_accResult);
    m_info << " acc=" << accuracy;
    if (m_result >= ACCURWRN) return;
    m_result = ACCURWRN;
    m_resultText = qkString("actual accuracy = ") + accuracy;
}

qkResult qkTool::startIterations(int numLoops, long long minClocks)
{
    m_numLoops = numLoops;
    qkTraced("runTimFunc", [=, this] { runTimFunc(numLoops, &m_funcClocks, false); });
    if (qkIsError(m_result)) return m_result;
    if (m_funcClocks <= 0) return ACCURFAIL;
    return static_cast<double>(minClocks) > m_funcClocks * numLoops ? ACCURWRN : OK;
}

// ACCURWRN: the largest count is reached and the last two measurements do not agree.
qkResult qkTool::continueIterations(long long startLoops, long long maxLoops)
{
    double previous = m_funcClocks;
    for (long long loops = std::min(startLoops, maxLoops); loops <= maxLoops; loops *= 2) {
        m_numLoops = static_cast<int>(loops);
        runTimFunc(m_numLoops, &m_funcClocks, false);
        if (m_funcClocks <= 0) return ACCURFAIL;
        m_accResult = computeAccuracy(m_funcClocks, previous);
        if (m_watchStatus && badStatus()) {
            m_numLoops /= 2;
            m_funcClocks = previous;
            return BADSTSWRN;
        }
        if (m_accResult <= m_accuracy) return OK;
        previous = m_funcClocks;
    }
    return ACCURWRN;
}

// `count` measurements with the present number of loops; the first of them is the one already made.
qkResult qkTool::repeatTiming(int count)
{
    double clocks[6] = {m_funcClocks};
    for (int i = 1; i < count; i++) {
        runTimFunc(m_numLoops, &clocks[i], false);
        writeInfo(qkInfoLine(countName(), m_numLoops));
        writeInfo(qkInfoLine("numClocks", clockStr(m_numClocks)));
        writeInfo(qkInfoLine("funcClocks", clocks[i]));
    }
    m_accResult = computeAccuracy(clocks, count);
    m_funcClocks = computeBest(clocks, count);

    qkResult r = m_accResult > m_accuracy ? ACCURWRN : OK;
    if (m_watchStatus && badStatus()) r = BADSTSWRN;
    if (m_funcClocks <= 0) r = ACCURFAIL;
    writeInfo(qkInfoLine("accuracy", getAccuracyStr(m_accResult)));
    writeInfo(qkInfoLine("bestClocks", m_funcClocks));
    writeInfo(qkInfoLine("result", qkResultName(r)));
    return r;
}
