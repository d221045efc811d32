// The encoder beside OpenJPEG and Grok: what they make of our files, and what they make of as many bytes.
#include "encode.h"
#include "support/oracle.h"
#include "support/shared_data.h"

#include <qovcore.h>

#include <cmath>
#include <memory>
#include <sstream>

using namespace jpeg2000;

namespace {

class J2kCross : public testing::Test {
protected:
    void SetUp() override
    {
        for (const char* name : {"opj_compress", "opj_decompress", "grk_decompress"})
            QK_SKIP_UNLESS(haveProgram(name), std::string(name) + " is missing");
        QK_NEED_SHARED("bmp/rose.bmp");
        QK_NEED_SHARED("bmp/sbikers2.bmp");
        if (rose.width > 0) return;
        qovInit();
        rose = readBmp24(sharedPath("bmp/rose.bmp"));
        bikers = readBmp24(sharedPath("bmp/sbikers2.bmp"));
    }

    static inline Picture rose, bikers;
};

Picture greyOf(const Picture& rgb)
{
    return rgb.mapped(1, [](const unsigned char* from, unsigned char* to) { *to = from[1]; });
}

// A picture of any size: the photo over and over, each time a little brighter.
Picture tiled(const Picture& photo, int width, int height)
{
    Picture all = Picture::blank(width, height, photo.channels);
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++)
            for (int c = 0; c < photo.channels; c++)
                all.at(x, y)[c] = static_cast<unsigned char>(photo.at(x % photo.width, y % photo.height)[c] +
                                                             x / photo.width + y / photo.height);
    return all;
}

// A JP2 file, with the keys of the command line.
std::string encoded(const Picture& picture, const std::string& keys)
{
    const int step = (picture.width * picture.channels + 3) / 4 * 4;
    std::vector<uint8_t> rows(static_cast<size_t>(step) * static_cast<size_t>(picture.height));
    for (int y = 0; y < picture.height; y++)
        for (int x = 0; x < picture.width; x++)
            std::reverse_copy(
                picture.at(x, y), picture.at(x, y) + picture.channels,
                &rows[static_cast<size_t>((picture.height - 1 - y) * step + x * picture.channels)]);

    std::vector<std::string> words{"jpeg2kcodec", "-i", "in.bmp"};
    std::istringstream text(keys);
    for (std::string word; text >> word;) words.push_back(word);
    std::vector<const char*> argv;
    for (const std::string& word : words) argv.push_back(word.c_str());
    BDiagnOutput sink;
    const CmdOptions options(argv.data(), static_cast<int>(argv.size()), sink);

    _BMPBUFF bmp{nullptr, rows.data(), picture.width, picture.height, step, 0, 0, picture.channels * 8};
    std::string file(rows.size() * 2 + 65536, '\0');
    _JP2BUFF jp2{reinterpret_cast<uint8_t*>(file.data()), static_cast<uint32_t>(file.size()), 0, 0};
    EXPECT_EQ(encode(options, sink, bmp, jp2), 0);
    file.resize(jp2.length);
    return file;
}

Picture decodedBy(const std::string& program, const std::string& file, int channels)
{
    const std::string ending = channels == 3 ? "ppm" : "pgm";
    return parsePnm(filter("d=$(mktemp -d) && cat >$d/a.jp2 && " + program + " -i $d/a.jp2 -o $d/a." +
                               ending + " >&2 && cat $d/a." + ending + "; s=$?; rm -r $d; exit $s",
                           file));
}

TEST_F(J2kCross, ReversibleFilesComeBackExactly)
{
    struct {
        int width, height;
        const char* keys;
    } const cases[] = {
        {1, 1, "-wlev 5"},     {1, 1, "-wlev 0"},
        {1, 2, "-wlev 1"},     {2, 1, "-wlev 5"},
        {1, 77, "-wlev 5"},    {77, 1, "-wlev 5"},
        {3, 3, "-wlev 2"},     {5, 4, "-wlev 9"},
        {64, 64, "-wlev 0"},   {65, 63, "-wlev 1"},
        {129, 67, "-wlev 99"}, {128, 128, "-wlev 7"},
        {720, 480, "-wlev 5"}, {720, 480, "-wlev 99"},
        {720, 480, "-wlev 0"}, {333, 257, "-wlev 3 -gray never"},
    };
    for (const auto& c : cases) {
        const Picture colour = bikers.cropped(300, 400, c.width, c.height);
        for (const char* mct : {" -mct+", " -mct-"})
            for (const Picture& picture : {colour, greyOf(colour)}) {
                if (picture.channels == 1 && mct[5] == '-') continue;
                const std::string file = encoded(picture, c.keys + std::string(mct));
                const bool hasPalette = picture.channels == 1 && std::string(c.keys).ends_with("never");
                const Picture expected =
                    hasPalette ? picture.mapped(3, [](const unsigned char* from,
                                                      unsigned char* to) { std::fill(to, to + 3, *from); })
                               : picture;
                for (const char* program : {"opj_decompress", "grk_decompress"})
                    EXPECT_EQ(distance(decodedBy(program, file, expected.channels), expected).most, 0)
                        << program << " " << c.width << "x" << c.height << "x" << picture.channels << " "
                        << c.keys << mct;
            }
    }
}

TEST_F(J2kCross, LargePicturesComeBackExactly)
{
    const Picture picture = tiled(bikers, 4000, 3000);
    const std::string file = encoded(picture, "-wlev 6");
    for (const char* program : {"opj_decompress", "grk_decompress"})
        EXPECT_EQ(distance(decodedBy(program, file, 3), picture).most, 0) << program;
}

// OpenJPEG's picture after as many bytes as ours.
Distance distanceOfPeer(const Picture& picture, size_t bytes, const std::string& keys)
{
    const double ratio = static_cast<double>(picture.samples.size()) / static_cast<double>(bytes);
    const std::string ending = picture.channels == 3 ? "ppm" : "pgm";
    const std::string file = filter("d=$(mktemp -d) && cat >$d/a." + ending + " && opj_compress -i $d/a." +
                                        ending + " -o $d/a.jp2 -n 6 -r " + std::to_string(ratio) + " " +
                                        keys + " >&2 && cat $d/a.jp2; s=$?; rm -r $d; exit $s",
                                    pnmOf(picture));
    EXPECT_NEAR(static_cast<double>(file.size()), static_cast<double>(bytes),
                0.02 * static_cast<double>(bytes));
    return distance(decodedBy("opj_decompress", file, picture.channels), picture);
}

// The budget is that of the packets, so headers come on top of it.
TEST_F(J2kCross, BudgetsAreKeptAndUsedWell)
{
    struct {
        const char* wavelet;
        int ratio;
        double loss; // dB that OpenJPEG may be better by
    } const cases[] = {{"53", 2, 0.3},   {"53", 10, 0.3}, {"53", 50, 0.3},
                       {"53", 100, 0.3}, {"97", 64, 0.7}, {"97", 100, 0.7}};
    for (const Picture& colour : {rose, bikers})
        for (const Picture& picture : {colour, greyOf(colour)})
            for (const auto& c : cases) {
                const std::string file = encoded(picture, "-wt wt" + std::string(c.wavelet) + " -ratio " +
                                                              std::to_string(c.ratio));
                const size_t row = static_cast<size_t>((picture.width * picture.channels + 3) / 4 * 4);
                EXPECT_LE(file.size(),
                          row * static_cast<size_t>(picture.height) / static_cast<size_t>(c.ratio) + 300);
                const double ours =
                    distance(decodedBy("opj_decompress", file, picture.channels), picture).psnr;
                const double theirs =
                    distanceOfPeer(picture, file.size(), c.wavelet == std::string("97") ? "-I" : "").psnr;
                EXPECT_GT(ours, theirs - c.loss) << c.wavelet << " ratio " << c.ratio << " " << picture.width
                                                 << "x" << picture.height << "x" << picture.channels;
            }
}

// Derived steps leave out the band's gain, so other readers show another picture; but they read it to its
// end.
TEST_F(J2kCross, DerivedStepsParse)
{
    const Picture picture = rose.cropped(0, 0, 200, 150);
    const std::string file = encoded(picture, "-wt wt97 -ratio 5 -dquant 0.75");
    const size_t qcd = file.find("\xFF\x5C");
    ASSERT_NE(qcd, std::string::npos);
    EXPECT_EQ(file.substr(qcd, 7),
              std::string("\xFF\x5C\x00\x05\x41\x4C\x00", 7)); // exponent 9, mantissa 1024
    EXPECT_GT(distance(decodedBy("opj_decompress", file, 3), picture).psnr, 10);
    EXPECT_GT(distance(decodedBy("grk_decompress", file, 3), picture).psnr, 10);
}

} // namespace
