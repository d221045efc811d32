// qkTool measures one parameter set of one function: clocks per call. It chooses the number of calls so that
// the total lies well above timer noise, and repeats until two measurements agree within the accuracy.
#ifndef QK_TOOL_H
#define QK_TOOL_H

#include <ctime>

#include "qkresult.h"
#include "qkstring.h"

class qkTool;

using qkFuncLoop = qkResult (*)(int numLoops, long long* clocks);
using qkFuncStat = qkResult (*)(int* numCalls, long long* clocks);
using qkFuncCall = int (*)();
using qkFuncOld = qkResult (*)(qkTool& tool, int numLoops);

class qkTool {
public:
    enum Method { Auto = 0, Manual = 1, Statistic = 2, Iterative = 3 };

    qkTool();
    qkTool(const qkTool&) = default;
    qkTool& operator=(const qkTool&) = default;
    virtual ~qkTool();

    void setMethodAuto();
    void setMethodLoop(int loops);
    void setMethodStat(int numCalls, long long totalClocks);
    void setMethodBest(int start, int stop, long long minClocks);
    // False, and the arguments stay, if the method is another.
    bool getMethodAuto() const;
    bool getMethodLoop(int& loops) const;
    bool getMethodStat(int& numCalls, long long& totalClocks) const;
    bool getMethodBest(int& start, int& stop, long long& minClocks) const;
    static void getAutoParameters(int& start, int& stop, long long& minClocks);
    void setLoopFactor(int factor);
    void setFuncTicks(double clocks) { m_funcClocks = clocks; }
    void reset();
    static qkString getAccuracyStr(double accuracy);

    qkResult timing(qkFuncOld funcOld);
    qkResult timing(qkFuncLoop funcLoop, qkFuncStat funcStat, qkFuncCall funcCall, qkFuncCall funcInit);
    void ctrlStart();
    void ctrlStop();

    static double computeAccuracy(double a, double b);
    static double computeAccuracy(const double* values, int n);
    static double computeBest(const double* values, int n);
    static int roundUpToPow2(int value);
    static qkString clockStr(long long clocks);

    // Turns the status of a call into a result; null: every status is good.
    static qkResult (*m_pCheckStatus)(int status);
    static int m_priority; // 0 none, 1 high, 2 normal, 3 low

    qkResult m_result = UNDEFINED;
    double m_funcClocks = 0;
    int m_numLoops = 0;
    double m_accuracy = 0.05;
    int m_method = Auto;
    int m_loops = 10;
    int m_startLoops = 1;
    int m_stopLoops = 2048;
    bool m_useStat = false;
    bool m_dataUse = false;
    long long m_minClocks = 100;
    int m_numCalls = 12;
    long long m_totalClocks = 10000;
    bool m_initBeforeStart = false;
    bool m_watchStatus = false;
    qkString m_resultText;
    qkString m_info; // comment for the table, such as "nLps=32 acc=7.1%"
    long long m_numClocks = 0;
    double m_accResult = 1.0;
    int m_startFactor = 0;
    int m_stopFactor = 0;
    std::time_t m_startTime;
    std::time_t m_stopTime;
    qkFuncLoop m_funcLoop = nullptr;
    qkFuncStat m_funcStat = nullptr;
    qkFuncCall m_funcCall = nullptr;
    qkFuncCall m_funcInit = nullptr;

private:
    // The four methods. They leave their outcome in the fields.
    void autoLoopTiming();
    void customLoopTiming();
    void statisticTiming();
    void bestTiming(int start, int stop, long long minClocks);

    // Steps of bestTiming. The bool ones tell whether there is a measurement to report.
    bool priorMeasurement(int start, long long& maxLoops, long long minClocks);
    bool iterate(long long maxLoops);
    bool avoidBadStatus();
    bool exitBestTiming(qkResult result);
    void reportAccuracy();
    qkResult startIterations(int numLoops, long long minClocks);
    qkResult continueIterations(long long startLoops, long long maxLoops);
    qkResult repeatTiming(int count);

    // One measurement: clocks per call.
    void runTimFunc(int numLoops, double* result, bool forceLoop);
    void runTimFuncStat(int& numCalls, double* result);
    qkResult measure(bool loop, int& numCalls);
    qkResult callFunction(bool loop, int& numCalls);
    qkResult timCall_Loop(int numLoops, bool reset);
    qkResult timCall_Stat(int& numCalls, bool reset);
    void updateResult(qkResult status);
    // Tells where the harness itself is wrong; FAIL.
    static qkResult internalError(const char* file = __builtin_FILE(), int line = __builtin_LINE());

    // The story of a measurement: shown at info level as it goes, and as a whole when the measurement failed.
    void writeInfo(const qkString& text);
    void writeError();
    const char* countName() const { return m_useStat ? "numCalls" : "numLoops"; }

    qkString m_history;
};

class qkCpuTicker {
public:
    static int m_freqMHz; // 0 until measured
    static int getFreq(); // MHz; the first call takes two to three seconds
    static int getClockFactor() { return 1; }
};

void qkSetPriority(int priority);
void qkResetPriority();

// The tool whose method and accuracy the session reads; every test starts with a copy of it.
extern qkTool g_tool;

#endif
