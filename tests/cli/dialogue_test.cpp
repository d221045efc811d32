// The questions on the console: which are asked, what an answer does, and that the end of the input answers
// everything with the defaults.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "program.h"
#include "reports.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

struct Runs {
    Program atEnd, closed, answered, invalid, batch;

    Runs()
    {
        atEnd.start({"-mp_jadd", "-dMethod=Manual", "-dNumLoops=1", "-r"});
        closed.withClosedInput().start({"-mp_jadd", "-A", "-r"});
        answered.answers("man\n3\n8x8; 16x16\n").start({"-mp_jadd", "-ATimingParams", "-AMisalign", "-r"});
        invalid.answers("fastest\n\nnone\nbyte\n65\n\n7\n24x8\n").start({"-fAdd128", "-A", "-r"});
        batch.answers("man\n3\n")
            .start({"-fAdd128", "-dMethod=Statistic", "-dTotalCpuClocks=1", "-B", "-A", "-r"});
    }
};

Runs& runs()
{
    static Runs all;
    return all;
}

const Cells s_defaultRows = {
    "qoviAdd128_JPEG,16s8u,C1R,64x64,-,-,-,-,-,",   "qoviAdd128_JPEG,16s8u,C1R,256x256,-,-,-,-,-,",
    "qoviAdd128_JPEG,16s8u,C1R,720x480,-,-,-,-,-,", "qoviSub128_JPEG,8u16s,C1R,64x64,-,-,-,-,-,",
    "qoviSub128_JPEG,8u16s,C1R,256x256,-,-,-,-,-,", "qoviSub128_JPEG,8u16s,C1R,720x480,-,-,-,-,-,"};

TEST(Dialogue, EndOfInputMeansDefaults)
{
    Program& run = runs().atEnd;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_EQ(parameterCells(performanceTable(run.read("quolkit.csv"))), s_defaultRows);
    // What -d gives is not asked.
    EXPECT_THAT(withoutNumbers(run.out()), testing::StartsWith(R"( Method: Manual
 NumLoops: 1
 ******************************************************************************
 *                     Specify common parameters, please                      *
 ******************************************************************************

 ImageSize [64x64; 256x256; 720x480] =  ImageSize: 64x64; 256x256; 720x480
 AlignVectorsBy: element
 VectorAlign: 0
 ******************************************************************************
 *                        End of common specifications                        *
 ******************************************************************************
| Function  : )"));
}

TEST(Dialogue, ClosedInputMeansDefaults)
{
    Program& run = runs().closed;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_EQ(parameterCells(performanceTable(run.read("quolkit.csv"))), s_defaultRows);
    for (const char* question : {"\n Method {Auto|Manual|Statistic|Iterative} [Auto] =  Method: Auto\n",
                                 "\n Accuracy, % [5] =  Accuracy: 5\n",
                                 "\n AlignVectorsBy {byte|element} [element] =  AlignVectorsBy: element\n",
                                 "\n VectorAlign by Element, 0..63 [0] =  VectorAlign: 0\n"}) {
        EXPECT_THAT(run.out(), HasSubstr(question));
    }
}

TEST(Dialogue, AnswersAreUsed)
{
    Program& run = runs().answered;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_THAT(run.out(), HasSubstr(R"(
 ******************************************************************************
 *                       Specify timing method, please                        *
 ******************************************************************************

 Method {Auto|Manual|Statistic|Iterative} [Auto] =  Method: Manual

 NumLoops [10] =  NumLoops: 3
)"));
    const Table table = performanceTable(run.read("quolkit.csv"));
    EXPECT_THAT(parameterCells(table), ElementsAre("qoviAdd128_JPEG,16s8u,C1R,8x8,-,-,-,-,-,",
                                                   "qoviAdd128_JPEG,16s8u,C1R,16x16,-,-,-,-,-,",
                                                   "qoviSub128_JPEG,8u16s,C1R,8x8,-,-,-,-,-,",
                                                   "qoviSub128_JPEG,8u16s,C1R,16x16,-,-,-,-,-,"));
    EXPECT_THAT(comments(table), Each("nLps=3"));
    // Without -AAll the tests themselves ask nothing.
    const size_t end = run.out().find("End of common specifications");
    ASSERT_NE(end, std::string::npos);
    EXPECT_EQ(run.out().find("] = ", end), std::string::npos);
}

TEST(Dialogue, InvalidAnswersAreReportedAndLeaveTheDefault)
{
    Program& run = runs().invalid;
    EXPECT_EQ(run.exitCode(), 0);
    const std::string& out = run.out();
    EXPECT_THAT(out, HasSubstr(" [Auto] = -Invalid value of Method: fastest\n Method: Auto\n"));
    EXPECT_THAT(out,
                HasSubstr(" = -Invalid value of ImageSize = none\n ImageSize: 64x64; 256x256; 720x480\n"));
    EXPECT_THAT(out, HasSubstr(" [element] =  AlignVectorsBy: byte\n"));
    EXPECT_THAT(out, HasSubstr("\n VectorAlign by Byte, 0..63 [0] =  VectorAlign: 1\n")); // modulo 64
    EXPECT_THAT(out,
                HasSubstr("\n MisalignFirstVectorOnly {yes|no} [yes] =  MisalignFirstVectorOnly: yes\n"));
    // The function's own question comes behind its title.
    EXPECT_THAT(out, testing::ContainsRegex("\\| Function  : qoviAdd128[^\n]+\n"
                                            "\n ImageSize \\[64x64; 256x256; 720x480\\] = "
                                            "-Invalid value of ImageSize = 7\n"));
    EXPECT_THAT(performanceTable(run.read("quolkit.csv")).rows, testing::SizeIs(3));
}

TEST(Dialogue, BatchModeAsksNothing)
{
    Program& run = runs().batch;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_THAT(run.out(), Not(HasSubstr(" ***")));
    EXPECT_THAT(run.out(), Not(HasSubstr("] = ")));
    EXPECT_THAT(comments(performanceTable(run.read("quolkit.csv"))), Each("nCalls=3"));
}

} // namespace
