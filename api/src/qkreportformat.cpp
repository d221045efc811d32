// Text placed at columns of a line, the common ground of the console reports.
#include "qkformat.h"
#include "qkreport.h"

// Column of the closing border; a line is one character wider.
static const int borderColm = 78;

qkReportFormat::qkReportFormat(bool box, int numColm, const int (&pos)[6]) : m_box(box), m_numColm(numColm)
{
    for (int i = 0; i < 6; i++) m_pos[i] = pos[i];
}

qkString qkReportFormat::firstLine()
{
    m_box = true;
    return sepLine();
}

qkString qkReportFormat::lastLine()
{
    m_box = false;
    return sepLine();
}

qkString qkReportFormat::sepLine()
{
    qkString line("+");
    line.resize(borderColm, '-');
    return line + "+\n";
}

qkString qkReportFormat::getLine(const qkString& a, const qkString& b, const qkString& c, const qkString& d,
                                 const qkString& e, const qkString& f) const
{
    const qkString* const items[6] = {&a, &b, &c, &d, &e, &f};
    qkString line;
    setStartLine(line);
    for (int i = 0; i < 6; i++) setItem(line, *items[i], m_pos[i]);
    setEndLine(line);
    return line;
}

qkString qkReportFormat::getTimeStr(int seconds)
{
    return qkFormat("%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

void qkReportFormat::setStartLine(qkString& line) const
{
    line += m_box ? "|" : " ";
}

// A line whose text has passed the border column stays open.
void qkReportFormat::setEndLine(qkString& line) const
{
    if (m_box && setOffsetLine(line, borderColm)) line += "|";
    line += "\n";
}

bool qkReportFormat::setOffsetLine(qkString& line, int pos)
{
    const int len = getLastLen(line);
    if (len > pos) return false;
    line.resize(line.length() + pos - len, ' ');
    return true;
}

int qkReportFormat::getLastLen(const qkString& line)
{
    return line.length() - 1 - line.rfind("\n"); // npos is -1
}

void qkReportFormat::setItem(qkString& line, const qkString& item, int pos)
{
    if (item.empty()) return;
    if (pos < 0) pos = -1 - item.length() - pos;
    if (pos >= 0) setItemLeft(line, item, pos);
}

// An item never touches the one before it: a column that the line has reached already counts as taken.
void qkReportFormat::setItemLeft(qkString& line, const qkString& item, int pos)
{
    const int len = getLastLen(line);
    setOffsetLine(line, pos > len ? pos : len + 1);
    line += item;
}

bool qkReportFormat::getPieceItem(qkString& item, qkString& piece, int pos)
{
    if (item.length() <= pos) return false;
    const int blank = item.substr(0, pos + 1).rfind(" ");
    if (blank == qkString::npos) return false;
    piece = item.substr(0, blank);
    item = item.substr(blank + 1);
    return true;
}
