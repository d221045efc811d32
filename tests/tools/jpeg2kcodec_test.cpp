// The command jpeg2kcodec as its users meet it: files in, files out, exit codes and texts.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "../support/tempfile.h"

namespace {

struct Result {
    int exitCode;
    std::string out, err;
};

Result codec(const std::string& words)
{
    TempFile out, err;
    const int status =
        std::system((JPEG2KCODEC " " + words + " >" + out.path() + " 2>" + err.path()).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out.read(), err.read()};
}

// A file whose name has an extension.
class NamedFile : public TempFile {
public:
    explicit NamedFile(const std::string& extension) : m_name(path() + extension) {}
    ~NamedFile() { std::remove(m_name.c_str()); }
    std::string name() const { return m_name; }
    void fill(const std::string& bytes) const { std::ofstream(m_name, std::ios::binary) << bytes; }
    std::string content() const
    {
        std::ostringstream text;
        text << std::ifstream(m_name, std::ios::binary).rdbuf();
        return text.str();
    }
    bool isThere() const { return access(m_name.c_str(), F_OK) == 0; }

private:
    std::string m_name;
};

struct Bitmap {
    int width = 5, height = 3, planes = 1, bitCount = 24, compression = 0, offset = 54;
    int missing = 0; // bytes at the end

    std::string file() const
    {
        std::string bytes = "BM";
        const auto put = [&bytes](int value, int count) {
            for (int i = 0; i < count; i++) bytes += static_cast<char>(value >> 8 * i);
        };
        for (const int field : {0, 0, offset, 40, width, height}) put(field, 4);
        put(planes, 2);
        put(bitCount, 2);
        for (const int field : {compression, 0, 0, 0, 0, 0}) put(field, 4);
        const int rows = 3 * ((5 * bitCount / 8 + 3) / 4 * 4);
        for (int i = 0; i < rows - missing; i++) bytes += static_cast<char>(i * 7);
        return bytes;
    }
};

TEST(Jpeg2kCodec, MakesAFileOrNone)
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
                          {{.height = -3}, damaged},
                          {{.width = 0}, damaged},
                          {{.width = 0x7fffffff, .height = 0x7fffffff}, damaged},
                          {{.planes = 3}, damaged},
                          {{.offset = 1000}, damaged},
                          {{.offset = -1}, damaged},
                          {{.bitCount = 32}, depth},
                          {{.bitCount = 8, .compression = 1}, "The bitmap data is compressed.\n"}}) {
        NamedFile source(".bmp"), target(".jp2");
        source.fill(c.bitmap.file());
        const Result result = codec("-i " + source.name() + " -o " + target.name());
        EXPECT_EQ(result.exitCode, c.failure.empty() ? 0 : 1);
        EXPECT_EQ(result.err.substr(0, 13 + c.failure.size()),
                  c.failure.empty() ? "" : "jpeg2kcodec: " + c.failure);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(target.isThere(), c.failure.empty());
        if (target.isThere()) {
            EXPECT_EQ(target.content().substr(4, 4), "jP  ");
        }
    }
}

TEST(Jpeg2kCodec, BitmapsComeBack)
{
    for (const int bitCount : {24, 8}) {
        const Bitmap bitmap{.bitCount = bitCount};
        NamedFile source(".bmp"), jp2(".jp2"), target(".bmp"), colours(".ppm"), plain(".pnm");
        source.fill(bitmap.file());
        ASSERT_EQ(codec("-i " + source.name() + " -o " + jp2.name()).exitCode, 0);
        const Result result = codec("-i " + jp2.name() + " -o " + target.name());
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err.find("jpeg2kcodec: There are no resolution values specified"), 0u);
        // Behind headers and palette are the rows, whose padding is cleared.
        const std::string rows = target.content().substr(bitCount == 8 ? 54 + 1024 : 54);
        const std::string original = bitmap.file().substr(54);
        ASSERT_EQ(rows.size(), original.size());
        const size_t step = original.size() / 3, used = static_cast<size_t>(5 * bitCount / 8);
        std::string binary, text;
        for (size_t y = 3; y-- > 0;) {
            EXPECT_EQ(rows.substr(y * step, used), original.substr(y * step, used));
            for (size_t i = 0; i < used; i++) {
                const size_t x = bitCount == 8 ? i : i - i % 3 + 2 - i % 3; // blue is first
                binary += original[y * step + x];
                text += std::to_string(static_cast<unsigned char>(binary.back()));
                text += i + 1 == used ? '\n' : ' ';
            }
        }
        EXPECT_EQ(codec("-i " + jp2.name() + " -o " + colours.name()).err, "");
        EXPECT_EQ(colours.content(), (bitCount == 8 ? "P5\n5 3\n255\n" : "P6\n5 3\n255\n") + binary);
        EXPECT_EQ(codec("-pnm plain -i " + jp2.name() + " -o " + plain.name()).err, "");
        EXPECT_EQ(plain.content(), (bitCount == 8 ? "P2\n5 3\n255\n" : "P3\n5 3\n255\n") + text);
    }
}

TEST(Jpeg2kCodec, DamagedFilesGiveNoImage)
{
    NamedFile source(".bmp"), whole(".jp2"), damaged(".jp2"), stream(".j2k"), target(".bmp");
    source.fill(Bitmap{}.file());
    ASSERT_EQ(codec("-i " + source.name() + " -o " + whole.name()).exitCode, 0);
    const std::string file = whole.content();
    const auto decodes = [&](const NamedFile& from, const std::string& bytes) {
        from.fill(bytes);
        const Result result = codec("-i " + from.name() + " -o " + target.name());
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_FALSE(target.isThere());
        return result.err;
    };
    const auto beginsWith = [](const std::string& text, const std::string& start) {
        return text.rfind("jpeg2kcodec: " + start, 0) == 0;
    };
    const std::string noData = "There is no data to read from input stream.\n";
    EXPECT_TRUE(beginsWith(decodes(damaged, file.substr(0, file.size() - 9)), noData));
    EXPECT_TRUE(beginsWith(decodes(damaged, ""), noData));
    EXPECT_TRUE(beginsWith(decodes(stream, file), "SOC marker not found"));
    const std::string headers = file.substr(0, file.find("jp2c") - 4);
    EXPECT_TRUE(beginsWith(decodes(damaged, headers), "There are no codestreams in JP2 files"));
    // Lines of warnings end.
    std::string boxes = headers;
    for (int i = 0; i < 1000; i++) boxes += std::string("\0\0\0\x8xxxx", 8);
    const std::string lines = decodes(damaged, boxes);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 22);
    EXPECT_NE(lines.find("jpeg2kcodec: further warnings are not shown\n"), std::string::npos);
}

TEST(Jpeg2kCodec, AFileThatIsThereStaysWhenEncodingFails)
{
    NamedFile source(".bmp"), target(".jp2");
    source.fill("no bitmap");
    target.fill("old");
    EXPECT_EQ(codec("-i " + source.name() + " -o " + target.name()).exitCode, 1);
    EXPECT_EQ(target.content(), "old");
}

TEST(Jpeg2kCodec, FaultsOfTheLineAreTold)
{
    EXPECT_EQ(
        codec("-i a.bmp -wt wt97").err,
        "jpeg2kcodec: Both wt97 irreversible float point wavelet transform\nand lossless mode (-ratio 0) "
        "were specified.\nPlease, use different 'ratio' value or 'wt' mode.\n");
    EXPECT_EQ(codec("-i nowhere.bmp").err, "jpeg2kcodec: nowhere.bmp: No such file or directory\n");
    EXPECT_EQ(codec("-i a.jp2").err,
              "jpeg2kcodec: there is nowhere to show the image: name an output file by -o\n");
    EXPECT_EQ(codec("-i a.jp2 -o a.j2k").err, "jpeg2kcodec: destination file has unknown extension.\n");
    EXPECT_EQ(codec("-i nowhere.j2k -o a.bmp").err, "jpeg2kcodec: nowhere.j2k: No such file or directory\n");
    const Result help = codec("-wlev -h");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.out.find("Command line options:\n"), 0u);
    EXPECT_EQ(help.err, "");
}

} // namespace
