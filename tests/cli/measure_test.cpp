// Measuring runs over two functions of one suite: the console, the tables, and the keys that change what is
// run and what is written. Every run takes seconds before it measures, so all are started together.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "program.h"
#include "reports.h"

namespace {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

const std::string s_add = "qoviAdd128_JPEG_16s8u_C1R";
const std::string s_sub = "qoviSub128_JPEG_8u16s_C1R";
const std::string s_separator = "+" + std::string(77, '-') + "+";

// Both functions over small images, each with two calls.
Program::Args quickly(const Program::Args& more)
{
    Program::Args args{"-B", "-mp_jadd", "-dMethod=Manual", "-dNumLoops=2"};
    args.insert(args.end(), more.begin(), more.end());
    return args;
}

struct Runs {
    Program full, appended, traced, duplicates, namesOnly, fromSub, nothing, hot, information, setAndUse;
    std::map<std::string, Program> levels;

    Runs()
    {
        full.start(quickly({"-dImageSize=16x16; 24x8", "-LPERF", "-r", "-u", "-q", "-o", "-g"}));
        for (const char* name : {"table.csv", "log.txt", "sums_sum.csv"}) appended.write(name, "before\n");
        appended.start(quickly({"-dImageSize=8x8", "-Rtable", "-rtwin", "-Olog", "-Usums", "-q+", "-H"}));
        traced.start(quickly({"-f=" + s_add, "-dImageSize=8x8", "-LDATA"}));
        duplicates.start(quickly({"-dImageSize=8x8; 8x8", "-LWARN", "-r"}));
        namesOnly.start(quickly({"-Q", "-qnames", "-r", "-u"}));
        std::filesystem::create_directory(fromSub.path("out"));
        fromSub.start(fromSub.root(), "bin/quolkit",
                      quickly({"-dImageSize=8x8", "-FSub128", "-lout", "-r", "-g" + fromSub.path("abs")}));
        nothing.start({"-B", "-fNoSuchFunction", "-u"});
        hot.start({"-B", "-mp_jdct", "-HONLY", "-dMethod=Manual", "-dNumLoops=1", "-dSize=8x8", "-r"});
        information.start({"-B", "-f=__qkVorexCpu", "-u", "-qnames", "-LPERF"});
        setAndUse.start(quickly({"-f=" + s_add, "-dImageSize=8x8", "-SU", "-N2", "-LPERF"}));
        for (const char* label : {"Px", "V2", "V3", "V4", "None"})
            levels[label].start(quickly({"-dImageSize=8x8", std::string("-T") + label}));
    }
};

Runs& runs()
{
    static Runs all;
    return all;
}

TEST(MeasuringRun, ShowsTheMachineAndThenEachTest)
{
    Program& run = runs().full;
    EXPECT_EQ(run.exitCode(), 0);
    const std::string frame = "\\+-{77}\\+\n";
    EXPECT_THAT(
        run.out(),
        ContainsRegex("Sorting functions...\n" + frame +
                      "\\| CPU      : .*, ([0-9]+x)?[0-9.]+ [MG]Hz, (Max cache size [0-9]+ K)? *\\|?\n"
                      "\\| OS       : .*\n"
                      "\\| Computer : .*\n"
                      "(\\| Library  : qovj, .*\n)"
                      "\\| Test     : Timing {59}\\|\n"
                      "\\| {53}" +
                      timePattern + "\\|\n" + frame + " Method: Manual\n"));
    EXPECT_EQ(withoutNumbers(run.out()), R"( Method: Manual
 NumLoops: 2
 ImageSize: 16x16; 24x8
 AlignVectorsBy: element
 VectorAlign: 0
+-----------------------------------------------------------------------------+
| Function  : qoviAdd128_JPEG_16s8u_C1R               Www Mmm dd hh:mm:ss yyyy|
| Test      : TimjAdd                                                         |
| Source    : p_jadd                                                          |
+-----------------------------------------------------------------------------+
 ImageSize: 16x16; 24x8
   Test has been registered by QD_REG macro with loopMethod, statMethod, funcCall
   loopMethod is called for measuring.
ImageSize=16x16 
  nLps=2      perf=<clocks>/      256=<result> clocks
ImageSize=24x8 
  nLps=2      perf=<clocks>/      192=<result> clocks
+-----------------------------------------------------------------------------+
| -OK         qoviAdd128_JPEG_16s8u_C1R               Www Mmm dd hh:mm:ss yyyy|
+-----------------------------------------------------------------------------+
+-----------------------------------------------------------------------------+
| Function  : qoviSub128_JPEG_8u16s_C1R               Www Mmm dd hh:mm:ss yyyy|
| Test      : TimjAdd                                                         |
| Source    : p_jadd                                                          |
+-----------------------------------------------------------------------------+
 ImageSize: 16x16; 24x8
   Test has been registered by QD_REG macro with loopMethod, statMethod, funcCall
   loopMethod is called for measuring.
ImageSize=16x16 
  nLps=2      perf=<clocks>/      256=<result> clocks
ImageSize=24x8 
  nLps=2      perf=<clocks>/      192=<result> clocks
+-----------------------------------------------------------------------------+
| -OK         qoviSub128_JPEG_8u16s_C1R               Www Mmm dd hh:mm:ss yyyy|
+-----------------------------------------------------------------------------+
+-----------------------------------------------------------------------------+
| QK Summary                                                                  |
| .Number of tests : 2                                                        |
| .Successes       : 2                                                        |
| .Failures        : 0                                                        |
| ...Fails         : 0                                                        |
| .....-FAIL       : 0                                                        |
| .....-EXCPTFAIL  : 0                                                        |
| ...Warnings      : 0                                                        |
| .....-WARNING    : 0                                                        |
| .....-BADSTSWRN  : 0                                                        |
| ...Undefined     : 0                                                        |
| .Total time      : hh:mm:ss                                                 |
+-----------------------------------------------------------------------------+
)");
    for (const std::string& line : linesWith(run.out(), "|"))
        EXPECT_GE(line.size(), s_separator.size()) << line;
}

TEST(MeasuringRun, ListingHoldsWhatTheConsoleShows)
{
    Program& run = runs().full;
    std::string console = run.out();
    const std::string sorting = "Sorting functions...\n"; // for the console alone
    const size_t at = console.find(sorting);
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(run.read("quolkit.txt"), console.erase(at, sorting.size()));
}

TEST(MeasuringRun, PerformanceTableIsRectangular)
{
    const Table table = performanceTable(runs().full.read("quolkit.csv"));
    EXPECT_EQ(table.head, "funcBase,funcDataType,funcDescriptor,Len/Size,Parm1,Parm2,Parm3,Parm4,scaleFactor,"
                          "Comment,Clocks,per,Time (usec),MFlops");
    ASSERT_THAT(table.title, testing::Contains(MatchesRegex("CPU,.*, ([0-9]+x)?[0-9.]+ [MG]Hz, .*")));
    EXPECT_THAT(table.title.back(), MatchesRegex("Start," + timePattern));
    const std::string measured = ",-,-,-,-,-,nLps=2,[0-9.]+,px,[0-9.]+(e[+-][0-9]+)?,-";
    EXPECT_THAT(table.rows, ElementsAre(MatchesRegex("qoviAdd128_JPEG,16s8u,C1R,16x16" + measured),
                                        MatchesRegex("qoviAdd128_JPEG,16s8u,C1R,24x8" + measured),
                                        MatchesRegex("qoviSub128_JPEG,8u16s,C1R,16x16" + measured),
                                        MatchesRegex("qoviSub128_JPEG,8u16s,C1R,24x8" + measured)));

    // Clocks of an element and the time of a call tell the same by the frequency of the title. It has three
    // digits.
    const Cells frequency = matchOf(table.title.front(), "([0-9.]+) ([MG])Hz");
    ASSERT_THAT(frequency, SizeIs(3));
    const double mhz = std::stod(frequency[1]) * (frequency[2] == "G" ? 1000 : 1);
    const double elements[] = {256, 192, 256, 192};
    for (size_t i = 0; i < table.rows.size() && i < std::size(elements); i++) {
        const Cells cells = split(table.rows[i], ',');
        ASSERT_THAT(cells, SizeIs(14));
        EXPECT_NEAR(std::stod(cells[12]) * mhz / (std::stod(cells[10]) * elements[i]), 1, 0.03)
            << table.rows[i];
    }
}

TEST(MeasuringRun, NameTableTellsTheColumns)
{
    const std::string csv = runs().full.read("quolkit.csv");
    const Table names = performanceTable(runs().full.read("quolkit_name.csv"));
    EXPECT_EQ(names.title, performanceTable(csv).title);
    EXPECT_EQ(names.head, performanceTable(csv).head);
    EXPECT_THAT(names.rows, ElementsAre("qoviAdd128_JPEG,16s8u,C1R,ImageSize,-,-,-,-,-,parmNames,-,-,-,-",
                                        "qoviSub128_JPEG,8u16s,C1R,ImageSize,-,-,-,-,-,parmNames,-,-,-,-"));
}

TEST(MeasuringRun, SummaryTableCountsWhatTheConsoleCounts)
{
    Program& run = runs().full;
    const Table sums(run.read("quolkit_sum.csv"), "Function,");
    EXPECT_EQ(sums.title, performanceTable(run.read("quolkit.csv")).title);
    EXPECT_EQ(
        sums.head,
        "Function,Class,Control87,Status87,ControlSSX,StatusSSX,Test,Time (sec.),SrcName,Result,ExeName");
    ASSERT_THAT(sums.rows, SizeIs(14));
    EXPECT_THAT(sums.rows[0], MatchesRegex(s_add + ",Timing,-,-,-,-,TimjAdd,[0-9]+,p_jadd,OK,quolkit"));
    EXPECT_THAT(sums.rows[1], MatchesRegex(s_sub + ",Timing,-,-,-,-,TimjAdd,[0-9]+,p_jadd,OK,quolkit"));
    EXPECT_EQ(sums.rows[2], "END_DATA");
    EXPECT_EQ(sums.rows[3], ".Number of tests,2");
    EXPECT_EQ(sums.rows[4], ".Successes      ,2");
    for (size_t i = 3; i < sums.rows.size(); i++) {
        const Cells pair = split(sums.rows[i], ',');
        ASSERT_THAT(pair, SizeIs(2));
        EXPECT_THAT(run.out(), HasSubstr("\n| " + pair[0] + " : " + pair[1] + " ")) << sums.rows[i];
    }

    const std::string signal = run.read("quolkit.end");
    EXPECT_THAT(signal, MatchesRegex("00:[0-9:]{5}\n" + timePattern + "\n\n"));
    EXPECT_EQ(".Total time     ," + signal.substr(0, 8), sums.rows.back());
}

TEST(MeasuringRun, LeavesItsFilesBesideTheProgram)
{
    EXPECT_EQ(runs().full.files(), (std::set<std::string>{"quolkit.csv", "quolkit.end", "quolkit.txt",
                                                          "quolkit_name.csv", "quolkit_sum.csv"}));
    EXPECT_TRUE(std::filesystem::is_empty(runs().full.workDir()));

    // Called by a relative name, with an output folder.
    EXPECT_EQ(runs().fromSub.exitCode(), 0);
    EXPECT_TRUE(runs().fromSub.has("out/quolkit.csv"));
    EXPECT_TRUE(runs().fromSub.has("abs"));
}

TEST(MeasuringRun, AppendsToFilesThatAreThere)
{
    Program& run = runs().appended;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_EQ(run.read("table.csv"), "before\n" + run.read("twin.csv"));
    EXPECT_THAT(run.read("log.txt"), StartsWith("before\nCommand line options: \n"));
    EXPECT_THAT(run.read("sums_sum.csv"), StartsWith("before\nCPU,"));
    EXPECT_THAT(run.read("sums_sum.csv"), ContainsRegex("\n.Total time     ,[0-9:]{8}\n$"));
}

TEST(MeasuringRun, NamesGoIntoTheTableAndAColumnTellsHotFunctions)
{
    const Table table = performanceTable(runs().appended.read("twin.csv"));
    EXPECT_THAT(table.head, testing::EndsWith(",MFlops,Interest"));
    EXPECT_THAT(
        table.rows,
        ElementsAre("qoviAdd128_JPEG,16s8u,C1R,ImageSize,-,-,-,-,-,parmNames,-,-,-,-,-",
                    MatchesRegex("qoviAdd128_JPEG,16s8u,C1R,8x8,-,-,-,-,-,nLps=2,[^,]+,px,[^,]+,-,-"),
                    "qoviSub128_JPEG,8u16s,C1R,ImageSize,-,-,-,-,-,parmNames,-,-,-,-,-",
                    MatchesRegex("qoviSub128_JPEG,8u16s,C1R,8x8,-,-,-,-,-,nLps=2,[^,]+,px,[^,]+,-,-")));
}

TEST(MeasuringRun, ErrorsOnlyIsTwoLinesPerTest)
{
    const std::string text = withoutNumbers(runs().appended.out());
    EXPECT_THAT(text, HasSubstr(R"( VectorAlign: 0
| Function  : qoviAdd128_JPEG_16s8u_C1R               Www Mmm dd hh:mm:ss yyyy|
| -OK         qoviAdd128_JPEG_16s8u_C1R               Www Mmm dd hh:mm:ss yyyy|
| Function  : qoviSub128_JPEG_8u16s_C1R               Www Mmm dd hh:mm:ss yyyy|
| -OK         qoviSub128_JPEG_8u16s_C1R               Www Mmm dd hh:mm:ss yyyy|
+----)"));
}

TEST(MeasuringRun, TraceNamesTheHooksInOrder)
{
    const std::string& out = runs().traced.out();
    Cells into, outOf;
    for (const std::string& line : linesOf(out)) {
        const Cells name = matchOf(line, "[*]{6,} trace (into  |out of) (.*)$");
        if (!name.empty()) (name[1] == "out of" ? outOf : into).push_back(name[2]);
    }
    size_t at = 0;
    for (const char* hook :
         {"setIniSection", "beginTest", "testTitle", "g_ostrm<<testTitle", "g_ustrm<<testTitle", "canStart",
          "parmsFromIstrm", "loopData", "canContinue", "initData", "parmsToOstrm", "runTiming",
          "customLoopTiming", "flushData", "canContinue", "flushStart", "testResult", "endTest"}) {
        while (at < into.size() && into[at] != hook) at++;
        EXPECT_LT(at++, into.size()) << hook;
    }
    EXPECT_THAT(outOf, testing::UnorderedElementsAreArray(into));
    EXPECT_THAT(out, ContainsRegex("before function calls.*Image 16s_C1 size=8x8.*after function calls"));
}

TEST(MeasuringRun, EqualRowsAreAWarning)
{
    Program& run = runs().duplicates;
    EXPECT_EQ(run.exitCode(), 0);
    // Lines of the file, counted from 1.
    const Cells lines = linesOf(run.read("quolkit.csv"));
    size_t first = 0;
    while (first < lines.size() && !lines[first].starts_with("qoviAdd128_JPEG,16s8u,C1R,8x8,")) first++;
    first++;
    const std::string numbers = " Lines " + std::to_string(first) + " & " + std::to_string(first + 1);
    const std::string& out = run.out();
    EXPECT_THAT(out, HasSubstr(" Performance table warning:\n" + numbers +
                               " have identical parameters\n"
                               "-- Warning: duplicate lines in performance table (csv-file)\n"));
    EXPECT_THAT(out, ContainsRegex("\\| -DATAWRN    " + s_add));
    EXPECT_THAT(out, HasSubstr("\n| .Successes       : 0 "));
    EXPECT_THAT(out, HasSubstr("\n| .Failures        : 2 "));
    EXPECT_THAT(out, HasSubstr("\n| .....-WARNING    : 2 "));
    EXPECT_THAT(out, HasSubstr("\n| ...Undefined     : 0 "));
    EXPECT_THAT(performanceTable(run.read("quolkit.csv")).rows, SizeIs(4));
}

TEST(MeasuringRun, NamesAloneMeasureNothing)
{
    Program& run = runs().namesOnly;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_THAT(performanceTable(run.read("names_name.csv")).rows, SizeIs(2));
    const Table table = performanceTable(run.read("quolkit.csv"));
    EXPECT_NE(table.head, "");
    EXPECT_THAT(table.rows, testing::IsEmpty());
    EXPECT_THAT(run.read("quolkit_sum.csv"), HasSubstr(".Successes      ,2\n"));
}

TEST(MeasuringRun, BeginsWithTheNamedFunction)
{
    Program& run = runs().fromSub;
    EXPECT_THAT(parameterCells(performanceTable(run.read("out/quolkit.csv"))),
                ElementsAre("qoviSub128_JPEG,8u16s,C1R,8x8,-,-,-,-,-,"));
    EXPECT_THAT(run.out(), HasSubstr("| .Number of tests : 1 "));
}

TEST(MeasuringRun, WithNothingToRunEndsWithTheSummary)
{
    Program& run = runs().nothing;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_THAT(run.out(), Not(HasSubstr("ImageSize")));
    EXPECT_THAT(linesWith(run.out(), "| ."), SizeIs(11));
    EXPECT_THAT(run.read("quolkit_sum.csv"), ContainsRegex("ExeName\nEND_DATA\n.Number of tests,0\n"));
    for (const std::string& line : linesWith(run.out(), "| .")) {
        if (!line.starts_with("| .Total")) {
            EXPECT_THAT(line, HasSubstr(" : 0 "));
        }
    }
}

TEST(MeasuringRun, OfHotFunctionsLeavesTheOthersOut)
{
    EXPECT_EQ(runs().hot.exitCode(), 0);
    EXPECT_THAT(performanceTable(runs().hot.read("quolkit.csv")).rows,
                ElementsAre(MatchesRegex(
                    "qoviDCTQuantInv8x8LS_JPEG,16s8u,C1R,8x8,-,-,-,-,-,nLps=1,[^,]+,px,[^,]+,-,Hot")));
}

TEST(MeasuringRun, InformationTestHasItsOwnClassAndNoNames)
{
    Program& run = runs().information;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_THAT(run.out(), HasSubstr("    Got by CPUID Instruction Functions\n"));
    EXPECT_THAT(run.out(), ContainsRegex("\nVendor-ID      [^\n]+\n"));
    EXPECT_THAT(run.out(), ContainsRegex("\\| -OK         __qkVorexCpu "));
    EXPECT_THAT(
        run.read("quolkit_sum.csv"),
        ContainsRegex(
            "\n__qkVorexCpu,Information,-,-,-,-,__qkVorexCpuTest,[0-9]+,[^,]+,OK,quolkit\nEND_DATA\n"));
    EXPECT_THAT(performanceTable(run.read("names_name.csv")).rows, testing::IsEmpty());
}

TEST(MeasuringRun, DataSetAndUse)
{
    Program& run = runs().setAndUse;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_THAT(run.out(), HasSubstr("\n   funcCall with Set&Use is called for measuring.\n"));
    EXPECT_THAT(withoutNumbers(run.out()),
                HasSubstr("\n  nLps=2      perf=<clocks>/       64=<result> clocks\n"));
    EXPECT_THAT(run.out(),
                ContainsRegex("\n--calling qovGetNumThreads: numThreads = [0-9]+\n"
                              "--calling qovSetNumThreads\\( 2 \\)\n"
                              "--(status = qovStsNoErr|QOV WARNING\\. status = [0-9]+: [^\n]+)\n"));
}

// A level that the machine cannot run is a warning of the library; the run goes on with what it can.
TEST(MeasuringRun, LibraryRunsAtTheLevelThatIsAskedFor)
{
    std::set<std::string> codes;
    for (const char* label : {"Px", "V2", "V3", "V4"}) {
        Program& run = runs().levels[label];
        EXPECT_EQ(run.exitCode(), 0) << label;
        EXPECT_THAT(run.out(), HasSubstr(std::string("-T") + label + ": call qovInitStaticCpu ( qovCpu" +
                                         label + " )\n"));
        const Cells called = matchOf(
            run.out(), std::string("\n\n--calling qovInitCpu\\( qovCpu") + label +
                           "=([0-9]+) \\)\n--(status = qovStsNoErr|QOV WARNING\\. status = [0-9]+: [^\n]+)\n"
                           "\n--calling qovGetNumThreads");
        ASSERT_THAT(called, SizeIs(3)) << run.out();
        codes.insert(called[1]);
        EXPECT_THAT(run.out(), HasSubstr("\n| .Successes       : 2 ")) << label;
    }
    EXPECT_THAT(codes, SizeIs(4));
    EXPECT_THAT(runs().levels["Px"].out(), HasSubstr("--status = qovStsNoErr\n"));

    Program& none = runs().levels["None"];
    EXPECT_THAT(none.out(), HasSubstr("-TNone: ignored: incorrect CPU type\n"));
    EXPECT_THAT(none.out(), Not(HasSubstr("qovInitCpu")));
    EXPECT_THAT(none.out(), HasSubstr("\n| .Successes       : 2 "));
}

} // namespace
