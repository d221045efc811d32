// The suites as the lists and tables show them: their tests, the sets they measure, in which unit and per how
// many elements, on sizes that are no multiple of a block, and that every run measures the same data.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

#include "program.h"
#include "reports.h"

namespace {

// Tests that show the same cells; names and parameters with braces as in a shell. The sets are those of
// Runs::every.
static const struct {
    const char *test, *source, *names, *parameters, *unit;
    int divisor;
    const char* divisors = nullptr; // where they differ from set to set
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

    {"TimjWT", "p_jwt", "qoviWT{Fwd,Inv}_{B53,D97}_JPEG2K_{16s,32s}_{C1R,C1IR}", "16x8", "px", 128},
    {"TimjWTRow", "p_jwtrow",
     "qoviWT{Fwd,Inv}Row_B53_JPEG2K_{16s,32s}_C1R qoviWT{Fwd,Inv}Row_D97_JPEG2K_{16s,32s,32f}_C1R", "16x8",
     "px", 128},
    {"TimjWTColLift", "p_jwtcollift",
     "qoviWT{Fwd,Inv}Col_B53_JPEG2K_{16s,32s}_C1R qoviWT{Fwd,Inv}Col_D97_JPEG2K_32f_C1R", "16x8", "px", 128},
    {"TimjWTColLift", "p_jwtcollift",
     "qoviWT{Fwd,Inv}ColLift_B53_JPEG2K_{16s,32s}_C1 qoviWT{Fwd,Inv}ColLift_D97_JPEG2K_{16s,32s,32f}_C1",
     "16x8", "px", 32},
    {"TimjCode2K", "p_jencode2k", "qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R", "8x4,{0,SelectiveMqBypass}", "px",
     32},
    {"TimjCode2K", "p_jencode2k", "qoviEncodeStoreBits_JPEG2K_1u", "8x4,0,{8,64,1024}", "px", 32},
    {"TimjCode2K", "p_jencode2k", "qoviDecodeCodeBlock_JPEG2K_1u32s_C1R qoviDecodeCBProgrStep_JPEG2K",
     "8x4,{0,VerticallyCausalContext,SelectiveMqBypass,TerminateOnEveryPass,ResetctxOnEveryPass,"
     "UseSegmentationSymbols,LosslessMode}",
     "px", 32},

    {"TimjPack_TIFF", "p_jpacktiff", "qoviPackBitsRow_TIFF_8u_C1", "40", "e", 40},
    {"TimjPack_TIFF", "p_jpacktiff", "qoviUnpackBitsRow_TIFF_8u_C1", "48", "e", 48},
    {"TimjSplit_TIFF", "p_jsplittiff", "qovi{SplitRow_TIFF_16u8u,JoinRow_TIFF_8u16u}_C1", "56", "e", 56},

    {"Tim_PCT", "p_jhdpct", "qoviPCT{Fwd,Inv}_HDP_32s_C1IR", "256,8,8 512,128,128", "e", 0, "64 1.64e+04"},
    {"Tim_PCT", "p_jhdpct", "qoviPCT{Fwd,Inv}16x16_HDP_32s_C1IR", "{256,512}", "e", 256},
    {"Tim_PCT", "p_jhdpct", "qoviPCT{Fwd,Inv}8x16_HDP_32s_C1IR", "{256,512}", "e", 128},
    {"Tim_PCT", "p_jhdpct", "qoviPCT{Fwd,Inv}8x8_HDP_32s_C1IR", "{256,512}", "e", 64},
    {"Tim_jxrPCT", "p_jxrpct", "qoviPCT{Fwd,Inv}_JPEGXR_{32s,32f}_C1IR", "{128,132},32,16", "e", 512},
    {"Tim_jxrPCT", "p_jxrpct", "qoviPCT{Fwd,Inv}_JPEGXR_16s_C1IR", "{64,66},32,16", "e", 512},
    {"Tim_jxrPCT", "p_jxrpct", "qoviPCT{Fwd,Inv}16x16_JPEGXR_{32s,32f}_C1IR", "{64,256}", "e", 256},
    {"Tim_jxrPCT", "p_jxrpct", "qoviPCT{Fwd,Inv}16x16_JPEGXR_16s_C1IR", "{32,128}", "e", 256},
    {"Tim_jxrPCT", "p_jxrpct", "qoviPCT{Fwd,Inv}8x16_JPEGXR_{32s,32f}_C1IR", "{64,256}", "e", 128},
    {"Tim_jxrPCT", "p_jxrpct", "qoviPCT{Fwd,Inv}8x16_JPEGXR_16s_C1IR", "{32,128}", "e", 128},
    {"Tim_jxrPCT", "p_jxrpct", "qoviPCT{Fwd,Inv}8x8_JPEGXR_{32s,32f}_C1IR", "{64,256}", "e", 64},
    {"Tim_jxrPCT", "p_jxrpct", "qoviPCT{Fwd,Inv}8x8_JPEGXR_16s_C1IR", "{32,128}", "e", 64},
    {"Tim_jxrHuffman", "p_jxrhuff",
     "qoviVLCEncodeDC{444,422,420}_JPEGXR_32s1u qoviVLCDecodeDC{444,422,420}_JPEGXR_1u32s "
     "qoviVLCEncode4x4{,Flex}_JPEGXR_{32s,16s}1u_C1R qoviVLCDecode4x4_JPEGXR_1u{32s,16s}_C1R",
     "48 240 480 2400 4800", "e", 0, "15 75 150 750 1.5e+03"},

    {"Tim_DXT", "p_jdxt", "qoviTextureEncodeBlock{_BC4_8u_C1R,FromRG_BC5_8u_C2C1R}", "256,8,8 2048,512,512",
     "e", 0, "64 2.62e+05"},
    {"TimjEncodeRGBA_DXT", "p_jencodedxt",
     "qoviTextureEncodeBlockFromRGBA_DXT{1,3,5}_8u_C4C1R qoviTextureDecodeBlockToRGBA_DXT{1,3,5}_8u_C1C4R",
     "16x8", "px", 128},

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

    {"TimJ2kitCodec", "p_jpeg2k", "jpeg2k_{Encoder,Decoder}_8u_C3",
     "32x16,jaehne.bmp,mct{+,-},0,{0,1,4},wt53 "
     "32x16,jaehne.bmp,mct{+,-},{1,10,100},{0,1,4},wt{53,97}",
     "px", 512},
};

struct Runs {
    Program list, odd, every, recorded, replayed, data, again, firstBlock, decoders;

    Runs()
    {
        const auto everyTest = [](Program& run, Program::Args more) {
            const Program::Args sets{"-dImageSize=16x8",
                                     "-dSize=16x8",
                                     "-dRowWidth=24",
                                     "-dWT_Size=16x8",
                                     "-dCode2k_Size=8x4",
                                     "-dnSrcRows=2; 3",
                                     "-dpredictor=1; 5",
                                     "-dsrcLen=40",
                                     "-ddstLen=48",
                                     "-dlen=56",
                                     "-dHighLevelCodec_Size=32x16",
                                     "-dsize=32x16",
                                     "-dMode=baseline",
                                     "-dSampling=444",
                                     "-dQualityFactor=75",
                                     "-dnRun with ROI case=1; 9",
                                     "-dnRun fixed ROI case=1; 2",
                                     "-dnRun with ROI=1; 13"};
            more.insert(more.begin(), {"-B", "-dMethod=Manual", "-dNumLoops=1"});
            more.insert(more.end(), sets.begin(), sets.end());
            run.start(more);
        };
        list.start({"-e"});
        everyTest(recorded, {"-Irun"});
        everyTest(every, {"-LPERF", "-r"});
        const std::string sizes = "1x1; 7x7; 9x9; 8x17; 17x8";
        odd.start({"-B", "-mp_j", "-m-p_jpeg", "-dMethod=Manual", "-dNumLoops=2", "-LPERF",
                   "-dImageSize=" + sizes, "-dSize=" + sizes, "-dWT_Size=" + sizes, "-dCode2k_Size=" + sizes,
                   "-dCodeStyleFlags=TerminateOnEveryPass", "-dnSrcRows=3", "-dpredictor=7"});
        const Program::Args args{"-B",     "-fDCTQuantInv8x8LS", "-dMethod=Manual", "-dNumLoops=1",
                                 "-LDATA", "-dSize=9x17"};
        data.start(args);
        again.start(args);
        firstBlock.start({"-B", "-fPCTFwd8x16_JPEGXR_32s", "-fPCTInv8x8_JPEGXR_32s", "-r", "-dMethod=Manual",
                          "-dNumLoops=1", "-dnRun fixed ROI case=9; 1"});
        decoders.start({"-B", "-fVLCDecode", "-LDATA", "-dMethod=Manual", "-dNumLoops=1"});
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
        std::string set = cells[0];
        for (size_t i = 1; i < 3; i++)
            if (cells[i] != "-") set += "_" + cells[i]; // not all names have types and a descriptor
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
        const Cells divided = group.divisors ? split(group.divisors, ' ')
                                             : Cells(parameters.size(), std::to_string(group.divisor));
        for (const std::string& name : expanded(group.names)) {
            for (std::string cells : parameters) {
                while (std::count(cells.begin(), cells.end(), ',') < 5) cells += ",-";
                expected.push_back(name + "," + cells + "," + group.unit);
            }
            EXPECT_EQ(divisors[name], divided) << name;
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

// The row for a single block has the width of the first test that came to it, as its step shows: 8 elements
// of four bytes here, where all tests together begin with 16.
TEST(Suites, KeepTheWidthOfTheFirstBlock)
{
    EXPECT_EQ(setsOf(runs().firstBlock), (Cells{"qoviPCTFwd8x16_JPEGXR_32s_C1IR,36,-,-,-,-,-,e",
                                                "qoviPCTFwd8x16_JPEGXR_32s_C1IR,32,-,-,-,-,-,e",
                                                "qoviPCTInv8x8_JPEGXR_32s_C1IR,36,-,-,-,-,-,e",
                                                "qoviPCTInv8x8_JPEGXR_32s_C1IR,32,-,-,-,-,-,e"}));
}

// The line behind the next one that has `head` in it. `text` moves on to it: the listing is too long to be
// cut into lines.
std::string lineBehind(std::string_view& text, const char* head)
{
    const size_t at = text.find('\n', text.find(head));
    text.remove_prefix(at == text.npos ? text.size() : at + 1);
    return std::string(text.substr(0, text.find('\n')));
}

// What the decoders of JPEG XR leave is what was encoded for them: all samples of three channels of 16, or of
// two of 8 or 4, but for the first of each. A block has room for three channels of 16.
TEST(Suites, DecodeWhatTheyEncoded)
{
    const std::string& out = runs().decoders.out();
    for (const char* name : {"DC444_JPEGXR_1u32s", "DC422_JPEGXR_1u32s", "DC420_JPEGXR_1u32s",
                             "4x4_JPEGXR_1u32s_C1R", "4x4_JPEGXR_1u16s_C1R"}) {
        const std::string function(name);
        const int samples = function.starts_with("DC422") ? 8 : function.starts_with("DC420") ? 4 : 16;
        const int coded = samples * (samples == 16 ? 3 : 2);
        std::string_view text(out);
        lineBehind(text, ("| Function  : qoviVLCDecode" + function).c_str());
        for (const int blocks : {1, 5, 10, 50, 100}) {
            lineBehind(text, "OUTPUT START === after");
            std::istringstream was(lineBehind(text, "Object 1: Vector"));
            std::istringstream is(lineBehind(text, "Object 3: Vector"));
            int place = 0;
            for (int before, after; was >> before && is >> after; place++) {
                const int at = place % 48;
                ASSERT_EQ(after, at < coded && at % samples != 0 ? before : 0) << function << " " << place;
            }
            EXPECT_EQ(place, 48 * blocks) << function;
        }
    }
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
        {"qoviWTFwd_D97_JPEG2K_32s_C1R", "1 49 81 136 136"},
        {"qoviWTInv_B53_JPEG2K_16s_C1IR", "1 49 81 136 136"},
        {"qoviWTFwdRow_B53_JPEG2K_16s_C1R", "42 72 136 128"},
        {"qoviWTInvCol_D97_JPEG2K_32f_C1R", "42 72 128 136"},
        {"qoviWTInvColLift_D97_JPEG2K_32f_C1", "2 14 18 16 34"},
        {"qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R", "1 49 81 136 136"},
        {"qoviDecodeCBProgrStep_JPEG2K", "1 49 81 136 136"},
        {"qoviTextureDecodeBlockToRGBA_DXT5_8u_C1C4R", "1 49 81 136 136"},
    };
    EXPECT_EQ(runs().odd.exitCode(), 0) << runs().odd.out();
    std::map<std::string, Cells> divisors = divisorsOf(runs().odd);
    for (const auto& test : tests)
        EXPECT_EQ(divisors[test.function], split(test.divisors, ' ')) << test.function;
}

// The parameters as the console shows them, with strokes for blanks: suites that walk a table of their own go
// through all of it, but for the first row of texture blocks and the last one of the coders.
TEST(Suites, WalkTheirTables)
{
    static const struct {
        const char *function, *parameters;
    } tests[] = {
        {"qoviPCTFwd_HDP_32s_C1IR",
         "srcDstStep={256,512,1024,2048}_roiSize=8x8 srcDstStep={256,512,1024,2048}_roiSize=64x64 "
         "srcDstStep={512,1024,2048}_roiSize=128x128 srcDstStep=1024_roiSize=256x256 "
         "srcDstStep=2048_roiSize=512x512 srcDstStep=4096_roiSize=1024x1024"},
        {"qoviPCTFwd8x16_HDP_32s_C1IR", "srcDstStep={256,512,1024,2048}"},
        {"qoviPCTInv_JPEGXR_32f_C1IR",
         "srcDstStep=128_roiSize=32x16 srcDstStep=256_roiSize=64x16 srcDstStep=512_roiSize=128x16 "
         "srcDstStep=1024_roiSize=256x16 srcDstStep=2048_roiSize=512x16 srcDstStep=4096_roiSize=1024x16 "
         "srcDstStep=8192_roiSize=2048x16 srcDstStep=16384_roiSize=4096x16 "
         "srcDstStep=132_roiSize=32x16 srcDstStep=260_roiSize=64x16 srcDstStep=516_roiSize=128x16 "
         "srcDstStep=1028_roiSize=256x16 srcDstStep=2052_roiSize=512x16 srcDstStep=4100_roiSize=1024x16 "
         "srcDstStep=8196_roiSize=2048x16 srcDstStep=16388_roiSize=4096x16"},
        {"qoviPCTInv8x8_JPEGXR_16s_C1IR",
         "srcDstStep={32,128,256,512,1024,2048,4096,8192,34,130,258,514,1026,2050,4098,8194}"},
        {"qoviVLCEncodeDC420_JPEGXR_32s1u", "iVectorSize={48,240,480,2400,4800}"},
        {"qoviTextureEncodeBlock_BC4_8u_C1R",
         "srcDstStep={256,512,1024,2048}___roiSize=8x8 srcDstStep={256,512,1024,2048}___roiSize=64x64 "
         "srcDstStep={512,1024,2048}___roiSize=128x128 srcDstStep=1024___roiSize=256x256 "
         "srcDstStep=2048___roiSize=512x512"},
    };
    std::map<std::string, Cells> shown;
    std::string function;
    for (std::string line : linesOf(runs().odd.out())) {
        const Cells title = matchOf(line, "^\\| Function  : ([^ ]+) ");
        if (!title.empty()) function = title[1];
        std::replace(line.begin(), line.end(), ' ', '_');
        if (line.starts_with("srcDstStep=") || line.starts_with("iVectorSize="))
            shown[function].push_back(line);
    }
    for (const auto& test : tests)
        EXPECT_EQ(shown[test.function], expanded(test.parameters)) << test.function;
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
