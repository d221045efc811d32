// The suites as the lists and tables show them: their tests, the sets they measure, in which unit and per how
// many elements, on sizes that are no multiple of a block, and that every run measures the same data.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "program.h"
#include "reports.h"

namespace {

// Tests that show the same cells; names and parameters with braces as in a shell. The sets are those of
// Runs::every.
static const struct {
    const char *test, *source, *names, *parameters, *unit;
    int divisor;
} groups[] = {
    {"TimjAdd", "p_jadd", "qovi{Add128_JPEG_16s8u,Sub128_JPEG_8u16s}_C1R", "16x8", "px", 128},
    {"TimjDctQuant", "p_jdctquant", "qoviDCTQuant{Fwd,Inv}8x8_JPEG_16s_C1{,I}", "16x8", "px", 128},
    {"TimjDctQuantLS", "p_jdctquantls",
     "qoviDCTQuantFwd8x8LS_JPEG_{8u,16u}16s_C1R qoviDCTQuantInv8x8LS_JPEG_16s{8u,16u}_C1R "
     "qoviDCTQuantInv8x8{LS_4x4,LS_2x2,LS_1x1,To4x4LS,To2x2LS}_JPEG_16s8u_C1R",
     "16x8", "px", 128},
    {"TimjQuant", "p_jquant", "qoviQuant{Fwd,Inv}8x8_JPEG_16s_C1I", "-", "px", 64},

    {"TimjHuffman", "p_jhuffman",
     "qoviEncodeHuffman{8x8,One}_JPEG_16s1u_C1 qoviDecodeHuffman{8x8,One}_JPEG_1u16s_C1", "16x8", "px", 128},
    {"TimjHuffDirect", "p_jhuffdir",
     "qovi{EncodeHuffman8x8_Direct_JPEG_16s1u,DecodeHuffman8x8_Direct_JPEG_1u16s}_C1", "16x8", "px", 128},
    {"TimjHuffmanRow", "p_jhuffrow",
     "qoviEncodeHuffmanRow_JPEG_16s1u_P4C1 qoviDecodeHuffmanRow_JPEG_1u16s_C1P4", "16x8,{2,3}", "px", 128},
    {"TimjHuffProg", "p_jhuffprog",
     "qoviGetHuffmanStatistics8x8_{DCFirst,ACFirst,ACRefine}_JPEG_16s_C1 "
     "qoviEncodeHuffman8x8_{DC,AC}{First,Refine}_JPEG_16s1u_C1 "
     "qoviDecodeHuffman8x8_{DC,AC}{First,Refine}_JPEG_1u16s_C1",
     "16x8", "block", 2},

    {"TimjRGB", "p_jrgb", "qoviRGBToY_JPEG_8u_{P3,C3}C1R qoviBGRToY_JPEG_8u_C3C1R", "16x8", "pxch", 128},
    {"TimjRGB", "p_jrgb",
     "qoviRGBToYCbCr_JPEG_8u_{,C3}P3R qoviYCbCrToRGB_JPEG_8u_P3{,C3}R qoviBGRToYCbCr_JPEG_8u_C3P3R "
     "qoviYCbCrToBGR_JPEG_8u_P3C3R qoviICTFwd_JPEG2K_32f_{C3P3R,P3IR} qoviICTInv_JPEG2K_32f_{P3C3R,P3IR} "
     "qovi{ICT,RCT}{Fwd,Inv}_JPEG2K_{16s,32s}_P3IR qoviRCTFwd_JPEG2K_{16s,32s}_C3P3R "
     "qoviRCTInv_JPEG2K_{16s,32s}_P3C3R",
     "16x8", "pxch", 384},
    {"TimjRGB", "p_jrgb", "qoviCMYKToYCCK_JPEG_8u_{,C4}P4R qoviYCCKToCMYK_JPEG_8u_P4{,C4}R", "16x8", "pxch",
     512},
    {"jColorConversion__RW", "p_jcolor",
     "qovi{RGB,BGR}{555,565}ToYCbCr_JPEG_16u8u_C3P3R qoviYCbCrTo{RGB,BGR}{555,565}_JPEG_8u16u_P3C3R "
     "qoviYCbCr422ToRGB_JPEG_8u_C2C3R",
     "16x8", "pxch", 384},

    {"TimjMCU", "p_jmcu",
     "qovi{RGB,BGR}ToYCbCr444LS_MCU_8u16s_C3P3R qoviYCbCr444To{RGB,BGR}LS_MCU_16s8u_P3C3R", "-", "pxch", 192},
    {"TimjMCU", "p_jmcu",
     "qovi{RGB,BGR}ToYCbCr422LS_MCU_8u16s_C3P3R qoviYCbCr422To{RGB,BGR}LS_MCU_16s8u_P3C3R "
     "qoviCMYKToYCCK444LS_MCU_8u16s_C4P4R qoviYCCK444ToCMYKLS_MCU_16s8u_P4C4R "
     "qoviSplit422LS_MCU_8u16s_C2P3R",
     "-", "pxch", 256},
    {"TimjMCU", "p_jmcu",
     "qovi{RGB,BGR}ToYCbCr411LS_MCU_8u16s_C3P3R qoviYCbCr411To{RGB,BGR}LS_MCU_16s8u_P3C3R "
     "qoviCMYKToYCCK422LS_MCU_8u16s_C4P4R qoviYCCK422ToCMYKLS_MCU_16s8u_P4C4R",
     "-", "pxch", 384},
    {"TimjMCU", "p_jmcu", "qoviCMYKToYCCK411LS_MCU_8u16s_C4P4R qoviYCCK411ToCMYKLS_MCU_16s8u_P4C4R", "-",
     "pxch", 640},
    {"jMCU__RW", "p_jmcu",
     "qoviBGR{555,565}ToYCbCr444LS_MCU_16u16s_C3P3R qoviYCbCr444ToBGR{555,565}LS_MCU_16s16u_P3C3R", "-",
     "pxch", 192},
    {"jMCU__RW", "p_jmcu",
     "qoviBGR{555,565}ToYCbCr422LS_MCU_16u16s_C3P3R qoviYCbCr422ToBGR{555,565}LS_MCU_16s16u_P3C3R", "-",
     "pxch", 256},
    {"jMCU__RW", "p_jmcu",
     "qoviBGR{555,565}ToYCbCr411LS_MCU_16u16s_C3P3R qoviYCbCr411ToBGR{555,565}LS_MCU_16s16u_P3C3R", "-",
     "pxch", 384},

    {"TimjSample", "p_jsampl", "qoviSampleUpH2V{1,2}_JPEG_8u_C1R", "16x8", "px", 128},
    {"TimjSample", "p_jsampl", "qoviSampleDownH2V1_JPEG_8u_C1R", "16x8", "px", 64},
    {"TimjSample", "p_jsampl", "qoviSampleDownH2V2_JPEG_8u_C1R", "16x8", "px", 32},
    {"TimjSampleMCU", "p_jsamplmcu", "qoviSampleUp444LS_MCU_16s8u_P3C3R qoviSampleDown444LS_MCU_8u16s_C3P3R",
     "-", "px", 64},
    {"TimjSampleMCU", "p_jsamplmcu",
     "qoviSampleUp422LS_MCU_16s8u_P3C3R qoviSampleDown422LS_MCU_8u16s_C3P3R qoviJoin422LS_MCU_16s8u_P3C2R",
     "-", "px", 128},
    {"TimjSampleMCU", "p_jsamplmcu", "qoviSampleUp411LS_MCU_16s8u_P3C3R qoviSampleDown411LS_MCU_8u16s_C3P3R",
     "-", "px", 256},
    {"TimjSampleRow", "p_jsamplrow",
     "qoviSampleDownRowH2V{1,2}_Box_JPEG_8u_C1 qoviSampleUpRowH2V{1,2}_Triangle_JPEG_8u_C1", "24", "px", 24},
    {"TimjPredRow", "p_jpredrow", "qovi{Diff,Reconstruct}PredFirstRow_JPEG_16s_C1", "16x8", "e", 16},
    {"TimjPredRow", "p_jpredrow", "qovi{Diff,Reconstruct}PredRow_JPEG_16s_C1", "16x8,{1,5}", "e", 112},

    {"TimjPack_TIFF", "p_jpacktiff", "qoviPackBitsRow_TIFF_8u_C1", "40", "e", 40},
    {"TimjPack_TIFF", "p_jpacktiff", "qoviUnpackBitsRow_TIFF_8u_C1", "48", "e", 48},
    {"TimjSplit_TIFF", "p_jsplittiff", "qovi{SplitRow_TIFF_16u8u,JoinRow_TIFF_8u16u}_C1", "56", "e", 56},

    {"TimJpegCodec", "p_jpeg", "jpeg_{Encoder,Decoder}_8u_C1", "32x16,Jaehne,baseline,Gray->Gray,75", "px",
     512},
    {"TimJpegCodec", "p_jpeg", "jpeg_Encoder_8u_C3",
     "32x16,Jaehne,baseline,RGB->{RGB,YCbCr,Gray}444,75 32x16,Jaehne,baseline,BGR->{YCbCr,Gray}444,75", "px",
     512},
    {"TimJpegCodec", "p_jpeg", "jpeg_Decoder_8u_C3",
     "32x16,Jaehne,baseline,{RGB444->RGB,YCbCr444->RGB,YCbCr444->BGR},75", "px", 512},
    {"TimJpegCodec", "p_jpeg", "jpeg_Encoder_8u_C4", "32x16,Jaehne,baseline,CMYK->{CMYK,YCCK}444,75", "px",
     512},
    {"TimJpegCodec", "p_jpeg", "jpeg_Decoder_8u_C4", "32x16,Jaehne,baseline,{CMYK,YCCK}444->CMYK,75", "px",
     512},
};

struct Runs {
    Program list, odd, every, recorded, replayed, data, again;

    Runs()
    {
        const auto everyTest = [](Program& run, Program::Args more) {
            more.insert(more.begin(),
                        {"-B", "-dMethod=Manual", "-dNumLoops=1", "-dImageSize=16x8", "-dSize=16x8",
                         "-dRowWidth=24", "-dnSrcRows=2; 3", "-dpredictor=1; 5", "-dsrcLen=40", "-ddstLen=48",
                         "-dlen=56", "-dHighLevelCodec_Size=32x16", "-dMode=baseline", "-dSampling=444",
                         "-dQualityFactor=75"});
            run.start(more);
        };
        list.start({"-e"});
        everyTest(recorded, {"-Irun"});
        everyTest(every, {"-LPERF", "-r"});
        const std::string sizes = "1x1; 7x7; 9x9; 8x17; 17x8";
        odd.start({"-B", "-mp_j", "-m-p_jpeg", "-dMethod=Manual", "-dNumLoops=2", "-LPERF",
                   "-dImageSize=" + sizes, "-dSize=" + sizes, "-dnSrcRows=3", "-dpredictor=7"});
        const Program::Args args{"-B",     "-fDCTQuantInv8x8LS", "-dMethod=Manual", "-dNumLoops=1",
                                 "-LDATA", "-dSize=9x17"};
        data.start(args);
        again.start(args);
        replayed.write("run.ini", recorded.read("run.ini"));
        replayed.start({"-B", "-i" + replayed.path("run.ini"), "-r"});
    }
};

Runs& runs()
{
    static Runs all;
    return all;
}

// "function,size,four parameters,scale,unit" of each row.
Cells setsOf(Program& run)
{
    Cells sets;
    for (const std::string& row : performanceTable(run.read("quolkit.csv")).rows) {
        const Cells cells = split(row, ',');
        std::string set = cells[0] + "_" + cells[1] + "_" + cells[2];
        for (size_t i = 3; i < 9; i++) set += "," + cells[i];
        sets.push_back(set + "," + cells[11]);
    }
    return sets;
}

// What the clocks of each set were divided by, by function.
std::map<std::string, Cells> divisorsOf(Program& run)
{
    std::map<std::string, Cells> found;
    std::string function;
    for (const std::string& line : linesOf(run.out())) {
        const Cells title = matchOf(line, "^\\| Function  : ([^ ]+) ");
        const Cells result = matchOf(line, "perf= *[0-9.e+]+/ *([0-9.e+]+)=");
        if (!title.empty()) function = title[1];
        if (!result.empty()) found[function].push_back(result[1]);
    }
    return found;
}

TEST(Suites, HaveTheirTests)
{
    Cells expected{"__qkVorexCpu\t__qkVorexCpuTest\tqkinfotest\t"};
    for (const auto& group : groups) {
        for (const std::string& name : expanded(group.names))
            expected.push_back(name + "\t" + group.test + "\t" + group.source + "\t");
    }
    Cells listed;
    for (const std::string& line : linesOf(runs().list.out())) {
        const Cells row = matchOf(line, "^ *[0-9]+\t(.*)$");
        if (!row.empty()) listed.push_back(row[1]);
    }
    EXPECT_EQ(inAnyOrder(listed), inAnyOrder(expected));
}

TEST(Suites, ShowTheSetsTheyMeasure)
{
    Program& run = runs().every;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    std::map<std::string, Cells> divisors = divisorsOf(run);
    Cells expected;
    for (const auto& group : groups) {
        const Cells parameters = expanded(group.parameters);
        for (const std::string& name : expanded(group.names)) {
            for (std::string cells : parameters) {
                while (std::count(cells.begin(), cells.end(), ',') < 5) cells += ",-";
                expected.push_back(name + "," + cells + "," + group.unit);
            }
            EXPECT_EQ(divisors[name], Cells(parameters.size(), std::to_string(group.divisor))) << name;
        }
    }
    EXPECT_EQ(inAnyOrder(setsOf(run)), inAnyOrder(expected));
}

TEST(Suites, ReplayWhatWasRecorded)
{
    Program& run = runs().replayed;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    EXPECT_EQ(setsOf(run), setsOf(runs().every));
}

// Sizes that are no multiple of a block: a suite of blocks counts the pixels of whole ones or those of the
// image, and leaves out a size for which it has nothing to allocate.
TEST(Suites, MeasureOddSizes)
{
    static const struct {
        const char *function, *divisors;
    } tests[] = {
        {"qoviAdd128_JPEG_16s8u_C1R", "1 49 81 136 136"},
        {"qoviDCTQuantInv8x8LS_JPEG_16s8u_C1R", "1 49 81 136 136"},
        {"qoviDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R", "1 49 81 136 136"},
        {"qoviDCTQuantInv8x8_JPEG_16s_C1", "64 128 128"},
        {"qoviDCTQuantFwd8x8_JPEG_16s_C1I", "64 128 128"},
        {"qoviDecodeHuffman8x8_JPEG_1u16s_C1", "1 49 81 136 136"},
        {"qoviDecodeHuffmanRow_JPEG_1u16s_C1P4", "1 49 81 136 136"},
        {"qoviDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1", "0 0 1 2 2"},
        {"qoviRGBToYCbCr_JPEG_8u_C3P3R", "3 147 243 408 408"},
        {"qoviSampleUpH2V2_JPEG_8u_C1R", "49 81 136 136"},
        {"qoviSampleDownH2V1_JPEG_8u_C1R", "21 36 68 64"},
        {"qoviSampleDownH2V2_JPEG_8u_C1R", "9 16 32 32"},
        {"qoviDiffPredFirstRow_JPEG_16s_C1", "1 7 9 8 17"},
        {"qoviReconstructPredRow_JPEG_16s_C1", "0 42 72 128 119"},
    };
    EXPECT_EQ(runs().odd.exitCode(), 0) << runs().odd.out();
    std::map<std::string, Cells> divisors = divisorsOf(runs().odd);
    for (const auto& test : tests)
        EXPECT_EQ(divisors[test.function], split(test.divisors, ' ')) << test.function;
}

// The listings of both runs, without the blocks' addresses, which no listing names.
TEST(Suites, MeasureTheSameDataInEveryRun)
{
    const auto listing = [](Program& run) {
        std::string text;
        bool inside = false;
        for (const std::string& line : linesOf(run.out())) {
            if (line.find("OBJECTS OUTPUT START") != std::string::npos) inside = true;
            if (inside) text += line + "\n";
            if (line.find("OBJECTS OUTPUT END") != std::string::npos) inside = false;
        }
        return text;
    };
    const std::string first = listing(runs().data);
    EXPECT_EQ(runs().data.exitCode(), 0);
    EXPECT_NE(first.find("Image 8u_C1 size=9x17"), std::string::npos) << first.substr(0, 1000);
    EXPECT_NE(first.find("Vector 16s len=153"), std::string::npos);
    EXPECT_EQ(first, listing(runs().again));
}

} // namespace
