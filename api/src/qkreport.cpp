// The records of a run as a whole: the title with the machine and the library, and the summary.
#include "qkreport.h"

#include <ctime>

#include "qkcpuid.h"
#include "qkformat.h"
#include "qkhost.h"
#include "qklibenv.h"
#include "qktest.h"

static void addPair(qkList<qkString>& pairs, const qkString& key, const qkString& value)
{
    pairs.append(key);
    pairs.append(value);
}

static void addPair(qkList<qkString>& pairs, const qkString& key, int value)
{
    addPair(pairs, key, qkFormat("%d", value));
}

static void putPairs(qkCStream& out, const qkList<qkString>& pairs)
{
    for (auto i = pairs.begin(); i != pairs.end(); ++i) {
        out.setNextColm(*i);
        out.setNextColm(*++i);
        out.lineOut(0);
    }
}

static void putPairs(qkUStream& out, const qkList<qkString>& pairs)
{
    for (auto i = pairs.begin(); i != pairs.end(); ++i) {
        const qkString& key = *i;
        out << key << "," << *++i << "\n";
    }
    out.flush();
}

static qkString frequencyText(int mhz)
{
    if (mhz <= 999) return qkFormat("%d MHz", mhz);
    return qkFormat("%.3g GHz", mhz / 1000.0);
}

qkString cpuInfo()
{
    qkString text = qkCpuType::cpuName(qov_GetCpuType ? qov_GetCpuType() : qovCpuUnknown);
    text += ", ";
    const int processors = qkGetNumOfProcessors();
    if (processors > 1) text << processors << "x";
    text << frequencyText(qkCpuTicker::getFreq()) << ", ";
    const int cacheSize = qkGetMaxCacheSizeB();
    if (cacheSize > 0) text << "Max cache size " << cacheSize / 1024 << " K";
    return text;
}

qkReportTitle::qkReportTitle(const qkTestList& tests)
{
    addPair(*this, "CPU", cpuInfo());
    addPair(*this, "OS", qkOS().m_text);
    addPair(*this, "Computer", qkHost().m_text);
    if (g_pLibInfoList) {
        for (const qkString& info : *g_pLibInfoList) addPair(*this, "Library", info);
    }
    addPair(*this, "Start", cutoffNL(std::ctime(&tests.m_startTime)));
}

qkOStream& operator<<(qkOStream& out, qkReportTitle& title)
{
    qkReportFormat format(false, 4, {1, 11, 13, -79, -79, -79});
    out << ERR << format.firstLine();
    auto i = title.begin();
    for (; i != title.end() && *i != "Start"; ++i) {
        const qkString& key = *i;
        out << format.getLine(key, ":", *++i, "", "", "");
    }
    out << format.getLine("Test", ":", "Timing", "", "", "");
    if (i != title.end()) out << format.getLine("", "", "", *++i, "", "");
    return out << format.lastLine() << END_MSG_FLUSH;
}

qkCStream& operator<<(qkCStream& out, qkReportTitle& title)
{
    putPairs(out, title);
    return out;
}

qkUStream& operator<<(qkUStream& out, qkReportTitle& title)
{
    putPairs(out, title);
    return out;
}

// The counters of WARNING and FAIL are totals of their classes and so no part of the sums: a test that ended
// in one of these two results itself shows up as undefined.
qkReportEnd::qkReportEnd(const qkTestList& tests)
{
    const int* const n = tests.m_counters;
    const int fail = n[ACCURFAIL] + n[DATAFAIL] + n[FUNCFAIL];
    const int exceptions = n[EXCPTFAIL];
    const int warning = n[ACCURWRN] + n[DATAWRN] + n[FUNCWRN];
    const int badStatus = n[BADSTSWRN];
    const int failures = fail + exceptions + warning + badStatus;

    addPair(*this, ".Number of tests", tests.m_numTests);
    addPair(*this, ".Successes      ", n[OK]);
    addPair(*this, ".Failures       ", failures);
    addPair(*this, "...Fails        ", fail + exceptions);
    addPair(*this, ".....-FAIL      ", fail);
    addPair(*this, ".....-EXCPTFAIL ", exceptions);
    addPair(*this, "...Warnings     ", warning + badStatus);
    addPair(*this, ".....-WARNING   ", warning);
    addPair(*this, ".....-BADSTSWRN ", badStatus);
    addPair(*this, "...Undefined    ", tests.m_numTests - n[OK] - failures);
    addPair(*this, ".Total time     ",
            qkReportFormat::getTimeStr(static_cast<int>(std::difftime(tests.m_stopTime, tests.m_startTime))));
}

qkOStream& operator<<(qkOStream& out, qkReportEnd& end)
{
    qkReportFormat format(false, 3, {1, 33, 34, -79, -79, -79});
    out << ERR << format.firstLine() << format.getLine("QK Summary", "", "", "", "", "");
    for (auto i = end.begin(); i != end.end(); ++i) {
        const qkString& key = *i;
        out << format.getLine(key + " : " + *++i, "", "", "", "", "");
    }
    return out << format.lastLine() << END_MSG_FLUSH;
}

qkCStream& operator<<(qkCStream& out, qkReportEnd& end)
{
    out.setNextColm("END_DATA");
    out.lineOut(0);
    putPairs(out, end);
    return out;
}

qkUStream& operator<<(qkUStream& out, qkReportEnd& end)
{
    out << "END_DATA\n";
    putPairs(out, end);
    return out;
}
