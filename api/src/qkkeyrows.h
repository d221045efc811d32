// The rows of the key table, in the order of the help.
#ifndef QK_KEYROWS_H
#define QK_KEYROWS_H

#include "qkcommand.h"

struct KeyRow {
    enum Offer { always, withQKeys, withLibrary, never };

    char key;
    Offer offer;
    bool hidden;
    const char* help;
    qkOption::Info info;
    qkOption::Apply apply;
    const char* descr;
};

extern const KeyRow keyRows[];
extern const int numKeyRows;

#endif
