// The key table: which keys there are, what each reports and does, and the help. The fixed texts are pinned
// letter by letter, odd spellings included, because users and scripts know them.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "qkcstream.h"
#include "qkistream.h"
#include "qklibenv.h"
#include "qksession.h"
#include "qktest.h"
#include "qktool.h"
#include "support/capture.h"

namespace {

QovStatus libraryIsThere()
{
    return qovStsNoErr;
}

void fillNothing() {}

class KeySession : public qkSession {
public:
    KeySession() { m_conditions = new qkConditions; }
    using qkSession::expandKeyFiles;
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
        expandKeyFiles();
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
        char pattern[] = "/tmp/qk_keys_XXXXXX";
        m_dir = std::string(mkdtemp(pattern)) + "/";
        m_init = qov_Init;
        qov_Init = libraryIsThere;
        qovEnvironment = fillNothing;
        qkSession::m_exePath = (m_dir + "qk").c_str();
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
        std::filesystem::remove_all(m_dir);
    }

    // `text` with @ standing for the directory.
    std::string path(std::string text) const
    {
        for (size_t at; (at = text.find('@')) != std::string::npos;) text.replace(at, 1, m_dir);
        return text;
    }

    std::string m_dir;
    QovStatus (*m_init)() = nullptr;
    KeySession m_session;
};

TEST_F(KeysTest, RowsStandInTheOrderOfTheHelp)
{
    EXPECT_EQ(m_session.keys(), "BAdiIPoOLrRqQuUgnplftmkFYHTNSCsev@h?");
    for (const qkOption* option : m_session.m_options) {
        EXPECT_EQ(option->m_hidden, option->m_key == 'S' || option->m_key == 'C') << option->m_key;
    }
}

TEST_F(KeysTest, RowsThatNeedALibraryOrTheNameTableMayBeMissing)
{
    const char* const keys = "BAdiIPoOLrRqQuUgnplftmkFYHSCsev@h?";
    KeySession without;
    qov_Init = [] { return QovStatus(qovStsNotSupported); };
    without.initKeyTable();
    EXPECT_EQ(without.keys(), keys);
    KeySession failing;
    qov_Init = [] { return QovStatus(-1); }; // a library that fails is one all the same
    failing.initKeyTable();
    EXPECT_EQ(failing.keys(), m_session.keys());
    KeySession noNames;
    qKeys = false;
    noNames.initKeyTable();
    qKeys = true;
    EXPECT_EQ(noNames.keys(), "BAdiIPoOLrRuUgnplftmkFYHTNSCsev@h?");
}

const struct {
    const char *key, *report;
} s_reports[] = {
    {"-B", "batch mode"},
    {"-ATiming", "ask timing method from console"},
    {"-ATimingParams", "ask timing method, common parameters from console"},
    {"-AMisalign", "ask data misalignment from console"},
    {"-A", "ask timing method, common parameters, data misalignment, each test parameters from console"},
    {"-dLen=8=16", "set QK parameter Len=8=16"},
    {"-d", "ignored: empty data argument"},
    {"-d=5", "ignored: incorrect data format"},
    {"-dname", "ignored: incorrect data format"},
    {"-i", "read from @qk.ini"},
    {"-ia", "read from @a.ini"},
    {"-i/x/a", "read from /x/a"},
    {"-Ia.b", "write QK parameters to @a.b and exit"},
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
    {"-q", "write function parameter name lines to @qk_name.csv"},
    {"-qn", "write function parameter name lines to @n_name.csv"},
    {"-q+", "ignored because -r or -R options are not present in command line"},
    {"-Q", "ignored because -q option is not present in command line"},
    {"-u", "write summary table to @qk_sum.csv"},
    {"-Us", "add summary table to @s_sum.csv"},
    {"-g", "create file @qk.end at the end of QK work"},
    {"-nname", "name ini-file and output files as name.<proper-ext>"},
    {"-n", "ignored: empty default name"},
    {"-pdata", "open test data files & ini-file in @data/"},
    {"-p", "ignored: empty directory name"},
    {"-l/x", "open output files in /x/"},
    {"-l", "ignored: empty directory name"},
    {"-fDCT", "test functions containing 'DCT'"},
    {"-f+DCT", "don't test functions without 'DCT' in the name"},
    {"-f-DCT", "don't test functions containing 'DCT'"},
    {"-f=DCT", "test function equal to 'DCT'"},
    {"-f-", "ignored: empty function pattern"},
    {"-tDCT", "run tests containing 'DCT'"},
    {"-t+DCT", "don't run tests which doesn't contain 'DCT'"},
    {"-t-DCT", "don't run tests containing 'DCT'"},
    {"-t=DCT", "run test equal to 'DCT'"},
    {"-t", "ignored: empty test pattern"},
    {"-mjadd", "run tests from file containing 'jadd' in file name"},
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
    {"-TV2", "call qovInitStaticCpu ( qovCpuV2 )"},
    {"-Tnone", "ignored: incorrect CPU type"},
    {"-N4", "call qovSetNumThreads(4)"},
    {"-N0", "ignored: incorrect number of threads"},
    {"-Nmany", "ignored: incorrect number of threads"},
    {"-SU", "include to measurement data set & use time"},
    {"-C", "test data size will be in cache and out of cache if that is supported by test"},
    {"-s", "sort functions"},
    {"-s-", "don't sort functions"},
    {"-e", "enumerate tested functions and exit"},
    {"-e+", "enumerate applied and not applied library functions and exit"},
    {"-e-", "enumerate not applied library functions and exit"},
    {"-v", "type the version number of the Quolkit and exit"},
    {"-h", "type short help and exit"},
    {"-hh", "type extended help and exit"},
    {"-h?", "type extended help for -? key and exit"},
    {"-?", "type short help with hidden key sand exit"},
    {"-??", "type extended help with hidden keys and exit"},
    {"-?h", "type extended help for -h key and exit"},
    {"-Mfile", "ignored: incorrect option key"},
    {"-x", "ignored: incorrect option key"},
    {"-b", "ignored: incorrect option key"},
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

// With -e, -h or -v on the command line most keys have no effect on the run, and say so. Output files appear.
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
    std::filesystem::remove(m_dir + "kept_sum.csv");
    m_session.apply("-h -ukept", 2);
    EXPECT_TRUE(std::filesystem::exists(m_dir + "kept_sum.csv"));
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
    std::ofstream(m_dir + "log.txt") << "old;";
    std::ofstream(m_dir + "qk.csv") << "old";
    m_session.apply("-Olog -r -R/nowhere/table");
    EXPECT_TRUE(m_session.m_badFile);
    EXPECT_EQ(g_ostrm.count(), 1);
    EXPECT_EQ(g_cstrm.count(), 1);
    EXPECT_EQ(std::filesystem::file_size(m_dir + "log.txt"), 4u);
    EXPECT_EQ(std::filesystem::file_size(m_dir + "qk.csv"), 0u);

    KeySession other;
    other.initKeyTable();
    other.apply("-o -R -u -U -q");
    EXPECT_FALSE(other.m_badFile);
    EXPECT_EQ(g_ustrm.count(), 2);
}

// The keys of a file stand where the file was named. A file named in a file is not read.
TEST_F(KeysTest, KeyFilesAreExpandedOnce)
{
    std::ofstream(m_dir + "keys") << "-fA\n-@other -fB";
    std::ofstream(m_dir + "other") << "-fX";
    EXPECT_EQ(m_session.apply("-tT -@keys -mM -@other"),
              "-tT: run tests containing 'T'\n"
              "-fA: test functions containing 'A'\n"
              "-@other: \n"
              "-fB: test functions containing 'B'\n"
              "-mM: run tests from file containing 'M' in file name\n"
              "-fX: test functions containing 'X'\n");
}

class HelpTest : public KeysTest {
protected:
    std::string hint(char key, bool hide)
    {
        LevelCapture console(g_ostrm);
        m_session.hint(key, hide);
        return console.take();
    }
};

const std::string s_quickHelp = R"(-B               = batch mode (no console input)
-A<Timing|Params|Misalign|All> = set detail level of the console input
-d<name>=<value> = set QK parameter value
-i[<file-name>]  = read QK parameters from ini-file
-I[<file-name>]  = write QK parameters to ini-file and exit
-P               = read tested function names from ini-file
-o[<file-name>]  = create txt-file and write console output
-O[<file-name>]  = add console output to txt-file
-L<ERR|WARN|PERF|INFO|TRACE|DATA> = set detail level of the console output
-r[<file-name>]  = create csv-file and write QK results
-R[<file-name>]  = add QK results to csv-file
-q[<file-name>]  = create csv-file (*_name.csv is default) and write function parameter name lines
-q+              = add function parameter name lines to QK results table file
-Q               = exit after function parameter name table creation
-u[<file-name>]  = create csv-file and write summary table ('_sum' is added to default title name)
-U[<file-name>]  = add summary table to csv-file ('_sum' is added to default title name)
-g[<file-name>]  = create signal file at the end of the whole testing
-n<title-name>   = default title name for ini-file and output files
-p<dir-name>     = default directory for input files i.e. ini & test data files
-l<dir-name>     = default directory for output files (listings)
-f < or-pattern> = run tests for functions with pattern in name
-f-<not-pattern> = don't run tests for functions with pattern in name
-f+<and-pattern> = run only tests for functions with pattern in name
-f=< eq-pattern> = run tests for function with this full name
-t[-|+|=]<patrn> = run (don't run) tests with pattern in test name
-m[-|+|=]<patrn> = run (don't run) tests registered in file with pattern in file name
-k<and|or>       = compose different keys (-f,-t,-m) by logical operation
-F<func-name>    = start testing from function with func-name full name
-Y<HIGH|NORMAL>  = set high or normal process prioritY (normal is default)
-H[ONLY]         = add 'Interest' column to table file [and run only hot tests]
-T[<cpu-name>]   = call qovInitStaticCpu( qovCpu<cpu-name> )
-N[<num-threads>]= call qovSetNumThreads( <num-threads> )
-s[-]            = sort or don't sort functions (sort mode is default)
-e               = enumerate tests and exit
-v               = type the version number of the Quolkit and exit
-@<file-name>    = read command line options from specified file
-h               = type short help and exit
-hh              = type extended help and exit
-h<key>          = type extended help for the key and exit
)";
const std::string s_hiddenHelp = R"(-SU              = measure functions with data set & use
-C               = run tests with data in cache and out of cache (if that is supported by test)
)";

TEST_F(HelpTest, QuickHelp)
{
    EXPECT_EQ(hint(1, true), "QUICK HELP\n" + s_quickHelp);
    std::string all = s_quickHelp;
    all.insert(all.find("-s[-]"), s_hiddenHelp);
    EXPECT_EQ(hint(1, false), "QUICK HELP with hidden keys\n" + all);
}

std::uint64_t fnv1a(const std::string& text)
{
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    return hash;
}

TEST_F(HelpTest, ExtendedHelp)
{
    const std::string full = hint('?', false);
    EXPECT_EQ(full.find("EXTENDED HELP with hidden keys\n"
                        "\n"
                        "-B               = batch mode (no console input)\n"
                        "If both -B and -A key present in command line then -B key is performed\n"
                        "\n"
                        "-A<Timing"),
              0u);
    // Each letter of all descriptions; the tab in that of -T still holds the place of the processors.
    EXPECT_EQ(full.size(), 11991u);
    EXPECT_EQ(fnv1a(full), 0xb063beb8011223dbu);

    const std::string hidden = "\n-SU              = measure functions with data set & use\n"
                               "This is hidden key used by developers only\n"
                               "This option should be used to prove parallelize function advantage\n";
    EXPECT_NE(full.find(hidden), std::string::npos);
    const std::string plain = hint('h', true);
    EXPECT_EQ(plain.find("EXTENDED HELP\n\n-B "), 0u);
    EXPECT_EQ(plain.find("hidden key used"), std::string::npos);
    EXPECT_EQ(plain.find("-??"), std::string::npos); // the key ? has no help line
}

TEST_F(HelpTest, HelpForOneKey)
{
    const struct {
        char key;
        bool hide;
        const char* text;
    } cases[] = {
        {'B', true,
         "-B               = batch mode (no console input)\n"
         "If both -B and -A key present in command line then -B key is performed\n"},
        {'u', true,
         "-u[<file-name>]  = create csv-file and write summary table ('_sum' is added to default title "
         "name)\n"
         "If file-name is empty then default file path will be used:\n"
         "    <default-dir>/<default-name>_sum.csv\n"
         "    <default-dir> : <exe-file-dir> or -l key argument if any\n"
         "    <default-name>: <exe-file-name-without-extention> or -n key argument if any\n"
         "If several -u keys present in command line then all these files will be created\n"
         "    and filled\n"},
        {'n', false,
         "-n<title-name>   = default title name for ini-file and output files\n"
         "This key sets default file name for input and output files defined by \n"
         "    -i, -I, -o, -O, -r, -R, -u, -U, -g, -q keys\n"
         "If several -n keys present in command line then only the last key is valid\n"},
        {'C', true, // asked for by name, a hidden key is shown
         "-C               = run tests with data in cache and out of cache (if that is supported by test)\n"
         "This option should be used to clarify performance difference between in-cache and out-of-cache "
         "data\n"
         "Not all tests support this option\n"},
        {'e', true, "-e               = enumerate tests and exit\nNo extended description for this key\n"},
        {'?', true,
         "Key -? is deprecated\n"
         "-?               = type short help with hidden keys and exit\n"
         "-??              = type extended help with hidden keys and exit\n"
         "-?<key>          = type extended help for the key and exit\n"
         "If several -? keys present in command line then only the last key is valid\n"},
        {'h', false,
         "-h               = type short help and exit\n"
         "-hh              = type extended help and exit\n"
         "-h<key>          = type extended help for the key and exit\n"
         "If several -h present in command line then only the last key is valid\n"},
        {'M', true, "Key -M is not valid\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(hint(c.key, c.hide),
                  std::string("EXTENDED KEY HELP\n") + c.text + "\nUse -h option to type full key list\n");
    }
}

} // namespace
