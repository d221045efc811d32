// Whole sessions on tests that only note that they run: the order of the steps and the sources of the command
// line. Also the box of the questions and the head of a table of any suite. What is asked, what stops a run,
// its files and its exit code are seen from outside, in the tests of the program.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "qkcstream.h"
#include "qkistream.h"
#include "qklibenv.h"
#include "qksession.h"
#include "qktest.h"
#include "support/tempdir.h"

namespace {

using Strings = std::vector<std::string>;

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

Strings s_steps; // what the session and its tests did, in order

class ProbeTest : public qkTest {
public:
    explicit ProbeTest(const char* name) : qkTest(qkFuncOld(nullptr), name, "unit", "Probe//none") {}
    qkResult run() override
    {
        s_steps.push_back(m_name.c_str());
        return m_result = OK;
    }
};

// The real header measures the clock's frequency for seconds, so this one only notes that it was due.
class TestSession : public qkSession {
public:
    bool startSession() override { return step("start") && m_start; }
    void hint(char, bool) override { step("hint"); }
    void listTests(int mode) override { step("list " + std::to_string(mode)); }
    void outputHeader() override { step("header"); }
    void readCommonData() override { step("common"), qkSession::readCommonData(); }
    void putTableTitle() override { step("title"); }
    void outputFooter() override { step("footer"), qkSession::outputFooter(); }
    void outputSignal() override
    {
        step("signal");
        if (m_iniFolder) m_iniAtSignal = m_iniFolder->read("new.ini");
        qkSession::outputSignal();
    }
    static bool step(const std::string& name)
    {
        s_steps.push_back(name);
        return true;
    }

    bool m_start = true;
    const TempDir* m_iniFolder = nullptr;
    std::string m_iniAtSignal;
};

template <class List>
void drop(List*& list)
{
    delete std::exchange(list, nullptr);
}

class SessionTest : public testing::Test {
protected:
    void SetUp() override
    {
        clear();
        m_oldDir = std::filesystem::current_path();
        ASSERT_NE(std::freopen("/dev/null", "r", stdin), nullptr); // nobody at the console
    }
    void TearDown() override
    {
        std::filesystem::current_path(m_oldDir);
        clear();
    }

    static void clear()
    {
        s_steps.clear();
        g_istrm.setIniSection("Quolkit");
        g_istrm.setIStream(nullptr);
        drop(pTestList);
        drop(g_pHotList);
        drop(pCmdLine);
        s_parmFunc = nullptr;
        qovEnvironment = nullptr;
        qov_Init = nullptr;
    }

    // A session of the executable bin/prog in m_dir. The return value is what it wrote to standard output.
    std::string run(TestSession& session, const Strings& keys)
    {
        s_hintArg = 0;
        s_hintHide = true;
        s_version = false;
        Strings words = {m_dir.path("bin/prog")};
        words.insert(words.end(), keys.begin(), keys.end());
        std::vector<char*> argv;
        for (std::string& word : words) argv.push_back(word.data());
        argv.push_back(nullptr);

        testing::internal::CaptureStdout();
        m_exitCode = session.run(static_cast<int>(words.size()), argv.data());
        const std::string out = testing::internal::GetCapturedStdout();
        g_ostrm.erase(g_ostrm.begin(), g_ostrm.end());
        return out;
    }
    std::string run(const Strings& keys)
    {
        TestSession session;
        return run(session, keys);
    }

    TempDir m_dir;
    std::filesystem::path m_oldDir;
    int m_exitCode = -1;
};

TEST_F(SessionTest, StepsOfARun)
{
    const std::pair<Strings, Strings> rows[] = {
        {{"-B", "-fprobe"},
         {"start", "header", "parmFunc", "common", "title", "probeA", "probeB", "footer", "signal"}},
        {{"-B", "-fprobe", "-s-"},
         {"start", "header", "parmFunc", "common", "title", "probeB", "probeA", "footer", "signal"}},
        {{"-B", "-fnothing"}, {"start", "header", "parmFunc", "common", "title", "footer", "signal"}},
        {{"-e"}, {"start", "header", "list 0", "signal"}},
        {{"-e-"}, {"start", "header", "list -1", "signal"}},
        {{"-h", "-B"}, {"start", "hint", "signal"}},
        {{"-e", "-v"}, {"start", "signal"}},
        {{"-B", "-r/no/such/dir/x.csv"}, {"signal"}},
    };
    for (const auto& [keys, steps] : rows) {
        clear();
        qkRegTest(new ProbeTest("probeB"));
        qkRegTest(new ProbeTest("probeA"));
        qkRegParmFunc([] { TestSession::step("parmFunc"); });
        run(keys);
        EXPECT_EQ(s_steps, steps) << keys[0] << " " << keys.back();
        EXPECT_EQ(m_exitCode, 0);
        EXPECT_EQ(pTestList, nullptr);
    }

    TestSession refusing;
    refusing.m_start = false;
    s_steps.clear();
    run(refusing, {"-B"});
    EXPECT_EQ(s_steps, (Strings{"start", "signal"}));
}

TEST_F(SessionTest, SourceOfTheCommandLine)
{
    m_dir.create("bin");
    m_dir.create("here");
    std::filesystem::current_path(m_dir.path("here"));

    // Nothing at all: no report, and nobody answers the questions.
    const std::string silent = run({});
    EXPECT_FALSE(contains(silent, "Command line options"));
    EXPECT_TRUE(contains(silent, " [Auto] = "));

    // The weakest source first; each further one hides those before it.
    const auto report = [&](const Strings& keys) {
        const std::string out = run(keys);
        return out.substr(0, out.find("\nqov"));
    };
    const std::string head = "Command line options: ";
    const std::string version = "\n-v: type the version number of the Quolkit and exit\n";
    qkRegCmdLine("-v -M");
    EXPECT_EQ(report({}), head + "set by _FORCE_CMDLINE preprocessor definition" + version +
                              "-M: ignored: incorrect option key\n");
    m_dir.write("bin/prog.cfg", "-v -gexe\r\n-B\n");
    EXPECT_EQ(report({}), head + "read from prog.cfg file" + version + "-gexe: create file " +
                              m_dir.path("bin/exe.end") + " at the end of QK work\n");
    m_dir.write("here/prog.cfg", "-v");
    EXPECT_EQ(report({}), head + "read from prog.cfg file" + version);

    // An empty line is a source too, and no more than 1023 characters are read.
    for (const int length : {0, 1023}) {
        m_dir.write("here/prog.cfg", std::string(2 * length, 'x') + "\n-v\n");
        qkString args("old");
        qkString name;
        EXPECT_TRUE(TestSession().readCfgFile(args, name));
        EXPECT_EQ(args.length(), length);
    }
}

TEST_F(SessionTest, TheIniFileIsCompleteBeforeTheSignal)
{
    TestSession session;
    session.m_iniFolder = &m_dir;
    run(session, {"-B", "-fnothing", "-I" + m_dir.path("new.ini")});
    EXPECT_TRUE(contains(session.m_iniAtSignal, "[Quolkit]\nMethod=Auto")) << session.m_iniAtSignal;
}

TEST(EnterTitle, ThreeLinesOf79Characters)
{
    const std::string border = " " + std::string(78, '*') + "\n";
    for (const auto& [text, left, right] :
         {std::tuple("End of common specifications", 24, 24), {"odd", 36, 37}, {"", 38, 38}}) {
        const std::string line = " *" + std::string(left, ' ') + text + std::string(right, ' ') + "*\n";
        EXPECT_EQ(qkSession::getEnterTitle(text).c_str(), border + line + border);
    }
    const std::string wide(90, 'x');
    EXPECT_EQ(qkSession::getEnterTitle(wide.c_str()).c_str(), border + " *" + wide + "*\n" + border);
}

TEST(TableTitle, HasEightParametersUnlessASuiteSaysMore)
{
    qkSession::qkFuncTitleToCStream();
    qkSession::qkParmsTitleToCStream();
    qkString last;
    EXPECT_TRUE(g_cstrm.getColm(8, last));
    EXPECT_STREQ(last.c_str(), "Parm8");
    EXPECT_EQ(g_cstrm.numColm(), 9);
    g_cstrm.tableFlush();
}

} // namespace
