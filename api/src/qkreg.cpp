// The lists that registration fills. Everything here is a pointer or a scalar with a constant initial value,
// so it is valid before the first constructor of the program runs.
#include "qkreg.h"

#include "qktest.h"

qkSession* pSession = nullptr;
qkTestList* pTestList = nullptr;
qkList<qkParameter*>* g_pParmList = nullptr;
qkStringList* g_pHotList = nullptr;
qkString* pCmdLine = nullptr;
void (*s_parmFunc)() = nullptr;
bool qKeys = true;
void (*qovEnvironment)() = nullptr;
qkList<const QovLibraryVersion* (*)()>* qovVersionList = nullptr;
void (*initTimingMethod)(qkTool& tool) = nullptr;

namespace {

template <class List>
List& made(List*& list)
{
    if (!list) list = new List;
    return *list;
}

} // namespace

bool qkRegTest(qkTest* test)
{
    made(pTestList).append(test);
    return true;
}

bool qkRegParm(qkParameter& parm)
{
    made(g_pParmList).append(&parm);
    return true;
}

void qkRegParmFunc(void (*func)())
{
    s_parmFunc = func;
}

bool qkRegCmdLine(const qkString& line)
{
    made(pCmdLine) += qkString(" ") + line;
    return true;
}

bool qkRegQKeys()
{
    qKeys = true;
    return true;
}

bool qkRegHotFunction(const qkString& name)
{
    made(g_pHotList).append(name);
    return true;
}

bool qkRegSession(qkSession* session)
{
    pSession = session;
    return true;
}

bool qkRegQovEnvironment(void (*fill)())
{
    qovEnvironment = fill;
    return true;
}

bool qkRegQovVersion(const QovLibraryVersion* (*getter)())
{
    made(qovVersionList).append(getter);
    return true;
}

bool qkRegTimingMethod(void (*init)(qkTool& tool))
{
    initTimingMethod = init;
    return true;
}
