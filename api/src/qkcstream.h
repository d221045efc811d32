// Table streams: g_cstrm (performance table), g_qstrm (parameter names), g_mstrm (memory) and g_ustrm
// (summary). A stream without sinks swallows everything.
#ifndef QK_CSTREAM_H
#define QK_CSTREAM_H

#include "qkstream.h"

constexpr int qkMaxColumns = 32;

// A table kept by columns: line i is element i of each list.
using qkColumnStore = qkStringList[qkMaxColumns];
using qkColumnIterators = qkStringList::iterator[qkMaxColumns];

void clearStore(qkColumnStore& store);
void addStore(qkColumnStore& store, const qkString (&cells)[qkMaxColumns]);
int getStoreCount(const qkColumnStore& store);
void resetStoreIterator(const qkColumnStore& store, qkColumnIterators& position);
bool getStoreNext(const qkColumnStore& store, qkColumnIterators& position, qkString (&cells)[qkMaxColumns]);

// Replaces each ',' by ';' in place: a cell is not escaped in any other way.
void excludeComma(char* text);

class qkCStream : public qkSinkList {
public:
    void setColm(int i, const qkString& cell);
    void setNextColm(const qkString& cell);
    bool getColm(int i, qkString& cell) const;
    int numColm() const { return m_nColm; }
    void setNumColm(int n) { m_nColm = n; }

    void tableOut(int n); // writes n cells (0: those set), padded with "-", and flushes
    void lineOut(int n);  // tableOut, counted, kept for the duplicate check, cells cleared
    void tableFlush();    // clears the cells

    void linePostpone();         // puts the line aside
    void linePostponeOut(int n); // writes all lines put aside

    // Lines between Start and Stop whose first n cells are equal are reported, the first pair only.
    void identicalLinesStart(int n);
    bool identicalLinesStop();

private:
    bool identicalLinesCheck();

    qkString m_colm[qkMaxColumns];
    int m_nColm = 0;
    int m_nLine = 0;
    int m_identColms = 0;
    qkColumnStore m_identStore;
    qkColumnStore m_postponed;
};

// Next cell; "\n" is lineOut(0).
qkCStream& operator<<(qkCStream& out, const qkString& text);
template <class T>
qkCStream& tmOutTpl(qkCStream& out, const T& value)
{
    qkString text;
    text << value;
    return out << text;
}
inline qkCStream& operator<<(qkCStream& out, const char* value)
{
    return tmOutTpl(out, value);
}
inline qkCStream& operator<<(qkCStream& out, int value)
{
    return tmOutTpl(out, value);
}
inline qkCStream& operator<<(qkCStream& out, double value)
{
    return tmOutTpl(out, value);
}

// The summary's stream: always passes its own level. A type of its own, so that reports can tell it apart.
class qkUStream : public qkOStream {
public:
    qkUStream() : qkOStream(1, ERR) {}
};

extern qkCStream g_cstrm;
extern qkCStream g_qstrm;
extern qkCStream g_mstrm;
extern qkUStream g_ustrm;

#endif
