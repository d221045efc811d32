// How a test runs: the order of its hooks, the loop over its parameter sets, and what becomes of an
// exception.
#include "qkcacheiter.h"
#include "qkctrl87.h"
#include "qkreg.h"
#include "qkreport.h"
#include "qksession.h"
#include "qktest.h"
#include "qktraced.h"

namespace {

// The levels of g_ostrm that an exception puts back: hooks and timing may have been left with other ones.
OutputLevel OldOutLevel = 1;
MessageLevel OldMsgLevel = PERF;

void putBack(qkParameter& parm, const qkString& text)
{
    if (parm.defaultString() == text) return;
    try {
        parm.translate(text);
    } catch (const qkException&) {
        parm.reset(); // a list without values has no text that it would read
    }
}

} // namespace

// The values of the common parameters. What a test reads from its own section of the ini file is meant for
// that test alone, so its run puts the values back. Kept as text, which every parameter reads back.
class qkTest::CommonValues {
public:
    void save();
    void restore();

private:
    qkStringList m_texts; // in the order of g_pParmList; empty until save()
};

void qkTest::CommonValues::save()
{
    if (!g_pParmList) return;
    for (qkParameter* parm : *g_pParmList) m_texts.append(parm->defaultString());
}

void qkTest::CommonValues::restore()
{
    if (m_texts.empty()) return;
    auto parm = g_pParmList->begin();
    for (const qkString& text : m_texts) {
        putBack(**parm, text);
        ++parm;
    }
}

// Holds nothing that a jump out of a hook would leave in doubt: the guard is a function of its own.
qkResult qkTest::run()
{
    CommonValues common;
    bool leftOut = false;
    OldOutLevel = g_ostrm.outLevel();
    OldMsgLevel = g_ostrm.msgLevel();
    m_startTime = std::time(nullptr);
    guarded([&] { leftOut = !runHooks(common); });
    if (leftOut) return UNDEFINED;
    // A crash in the report or in endTest is reported like one in any other hook, but not for ever.
    if (!guarded([this] { finish(); })) guarded([this] { finish(); });
    common.restore();
    return m_result;
}

template <class Body>
bool qkTest::guarded(Body body)
{
    try {
        qkGuardSignals(body);
        return true;
    } catch (const qkException& exception) {
        putException(exception);
        return false;
    }
}

// What the exception cut short must not show in the next test: the levels, the cells of an unfinished table
// row, the rows held back, the raised priority. flushData and flushStart are passed over, since after a crash
// the test's data can't be trusted.
void qkTest::putException(const qkException& exception)
{
    m_currentResult = EXCPTFAIL;
    qkResetPriority();
    g_ostrm.setOutLevel(OldOutLevel);
    g_ostrm.setMsgLevel(OldMsgLevel);
    g_cstrm.tableFlush();
    g_cstrm.linePostponeOut(m_numResultColm + m_numParmsColm);
    g_ostrm << ERR << exception.msg() << " in " << g_trace.getCurName() << "\n" << END_MSG;
}

// False: -P leaves the test out, and nothing of it has run.
bool qkTest::runHooks(CommonValues& common)
{
    m_result = OK;
    m_currentResult = UNDEFINED;
    m_tool = g_tool;
    if (m_info.m_macro.contains("Ibs")) m_tool.m_initBeforeStart = true;
    g_trace.m_lastLine = "";
    g_trace.m_indent = "";
    if (!qkTraced("setIniSection", [this] { return setIniSection(m_name); })) return false;
    qkTraced("beginTest", [this] { beginTest(); });
    m_startTime = std::time(nullptr);
    putTitle();
    if (!qkTraced("canStart", [this] { return canStart(); })) {
        g_ostrm << ERR << "-- Can't start timing\n" << END_MSG;
        m_currentResult = DATAFAIL;
    } else if (m_cache && !m_cacheIter) {
        g_ostrm << ERR << "-- Can't run In-Outof-Cache timing: no program support for function " << m_name
                << "\n"
                << END_MSG;
    } else {
        readAndMeasure(common);
    }
    qkTraced("flushStart", [this] { flushStart(); });
    return true;
}

void qkTest::putTitle()
{
    g_trace.traceIn("testTitle");
    qkReportTestTitle title(this);
    g_trace.traceOut("testTitle");
    qkTraced("g_ostrm<<testTitle", [&] { g_ostrm << title; });
    qkTraced("g_ustrm<<testTitle", [&] { g_ustrm << title; });
}

void qkTest::readAndMeasure(CommonValues& common)
{
    common.save();
    qkTraced("parmsFromIstrm", [this] { parmsFromIstrm(); });
    putTableName();
    if (g_istrm.isIniWrite() || qkSession::m_nameExit) {
        m_currentResult = OK;
        return;
    }
    outputRegInfo();
    qkTraced("loopData", [this] { loopData(); });
}

void qkTest::finish()
{
    m_result = m_currentResult;
    m_stopTime = std::time(nullptr);
    qkTraced("testResult", [this] {
        qkReportTestResult report(this);
        g_ostrm << report;
        g_ustrm << report;
    });
    g_ostrm.flush();
    g_cstrm.flush();
    g_ustrm.flush();
    qkTraced("endTest", [this] { endTest(); });
}

// With an exception the test may have told only half of its parameters: it counts as using none.
void qkTest::startAndStop()
{
    const OutputLevel level = g_ostrm.outLevel();
    g_ostrm.setOutLevel(ERR);
    try {
        qkGuardSignals([this] {
            beginTest();
            canStart();
            flushStart();
            endTest();
        });
    } catch (const qkException& exception) {
        g_ostrm << ERR << exception.msg() << " in startAndStop of " << m_name << " test\n" << END_MSG;
        dropCacheIterator();
        m_parms.erase(m_parms.begin(), m_parms.end());
    }
    g_ostrm.setOutLevel(level);
}

namespace {

// With nothing but errors on the console, warnings do not count towards a test's result.
qkResult countedResult(qkResult result)
{
    return g_ostrm.outLevel() <= ERR && qkIsWarning(result) ? OK : result;
}

} // namespace

void qkTest::loopData()
{
    bool firstSet = true;
    m_firstData = true;
    // A crash of another test may have left a shared parameter with its old spelling.
    setDeprecatedFlag(false);
    m_traceLine = g_trace.m_lastLine;
    g_cstrm.identicalLinesStart(m_numParmsColm);
    do {
        g_trace.m_lastLine = m_traceLine;
        m_vectorNum = m_vectorShift = 0;
        if (!qkTraced("canContinue", [this] { return canContinue(); })) {
            if (m_firstData) {
                g_ostrm << ERR << "-- One of argument list for timing is empty\n" << END_MSG;
                raiseResult(DATAFAIL);
            }
            break;
        }
        m_firstData = false;
        if (qkTraced("initData", [this] { return initData(); })) measureSet(firstSet);
        qkTraced("flushData", [this] { flushData(); });
    } while (!qkIsError(m_currentResult));
    if (m_currentResult == UNDEFINED) {
        g_ostrm << ERR << "-- Error while initialization of function data\n" << END_MSG;
        raiseResult(DATAFAIL);
    }
    g_cstrm.linePostponeOut(m_numResultColm + m_numParmsColm);
    if (g_cstrm.identicalLinesStop()) {
        g_ostrm << WARN << "-- Warning: duplicate lines in performance table (csv-file)\n" << END_MSG;
        raiseResult(countedResult(DATAWRN));
    }
}

void qkTest::measureSet(bool& firstSet)
{
    if (firstSet) outputConst();
    firstSet = false;
    if (m_cacheIter && !m_cacheIter->validateSize()) {
        m_cacheFail = true;
        return;
    }
    putTextParms(PERF);
    if (m_tool.m_dataUse) qkTraced("reserveAllVectors", [] { reserveAllVectors(); });
    if (m_hot == 2 && !isHotLine()) {
        g_ostrm << PERF << "  measuring is omitted: not hot line\n" << END_MSG;
        return;
    }
    const qkResult result = timeSet();
    raiseResult(countedResult(result));
    outputResult(result);
}

qkResult qkTest::timeSet()
{
    constexpr OutputLevel warningsOnly = ERR | WARN;
    printAllMemoryBlocks("before function calls");
    OldOutLevel = g_ostrm.outLevel();
    initCtrlStatus();
    // Else the console would not see what the tool says of the accuracy.
    if (OldOutLevel == warningsOnly) g_ostrm.setOutLevel(warningsOnly | PERF);
    const qkResult result = qkTraced("runTiming", [this] { return runTiming(); });
    g_ostrm.setOutLevel(OldOutLevel);
    if (result != UNDEFINED) {
        printAllMemoryBlocks("after function calls");
    } else {
        g_ostrm << ERR << "-- Internal test problem: runTiming() function returns undefined result\n"
                << END_MSG;
        raiseResult(FAIL);
    }
    return qkWorse(result, checkCtrlStatus());
}

qkResult qkTest::runTiming()
{
    if (m_funcLoop || m_funcStat || m_funcCall)
        return m_tool.timing(m_funcLoop, m_funcStat, m_funcCall, m_funcInit);
    return m_funcOld ? m_tool.timing(m_funcOld) : UNDEFINED;
}

// The parameters form an odometer whose last wheel turns fastest.
bool qkTest::canContinue()
{
    if (m_parms.empty()) return m_firstData;
    if (m_cacheIter && m_cacheFail) return repeatCacheSize();
    if (m_firstData) {
        for (qkParameter* parm : m_parms) {
            if (!parm->firstValue()) return false;
        }
        return true;
    }
    for (auto parm = m_parms.end(); parm != m_parms.begin();) {
        --parm;
        if ((*parm)->nextValue()) return true;
        (*parm)->firstValue();
    }
    return false;
}

bool qkTest::repeatCacheSize()
{
    m_cacheFail = false;
    if (m_cacheIter->repeatValue()) return true;
    g_ostrm << ERR;
    m_cacheIter->outputInfo();
    putTextParms();
    g_ostrm << "-- Fail to allocate " << m_cacheIter->getComment() << " data\n" << END_MSG;
    raiseResult(DATAFAIL);
    return false;
}
