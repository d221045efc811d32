// Descriptions of the machine for the title of the reports.
#ifndef QK_HOST_H
#define QK_HOST_H

#include "qkstring.h"

class qkHost {
public:
    qkHost();
    qkString m_text; // name of the computer, its architecture and memory
};

class qkOS {
public:
    qkOS();
    qkString m_text; // name and release of the system

    // The name for people that an os-release file holds; empty without the file or the line.
    static qkString prettyName(const qkString& path);
};

#endif
