// Report records: short-lived objects built from a test or the list of tests, each with one output operator
// per kind of stream, so that one record prints in a different form on each channel.
#ifndef QK_REPORT_H
#define QK_REPORT_H

#include "qkcstream.h"
#include "qkstring.h"

class qkConditions;
class qkTest;
class qkTestList;

// Positions up to six items on a line of 79 columns. A position of 0 or more is the column where the item
// starts; a negative position p means that the item ends just before column -p-1.
class qkReportFormat {
public:
    qkReportFormat(bool box, int numColm, const int (&pos)[6]);

    qkString firstLine();
    qkString lastLine();
    static qkString sepLine();
    qkString getLine(const qkString& a, const qkString& b, const qkString& c, const qkString& d,
                     const qkString& e, const qkString& f) const;
    static qkString getTimeStr(int seconds);
    int numColm() const { return m_numColm; }

    void setStartLine(qkString& line) const;
    void setEndLine(qkString& line) const;
    static bool setOffsetLine(qkString& line, int pos);
    static int getLastLen(const qkString& line);
    static void setItem(qkString& line, const qkString& item, int pos);
    static void setItemLeft(qkString& line, const qkString& item, int pos);
    static bool getPieceItem(qkString& item, qkString& piece, int pos);

private:
    bool m_box;
    int m_numColm; // for the reader
    int m_pos[6];
};

qkString cpuInfo(); // the processor line of the title

class qkReportTitle : public qkList<qkString> { // pairs
public:
    explicit qkReportTitle(const qkTestList& tests);
};
qkOStream& operator<<(qkOStream& out, qkReportTitle& title);
qkCStream& operator<<(qkCStream& out, qkReportTitle& title);
qkUStream& operator<<(qkUStream& out, qkReportTitle& title);

class qkReportEnd : public qkList<qkString> { // pairs
public:
    explicit qkReportEnd(const qkTestList& tests);
};
qkOStream& operator<<(qkOStream& out, qkReportEnd& end);
qkCStream& operator<<(qkCStream& out, qkReportEnd& end);
qkUStream& operator<<(qkUStream& out, qkReportEnd& end);

class qkReportTestTitle : public qkList<qkString> { // triples
public:
    explicit qkReportTestTitle(const qkTest* test);
    const qkString& function() const { return m_function; }

private:
    qkString m_function;
};
qkOStream& operator<<(qkOStream& out, qkReportTestTitle& title);
qkUStream& operator<<(qkUStream& out, qkReportTestTitle& title);

class qkReportTestResult {
public:
    explicit qkReportTestResult(const qkTest* test); // null: the title of the summary table
    qkString m_result;
    qkString m_function;
    qkString m_time;
    qkString m_comment;
    qkString m_line; // the finished line of the summary table
};
qkOStream& operator<<(qkOStream& out, qkReportTestResult& result);
qkUStream& operator<<(qkUStream& out, qkReportTestResult& result);

// What -e lists: tokens, "\n" among them. mode 0: the tests that run; else the library's functions, with a
// mark for those that have a test; negative: only those without one.
class qkReportList : public qkList<qkString> {
public:
    qkReportList(const qkTestList& tests, qkConditions& conditions, int mode);
    static void createFuncList(qkStringList& names);

private:
    void listTests(const qkTestList& tests, qkConditions& conditions);
};
qkOStream& operator<<(qkOStream& out, qkReportList& list);
qkCStream& operator<<(qkCStream& out, qkReportList& list);
qkUStream& operator<<(qkUStream& out, qkReportList& list);

#endif
