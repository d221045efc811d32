// The ways into the decoder: what source, what destination, how much room. That pictures come out right is
// seen beside other programs.
#include "codec_testing.h"

#include <gtest/gtest.h>

using namespace jpeg2000;

namespace {

std::string fileOf(const std::string& rows, int width, int height, int bitCount, const char* gray = "auto")
{
    return encodedBitmap(std::string("-i a.bmp -gray ") + gray, rows, width, height, bitCount, 65536).file;
}

std::string codestreamOf(const std::string& file)
{
    return file.substr(file.find("\xFF\x4F\xFF\x51"));
}

struct Decoded {
    int result;
    std::string file, printed;
};

Decoded decodeInto(uint32_t room, std::string file, const CmdOptions& options)
{
    std::string buffer(room, '#');
    _BMPBUFF bmp{reinterpret_cast<uint8_t*>(buffer.data()), nullptr, 0, 0, 0, room, 0, 0};
    testing::internal::CaptureStdout();
    const int result = decode(options, deafSink, sourceOf(file), bmp);
    return {result, buffer.substr(0, bmp.length), testing::internal::GetCapturedStdout()};
}

const std::string greys("\x10\x20\x30\0\x40\x50\xFF\0", 8); // rows of 3x2 from the bottom up

TEST(Decode, AnImageNeedsRoom)
{
    const std::string file = fileOf(greys, 3, 2, 8);
    struct Case {
        CmdOptions options;
        uint32_t needed;
        std::string name, end;
    };
    for (const Case& c :
         {Case{optionsOf("-i a.jp2 -o a.bmp"), 54 + 1024 + 8, "bmpFile", greys},
          {optionsOf("-i a.jp2 -o a.pgm"), 11 + 6, "pnmFile", "255\n\x40\x50\xFF\x10\x20\x30"},
          // Text has room for digits that do not come.
          {optionsOf("-i a.jp2 -o a.pgm -pnm plain"), 11 + 6 * 4, "pnmFile", "64 80 255\n16 32 48\n"}}) {
        const Decoded whole = decodeInto(c.needed, file, c.options);
        EXPECT_EQ(whole.result, 0);
        EXPECT_EQ(whole.printed, "");
        EXPECT_EQ(whole.file.substr(whole.file.size() - c.end.size()), c.end);
        const Decoded refused = decodeInto(c.needed - 1, file, c.options);
        EXPECT_EQ(refused.result, -1);
        EXPECT_EQ(refused.file, "");
        EXPECT_EQ(refused.printed, "Error: the buffer for " + c.name + " " + std::to_string(c.needed - 1) +
                                       " bytes is small,indispensable size " + std::to_string(c.needed) +
                                       " bytes\n");
    }
    const std::string stream = codestreamOf(file);
    EXPECT_EQ(decodeInto(100, stream, optionsOf("-i a.j2k -o a.pgm")).file,
              "P5\n3 2\n255\n\x40\x50\xFF\x10\x20\x30");
}

TEST(Decode, TheImageInMemoryIsTheLastCodestream)
{
    // The second codestream in a box of its own behind the first, whose box gets a length.
    const std::string streams[] = {codestreamOf(fileOf(greys, 3, 2, 8)),
                                   codestreamOf(fileOf(std::string("\1\2\3\0", 4), 1, 1, 24))};
    std::string file = fileOf(greys, 3, 2, 8, "never");
    file.resize(file.find("jp2c") - 4);
    for (const std::string& stream : streams)
        file += std::string("\0\0", 2) + static_cast<char>((stream.size() + 8) >> 8) +
                static_cast<char>(stream.size() + 8) + "jp2c" + stream;
    _METABUFF meta;
    ASSERT_EQ(decode(optionsOf("-i a.jp2 -o a.bmp"), deafSink, sourceOf(file), meta), 0);
    ASSERT_EQ(meta.components.size, 3u);
    for (unsigned i = 0; i < 3; i++) EXPECT_EQ(meta.components[i].row(0)[0], 3 - static_cast<int>(i));
    EXPECT_TRUE(meta.image.palette.isPalettized);

    // Nothing of it is left for the next one.
    std::string stream = streams[0];
    ASSERT_EQ(decode(optionsOf("-i a.jpc -o a.bmp"), deafSink, sourceOf(stream), meta), 0);
    ASSERT_EQ(meta.components.size, 1u);
    EXPECT_EQ(meta.components[0].row(0)[2], 255);
    EXPECT_FALSE(meta.image.palette.isPalettized);

    testing::internal::CaptureStdout();
    EXPECT_EQ(decode(optionsOf("-i a.bmp -o a.jp2"), deafSink, sourceOf(stream), meta), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n  Error decode(): CmdOptions::jp2 ");
}

} // namespace
