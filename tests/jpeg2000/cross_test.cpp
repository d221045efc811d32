// The codec beside OpenJPEG and Grok: what they make of our files, what they make of as many bytes, and what
// we make of their streams, of every cut and order.
#include "codec_testing.h"
#include "support/oracle.h"
#include "support/shared_data.h"

#include <qovcore.h>

#include <algorithm>

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
        cut = rose.cropped(40, 30, 217, 163);
    }

    static inline Picture rose, bikers, cut;
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

// Into a file in memory, with the keys of the command line.
Encoded encoded(const Picture& picture, const std::string& keys)
{
    const int step = (picture.width * picture.channels + 3) / 4 * 4;
    std::string rows(static_cast<size_t>(step) * static_cast<size_t>(picture.height), '\0');
    for (int y = 0; y < picture.height; y++)
        for (int x = 0; x < picture.width; x++)
            std::reverse_copy(
                picture.at(x, y), picture.at(x, y) + picture.channels,
                &rows[static_cast<size_t>((picture.height - 1 - y) * step + x * picture.channels)]);
    const Encoded result = encodedBitmap("-i in.bmp " + keys, rows, picture.width, picture.height,
                                         picture.channels * 8, rows.size() * 2 + 65536);
    EXPECT_EQ(result.result, 0);
    return result;
}

// All components, which have one size; samples are cut to bytes.
Picture decoded(std::string codestream)
{
    _METABUFF meta;
    EXPECT_EQ(0, decode(optionsOf("-i a.j2k -o a.bmp"), deafSink, sourceOf(codestream), meta));
    const unsigned nOfComponents = meta.components.size;
    const RectSize size = meta.components[0].size;
    Picture picture = Picture::blank(static_cast<int>(size.width), static_cast<int>(size.height),
                                     static_cast<int>(nOfComponents));
    unsigned char* sample = picture.samples.data();
    for (unsigned y = 0; y < size.height; y++)
        for (unsigned x = 0; x < size.width; x++)
            for (unsigned c = 0; c < nOfComponents; c++)
                *sample++ = static_cast<unsigned char>(std::clamp(meta.components[c].row(y)[x], 0, 255));
    return picture;
}

// Another program's file of one, both named by their endings.
std::string converted(const std::string& program, const std::string& file, const std::string& from,
                      const std::string& to, const std::string& keys = "")
{
    return filter("d=$(mktemp -d) && cat >$d/a." + from + " && " + program + " -i $d/a." + from +
                      " -o $d/b." + to + " " + keys + " >&2 && cat $d/b." + to + "; s=$?; rm -r $d; exit $s",
                  file);
}

std::string endingOf(int channels)
{
    return channels == 3 ? "ppm" : "pgm";
}

std::string encodedByPeer(const Picture& picture, const std::string& keys, const std::string& ending = "j2k")
{
    return converted("opj_compress", pnmOf(picture), endingOf(picture.channels), ending, keys);
}

Picture decodedBy(const std::string& program, const std::string& file, int channels,
                  const std::string& ending = "jp2")
{
    return parsePnm(converted(program, file, ending, endingOf(channels)));
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
                const Encoded ours = encoded(picture, c.keys + std::string(mct));
                EXPECT_EQ(distance(decoded(ours.codestream), picture).most, 0) << c.keys << mct;
                const bool hasPalette = picture.channels == 1 && std::string(c.keys).ends_with("never");
                const Picture expected =
                    hasPalette ? picture.mapped(3, [](const unsigned char* from,
                                                      unsigned char* to) { std::fill(to, to + 3, *from); })
                               : picture;
                for (const char* program : {"opj_decompress", "grk_decompress"})
                    EXPECT_EQ(distance(decodedBy(program, ours.file, expected.channels), expected).most, 0)
                        << program << " " << c.width << "x" << c.height << "x" << picture.channels << " "
                        << c.keys << mct;
            }
    }
}

TEST_F(J2kCross, LargePicturesComeBackExactly)
{
    const Picture picture = tiled(bikers, 4000, 3000);
    const std::string file = encoded(picture, "-wlev 6").file;
    for (const char* program : {"opj_decompress", "grk_decompress"})
        EXPECT_EQ(distance(decodedBy(program, file, 3), picture).most, 0) << program;
}

// OpenJPEG's picture after as many bytes as ours.
Distance distanceOfPeer(const Picture& picture, size_t bytes, const std::string& keys)
{
    const double ratio = static_cast<double>(picture.samples.size()) / static_cast<double>(bytes);
    const std::string file = encodedByPeer(picture, "-n 6 -r " + std::to_string(ratio) + " " + keys, "jp2");
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
                const std::string file =
                    encoded(picture, "-wt wt" + std::string(c.wavelet) + " -ratio " + std::to_string(c.ratio))
                        .file;
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
    const std::string file = encoded(picture, "-wt wt97 -ratio 5 -dquant 0.75").file;
    const size_t qcd = file.find("\xFF\x5C");
    ASSERT_NE(qcd, std::string::npos);
    EXPECT_EQ(file.substr(qcd, 7),
              std::string("\xFF\x5C\x00\x05\x41\x4C\x00", 7)); // exponent 9, mantissa 1024
    EXPECT_GT(distance(decodedBy("opj_decompress", file, 3), picture).psnr, 10);
    EXPECT_GT(distance(decodedBy("grk_decompress", file, 3), picture).psnr, 10);
}

TEST_F(J2kCross, ReversibleStreamsOfEveryCutComeBackExactly)
{
    const char* const keys[] = {
        "",
        "-n 1",
        "-n 1 -t 64,64",
        "-n 4 -b 4,64",
        "-n 4 -b 32,16 -t 100,70 -p RLCP",
        "-n 4 -c [64,64],[32,32] -p RPCL",
        "-n 5 -c [32,64] -b 64,64 -p PCRL -t 90,90",
        "-n 3 -c [16,32],[4,8],[2,2] -p CPRL -TP R",
        "-n 6 -d 13,7 -T 5,3 -t 61,59 -p RPCL -c [32,32]",
        "-n 2 -d 1,1 -t 7,5 -T 1,1 -b 4,4",
        "-n 4 -s 2,2 -d 6,4 -t 77,66 -c [32,32] -p PCRL",
        "-n 6 -POC T0=0,0,1,3,1,CPRL/T0=0,0,1,6,3,RLCP",
        "-n 4 -M 1",
        "-n 4 -M 2",
        "-n 4 -M 4",
        "-n 4 -M 8",
        "-n 4 -M 16",
        "-n 4 -M 32",
        "-n 4 -M 63",
        "-n 4 -M 5 -r 40,10,1",
        "-n 3 -M 4 -b 4,4 -r 200,100,50,20,1",
        "-n 4 -M 63 -r 60,30,15,8,1 -p RLCP -TP L -t 100,100 -c [32,32]",
        "-n 4 -M 4 -r 30,15,1 -p CPRL -c [32,32]",
        "-n 4 -GuardBits 5",
    };
    for (const Picture& picture : {cut, greyOf(cut)})
        for (const std::string key : keys) {
            const std::string stream = encodedByPeer(picture, key);
            EXPECT_EQ(distance(decoded(stream), picture).most, 0) << key << " " << picture.channels;
        }
}

TEST_F(J2kCross, IrreversibleStreamsOfOursComeBack)
{
    for (const Picture& picture : {cut, greyOf(cut)})
        EXPECT_GT(distance(decoded(encoded(picture, "-wt wt97 -ratio 2").codestream), picture).psnr,
                  picture.channels == 1 ? 51 : 48);
}

TEST_F(J2kCross, CutAndIrreversibleStreamsAreNearThePeers)
{
    struct {
        const char* keys;
        int grey, colour; // most difference
    } const cases[] = {
        {"-n 4 -r 20", 0, 0},
        {"-n 4 -M 4 -r 100,40", 0, 0},
        {"-n 6 -I", 2, 4},
        {"-n 6 -I -t 100,70 -d 3,5", 2, 4},
        {"-n 3 -I -c [64,64] -p RPCL -M 63 -mct 0", 2, 2},
    };
    for (const auto& c : cases)
        for (const Picture& picture : {greyOf(cut), cut}) {
            const std::string stream = encodedByPeer(picture, c.keys);
            EXPECT_LE(
                distance(decoded(stream), decodedBy("opj_decompress", stream, picture.channels, "j2k")).most,
                picture.channels == 1 ? c.grey : c.colour)
                << c.keys << " " << picture.channels;
        }
}

} // namespace
