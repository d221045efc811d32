// From the command line to the report of keys: how words become keys, where key files and the .cfg file come
// in, and what happens when a file that is named there cannot be opened. None of these runs comes to the
// title.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "program.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

const std::string s_reportHead = "Command line options: \n";
const std::string s_fatalOutput = "FATAL ERROR: can't open output file for writing\n";
const std::string s_signal = "[0-9]{2}:[0-9]{2}:[0-9]{2}\n"
                             "[A-Z][a-z]{2} [A-Z][a-z]{2} [ 1-3][0-9] [0-9:]{8} [0-9]{4}\n\n";

class CommandLineTest : public testing::Test {
protected:
    // `text` with % standing for the program's folder.
    std::string path(std::string text) const
    {
        for (size_t at; (at = text.find('%')) != std::string::npos;) text.replace(at, 1, m_program.path(""));
        return text;
    }

    // How the program understands these words: their report, cut out of a run that a last key stops.
    std::string report(Program::Args args)
    {
        args.push_back("-onowhere/x");
        m_program.start(args);
        EXPECT_EQ(m_program.exitCode(), 0);
        const std::string& out = m_program.out();
        const size_t begin = out.find(s_reportHead);
        const size_t end = out.find("-onowhere/x: write console output to ");
        if (begin == std::string::npos || end == std::string::npos) return out;
        EXPECT_EQ(out.substr(out.find('\n', end) + 1), s_fatalOutput);
        return out.substr(begin + s_reportHead.size(), end - begin - s_reportHead.size());
    }

    Program m_program;
};

TEST_F(CommandLineTest, WordsBecomeKeys)
{
    const struct {
        Program::Args words;
        const char* report;
    } cases[] = {
        {{"-fDCT"}, "-fDCT: test functions containing 'DCT'\n"},
        {{"-f", "DCT"}, "-fDCT: test functions containing 'DCT'\n"},
        {{"-f+", "DCT"}, "-f+DCT: don't test functions without 'DCT' in the name\n"},
        {{"-f=", "X"}, "-f=X: test function equal to 'X'\n"},
        {{"-f= X"}, "-f= X: test function equal to ' X'\n"},
        {{"-f", ""}, "-f: ignored: empty function pattern\n"},
        // A word behind a key is its own, of use or not.
        {{"-fDCT", "Quant", "-B"}, "-fDCT: test functions containing 'DCT'\n-B: batch mode\n"},
        {{"-B", "-"}, "-B-: batch mode\n"},
        {{"one", "two", "-B"}, "-B: batch mode\n"},
        {{"one", "-fA"}, "-fA: test functions containing 'A'\n"},
        // A slash begins a key, so a path has to be attached.
        {{"/B"}, "-B: batch mode\n"},
        {{"-i", "/tmp/a.ini"},
         "-i: read from %quolkit.ini\n"
         "-tmp/a.ini: run tests containing 'mp/a.ini'\n"},
        {{"-i/tmp/a.ini"}, "-i/tmp/a.ini: read from /tmp/a.ini\n"},
        // An argument of the command line is one word, whatever is in it.
        {{"-dA=1; 2\t=3"}, "-dA=1; 2\t=3: set QK parameter A=1; 2\t=3\n"},
        {{"-d=5", "-dname", "-d"},
         "-d=5: ignored: incorrect data format\n"
         "-dname: ignored: incorrect data format\n"
         "-d: ignored: empty data argument\n"},
        {{"-M"}, "-M: ignored: incorrect option key\n"},
        {{"-Mx", "-z5", "--help"},
         "-Mx: ignored: incorrect option key\n"
         "-z5: ignored: incorrect option key\n"
         "--help: ignored: incorrect option key\n"},
        // The exit keys are looked for among the words, not their arguments.
        {{"-fv", "-nh"},
         "-fv: test functions containing 'v'\n"
         "-nh: name ini-file and output files as h.<proper-ext>\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(report(c.words), path(c.report));
}

TEST_F(CommandLineTest, NamesAndFoldersCountWhereverTheyStand)
{
    const struct {
        Program::Args words;
        const char* report;
    } cases[] = {
        {{"-I", "-nlast"},
         "-I: write QK parameters to %last.ini and exit\n"
         "-nlast: name ini-file and output files as last.<proper-ext>\n"},
        {{"-isub/a", "-nfirst", "-pin", "-n"},
         "-isub/a: read from %in/sub/a.ini\n"
         "-nfirst: name ini-file and output files as first.<proper-ext>\n"
         "-pin: open test data files & ini-file in %in/\n"
         "-n: ignored: empty default name\n"},
        {{"-ga", "-l/tmp"},
         "-ga: create file /tmp/a.end at the end of QK work\n"
         "-l/tmp: open output files in /tmp/\n"},
        {{"-ia.b/c", "-i/etc/foo", "-ic:d"},
         "-ia.b/c: read from %a.b/c\n"
         "-i/etc/foo: read from /etc/foo\n"
         "-ic:d: read from c:d\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(report(c.words), path(c.report));
}

TEST_F(CommandLineTest, KeysThatEndTheProgramLeaveTheOthersIgnored)
{
    m_program.start({"-h", "-B", "-ofile", "-fX", "-e"});
    EXPECT_EQ(m_program.exitCode(), 0);
    EXPECT_THAT(m_program.out(), HasSubstr(path("-h: type short help and exit\n"
                                                "-B: ignored because of -h option\n"
                                                "-ofile: write console output to %file.txt\n"
                                                "-fX: ignored because of -h option\n"
                                                "-e: ignored because of -h option\n"
                                                "\n")));
    EXPECT_EQ(m_program.read("file.txt"), m_program.out());

    m_program.start({"-v", "-e", "-B", "-fX", "-uv"});
    EXPECT_THAT(m_program.out(),
                MatchesRegex(s_reportHead + "-v: type the version number of the Quolkit and exit\n"
                                            "-e: enumerate tested functions and exit\n"
                                            "-B: ignored because of -e option\n"
                                            "-fX: test functions containing 'X'\n"
                                            "-uv: ignored because of -e option\n"
                                            "\n[^\n]*Quolkit[^\n]*\n"));
    EXPECT_EQ(m_program.read("v_sum.csv"), "");
    EXPECT_EQ(m_program.files(), (std::set<std::string>{"file.txt", "v_sum.csv"}));
}

TEST_F(CommandLineTest, KeyFileStandsWhereItIsNamed)
{
    m_program.write("keys", "dropped dropped\n"
                            "-B;-fA\t-t B\r\n"
                            "\"-fX Y\" -m\"p;q\"\n"
                            "\n"
                            "\"-fa\"\"b\" -@inner\n"
                            "-f=\n"
                            "Z -nother\n");
    m_program.write("inner", "-fINNER");
    EXPECT_EQ(report({"-fbefore", "-@keys", "-i", "-@", "inner"}),
              path("-fbefore: test functions containing 'before'\n"
                   "-B: batch mode\n"
                   "-fA: test functions containing 'A'\n"
                   "-tB: run tests containing 'B'\n"
                   "-fX Y: test functions containing 'X Y'\n"
                   "-mp;q: run tests from file containing 'p;q' in file name\n"
                   "-fa\"b: test functions containing 'a\"b'\n"
                   "-@inner: \n"
                   "-f=Z: test function equal to 'Z'\n"
                   "-nother: name ini-file and output files as other.<proper-ext>\n"
                   "-i: read from %quolkit.ini\n"
                   "-fINNER: test functions containing 'INNER'\n"));
}

TEST_F(CommandLineTest, HelpInAKeyFileMarksNothingAsIgnored)
{
    m_program.write("keys", "-v");
    m_program.start({"-@keys", "-B", "-@missing"});
    EXPECT_THAT(m_program.out(), MatchesRegex("-- Can't open file " + m_program.path("missing") +
                                              " to read: [^\n]*\n" + s_reportHead +
                                              "-v: type the version number of the Quolkit and exit\n"
                                              "-B: batch mode\n"
                                              "\n[^\n]*Quolkit[^\n]*\n"));
    EXPECT_EQ(m_program.exitCode(), 0);
}

TEST_F(CommandLineTest, CfgFileStandsInForArguments)
{
    const std::string version = "-v: type the version number of the Quolkit and exit\n";
    const std::string fromFile = "Command line options: read from quolkit.cfg file\n";
    m_program.write("quolkit.cfg", "-h \"-fA B\";-B\n-fNextLine\n");
    m_program.start({});
    EXPECT_EQ(m_program.exitCode(), 0);
    EXPECT_THAT(m_program.out(), StartsWith(fromFile + "-h: type short help and exit\n"
                                                       "-fA B: ignored because of -h option\n"
                                                       "-B: ignored because of -h option\n\n"));
    EXPECT_THAT(m_program.out(), HasSubstr("QUICK HELP\n"));

    // With an argument it is not read; one in the working directory comes first.
    m_program.start({"-v"});
    EXPECT_THAT(m_program.out(), StartsWith(s_reportHead + version + "\n"));
    writeFile(m_program.workDir() / "quolkit.cfg", "-v");
    m_program.start({});
    EXPECT_THAT(m_program.out(), StartsWith(fromFile + version + "\n"));
}

TEST_F(CommandLineTest, OutputFileThatCannotBeOpenedStopsTheRun)
{
    const struct {
        const char *key, *ending;
    } cases[] = {{"-o", ".txt"},      {"-O", ".txt"},     {"-r", ".csv"},    {"-R", ".csv"},
                 {"-q", "_name.csv"}, {"-u", "_sum.csv"}, {"-U", "_sum.csv"}};
    for (const auto& c : cases) {
        m_program.start({"-B", c.key + std::string("nowhere/x"), "-g", "-ogood"});
        EXPECT_EQ(m_program.exitCode(), 0) << c.key;
        EXPECT_THAT(m_program.out(),
                    MatchesRegex("-- Can't open file " + m_program.path("nowhere/x") + c.ending +
                                 " to write: [^\n]*\n" + s_reportHead + ".*" + s_fatalOutput))
            << c.key;
        EXPECT_THAT(m_program.read("good.txt"), testing::EndsWith(s_fatalOutput)) << c.key;
        EXPECT_THAT(m_program.read("quolkit.end"), MatchesRegex(s_signal)) << c.key;
        std::filesystem::remove(m_program.path("quolkit.end"));
    }
}

TEST_F(CommandLineTest, IniFileMustOpenOnlyToBeWritten)
{
    m_program.start({"-Inowhere/x", "-g"});
    EXPECT_EQ(m_program.exitCode(), 0);
    EXPECT_THAT(m_program.out(),
                MatchesRegex(s_reportHead + ".*\n-- Can't open file " + m_program.path("nowhere/x.ini") +
                             " to write: [^\n]*\nFATAL ERROR: can't open ini-file for writing\n"));
    EXPECT_THAT(m_program.read("quolkit.end"), MatchesRegex(s_signal));

    m_program.start({"-inowhere/x", "-v"});
    EXPECT_THAT(m_program.out(), ContainsRegex("-- Can't open file " + m_program.path("nowhere/x.ini") +
                                               " to read: [^\n]*\n\n[^\n]*Quolkit"));
    EXPECT_THAT(m_program.out(), Not(HasSubstr("FATAL")));
}

TEST_F(CommandLineTest, SignalFileAppearsAtTheEndOrIsReported)
{
    m_program.start({"-v", "-gfirst", "-gdone", "-lout"});
    const std::string out = m_program.out();
    EXPECT_THAT(out, testing::EndsWith("-- Can't open file " + m_program.path("out/done.end") +
                                       " to write: No such file or directory\n"));
    EXPECT_EQ(m_program.exitCode(), 0);
    std::filesystem::create_directory(m_program.path("out"));
    m_program.start({"-v", "-gfirst", "-gdone", "-lout"});
    EXPECT_EQ(m_program.exitCode(), 0);
    EXPECT_THAT(m_program.read("out/done.end"), MatchesRegex(s_signal));
    EXPECT_FALSE(m_program.has("out/first.end"));
    EXPECT_THAT(m_program.out(), Not(HasSubstr("Can't open")));
}

} // namespace
