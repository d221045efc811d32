// The list that replaces a run: the tests that would be measured, or the library's functions with a mark for
// those that a test covers.
#include "qkformat.h"
#include "qklibenv.h"
#include "qkreport.h"
#include "qktest.h"

// Functions that prepare, release or draw are not worth a test of their own.
static const char* const housekeeping[] = {"Init",   "Close",        "Alloc",       "Malloc",  "Free",
                                           "PutVal", "RotateCenter", "ResizeShift", "DrawText"};

static bool isHousekeeping(const qkString& name)
{
    for (const char* part : housekeeping) {
        if (name.contains(part)) return true;
    }
    return (name.contains("Get") && !name.contains("Get_")) ||
           (name.contains("Set") && !name.contains("Set_"));
}

static bool hasTest(const qkTestList& tests, const qkString& name)
{
    for (const qkTest* test : tests) {
        if (test->name() == name) return true;
    }
    return false;
}

void qkReportList::createFuncList(qkStringList& names)
{
    if (!g_pLibFuncList) return;
    for (const qkString& name : *g_pLibFuncList) {
        if (!isHousekeeping(name)) names.append(name);
    }
}

qkReportList::qkReportList(const qkTestList& tests, qkConditions& conditions, int mode)
{
    qkStringList names;
    if (mode != 0) createFuncList(names);
    if (names.empty()) {
        listTests(tests, conditions);
        return;
    }
    append("Exist");
    append("Function");
    append("\n");
    for (const qkString& name : names) {
        const bool exists = hasTest(tests, name);
        if (exists && mode < 0) continue;
        append(exists ? "+" : "-");
        append(name);
        append("\n");
    }
}

void qkReportList::listTests(const qkTestList& tests, qkConditions& conditions)
{
    static const char* const heads[] = {"   #", "Function", "Test", "Source", "\n"};
    for (const char* head : heads) append(head);
    int number = 0;
    for (qkTest* test : tests) {
        if (!test->tobeRun(conditions)) continue;
        append(qkFormat("%4d", ++number));
        append(test->name());
        append(test->info().m_class);
        append(test->fileName());
        append("\n");
    }
}

qkOStream& operator<<(qkOStream& out, qkReportList& list)
{
    if (!(out.msgLevel() & out.outLevel())) return out;
    for (const qkString& token : list) {
        out << token;
        if (token != "\n") out << "\t";
    }
    return out;
}

// The stream itself takes a line feed for the end of a line.
qkCStream& operator<<(qkCStream& out, qkReportList& list)
{
    for (const qkString& token : list) out << token;
    return out;
}

qkUStream& operator<<(qkUStream& out, qkReportList& list)
{
    bool first = true;
    for (const qkString& token : list) {
        const bool lineEnd = token == "\n";
        if (!first && !lineEnd) out << ",";
        out << token;
        first = lineEnd;
    }
    return out;
}
