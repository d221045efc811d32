#include "qkconditions.h"

#include "qktest.h"

static const qkString& comparedText(RunCondition::Class cls, const qkTest* test)
{
    switch (cls) {
    case RunCondition::byFunction: return test->name();
    case RunCondition::byTest: return test->info().m_class;
    default: return test->fileName();
    }
}

static bool contains(const qkString& text, const qkString& pattern)
{
    return text.contains(pattern);
}

static bool lacks(const qkString& text, const qkString& pattern)
{
    return !text.contains(pattern);
}

static bool equals(const qkString& text, const qkString& pattern)
{
    return text == pattern;
}

namespace {
template <RunCondition::Class cls, RunCondition::Kind kind, bool (*fits)(const qkString&, const qkString&)>
class ConditionOf final : public RunCondition {
public:
    explicit ConditionOf(const qkString& pattern) : RunCondition(cls, kind, pattern) {}
    bool tobeRun(const qkTest* test) const override { return fits(comparedText(cls, test), m_pattern); }
};

template <RunCondition::Class cls>
using PlainOf = ConditionOf<cls, RunCondition::anyOf, contains>;
template <RunCondition::Class cls>
using AndOf = ConditionOf<cls, RunCondition::mustHold, contains>;
template <RunCondition::Class cls>
using NotOf = ConditionOf<cls, RunCondition::mustHold, lacks>;
template <RunCondition::Class cls>
using EqualOf = ConditionOf<cls, RunCondition::exact, equals>;

using RunCondition_f = PlainOf<RunCondition::byFunction>;
using RunCondition_fAnd = AndOf<RunCondition::byFunction>;
using RunCondition_fNot = NotOf<RunCondition::byFunction>;
using RunCondition_fEqual = EqualOf<RunCondition::byFunction>;
using RunCondition_t = PlainOf<RunCondition::byTest>;
using RunCondition_tAnd = AndOf<RunCondition::byTest>;
using RunCondition_tNot = NotOf<RunCondition::byTest>;
using RunCondition_tEqual = EqualOf<RunCondition::byTest>;
using RunCondition_s = PlainOf<RunCondition::byFile>;
using RunCondition_sAnd = AndOf<RunCondition::byFile>;
using RunCondition_sNot = NotOf<RunCondition::byFile>;
using RunCondition_sEqual = EqualOf<RunCondition::byFile>;

template <class Condition>
RunCondition* create(const qkString& pattern)
{
    return new Condition(pattern);
}

using Creator = RunCondition* (*)(const qkString& pattern);

// By class and by sign: none, '+', '-', '='.
const Creator s_creators[3][4] = {
    {create<RunCondition_f>, create<RunCondition_fAnd>, create<RunCondition_fNot>,
     create<RunCondition_fEqual>},
    {create<RunCondition_t>, create<RunCondition_tAnd>, create<RunCondition_tNot>,
     create<RunCondition_tEqual>},
    {create<RunCondition_s>, create<RunCondition_sAnd>, create<RunCondition_sNot>,
     create<RunCondition_sEqual>},
};
} // namespace

RunCondition* newRunCondition(RunCondition::Class cls, int sign, const qkString& pattern)
{
    return s_creators[cls][sign](pattern);
}

int getCondition(qkString& arg)
{
    const int emptyPattern = 4;
    int sign = 0;
    switch (arg[0]) {
    case '+': sign = 1; break;
    case '-': sign = 2; break;
    case '=': sign = 3; break;
    default: break;
    }
    if (sign != 0) arg = arg.substr(1);
    return arg.empty() ? emptyPattern : sign;
}

qkConditions::~qkConditions()
{
    for (RunCondition* condition : *this) delete condition;
}

bool qkConditions::tobeRun(const qkTest* test) const
{
    if (empty()) return true;
    const bool isOr = m_logic != 0;
    for (int cls = RunCondition::byFunction; cls <= RunCondition::byFile; cls++) {
        if (count(cls) != 0 && tobeRun(test, cls) == isOr) return isOr;
    }
    return !isOr;
}

bool qkConditions::tobeRun(const qkTest* test, int cls) const
{
    if (tobeRun_or(test, cls, RunCondition::exact)) return true;
    if (count(cls, RunCondition::exact) == count(cls)) return false;
    if (count(cls, RunCondition::anyOf) != 0 && !tobeRun_or(test, cls, RunCondition::anyOf)) return false;
    return tobeRun_and(test, cls);
}

// One of the conditions of a kind fits.
bool qkConditions::tobeRun_or(const qkTest* test, int cls, int kind) const
{
    for (const RunCondition* condition : *this) {
        if (condition->m_class == cls && condition->m_kind == kind && condition->tobeRun(test)) return true;
    }
    return false;
}

// Each condition that must hold does.
bool qkConditions::tobeRun_and(const qkTest* test, int cls) const
{
    for (const RunCondition* condition : *this) {
        const bool needed = condition->m_class == cls && condition->m_kind == RunCondition::mustHold;
        if (needed && !condition->tobeRun(test)) return false;
    }
    return true;
}

int qkConditions::count(int cls) const
{
    int n = 0;
    for (const RunCondition* condition : *this) n += condition->m_class == cls;
    return n;
}

int qkConditions::count(int cls, int kind) const
{
    int n = 0;
    for (const RunCondition* condition : *this) n += condition->m_class == cls && condition->m_kind == kind;
    return n;
}
