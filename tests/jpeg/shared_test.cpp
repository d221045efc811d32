// The decoder on files from elsewhere: each row of the list tells what has to come out, and djpeg (for CMYK
// ImageMagick) shows the picture. An outcome that this test does not understand is a failure.
#include "jpegdec.h"
#include "support/listed_files.h"
#include "support/md5.h"
#include "support/oracle.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <regex>

namespace {

enum class Pixels { any, untouched, touched, exact, near };

struct Expectation {
    _JPEG_ERROR header = JPEG_OK, data = JPEG_OK;
    Pixels pixels = Pixels::any;
    int most = 255; // near: difference of samples
    double psnr = 0;
    int lastColumns = 0; // that are left out
    bool ends = false;   // is all that is asked
};

// Rows that do not hold here, and what comes instead.
const struct {
    const char* file;
    Expectation instead;
} departures[] = {
    // Damage inside coded data, which the list, made from markers and another decoder, does not foresee.
    // Bits that are no code end a progressive scan with an error, and what is there is shown.
    {"jpeg/ba60305ac83fe3d8ef01da1d9a0ecc79.jpg", {.data = JPEG_INTERNAL_ERROR, .pixels = Pixels::touched}},
    // A first pass that runs dry leaves the block as it was: it is the only one of this picture.
    {"jpeg/partial_progressive.jpg", {.pixels = Pixels::touched}},
    // Whatever marker stands within the coded data is taken for a restart.
    {"jpeg/broken-bogus-segment-length.jpg", {.pixels = Pixels::touched}},
    // More than 63 coefficients end a row of blocks; the other decoder reads on.
    {"jpeg/dc-predictor-overflow.jpg", {.pixels = Pixels::touched}},
    // The floors stem from the other decoder's own inverse DCT. The exact one, too, fails them: 57.01, 56.79,
    // 55.60 and 62.07 dB.
    {"jpeg/2029.jpg", {.pixels = Pixels::near, .psnr = 56.9}},
    {"jpeg/flower.png.im_q85_420_progr.jpg", {.pixels = Pixels::near, .psnr = 56.7}},
    {"jpeg/flower_cropped.jpg", {.pixels = Pixels::near, .psnr = 55.5}},
    {"jpeg/jfif-padded-segments.jpg", {.pixels = Pixels::near, .psnr = 62.2}},
};

_JPEG_ERROR codeOf(const std::string& name)
{
    std::istringstream names(
        "OK NOT_SUPPORTED INTERNAL_ERROR BUFFER_TOO_SMALL OUT_OF_MEMORY BAD_SEGMENT_LENGTH "
        "BAD_HUFFMAN_TABLE BAD_QUANT_SEGMENT BAD_SCAN_SEGMENT BAD_FRAME_SEGMENT "
        "BAD_COMPONENT_ID BAD_SAMPLING");
    int code = JPEG_OK;
    for (std::string one; names >> one && one != name;) code--;
    EXPECT_TRUE(names) << "no code: " << name;
    return static_cast<_JPEG_ERROR>(code);
}

bool understand(std::string text, Expectation* expected)
{
    std::smatch parts;
    const auto cut = [&text](const char* pattern) {
        const std::string whole = text;
        text = std::regex_replace(text, std::regex(pattern), "");
        return text != whole;
    };
    const auto is = [&](const char* pattern) { return std::regex_match(text, parts, std::regex(pattern)); };

    cut(R"( \(damaged file: predicted from its markers alone\)$)");
    cut("; the file is damaged, the reference warns$");
    if (cut(R"( \(the last 2 columns may differ more when the width is no multiple of the MCU\)$)"))
        expected->lastColumns = 2;
    cut(R"( against the reference \(bottom line of each MCU row differs by design\)$)");

    if (is(R"(ReadHeader returns JPEG_(\w+))")) {
        expected->header = codeOf(parts[1]);
    } else if (is(R"(ReadData returns JPEG_(\w+), nothing is rendered)")) {
        expected->data = codeOf(parts[1]);
        expected->pixels = Pixels::untouched;
    } else if (is("ReadHeader returns JPEG_OK, ReadData returns JPEG_([A-Z_]+)"
                  "( with a partial picture| after what could be decoded)?")) {
        expected->data = codeOf(parts[1]);
        if (parts[2] == " with a partial picture") expected->pixels = Pixels::touched;
    } else if (is("decodes: maximum difference ([0-9]+)")) {
        expected->pixels = Pixels::near;
        expected->most = std::stoi(parts[1]);
    } else if (is("decodes: PSNR at least ([0-9.]+) dB")) {
        expected->pixels = Pixels::near;
        expected->psnr = std::stod(parts[1]);
    } else if (is(R"(decodes bit-exactly \(lossless, .*\))")) {
        expected->pixels = Pixels::exact;
    } else if (is("decodes, but .* no pixel check")) {
        expected->pixels = Pixels::touched;
    } else {
        expected->ends = text == "open: damaged; must end without a crash";
        return expected->ends;
    }
    return true;
}

// The picture as another decoder has it, whatever it warns of. ImageMagick gives CMYK as ink, the stream
// holds its complement.
Picture otherPicture(const ListedFile& row, const std::string& stream, const Picture& ours)
{
    if (row.reference.find("CMYK") != std::string::npos) {
        Picture picture = ours;
        const std::string ink = filter("convert jpeg:- -depth 8 cmyk:- ; true", stream);
        EXPECT_EQ(picture.samples.size(), ink.size());
        std::transform(ink.begin(), ink.end(), picture.samples.begin(),
                       [](char c) { return static_cast<unsigned char>(~c); });
        return picture;
    }
    const bool plain = row.reference.find("plain upsampling") != std::string::npos;
    return parsePnm(
        filter("djpeg -dct int -pnm " + std::string(plain ? "-nosmooth" : "") + " ; true", stream));
}

const unsigned char fill = 0xA5;

struct Outcome {
    _JPEG_ERROR header = JPEG_OK, data = JPEG_OK;
    _JPEG_SAMPLING sampling = JS_OTHER;
    Picture picture; // in the colour that the references have; two bytes a sample when lossless
};

// Of a giant only the first rows are asked for.
Outcome decode(const std::string& stream)
{
    Outcome result;
    const std::unique_ptr<Qov8u[]> copy(new Qov8u[stream.size()]); // ends where the memory ends
    std::memcpy(copy.get(), stream.data(), stream.size());
    CJPEGDecoder decoder;
    EXPECT_EQ(JPEG_OK, decoder.SetSource(copy.get(), static_cast<int>(stream.size())));
    _JPEG_COLOR color = JC_UNKNOWN;
    int width = 0, height = 0, channels = 0, precision = 0;
    result.header = decoder.ReadHeader(&width, &height, &channels, &color, &result.sampling, &precision);
    if (result.header != JPEG_OK) return result;
    const bool deep = decoder.m_jpeg_mode == JPEG_LOSSLESS;
    const int step = width * channels * (deep ? 2 : 1);
    height = std::min(height, (1 << 26) / step);
    result.picture = Picture::blank(width, height, step / width);
    std::vector<unsigned char>& samples = result.picture.samples;
    std::fill(samples.begin(), samples.end(), fill);
    const _JPEG_COLOR wanted = color == JC_YCBCR ? JC_RGB : color == JC_YCCK ? JC_CMYK : color;
    EXPECT_EQ(JPEG_OK, decoder.SetDestination(samples.data(), step, {width, height}, channels, wanted, JS_444,
                                              deep ? 16 : 8));
    result.data = decoder.ReadData();
    return result;
}

void checkPixels(const Expectation& expected, const Outcome& outcome, const Picture& other)
{
    const Picture& picture = outcome.picture;
    const int columns = picture.width - expected.lastColumns;
    const Distance all = distance(picture, other, [=](int x, int) { return x >= columns; });
    EXPECT_LE(all.most, expected.most);
    EXPECT_GE(all.psnr, expected.psnr);

    // Away from the borders of the triangle filter, which differ by design, nothing but rounding does.
    const int width = picture.width - 2, height = picture.height - 2;
    if (outcome.sampling != JS_411 || width < 1 || height < 1) return;
    const auto border = [=](int x, int y) { return x >= width || y >= height || y % 16 == 15; };
    EXPECT_LE(distance(picture, other, border).most, 3);
}

void checkFile(const ListedFile& row)
{
    Expectation expected;
    ASSERT_TRUE(understand(row.outcome, &expected)) << row.outcome;
    for (const auto& departure : departures)
        if (row.file == departure.file) expected = departure.instead;
    const std::string stream = readFile(sharedPath(row.file));
    const Outcome outcome = decode(stream);
    if (expected.ends) return;
    ASSERT_EQ(expected.header, outcome.header);
    EXPECT_EQ(expected.data, outcome.data);

    const std::vector<unsigned char>& samples = outcome.picture.samples;
    const bool touched =
        std::any_of(samples.begin(), samples.end(), [](int sample) { return sample != fill; });
    switch (expected.pixels) {
    case Pixels::any: break;
    case Pixels::untouched:
    case Pixels::touched: EXPECT_EQ(expected.pixels == Pixels::touched, touched); break;
    case Pixels::exact: EXPECT_EQ(row.md5, Md5::of({samples.begin(), samples.end()})); break;
    case Pixels::near: checkPixels(expected, outcome, otherPicture(row, stream, outcome.picture));
    }
}

// Faults it would catch: a refusal lost or invented, colours or rows exchanged, a wrong table, a filter that
// is off by one.
TEST(SharedJpeg, EveryFileHasItsOutcome)
{
    QK_NEED_SHARED("MANIFEST.tsv");
    for (const char* name : {"djpeg", "convert"})
        QK_SKIP_UNLESS(haveProgram(name), std::string(name) + " is missing");
    const std::vector<ListedFile> rows = listedFiles("jpeg/");
    EXPECT_GT(rows.size(), 50u);
    for (const ListedFile& row : rows) {
        SCOPED_TRACE(row.file);
        checkFile(row);
    }
}

} // namespace
