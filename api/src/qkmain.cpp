// The program. A suite may have registered a session of its own; otherwise the plain one runs.
#include "qkmem.h"
#include "qksession.h"

int main(int argc, char** argv)
{
    g_trace.traceIn("main");
    if (!pSession) pSession = new qkSession;
    const int exitCode = pSession->run(argc, argv);
    qkFreeAll();
    g_trace.traceOut("main");
    return exitCode;
}
