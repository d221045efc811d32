// What the program says about itself: version and help. Users know these texts, so they stand here letter by
// letter.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "program.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

const struct {
    bool hidden;
    const char* text;
} s_keys[] = {
    {false, "-B               = batch mode (no console input)\n"},
    {false, "-A<Timing|Params|Misalign|All> = set detail level of the console input\n"},
    {false, "-d<name>=<value> = set QK parameter value\n"},
    {false, "-i[<file-name>]  = read QK parameters from ini-file\n"},
    {false, "-I[<file-name>]  = write QK parameters to ini-file and exit\n"},
    {false, "-P               = read tested function names from ini-file\n"},
    {false, "-o[<file-name>]  = create txt-file and write console output\n"},
    {false, "-O[<file-name>]  = add console output to txt-file\n"},
    {false, "-L<ERR|WARN|PERF|INFO|TRACE|DATA> = set detail level of the console output\n"},
    {false, "-r[<file-name>]  = create csv-file and write QK results\n"},
    {false, "-R[<file-name>]  = add QK results to csv-file\n"},
    {false,
     "-q[<file-name>]  = create csv-file (*_name.csv is default) and write function parameter name lines\n"
     "-q+              = add function parameter name lines to QK results table file\n"},
    {false, "-Q               = exit after function parameter name table creation\n"},
    {false,
     "-u[<file-name>]  = create csv-file and write summary table ('_sum' is added to default title name)\n"},
    {false, "-U[<file-name>]  = add summary table to csv-file ('_sum' is added to default title name)\n"},
    {false, "-g[<file-name>]  = create signal file at the end of the whole testing\n"},
    {false, "-n<title-name>   = default title name for ini-file and output files\n"},
    {false, "-p<dir-name>     = default directory for input files i.e. ini & test data files\n"},
    {false, "-l<dir-name>     = default directory for output files (listings)\n"},
    {false, "-f < or-pattern> = run tests for functions with pattern in name\n"
            "-f-<not-pattern> = don't run tests for functions with pattern in name\n"
            "-f+<and-pattern> = run only tests for functions with pattern in name\n"
            "-f=< eq-pattern> = run tests for function with this full name\n"},
    {false, "-t[-|+|=]<patrn> = run (don't run) tests with pattern in test name\n"},
    {false, "-m[-|+|=]<patrn> = run (don't run) tests registered in file with pattern in file name\n"},
    {false, "-k<and|or>       = compose different keys (-f,-t,-m) by logical operation\n"},
    {false, "-F<func-name>    = start testing from function with func-name full name\n"},
    {false, "-Y<HIGH|NORMAL>  = set high or normal process prioritY (normal is default)\n"},
    {false, "-H[ONLY]         = add 'Interest' column to table file [and run only hot tests]\n"},
    {false, "-T[<cpu-name>]   = call qovInitStaticCpu( qovCpu<cpu-name> )\n"},
    {false, "-N[<num-threads>]= call qovSetNumThreads( <num-threads> )\n"},
    {true, "-SU              = measure functions with data set & use\n"},
    {true,
     "-C               = run tests with data in cache and out of cache (if that is supported by test)\n"},
    {false, "-s[-]            = sort or don't sort functions (sort mode is default)\n"},
    {false, "-e               = enumerate tests and exit\n"},
    {false, "-v               = type the version number of the Quolkit and exit\n"},
    {false, "-@<file-name>    = read command line options from specified file\n"},
    {false, "-h               = type short help and exit\n"
            "-hh              = type extended help and exit\n"
            "-h<key>          = type extended help for the key and exit\n"},
};

class HelpTest : public testing::Test {
protected:
    // What stands behind the report of the only key and the banner.
    std::string helpOf(const std::string& key, const std::string& report)
    {
        m_program.start({key});
        EXPECT_EQ(m_program.exitCode(), 0) << key;
        const std::string& out = m_program.out();
        const std::string head = "Command line options: \n" + key + ": " + report + "\n\n";
        EXPECT_THAT(out, StartsWith(head));
        if (out.size() < head.size()) return "";
        const std::string rest = out.substr(head.size());
        const size_t end = rest.find('\n') + 1;
        EXPECT_THAT(rest.substr(0, end),
                    MatchesRegex(".*qov.*Quolkit.*2\\.0, [A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4}\n"));
        return rest.substr(end);
    }

    Program m_program;
};

TEST_F(HelpTest, VersionIsTheBannerAlone)
{
    EXPECT_EQ(helpOf("-v", "type the version number of the Quolkit and exit"), "");
    EXPECT_TRUE(m_program.files().empty());
}

TEST_F(HelpTest, ShortHelpListsTheKeys)
{
    std::string plain = "QUICK HELP\n";
    std::string all = "QUICK HELP with hidden keys\n";
    for (const auto& key : s_keys) {
        if (!key.hidden) plain += key.text;
        all += key.text;
    }
    EXPECT_EQ(helpOf("-h", "type short help and exit"), plain);
    EXPECT_EQ(helpOf("-?", "type short help with hidden key sand exit"), all);
}

TEST_F(HelpTest, LongHelpHasABlockPerKey)
{
    const std::string plain = helpOf("-hh", "type extended help and exit");
    const std::string all = helpOf("-??", "type extended help with hidden keys and exit");
    EXPECT_THAT(plain, StartsWith(R"(EXTENDED HELP

-B               = batch mode (no console input)
If both -B and -A key present in command line then -B key is performed

-A<Timing|Params|Misalign|All> = set detail level of the console input
Timing  : adjust timing method at the very beginning
)"));
    EXPECT_THAT(all, StartsWith("EXTENDED HELP with hidden keys\n\n-B"));
    EXPECT_THAT(plain, testing::EndsWith(R"(
-h               = type short help and exit
-hh              = type extended help and exit
-h<key>          = type extended help for the key and exit
If several -h present in command line then only the last key is valid
)"));
    size_t at = 0;
    for (const auto& key : s_keys) {
        const std::string mark = key.hidden ? "This is hidden key used by developers only\n" : "";
        const size_t found = all.find(std::string("\n\n") + key.text + mark, at);
        EXPECT_NE(found, std::string::npos) << key.text;
        if (found != std::string::npos) at = found;
        EXPECT_EQ(plain.find(key.text) == std::string::npos, key.hidden) << key.text;
    }
    EXPECT_THAT(plain, Not(HasSubstr("hidden key used")));
}

TEST_F(HelpTest, HelpOfOneKey)
{
    const std::string end = "\nUse -h option to type full key list\n";
    const struct {
        const char *key, *report, *text;
    } cases[] = {
        {"-hf", "type extended help for -f key and exit",
         "-f < or-pattern> = run tests for functions with pattern in name\n"
         "-f-<not-pattern> = don't run tests for functions with pattern in name\n"
         "-f+<and-pattern> = run only tests for functions with pattern in name\n"
         "-f=< eq-pattern> = run tests for function with this full name\n"
         "Several -f keys may present in command line.\n"
         "The test will be run if function name meets following conditions:\n"
         "       it is equal to one of -f= arguments\n"
         "    OR\n"
         "       it contains one of -f arguments\n"
         "       AND\n"
         "       it contains all of -f+ arguments if any\n"
         "       AND\n"
         "       it doesn't contain any of -f- arguments\n"},
        {"-hv", "type extended help for -v key and exit",
         "-v               = type the version number of the Quolkit and exit\n"
         "No extended description for this key\n"},
        {"-h?", "type extended help for -? key and exit",
         "Key -? is deprecated\n"
         "-?               = type short help with hidden keys and exit\n"
         "-??              = type extended help with hidden keys and exit\n"
         "-?<key>          = type extended help for the key and exit\n"
         "If several -? keys present in command line then only the last key is valid\n"},
        {"-?h", "type extended help for -h key and exit",
         "-h               = type short help and exit\n"
         "-hh              = type extended help and exit\n"
         "-h<key>          = type extended help for the key and exit\n"
         "If several -h present in command line then only the last key is valid\n"},
        {"-hM", "type extended help for -M key and exit", "Key -M is not valid\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(helpOf(c.key, c.report), std::string("EXTENDED KEY HELP\n") + c.text + end);
    }
}

TEST_F(HelpTest, HelpOfTheProcessorKeyListsTheLevels)
{
    const std::string help = helpOf("-hT", "type extended help for -T key and exit");
    EXPECT_THAT(help, testing::ContainsRegex(
                          "specific processor enter following \\{cpu-name\\}:\n +Px +V2 +V3 +V4 *\n"
                          "If several -T keys"));
}

} // namespace
