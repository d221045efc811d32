// The lines in which a measurement tells its story: "        numLoops   = 32".
#ifndef QK_INFO_LINE_H
#define QK_INFO_LINE_H

#include "qkformat.h"

template <class T>
qkString qkInfoLine(const char* label, const T& value)
{
    qkString line("        ");
    line << sFormat(qkString(label), -10) << " = " << value << "\n";
    return line;
}

#endif
