// The course of a session, from the command line to the closing report.
#include "qksession.h"

#include <ctime>

#include "qkcpuid.h"
#include "qkcstream.h"
#include "qkinfotest.h"
#include "qkistream.h"
#include "qklibenv.h"
#include "qkreport.h"
#include "qktest.h"

const char* const extIni = ".ini";
const char* const extCsv = ".csv";
const char* const extOut = ".txt";
const char* const extSgl = ".end";
const char* const extName = "_name.csv";
const char* const extSum = "_sum.csv";
const char* const extMem = "_mem.csv";

const char* const qkVersion = "2.0";

char s_hintArg = 0;
bool s_hintHide = true;
bool s_version = false;

qkCommandList* qkSession::pCmdList = nullptr;
int qkSession::m_nameMode = 0;
bool qkSession::m_nameExit = false;
int qkSession::m_exitLevel = 0;

namespace {

constexpr int noEnumeration = 100;
constexpr int askMethodAndParameters = 1 | 2; // what is asked with neither -A nor -B
constexpr int askEachTest = 8;
constexpr OutputLevel dialogueLevel = ERR | WARN | PERF; // up to the first test

void deleteTestList()
{
    delete pTestList;
    pTestList = nullptr;
}

int exitLevelOf(const qkCommandList& keys)
{
    if (keys.isKey('?') || keys.isKey('h')) return 2;
    if (keys.isKey('e')) return 1;
    return keys.isKey('v') ? 3 : 0;
}

// The argument of the last occurrence of the key; empty if there is none.
qkString lastArg(const qkCommandList& keys, char key)
{
    qkString arg;
    if (keys.isKey(key)) keys.getArg(key, arg);
    return arg;
}

} // namespace

qkSession::~qkSession()
{
    delete m_conditions;
    for (auto option = m_options.begin(); option != m_options.end(); ++option) delete *option;
}

void qkSession::initSession()
{
    m_conditions = new qkConditions;
    m_batch = false;
    m_noSort = false;
    m_askMode = 0;
    m_enumMode = noEnumeration;
    m_levelMode = ERR;
    initKeyTable();
}

int qkSession::run(int argc, char** argv)
{
    g_ostrm.setMsgLevel(PERF);
    g_ostrm.addStream(c_out);
    setQovEnvironment();
    initSession();
    qkRegTest(new __qkVorexCpuTest);
    pTestList->m_startTime = std::time(nullptr);

    bool footer = false;
    bool failed = false;
    if (parseCommandLine(argc, argv) && startSession() && !hintOutput()) {
        prepare();
        if (!enumOutput()) {
            footer = true;
            failed = measure();
        }
    }

    pTestList->m_stopTime = std::time(nullptr);
    if (footer) outputFooter();
    // The signal file tells a waiting script that all other files are complete.
    g_istrm.deleteIniFile();
    g_ostrm.flush();
    outputSignal();
    deleteTestList();
    return failed ? 1 : 0;
}

void qkSession::prepare()
{
    if (qovEnvironment) {
        initStaticCpu();
        setNumThreads();
        setQovEnvironment();
    }
    setQovLibInfo();
    if (!m_noSort) {
        // A sign of life for the console alone, past levels and text files.
        c_out << "Sorting functions...";
        pTestList->sortFunc();
        c_out << "\n";
    }
    pTestList->startWithCpuTest();
    outputHeader();
}

bool qkSession::measure()
{
    if (s_parmFunc) s_parmFunc();
    selectTestParameters();
    beginCommonData();
    readCommonData();
    endCommonData();
    if (!g_pHotList) g_pHotList = new qkStringList;
    putTableTitle();
    return pTestList->runTests(*m_conditions);
}

bool qkSession::parseCommandLine(int argc, char** argv)
{
    m_exePath = argc > 0 ? argv[0] : "";
    m_askMode = 0;
    m_batch = false;
    m_noSort = false;
    m_enumMode = noEnumeration;
    m_nameMode = 0;
    m_nameExit = false;
    m_badFile = false;
    m_iniName = "";

    takeCommandLine(argc, argv);
    m_exitLevel = exitLevelOf(*pCmdList);

    // Ahead of all other keys, so that their order does not matter for the paths that those form.
    setInDir(lastArg(*pCmdList, 'p'));
    setOutDir(lastArg(*pCmdList, 'l'));
    setDefName(lastArg(*pCmdList, 'n'));

    g_ostrm.setOutLevel(dialogueLevel);
    expandKeyFiles();
    for (auto key = pCmdList->begin(); key != pCmdList->end(); ++key) applyOption(key->m_key, key->m_arg);
    g_ostrm << m_keyReport;
    m_keyReport = "";

    if (m_badFile) {
        g_ostrm << "FATAL ERROR: can't open output file for writing\n";
        return false;
    }
    // Without an ini file to read, parameters have their defaults.
    if (!m_iniName.empty() && !g_istrm.setIniFile(m_iniName, m_iniWrite) && m_iniWrite) {
        g_ostrm << "FATAL ERROR: can't open ini-file for writing\n";
        return false;
    }
    updateOptions();
    return true;
}

// The first source that has something: arguments, the .cfg file, the compiled-in line.
void qkSession::takeCommandLine(int argc, char** argv)
{
    delete pCmdList;
    pCmdList = new qkCommandList;
    m_keyReport = "Command line options: ";

    qkString args;
    qkString name;
    if (argc >= 2) {
        pCmdList->setArgs(argc, argv);
        m_keyReport += "\n";
    } else if (readCfgFile(args, name)) {
        pCmdList->setArgs(args.c_str());
        m_keyReport += qkString("read from ") + name + " file\n";
    } else if (pCmdLine) {
        pCmdList->setArgs(pCmdLine->c_str());
        m_keyReport += "set by _FORCE_CMDLINE preprocessor definition\n";
    } else {
        m_keyReport = "";
    }
}

// The first line of a file that is named as the executable, in the current directory or in the executable's.
bool qkSession::readCfgFile(qkString& args, qkString& name)
{
    name = m_exePath.getFileTitle() + ".cfg";
    const qkString places[] = {name, m_exePath.getFileDir() + name};
    for (const qkString& path : places) {
        io_stream file(path, ioRead | ioRawPath, false);
        if (!file.isOpen()) continue;
        char line[1024] = "";
        bool eof = false;
        getlinebuf(file.m_file, line, sizeof line, eof);
        args = eof ? "" : line;
        return true;
    }
    return false;
}

void qkSession::updateOptions()
{
    qkOption* cpuOption = getOption('T');
    const int tab = cpuOption ? cpuOption->m_descr.find("\t") : qkString::npos;
    if (tab != qkString::npos) {
        const qkString descr = cpuOption->m_descr;
        cpuOption->m_descr = descr.substr(0, tab) + qkCpuType::optimizedList() + descr.substr(tab + 1);
    }
    if (m_batch)
        m_askMode = 0;
    else if (m_askMode == 0)
        m_askMode = askMethodAndParameters;
}

bool qkSession::hintOutput()
{
    if (!s_version && !s_hintArg) return false;
    g_ostrm << "\nqov library, measuring harness Quolkit, version " << qkVersion << ", " << __DATE__ << "\n";
    if (s_hintArg) hint(s_hintArg, s_hintHide);
    return true;
}

bool qkSession::enumOutput()
{
    if (m_enumMode > 1) return false;
    listTests(m_enumMode);
    return true;
}

void qkSession::listTests(int mode)
{
    qkReportTitle title(*pTestList);
    g_ostrm << title;
    g_cstrm << title;
    qkReportList list(*pTestList, *m_conditions, mode);
    g_ostrm << list;
    g_cstrm << list;
}

void qkSession::outputHeader()
{
    qkReportTitle title(*pTestList);
    g_ostrm << title;
    g_cstrm << title;
    g_qstrm << title;
    g_ustrm << title;
    qkReportTestResult summaryHead(nullptr);
    g_ustrm << summaryHead;
}

void qkSession::outputFooter()
{
    qkReportEnd end(*pTestList);
    g_ostrm << end;
    g_ustrm << end;
}

void qkSession::outputSignal()
{
    if (m_signalName.empty()) return;
    o_stream file(m_signalName, ioWrite | ioRawPath, true);
    if (!file.isOpen()) return; // a stream without a file would write to the console
    const double seconds = std::difftime(pTestList->m_stopTime, pTestList->m_startTime);
    file << qkReportFormat::getTimeStr(static_cast<int>(seconds)) + "\n";
    file << qkString(std::ctime(&pTestList->m_stopTime)) + "\n";
}

qkString qkSession::getExitInfo()
{
    switch (m_exitLevel) {
    case 1: return "ignored because of -e option";
    case 2: return "ignored because of -h option";
    case 3: return "ignored because of -v option";
    default: return "ignored";
    }
}

void qkSession::setIniMode(const qkString& name, bool write)
{
    m_iniName = name;
    m_iniWrite = write;
}

void qkSession::addCondition(RunCondition* condition)
{
    m_conditions->append(condition);
}

void qkSession::logicCondition(int logic)
{
    m_conditions->m_logic = logic;
}

void qkSession::setSglName(const qkString& arg)
{
    m_signalName = genOutPath(arg, extSgl);
}

void qkSession::beginCommonData()
{
    g_ostrm.setOutLevel(dialogueLevel);
}

void qkSession::readCommonData()
{
    bool asked = readTimingMethod();
    asked |= readTestParameters();
    asked |= readDataOffset();
    if (asked) g_ostrm << ERR << getEnterTitle("End of common specifications") << END_MSG;
}

void qkSession::endCommonData()
{
    g_ostrm.setOutLevel(m_levelMode);
    if (!(m_askMode & askEachTest)) g_istrm.setIStream(nullptr);
}

// Leaves in the list of common parameters only those that a chosen test uses. Tests are started for it, which
// must not ask anything.
void qkSession::selectTestParameters()
{
    if (!g_pParmList) return;
    const bool batch = m_batch;
    const int askMode = m_askMode;
    m_batch = true;
    m_askMode = 0;
    pTestList->selectCommonParms(*m_conditions, *g_pParmList);
    m_batch = batch;
    m_askMode = askMode;
}
