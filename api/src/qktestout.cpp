// What a test writes about itself: the console lines of a parameter set, the rows of the tables and the
// numbers in them.
#include "qkcacheiter.h"
#include "qkexception.h"
#include "qkformat.h"
#include "qksession.h"
#include "qktest.h"
#include "qktraced.h"

double qkTest::performance(bool flops)
{
    const double clocks = m_tool.m_funcClocks;
    if (!flops) {
        const double divisor = getDivisor();
        return divisor != 0 ? clocks / divisor : 0;
    }
    if (!isFloatFunction() || clocks == 0) return 0;
    return getFlops() * qkCpuTicker::getFreq() / clocks;
}

qkString qkTest::perfString(bool flops)
{
    return formatClocks(performance(flops));
}

// Three digits or more, whatever the magnitude.
qkString qkTest::formatClocks(double clocks)
{
    if (!(clocks > 0)) return qkString();
    if (clocks < 0.0001 || clocks > 10000000) return qkFormat("%.3e", clocks);
    static const double limits[] = {100, 10, 1, 0.1, 0.01, 0.001};
    int decimals = 0;
    for (const double limit : limits) {
        if (clocks >= limit) break;
        decimals++;
    }
    return qkFormat("%.*f", decimals, clocks);
}

qkString qkTest::getComment()
{
    if (m_deprecated) return "deprecated";
    qkString comment;
    if (m_cacheIter) comment << m_cacheIter->getComment() << " ";
    return comment + m_tool.m_info;
}

void qkTest::funcToCstrm()
{
    g_cstrm << m_name;
}

void qkTest::putTableParms()
{
    funcToCstrm();
    parmsToCstrm();
    g_cstrm.setNumColm(m_numParmsColm);
}

void qkTest::resultToCstrm(qkResult)
{
    qkString time;
    time << m_tool.m_funcClocks / qkCpuTicker::getFreq();
    g_cstrm << getComment() << perfString(false) << getUnit() << time << perfString(true)
            << (isHotLine() ? "Hot" : "");
}

void qkTest::putTableResult(qkResult result)
{
    putTableParms();
    resultToCstrm(result);
    g_cstrm.lineOut(m_numResultColm + m_numParmsColm);
}

// The row with the old spellings of the parameters is held back, so that all regular rows of the test come
// first.
void qkTest::putTableResult_Deprecated(qkResult result)
{
    if (setDeprecatedFlag(true)) {
        putTableParms();
        qkTraced("resultToCstrm", [&] { resultToCstrm(result); });
        g_cstrm.linePostpone();
    }
    setDeprecatedFlag(false);
}

namespace {

// What is written to g_cstrm in the scope goes to the name table.
class NameTableSinks {
public:
    NameTableSinks() { g_cstrm.swap(g_qstrm); }
    ~NameTableSinks() { g_cstrm.swap(g_qstrm); }
    NameTableSinks(const NameTableSinks&) = delete;
    NameTableSinks& operator=(const NameTableSinks&) = delete;
};

} // namespace

void qkTest::putTableName()
{
    constexpr int intoTable = 1;
    constexpr int intoFile = 2;
    if (m_name.startsWith("__qk")) return;
    if (qkSession::m_nameMode & intoTable) putTableNameLine();
    if (qkSession::m_nameMode & intoFile) {
        const NameTableSinks exchanged;
        // A guard of its own turns a signal into an exception before it passes the exchange.
        qkGuardSignals([this] { putTableNameLine(); });
    }
}

void qkTest::putTableNameLine()
{
    qkTraced("funcToCstrm", [this] { funcToCstrm(); });
    qkTraced("parmsNameToCstrm", [this] { parmsNameToCstrm(); });
    g_cstrm.setNumColm(m_numParmsColm);
    g_cstrm << "parmNames";
    g_cstrm.lineOut(m_numResultColm + m_numParmsColm);
}

void qkTest::outputResult(qkResult result)
{
    if (result == UNDEFINED) return;
    putTextError(result);
    putTextResult(result);
    if (qkIsError(result)) return;
    putTableResult(result);
    putTableResult_Deprecated(result);
}

void qkTest::putTextError(qkResult result)
{
    if (result <= OK) return;
    g_ostrm << (qkIsError(result) ? ERR : WARN) << "-- " << qkResultString(result)
            << " on test parameters:\n";
    putTextParms();
    g_ostrm << END_MSG;
}

void qkTest::putTextResult(qkResult result)
{
    if (result == UNDEFINED || qkIsError(result)) return;
    if (!g_ostrm.beginMessage(result == OK ? PERF : WARN)) return;
    if (result != OK) g_ostrm << "-- performance:\n";
    g_ostrm << testResultString() << "\n";
    g_ostrm.endMessage();
}

void qkTest::putTextParms()
{
    putTextParms(g_ostrm.msgLevel());
}

void qkTest::putTextParms(MessageLevel level)
{
    if (!g_ostrm.beginMessage(level)) return;
    if (m_cacheIter) g_ostrm << m_cacheIter->getComment() << ":";
    qkTraced("parmsToOstrm", [this] { parmsToOstrm(); });
    g_ostrm << "\n";
    g_ostrm.endMessage();
}

qkString qkTest::testResultString()
{
    const qkString separator("  ");
    qkString text;
    if (m_tool.m_method == qkTool::Auto || m_tool.m_method == qkTool::Iterative)
        text << separator << "acc=" << sFormat(qkTool::getAccuracyStr(m_tool.m_accResult), -5);
    text << separator << sFormat(m_tool.m_info, -10);
    text << separator << "perf=" << sFormat(m_tool.m_funcClocks, 9) << "/" << sFormat(getDivisor(), 9) << "="
         << sFormat(perfString(false), 9) << " clocks";
    return text;
}

void qkTest::outputRegInfo()
{
    g_ostrm << PERF << regInfo() << "\n" << END_MSG;
}

namespace {

void addToList(qkString& list, bool present, const char* name)
{
    if (!present) return;
    if (!list.empty()) list << ", ";
    list << name;
}

} // namespace

qkString qkTest::regInfo()
{
    qkString text("   Test has been registered");
    if (!m_info.m_macro.empty()) text << " by " << m_info.m_macro << " macro";

    qkString forms;
    addToList(forms, m_funcLoop, "loopMethod");
    addToList(forms, m_funcStat, "statMethod");
    addToList(forms, m_funcOld, "oldMethod");
    addToList(forms, m_funcCall, "funcCall");
    if (forms.empty())
        return text + " without any function to call.\n No standard timing method is available";
    addToList(forms, m_funcInit, "funcInit");
    text << " with " << forms << "\n   " << measuredForm() << " is called for measuring.";
    return text;
}

const char* qkTest::measuredForm() const
{
    if (m_funcOld) return "oldMethod";
    if (m_funcCall && m_tool.m_dataUse) return "funcCall with Set&Use";
    if (m_funcCall && !m_funcLoop && !m_funcStat) return "funcCall";
    const bool automatic = m_tool.m_method == qkTool::Auto || m_tool.m_method == qkTool::Iterative;
    const bool loop = m_tool.m_method == qkTool::Manual || (automatic && !m_tool.m_useStat);
    if (loop) return m_funcLoop ? "loopMethod" : "statMethod";
    return m_funcStat ? "statMethod" : "loopMethod";
}
