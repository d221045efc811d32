// The suite of the whole codec: which sets it measures and how it names them, pictures from files, what it
// refuses, and that a decode gives back the picture that was encoded.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "program.h"
#include "reports.h"

namespace {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

// Written by a run with -d keys; it replays that run. The common section has what chose the parameters.
const char* const s_recorded = R"(
[Quolkit]
imageInput=file	// file|jaehne
Method=man	// Auto|Manual|Statistic|Iterative
NumLoops=1
AlignVectorsBy=element	// byte|element
VectorAlign=0

[jpeg_Decoder_8u_C3]
imageInput=file	// file|jaehne
bmpFile=colour.bmp
Mode=base	// baseline|progressive|lossless
Color=RGB->RGB; YCbCr->RGB; YCbCr->BGR	// Unknown->Unknown|RGB->RGB|YCbCr->RGB|YCbCr->BGR
Sampling=411	// 444|422|244|411
QualityFactor=75; 60
)";

// A BMP file of 48x40 pixels that get lighter from corner to corner; 8 bits mean a grey palette.
std::string bmpOf(int bits)
{
    const int width = 48, height = 40, colors = bits == 8 ? 256 : 0;
    std::string file = "BM";
    const auto add = [&file](int value, int bytes) {
        for (; bytes > 0; bytes--, value >>= 8) file += static_cast<char>(value);
    };
    for (const int field : {0, 0, 54 + 4 * colors, 40, width, height}) add(field, 4);
    add(1, 2);
    add(bits, 2);
    for (const int field : {0, 0, 0, 0, colors, 0}) add(field, 4);
    for (int i = 0; i < colors; i++) add(i * 0x10101, 4);
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) add((3 * x + 2 * y) * 0x10101, bits / 8);
    }
    return file;
}

struct Runs {
    Program defaults, files, refused, small, recorded, replayed, data;

    Runs()
    {
        const auto start = [](Program& run, Program::Args more) {
            more.insert(more.begin(), {"-B", "-mp_jpeg", "-dMethod=man", "-dNumLoops=1"});
            run.start(more);
        };
        for (Program* run : {&files, &replayed, &data}) {
            std::filesystem::create_directory(run->path("pictures"));
            run->write("pictures/colour.bmp", bmpOf(24));
            run->write("pictures/grey.bmp", bmpOf(8));
        }
        start(defaults, {"-dHighLevelCodec_Size=64x64", "-r", "-LPERF"});
        start(files, {"-p" + files.path("pictures"), "-fDecoder", "-f-C4", "-dimageInput=file", "-r",
                      "-dbmpFile=colour.bmp; none.bmp; grey.bmp", "-dMode=base", "-dSampling=444",
                      "-dQualityFactor=80"});
        start(refused, {"-fEncoder", "-f-C4", "-dHighLevelCodec_Size=64x64", "-dColor=RGB->Gray",
                        "-dMode=base", "-dQualityFactor=100", "-r"});
        start(small, {"-fEncoder_8u_C3", "-dHighLevelCodec_Size=8x8"});
        start(recorded, {"-fDecoder_8u_C3", "-Irun", "-dimageInput=file", "-dbmpFile=colour.bmp",
                         "-dMode=base", "-dSampling=411", "-dQualityFactor=75; 60"});
        replayed.write("run.ini", s_recorded);
        replayed.start({"-B", "-fDecoder_8u_C3", "-p" + replayed.path("pictures"),
                        "-i" + replayed.path("run.ini"), "-r"});
        start(data, {"-p" + data.path("pictures"), "-fDecoder_8u_C1", "-dimageInput=file",
                     "-dbmpFile=grey.bmp", "-dMode=base", "-dQualityFactor=25", "-LDATA"});
    }
};

Runs& runs()
{
    static Runs all;
    return all;
}

Cells rowsOf(Program& run)
{
    return parameterCells(performanceTable(run.read("quolkit.csv")));
}

// A star stands for each of the factors.
TEST(Codec, MeasuresAllThatItsParametersSay)
{
    static const struct {
        const char* function;
        Cells sampled, plain;
    } tests[] = {
        {"jpeg_Decoder,8u,C1", {}, {"Gray->Gray"}},
        {"jpeg_Decoder,8u,C3", {"RGB*->RGB", "YCbCr*->RGB", "YCbCr*->BGR"}, {}},
        {"jpeg_Decoder,8u,C4", {"CMYK*->CMYK", "YCCK*->CMYK"}, {}},
        {"jpeg_Encoder,8u,C1", {}, {"Gray->Gray"}},
        {"jpeg_Encoder,8u,C3", {"RGB->RGB*", "RGB->YCbCr*", "BGR->YCbCr*"}, {"RGB->Gray444", "BGR->Gray444"}},
        {"jpeg_Encoder,8u,C4", {"CMYK->CMYK*", "CMYK->YCCK*"}, {}},
    };
    Cells expected;
    for (const auto& test : tests) {
        const std::string start = test.function + std::string(",64x64,Jaehne,");
        Cells colors = test.plain;
        for (const std::string& color : test.sampled) {
            for (const char* factors : {"444", "422", "244", "411"})
                colors.push_back(replaced(color, "[*]", factors));
        }
        for (const std::string mode : {"baseline", "progressive"}) {
            for (const std::string& color : colors) {
                for (const char* quality : {"100", "75", "50", "25"})
                    expected.push_back(start + mode + "," + color + "," + quality + ",-,");
            }
        }
        if (test.sampled.empty()) expected.push_back(start + "lossless,Gray->Gray,100,-,");
    }
    Program& run = runs().defaults;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    EXPECT_THAT(rowsOf(run), UnorderedElementsAreArray(expected));
    EXPECT_THAT(run.out(), HasSubstr("\nsize=64x64 data=Jaehne Mode=progressive Color=CMYK->YCCK "
                                     "Sampling=411 QualityFactor=25 \n"));
    EXPECT_THAT(run.out(), ContainsRegex("perf=[ 0-9.e+]+/ *4.1e\\+03="));
}

TEST(Codec, TakesPicturesOfItsNumberOfChannels)
{
    Program& run = runs().files;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    EXPECT_THAT(rowsOf(run), ElementsAre("jpeg_Decoder,8u,C1,48x40,grey.bmp,baseline,Gray->Gray,80,-,",
                                         "jpeg_Decoder,8u,C3,48x40,colour.bmp,baseline,RGB444->RGB,80,-,",
                                         "jpeg_Decoder,8u,C3,48x40,colour.bmp,baseline,YCbCr444->RGB,80,-,",
                                         "jpeg_Decoder,8u,C3,48x40,colour.bmp,baseline,YCbCr444->BGR,80,-,"));
    const Cells messages = linesWith(run.out(), "--- Can't load file");
    EXPECT_EQ(std::set<std::string>(messages.begin(), messages.end()),
              (std::set<std::string>{"--- Can't load file colour.bmp: numChannels != 1",
                                     "--- Can't load file grey.bmp: numChannels != 3",
                                     "--- Can't load file none.bmp: Open error"}));
}

// A pair of another number of channels would read past the picture, whatever tests there are beside.
TEST(Codec, RefusesColoursOfOtherChannels)
{
    Program& run = runs().refused;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    EXPECT_THAT(run.out(), HasSubstr("-Invalid value of Color = RGB->Gray\n"));
    EXPECT_THAT(rowsOf(run), ElementsAre("jpeg_Encoder,8u,C1,64x64,Jaehne,baseline,Gray->Gray,100,-,",
                                         "jpeg_Encoder,8u,C3,64x64,Jaehne,baseline,RGB->Gray444,100,-,"));
}

TEST(Codec, TellsWhatFailed)
{
    Program& run = runs().small;
    EXPECT_EQ(run.exitCode(), 1);
    EXPECT_THAT(run.out(), HasSubstr("\n--JPEG ERROR in Encoder.WriteHeader. errCode = -3, buffer too small\n"
                                     "--QOV ERROR. status = -2 in jpeg_Encoder_8u_C3: "));
}

TEST(Codec, RecordsWhatWasGivenAndReplaysIt)
{
    EXPECT_EQ(runs().recorded.exitCode(), 0);
    EXPECT_EQ(runs().recorded.read("run.ini"), s_recorded);
    Program& run = runs().replayed;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    const std::string start = "jpeg_Decoder,8u,C3,48x40,colour.bmp,baseline,";
    EXPECT_THAT(rowsOf(run), ElementsAre(start + "RGB411->RGB,75,-,", start + "RGB411->RGB,60,-,",
                                         start + "YCbCr411->RGB,75,-,", start + "YCbCr411->RGB,60,-,",
                                         start + "YCbCr411->BGR,75,-,", start + "YCbCr411->BGR,60,-,"));
}

// The numbers of each listing of an object.
std::vector<std::vector<int>> listings(const std::string& out, const std::string& object)
{
    std::vector<std::vector<int>> found;
    bool inside = false;
    for (const std::string& line : linesOf(out)) {
        if (line.starts_with("========")) inside = line.ends_with(": " + object);
        if (line.ends_with(": " + object)) found.emplace_back();
        std::istringstream numbers(inside ? line : "");
        for (int number; numbers >> number;) found.back().push_back(number);
    }
    return found;
}

TEST(Codec, DecodesThePictureThatWasEncoded)
{
    Program& run = runs().data;
    EXPECT_EQ(run.exitCode(), 0);
    const auto pictures = listings(run.out(), "Image 8u_C1 size=48x40");
    ASSERT_EQ(pictures.size(), 2u);
    const std::vector<int>&before = pictures[0], &after = pictures[1];
    ASSERT_EQ(before.size(), 48u * 40);
    ASSERT_EQ(after.size(), before.size());
    int largest = 0;
    for (size_t i = 0; i < before.size(); i++) largest = std::max(largest, std::abs(after[i] - before[i]));
    EXPECT_GT(largest, 0) << "nothing was decoded";
    EXPECT_LE(largest, 12);
}

} // namespace
