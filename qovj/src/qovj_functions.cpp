// The functions that the library's headers declare, so that the harness can tell which of them have no test.
#include "qklibenv.h"

static bool regFunctions()
{
    static const char* const names[] = {
#include "qovj_functions.inc"
    };
    for (const char* name : names) qkRegLibFunc(name);
    return true;
}

static const bool regLibFunctions = regFunctions();
