// The command jpegcodec as its users meet it: files in, files out, exit codes and texts.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "../support/md5.h"
#include "../support/shared_data.h"

namespace fs = std::filesystem;

namespace {
std::string readFile(const fs::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

struct Result {
    int exitCode;
    std::string out, err;
};

// A folder of its own for each test, in which the programs run.
class JpegCodec : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = testing::TempDir() + "jpegcodec_XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_root = pattern;
        m_dir = m_root / "work";
        fs::create_directory(m_dir);
    }
    void TearDown() override { fs::remove_all(m_root); }

    Result shell(const std::string& command) const
    {
        const int status =
            std::system(("cd " + m_dir.string() + " && (" + command + ") >../out 2>../err").c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(m_root / "out"),
                readFile(m_root / "err")};
    }
    Result codec(const std::string& words) const { return shell(JPEGCODEC " " + words); }

    // Of a command that has nothing to say.
    void succeed(const std::string& words) const
    {
        const Result result = codec(words);
        EXPECT_EQ(result.exitCode, 0) << words;
        EXPECT_EQ(result.err, "") << words;
    }

    // Fails with one line that holds `text`, and leaves no file behind.
    void refuse(const std::string& words, const std::string& text, int code = 1) const
    {
        SCOPED_TRACE(words);
        const std::set<std::string> before = files();
        const Result result = codec(words);
        EXPECT_EQ(result.exitCode, code);
        EXPECT_EQ(result.err.find("jpegcodec: "), 0u) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_NE(result.err.find(text), std::string::npos) << result.err;
        EXPECT_EQ(files(), before);
    }

    void write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(m_dir / name, std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const { return readFile(m_dir / name); }
    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(m_dir)) names.insert(entry.path().filename());
        return names;
    }

    fs::path m_root, m_dir;
};

constexpr int testWidth = 61, testHeight = 47; // no multiple of any MCU

// Smooth, so that sampled-down colours lose little.
std::string testSamples(int channels)
{
    std::string samples;
    for (int y = 0; y < testHeight; y++)
        for (int x = 0; x < testWidth; x++)
            for (int c = 0; c < channels; c++)
                samples += static_cast<char>(std::lround(
                    128 + 90 * std::sin(x * (0.05 + 0.02 * c) + 1.3 * c) * std::cos(y * 0.06 - c)));
    return samples;
}

// As jpegcodec and djpeg write it.
std::string pnm(int channels, const std::string& samples, int width = testWidth, int height = testHeight)
{
    const std::string w = std::to_string(width), h = std::to_string(height);
    if (channels == 4)
        return "P7\nWIDTH " + w + "\nHEIGHT " + h + "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE CMYK\nENDHDR\n" +
               samples;
    return (channels == 1 ? "P5\n" : "P6\n") + w + " " + h + "\n255\n" + samples;
}
std::string testPnm(int channels)
{
    return pnm(channels, testSamples(channels));
}

// Of two files with the same header; 0 if it is not, 99 if they are equal.
double psnr(const std::string& a, const std::string& b, size_t samples)
{
    const size_t from = b.size() - samples;
    if (a.size() != b.size() || a.compare(0, from, b, 0, from) != 0) return 0;
    double sum = 0;
    for (size_t i = from; i < a.size(); i++)
        sum += std::pow(static_cast<unsigned char>(a[i]) - static_cast<unsigned char>(b[i]), 2);
    return sum == 0 ? 99 : 10 * std::log10(255.0 * 255 * static_cast<double>(samples) / sum);
}

std::string le(unsigned value, int bytes)
{
    std::string text;
    for (int i = 0; i < bytes; i++, value >>= 8) text += static_cast<char>(value);
    return text;
}

// 3 pixels wide.
std::string bmp(int bits, int height, const std::vector<unsigned>& palette, const std::string& rows,
                unsigned compression = 0)
{
    const auto colours = static_cast<unsigned>(palette.size());
    std::string file = "BM" + le(0, 8) + le(54 + 4 * colours, 4) + le(40, 4) + le(3, 4) +
                       le(static_cast<unsigned>(height), 4) + le(1, 2) + le(static_cast<unsigned>(bits), 2) +
                       le(compression, 4) + le(0, 12) + le(colours, 4) + le(0, 4);
    for (const unsigned colour : palette) file += le(colour, 4);
    return file + rows;
}

// A stream with a segment more behind its SOI.
std::string withSegment(const std::string& jpeg, char marker, const std::string& payload)
{
    const size_t length = payload.size() + 2;
    return jpeg.substr(0, 2) + '\xFF' + marker + static_cast<char>(length >> 8) + static_cast<char>(length) +
           payload + jpeg.substr(2);
}
} // namespace

// Every mode, sampling and colour comes back, here and in djpeg (which reads no CMYK into PPM).
TEST_F(JpegCodec, roundTripsInEveryModeSamplingAndColor)
{
    static const struct {
        int channels;
        const char *color, *stream;
    } roads[] = {{1, "Gray-Gray", "Gray"}, {3, "RGB-YCbCr", "YCbCr"}, {3, "bgr-ycbcr", "YCbCr"},
                 {3, "RGB-RGB", "RGB"},    {4, "CMYK-CMYK", "CMYK"},  {4, "CMYK-YCCK", "YCCK"}};
    static const char* const layouts[] = {"444", "422 -restart 3", "244", "411 -restart 3"};
    const bool haveDjpeg = shell("command -v djpeg").exitCode == 0;
    for (const auto& road : roads)
        for (const char* mode : {"baseline", "progressive"})
            for (const char* layout : layouts) {
                const std::string options =
                    std::string("-q 95 -mode ") + mode + " -color " + road.color + " -sampling " + layout;
                SCOPED_TRACE(options);
                const std::string samples = testSamples(road.channels);
                write("in.pnm", pnm(road.channels, samples));
                succeed("encode " + options + " in.pnm out.jpg");
                const std::string info = codec("info out.jpg").out;
                EXPECT_EQ(info.find(std::string("mode: ") + mode), 0u) << info;
                EXPECT_NE(info.find(std::string("\ncolour: ") + road.stream + "\n"), std::string::npos)
                    << info;

                const std::string expected = pnm(road.channels, samples);
                const std::string out = road.channels == 4 ? "out.pam" : "out.pnm";
                succeed("decode out.jpg " + out);
                EXPECT_GT(psnr(read(out), expected, samples.size()), 36);
                if (!haveDjpeg || road.channels == 4) continue;
                const Result other = shell("djpeg -dct int -pnm out.jpg");
                EXPECT_EQ(other.err, "");
                EXPECT_GT(psnr(other.out, expected, samples.size()), 36);
            }
    QK_SKIP_UNLESS(haveDjpeg, "djpeg is missing");
}

TEST_F(JpegCodec, losslessIsExact)
{
    const std::string source = testPnm(1);
    write("in.pgm", source);
    succeed("encode -mode lossless -sampling 411 -q 10 in.pgm out.jpg");
    succeed("decode out.jpg out.pgm");
    EXPECT_EQ(read("out.pgm"), source);
    succeed("decode out.jpg out.pam");
    EXPECT_EQ(read("out.pam"),
              "P7\nWIDTH 61\nHEIGHT 47\nDEPTH 1\nMAXVAL 255\nTUPLTYPE GRAYSCALE\nENDHDR\n" + testSamples(1));
    write("colour.ppm", testPnm(3));
    refuse("encode -mode lossless colour.ppm no.jpg", "colour.ppm: lossless mode takes grey pictures only");
    refuse("encode -mode lossless -restart 4 in.pgm no.jpg", "in.pgm: not supported");

    write("few.pgm", std::string("P5 # of a few bits\n4 1 15\n") + '\0' + '\1' + '\7' + '\17');
    succeed("encode -mode lossless few.pgm out.jpg");
    succeed("decode out.jpg out.pgm");
    EXPECT_EQ(read("out.pgm"), pnm(1, {'\0', '\x11', '\x77', '\xFF'}, 4, 1));
}

TEST_F(JpegCodec, losslessAbove8BitsIsA16BitPgm)
{
    QK_NEED_SHARED("jpeg/jpeg_lossless_sel4.jpg");
    write("in.jpg", readFile(sharedPath("jpeg/jpeg_lossless_sel4.jpg")));
    succeed("decode in.jpg out.pgm");
    const std::string header = "P5\n256 256\n65535\n", file = read("out.pgm");
    ASSERT_EQ(file.substr(0, header.size()), header);
    std::string samples = file.substr(header.size());
    for (size_t i = 0; i + 1 < samples.size(); i += 2) std::swap(samples[i], samples[i + 1]);
    EXPECT_EQ(Md5::of(samples), "29cfe7038fae548abd4af4551b2a37cb");
    refuse("decode in.jpg no.bmp", "samples up to 65535");
    refuse("encode out.pgm no.jpg", "maxval 65535");
}

// Words that mean the same give the same stream.
TEST_F(JpegCodec, takesOtherNamesAndDefaults)
{
    write("in.ppm", testPnm(3));
    const char* const pairs[][2] = {{"-sampling 420", "-sampling 411"},
                                    {"-sampling 440", "-sampling 244"},
                                    {"-color BGR-YCbCr", "-color rgb-ycbcr"},
                                    {"-q 75 -mode baseline -sampling 444 -restart 0", ""}};
    for (const auto& pair : pairs) {
        succeed(std::string("encode ") + pair[0] + " in.ppm a.jpg");
        succeed(std::string("encode ") + pair[1] + " in.ppm b.jpg");
        EXPECT_EQ(read("a.jpg"), read("b.jpg")) << pair[0];
    }
}

// A bitmap gives the stream of the same picture as PNM. Rows from the bottom, padded to four bytes.
TEST_F(JpegCodec, readsBitmaps)
{
    const std::string x(1, '\0');
    const std::string grey = "P5 3 2 255\n", colour = "P6 3 2 255\n";
    const std::string masks = le(0xFF0000, 4) + le(0xFF00, 4) + le(0xFF, 4);
    const struct {
        const char* name;
        std::string file, pnm;
    } cases[] = {
        {"1 bit", bmp(1, 2, {0xFFFFFF, 0}, "\x40" + x + x + x + "\xA0" + x + x + x),
         grey + x + "\xFF" + x + "\xFF" + x + "\xFF"},
        {"4 bits", bmp(4, 2, {0x313131, 0x323232, 0x333333}, "\x01\x20zz\x22\x10zz"), grey + "332123"},
        {"4 bits of colour", bmp(4, 2, {0x414243, 0x616263}, "\x01\x10zz" + x + x + "zz"),
         colour + "ABCABCABCABCabcabc"},
        {"8 bits, no such colour", bmp(8, -2, {0x323232}, x + x + x + "z\1\2" + x + "z"),
         grey + "222" + x + x + "2"},
        {"24 bits", bmp(24, 2, {}, "cbafedihgxyzCBAFEDIHGxyz"), colour + "ABCDEFGHIabcdefghi"},
        {"24 bits from the top", bmp(24, -2, {}, "cbafedihgxyzCBAFEDIHG"), colour + "abcdefghiABCDEFGHI"},
        {"32 bits", bmp(32, 2, {}, "cbaxfedyihgzCBAxFEDyIHGz"), colour + "ABCDEFGHIabcdefghi"},
        {"32 bits with masks", bmp(32, -2, {}, masks + "cbaxfedyihgzCBAxFEDyIHGz", 3).replace(10, 1, "\x42"),
         colour + "abcdefghiABCDEFGHI"},
    };
    for (const auto& c : cases) {
        write("in.bmp", c.file);
        write("in.pnm", c.pnm);
        succeed("encode -q 100 in.bmp bmp.jpg");
        succeed("encode -q 100 in.pnm pnm.jpg");
        EXPECT_EQ(read("bmp.jpg"), read("pnm.jpg")) << c.name;
    }
}

// What is written in one format and read again gives the stream of the same picture in another. Red is first
// in files whatever the codec was asked for.
TEST_F(JpegCodec, writesTheFormatOfTheName)
{
    for (const int channels : {3, 1}) {
        write("in.pnm", testPnm(channels));
        succeed("encode in.pnm in.jpg");
        succeed(std::string("decode in.jpg -color ") + (channels == 1 ? "gray" : "bgr") + " a.PNM");
        EXPECT_GT(psnr(read("a.PNM"), testPnm(channels), testSamples(channels).size()), 30);
        succeed("decode in.jpg b.bmp");
        for (const char* name : {"a.PNM", "b.bmp"})
            succeed(std::string("encode ") + name + " " + name[0] + ".jpg");
        EXPECT_EQ(read("a.jpg"), read("b.jpg"));
        if (channels == 3) refuse("decode in.jpg no.pgm", "3 channels do not go into a .pgm file");
    }
    refuse("decode -color RGB in.jpg no.ppm", "in.jpg: 1 components of colour Gray to RGB: not supported");
    succeed("decode in.jpg grey.pgm");
    succeed("decode in.jpg wide.ppm");
    std::string wide;
    const std::string grey = read("grey.pgm");
    for (const char sample : grey.substr(pnm(1, "").size())) wide.append(3, sample);
    EXPECT_EQ(read("wide.ppm"), pnm(3, wide));
    succeed("encode grey.pgm grey.jpg");
    succeed("encode -color RGB-Gray wide.ppm wide.jpg");
    EXPECT_EQ(read("wide.jpg"), read("grey.jpg"));

    write("in.pam", testPnm(4));
    succeed("encode in.pam in.jpg");
    refuse("decode in.jpg no.bmp", "4 channels do not go into a .bmp file");
}

TEST_F(JpegCodec, refusesWrongCommandLines)
{
    write("in.ppm", testPnm(3));
    const struct {
        const char *words, *text;
        int code = 2;
    } cases[] = {
        {"", "no command"},
        {"pack in.ppm no.jpg", "'pack'"},
        {"encode in.ppm", "1 file names where 2"},
        {"encode -speed 3 in.ppm no.jpg", "-speed"},
        {"encode in.ppm -", "unknown option -;"},
        {"encode in.ppm no.jpg -q", "-q lacks its value"},
        {"encode -q 101 in.ppm no.jpg", "-q '101'"},
        {"encode -q 75x in.ppm no.jpg", "-q '75x'"},
        {"encode -q 99999999999 in.ppm no.jpg", "-q '99999999999'"},
        {"encode -restart -1 in.ppm no.jpg", "-restart '-1'"},
        {"encode -sampling 421 in.ppm no.jpg", "-sampling '421'"},
        {"decode in.jpg no.xyz", "no.xyz: '.xyz'"},
        {"decode -color HSV in.jpg no.ppm", "-color 'HSV'"},
        {"encode -color Gray-Gray in.ppm no.jpg", "in.ppm: the picture has 3 channels", 1},
        {"encode none.ppm no.jpg", "none.ppm: No such file or directory", 1},
        {"encode . no.jpg", ".: Is a directory", 1},
        {"encode in.ppm .", ".: Is a directory", 1},
        {"decode in.ppm no.ppm", "in.ppm: ", 1},
    };
    for (const auto& c : cases) refuse(c.words, c.text, c.code);
    const Result help = codec("encode -h");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("jpegcodec encode"), std::string::npos);
}

TEST_F(JpegCodec, refusesHostilePictures)
{
    const auto patched = [&](size_t at, unsigned value, int bytes) {
        return bmp(24, 2, {}, std::string(24, 'x')).replace(at, static_cast<size_t>(bytes), le(value, bytes));
    };
    const struct {
        std::string file, text;
    } cases[] = {
        {"", "neither"},
        {"P3 1 1 255 1 2 3", "'P3'"},
        {"P5 0 4 255\n", "width '0'"},
        {"P5 4 99999999999999999999 255\n", "height '99999999999999999999'"},
        {"P5 4 4 65536\n", "maxval '65536'"},
        {"P5 4 4 256\n123", "3 of 32 bytes"},
        {"P6 2147483647 2147483647 255\n123", "2147483647x2147483647 is too large"},
        {"P5 65536 1 255\n" + std::string(65536, 'x'), "65536x1"},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 2\nMAXVAL 255\nENDHDR\nxx", "DEPTH 2"},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nENDHDR\nxx", "lacks"},
        {"P7\nDEEP 1\nENDHDR\nxx", "'DEEP'"},
        {"P7\nWIDTH 1\nTUPLTYPE", "ends inside its header"},
        {"BM", "ends inside the bitmap's header"},
        {patched(14, 12, 4), "header size 12"},
        {patched(18, 0xFFFFFFFF, 4), "width -1"},
        {patched(22, 0, 4), "height 0"},
        {patched(22, 0x80000000, 4), "3x2147483648 is too large"},
        {patched(22, 3, 4), "24 of 33 bytes of samples"},
        {patched(28, 16, 2), "bit count 16"},
        {patched(30, 1, 4), "compression 1"},
        {patched(10, 0xFFFFFFFF, 4), "offset of the samples 4294967295"},
        {bmp(4, 2, std::vector<unsigned>(17), ""), "number of colours 17"},
        {bmp(8, 2, {0, 1}, "").replace(10, 1, "\x36").substr(0, 60), "ends inside the bitmap's palette"},
        {bmp(32, 2, {}, std::string(24, 'x'), 3), "colour mask"},
    };
    for (const auto& c : cases) {
        write("in", c.file);
        refuse("encode in no.jpg", c.text);
    }
}

// What stood under the name before a failure still does, and its rights outlast a success.
TEST_F(JpegCodec, leavesAnOldFileAlone)
{
    write("in.ppm", testPnm(3));
    write("out.jpg", "old");
    fs::permissions(m_dir / "out.jpg", fs::perms(0600));
    refuse("encode -mode lossless in.ppm out.jpg", "grey");
    EXPECT_EQ(read("out.jpg"), "old");
    succeed("encode in.ppm out.jpg");
    EXPECT_NE(read("out.jpg"), "old");
    EXPECT_EQ(fs::status(m_dir / "out.jpg").permissions(), fs::perms(0600));
    succeed("encode in.ppm " + std::string(250, 'n') + ".jpg"); // as long as names get

    // A disk that is full after 512 bytes: nothing is left of the file that did not fit.
    const std::set<std::string> before = files();
    const Result full = shell("trap '' XFSZ; ulimit -f 1; " JPEGCODEC " encode in.ppm no.jpg");
    EXPECT_EQ(full.exitCode, 1);
    EXPECT_EQ(full.err, "jpegcodec: no.jpg: File too large\n");
    EXPECT_EQ(files(), before);

    if (geteuid() != 0) { // who may write to any file
        fs::permissions(m_dir / "out.jpg", fs::perms(0400));
        refuse("encode in.ppm out.jpg", "out.jpg: Permission denied");
    }
    QK_SKIP_UNLESS(access("/dev/full", W_OK) == 0, "/dev/full is missing");
    refuse("encode in.ppm /dev/full", "/dev/full: No space left on device");
}

TEST_F(JpegCodec, writesThePartialPictureOfABaselineStreamOnly)
{
    write("in.ppm", testPnm(3));
    succeed("encode in.ppm whole.jpg");
    succeed("decode whole.jpg whole.ppm");
    const std::string jpeg = read("whole.jpg"), whole = read("whole.ppm");
    const size_t twoRows = 12 + 2 * 3 * testWidth * 8; // header and two rows of MCUs
    const struct {
        size_t bytes, same;
    } cuts[] = {{jpeg.size() - 2, whole.size()}, {jpeg.size() * 3 / 4, twoRows}};
    for (const auto& cut : cuts) {
        write("cut.jpg", jpeg.substr(0, cut.bytes));
        const Result result = codec("decode cut.jpg cut.ppm");
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "jpegcodec: cut.jpg: the data end early: a partial picture\n");
        EXPECT_EQ(read("cut.ppm").size(), whole.size());
        EXPECT_EQ(read("cut.ppm").substr(0, cut.same), whole.substr(0, cut.same));
    }
    write("cut.jpg", jpeg.substr(0, 20));
    refuse("decode cut.jpg no.ppm", "cut.jpg: buffer too small");

    succeed("encode -mode progressive in.ppm whole.jpg");
    write("cut.jpg", read("whole.jpg").substr(0, read("whole.jpg").size() - 2));
    refuse("decode cut.jpg no.ppm", "cut.jpg: buffer too small");
}

// A frame header that claims 65535x65535 ends soon and without memory for it, in every mode.
TEST_F(JpegCodec, refusesAbsurdFrames)
{
    write("in.pgm", testPnm(1));
    for (const char* mode : {"baseline", "progressive", "lossless"}) {
        succeed(std::string("encode -mode ") + mode + " in.pgm in.jpg");
        std::string jpeg = read("in.jpg");
        const size_t frame = std::min({jpeg.find("\xFF\xC0"), jpeg.find("\xFF\xC2"), jpeg.find("\xFF\xC3")});
        ASSERT_NE(frame, std::string::npos);
        write("in.jpg", jpeg.replace(frame + 5, 4, "\xFF\xFF\xFF\xFF"));
        refuse("decode in.jpg no.pgm", "in.jpg: a picture of 65535x65535 is too large");
    }
}

// Noise at the highest quality needs more than the first buffer.
TEST_F(JpegCodec, growsItsBuffer)
{
    std::string noise;
    for (unsigned i = 0, state = 1; i < 500 * 400 * 3; i++)
        noise += static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    const std::string source = pnm(3, noise, 500, 400);
    write("in.ppm", source);
    for (const char* mode : {"baseline", "progressive"}) {
        succeed(std::string("encode -q 100 -color RGB-RGB -mode ") + mode + " in.ppm out.jpg");
        EXPECT_GT(read("out.jpg").size(), noise.size() / 2 + 65536);
        succeed("decode out.jpg out.ppm");
        EXPECT_GT(psnr(read("out.ppm"), source, noise.size()), 40);
    }
}

TEST_F(JpegCodec, infoTellsWhatTheSegmentsSay)
{
    write("in.ppm", testPnm(3));
    succeed("encode -sampling 420 -restart 2 in.ppm in.jpg");
    std::string jpeg = read("in.jpg");
    jpeg = withSegment(jpeg, '\xE0', std::string("AVI1\1\0\0\0\0\0\0\0\0\0", 14));
    jpeg = withSegment(jpeg, '\xE0', std::string("JFXX\0\x13", 6));
    jpeg = withSegment(jpeg, '\xE1',
                       std::string("Exif\0\0MM\0*\0\0\0\x08\0\x02\1\x0F\0\x02\0\0\0\3A\n\0\0"
                                   "\x82\x9A\0\x0C\0\0\0\1\0\0\0\0\0\0\0\0",
                                   44));
    write("in.jpg", jpeg);
    const Result info = codec("info in.jpg");
    EXPECT_EQ(info.exitCode, 0);
    EXPECT_EQ(info.err, "");
    for (const char* lines :
         {"mode: baseline\nprecision: 8\nsize: 61x47\ncomponents: 3\n"
          "component 0: id 0, factors 2x2, quantisation table 0, DC table 0, AC table 0\n",
          "component 2: id 2, factors 1x1, quantisation table 1, DC table 1, AC table 1\n"
          "sampling: 411\ncolour: YCbCr\nrestart interval: 2\n",
          "\nquantisation table 1: 9 ",
          "\nHuffman table DC 0: counts 0 1 5 1 1 1 1 1 1 0 0 0 0 0 0 0, values 0 1 2 3 4 5 6 7 8 9 10 11\n",
          "\nHuffman table AC 1: counts 0 2 1 2 ", "\ncomment: JPEG encoder based on qovJP [",
          "JFIF version: 1.02\nJFIF units: 0\nJFIF density: 1x1\nJFIF thumbnail: 0x0\n"
          "JFXX thumbnail type: 19\nAVI1 polarity: 1\n",
          "Exif bytes: 38\nExif byte order: MM\nExif status: no error\nIFD0 entries: 2\n"
          "IFD0 0: tag:0x010F, name:Make, value:A\\x0A\nIFD0 1: tag:0x829A, type 12 without a text\n"})
        EXPECT_NE(info.out.find(lines), std::string::npos) << lines << "\n" << info.out;

    succeed("encode -color RGB-RGB in.ppm in.jpg");
    write("in.jpg", withSegment(read("in.jpg"), '\xE1', std::string("Exif\0\0MM\0*", 10)));
    const std::string rgb = codec("info in.jpg").out;
    for (const char* lines :
         {"\ncolour: RGB\n", "\nAdobe version: 100\nAdobe flags: 0x0000 0x0000\nAdobe transform: 0\n",
          "\nExif status: buffer too small\n"})
        EXPECT_NE(rgb.find(lines), std::string::npos) << lines << "\n" << rgb;
}
