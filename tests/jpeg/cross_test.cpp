// The codec beside cjpeg, djpeg and ImageMagick: what each of them and we make of the other's streams.
#include "jpegdec.h"
#include "jpegenc.h"
#include "support/oracle.h"
#include "support/shared_data.h"
#include "support/tempfile.h"

#include <algorithm>
#include <cmath>

namespace {

class Cross : public testing::Test {
protected:
    void SetUp() override
    {
        for (const char* name : {"cjpeg", "djpeg", "convert"})
            QK_SKIP_UNLESS(haveProgram(name), std::string(name) + " is missing");
        QK_NEED_SHARED("bmp/rose.bmp");
        if (!photo) photo = std::make_unique<Picture>(readBmp24(sharedPath("bmp/rose.bmp")));
    }

    static Picture crop(int width, int height) { return photo->cropped(300, 180, width, height); }

private:
    static inline std::unique_ptr<Picture> photo;
};

unsigned char rounded(double value)
{
    return static_cast<unsigned char>(std::lround(std::clamp(value, 0.0, 255.0)));
}

unsigned char luma(const unsigned char* rgb)
{
    return rounded(0.299 * rgb[0] + 0.587 * rgb[1] + 0.114 * rgb[2]);
}

Picture greyOf(const Picture& rgb)
{
    return rgb.mapped(1, [](const unsigned char* from, unsigned char* to) { *to = luma(from); });
}

// The same colours as the encoder takes them.
Picture as(_JPEG_COLOR color, const Picture& rgb)
{
    switch (color) {
    case JC_GRAY: return greyOf(rgb);
    case JC_BGR:
        return rgb.mapped(
            3, [](const unsigned char* from, unsigned char* to) { std::reverse_copy(from, from + 3, to); });
    case JC_CMYK: // as stored, that is as light and not as ink; some black everywhere
        return rgb.mapped(4, [](const unsigned char* from, unsigned char* to) {
            std::copy(from, from + 3, to);
            to[3] = rounded(255 - from[1] / 3.0);
        });
    case JC_YCBCR: { // two channels, Y0 Cb Y1 Cr
        Picture yuyv = Picture::blank(rgb.width, rgb.height, 2);
        for (int y = 0; y < rgb.height; y++)
            for (int x = 0; x < rgb.width; x++) {
                const int left = x & ~1, right = std::min(left + 1, rgb.width - 1);
                double mean[3];
                for (int c = 0; c < 3; c++) mean[c] = (rgb.at(left, y)[c] + rgb.at(right, y)[c]) / 2.0;
                yuyv.at(x, y)[0] = luma(rgb.at(x, y));
                yuyv.at(x, y)[1] =
                    x == left ? rounded(-0.168736 * mean[0] - 0.331264 * mean[1] + 0.5 * mean[2] + 128)
                              : rounded(0.5 * mean[0] - 0.418688 * mean[1] - 0.081312 * mean[2] + 128);
            }
        return yuyv;
    }
    default: return rgb;
    }
}

// What djpeg shows of stored CMYK.
Picture shown(const Picture& cmyk)
{
    return cmyk.mapped(3, [](const unsigned char* from, unsigned char* to) {
        for (int c = 0; c < 3; c++) to[c] = rounded(from[c] * from[3] / 255.0);
    });
}

struct Way {
    _JPEG_COLOR source, stream;
    _JPEG_SAMPLING sampling;
    _JPEG_MODE mode;
    int quality = 75, restart = 0;
};

std::string encode(const Picture& picture, const Way& way)
{
    std::string stream(picture.samples.size() * 4 + 4096, '\0');
    CJPEGEncoder encoder;
    EXPECT_EQ(JPEG_OK, encoder.SetSource(picture.samples.data(), picture.width * picture.channels,
                                         {picture.width, picture.height}, picture.channels, way.source,
                                         way.source == JC_YCBCR ? JS_422 : JS_444));
    EXPECT_EQ(JPEG_OK,
              encoder.SetDestination(reinterpret_cast<Qov8u*>(stream.data()), static_cast<int>(stream.size()),
                                     way.quality, way.stream, way.sampling, way.mode, way.restart));
    EXPECT_EQ(JPEG_OK, encoder.WriteHeader());
    EXPECT_EQ(JPEG_OK, encoder.WriteData());
    stream.resize(static_cast<size_t>(encoder.GetNumOfBytes()));
    return stream;
}

Picture decode(const std::string& stream)
{
    CJPEGDecoder decoder;
    Picture p;
    int precision = 0;
    _JPEG_COLOR color = JC_UNKNOWN;
    _JPEG_SAMPLING sampling = JS_OTHER;
    EXPECT_EQ(JPEG_OK, decoder.SetSource(reinterpret_cast<const Qov8u*>(stream.data()),
                                         static_cast<int>(stream.size())));
    EXPECT_EQ(JPEG_OK, decoder.ReadHeader(&p.width, &p.height, &p.channels, &color, &sampling, &precision));
    p = Picture::blank(p.width, p.height, p.channels);
    EXPECT_EQ(JPEG_OK,
              decoder.SetDestination(p.samples.data(), p.width * p.channels, {p.width, p.height}, p.channels,
                                     p.channels == 1   ? JC_GRAY
                                     : p.channels == 3 ? JC_RGB
                                                       : JC_CMYK));
    EXPECT_EQ(JPEG_OK, decoder.ReadData());
    return p;
}

// Two accurate inverse transforms may differ by 1 in each component, and so by 3 in a colour.
//
// With 2x2 the pictures part by design at the bottom of each row of MCUs, where our up-sampling repeats the
// last chroma row and djpeg takes the next one, and at the right and lower edge, where ours goes on into the
// padding. Of 1x2 we repeat rows, which djpeg is told to do too.
void expectTheSamePicture(const std::string& stream, _JPEG_SAMPLING sampling)
{
    const bool repeats = sampling == JS_244;
    const Picture theirs =
        parsePnm(filter(std::string("djpeg -pnm -dct int") + (repeats ? " -nosmooth" : ""), stream));
    Picture ours = decode(stream);
    if (ours.channels == 4) ours = shown(ours);
    const Distance d = distance(theirs, ours, [&](int x, int y) {
        return sampling == JS_411 && (y % 16 == 15 || y >= ours.height - 2 || x >= ours.width - 2);
    });
    EXPECT_LE(d.most, 4);
    EXPECT_GE(d.psnr, 52);
}

struct Size {
    int width, height;
} const sizes[] = {{208, 160}, {199, 149}};

TEST_F(Cross, ourStreamsAreAsGoodAndAsSmallAsThoseOfCjpeg)
{
    struct {
        const char* name;
        Way way;
        const char* cjpeg;
        bool sameSize = true;
    } const cases[] = {
        {"444", {JC_RGB, JC_YCBCR, JS_444, JPEG_BASELINE}, "-sample 1x1"},
        {"422", {JC_RGB, JC_YCBCR, JS_422, JPEG_BASELINE}, "-sample 2x1"},
        {"244-as-422", {JC_RGB, JC_YCBCR, JS_244, JPEG_BASELINE}, "-sample 2x1"},
        {"420", {JC_RGB, JC_YCBCR, JS_411, JPEG_BASELINE}, "-sample 2x2"},
        {"420-q25", {JC_RGB, JC_YCBCR, JS_411, JPEG_BASELINE, 25}, "-sample 2x2"},
        {"420-q100", {JC_RGB, JC_YCBCR, JS_411, JPEG_BASELINE, 100}, "-sample 2x2"},
        {"420-restart", {JC_RGB, JC_YCBCR, JS_411, JPEG_BASELINE, 75, 5}, "-sample 2x2 -restart 5B"},
        {"420-bgr", {JC_BGR, JC_YCBCR, JS_411, JPEG_BASELINE}, "-sample 2x2"},
        {"422-from-422", {JC_YCBCR, JC_YCBCR, JS_422, JPEG_BASELINE}, "-sample 2x1"},
        {"grey", {JC_GRAY, JC_GRAY, JS_444, JPEG_BASELINE}, "-grayscale"},
        {"grey-from-rgb-restart", {JC_RGB, JC_GRAY, JS_444, JPEG_BASELINE, 75, 7}, "-grayscale -restart 7B"},
        {"444-rgb", {JC_RGB, JC_RGB, JS_444, JPEG_BASELINE}, "-rgb", false}, // its tables are luminance's
        {"420-rgb", {JC_RGB, JC_RGB, JS_411, JPEG_BASELINE}, "-rgb -sample 2x2,1x1,1x1", false},
        {"444-prog", {JC_RGB, JC_YCBCR, JS_444, JPEG_PROGRESSIVE}, "-progressive -sample 1x1"},
        {"422-prog", {JC_RGB, JC_YCBCR, JS_422, JPEG_PROGRESSIVE}, "-progressive -sample 2x1"},
        {"420-prog", {JC_RGB, JC_YCBCR, JS_411, JPEG_PROGRESSIVE}, "-progressive -sample 2x2"},
        {"420-prog-q100", {JC_RGB, JC_YCBCR, JS_411, JPEG_PROGRESSIVE, 100}, "-progressive -sample 2x2"},
        {"420-prog-restart",
         {JC_RGB, JC_YCBCR, JS_411, JPEG_PROGRESSIVE, 75, 5},
         "-progressive -sample 2x2 -restart 5B"},
        {"grey-prog", {JC_GRAY, JC_GRAY, JS_444, JPEG_PROGRESSIVE}, "-progressive -grayscale"},
        {"grey-prog-restart",
         {JC_GRAY, JC_GRAY, JS_444, JPEG_PROGRESSIVE, 75, 7},
         "-progressive -grayscale -restart 7B"},
        {"444-rgb-prog", {JC_RGB, JC_RGB, JS_444, JPEG_PROGRESSIVE}, "-progressive -rgb", false},
    };
    for (const auto& c : cases)
        for (const Size& size : sizes) {
            SCOPED_TRACE(testing::Message() << c.name << ", " << size.width << "x" << size.height);
            if (c.way.source == JC_YCBCR && size.width % 2) continue;
            const Picture rgb = crop(size.width, size.height);
            const Picture source = c.way.stream == JC_GRAY ? greyOf(rgb) : rgb;
            const std::string ours = encode(as(c.way.source, rgb), c.way);
            const std::string theirs =
                filter("cjpeg -quality " + std::to_string(c.way.quality) + " " + c.cjpeg, pnmOf(rgb));
            const double ourQuality = distance(source, parsePnm(filter("djpeg -pnm", ours))).psnr;
            const double theirQuality = distance(source, parsePnm(filter("djpeg -pnm", theirs))).psnr;
            EXPECT_NEAR(ourQuality, theirQuality, 0.3);
            // Blocks of the last MCUs that lie outside the picture carry repeated samples here, nothing
            // there.
            if (c.sameSize && size.width % 16 == 0 && size.height % 16 == 0) {
                const auto theirSize = static_cast<double>(theirs.size());
                EXPECT_NEAR(static_cast<double>(ours.size()), theirSize, 0.02 * theirSize);
            }
            expectTheSamePicture(ours, c.way.sampling == JS_244 ? JS_422 : c.way.sampling);
        }
}

// There is no CMYK in cjpeg: the picture itself is the measure.
TEST_F(Cross, ourCmykStreamsAreReadByDjpeg)
{
    for (const _JPEG_COLOR stream : {JC_CMYK, JC_YCCK})
        for (const _JPEG_SAMPLING sampling : {JS_444, JS_422, JS_411})
            for (const _JPEG_MODE mode : {JPEG_BASELINE, JPEG_PROGRESSIVE})
                for (const int restart : {0, 5}) {
                    SCOPED_TRACE(testing::Message() << "stream " << stream << ", sampling " << sampling
                                                    << ", mode " << mode << ", restart " << restart);
                    const Picture cmyk = as(JC_CMYK, crop(99, 75));
                    const std::string ours = encode(cmyk, {JC_CMYK, stream, sampling, mode, 90, restart});
                    // Subsampled, the colours of plain CMYK lose more than those of YCCK.
                    const double least = stream == JC_YCCK || sampling == JS_444 ? 33 : 27;
                    EXPECT_GE(distance(shown(cmyk), parsePnm(filter("djpeg -pnm", ours))).psnr, least);
                    expectTheSamePicture(ours, sampling);
                }
}

TEST_F(Cross, streamsOfCjpegGiveThePictureOfDjpeg)
{
    struct {
        const char *name, *cjpeg;
        _JPEG_SAMPLING sampling;
    } const samplings[] = {{"444", "-sample 1x1", JS_444}, {"422", "-sample 2x1", JS_422},
                           {"244", "-sample 1x2", JS_244}, {"420", "-sample 2x2", JS_411},
                           {"grey", "-grayscale", JS_444}, {"rgb", "-rgb", JS_444}};
    struct {
        const char *name, *cjpeg;
    } const modes[] = {{"", ""},
                       {"-optimized", "-optimize"},
                       {"-restart", "-restart 5B"},
                       {"-restart-rows", "-restart 1"},
                       {"-prog", "-progressive"},
                       {"-prog-restart", "-progressive -restart 5B"},
                       {"-prog-restart-rows", "-progressive -restart 1"}};
    for (const auto& s : samplings)
        for (const auto& mode : modes)
            for (const Size& size : sizes)
                for (const int quality : {60, 95}) {
                    SCOPED_TRACE(testing::Message() << s.name << mode.name << ", " << size.width << "x"
                                                    << size.height << ", quality " << quality);
                    const std::string options =
                        std::string(s.cjpeg) + " " + mode.cjpeg + " -quality " + std::to_string(quality);
                    expectTheSamePicture(filter("cjpeg " + options, pnmOf(crop(size.width, size.height))),
                                         s.sampling);
                }
}

// Down to one MCU and less in each direction.
TEST_F(Cross, smallStreamsOfCjpegGiveThePictureOfDjpeg)
{
    for (const char* mode : {"", "-progressive"})
        for (const _JPEG_SAMPLING sampling : {JS_444, JS_411})
            for (int side = 6; side <= 34; side += 7) {
                SCOPED_TRACE(testing::Message() << side << " " << mode << ", sampling " << sampling);
                const std::string options = std::string(mode) + (sampling == JS_444 ? " -sample 1x1" : "");
                expectTheSamePicture(filter("cjpeg " + options, pnmOf(crop(side, 40 - side))), sampling);
            }
}

// Scripts that refine in three steps, and that send whole bands one after the other.
TEST_F(Cross, otherScanScriptsGiveThePictureOfDjpeg)
{
    for (const char* script :
         {"0,1,2: 0-0, 0, 2; 0,1,2: 0-0, 2, 1; 0,1,2: 0-0, 1, 0; 1: 1-63, 0, 0; 2: 1-63, 0, 1; 2: 1-63, 1, 0;"
          "0: 1-63, 0, 3; 0: 1-63, 3, 2; 0: 1-63, 2, 1; 0: 1-63, 1, 0;",
          "0,1,2: 0-0, 0, 0; 2: 1-20, 0, 0; 1: 1-2, 0, 0; 0: 1-9, 0, 0; 0: 10-63, 0, 0; 2: 21-63, 0, 0;"
          "1: 3-63, 0, 0;"})
        for (const char* restart : {"", "-restart 3B "}) {
            SCOPED_TRACE(std::string(restart) + script);
            const TempFile file{script};
            const std::string command = std::string("cjpeg ") + restart + "-scans '" + file.path() + "'";
            expectTheSamePicture(filter(command, pnmOf(crop(199, 149))), JS_411);
        }
}

TEST_F(Cross, fourComponentsOfImageMagickGiveThePictureOfDjpeg)
{
    const struct {
        const char* options;
        _JPEG_SAMPLING sampling;
    } cases[] = {{"-sampling-factor 1x1", JS_444},
                 {"-sampling-factor 2x1,1x1,1x1,2x1", JS_422},
                 {"-sampling-factor 2x2,1x1,1x1,2x2", JS_411},
                 {"-sampling-factor 2x2,1x1,1x1,2x2 -interlace JPEG", JS_411}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.options);
        const std::string stream =
            filter(std::string("convert ppm:- -colorspace CMYK -quality 90 ") + c.options + " jpeg:-",
                   pnmOf(crop(199, 149)));
        expectTheSamePicture(stream, c.sampling);
    }
}

} // namespace
