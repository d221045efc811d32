// ScriptTest: a test that writes down which of its hooks run and does in them what a script says. RunFixture:
// an empty harness around it, whose console and tables are texts.
#ifndef TESTS_SCRIPT_TEST_H
#define TESTS_SCRIPT_TEST_H

#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "qkcstream.h"
#include "qkistream.h"
#include "qkreg.h"
#include "qksession.h"
#include "qktest.h"
#include "support/capture.h"

using Strings = std::vector<std::string>;

inline Strings words(const std::string& text)
{
    std::istringstream in(text);
    Strings list;
    for (std::string word; in >> word;) list.push_back(word);
    return list;
}

class ScriptTest : public qkTest {
public:
    explicit ScriptTest(const char* name = "qoviScript", const char* info = "TimScript/what it does/QK_REG")
        : qkTest(nullptr, nullptr, name, "src/p_script", info)
    {
    }

    void beginTest() override
    {
        m_parms.erase(m_parms.begin(), m_parms.end());
        for (qkParameter* parm : m_uses) m_parms.append(parm);
        hook("beginTest");
    }
    bool canStart() override { return hook("canStart"); }
    void flushStart() override { hook("flushStart"); }
    bool initData() override { return hook("initData"); }
    void flushData() override { hook("flushData"); }
    void constToOstrm() override { hook("constToOstrm"); }
    void endTest() override { hook("endTest"); }
    void parmsFromIstrm() override
    {
        hook("parmsFromIstrm");
        qkTest::parmsFromIstrm();
    }
    // Answers the results of the script in turn and then OK.
    qkResult runTiming() override
    {
        hook("runTiming");
        qkString set;
        for (qkParameter* parm : m_parms) set << parm->valueString();
        m_sets.push_back(set.c_str());
        m_tool.m_funcClocks = 1600;
        m_tool.m_info = "nLps=32";
        return m_sets.size() <= m_results.size() ? m_results[m_sets.size() - 1] : OK;
    }
    double getDivisor() override { return 16; }
    double getFlops() override { return m_flops; }

    Strings m_calls;
    Strings m_sets; // the measured parameter sets, values side by side
    std::vector<qkParameter*> m_uses;
    std::vector<qkResult> m_results;
    std::map<std::string, std::function<void()>> m_script;
    std::string m_refuses; // the hook that answers false
    double m_flops = -1;

    using qkTest::m_deprecated;
    using qkTest::m_funcCall;
    using qkTest::m_funcInit;
    using qkTest::m_funcLoop;
    using qkTest::m_funcOld;
    using qkTest::m_funcStat;
    using qkTest::m_stopTime;

private:
    bool hook(const char* name)
    {
        m_calls.push_back(name);
        const auto step = m_script.find(name);
        if (step != m_script.end()) step->second();
        return m_refuses != name;
    }
};

class RunFixture : public testing::Test {
protected:
    static constexpr OutputLevel errors = 1, warnings = 3, performance = 7, traced = 23;

    RunFixture() : m_console(g_ostrm), m_table(g_cstrm), m_names(g_qstrm), m_oldLevel(g_ostrm.outLevel())
    {
        g_ostrm.setOutLevel(performance);
        g_ostrm.setMsgLevel(PERF);
        g_istrm.setIStream(nullptr);
        qkCpuTicker::m_freqMHz = 1000;
        qkTest::m_numParmsColm = 3;
        qkTest::m_numResultColm = 5;
        std::swap(m_parmList, g_pParmList);
        std::swap(m_hotList, g_pHotList);
    }
    ~RunFixture() override
    {
        g_istrm.deleteIniFile();
        g_istrm.setIniSection("Quolkit");
        if (!m_iniPath.empty()) unlink(m_iniPath.c_str());
        g_tool = qkTool();
        g_ostrm.restoreMsgLevel();
        g_ostrm.setOutLevel(m_oldLevel);
        g_cstrm.tableFlush();
        g_trace.erase(g_trace.begin(), g_trace.end());
        qkTest::m_hot = 0;
        qkTest::m_pressing = qkTest::m_cache = false;
        qkSession::m_nameExit = false;
        qkSession::m_nameMode = 0;
        std::swap(m_parmList, g_pParmList);
        std::swap(m_hotList, g_pHotList);
        delete m_parmList;
        delete m_hotList;
    }
    RunFixture(const RunFixture&) = delete;
    RunFixture& operator=(const RunFixture&) = delete;

    void useIniFile(const char* text, bool write)
    {
        m_iniPath = testing::TempDir() + "qk_run_" + std::to_string(getpid()) + ".ini";
        std::ofstream(m_iniPath) << text;
        ASSERT_TRUE(g_istrm.setIniFile(m_iniPath.c_str(), write));
    }

    SinkText<qkOStream> m_console;
    SinkText<qkCStream> m_table;
    SinkText<qkCStream> m_names;
    std::string m_iniPath;

private:
    OutputLevel m_oldLevel;
    qkList<qkParameter*>* m_parmList = nullptr;
    qkStringList* m_hotList = nullptr;
};

inline void fill(qkIterator<int>& parm, std::initializer_list<int> values)
{
    for (const int value : values) parm.add(value);
}

#endif
