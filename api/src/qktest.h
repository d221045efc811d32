// A test: one function under measurement with its parameter space. qkTest fixes the order in which the hooks
// of a test run, loops over the parameter sets, asks qkTool for the clocks, merges the outcome into one
// result and writes the text and table lines. qkTestList holds all registered tests, sorts them and runs
// them.
#ifndef QK_TEST_H
#define QK_TEST_H

#include <ctime>

#include "qkparm.h"
#include "qkresult.h"
#include "qktool.h"

class qkCacheIterator;
class qkConditions;
class qkObject;
using qkCacheUpdate = bool (*)(qkParameter* parm, int current, int target, bool fast);

// Read from "class/description/macro".
class qkTestInfo {
public:
    explicit qkTestInfo(const qkString& text);
    qkString m_class;
    qkString m_description;
    qkString m_macro;
};

class qkTest {
public:
    // `file` is the path of the source unit without its extension; the test keeps its last part ("p_jadd").
    qkTest(qkFuncOld funcOld, const qkString& name, const qkString& file, const qkString& info);
    qkTest(qkFuncLoop funcLoop, qkFuncStat funcStat, const qkString& name, const qkString& file,
           const qkString& info);
    qkTest(qkFuncCall funcCall, qkFuncCall funcInit, qkFuncLoop funcLoop, qkFuncStat funcStat,
           const qkString& name, const qkString& file, const qkString& info);
    qkTest(const qkTest&) = delete;
    qkTest& operator=(const qkTest&) = delete;

    // Hooks, in the order that suites count on.
    virtual ~qkTest();
    virtual bool tobeRun(qkConditions& conditions);
    virtual qkResult run();
    virtual int compareFunc(const qkTest* other) const;
    virtual void putTableResult_Deprecated(qkResult result);
    virtual bool canStart() { return true; }
    virtual void flushStart() {}
    virtual bool canContinue();
    virtual bool initData() { return true; }
    virtual void flushData() {}
    virtual qkResult runTiming();
    virtual double getFlops() { return -1.0; }
    virtual double getDivisor() { return 1.0; }
    virtual qkString getUnit() { return " "; }
    virtual void funcToCstrm();
    virtual void parmsFromIstrm();
    virtual void parmsToOstrm();
    virtual void parmsToCstrm();
    virtual void parmsNameToCstrm();
    virtual void resultToCstrm(qkResult result);
    virtual void constToOstrm() {}
    virtual void beginTest() {}
    virtual void endTest() {}
    virtual qkString getComment();
    virtual bool isFloatFunction() { return getFlops() > 0; }
    virtual bool isHotLine();
    virtual void initSettings(); // called by the constructors, so never a subclass's own
    virtual int printAllMemoryBlocks(const qkString& title);
    virtual qkString formatClocks(double clocks);
    virtual qkString regInfo();
    virtual void putTableParms();
    virtual void putTableResult(qkResult result);
    virtual void putTextParms();
    virtual void putTextParms(MessageLevel level);
    virtual void loopData();
    virtual void outputResult(qkResult result);
    virtual void outputConst() { constToOstrm(); }
    virtual void outputRegInfo();
    virtual void putTextResult(qkResult result);

    // A negative `align` counts multiples of the session's misalignment.
    static void* allocate(int size, int align);
    static void* allocate(int size, int align, void* object);
    static void deallocate(void* block);

    // Appends a size parameter to m_parms; with -C the first one is wrapped by a cache iterator.
    void regCacheParm(qkIterator<int>& parm, qkObject* object, qkCacheUpdate update);
    void regCacheParm(qkStepIterator<int>& parm, qkObject* object, qkCacheUpdate update);

    // beginTest, canStart, flushStart, endTest, silently: tells which parameters the test will use.
    void startAndStop();
    bool setIniSection(const qkString& name);
    bool setDeprecatedFlag(bool on);

    void initCtrlStatus();
    static bool badCtrlStatus(bool& bad87, bool& badSSX);
    static void printCtrlStatus(bool bad87, bool badSSX);
    static void clearCtrlStatus();
    qkResult checkCtrlStatus();

    double performance(bool flops);
    qkString perfString(bool flops);
    void putTableName();
    void putTableNameLine();
    void putTextError(qkResult result);
    qkString testResultString();
    void setTimingResult(double clocks, const qkString& comment);
    static int reserveAllVectors();
    static int resetAllVectors();

    const qkString& name() const { return m_name; }
    const qkString& fileName() const { return m_fileName; }
    const qkTestInfo& info() const { return m_info; }
    qkTool& tool() { return m_tool; }
    qkResult result() const { return m_result; }
    std::time_t startTime() const { return m_startTime; }
    std::time_t stopTime() const { return m_stopTime; }
    bool bad87() const { return m_bad87; }
    bool badSSX() const { return m_badSSX; }
    qkList<qkParameter*>& parms() { return m_parms; }
    qkCacheIterator* cacheIterator() const { return m_cacheIter; }
    void dropCacheIterator();

    static qkResult m_currentResult; // merged result of the running test
    static int m_numParmsColm;       // columns of the performance table
    static int m_numResultColm;
    static int m_hot;         // -H: 1, -HONLY: 2
    static bool m_pressing;   // -P: run only what the ini file names
    static bool m_cache;      // -C
    static int m_vectorNum;   // allocations of the present parameter set
    static int m_vectorShift; // and their mutual shift

    static void raiseResult(qkResult result) { m_currentResult = qkWorse(m_currentResult, result); }

protected:
    void wrapCacheParm(qkCacheIterator* iterator);

    bool m_deprecated = false; // the deprecated table line is being written
    std::time_t m_startTime = 0;
    std::time_t m_stopTime = 0;
    qkString m_name;
    qkString m_fileName;
    qkTestInfo m_info;
    qkTool m_tool;
    qkResult m_result = UNDEFINED;
    qkFuncLoop m_funcLoop = nullptr;
    qkFuncStat m_funcStat = nullptr;
    qkFuncCall m_funcCall = nullptr;
    qkFuncCall m_funcInit = nullptr;
    qkFuncOld m_funcOld = nullptr;
    bool m_firstData = true; // no parameter set has been taken yet
    bool m_bad87 = false;
    bool m_badSSX = false;
    qkList<qkParameter*> m_parms; // the first is outermost
    qkCacheIterator* m_cacheIter = nullptr;
    bool m_cacheFail = false; // the cache iterator's last size was refused

private:
    class CommonValues;

    template <class Body>
    bool guarded(Body body);
    bool runHooks(CommonValues& common);
    void putTitle();
    void readAndMeasure(CommonValues& common);
    void finish();
    void putException(const qkException& exception);
    bool repeatCacheSize();
    void measureSet(bool& firstSet);
    qkResult timeSet();
    const char* measuredForm() const;

    qkString m_traceLine; // what the trace showed before the loop over the parameter sets
};

// Called around all tests and around each. They do nothing; a program that defines its own gets those.
void beforeAll();
void beforeTest();
void afterTest(qkTest* test);

class qkTestList : public qkList<qkTest*> {
public:
    ~qkTestList() override; // deletes the tests

    void sortFunc();
    void startWithCpuTest(); // tests whose name begins with "_" come first
    void selectCommonParms(qkConditions& conditions, qkList<qkParameter*>& parms);
    bool runTests(qkConditions& conditions); // true if a result was of the error class
    void plus(qkResult result);

    std::time_t m_startTime = 0;
    std::time_t m_stopTime = 0;
    int m_numTests = 0;
    int m_counters[qkNumResults] = {}; // WARNING and FAIL are class totals

    static qkTest* m_pCurrentTest;
    static qkString m_startFunc; // -F
};

#endif
