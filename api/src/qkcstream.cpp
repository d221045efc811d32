#include "qkcstream.h"

void clearStore(qkColumnStore& store)
{
    for (qkStringList& column : store) column.erase(column.begin(), column.end());
}

void addStore(qkColumnStore& store, const qkString (&cells)[qkMaxColumns])
{
    for (int i = 0; i < qkMaxColumns; i++) store[i].append(cells[i]);
}

int getStoreCount(const qkColumnStore& store)
{
    return store[0].count();
}

void resetStoreIterator(const qkColumnStore& store, qkColumnIterators& position)
{
    for (int i = 0; i < qkMaxColumns; i++) position[i] = store[i].begin();
}

bool getStoreNext(const qkColumnStore& store, qkColumnIterators& position, qkString (&cells)[qkMaxColumns])
{
    for (int i = 0; i < qkMaxColumns; i++) {
        if (position[i] == store[i].end()) return false;
        cells[i] = *position[i];
        ++position[i];
    }
    return true;
}

void excludeComma(char* text)
{
    if (!text) return;
    for (; *text; text++) {
        if (*text == ',') *text = ';';
    }
}

void qkCStream::setColm(int i, const qkString& cell)
{
    if (i >= 0 && i < qkMaxColumns) m_colm[i] = cell;
}

void qkCStream::setNextColm(const qkString& cell)
{
    if (m_nColm < qkMaxColumns) setColm(m_nColm++, cell);
}

bool qkCStream::getColm(int i, qkString& cell) const
{
    if (i < 0 || i >= qkMaxColumns) return false;
    cell = m_colm[i];
    return true;
}

// Flushed at once, so that a crash of the next test loses no finished line.
void qkCStream::tableOut(int n)
{
    if (n == 0) n = m_nColm;
    const int numSet = m_nColm < qkMaxColumns ? m_nColm : qkMaxColumns;
    qkString line;
    for (int i = 0; i < n; i++) {
        if (i > 0) line += ",";
        line += i < numSet && !m_colm[i].empty() ? m_colm[i] : qkString("-");
    }
    line += "\n";
    for (o_stream* sink : *this) *sink << line;
    flush();
}

void qkCStream::lineOut(int n)
{
    tableOut(n);
    m_nLine++;
    if (m_identColms != 0) addStore(m_identStore, m_colm);
    tableFlush();
}

void qkCStream::tableFlush()
{
    m_nColm = 0;
    for (qkString& cell : m_colm) cell = "";
}

void qkCStream::linePostpone()
{
    addStore(m_postponed, m_colm);
    tableFlush();
}

void qkCStream::linePostponeOut(int n)
{
    qkColumnIterators position;
    resetStoreIterator(m_postponed, position);
    while (getStoreNext(m_postponed, position, m_colm)) {
        m_nColm = n;
        lineOut(n);
    }
    clearStore(m_postponed);
}

void qkCStream::identicalLinesStart(int n)
{
    m_identColms = n < qkMaxColumns ? n : qkMaxColumns;
    clearStore(m_identStore);
}

bool qkCStream::identicalLinesStop()
{
    if (m_identColms == 0 || getStoreCount(m_identStore) == 0) return false;
    const bool found = identicalLinesCheck();
    m_identColms = 0;
    clearStore(m_identStore);
    return found;
}

static void nextLine(qkColumnIterators& position)
{
    for (auto& column : position) ++column;
}

static bool identicalColms(const qkColumnIterators& a, const qkColumnIterators& b, int n)
{
    for (int i = 0; i < n; i++) {
        if (*a[i] != *b[i]) return false;
    }
    return true;
}

// Lines are numbered as in the file, from 1 and with the title lines.
bool qkCStream::identicalLinesCheck()
{
    const int first = m_nLine - getStoreCount(m_identStore) + 1;
    qkColumnIterators a;
    resetStoreIterator(m_identStore, a);
    for (int i = first; i < m_nLine; i++, nextLine(a)) {
        qkColumnIterators b;
        for (int c = 0; c < qkMaxColumns; c++) b[c] = a[c];
        for (int j = i + 1; j <= m_nLine; j++) {
            nextLine(b);
            if (!identicalColms(a, b, m_identColms)) continue;
            g_ostrm << WARN << " Performance table warning:\n Lines " << i << " & " << j
                    << " have identical parameters\n"
                    << END_MSG_FLUSH;
            return true;
        }
    }
    return false;
}

qkCStream& operator<<(qkCStream& out, const qkString& text)
{
    if (text == "\n")
        out.lineOut(0);
    else
        out.setNextColm(text);
    return out;
}
