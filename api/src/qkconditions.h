// Which tests run: the conditions of the keys -f (function), -t (test) and -m (source file), joined by AND or
// OR.
#ifndef QK_CONDITIONS_H
#define QK_CONDITIONS_H

#include "qklist.h"
#include "qkstring.h"

class qkTest;

class RunCondition {
public:
    enum Class { byFunction = 0, byTest = 1, byFile = 2 };
    enum Kind { mustHold = 0, anyOf = 1, exact = 2 };

    RunCondition(Class cls, Kind kind, const qkString& pattern)
        : m_kind(kind), m_class(cls), m_pattern(pattern)
    {
    }
    virtual ~RunCondition() = default;
    virtual bool tobeRun(const qkTest* test) const = 0;

    int m_kind;
    int m_class;
    qkString m_pattern;
};

// RunCondition_f, _fAnd, _fNot, _fEqual and the same with t and s stand in qkconditions.cpp; this makes them.
// sign: what getCondition answered, 0 to 3.
RunCondition* newRunCondition(RunCondition::Class cls, int sign, const qkString& pattern);

// Reads the sign of a key's argument and removes it: 0 none, 1 '+', 2 '-', 3 '='; 4: the pattern is empty.
int getCondition(qkString& arg);

class qkConditions : public qkList<RunCondition*> {
public:
    ~qkConditions() override; // deletes the conditions

    bool tobeRun(const qkTest* test) const;
    bool tobeRun(const qkTest* test, int cls) const;
    bool tobeRun_or(const qkTest* test, int cls, int kind) const;
    bool tobeRun_and(const qkTest* test, int cls) const;
    int count(int cls) const;
    int count(int cls, int kind) const;

    int m_logic = 0; // 0 AND, 1 OR
};

#endif
