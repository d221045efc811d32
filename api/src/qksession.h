// qkSession turns a command line into one measuring run: it reads the keys, opens the files, fixes timing
// method and common parameters, sorts the tests, runs each that passes the conditions, and writes the closing
// report.
#ifndef QK_SESSION_H
#define QK_SESSION_H

#include "qkcommand.h"
#include "qkconditions.h"
#include "qkreg.h"
#include "qkstream.h"

// Default extensions of the files.
extern const char* const extIni;
extern const char* const extCsv;
extern const char* const extOut;
extern const char* const extSgl;
extern const char* const extName;
extern const char* const extSum;
extern const char* const extMem;

extern const char* const qkVersion; // "2.0"

// -h, -? and -v.
extern char s_hintArg;
extern bool s_hintHide;
extern bool s_version;

class qkSession {
public:
    qkSession() = default;
    qkSession(const qkSession&) = delete;
    qkSession& operator=(const qkSession&) = delete;

    virtual ~qkSession();
    virtual void initSession();
    virtual int run(int argc, char** argv);
    virtual void funcTitleToCStream();
    virtual void parmsTitleToCStream();
    virtual void resultTitleToCStream();
    virtual void putTableTitle();
    virtual void putTableTitleLine();
    virtual bool startSession() { return true; }
    virtual void updateOptions();
    virtual bool parseCommandLine(int argc, char** argv);
    virtual void listTests(int mode);
    virtual void hint(char key, bool hide);
    virtual void hint_quick(bool hide);
    virtual void hint_full(bool hide);
    virtual void hint_descr(char key);
    virtual void outputHeader();
    virtual void outputFooter();
    virtual void outputSignal();
    virtual void readCommonData();

    bool hintOutput();
    bool enumOutput();

    // Keys.
    void initOption(char key, const qkString& help, qkOption::Info info, qkOption::Apply apply,
                    const qkString& descr, bool hidden);
    qkOption* getOption(char key) const;
    void applyOption(char key, const qkString& arg);
    static bool isExit(int level) { return m_exitLevel >= level; }
    static qkString getExitInfo();
    void addAskMode(int mode) { m_askMode |= mode; }
    void setBatch() { m_batch = true; }
    void setNoSort(bool on) { m_noSort = on; }
    void setEnumMode(int mode) { m_enumMode = mode; }
    void addLevelMode(OutputLevel level) { m_levelMode |= level; }
    void setIniMode(const qkString& name, bool write);
    void addCondition(RunCondition* condition);
    void logicCondition(int logic);
    void unopenedFile() { m_badFile = true; }
    void setSglName(const qkString& arg);
    bool readCfgFile(qkString& args, qkString& name);

    // Common data.
    static qkString getEnterTitle(const qkString& text);
    void beginCommonData();
    void endCommonData();
    bool readTimingMethod();
    void readAccuracy(int method);
    bool readTestParameters();
    bool readDataOffset();
    void selectTestParameters();

    static void qkFuncTitleToCStream();
    static void qkParmsTitleToCStream();
    static void qdFuncTitleToCStream();
    static void qdParmsTitleToCStream();

    // Paths. A relative name stands behind the input or output directory, which is the executable's by
    // default.
    static bool isAbsolutePath(const qkString& path);
    static void setInDir(const qkString& dir);
    static void setOutDir(const qkString& dir);
    static void setDefName(const qkString& name);
    static qkString genDirName(const qkString& dir);
    static qkString genPathName(const qkString& dir, const qkString& name, const qkString& ext);
    static qkString genInPath(const qkString& name, const qkString& ext);
    static qkString genOutPath(const qkString& name, const qkString& ext);
    static qkString getInPath(const qkString& path);
    static qkString getOutPath(const qkString& path);

    static qkCommandList* pCmdList;
    static int m_nameMode;  // 1: -q+, 2: a name file of its own
    static bool m_nameExit; // -Q
    static int m_exitLevel; // 0 run, 1 -e, 2 -h or -?, 3 -v
    static qkString m_exePath;
    static qkString m_defName;
    static qkString m_inDir;
    static qkString m_outDir;

protected:
    void initKeyTable();
    void expandKeyFiles();
    bool readTitle(const char* title, int askBit);
    void takeCommandLine(int argc, char** argv);
    void prepare();
    bool measure(); // true if a result was of the error class

    qkConditions* m_conditions = nullptr;
    qkList<qkOption*> m_options;
    // What is asked on the console: 1 timing method, 2 common parameters, 4 misalignment, 8 each test's.
    int m_askMode = 0;
    bool m_batch = false;
    OutputLevel m_levelMode = 1; // of the console, from the first test on
    bool m_noSort = false;
    int m_enumMode = 100; // 100: no enumeration; else the mode of -e
    bool m_badFile = false;
    qkString m_iniName;
    bool m_iniWrite = false;
    qkString m_keyReport;
    qkString m_signalName;
};

#endif
