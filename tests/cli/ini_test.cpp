// Where parameters come from and go to: -d, the ini file written and read, and the console. Runs are started
// together, since each takes seconds before it asks for the first parameter.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "program.h"
#include "reports.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string s_add = "qoviAdd128_JPEG_16s8u_C1R";
const std::string s_sub = "qoviSub128_JPEG_8u16s_C1R";

// Written by a run with -d keys; it replays that run.
const char* const s_recorded = R"(
[Quolkit]
Method=man	// Auto|Manual|Statistic|Iterative
NumLoops=3
ImageSize=16x16;24x8
AlignVectorsBy=element	// byte|element
VectorAlign=0

[qoviAdd128_JPEG_16s8u_C1R]
ImageSize=16x16;24x8

[qoviSub128_JPEG_8u16s_C1R]
ImageSize=16x16;24x8
)";

struct Runs {
    Program defaults, recorded, merged, replayed, overridden, perFunction, pressed;

    Runs()
    {
        defaults.start({"-B", "-mp_jadd", "-I", "-r", "-LPERF"});
        recorded.start({"-B", "-mp_jadd", "-Irun", "-dMethod=man", "-dNumLoops=3", "-dImageSize=16x16;24x8"});

        merged.write("quolkit.ini", "lost=1\n"
                                    "[Quolkit] // common\n"
                                    "Accuracy = 7 // mine\n"
                                    "\n"
                                    "[keep]\n"
                                    "bare\n"
                                    "a=b=c\n"
                                    "[empty]\n"
                                    "[Quolkit]\n"
                                    "ImageSize=8x8\n"
                                    "VectorAlign=4\n"
                                    "VectorAlign=8\n");
        merged.start({"-B", "-f" + s_add, "-I", "-dAlignVectorsBy=byte"});

        replayed.write("run.ini", s_recorded);
        replayed.start({"-B", "-mp_jadd", "-irun", "-r"});

        overridden.write("run.ini", s_recorded);
        overridden.start(
            {"-B", "-mp_jadd", "-irun", "-dImageSize=8x8", "-dNumLoops=2", "-dNumLoops=1", "-r"});

        perFunction.write("own.ini", "[Quolkit]\r\nNumLoops=2\r\nImageSize=8x8\nMethod=Manual\n"
                                     "[" +
                                         s_add +
                                         "]\nImageSize=16x16; 24x24\n"
                                         "[" +
                                         s_sub + "]\nImageSize=16x16; large\n");
        perFunction.start({"-B", "-mp_jadd", "-iown", "-r"});

        pressed.write("own.ini", "[Quolkit]\nMethod=Manual\nNumLoops=2\n[" + s_sub + "]\nImageSize=8x8\n");
        pressed.start({"-B", "-iown", "-P", "-r", "-u"});
    }
};

Runs& runs()
{
    static Runs all;
    return all;
}

TEST(IniFile, RecordsDefaultsWithoutMeasuring)
{
    Program& run = runs().defaults;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_EQ(run.read("quolkit.ini"), R"(
[Quolkit]
Method=Auto	// Auto|Manual|Statistic|Iterative
Accuracy=5
ImageSize=64x64; 256x256; 720x480
AlignVectorsBy=element	// byte|element
VectorAlign=0

[qoviAdd128_JPEG_16s8u_C1R]
ImageSize=64x64; 256x256; 720x480

[qoviSub128_JPEG_8u16s_C1R]
ImageSize=64x64; 256x256; 720x480
)");
    EXPECT_THAT(performanceTable(run.read("quolkit.csv")).rows, IsEmpty());
    EXPECT_THAT(run.out(), Not(HasSubstr("perf=")));
    EXPECT_THAT(run.out(), HasSubstr("\n| .Successes       : 2 "));
}

TEST(IniFile, RecordsWhatWasGivenAndReplaysIt)
{
    EXPECT_EQ(runs().recorded.exitCode(), 0);
    EXPECT_EQ(runs().recorded.read("run.ini"), s_recorded);

    Program& run = runs().replayed;
    EXPECT_EQ(run.exitCode(), 0);
    const Table table = performanceTable(run.read("quolkit.csv"));
    EXPECT_THAT(parameterCells(table), ElementsAre("qoviAdd128_JPEG,16s8u,C1R,16x16,-,-,-,-,-,",
                                                   "qoviAdd128_JPEG,16s8u,C1R,24x8,-,-,-,-,-,",
                                                   "qoviSub128_JPEG,8u16s,C1R,16x16,-,-,-,-,-,",
                                                   "qoviSub128_JPEG,8u16s,C1R,24x8,-,-,-,-,-,"));
    EXPECT_THAT(comments(table), Each("nLps=3"));
    EXPECT_THAT(run.out(), HasSubstr("\n Method: Manual\n NumLoops: 3\n ImageSize: 16x16; 24x8\n"));
    EXPECT_EQ(run.read("run.ini"), s_recorded); // -i only reads
}

// Values that stand in the file are kept, what is missing is added, and nothing but comments gets lost.
TEST(IniFile, KeepsWhatItHolds)
{
    EXPECT_EQ(runs().merged.exitCode(), 0);
    EXPECT_EQ(runs().merged.read("quolkit.ini"), R"(
[Quolkit]
Accuracy=7
ImageSize=8x8
VectorAlign=8
Method=Auto	// Auto|Manual|Statistic|Iterative
AlignVectorsBy=byte	// byte|element
MisalignFirstVectorOnly=yes	// yes|no

[keep]
bare
a=b=c

[empty]

[qoviAdd128_JPEG_16s8u_C1R]
ImageSize=8x8
)");
}

TEST(IniFile, IsOutrankedByTheCommandLine)
{
    const Table table = performanceTable(runs().overridden.read("quolkit.csv"));
    EXPECT_THAT(parameterCells(table), ElementsAre("qoviAdd128_JPEG,16s8u,C1R,8x8,-,-,-,-,-,",
                                                   "qoviSub128_JPEG,8u16s,C1R,8x8,-,-,-,-,-,"));
    EXPECT_THAT(comments(table), Each("nLps=1"));
}

// A section with the name of a function holds for that function alone; a value that cannot be read leaves the
// common one.
TEST(IniFile, SectionOfAFunctionHoldsForItAlone)
{
    Program& run = runs().perFunction;
    EXPECT_EQ(run.exitCode(), 0);
    const Table table = performanceTable(run.read("quolkit.csv"));
    EXPECT_THAT(parameterCells(table), ElementsAre("qoviAdd128_JPEG,16s8u,C1R,16x16,-,-,-,-,-,",
                                                   "qoviAdd128_JPEG,16s8u,C1R,24x24,-,-,-,-,-,",
                                                   "qoviSub128_JPEG,8u16s,C1R,8x8,-,-,-,-,-,"));
    EXPECT_THAT(comments(table), Each("nLps=2")); // a carriage return behind a number does no harm
    EXPECT_THAT(run.out(), HasSubstr("\n-Invalid value of ImageSize = large\n"));
}

TEST(IniFile, ChoosesTheFunctions)
{
    Program& run = runs().pressed;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_THAT(parameterCells(performanceTable(run.read("quolkit.csv"))),
                ElementsAre("qoviSub128_JPEG,8u16s,C1R,8x8,-,-,-,-,-,"));
    EXPECT_THAT(run.out(), HasSubstr("\n| .Number of tests : 1 "));
    EXPECT_THAT(linesWith(run.out(), "| Function"), testing::SizeIs(1));
    EXPECT_THAT(Table(run.read("quolkit_sum.csv"), "Function,").rows.at(1), "END_DATA");
}

} // namespace
