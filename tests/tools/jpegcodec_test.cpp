// The command jpegcodec as its users meet it: files in, files out, exit codes and texts.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
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

void writeFile(const fs::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
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
        m_dir = pattern;
    }
    void TearDown() override
    {
        std::error_code ignored;
        fs::remove_all(m_dir, ignored);
        for (const char* name : {".out", ".err"}) fs::remove(m_dir.string() + name, ignored);
    }

    // By words parted by blanks.
    Result run(const std::string& program, const std::string& words) const
    {
        std::vector<std::string> args{program};
        std::istringstream stream(words);
        for (std::string word; stream >> word;) args.push_back(word);
        std::vector<char*> argv;
        for (std::string& arg : args) argv.push_back(arg.data());
        argv.push_back(nullptr);

        const std::string out = m_dir.string() + ".out", err = m_dir.string() + ".err";
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        constexpr int create = O_WRONLY | O_CREAT | O_TRUNC;
        posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), create, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), create, 0600);
        posix_spawn_file_actions_addchdir_np(&actions, m_dir.c_str());
        pid_t pid;
        const int error = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        int status = -1;
        if (error || waitpid(pid, &status, 0) != pid) return {-1, "", program + " does not start"};
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), readFile(out),
                readFile(err)};
    }
    Result codec(const std::string& words) const { return run(JPEGCODEC, words); }

    // Of a command that has nothing to say.
    void succeed(const std::string& words) const
    {
        const Result result = codec(words);
        EXPECT_EQ(result.exitCode, 0) << words;
        EXPECT_EQ(result.err, "") << words;
    }

    // Fails with one line that holds `text`, and leaves no file behind.
    void refuse(const std::string& words, const std::string& text) const
    {
        SCOPED_TRACE(words);
        const std::set<std::string> before = files();
        const Result result = codec(words);
        EXPECT_GE(result.exitCode, 1);
        EXPECT_LE(result.exitCode, 125);
        EXPECT_EQ(result.err.find("jpegcodec: "), 0u) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_NE(result.err.find(text), std::string::npos) << result.err;
        EXPECT_EQ(files(), before);
    }

    void write(const std::string& name, const std::string& bytes) const { writeFile(m_dir / name, bytes); }
    std::string read(const std::string& name) const { return readFile(m_dir / name); }
    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(m_dir)) names.insert(entry.path().filename());
        return names;
    }

private:
    fs::path m_dir;
};

struct Samples {
    int width = 0, height = 0, channels = 0, maxval = 0;
    std::string bytes;
};

constexpr int testWidth = 61, testHeight = 47; // no multiple of any MCU

// Smooth, so that sampled-down colours lose little.
Samples testPicture(int channels)
{
    Samples picture{testWidth, testHeight, channels, 255, ""};
    for (int y = 0; y < testHeight; y++)
        for (int x = 0; x < testWidth; x++)
            for (int c = 0; c < channels; c++)
                picture.bytes += static_cast<char>(std::lround(
                    128 + 90 * std::sin(x * (0.05 + 0.02 * c) + 1.3 * c) * std::cos(y * 0.06 - c)));
    return picture;
}

std::string toPnm(const Samples& p)
{
    std::ostringstream head;
    if (p.channels == 4)
        head << "P7\nWIDTH " << p.width << "\nHEIGHT " << p.height << "\nDEPTH 4\nMAXVAL " << p.maxval
             << "\nTUPLTYPE CMYK\nENDHDR\n";
    else
        head << (p.channels == 1 ? "P5\n" : "P6\n") << p.width << " " << p.height << "\n" << p.maxval << "\n";
    return head.str() + p.bytes;
}

// What jpegcodec and djpeg write, without comments.
Samples fromPnm(const std::string& file)
{
    Samples p;
    std::istringstream head(file);
    std::string word;
    head >> word;
    p.channels = word == "P5" ? 1 : 3;
    if (word == "P7")
        while (head >> word && word != "ENDHDR") {
            if (word == "WIDTH") head >> p.width;
            if (word == "HEIGHT") head >> p.height;
            if (word == "DEPTH") head >> p.channels;
            if (word == "MAXVAL") head >> p.maxval;
        }
    else
        head >> p.width >> p.height >> p.maxval;
    if (head) p.bytes = file.substr(static_cast<size_t>(head.tellg()) + 1);
    return p;
}

Samples toGrey(const Samples& rgb)
{
    Samples grey{rgb.width, rgb.height, 1, 255, ""};
    const auto at = [&](size_t i) { return static_cast<unsigned char>(rgb.bytes[i]); };
    for (size_t i = 0; i < rgb.bytes.size(); i += 3)
        grey.bytes += static_cast<char>(std::lround(0.299 * at(i) + 0.587 * at(i + 1) + 0.114 * at(i + 2)));
    return grey;
}

double psnr(const Samples& a, const Samples& b)
{
    if (a.width != b.width || a.height != b.height || a.channels != b.channels || a.maxval != b.maxval ||
        a.bytes.size() != b.bytes.size() || a.bytes.empty())
        return 0;
    double sum = 0;
    for (size_t i = 0; i < a.bytes.size(); i++) {
        const int difference =
            static_cast<unsigned char>(a.bytes[i]) - static_cast<unsigned char>(b.bytes[i]);
        sum += difference * difference;
    }
    return sum == 0 ? 99 : 10 * std::log10(255.0 * 255 * static_cast<double>(a.bytes.size()) / sum);
}

std::string le(unsigned value, int bytes)
{
    std::string text;
    for (int i = 0; i < bytes; i++) text += static_cast<char>(value >> 8 * i);
    return text;
}

// A bitmap as the format has it, with a palette of greys in falling order for up to 8 bits: its picture is
// the inverse of its indices.
std::string bmp(int bits, int height, unsigned compression, const std::string& rows, unsigned colours = 0)
{
    const unsigned count = bits > 8 ? 0 : colours ? colours : 1u << bits;
    std::string file = "BM" + le(0, 8) + le(54 + 4 * count, 4) + le(40, 4) + le(testWidth, 4) +
                       le(static_cast<unsigned>(height), 4) + le(1, 2) + le(static_cast<unsigned>(bits), 2) +
                       le(compression, 4) + le(0, 12) + le(colours, 4) + le(0, 4);
    for (unsigned i = 0; i < count; i++) file += le((255 - i * 255 / (count - 1)) * 0x010101, 4);
    return file + rows;
}

// Rows of a picture with the padding of a bitmap.
std::string bmpRows(const Samples& p, int bits, bool topDown)
{
    std::string rows;
    for (int y = 0; y < p.height; y++) {
        std::string row;
        unsigned packed = 0;
        for (int x = 0; x < p.width; x++) {
            const char* pixel = &p.bytes[static_cast<size_t>((y * p.width + x) * p.channels)];
            if (bits >= 24) {
                row += {pixel[2], pixel[1], pixel[0]};
                if (bits == 32) row += 'A';
                continue;
            }
            packed = packed << bits |
                     (static_cast<unsigned>(255 - static_cast<unsigned char>(pixel[0])) >> (8 - bits));
            if ((x + 1) * bits % 8 == 0) row += static_cast<char>(packed);
        }
        if (bits < 8 && p.width * bits % 8) row += static_cast<char>(packed << (8 - p.width * bits % 8));
        row.resize((row.size() + 3) / 4 * 4);
        rows = topDown ? rows + row : row + rows;
    }
    return rows;
}

std::string app(int marker, const std::string& payload)
{
    const auto length = static_cast<unsigned>(payload.size() + 2);
    return {'\xFF', static_cast<char>(marker), static_cast<char>(length >> 8), static_cast<char>(length)};
}

// A stream with a segment more behind its SOI.
std::string withSegment(const std::string& jpeg, int marker, const std::string& payload)
{
    return jpeg.substr(0, 2) + app(marker, payload) + payload + jpeg.substr(2);
}

bool hasLine(const std::string& text, const std::string& line)
{
    return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

const char* const djpeg = "/usr/bin/djpeg";
} // namespace

struct RoadCase {
    int channels;
    const char* color;
    const char* component; // a line of info
};

static const RoadCase roadCases[] = {
    {1, "Gray-Gray", "colour: Gray"}, {3, "RGB-YCbCr", "colour: YCbCr"}, {3, "bgr-ycbcr", "colour: YCbCr"},
    {3, "RGB-RGB", "colour: RGB"},    {3, "RGB-Gray", "colour: Gray"},   {4, "CMYK-CMYK", "colour: CMYK"},
    {4, "CMYK-YCCK", "colour: YCCK"},
};

// Every mode, sampling and colour comes back, here and in djpeg (which reads no CMYK into PPM).
TEST_F(JpegCodec, roundTripsInEveryModeSamplingAndColor)
{
    const bool haveDjpeg = access(djpeg, X_OK) == 0;
    for (const RoadCase& road : roadCases) {
        const Samples source = testPicture(road.channels);
        const bool toGray = std::string(road.component) == "colour: Gray";
        const Samples expected = toGray && road.channels == 3 ? toGrey(source) : source;
        write("in.pnm", toPnm(source));
        for (const char* mode : {"baseline", "progressive"}) {
            for (const char* sampling : {"444", "422", "244", "411"}) {
                for (const char* restart : {"0", "3"}) {
                    const std::string options = std::string("-q 95 -mode ") + mode + " -sampling " +
                                                sampling + " -color " + road.color + " -restart " + restart;
                    SCOPED_TRACE(options);
                    succeed("encode " + options + " in.pnm out.jpg");
                    succeed("decode out.jpg out.pam");
                    EXPECT_GT(psnr(fromPnm(read("out.pam")), expected), 36);
                    const std::string info = codec("info out.jpg").out;
                    EXPECT_TRUE(hasLine(info, std::string("mode: ") + mode)) << info;
                    EXPECT_TRUE(hasLine(info, road.component)) << info;
                    EXPECT_TRUE(hasLine(info, std::string("restart interval: ") + restart)) << info;
                    if (haveDjpeg && road.channels != 4) {
                        const Result shown = run(djpeg, "-dct int -pnm -outfile other.pnm out.jpg");
                        EXPECT_EQ(shown.err, "");
                        EXPECT_GT(psnr(fromPnm(read("other.pnm")), expected), 36);
                    }
                }
            }
        }
    }
    QK_SKIP_UNLESS(haveDjpeg, std::string(djpeg) + " is missing");
}

TEST_F(JpegCodec, losslessIsExact)
{
    const Samples source = testPicture(1);
    write("in.pgm", toPnm(source));
    succeed("encode -mode lossless -sampling 411 in.pgm out.jpg");
    for (const char* out : {"out.pgm", "out.pam", "out.pnm"}) {
        succeed(std::string("decode out.jpg ") + out);
        EXPECT_EQ(psnr(fromPnm(read(out)), source), 99) << out;
    }
    write("colour.ppm", toPnm(testPicture(3)));
    refuse("encode -mode lossless colour.ppm no.jpg", "colour.ppm: lossless mode takes grey pictures only");
    refuse("encode -mode lossless -q 90 in.pgm no.jpg", "-q does not apply to -mode lossless");
    refuse("encode -mode lossless -restart 4 in.pgm no.jpg", "in.pgm: not supported");
}

TEST_F(JpegCodec, losslessAbove8BitsIsA16BitPgm)
{
    QK_NEED_SHARED("jpeg/jpeg_lossless_sel4.jpg");
    write("in.jpg", readFile(sharedPath("jpeg/jpeg_lossless_sel4.jpg")));
    succeed("decode in.jpg out.pgm");
    Samples picture = fromPnm(read("out.pgm"));
    EXPECT_EQ(picture.maxval, 65535);
    ASSERT_EQ(picture.bytes.size(), 2u * 256 * 256);
    for (size_t i = 0; i < picture.bytes.size(); i += 2) std::swap(picture.bytes[i], picture.bytes[i + 1]);
    EXPECT_EQ(Md5::of(picture.bytes), "29cfe7038fae548abd4af4551b2a37cb");
    refuse("decode in.jpg no.bmp", "samples up to 65535");
    refuse("encode out.pgm no.jpg", "maxval 65535");
}

// Names that mean the same give the same stream.
TEST_F(JpegCodec, takesOtherNames)
{
    write("in.ppm", toPnm(testPicture(3)));
    const char* const pairs[][2] = {{"-sampling 420", "-sampling 411"},
                                    {"-sampling 440", "-sampling 244"},
                                    {"-color BGR-YCbCr", "-color rgb-ycbcr"},
                                    {"-q 75 -mode baseline -sampling 444 -restart 0", "-color RGB-YCbCr"}};
    for (const auto& pair : pairs) {
        succeed(std::string("encode ") + pair[0] + " in.ppm a.jpg");
        succeed(std::string("encode ") + pair[1] + " in.ppm b.jpg");
        EXPECT_EQ(read("a.jpg"), read("b.jpg")) << pair[0];
    }
}

TEST_F(JpegCodec, readsBitmaps)
{
    const Samples rgb = testPicture(3);
    write("rgb.ppm", toPnm(rgb));
    succeed("encode rgb.ppm rgb.jpg");
    for (const int bits : {24, 32})
        for (const bool topDown : {false, true}) {
            write("in.bmp", bmp(bits, topDown ? -testHeight : testHeight, 0, bmpRows(rgb, bits, topDown)));
            succeed("encode in.bmp out.jpg");
            EXPECT_EQ(read("out.jpg"), read("rgb.jpg")) << bits << " " << topDown;
        }

    const Samples grey = testPicture(1);
    for (const int bits : {1, 4, 8}) {
        Samples expected = grey; // of the bits that are left, spread over the palette
        for (char& sample : expected.bytes) {
            const unsigned index =
                static_cast<unsigned>(255 - static_cast<unsigned char>(sample)) >> (8 - bits);
            sample = static_cast<char>(255 - index * 255 / ((1u << bits) - 1));
        }
        write("in.bmp", bmp(bits, testHeight, 0, bmpRows(grey, bits, false)));
        succeed("encode -mode lossless in.bmp out.jpg");
        succeed("decode out.jpg out.pgm");
        EXPECT_EQ(psnr(fromPnm(read("out.pgm")), expected), 99) << bits;
    }
}

// A picture that is written as a bitmap and read again gives the stream of the same picture as PNM.
TEST_F(JpegCodec, writesBitmaps)
{
    for (const int channels : {1, 3}) {
        write("in.pnm", toPnm(testPicture(channels)));
        succeed("encode in.pnm in.jpg");
        for (const char* out : {"a.pnm", "b.bmp"}) succeed(std::string("decode in.jpg ") + out);
        succeed("encode a.pnm a.jpg");
        succeed("encode b.bmp b.jpg");
        EXPECT_EQ(read("a.jpg"), read("b.jpg"));
    }
    write("in.pam", toPnm(testPicture(4)));
    succeed("encode in.pam in.jpg");
    refuse("decode in.jpg no.bmp", "4 channels do not go into a .bmp file");
}

TEST_F(JpegCodec, decodesIntoTheFormatOfTheName)
{
    write("in.pgm", toPnm(testPicture(1)));
    succeed("encode in.pgm grey.jpg");
    succeed("decode grey.jpg grey.pgm");
    succeed("decode grey.jpg grey.ppm");
    const Samples grey = fromPnm(read("grey.pgm")), widened = fromPnm(read("grey.ppm"));
    EXPECT_EQ(widened.channels, 3);
    ASSERT_EQ(widened.bytes.size(), 3 * grey.bytes.size());
    for (size_t i = 0; i < widened.bytes.size(); i++) ASSERT_EQ(widened.bytes[i], grey.bytes[i / 3]);
    refuse("decode -color RGB grey.jpg no.ppm",
           "grey.jpg: 1 components of colour Gray to RGB: not supported");

    write("in.ppm", toPnm(testPicture(3)));
    succeed("encode in.ppm in.jpg");
    for (const char* color : {"RGB", "bgr"}) {
        succeed(std::string("decode -color ") + color + " in.jpg " + color + ".ppm");
        EXPECT_GT(psnr(fromPnm(read(std::string(color) + ".ppm")), testPicture(3)), 30) << color;
    }
    refuse("decode in.jpg no.pgm", "3 channels do not go into a .pgm file");
}

// Maxvals below 255 are spread over 8 bits.
TEST_F(JpegCodec, spreadsSmallMaxvals)
{
    write("in.pgm", std::string("P5 # of a few bits\n4 1 15\n") + '\0' + '\1' + '\7' + '\17');
    succeed("encode -mode lossless in.pgm out.jpg");
    succeed("decode out.jpg out.pgm");
    EXPECT_EQ(fromPnm(read("out.pgm")).bytes, std::string({'\0', '\x11', '\x77', '\xFF'}));
}

TEST_F(JpegCodec, refusesWrongCommandLines)
{
    write("in.ppm", toPnm(testPicture(3)));
    const char* const cases[][2] = {
        {"", "no command"},
        {"pack in.ppm no.jpg", "'pack'"},
        {"encode in.ppm", "1 file names where 2"},
        {"encode in.ppm no.jpg more", "3 file names"},
        {"encode -speed 3 in.ppm no.jpg", "-speed"},
        {"encode in.ppm no.jpg -q", "-q lacks its value"},
        {"encode -q 0 in.ppm no.jpg", "-q '0'"},
        {"encode -q 101 in.ppm no.jpg", "-q '101'"},
        {"encode -q abc in.ppm no.jpg", "-q 'abc'"},
        {"encode -q 75x in.ppm no.jpg", "-q '75x'"},
        {"encode -q 99999999999 in.ppm no.jpg", "-q '99999999999'"},
        {"encode -restart -1 in.ppm no.jpg", "-restart '-1'"},
        {"encode -restart 65536 in.ppm no.jpg", "-restart '65536'"},
        {"encode -mode arithmetic in.ppm no.jpg", "-mode 'arithmetic'"},
        {"encode -sampling 421 in.ppm no.jpg", "-sampling '421'"},
        {"encode -color RGB-CMYK in.ppm no.jpg", "-color 'RGB-CMYK'"},
        {"encode -color Gray-Gray in.ppm no.jpg", "in.ppm: the picture has 3 channels"},
        {"encode none.ppm no.jpg", "none.ppm: No such file or directory"},
        {"encode . no.jpg", ".: Is a directory"},
        {"encode in.ppm none/no.jpg", "none/no.jpg: No such file or directory"},
        {"encode in.ppm .", ".: Is a directory"},
        {"decode in.ppm no.ppm", "in.ppm: "},
        {"decode in.jpg no.xyz", "no.xyz: '.xyz'"},
        {"decode -color HSV in.jpg no.ppm", "-color 'HSV'"},
        {"info none.jpg", "none.jpg: No such file"},
        {"info in.ppm", "in.ppm: "},
    };
    for (const auto& c : cases) refuse(c[0], c[1]);
    const Result help = codec("encode -h");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("jpegcodec encode"), std::string::npos);
}

TEST_F(JpegCodec, refusesHostilePictures)
{
    const std::string body(testWidth * testHeight * 4, 'x');
    const auto patched = [&](size_t at, const std::string& bytes) {
        return bmp(24, testHeight, 0, body).replace(at, bytes.size(), bytes);
    };
    const struct {
        std::string file, text;
    } cases[] = {
        {"", "neither"},
        {"P6", "ends inside its header"},
        {"P3 1 1 255 1 2 3", "'P3'"},
        {"P5 0 4 255\n", "width '0'"},
        {"P5 4 -4 255\n", "height '-4'"},
        {"P5 4 99999999999999999999 255\n", "height '99999999999999999999'"},
        {"P5 4 4 65536\n", "maxval '65536'"},
        {"P5 4 4 0\n", "maxval '0'"},
        {"P5 4 4 255\n123", "3 of 16 bytes"},
        {"P5 4 4 256\n123", "3 of 32 bytes"},
        {"P6 65535 65535 255\n123", "65535x65535 is too large"},
        {"P6 2147483647 2147483647 255\n123", "2147483647x2147483647 is too large"},
        {"P5 65536 1 255\n" + std::string(65536, 'x'), "65536x1"},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 2\nMAXVAL 255\nENDHDR\nxx", "DEPTH 2"},
        {"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 1\nENDHDR\nxx", "lacks"},
        {"P7\nDEEP 1\nENDHDR\nxx", "'DEEP'"},
        {"P7\nWIDTH 1\nTUPLTYPE", "ends inside its header"},
        {"BM", "ends inside the bitmap's header"},
        {patched(14, le(12, 4)), "header size 12"},
        {patched(14, le(0xFFFFFFF0, 4)), "header size 4294967280"},
        {patched(18, le(0xFFFFFFFF, 4)), "width -1"},
        {patched(22, le(0, 4)), "height 0"},
        {patched(22, le(0x80000000, 4)), "61x2147483648 is too large"},
        {patched(18, le(0x7FFFFFFF, 4)), "2147483647x47 is too large"},
        {patched(26, le(2, 2)), "number of planes 2"},
        {patched(28, le(16, 2)), "bit count 16"},
        {patched(30, le(1, 4)), "compression 1"},
        {patched(10, le(53, 4)), "offset of the samples 53"},
        {patched(10, le(0xFFFFFFFF, 4)), "offset of the samples 4294967295"},
        {patched(22, le(200, 4)), "bytes of samples"},
        {bmp(4, testHeight, 0, "", 17), "number of colours 17"},
        {bmp(8, testHeight, 0, "").substr(0, 400), "offset of the samples 1078"},
        {bmp(32, testHeight, 3, body), "colour mask"},
    };
    for (const auto& c : cases) {
        write("in", c.file);
        refuse("encode in no.jpg", c.text);
    }
}

// What stood under the name before a failure still does.
TEST_F(JpegCodec, leavesAnOldFileAlone)
{
    write("in.ppm", toPnm(testPicture(3)));
    write("out.jpg", "old");
    refuse("encode -mode lossless in.ppm out.jpg", "grey");
    EXPECT_EQ(read("out.jpg"), "old");
    succeed("encode in.ppm out.jpg");
    EXPECT_NE(read("out.jpg"), "old");

    // A disk that is full after 512 bytes: nothing is left of the file that did not fit.
    write("small.sh", "trap '' XFSZ\nulimit -f 1\nexec \"$@\"\n");
    const std::set<std::string> before = files();
    const Result full = run("/bin/sh", "small.sh " JPEGCODEC " encode in.ppm no.jpg");
    EXPECT_EQ(full.exitCode, 1);
    EXPECT_EQ(full.err, "jpegcodec: no.jpg: File too large\n");
    EXPECT_EQ(files(), before);
    QK_SKIP_UNLESS(access("/dev/full", W_OK) == 0, "/dev/full is missing");
    refuse("encode in.ppm /dev/full", "/dev/full: No space left on device");
}

TEST_F(JpegCodec, writesThePartialPictureOfABaselineStreamOnly)
{
    write("in.ppm", toPnm(testPicture(3)));
    succeed("encode in.ppm whole.jpg");
    write("cut.jpg", read("whole.jpg").substr(0, read("whole.jpg").size() * 3 / 4));
    const Result cut = codec("decode cut.jpg cut.ppm");
    EXPECT_EQ(cut.exitCode, 0);
    EXPECT_EQ(cut.err, "jpegcodec: cut.jpg: the data end early: a partial picture\n");
    succeed("decode whole.jpg whole.ppm");
    const size_t twoRows = 12 + 2 * 3 * testWidth * 8; // header and two rows of MCUs
    EXPECT_EQ(read("cut.ppm").substr(0, twoRows), read("whole.ppm").substr(0, twoRows));
    EXPECT_NE(read("cut.ppm"), read("whole.ppm"));

    succeed("encode -mode progressive in.ppm whole.jpg");
    write("cut.jpg", read("whole.jpg").substr(0, read("whole.jpg").size() * 3 / 4));
    refuse("decode cut.jpg no.ppm", "cut.jpg: ");
    write("cut.jpg", read("whole.jpg").substr(0, 20));
    refuse("decode cut.jpg no.ppm", "cut.jpg: buffer too small");
}

// A frame header that claims 65535x65535 ends soon and without memory for it, in every mode.
TEST_F(JpegCodec, refusesAbsurdFrames)
{
    write("in.pgm", toPnm(testPicture(1)));
    for (const char* mode : {"baseline", "progressive", "lossless"}) {
        succeed(std::string("encode -mode ") + mode + " in.pgm in.jpg");
        std::string jpeg = read("in.jpg");
        const size_t frame = std::min({jpeg.find("\xFF\xC0"), jpeg.find("\xFF\xC2"), jpeg.find("\xFF\xC3")});
        ASSERT_NE(frame, std::string::npos);
        jpeg.replace(frame + 5, 4, "\xFF\xFF\xFF\xFF");
        write("in.jpg", jpeg);
        refuse("decode in.jpg no.pgm", "in.jpg: a picture of 65535x65535 is too large");
    }
}

// Noise at the highest quality needs more than the first buffer.
TEST_F(JpegCodec, growsItsBuffer)
{
    Samples noise{500, 400, 3, 255, ""};
    unsigned state = 1;
    for (int i = 0; i < 500 * 400 * 3; i++)
        noise.bytes += static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    write("in.ppm", toPnm(noise));
    for (const char* mode : {"baseline", "progressive"}) {
        succeed(std::string("encode -q 100 -color RGB-RGB -mode ") + mode + " in.ppm out.jpg");
        EXPECT_GT(read("out.jpg").size(), noise.bytes.size() / 2 + 65536);
        succeed("decode out.jpg out.ppm");
        EXPECT_GT(psnr(fromPnm(read("out.ppm")), noise), 40);
    }
}

TEST_F(JpegCodec, infoTellsWhatTheSegmentsSay)
{
    write("in.ppm", toPnm(testPicture(3)));
    succeed("encode -sampling 420 -restart 2 in.ppm in.jpg");
    std::string jpeg = read("in.jpg");
    jpeg = withSegment(jpeg, 0xE0, std::string("AVI1\1\0\0\0\0\0\0\0\0\0", 14));
    jpeg = withSegment(jpeg, 0xE0, std::string("JFXX\0\x13", 6));
    jpeg = withSegment(jpeg, 0xE1,
                       std::string("Exif\0\0MM\0*\0\0\0\x08\0\x02\1\x0F\0\x02\0\0\0\3A\n\0\0"
                                   "\x82\x9A\0\x0C\0\0\0\1\0\0\0\0\0\0\0\0",
                                   44));
    write("in.jpg", jpeg);
    const Result info = codec("info in.jpg");
    EXPECT_EQ(info.exitCode, 0);
    EXPECT_EQ(info.err, "");
    for (const char* line :
         {"mode: baseline",
          "precision: 8",
          "size: 61x47",
          "components: 3",
          "component 0: id 0, factors 2x2, quantisation table 0, DC table 0, AC table 0",
          "component 2: id 2, factors 1x1, quantisation table 1, DC table 1, AC table 1",
          "sampling: 411",
          "colour: YCbCr",
          "restart interval: 2",
          "Huffman table DC 0: counts 0 1 5 1 1 1 1 1 1 0 0 0 0 0 0 0, values 0 1 2 3 4 5 6 7 8 9 10 11",
          "JFIF version: 1.02",
          "JFIF units: 0",
          "JFIF density: 1x1",
          "JFIF thumbnail: 0x0",
          "JFXX thumbnail type: 19",
          "AVI1 polarity: 1",
          "Exif bytes: 38",
          "Exif byte order: MM",
          "Exif status: no error",
          "IFD0 entries: 2",
          "IFD0 0: tag:0x010F, name:Make, value:A\\x0A",
          "IFD0 1: tag:0x829A, type 12 without a text"})
        EXPECT_TRUE(hasLine(info.out, line)) << line << "\n" << info.out;
    for (const char* start : {"\nquantisation table 1: 9 ", "\nHuffman table AC 1: counts 0 2 1 2 ",
                              "\ncomment: JPEG encoder based on qovJP ["})
        EXPECT_NE(info.out.find(start), std::string::npos) << start << info.out;

    succeed("encode -color RGB-RGB in.ppm in.jpg");
    write("in.jpg", withSegment(read("in.jpg"), 0xE1, std::string("Exif\0\0MM\0*", 10)));
    const std::string rgb = codec("info in.jpg").out;
    for (const char* line : {"colour: RGB", "Adobe version: 100", "Adobe flags: 0x0000 0x0000",
                             "Adobe transform: 0", "Exif status: buffer too small"})
        EXPECT_TRUE(hasLine(rgb, line)) << line << "\n" << rgb;
}
