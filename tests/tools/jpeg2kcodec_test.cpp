// The command jpeg2kcodec as its users meet it: files in, files out, exit codes and texts.
#include "tool_test.h"

#include <gmock/gmock.h>

#include <algorithm>

using testing::StartsWith;

namespace {

class Jpeg2kCodec : public ToolTest {
protected:
    Result codec(const std::string& words) const { return shell(JPEG2KCODEC " " + words); }
    std::string decode(const std::string& from, const std::string& to, const std::string& keys = "") const
    {
        const Result result = codec(keys + " -i " + from + " -o " + to);
        EXPECT_EQ(result.exitCode, 0) << to;
        EXPECT_EQ(result.out, "") << to;
        return result.err;
    }
};

struct Bitmap {
    unsigned width = 5, height = 3, planes = 1, bitCount = 24, compression = 0, offset = 54;
    unsigned missing = 0; // bytes at the end

    std::string file() const
    {
        std::string bytes = "BM";
        for (const unsigned field : {0u, 0u, offset, 40u, width, height}) bytes += littleEndian(field, 4);
        bytes += littleEndian(planes, 2) + littleEndian(bitCount, 2) + littleEndian(compression, 4);
        bytes += std::string(20, '\0');
        const unsigned rows = 3 * ((5 * bitCount / 8 + 3) / 4 * 4);
        for (unsigned i = 0; i < rows - missing; i++) bytes += static_cast<char>(i * 7);
        return bytes;
    }
};

TEST_F(Jpeg2kCodec, MakesAFileOrNone)
{
    const std::string damaged = "There is a damge in the bitmap data or this file is not a bitmap file.\n";
    const std::string depth = "The bitmap data has not supported bit depth.\n";
    struct Case {
        Bitmap bitmap;
        std::string failure; // none: a file
    };
    for (const Case& c : {Case{{}, ""},
                          {{.missing = 1}, ""}, // the padding of the last row
                          {{.missing = 2}, damaged},
                          {{.height = -3u}, damaged},
                          {{.width = 0}, damaged},
                          {{.width = 0x7fffffff, .height = 0x7fffffff}, damaged},
                          {{.planes = 3}, damaged},
                          {{.offset = 1000}, damaged},
                          {{.offset = -1u}, damaged},
                          {{.bitCount = 32}, depth},
                          {{.bitCount = 8, .compression = 1}, "The bitmap data is compressed.\n"}}) {
        fs::remove(m_dir / "a.jp2");
        write("a.bmp", c.bitmap.file());
        const Result result = codec("-i a.bmp -o a.jp2");
        EXPECT_EQ(result.exitCode, c.failure.empty() ? 0 : 1);
        EXPECT_THAT(result.err, StartsWith(c.failure.empty() ? "" : "jpeg2kcodec: " + c.failure));
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(exists("a.jp2"), c.failure.empty());
        if (c.failure.empty()) {
            EXPECT_EQ(result.err, "");
            EXPECT_EQ(read("a.jp2").substr(4, 4), "jP  ");
        }
    }
}

TEST_F(Jpeg2kCodec, BitmapsComeBack)
{
    for (const bool isGrey : {false, true}) {
        const Bitmap bitmap{.bitCount = isGrey ? 8u : 24u};
        write("in.bmp", bitmap.file());
        ASSERT_EQ(codec("-i in.bmp -o in.jp2").exitCode, 0);
        EXPECT_THAT(decode("in.jp2", "out.bmp"),
                    StartsWith("jpeg2kcodec: There are no resolution values specified"));
        // Behind headers and palette are the rows, whose padding is cleared.
        const std::string rows = read("out.bmp").substr(isGrey ? 54 + 1024 : 54);
        const std::string original = bitmap.file().substr(54);
        ASSERT_EQ(rows.size(), original.size());
        const size_t step = original.size() / 3, used = isGrey ? 5 : 15;
        std::string binary, text;
        for (size_t y = 3; y-- > 0;) {
            EXPECT_EQ(rows.substr(y * step, used), original.substr(y * step, used));
            for (size_t i = 0; i < used; i++) {
                const size_t x = isGrey ? i : i - i % 3 + 2 - i % 3; // blue is first
                binary += original[y * step + x];
                text += std::to_string(static_cast<unsigned char>(binary.back()));
                text += i + 1 == used ? '\n' : ' ';
            }
        }
        EXPECT_EQ(decode("in.jp2", "out.ppm"), "");
        EXPECT_EQ(read("out.ppm"), (isGrey ? "P5\n5 3\n255\n" : "P6\n5 3\n255\n") + binary);
        EXPECT_EQ(decode("in.jp2", "out.pnm", "-pnm plain"), "");
        EXPECT_EQ(read("out.pnm"), (isGrey ? "P2\n5 3\n255\n" : "P3\n5 3\n255\n") + text);
    }
}

TEST_F(Jpeg2kCodec, DamagedFilesGiveNoImage)
{
    write("in.bmp", Bitmap{}.file());
    ASSERT_EQ(codec("-i in.bmp -o in.jp2").exitCode, 0);
    const std::string file = read("in.jp2"), headers = file.substr(0, file.find("jp2c") - 4);
    std::string boxes = headers;
    for (int i = 0; i < 1000; i++) boxes += std::string("\0\0\0\x8xxxx", 8);
    const std::string noData = "There is no data to read from input stream.\n";
    const struct {
        const char* name;
        std::string bytes, begins;
    } cases[] = {
        {"a.jp2", file.substr(0, file.size() - 9), noData},
        {"a.jp2", "", noData},
        {"a.j2k", file, "SOC marker not found"},
        {"a.jp2", headers, "There are no codestreams in JP2 files"},
        {"a.jp2", boxes, ""},
    };
    std::string lines;
    for (const auto& c : cases) {
        write(c.name, c.bytes);
        const Result result = codec(std::string("-i ") + c.name + " -o out.bmp");
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_FALSE(exists("out.bmp"));
        EXPECT_THAT(result.err, StartsWith("jpeg2kcodec: " + c.begins));
        lines = result.err;
    }
    // Warnings of the last one come to an end.
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 22);
    EXPECT_THAT(lines, testing::HasSubstr("jpeg2kcodec: further warnings are not shown\n"));
}

TEST_F(Jpeg2kCodec, AFileThatIsThereStaysWhenEncodingFails)
{
    write("a.bmp", "no bitmap");
    write("a.jp2", "old");
    EXPECT_EQ(codec("-i a.bmp -o a.jp2").exitCode, 1);
    EXPECT_EQ(read("a.jp2"), "old");
}

TEST_F(Jpeg2kCodec, FaultsOfTheLineAreTold)
{
    const struct {
        const char *words, *text;
    } cases[] = {
        {"-i a.bmp -wt wt97",
         "Both wt97 irreversible float point wavelet transform\nand lossless mode (-ratio "
         "0) were specified.\nPlease, use different 'ratio' value or 'wt' mode.\n"},
        {"-i nowhere.bmp", "nowhere.bmp: No such file or directory\n"},
        {"-i a.jp2", "there is nowhere to show the image: name an output file by -o\n"},
        {"-i a.jp2 -o a.j2k", "destination file has unknown extension.\n"},
        {"-i nowhere.j2k -o a.bmp", "nowhere.j2k: No such file or directory\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(codec(c.words).err, std::string("jpeg2kcodec: ") + c.text);
    const Result help = codec("-wlev -h");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, StartsWith("Command line options:\n"));
    EXPECT_EQ(help.err, "");
}

} // namespace
