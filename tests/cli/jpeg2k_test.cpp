// The suite of the JPEG 2000 codec: the sets it passes over, the command lines and levels it names, pictures
// from files, what it says of a failure, and that a decode gives back the picture that was encoded.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "bmpfile.h"
#include "program.h"
#include "reports.h"

namespace {

using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

struct Runs {
    Program defaults, small, recorded, replayed;

    Runs()
    {
        const auto start = [](Program& run, Program::Args more) {
            more.insert(more.begin(), {"-B", "-mp_jpeg2k", "-dMethod=man", "-dNumLoops=1"});
            run.start(more);
        };
        start(recorded, {"-Irun", "-dimageInput=file", "-dmct=mct-", "-dratio=0", "-dwlev=1"});
        start(defaults, {"-dmct=mct+", "-dratio=0; 10", "-dwlev=max", "-r", "-LPERF"});
        start(small, {"-fEncoder", "-dsize=2x2"});
        std::filesystem::create_directory(replayed.path("pictures"));
        replayed.write("pictures/rose.bmp", bmpOf(24));
        replayed.write("pictures/sbikers2.bmp", bmpOf(8));
        std::string farAway = bmpOf(24);
        farAway[13] = 0x7f; // pixels 2 GB behind the headers
        replayed.write("pictures/far.bmp", farAway);
        replayed.write("run.ini", recorded.read("run.ini"));
        replayed.start({"-B", "-mp_jpeg2k", "-p" + replayed.path("pictures"), "-i" + replayed.path("run.ini"),
                        "-dbmpFile=rose.bmp; sbikers2.bmp; far.bmp", "-r", "-LDATA"});
    }
};

Runs& runs()
{
    static Runs all;
    return all;
}

std::string rowsOf(Program& run)
{
    return inAnyOrder(parameterCells(performanceTable(run.read("quolkit.csv"))));
}

// "max" is 8 at 480 rows, and 9-7 has no lossless mode.
TEST(Jpeg2kCodec, NamesTheLevelsInUseAndPassesOverWhatTheCodecRefuses)
{
    Program& run = runs().defaults;
    EXPECT_EQ(run.exitCode(), 0) << run.out();
    EXPECT_EQ(rowsOf(run),
              inAnyOrder(expanded("jpeg2k_{Decoder,Encoder},8u,C3,720x480,jaehne.bmp,mct+,0,8,wt53, "
                                  "jpeg2k_{Decoder,Encoder},8u,C3,720x480,jaehne.bmp,mct+,10,8,wt{53,97},")));
    EXPECT_THAT(run.out(), ContainsRegex("\nencoder:jpeg2kcodec.exe -i jaehne.bmp -o jaehne.jp2 -linf\\+ "
                                         "-mct\\+ -ratio 10 -wlev 8 -wt wt97\n"
                                         "decoder:jpeg2kcodec.exe -i jaehne.jp2 -o jaehne.bmp -linf\\+\n"
                                         ".* perf=[ 0-9.e+]+/ *3.46e\\+05="));
    EXPECT_THAT(linesWith(run.out(), "encoder:"), SizeIs(6));
    EXPECT_THAT(linesWith(run.out(), "decoder:"), SizeIs(3));
}

TEST(Jpeg2kCodec, ReplaysPicturesOfItsNumberOfChannels)
{
    EXPECT_EQ(runs().recorded.exitCode(), 0);
    EXPECT_THAT(runs().recorded.read("run.ini"), HasSubstr("\nbmpFile=rose.bmp; sbikers2.bmp\n"));
    Program& run = runs().replayed;
    EXPECT_EQ(run.exitCode(), 0);
    EXPECT_EQ(rowsOf(run),
              inAnyOrder(expanded("jpeg2k_{Decoder,Encoder},8u,C3,48x40,rose.bmp,mct-,0,1,wt53,")));
    const Cells messages = linesWith(run.out(), "--- ");
    const std::string grey = "--- Can't load file sbikers2.bmp: biBitCount != 24";
    const std::string cut = "--- Can't load file far.bmp: Read error";
    EXPECT_EQ(messages, (Cells{grey, cut, grey, cut}));
}

// The bytes of each memory block that is listed, in hexadecimal.
Cells blocksOf(const std::string& out)
{
    Cells found;
    bool inside = false;
    for (const std::string& line : linesOf(out)) {
        const bool starts = line.starts_with("========");
        if (starts) inside = line.find(": MemoryBlock size=") != std::string::npos;
        if (starts && inside) found.emplace_back();
        if (!starts && inside) found.back() += line;
    }
    return found;
}

TEST(Jpeg2kCodec, DecodesThePictureThatWasEncoded)
{
    // Pixels, BMP file, JP2 file; before and after, of both tests, the decoder's first.
    const Cells blocks = blocksOf(runs().replayed.out());
    ASSERT_THAT(blocks, SizeIs(12));
    ASSERT_THAT(blocks[0], SizeIs(testing::Ge(2u * 48 * 40 * 3)));
    EXPECT_THAT(blocks[1], testing::Not(EndsWith(blocks[0])));
    EXPECT_THAT(blocks[4], EndsWith(blocks[0]));
    EXPECT_EQ(blocks[11], blocks[2]) << "what the encoder test makes is what the decoder test reads";
}

TEST(Jpeg2kCodec, TellsWhatFailed)
{
    Program& run = runs().small;
    EXPECT_EQ(run.exitCode(), 1);
    EXPECT_THAT(run.out(),
                ContainsRegex("\nError: the buffer 70 bytes is small,indispensable size [0-9]+ bytes\n"
                              "--QOV ERROR. status = -2 in jpeg2k_Encoder_8u_C3: "));
}

} // namespace
