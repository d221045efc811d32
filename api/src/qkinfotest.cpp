// The information tests. The session registers the processor's; the others are there for a program to
// register.
#include "qkinfotest.h"

#include "qkcpuid.h"
#include "qkhost.h"

static const char* const unit = "qkinfotest";

__qkInfoTest::__qkInfoTest(const qkString& name, const qkString& file, const qkString& info)
    : qkTest(static_cast<qkFuncOld>(nullptr), name, file, info)
{
}

// There are no parameter sets and nothing to measure: having printed is success.
void __qkInfoTest::loopData()
{
    if (g_ostrm.beginMessage(PERF)) {
        printInformation();
        g_ostrm.endMessage();
    }
    raiseResult(OK);
}

__qkVorexCpuTest::__qkVorexCpuTest()
    : __qkInfoTest("__qkVorexCpu", unit, "__qkVorexCpuTest/Vorex CPU information")
{
}

void __qkVorexCpuTest::printInformation()
{
    printCpuIdInfo();
    printFlags();
    printQovFeaturues();
}

__qkOSTest::__qkOSTest() : __qkInfoTest("__qkOS", unit, "__qkOSTest/Operating system information") {}

void __qkOSTest::printInformation()
{
    g_ostrm << qkOS().m_text << "\n";
}

__qkHostTest::__qkHostTest() : __qkInfoTest("__qkHost", unit, "__qkHostTest/Host information") {}

void __qkHostTest::printInformation()
{
    g_ostrm << qkHost().m_text << "\n";
}
