// The command jpegcodec as its users meet it: files in, files out, exit codes and texts.
#include "tool_test.h"

#include "../support/md5.h"
#include "../support/shared_data.h"

#include <gmock/gmock.h>

#include <cmath>
#include <vector>

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {
class JpegCodec : public ToolTest {
protected:
    Result codec(const std::string& words) const { return shell(JPEGCODEC " " + words); }

    // Of a command that has nothing to complain of; what it prints.
    std::string succeed(const std::string& words) const
    {
        const Result result = codec(words);
        EXPECT_EQ(result.exitCode, 0) << words;
        EXPECT_EQ(result.err, "") << words;
        return result.out;
    }

    // Fails with one line that holds `text`, and leaves no file behind.
    void refuse(const std::string& words, const std::string& text, int code = 1) const
    {
        const std::set<std::string> before = files();
        const Result result = codec(words);
        EXPECT_EQ(result.exitCode, code) << words;
        EXPECT_THAT(result.err, AllOf(StartsWith("jpegcodec: "), HasSubstr(text))) << words;
        EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << words;
        EXPECT_EQ(files(), before) << words;
    }

    void expectSameStreams(const std::string& a, const std::string& b) const
    {
        succeed("encode " + a + " a.jpg");
        succeed("encode " + b + " b.jpg");
        EXPECT_EQ(read("a.jpg"), read("b.jpg")) << a;
    }
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

// Of two PNM files of the same kind and size; 0 if they are not, 99 if they are equal.
double psnr(const std::string& a, const std::string& b)
{
    const size_t from = b.find("255\n") + 4; // of PAM two more lines, the same in both
    if (a.size() != b.size() || a.compare(0, from, b, 0, from) != 0) return 0;
    double sum = 0;
    for (size_t i = from; i < a.size(); i++)
        sum += std::pow(static_cast<unsigned char>(a[i]) - static_cast<unsigned char>(b[i]), 2);
    return sum == 0 ? 99 : 10 * std::log10(255.0 * 255 * static_cast<double>(a.size() - from) / sum);
}

// 3 pixels wide.
std::string bmp(int bits, int height, const std::vector<unsigned>& palette, const std::string& rows,
                unsigned compression = 0)
{
    const auto colours = static_cast<unsigned>(palette.size());
    std::string file = "BM" + littleEndian(0, 8) + littleEndian(54 + 4 * colours, 4) + littleEndian(40, 4) +
                       littleEndian(3, 4) + littleEndian(static_cast<unsigned>(height), 4) +
                       littleEndian(1, 2) + littleEndian(static_cast<unsigned>(bits), 2) +
                       littleEndian(compression, 4) + littleEndian(0, 12) + littleEndian(colours, 4) +
                       littleEndian(0, 4);
    for (const unsigned colour : palette) file += littleEndian(colour, 4);
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

// Every mode, sampling and colour comes back. The factors of 244 are those of 422.
TEST_F(JpegCodec, roundTripsInEveryModeSamplingAndColor)
{
    static const struct {
        int channels;
        const char *options, *mode, *layout;
    } roads[] = {
        {1, "-color Gray-Gray -sampling 411", "baseline", "444\ncolour: Gray\n"},
        {3, "-color RGB-YCbCr -sampling 422 -mode progressive -restart 3", "progressive",
         "422\ncolour: YCbCr\nrestart interval: 3\n"},
        {3, "-color bgr-ycbcr -sampling 411 -restart 5", "baseline",
         "411\ncolour: YCbCr\nrestart interval: 5\n"},
        {3, "-color RGB-RGB -sampling 244 -mode progressive", "progressive", "422\ncolour: RGB\n"},
        {4, "-color CMYK-CMYK -sampling 422", "baseline", "422\ncolour: CMYK\n"},
        {4, "-color CMYK-YCCK -sampling 411 -mode progressive", "progressive", "411\ncolour: YCCK\n"},
    };
    for (const auto& road : roads) {
        SCOPED_TRACE(road.options);
        const std::string source = testPnm(road.channels), out = road.channels == 4 ? "out.pam" : "out.pnm";
        write("in.pnm", source);
        succeed(std::string("encode -q 95 ") + road.options + " in.pnm out.jpg");
        EXPECT_THAT(succeed("info out.jpg"), AllOf(StartsWith(std::string("mode: ") + road.mode),
                                                   HasSubstr(std::string("\nsampling: ") + road.layout)));
        succeed("decode out.jpg " + out);
        EXPECT_GT(psnr(read(out), source), 36);
    }
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

    // Above 8 bits it is a PGM of 16 bits.
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

// A bitmap gives the stream of the same picture as PNM. Rows from the bottom, padded to four bytes.
TEST_F(JpegCodec, readsBitmaps)
{
    const std::string x(1, '\0');
    const std::string grey = "P5 3 2 255\n", colour = "P6 3 2 255\n";
    const std::string masks = littleEndian(0xFF0000, 4) + littleEndian(0xFF00, 4) + littleEndian(0xFF, 4);
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
        {"32 bits", bmp(32, 2, {}, "cbaxfedyihgzCBAxFEDyIHGz"), colour + "ABCDEFGHIabcdefghi"},
        {"32 bits with masks", bmp(32, -2, {}, masks + "cbaxfedyihgzCBAxFEDyIHGz", 3).replace(10, 1, "\x42"),
         colour + "abcdefghiABCDEFGHI"},
    };
    for (const auto& c : cases) {
        write("in.bmp", c.file);
        write("in.pnm", c.pnm);
        SCOPED_TRACE(c.name);
        expectSameStreams("-q 100 in.bmp", "-q 100 in.pnm");
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
        EXPECT_GT(psnr(read("a.PNM"), testPnm(channels)), 30);
        succeed("decode in.jpg b.bmp");
        expectSameStreams("a.PNM", "b.bmp");
        if (channels == 3) refuse("decode in.jpg no.pgm", "3 channels do not go into a .pgm file");
    }
    refuse("decode -color RGB in.jpg no.ppm", "in.jpg: 1 components of colour Gray to RGB: not supported");
    succeed("decode in.jpg grey.pgm");
    succeed("decode in.jpg wide.ppm");
    std::string wide;
    const std::string grey = read("grey.pgm");
    for (const char sample : grey.substr(pnm(1, "").size())) wide.append(3, sample);
    EXPECT_EQ(read("wide.ppm"), pnm(3, wide));
    expectSameStreams("-color RGB-Gray wide.ppm", "grey.pgm");

    write("in.pam", testPnm(4));
    succeed("encode in.pam in.jpg");
    refuse("decode in.jpg no.bmp", "4 channels do not go into a .bmp file");
}

TEST_F(JpegCodec, takesOtherNamesAndDefaults)
{
    write("in.ppm", testPnm(3));
    expectSameStreams("in.ppm -sampling 420", "in.ppm -sampling 411");
    expectSameStreams("in.ppm -sampling 440", "in.ppm -sampling 244");
    expectSameStreams("in.ppm -color BGR-YCbCr", "in.ppm -color rgb-ycbcr");
    expectSameStreams("in.ppm -q 75 -mode baseline -sampling 444 -restart 0", "in.ppm");
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
        {"encode in.ppm -", "unknown option -;"},
        {"encode in.ppm no.jpg -q", "-q lacks its value"},
        {"encode -q 101 in.ppm no.jpg", "-q '101'"},
        {"encode -q 75x in.ppm no.jpg", "-q '75x'"},
        {"encode -restart -1 in.ppm no.jpg", "-restart '-1'"},
        {"encode -sampling 421 in.ppm no.jpg", "-sampling '421'"},
        {"decode in.jpg no.xyz", "no.xyz: '.xyz'"},
        {"encode -color Gray-Gray in.ppm no.jpg", "in.ppm: the picture has 3 channels", 1},
        {"encode none.ppm no.jpg", "none.ppm: No such file or directory", 1},
        {"encode . no.jpg", ".: Is a directory", 1},
        {"encode in.ppm .", ".: Is a directory", 1},
        {"decode in.ppm no.ppm", "in.ppm: ", 1},
    };
    for (const auto& c : cases) refuse(c.words, c.text, c.code);
    EXPECT_THAT(succeed("encode -h"), HasSubstr("jpegcodec encode"));
}

TEST_F(JpegCodec, refusesHostilePictures)
{
    const auto patched = [&](size_t at, unsigned value, int bytes) {
        return bmp(24, 2, {}, std::string(24, 'x'))
            .replace(at, static_cast<size_t>(bytes), littleEndian(value, bytes));
    };
    const struct {
        std::string file, text;
    } cases[] = {
        {"", "neither"},
        {"P3 1 1 255 1 2 3", "'P3'"},
        {"P5 0 4 255\n", "width '0'"},
        {"P5 4 99999999999999999999 255\n", "height '99999999999999999999'"},
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

// A baseline stream that ends early gives a picture; other modes do not. A frame header that claims
// 65535x65535 ends soon and without memory for it.
TEST_F(JpegCodec, decodesWhatDamagedStreamsHold)
{
    write("in.ppm", testPnm(3));
    succeed("encode in.ppm whole.jpg");
    succeed("decode whole.jpg whole.ppm");
    const std::string jpeg = read("whole.jpg"), whole = read("whole.ppm");
    const size_t twoRows = 12 + 2 * 3 * testWidth * 8; // header and two rows of MCUs
    for (const auto& [bytes, same] :
         {std::pair(jpeg.size() - 2, whole.size()), {jpeg.size() * 3 / 4, twoRows}}) {
        write("cut.jpg", jpeg.substr(0, bytes));
        const Result result = codec("decode cut.jpg cut.ppm");
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "jpegcodec: cut.jpg: the data end early: a partial picture\n");
        EXPECT_EQ(read("cut.ppm").size(), whole.size());
        EXPECT_EQ(read("cut.ppm").substr(0, same), whole.substr(0, same));
    }
    write("cut.jpg", jpeg.substr(0, 20));
    refuse("decode cut.jpg no.ppm", "cut.jpg: buffer too small");
    write("huge.jpg", std::string(jpeg).replace(jpeg.find("\xFF\xC0") + 5, 4, "\xFF\xFF\xFF\xFF"));
    refuse("decode huge.jpg no.ppm", "huge.jpg: a picture of 65535x65535 is too large");

    succeed("encode -mode progressive in.ppm whole.jpg");
    write("cut.jpg", read("whole.jpg").substr(0, read("whole.jpg").size() - 2));
    refuse("decode cut.jpg no.ppm", "cut.jpg: buffer too small");
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
        EXPECT_GT(psnr(read("out.ppm"), source), 40);
    }
}

TEST_F(JpegCodec, infoTellsWhatTheSegmentsSay)
{
    write("in.ppm", testPnm(3));
    succeed("encode -sampling 420 in.ppm in.jpg");
    std::string jpeg = read("in.jpg");
    jpeg = withSegment(jpeg, '\xE0', std::string("AVI1\1\0\0\0\0\0\0\0\0\0", 14));
    jpeg = withSegment(jpeg, '\xE0', std::string("JFXX\0\x13", 6));
    jpeg = withSegment(jpeg, '\xE1',
                       std::string("Exif\0\0MM\0*\0\0\0\x08\0\x02\1\x0F\0\x02\0\0\0\3A\n\0\0"
                                   "\x82\x9A\0\x0C\0\0\0\1\0\0\0\0\0\0\0\0",
                                   44));
    write("in.jpg", jpeg);
    const std::string info = succeed("info in.jpg");
    for (const char* lines :
         {"mode: baseline\nprecision: 8\nsize: 61x47\ncomponents: 3\n"
          "component 0: id 0, factors 2x2, quantisation table 0, DC table 0, AC table 0\n",
          "component 2: id 2, factors 1x1, quantisation table 1, DC table 1, AC table 1\n",
          "\nquantisation table 1: 9 ",
          "\nHuffman table DC 0: counts 0 1 5 1 1 1 1 1 1 0 0 0 0 0 0 0, values 0 1 2 3 4 5 6 7 8 9 10 11\n",
          "\nHuffman table AC 1: counts 0 2 1 2 ", "\ncomment: JPEG encoder based on qovJP [",
          "JFIF version: 1.02\nJFIF units: 0\nJFIF density: 1x1\nJFIF thumbnail: 0x0\n"
          "JFXX thumbnail type: 19\nAVI1 polarity: 1\n",
          "Exif bytes: 38\nExif byte order: MM\nExif status: no error\nIFD0 entries: 2\n"
          "IFD0 0: tag:0x010F, name:Make, value:A\\x0A\nIFD0 1: tag:0x829A, type 12 without a text\n"})
        EXPECT_THAT(info, HasSubstr(lines));

    succeed("encode -color RGB-RGB in.ppm in.jpg");
    write("in.jpg", withSegment(read("in.jpg"), '\xE1', std::string("Exif\0\0MM\0*", 10)));
    const std::string rgb = succeed("info in.jpg");
    for (const char* lines : {"\ncolour: RGB\n", "\nExif status: buffer too small\n",
                              "\nAdobe version: 100\nAdobe flags: 0x0000 0x0000\nAdobe transform: 0\n"})
        EXPECT_THAT(rgb, HasSubstr(lines));
}
