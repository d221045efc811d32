// The codec's arguments: what is taken, and which fault answers what is not.
#include "codec_testing.h"
#include "commandline.h"
#include "diagnrecords.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace jpeg2000;

namespace {

TEST(CmdOptions, DefaultsAreLossless)
{
    const CmdOptions options = optionsOf("-i in.BMP");
    EXPECT_TRUE(options.dstFile == "in.jp2");
    EXPECT_EQ(options.mode, 1);
    EXPECT_EQ(options.srcType, FileType::bmp);
    EXPECT_EQ(options.dstType, FileType::jp2);
    EXPECT_EQ(options.nOfLevels, 5);
    EXPECT_EQ(options.ratio, 0);
    EXPECT_EQ(options.grayMode, GrayMode::detect);
    EXPECT_TRUE(options.isMCT && options.isReversible && options.isLibInfo);
    EXPECT_FALSE(options.isPlainPNM || options.isDerivedQuant || options.isDisplay);
}

TEST(CmdOptions, ValuesStandBehindTheKeyOrNext)
{
    for (const char* line :
         {"-i a.bmp -o b.jp2 -mct- -wlev 3 -ratio 12.5e0 -wt wt97 -linf- -gray never -pnm plain",
          "-pnm plain -gray never -linf- -wt wt97 -ratio12.5 -wlev3 -mct+ -mct- -o b.jp2 -i a.bmp"}) {
        const CmdOptions options = optionsOf(line);
        EXPECT_TRUE(options.srcFile == "a.bmp" && options.dstFile == "b.jp2");
        EXPECT_EQ(options.nOfLevels, 3);
        EXPECT_EQ(options.ratio, 12.5);
        EXPECT_EQ(options.grayMode, GrayMode::never);
        EXPECT_TRUE(options.isPlainPNM);
        EXPECT_FALSE(options.isMCT || options.isReversible || options.isLibInfo);
    }
    EXPECT_EQ(optionsOf("-i a.bmp -wlev 0").nOfLevels, 0);
}

TEST(CmdOptions, DecodingNeedsNoOutput)
{
    EXPECT_TRUE(optionsOf("-i a.jp2").isDisplay);
    const CmdOptions options = optionsOf("-i a.j2k -o b.PgM");
    EXPECT_EQ(options.mode, 0);
    EXPECT_EQ(options.dstType, FileType::pnm);
    EXPECT_FALSE(options.isDisplay);
}

template <int row>
void expectFault(const std::vector<const char*>& lines)
{
    using Fault = DiagnDescrCT<CmdOptionsException, CmdOptionsException{row}>;
    for (const char* line : lines) EXPECT_THROW(optionsOf(line), Fault) << line;
}

TEST(CmdOptions, FaultsAreToldApart)
{
    expectFault<0>({"-i", "-i a.bmp stray", "-mct -i a.bmp", "-mct+x", "-ia.bmp", "-wlev", "-wlev x",
                    "-wlev 3.5", "-wlev 99999999999", "-ratio nan", "-ratio inf", "-ratio 1e999",
                    "-ratio +-1", "-dquant -inf", "-x", "-"});
    expectFault<1>({"", "-o a.jp2"});
    expectFault<2>({"-i a", "-i a.jpg", "-i a.bmp/x", "-i a."});
    expectFault<3>({"-i a.jp2 -o b.jp2", "-i a.jp2 -o b", "-i a.bmp -o b.bmp", "-i a.bmp -o b.j2k"});
    expectFault<4>({"-i a.bmp -wlev -1 -ratio -1"});
    expectFault<5>({"-i a.bmp -ratio -0.5 -wt x"});
    expectFault<6>({"-i a.bmp -gray Auto"});
    expectFault<7>({"-i a.bmp -wt wt5"});
    expectFault<8>({"-i a.bmp -wt wt97", "-i a.bmp -wt wt97 -ratio 0"});
    expectFault<9>({"-i a.bmp -pnm text -wlev -1"});
}

TEST(CmdOptions, DerivedStepsAreLimitedWithAWarning)
{
    struct Case {
        const char* step;
        int mantissa, exponent;
        std::vector<std::string> begins; // of the warnings
    };
    const std::string small = "You specify quantization step is ",
                      reduced = "Derived quantization step reduced to ";
    for (const Case& c : {Case{"1", 0, 8, {}},
                          {"0.5", 0, 9, {small + "0.5 that"}},
                          {"1.5", 1024, 8, {}},
                          {"300", 352, 0, {}},
                          {"512", 2047, 0, {reduced + "511.875"}},
                          {"1e300", 2047, 0, {reduced + "511.875"}},
                          {"6e-8", 0, 31, {small + "6e-08 that", reduced + "1.19209e-07"}},
                          {"1e-300", 0, 31, {small + "1e-300 that", reduced + "1.19209e-07"}}}) {
        Warnings sink;
        const CmdOptions options = optionsOf(std::string("-i a.bmp -dquant ") + c.step, sink);
        EXPECT_TRUE(options.isDerivedQuant);
        EXPECT_EQ(options.mantissa, c.mantissa) << c.step;
        EXPECT_EQ(options.exponent, c.exponent) << c.step;
        ASSERT_EQ(sink.texts.size(), c.begins.size()) << c.step;
        for (size_t i = 0; i < c.begins.size(); i++) EXPECT_EQ(sink.texts[i].find(c.begins[i]), 0u) << c.step;
    }
    EXPECT_FALSE(optionsOf("-i a.bmp -dquant 0").isDerivedQuant);
}

TEST(CmdOptions, HelpShowsEveryKeyAndEndsTheParse)
{
    testing::internal::CaptureStdout();
    expectFault<0>({"-h"});
    const std::string help = testing::internal::GetCapturedStdout();
    EXPECT_EQ(help.find("Command line options:\n  -i  defines the input (.bmp or .jp2) file name\n"), 0u);
    EXPECT_NE(help.find("\n  -h  help key\n"), std::string::npos);
    EXPECT_EQ(std::count(help.begin(), help.end(), '\n'), 12);
}

TEST(CmdOptions, ExtensionsChange)
{
    for (const auto& [name, changed] : {std::pair{"a.bmp", "a.jp2"},
                                        {"a.b.bmp", "a.b.jp2"},
                                        {"a", "a.jp2"},
                                        {"a.d/b", "a.d/b.jp2"},
                                        {"a.", "a.jp2"}}) {
        FixedString<char> text(name);
        CmdOptions::ChangeExtension(text, "jp2");
        EXPECT_STREQ(text, changed);
    }
}

TEST(CommandLine, TheLongestKeyWins)
{
    for (const bool isLongFirst : {false, true}) {
        CommandLine line;
        bool isShort = true, isLong = true;
        if (isLongFirst) line.AddKey("wl", "", isLong);
        line.AddKey("w", "", isShort);
        if (!isLongFirst) line.AddKey("wl", "", isLong);
        const char* const argv[] = {"", "-wl-"};
        EXPECT_TRUE(line.Parse(argv, 2));
        EXPECT_TRUE(isShort);
        EXPECT_FALSE(isLong);
        EXPECT_TRUE(line.IsKeyExist("wl"));
        EXPECT_FALSE(line.IsKeyExist("w"));
    }
}

} // namespace
