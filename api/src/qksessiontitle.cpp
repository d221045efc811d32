// The head of the performance table and the boxes of the console dialogue.
#include "qkcstream.h"
#include "qksession.h"
#include "qktest.h"

namespace {

void padTo(qkString& line, int column)
{
    if (line.length() < column) line.resize(column, ' ');
}

} // namespace

// Three lines of 79 characters, the text centred in the middle one.
qkString qkSession::getEnterTitle(const qkString& text)
{
    qkString border(" ");
    border.resize(79, '*');
    border += "\n";

    qkString line(" *");
    padTo(line, (80 - text.length()) / 2);
    line += text;
    padTo(line, 78);
    return border + line + "*\n" + border;
}

// With a name file, that file gets the same head as the performance table.
void qkSession::putTableTitle()
{
    putTableTitleLine();
    if (!(m_nameMode & 2)) return;
    g_cstrm.swap(g_qstrm);
    putTableTitleLine();
    g_cstrm.swap(g_qstrm);
}

void qkSession::putTableTitleLine()
{
    funcTitleToCStream();
    parmsTitleToCStream();
    qkTest::m_numParmsColm = g_cstrm.numColm();
    resultTitleToCStream();
    qkTest::m_numResultColm = g_cstrm.numColm() - qkTest::m_numParmsColm;
    g_cstrm.lineOut(0);
}

void qkSession::funcTitleToCStream()
{
    qdFuncTitleToCStream();
}

void qkSession::parmsTitleToCStream()
{
    qdParmsTitleToCStream();
}

void qkSession::resultTitleToCStream()
{
    g_cstrm << "Comment"
            << "Clocks"
            << "per"
            << "Time (usec)"
            << "MFlops";
    if (qkTest::m_hot) g_cstrm << "Interest";
}

void qkSession::qkFuncTitleToCStream()
{
    g_cstrm << "function";
}

void qkSession::qkParmsTitleToCStream()
{
    g_cstrm << "Parm1"
            << "Parm2"
            << "Parm3"
            << "Parm4"
            << "Parm5"
            << "Parm6"
            << "Parm7"
            << "Parm8";
}

void qkSession::qdFuncTitleToCStream()
{
    g_cstrm << "funcBase"
            << "funcDataType"
            << "funcDescriptor";
}

void qkSession::qdParmsTitleToCStream()
{
    g_cstrm << "Len/Size"
            << "Parm1"
            << "Parm2"
            << "Parm3"
            << "Parm4"
            << "scaleFactor";
}
