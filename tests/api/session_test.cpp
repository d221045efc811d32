// Whole sessions on tests that only answer with a result: the order of the steps, the sources of the command
// line, what stops a run, and the exit code that scripts see. Also the fixed texts: the box and the heads of
// the tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <tuple>
#include <vector>

#include "qkcpuid.h"
#include "qkcstream.h"
#include "qkistream.h"
#include "qklibenv.h"
#include "qksession.h"
#include "qktest.h"

namespace {

using Strings = std::vector<std::string>;

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

Strings s_steps; // what the session and its tests did, in order

class ProbeTest : public qkTest {
public:
    ProbeTest(const char* name, qkResult answer)
        : qkTest(qkFuncOld(nullptr), name, "unit", "Probe//none"), m_answer(answer)
    {
    }
    qkResult run() override
    {
        s_steps.push_back(m_name.c_str());
        return m_result = m_answer;
    }

private:
    qkResult m_answer;
};

// The real header measures the clock's frequency for seconds, so this one only notes that it was due.
class TestSession : public qkSession {
public:
    bool startSession() override { return step("start") && m_start; }
    void hint(char key, bool hide) override { step("hint"), qkSession::hint(key, hide); }
    void listTests(int mode) override { step("list " + std::to_string(mode)); }
    void outputHeader() override { step("header"); }
    void readCommonData() override { step("common"), qkSession::readCommonData(); }
    void putTableTitle() override { step("title"); }
    void outputFooter() override { step("footer"), qkSession::outputFooter(); }
    void outputSignal() override
    {
        step("signal");
        m_iniAtSignal = readFile(m_iniName.c_str());
        qkSession::outputSignal();
    }
    static bool step(const std::string& name)
    {
        s_steps.push_back(name);
        return true;
    }

    using qkSession::m_askMode;
    using qkSession::m_iniName;
    using qkSession::m_levelMode;
    using qkSession::m_signalName;
    bool m_start = true;
    std::string m_iniAtSignal;
};

template <class List>
void drop(List*& list)
{
    delete list;
    list = nullptr;
}

class SessionTest : public testing::Test {
protected:
    void SetUp() override
    {
        clear();
        char pattern[] = "/tmp/qk_session_XXXXXX";
        m_dir = mkdtemp(pattern);
        m_oldDir = std::filesystem::current_path();
        ASSERT_NE(std::freopen("/dev/null", "r", stdin), nullptr); // nobody at the console
    }
    void TearDown() override
    {
        std::filesystem::current_path(m_oldDir);
        std::filesystem::remove_all(m_dir);
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

    // A session of the executable <m_dir>/bin/prog. The return value is what it wrote to standard output.
    std::string run(TestSession& session, const Strings& keys)
    {
        s_hintArg = 0;
        s_hintHide = true;
        s_version = false;
        Strings words = {m_dir + "/bin/prog"};
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

    std::string m_dir;
    std::filesystem::path m_oldDir;
    int m_exitCode = -1;
};

TEST_F(SessionTest, StepsOfARun)
{
    const struct {
        Strings keys;
        Strings steps;
    } rows[] = {
        {{"-B", "-fprobe"},
         {"start", "header", "parmFunc", "common", "title", "probeA", "probeB", "footer", "signal"}},
        {{"-B", "-fprobe", "-s-"},
         {"start", "header", "parmFunc", "common", "title", "probeB", "probeA", "footer", "signal"}},
        {{"-B", "-fnothing"}, {"start", "header", "parmFunc", "common", "title", "footer", "signal"}},
        {{"-e"}, {"start", "header", "list 0", "signal"}},
        {{"-e-"}, {"start", "header", "list -1", "signal"}},
        {{"-e+"}, {"start", "header", "list 1", "signal"}},
        {{"-h", "-B"}, {"start", "hint", "signal"}},
        {{"-e", "-v"}, {"start", "signal"}},
        {{"-B", "-r/no/such/dir/x.csv"}, {"signal"}},
    };
    for (const auto& row : rows) {
        clear();
        qkRegTest(new ProbeTest("probeB", OK));
        qkRegTest(new ProbeTest("probeA", OK));
        qkRegParmFunc([] { TestSession::step("parmFunc"); });
        const std::string out = run(row.keys);
        EXPECT_EQ(s_steps, row.steps) << row.keys[0] << " " << row.keys.back();
        EXPECT_EQ(m_exitCode, 0);
        EXPECT_EQ(pTestList, nullptr);
        const bool sorted = row.steps.size() > 3 && row.keys.back() != "-s-";
        EXPECT_EQ(contains(out, "Sorting functions...\n"), sorted) << row.keys.back();
    }

    TestSession refusing;
    refusing.m_start = false;
    s_steps.clear();
    run(refusing, {"-B"});
    EXPECT_EQ(s_steps, (Strings{"start", "signal"}));
}

TEST_F(SessionTest, ExitCodeTellsOfErrorsAlone)
{
    const struct {
        std::vector<qkResult> results;
        int code;
    } rows[] = {
        {{}, 0},
        {{OK, UNDEFINED, ACCURWRN, BADSTSWRN, DATAWRN, FUNCWRN, WARNING}, 0},
        {{ACCURFAIL}, 1},
        {{OK, DATAFAIL, OK}, 1},
        {{FUNCFAIL, FUNCFAIL, FUNCFAIL}, 1},
        {{EXCPTFAIL}, 1},
        {{FAIL}, 1},
    };
    for (const auto& row : rows) {
        for (const qkResult result : row.results) qkRegTest(new ProbeTest("probe", result));
        run({"-B", "-fprobe"});
        EXPECT_EQ(m_exitCode, row.code) << "of " << row.results.size();
    }
}

TEST_F(SessionTest, SourceOfTheCommandLine)
{
    const std::string bin = m_dir + "/bin";
    const std::string here = m_dir + "/here";
    std::filesystem::create_directories(bin);
    std::filesystem::create_directories(here);
    std::filesystem::current_path(here);

    // Nothing at all: no report, and nobody answers the questions.
    const std::string silent = run({});
    EXPECT_FALSE(contains(silent, "Command line options"));
    EXPECT_TRUE(contains(silent, " [Auto] = "));
    EXPECT_EQ(s_steps.back(), "signal");

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
    writeFile(bin + "/prog.cfg", "-v -gexe\r\n-B\n");
    EXPECT_EQ(report({}), head + "read from prog.cfg file" + version + "-gexe: create file " + bin +
                              "/exe.end at the end of QK work\n");
    writeFile(here + "/prog.cfg", "-v");
    EXPECT_EQ(report({}), head + "read from prog.cfg file" + version);
    EXPECT_EQ(report({"-v"}), head + version);

    // An empty line is a source too, and no more than 1023 characters are read.
    for (const int length : {0, 1023}) {
        writeFile(here + "/prog.cfg", std::string(2 * length, 'x') + "\n-v\n");
        qkString args("old");
        qkString name;
        EXPECT_TRUE(TestSession().readCfgFile(args, name));
        EXPECT_EQ(args.length(), length);
    }
}

TEST_F(SessionTest, WhatIsAsked)
{
    const struct {
        Strings keys;
        int askMode;
    } rows[] = {
        {{}, 3}, {{"-B"}, 0}, {{"-ATiming", "-B"}, 0}, {{"-A"}, 15}, {{"-AMisalign"}, 4},
    };
    for (const auto& row : rows) {
        TestSession session;
        Strings keys = {"-fnothing"};
        keys.insert(keys.end(), row.keys.begin(), row.keys.end());
        const std::string out = run(session, keys);
        EXPECT_EQ(session.m_askMode, row.askMode) << keys.back();
        EXPECT_EQ(contains(out, "] = "), row.askMode != 0) << out;
        EXPECT_EQ(contains(out, "End of common specifications"), row.askMode != 0) << out;
        EXPECT_EQ(g_istrm.hasConsole(), row.askMode == 15);
        EXPECT_EQ(g_ostrm.outLevel(), session.m_levelMode);
        g_istrm.setIStream(nullptr);
    }
}

TEST_F(SessionTest, ExitLevelAndHelp)
{
    const struct {
        Strings keys;
        int level;
        const char* info;
    } rows[] = {
        {{"-B", "-fnothing"}, 0, "ignored"},
        {{"-v", "-e"}, 1, "ignored because of -e option"},
        {{"-v"}, 3, "ignored because of -v option"},
        {{"-e", "-v", "-?"}, 2, "ignored because of -h option"},
    };
    for (const auto& row : rows) {
        run(row.keys);
        EXPECT_EQ(qkSession::m_exitLevel, row.level) << row.keys[0];
        EXPECT_STREQ(qkSession::getExitInfo().c_str(), row.info);
        EXPECT_TRUE(qkSession::isExit(row.level));
        EXPECT_FALSE(qkSession::isExit(row.level + 1));
    }

    const std::string help = run({"-h", "-B"});
    EXPECT_TRUE(contains(help, "-B: ignored because of -h option\n"));
    const std::regex banner(
        "\n\n[^\n]*qov[^\n]*Quolkit[^\n]*2\\.0, [A-Z][a-z]{2} [ 0-9]{2} [0-9]{4}\nQUICK HELP\n");
    EXPECT_TRUE(std::regex_search(help, banner)) << help.substr(0, 400);

    qkRegQovEnvironment([] { qov_Init = [] { return 0; }; });
    const std::string processors = qkCpuType::optimizedList().c_str();
    EXPECT_TRUE(contains(run({"-hT"}), "{cpu-name}:\n" + processors + "If several -T"));
}

TEST_F(SessionTest, DirectoriesAndNameGovernAllKeysWhateverTheOrder)
{
    const std::string p = "-p" + m_dir + "/in";
    const std::string l = "-l" + m_dir + "/out";
    writeFile(m_dir + "/late", "-nlate " + p + "\n" + l + "\n");
    const struct {
        Strings keys;
        std::string ini;
        std::string signal;
    } rows[] = {
        {{"-i", "-g", p, l, "-nnight"}, "/in/night.ini", "/out/night.end"},
        {{"-nnight", l, p, "-g", "-i"}, "/in/night.ini", "/out/night.end"},
        {{"-nday", "-p/x", "-i", "-g", "-l/x", p, l, "-nnight"}, "/in/night.ini", "/out/night.end"},
        {{"-i", "-gdone", "-lsub"}, "/bin/prog.ini", "/bin/sub/done.end"},
        {{"-@" + m_dir + "/late", "-i", "-g"}, "/bin/prog.ini", "/bin/prog.end"}, // a key file comes too late
    };
    for (const auto& row : rows) {
        TestSession session;
        Strings keys = {"-v"};
        keys.insert(keys.end(), row.keys.begin(), row.keys.end());
        std::filesystem::create_directories(m_dir + row.signal.substr(0, row.signal.rfind('/')));
        run(session, keys);
        EXPECT_EQ(session.m_iniName.c_str(), m_dir + row.ini);
        EXPECT_EQ(session.m_signalName.c_str(), m_dir + row.signal);
        EXPECT_TRUE(std::filesystem::exists(m_dir + row.signal));
    }
}

TEST_F(SessionTest, AFileThatDoesNotOpenStopsTheRunButNotTheSignal)
{
    const std::string signal = m_dir + "/done.end";
    for (const Strings& row :
         {Strings{"-o/no/such/dir/x", "FATAL ERROR: can't open output file for writing\n"},
          Strings{"-I/no/such/dir/x", "FATAL ERROR: can't open ini-file for writing\n"}}) {
        s_steps.clear();
        const std::string out = run({"-B", row[0], "-g" + signal});
        EXPECT_EQ(m_exitCode, 0);
        EXPECT_TRUE(out.ends_with(row[1])) << out;
        EXPECT_LT(out.find("-- Can't open file /no/such/dir/x"), out.find("FATAL")) << out;
        EXPECT_EQ(s_steps, Strings{"signal"});

        const std::regex form("[0-9:]{8}\n[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-9]{2} [0-9:]{8} [0-9]{4}\n\n");
        EXPECT_TRUE(std::regex_match(readFile(signal), form)) << readFile(signal);
        std::filesystem::remove(signal);
    }

    run({"-B", "-fnothing", "-i/no/such/dir/x.ini"}); // that there is nothing to read is no reason to stop
    EXPECT_EQ(std::count(s_steps.begin(), s_steps.end(), "footer"), 1);
}

TEST_F(SessionTest, ASignalFileThatDoesNotOpenIsReported)
{
    qkRegTest(new ProbeTest("probe", FUNCFAIL));
    const std::string out = run({"-B", "-fprobe", "-g/no/such/dir/x.end"});
    const std::size_t message = out.find("-- Can't open file /no/such/dir/x.end to write: ");
    ASSERT_NE(message, std::string::npos) << out;
    EXPECT_EQ(out.find('\n', message), out.size() - 1); // and no time behind it
    EXPECT_EQ(m_exitCode, 1);
}

TEST_F(SessionTest, TheIniFileIsCompleteBeforeTheSignal)
{
    TestSession session;
    run(session, {"-B", "-fnothing", "-I" + m_dir + "/new.ini"});
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

TEST(TableTitle, NameFileGetsTheSameHead)
{
    const auto text = [](const o_stream& stream) {
        std::rewind(stream.m_file);
        std::string all;
        for (int c; (c = std::fgetc(stream.m_file)) != EOF;) all += static_cast<char>(c);
        return all;
    };
    const std::string plain =
        "funcBase,funcDataType,funcDescriptor,Len/Size,Parm1,Parm2,Parm3,Parm4,scaleFactor,"
        "Comment,Clocks,per,Time (usec),MFlops\n";
    const std::string hot = plain.substr(0, plain.size() - 1) + ",Interest\n";
    const struct {
        int nameMode;
        int hotMode;
        std::string results;
        std::string names;
    } rows[] = {{0, 0, plain, ""}, {1, 0, plain, ""}, {2, 0, plain, plain}, {3, 1, hot, hot}};
    for (const auto& row : rows) {
        o_stream results(std::tmpfile());
        o_stream names(std::tmpfile());
        g_cstrm.addStream(results);
        g_qstrm.addStream(names);
        qkSession::m_nameMode = row.nameMode;
        qkTest::m_hot = row.hotMode;
        qkSession().putTableTitle();
        EXPECT_EQ(text(results), row.results);
        EXPECT_EQ(text(names), row.names);
        EXPECT_EQ(qkTest::m_numParmsColm, 9);
        EXPECT_EQ(qkTest::m_numResultColm, row.hotMode ? 6 : 5);
        EXPECT_EQ(*g_cstrm.begin(), &results); // swapped back
        g_cstrm.erase(g_cstrm.begin(), g_cstrm.end());
        g_qstrm.erase(g_qstrm.begin(), g_qstrm.end());
    }
    qkSession::m_nameMode = 0;
    qkTest::m_hot = 0;

    qkSession::qkFuncTitleToCStream();
    qkSession::qkParmsTitleToCStream();
    qkString last;
    EXPECT_TRUE(g_cstrm.getColm(8, last));
    EXPECT_STREQ(last.c_str(), "Parm8");
    EXPECT_EQ(g_cstrm.numColm(), 9);
    g_cstrm.tableFlush();
}

} // namespace
