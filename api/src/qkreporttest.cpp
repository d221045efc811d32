// The records of one test: what is printed when it begins and when it ends, and its line of the summary
// table.
#include <ctime>

#include "qkformat.h"
#include "qkreport.h"
#include "qksession.h"
#include "qktest.h"

// Above this mask a test gets a block of its own on the console instead of two lines.
static const OutputLevel blockLevel = 2;

static void addTriple(qkList<qkString>& list, const qkString& key, const qkString& value,
                      const qkString& right)
{
    list.append(key);
    list.append(value);
    list.append(right);
}

static qkString timeText(std::time_t time)
{
    return cutoffNL(std::ctime(&time));
}

qkReportTestTitle::qkReportTestTitle(const qkTest* test) : m_function(test->name())
{
    addTriple(*this, "Function", m_function, timeText(test->startTime()));
    if (g_ostrm.outLevel() <= 1) return;
    addTriple(*this, "Test", test->info().m_class, "");
    addTriple(*this, "Source", test->fileName(), "");
    const qkString& description = test->info().m_description;
    if (!description.empty()) addTriple(*this, "Description", description, "");
}

qkOStream& operator<<(qkOStream& out, qkReportTestTitle& title)
{
    const qkReportFormat format(true, 4, {1, 12, 14, -79, -79, -79});
    const bool block = out.outLevel() > blockLevel;
    out << ERR;
    if (block) out << qkReportFormat::sepLine();
    for (auto i = title.begin(); i != title.end(); ++i) {
        const qkString& key = *i;
        const qkString& value = *++i;
        out << format.getLine(key, ":", value, *++i, "", "");
        if (!block) break;
    }
    if (block) out << qkReportFormat::sepLine();
    out << END_MSG;
    out.flush();
    return out;
}

qkUStream& operator<<(qkUStream& out, qkReportTestTitle& title)
{
    const bool information = title.function().startsWith("__qk");
    out << title.function() << "," << (information ? "Information" : "Timing") << ",";
    out.flush();
    return out;
}

// The control words have no verdict of their own: their two cells are always "-".
static qkString summaryLine(const qkTest& test, const qkString& result)
{
    qkString line("-,");
    line << (test.bad87() ? "?" : "-") << ",-," << (test.badSSX() ? "?" : "-") << ",";
    line << test.info().m_class << ",";
    line << static_cast<int>(std::difftime(test.stopTime(), test.startTime())) << ",";
    line << test.fileName() << "," << result << "," << qkSession::m_exePath.getFileName();
    return line;
}

qkReportTestResult::qkReportTestResult(const qkTest* test)
{
    if (!test) {
        m_line =
            "Function,Class,Control87,Status87,ControlSSX,StatusSSX,Test,Time (sec.),SrcName,Result,ExeName";
        return;
    }
    m_result = qkResultName(test->result());
    m_function = test->name();
    m_time = timeText(test->stopTime());
    if (test->result() == UNDEFINED) m_comment = "--No measurements have been done\n";
    m_line = summaryLine(*test, m_result);
}

qkOStream& operator<<(qkOStream& out, qkReportTestResult& result)
{
    const qkReportFormat format(true, 3, {1, 14, -79, -79, -79, -79});
    const bool block = out.outLevel() > blockLevel;
    out << ERR;
    if (block) out << qkReportFormat::sepLine();
    out << format.getLine("-" + result.m_result, result.m_function, result.m_time, "", "", "");
    if (block) out << qkReportFormat::sepLine();
    return out << END_MSG_FLUSH;
}

qkUStream& operator<<(qkUStream& out, qkReportTestResult& result)
{
    out << result.m_line << "\n";
    out.flush();
    return out;
}
