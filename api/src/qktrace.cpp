#include "qkstream.h"

void qkTrace::traceLine(const char* what, const qkString& name)
{
    g_ostrm << TRACE;
    const qkString line = m_indent + "*****" + what + name + "\n";
    g_ostrm << line;
    m_lastLine += line;
    flush();
    g_ostrm << END_MSG;
}

void qkTrace::traceIn(const qkString& name)
{
    m_indent += "*";
    traceLine(" trace into   ", name);
    insert(begin(), name);
}

// A name that is not open is tolerated: nothing is closed then, and only the indent is lost.
void qkTrace::traceOut(const qkString& name)
{
    traceLine(" trace out of ", name);
    for (iterator i = begin(); i != end(); ++i) {
        m_indent = m_indent.substr(0, m_indent.length() - 1); // an empty one stays empty
        if (*i != name) continue;
        erase(begin(), ++i);
        return;
    }
}

void qkTrace::flush()
{
    if (static_cast<int>(g_ostrm.msgLevel()) <= g_ostrm.outLevel()) g_ostrm.flush();
}

qkString qkTrace::getCurName() const
{
    return empty() ? qkString() : *begin();
}
