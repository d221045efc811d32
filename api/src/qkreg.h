// Registration: how suites reach the harness from their static initialisers. Each list is created by the
// first registration that needs it, so any order of initialisers will do.
#ifndef QK_REG_H
#define QK_REG_H

#include "qkstring.h"
#include "qovdefs.h"

class qkParameter;
class qkSession;
class qkTest;
class qkTestList;
class qkTool;

bool qkRegTest(qkTest* test);            // the list owns the test
bool qkRegParm(qkParameter& parm);       // a common parameter, asked once for all tests
void qkRegParmFunc(void (*func)());      // called once before the common parameters are selected
bool qkRegCmdLine(const qkString& line); // a compiled-in command line
bool qkRegQKeys();
bool qkRegHotFunction(const qkString& name);
bool qkRegSession(qkSession* session);
bool qkRegQovEnvironment(void (*fill)()); // fills the library's entry points
bool qkRegQovVersion(const QovLibraryVersion* (*getter)());
bool qkRegTimingMethod(void (*init)(qkTool& tool)); // the default timing method

// All null until the first registration.
extern qkSession* pSession;
extern qkTestList* pTestList;
extern qkList<qkParameter*>* g_pParmList;
extern qkStringList* g_pHotList;
extern qkString* pCmdLine;
extern void (*s_parmFunc)();
extern bool qKeys;
extern void (*qovEnvironment)();
extern qkList<const QovLibraryVersion* (*)()>* qovVersionList;
extern void (*initTimingMethod)(qkTool& tool);

#endif
