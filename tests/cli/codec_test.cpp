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

#include "bmpfile.h"
#include "program.h"
#include "reports.h"

namespace {

using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;

struct Runs {
    Program defaults, small, recorded, replayed;

    Runs()
    {
        const auto start = [](Program& run, Program::Args more) {
            more.insert(more.begin(), {"-B", "-m=p_jpeg", "-dMethod=man", "-dNumLoops=1"});
            run.start(more);
        };
        start(recorded,
              {"-fDecoder", "-f-C4", "-Irun", "-dimageInput=file", "-dbmpFile=colour.bmp; none.bmp; grey.bmp",
               "-dMode=base", "-dColor=YCbCr", "-dSampling=411", "-dQualityFactor=75; 20"});
        start(defaults, {"-dHighLevelCodec_Size=64x64", "-r", "-LPERF"});
        start(small, {"-fEncoder_8u_C3", "-dHighLevelCodec_Size=8x8"});
        std::filesystem::create_directory(replayed.path("pictures"));
        replayed.write("pictures/colour.bmp", bmpOf(24));
        replayed.write("pictures/grey.bmp", bmpOf(8));
        replayed.write("run.ini", recorded.read("run.ini"));
        replayed.start({"-B", "-m=p_jpeg", "-fDecoder", "-f-C4", "-p" + replayed.path("pictures"),
                        "-i" + replayed.path("run.ini"), "-r", "-LDATA"});
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

TEST(Codec, MeasuresAllThatItsParametersSay)
{
    static const char* const tests[][2] = {
        // a star stands for each of the factors
        {"jpeg_{Decoder,Encoder},8u,C1", "Gray->Gray"},
        {"jpeg_Decoder,8u,C3", "RGB*->RGB YCbCr*->{RGB,BGR}"},
        {"jpeg_Decoder,8u,C4", "{CMYK,YCCK}*->CMYK"},
        {"jpeg_Encoder,8u,C3", "RGB->{RGB,YCbCr}* BGR->YCbCr* {RGB,BGR}->Gray444"},
        {"jpeg_Encoder,8u,C4", "CMYK->{CMYK,YCCK}*"},
    };
    std::string sets = "jpeg_{Decoder,Encoder},8u,C1,64x64,Jaehne,lossless,Gray->Gray,100,-,";
    for (const auto& [function, colors] : tests) {
        for (const std::string& color : split(colors, ' ')) {
            sets += " " + std::string(function) + ",64x64,Jaehne,{baseline,progressive}," +
                    replaced(color, "[*]", "{444,422,244,411}") + ",{100,75,50,25},-,";
        }
    }
    Program& run = runs().defaults;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    EXPECT_EQ(inAnyOrder(rowsOf(run)), inAnyOrder(expanded(sets)));
    EXPECT_THAT(run.out(), HasSubstr("\nsize=64x64 data=Jaehne Mode=progressive Color=CMYK->YCCK "
                                     "Sampling=411 QualityFactor=25 \n"));
    EXPECT_THAT(run.out(), ContainsRegex("perf=[ 0-9.e+]+/ *4.1e\\+03="));
}

// The recorded run refused colours and factors that one channel does not have: a pair of another number of
// channels would read past the picture. What it took comes again in the replay.
TEST(Codec, ReplaysPicturesOfItsNumberOfChannels)
{
    EXPECT_EQ(runs().recorded.exitCode(), 0);
    EXPECT_THAT(linesWith(runs().recorded.out(), "-Invalid"),
                ElementsAre("-Invalid value of Color = YCbCr", "-Invalid value of Sampling = 411"));
    Program& run = runs().replayed;
    EXPECT_EQ(run.exitCode(), 0);
    const std::string grey = "jpeg_Decoder,8u,C1,48x40,grey.bmp,baseline,Gray->Gray,";
    const std::string colour = "jpeg_Decoder,8u,C3,48x40,colour.bmp,baseline,YCbCr411->RGB,";
    EXPECT_THAT(rowsOf(run), ElementsAre(grey + "75,-,", grey + "20,-,", colour + "75,-,", colour + "20,-,"));
    const Cells messages = linesWith(run.out(), "--- Can't load file");
    EXPECT_EQ(std::set<std::string>(messages.begin(), messages.end()),
              (std::set<std::string>{"--- Can't load file colour.bmp: numChannels != 1",
                                     "--- Can't load file grey.bmp: numChannels != 3",
                                     "--- Can't load file none.bmp: Open error"}));
}

TEST(Codec, TellsWhatFailed)
{
    Program& run = runs().small;
    EXPECT_EQ(run.exitCode(), 1);
    EXPECT_THAT(run.out(), HasSubstr("\n--JPEG ERROR in Encoder.WriteHeader. errCode = -3, buffer too small\n"
                                     "--QOV ERROR. status = -2 in jpeg_Encoder_8u_C3: "));
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
    const auto pictures = listings(runs().replayed.out(), "Image 8u_C1 size=48x40");
    ASSERT_EQ(pictures.size(), 4u); // before and after, for both qualities
    const std::vector<int>&before = pictures[0], &after = pictures[1];
    ASSERT_EQ(before.size(), 48u * 40);
    ASSERT_EQ(after.size(), before.size());
    int largest = 0;
    for (size_t i = 0; i < before.size(); i++) largest = std::max(largest, std::abs(after[i] - before[i]));
    EXPECT_GT(largest, 0) << "nothing was decoded";
    EXPECT_LE(largest, 12);
}

} // namespace
