// Sizes at the edge: data made to fit the cache and not to fit it, and images that no memory holds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "program.h"
#include "reports.h"

namespace {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;

struct Runs {
    Program cache, unsupported, huge, passedOver;

    Runs()
    {
        const Program::Args once{"-B", "-dMethod=Manual", "-dNumLoops=1", "-LPERF", "-r", "-u"};
        const auto with = [&](Program::Args args) {
            args.insert(args.begin(), once.begin(), once.end());
            return args;
        };
        // Between the two ranges for caches of some 30 MB, so that neither is far from it.
        cache.start(with({"-fSub128", "-C", "-dImageSize=6000x3000"}));
        unsupported.start({"-B", "-f=__qkVorexCpu", "-C"});
        huge.start(with({"-mp_jadd", "-dImageSize=200000x200000"}));
        passedOver.start(with({"-fAdd128", "-dImageSize=8x8; 200000x200000; 16x8"}));
    }
};

Runs& runs()
{
    static Runs all;
    return all;
}

TEST(Sizes, DataInAndOutOfCache)
{
    Program& run = runs().cache;
    EXPECT_EQ(run.exitCode(), 0);
    const Table table = performanceTable(run.read("quolkit.csv"));
    ASSERT_THAT(comments(table), ElementsAre("inCache nLps=1", "outofCache nLps=1")) << run.out();
    double pixels[2];
    for (int i = 0; i < 2; i++) {
        const Cells size =
            matchOf(table.rows[i], "^qoviSub128_JPEG,8u16s,C1R,(([0-9]+)x([0-9]+)),-,-,-,-,-,([A-Za-z]+) ");
        ASSERT_THAT(size, testing::SizeIs(5)) << table.rows[i];
        pixels[i] = std::stod(size[2]) * std::stod(size[3]);
        EXPECT_THAT(run.out(), HasSubstr("\n" + size[4] + ":ImageSize=" + size[1] + " \n"));
    }
    // The result alone takes two bytes a pixel, and all of the data three.
    const Cells cache = matchOf(run.out(), "Max cache size ([0-9]+) K");
    ASSERT_THAT(cache, testing::SizeIs(2));
    EXPECT_LT(3 * pixels[0], 0.9 * 1024 * std::stod(cache[1]));
    EXPECT_GT(2 * pixels[1], 1.05 * 1024 * std::stod(cache[1]));
}

TEST(Sizes, TestWithoutASizeCannotTellTheCacheFromMemory)
{
    Program& run = runs().unsupported;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_THAT(
        run.out(),
        HasSubstr("\n-- Can't run In-Outof-Cache timing: no program support for function __qkVorexCpu\n"));
    EXPECT_THAT(run.out(), HasSubstr("\n| -UNDEFINED  __qkVorexCpu "));
    EXPECT_THAT(run.out(), HasSubstr("\n| ...Undefined     : 1 "));
}

TEST(Sizes, DataThatNoMemoryHoldsAreAnErrorOfTheTest)
{
    Program& run = runs().huge;
    EXPECT_EQ(run.exitCode(), 1);
    EXPECT_THAT(run.out(), ContainsRegex("\n-- Memory error: can't allocate [0-9]{11} bytes\n"
                                         "-- Error while initialization of function data\n"));
    for (const char* line :
         {"\n| -DATAFAIL   qoviAdd128_JPEG_16s8u_C1R ", "\n| -DATAFAIL   qoviSub128_JPEG_8u16s_C1R ",
          "\n| .Successes       : 0 ", "\n| .Failures        : 2 ", "\n| .....-FAIL       : 2 "}) {
        EXPECT_THAT(run.out(), HasSubstr(line));
    }
    EXPECT_THAT(performanceTable(run.read("quolkit.csv")).rows, testing::IsEmpty());
    EXPECT_THAT(run.read("quolkit_sum.csv"), ContainsRegex(",TimjAdd,[0-9]+,p_jadd,DATAFAIL,quolkit\n"));
}

TEST(Sizes, SetWithoutMemoryIsReportedAndPassedOver)
{
    Program& run = runs().passedOver;
    EXPECT_THAT(run.out(), HasSubstr("\n-- Memory error: can't allocate "));
    EXPECT_THAT(
        parameterCells(performanceTable(run.read("quolkit.csv"))),
        ElementsAre("qoviAdd128_JPEG,16s8u,C1R,8x8,-,-,-,-,-,", "qoviAdd128_JPEG,16s8u,C1R,16x8,-,-,-,-,-,"));
}

} // namespace
