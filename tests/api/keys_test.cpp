// The key table: which keys there are, what each reports and does, and the help. The fixed texts are pinned
// letter by letter, odd spellings included, because users and scripts know them. What a run with keys shows
// of itself is left to the tests of the program.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "qkcstream.h"
#include "qkistream.h"
#include "qklibenv.h"
#include "qksession.h"
#include "qktest.h"
#include "qktool.h"
#include "support/capture.h"
#include "support/tempdir.h"

namespace {

QovStatus libraryIsThere()
{
    return qovStsNoErr;
}

void fillNothing() {}

class KeySession : public qkSession {
public:
    KeySession() { m_conditions = new qkConditions; }
    using qkSession::initKeyTable;
    using qkSession::m_askMode;
    using qkSession::m_badFile;
    using qkSession::m_batch;
    using qkSession::m_conditions;
    using qkSession::m_enumMode;
    using qkSession::m_iniName;
    using qkSession::m_iniWrite;
    using qkSession::m_keyReport;
    using qkSession::m_levelMode;
    using qkSession::m_noSort;
    using qkSession::m_options;
    using qkSession::m_signalName;

    // Applies a line of keys and returns their report. -p, -l and -n have no effect here.
    std::string apply(const char* line, int exitLevel = 0)
    {
        delete pCmdList;
        pCmdList = new qkCommandList;
        pCmdList->setArgs(line);
        m_exitLevel = exitLevel;
        m_keyReport = "";
        for (const qkCommandKey& key : *pCmdList) applyOption(key.m_key, key.m_arg);
        return m_keyReport.c_str();
    }

    std::string keys() const
    {
        std::string all;
        for (const qkOption* option : m_options) all += option->m_key;
        return all;
    }
};

class KeysTest : public testing::Test {
protected:
    void SetUp() override
    {
        m_init = qov_Init;
        qov_Init = libraryIsThere;
        qovEnvironment = fillNothing;
        qkSession::m_exePath = m_dir.path("qk").c_str();
        qkSession::setInDir("");
        qkSession::setOutDir("");
        qkSession::setDefName("");
        m_session.initKeyTable();
    }
    void TearDown() override
    {
        g_ostrm.erase(g_ostrm.begin(), g_ostrm.end());
        g_cstrm.erase(g_cstrm.begin(), g_cstrm.end());
        g_qstrm.erase(g_qstrm.begin(), g_qstrm.end());
        g_ustrm.erase(g_ustrm.begin(), g_ustrm.end());
        g_istrm.m_dataList.erase(g_istrm.m_dataList.begin(), g_istrm.m_dataList.end());
        delete qkSession::pCmdList;
        qkSession::pCmdList = nullptr;
        qkSession::m_exitLevel = qkSession::m_nameMode = 0;
        qkSession::m_nameExit = s_version = false;
        qkTest::m_hot = qkTool::m_priority = s_numThreads = 0;
        qkTest::m_pressing = qkTest::m_cache = g_tool.m_dataUse = false;
        qkTestList::m_startFunc = "";
        s_cpuType = -1;
        s_hintArg = 0;
        s_hintHide = true;
        qov_Init = m_init;
        qovEnvironment = nullptr;
    }

    // `text` with @ standing for the directory.
    std::string path(std::string text) const
    {
        for (size_t at; (at = text.find('@')) != std::string::npos;) text.replace(at, 1, m_dir.path());
        return text;
    }

    TempDir m_dir;
    QovStatus (*m_init)() = nullptr;
    KeySession m_session;
};

// A library that fails is one all the same.
TEST_F(KeysTest, RowsThatNeedALibraryOrTheNameTableMayBeMissing)
{
    const struct {
        QovStatus (*init)();
        bool names;
        const char* keys;
    } cases[] = {
        {libraryIsThere, true, "BAdiIPoOLrRqQuUgnplftmkFYHTNSCsev@h?"},
        {[] { return QovStatus(-1); }, true, "BAdiIPoOLrRqQuUgnplftmkFYHTNSCsev@h?"},
        {[] { return QovStatus(qovStsNotSupported); }, true, "BAdiIPoOLrRqQuUgnplftmkFYHSCsev@h?"},
        {libraryIsThere, false, "BAdiIPoOLrRuUgnplftmkFYHTNSCsev@h?"},
    };
    for (const auto& c : cases) {
        KeySession session;
        qov_Init = c.init;
        qKeys = c.names;
        session.initKeyTable();
        qKeys = true;
        EXPECT_EQ(session.keys(), c.keys);
    }
}

const struct {
    const char *key, *report;
} s_reports[] = {
    {"-ATiming", "ask timing method from console"},
    {"-ATimingParams", "ask timing method, common parameters from console"},
    {"-AMisalign", "ask data misalignment from console"},
    {"-A", "ask timing method, common parameters, data misalignment, each test parameters from console"},
    {"-P", "read tested function names from ini-file if any"},
    {"-o", "write console output to @qk.txt"},
    {"-Olog", "add console output to @log.txt"},
    {"-LERR", "write errors to console"},
    {"-LM", "write errors,warnings,performance results,memory info to console"},
    {"-LINFO", "write errors,warnings,performance results,measurement process to console"},
    {"-LDATA", "write errors,warnings,performance results,tracing info,data info to console"},
    {"-Lxyz", "ignored: incorrect level of console output"},
    {"-r", "write performance result table to @qk.csv"},
    {"-Rt.t", "add performance result table to @t.t"},
    {"-qn", "write function parameter name lines to @n_name.csv"},
    {"-q+", "ignored because -r or -R options are not present in command line"},
    {"-Q", "ignored because -q option is not present in command line"},
    {"-u", "write summary table to @qk_sum.csv"},
    {"-Us", "add summary table to @s_sum.csv"},
    {"-p", "ignored: empty directory name"},
    {"-l", "ignored: empty directory name"},
    {"-f-DCT", "don't test functions containing 'DCT'"},
    {"-f-", "ignored: empty function pattern"},
    {"-t+DCT", "don't run tests which doesn't contain 'DCT'"},
    {"-t-DCT", "don't run tests containing 'DCT'"},
    {"-t=DCT", "run test equal to 'DCT'"},
    {"-t", "ignored: empty test pattern"},
    {"-m+jadd", "don't run tests from file which doesn't contain 'jadd' in file name"},
    {"-m-jadd", "don't run tests from file containing 'jadd' in file name"},
    {"-m=jadd", "run test equal from file with exact name 'jadd'"},
    {"-m=", "ignored: empty file pattern"},
    {"-kand", "keys composition: -f<conditions> AND -t<conditions> AND -m<conditions>"},
    {"-kor", "keys composition: -f<conditions> OR -t<conditions> OR -m<conditiosn>"},
    {"-kOR", "keys composition: -f<conditions> AND -t<conditions> AND -m<conditions>"},
    {"-Fname", "start testing from name function"},
    {"-YHIGH", "set high process priority"},
    {"-YN", "set normal process priority"},
    {"-YLOW", "set low process priority"},
    {"-Yhigh", "ignored: incorrect process priority value"},
    {"-H", "add 'Interest' column to table file"},
    {"-HONLY", "run tests for hot functions only"},
    {"-N4", "call qovSetNumThreads(4)"},
    {"-N0", "ignored: incorrect number of threads"},
    {"-Nmany", "ignored: incorrect number of threads"},
    {"-SU", "include to measurement data set & use time"},
    {"-C", "test data size will be in cache and out of cache if that is supported by test"},
    {"-s", "sort functions"},
    {"-s-", "don't sort functions"},
    {"-e+", "enumerate applied and not applied library functions and exit"},
    {"-e-", "enumerate not applied library functions and exit"},
};

TEST_F(KeysTest, EachKeyTellsHowItWasUnderstood)
{
    for (const auto& c : s_reports) {
        EXPECT_EQ(m_session.apply(c.key), c.key + path(std::string(": ") + c.report + "\n"));
    }
}

TEST_F(KeysTest, NameTableKeysLookAtTheOthers)
{
    for (const char* table : {"-r", "-R"}) {
        const std::string report = m_session.apply((std::string("-q+any ") + table).c_str());
        EXPECT_EQ(
            report.find("-q+any: add function parameter name lines to csv files defined by -r & -R keys\n"),
            0u);
    }
    EXPECT_EQ(qkSession::m_nameMode, 1);
    EXPECT_TRUE(g_qstrm.empty());
    m_session.apply("-Q");
    EXPECT_FALSE(qkSession::m_nameExit);
    EXPECT_EQ(m_session.apply("-Q -qnames"),
              path("-Q: exit after function parameter name table creation and don't run tests\n"
                   "-qnames: write function parameter name lines to @names_name.csv\n"));
    EXPECT_TRUE(qkSession::m_nameExit);
    EXPECT_EQ(qkSession::m_nameMode, 3);
    EXPECT_EQ(g_qstrm.count(), 1);
}

TEST_F(KeysTest, CpuAndThreadsNeedALinkedLibrary)
{
    qovEnvironment = nullptr;
    const std::string text = ": ignored: <qovcore.h> is not included before <qd.h> in test files\n";
    EXPECT_EQ(m_session.apply("-TV2 -Tnone -N4 -N0"),
              "-TV2" + text + "-Tnone" + text + "-N4" + text + "-N0" + text);
}

// With -e, -h or -v on the command line most keys have no effect on the run, and say so.
TEST_F(KeysTest, ExitKeysMarkTheOthersIgnored)
{
    const struct {
        int level;
        const char *ignored, *text;
    } cases[] = {
        {1, "BAdiIPLqQuUFYSC", "ignored because of -e option"},
        {2, "BAdiIPLqQuUFYSCftmHse", "ignored because of -h option"},
        {3, "BAdiIPLqQuUFYSCftmHs", "ignored because of -v option"},
    };
    for (const auto& c : cases) {
        for (const qkOption* option : m_session.m_options) {
            if (!option->m_info) continue;
            const std::string key = std::string("-") + option->m_key;
            const std::string ignored = key + ": " + c.text + "\n";
            const bool expected = std::string(c.ignored).find(option->m_key) != std::string::npos;
            EXPECT_EQ(m_session.apply(key.c_str(), c.level) == ignored, expected) << c.level << key;
        }
    }
}

TEST_F(KeysTest, KeysActOnTheSessionInOrder)
{
    m_session.apply(
        "-B -ATiming -AMisalign -dA=1 -dA=2 -dbad -d=5 -P -LERR -LT -kand -kor -YLOW -Yx -HONLY -H");
    EXPECT_TRUE(m_session.m_batch);
    EXPECT_EQ(m_session.m_askMode, 5);
    qkString value;
    EXPECT_TRUE(g_istrm.m_dataList.get("A", value));
    EXPECT_STREQ(value.c_str(), "2");
    EXPECT_EQ(g_istrm.m_dataList.count(), 1);
    EXPECT_TRUE(qkTest::m_pressing);
    EXPECT_EQ(m_session.m_levelMode, 23);
    EXPECT_EQ(m_session.m_conditions->m_logic, 1);
    EXPECT_EQ(qkTool::m_priority, 3);
    EXPECT_EQ(qkTest::m_hot, 1);

    m_session.apply("-iread -I -Ffirst -Fsecond -Tv3 -N2 -S -C -v -gdone -kOR");
    EXPECT_EQ(m_session.m_iniName.c_str(), path("@qk.ini"));
    EXPECT_TRUE(m_session.m_iniWrite);
    m_session.apply("-ilast");
    EXPECT_EQ(m_session.m_iniName.c_str(), path("@last.ini"));
    EXPECT_FALSE(m_session.m_iniWrite);
    EXPECT_STREQ(qkTestList::m_startFunc.c_str(), "second");
    EXPECT_EQ(s_cpuType, qovCpuV3);
    EXPECT_EQ(s_numThreads, 2);
    EXPECT_TRUE(g_tool.m_dataUse);
    EXPECT_TRUE(qkTest::m_cache);
    EXPECT_TRUE(s_version);
    EXPECT_EQ(m_session.m_signalName.c_str(), path("@done.end"));
    EXPECT_EQ(m_session.m_conditions->m_logic, 0);
}

TEST_F(KeysTest, TheLastOfTwoKeysWins)
{
    const struct {
        const char* line;
        bool noSort;
        int enumMode;
        char hintArg;
        bool hintHide;
    } cases[] = {
        {"-s- -e+ -hh", true, 1, 'h', true},
        {"-s- -s -e+ -e- -? -h", false, -1, 1, true},
        {"-s -s- -e- -e -hi -?T", true, 0, 'T', false},
    };
    for (const auto& c : cases) {
        m_session.apply(c.line);
        EXPECT_EQ(m_session.m_noSort, c.noSort) << c.line;
        EXPECT_EQ(m_session.m_enumMode, c.enumMode) << c.line;
        EXPECT_EQ(s_hintArg, c.hintArg) << c.line;
        EXPECT_EQ(s_hintHide, c.hintHide) << c.line;
    }
}

TEST_F(KeysTest, ConditionsAreAddedByClassAndKind)
{
    m_session.apply("-fa -f+b -f-c -f=d -te -m=f -f- -t -m+");
    std::string added;
    for (const RunCondition* condition : *m_session.m_conditions) {
        added += std::to_string(condition->m_class) + std::to_string(condition->m_kind) +
                 condition->m_pattern.c_str() + " ";
    }
    EXPECT_EQ(added, "01a 00b 00c 02d 11e 22f ");
}

TEST_F(KeysTest, OutputFilesAreCreatedContinuedOrReported)
{
    for (const char* name : {"log.txt", "qk.csv"}) m_dir.write(name, "old;");
    m_session.apply("-Olog -r -R -q -u -U");
    EXPECT_FALSE(m_session.m_badFile);
    EXPECT_EQ(m_dir.read("log.txt") + m_dir.read("qk.csv"), "old;");
    EXPECT_EQ(g_cstrm.count(), 2);
    EXPECT_EQ(g_ustrm.count(), 2);
    m_session.apply("-R/nowhere/table");
    EXPECT_TRUE(m_session.m_badFile);
}

std::uint64_t fnv1a(const std::string& text)
{
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    return hash;
}

// Each letter of all descriptions; the tab in that of -T still holds the place of the processors.
TEST_F(KeysTest, ExtendedHelp)
{
    LevelCapture console(g_ostrm);
    m_session.hint('?', false);
    const std::string full = console.take();
    EXPECT_EQ(full.size(), 11991u);
    EXPECT_EQ(fnv1a(full), 0xb063beb8011223dbu) << full;

    m_session.hint('C', true); // asked for by name, a hidden key is shown
    EXPECT_EQ(
        console.take(),
        "EXTENDED KEY HELP\n"
        "-C               = run tests with data in cache and out of cache (if that is supported by test)\n"
        "This option should be used to clarify performance difference between in-cache and out-of-cache "
        "data\n"
        "Not all tests support this option\n"
        "\nUse -h option to type full key list\n");
}

} // namespace
