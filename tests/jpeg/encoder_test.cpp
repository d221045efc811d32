// The encoder's streams taken apart: order and bytes of markers, scans and restarts, padding, and what it
// refuses. Whether others can read them is asked elsewhere.
#include "jpegenc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {
using Bytes = std::vector<Qov8u>;
using Adjust = std::function<void(CJPEGEncoder&)>;

struct Case {
    _JPEG_MODE mode;
    _JPEG_COLOR src, stream; // a source of JC_YCBCR is 4:2:2
    _JPEG_SAMPLING sampling = JS_444;
    int width = 40, height = 24, restart = 0;
    Adjust adjust = [](CJPEGEncoder&) {};
};

int channelsOf(const Case& c)
{
    switch (c.src) {
    case JC_CMYK: return 4;
    case JC_GRAY: return 1;
    case JC_YCBCR: return 2;
    default: return 3;
    }
}

// A picture with smooth parts, edges and noise; sample (x, y) is the same in every size.
Bytes picture(const Case& c)
{
    const int channels = channelsOf(c);
    Bytes pixels;
    for (int y = 0; y < c.height; y++)
        for (int x = 0; x < c.width; x++)
            for (int i = 0; i < channels; i++) {
                const unsigned noise = unsigned(x * 31 + y * 57 + i * 91) * 2654435761u >> 27;
                const int edges = (x / 11 + y / 7) % 2 ? 60 : 0;
                pixels.push_back(Qov8u(x * 3 + y * (i + 1) + edges + int(noise)));
            }
    return pixels;
}

struct Result {
    _JPEG_ERROR header = JPEG_OK, data = JPEG_OK;
    Bytes stream;
};

// As the encoder stands, cleaned or not.
Result encode(CJPEGEncoder& encoder, const Case& c, const Bytes& pixels, int capacity = 200000)
{
    // A block of its own, so that the sanitizers see each byte past the end.
    const std::unique_ptr<Qov8u[]> buffer(new Qov8u[size_t(capacity)]);
    const int channels = channelsOf(c);
    const _JPEG_SAMPLING srcSampling = c.src == JC_YCBCR ? JS_422 : JS_444;
    Result result;
    EXPECT_EQ(JPEG_OK, encoder.SetSource(pixels.data(), c.width * channels, {c.width, c.height}, channels,
                                         c.src, srcSampling));
    EXPECT_EQ(JPEG_OK,
              encoder.SetDestination(buffer.get(), capacity, 75, c.stream, c.sampling, c.mode, c.restart));
    c.adjust(encoder);
    result.header = encoder.WriteHeader();
    if (result.header == JPEG_OK) result.data = encoder.WriteData();
    result.stream.assign(buffer.get(), buffer.get() + encoder.GetNumOfBytes());
    return result;
}

Result encode(const Case& c)
{
    CJPEGEncoder encoder;
    return encode(encoder, c, picture(c));
}

const Case colour = {JPEG_BASELINE, JC_RGB, JC_YCBCR};
const Case grey = {JPEG_BASELINE, JC_GRAY, JC_GRAY};
const Case losslessGrey = {JPEG_LOSSLESS, JC_GRAY, JC_GRAY};
const Case unknown = {JPEG_BASELINE, JC_UNKNOWN, JC_UNKNOWN};

Case with(Case c, const Adjust& adjust)
{
    c.adjust = adjust;
    return c;
}

Adjust components(int n)
{
    return [=](CJPEGEncoder& e) { e.m_jpeg_ncomp = n; };
}

Adjust lossless(int precision, int predictor, int pt)
{
    return [=](CJPEGEncoder& e) {
        e.m_jpeg_precision = precision;
        e.m_predictor = predictor;
        e.m_pt = pt;
    };
}

struct Segment {
    int marker;
    Bytes payload; // of SOS: the coded data behind
    Bytes header;  // of SOS
};

std::vector<Segment> takeApart(const Bytes& s)
{
    std::vector<Segment> segments;
    for (size_t at = 0; at + 1 < s.size();) {
        if (s[at] != 0xFF) {
            ADD_FAILURE() << "no marker at " << at;
            break;
        }
        Segment segment{s[at + 1], {}, {}};
        at += 2;
        if (segment.marker != JM_SOI && segment.marker != JM_EOI) {
            const size_t length = size_t(s[at] << 8 | s[at + 1]);
            if (length < 2 || at + length > s.size()) {
                ADD_FAILURE() << "length " << length << " at " << at;
                break;
            }
            segment.payload.assign(&s[at + 2], &s[at] + length);
            at += length;
        }
        if (segment.marker == JM_SOS) {
            segment.header.swap(segment.payload);
            while (at + 1 < s.size() && (s[at] != 0xFF || s[at + 1] == 0)) segment.payload.push_back(s[at++]);
        }
        segments.push_back(segment);
    }
    return segments;
}

std::string hex(const Bytes& bytes)
{
    std::string text;
    for (const Qov8u byte : bytes) {
        static const char digits[] = "0123456789abcdef";
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

// The second bytes of the markers: with class and selector of tables, and all that frames, scans and
// intervals say.
std::string outline(const Bytes& stream)
{
    std::string text;
    for (const Segment& segment : takeApart(stream)) {
        text += (text.empty() ? "" : " ") + hex({Qov8u(segment.marker)});
        switch (segment.marker) {
        case JM_APP0:
        case JM_APP14:
        case JM_COM: break;
        case JM_DQT:
        case JM_DHT: text += hex({segment.payload[0]}); break;
        case JM_SOS: text += hex(segment.header); break;
        default: text += hex(segment.payload);
        }
    }
    return text;
}

// Of the first segment with this marker.
Bytes payload(const Bytes& stream, int marker)
{
    for (const Segment& segment : takeApart(stream))
        if (segment.marker == marker) return segment.payload;
    ADD_FAILURE() << "no marker " << marker;
    return {0};
}
} // namespace

TEST(JpegEncoder, orderOfMarkers)
{
    const struct {
        Case c;
        const char* outline;
    } rows[] = {
        {{JPEG_BASELINE, JC_RGB, JC_YCBCR, JS_422, 9, 300},
         "d8 e0 fe db00 db01 c008012c000903002100011101021101 c400 c401 c410 c411 da03000001110211003f00 "
         "d9"},
        {{JPEG_BASELINE, JC_RGB, JC_RGB, JS_411, 40, 24, 0x102},
         "d8 ee fe db00 db01 c0080018002803002200011100021100 c400 c401 c410 c411 dd0102 "
         "da03000001110211003f00 d9"},
        {grey, "d8 e0 fe db00 c0080018002801001100 c400 c410 da010000003f00 d9"},
        {{JPEG_BASELINE, JC_CMYK, JC_YCCK, JS_411},
         "d8 ee fe db00 db01 c0080018002804002200011101021101032200 c400 c401 c410 c411 "
         "da040000011102110300003f00 d9"},
        {with(unknown, components(3)),
         "d8 fe db00 db01 c0080018002803001100011100021100 c400 c401 c410 c411 da03000001110211003f00 d9"},
        {with(losslessGrey, lossless(7, 5, 2)), "d8 fe c3070018002801001100 c400 da010000050002 d9"},
        {{JPEG_PROGRESSIVE, JC_GRAY, JC_GRAY},
         "d8 e0 fe db00 c2080018002801001100 c400 da010000000001 c410 da010000010502 c410 da010000063f02 "
         "c410 da010000013f21 da010000000010 c410 da010000013f10 d9"},
        {{JPEG_PROGRESSIVE, JC_RGB, JC_YCBCR, JS_411},
         "d8 e0 fe db00 db01 c2080018002803002200011101021101 c400 c401 da03000001110211000001 c410 "
         "da010000010502 c411 da010211013f01 c411 da010111013f01 c410 da010000063f02 c410 da010000013f21 "
         "da03000001110211000010 c411 da010211013f10 c411 da010111013f10 c410 da010000013f10 d9"},
        {{JPEG_PROGRESSIVE, JC_CMYK, JC_CMYK, JS_411},
         "d8 ee fe db00 db01 c2080018002804002200011100021100032200 c400 c401 da040000011102110300000001 "
         "c410 da010000010502 c411 da010111010502 c411 da010211010502 c410 da010300010502 c410 "
         "da010000063f02 c411 da010111063f02 c411 da010211063f02 c410 da010300063f02 c410 da010000013f21 "
         "c411 da010111013f21 c411 da010211013f21 c410 da010300013f21 da040000011102110300000010 c410 "
         "da010000013f10 c411 da010111013f10 c411 da010211013f10 c410 da010300013f10 d9"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.outline, outline(encode(row.c).stream));
}

TEST(JpegEncoder, bytesOfSegments)
{
    const auto atQuality50 = [](CJPEGEncoder& e) { e.m_jpeg_quality = 50; };
    const Bytes stream = encode(with(colour, atQuality50)).stream;
    EXPECT_EQ("4a46494600010200000100010000", hex(payload(stream, JM_APP0)));
    Bytes quant = {0};
    quant.insert(quant.end(), DefaultLuminanceQuant, DefaultLuminanceQuant + 64);
    EXPECT_EQ(hex(quant), hex(payload(stream, JM_DQT)));
    EXPECT_EQ("0000010501010101010100000000000000000102030405060708090a0b", hex(payload(stream, JM_DHT)));

    const QovLibraryVersion* version = qovjGetLibVersion();
    const std::string comment = "JPEG encoder based on qovJP [" + std::to_string(version->major) + "." +
                                std::to_string(version->minor) + "." + std::to_string(version->build) +
                                "] - " + version->buildDate + '\0';
    const Bytes text = payload(stream, JM_COM);
    EXPECT_EQ(comment, std::string(text.begin(), text.end()));

    EXPECT_EQ("41646f626500640000000000",
              hex(payload(encode({JPEG_BASELINE, JC_CMYK, JC_CMYK}).stream, JM_APP14)));
    EXPECT_EQ("41646f626500640000000002",
              hex(payload(encode({JPEG_BASELINE, JC_CMYK, JC_YCCK}).stream, JM_APP14)));
}

// Coding a picture gives the same data as coding that picture with its last column and row repeated up to
// whole MCUs.
TEST(JpegEncoder, paddingRepeatsTheLastSamples)
{
    const Case rows[] = {
        {JPEG_BASELINE, JC_RGB, JC_YCBCR, JS_444, 33, 17}, {JPEG_BASELINE, JC_RGB, JC_YCBCR, JS_422, 17, 15},
        {JPEG_BASELINE, JC_RGB, JC_YCBCR, JS_411, 1, 1},   {JPEG_BASELINE, JC_BGR, JC_YCBCR, JS_411, 31, 25},
        {JPEG_BASELINE, JC_CMYK, JC_YCCK, JS_411, 20, 3},  {JPEG_BASELINE, JC_YCBCR, JC_YCBCR, JS_422, 18, 9},
    };
    for (const Case& c : rows) {
        SCOPED_TRACE(&c - rows);
        const int channels = channelsOf(c);
        const int mcuWidth = c.sampling == JS_444 ? 8 : 16, mcuHeight = c.sampling == JS_411 ? 16 : 8;
        Case whole = c;
        whole.width = (c.width + mcuWidth - 1) / mcuWidth * mcuWidth;
        whole.height = (c.height + mcuHeight - 1) / mcuHeight * mcuHeight;

        const Bytes pixels = picture(c);
        Bytes padded;
        for (int y = 0; y < whole.height; y++)
            for (int x = 0; x < whole.width; x++)
                for (int i = 0; i < channels; i++) {
                    const Qov8u* row = &pixels[size_t(std::min(y, c.height - 1) * c.width * channels)];
                    // Chroma of Y0 Cb Y1 Cr is shared by the pair.
                    const bool paired = c.src == JC_YCBCR && i == 1;
                    const int column = std::min(x, paired ? c.width - 2 + x % 2 : c.width - 1);
                    padded.push_back(row[column * channels + i]);
                }
        CJPEGEncoder encoder;
        const Bytes cut = encode(encoder, c, pixels).stream;
        const Bytes full = encode(encoder, whole, padded).stream;
        EXPECT_EQ(hex(payload(full, JM_SOS)), hex(payload(cut, JM_SOS)));
    }
}

// At every length the encoder stays inside, and reports; the byte kept in reserve makes the stream's own
// length too small.
TEST(JpegEncoder, everyShortBufferIsReported)
{
    const Case rows[] = {
        {JPEG_BASELINE, JC_RGB, JC_YCBCR, JS_411, 40, 24, 1},
        {JPEG_PROGRESSIVE, JC_RGB, JC_YCBCR, JS_444, 40, 24, 7},
        losslessGrey,
    };
    for (const Case& c : rows) {
        SCOPED_TRACE(&c - rows);
        const Bytes pixels = picture(c), stream = encode(c).stream;
        const int size = int(stream.size());
        CJPEGEncoder encoder;
        for (int capacity = 0; capacity <= size; capacity++) {
            const Result result = encode(encoder, c, pixels, capacity);
            const _JPEG_ERROR error = result.header != JPEG_OK ? result.header : result.data;
            const bool inData = result.header == JPEG_OK && error == JPEG_INTERNAL_ERROR;
            ASSERT_TRUE(error == JPEG_BUFFER_TOO_SMALL || inData) << capacity << ": " << GetErrorStr(error);
            ASSERT_LE(int(result.stream.size()), capacity);
        }
        EXPECT_EQ(stream, encode(encoder, c, pixels, size + 1).stream);
    }
}

TEST(JpegEncoder, refusals)
{
    const auto words = [](CJPEGEncoder& e) {
        static const Qov16s samples[40 * 24] = {};
        EXPECT_EQ(JPEG_OK, e.SetSource(samples, 80, {40, 24}, 1, JC_GRAY, JS_444));
    };
    const auto size = [](int width, int height) {
        return [=](CJPEGEncoder& e) {
            EXPECT_EQ(JPEG_OK, e.SetSource(e.m_src, 0, {width, height}, 3, JC_RGB, JS_444));
            EXPECT_EQ(JPEG_OK, e.SetDestination(e.m_dst.pData, e.m_dst.DataLen, 75, e.m_jpeg_color,
                                                e.m_jpeg_sampling, e.m_jpeg_mode, 0));
        };
    };
    const struct {
        _JPEG_ERROR error;
        bool headerIsWritten;
        Case c;
    } rows[] = {
        {JPEG_NOT_SUPPORTED, true, {JPEG_LOSSLESS, JC_RGB, JC_YCBCR}},
        {JPEG_NOT_SUPPORTED, true, {JPEG_LOSSLESS, JC_GRAY, JC_GRAY, JS_444, 40, 24, 2}},
        {JPEG_INTERNAL_ERROR, true, with(losslessGrey, lossless(8, 0, 0))},
        {JPEG_INTERNAL_ERROR, true, with(losslessGrey, lossless(8, 1, 8))},
        {JPEG_NOT_SUPPORTED, false, with(losslessGrey, words)},
        {JPEG_INTERNAL_ERROR, false, {_JPEG_MODE(3), JC_RGB, JC_YCBCR}},
        {JPEG_OUT_OF_MEMORY, false, unknown},
        {JPEG_OUT_OF_MEMORY, false, {JPEG_PROGRESSIVE, JC_BGR, JC_BGR}},
        {JPEG_NOT_SUPPORTED, true, with({JPEG_PROGRESSIVE, JC_UNKNOWN, JC_UNKNOWN}, components(2))},
        {JPEG_NOT_SUPPORTED, false, with(unknown, components(5))},
        {JPEG_NOT_SUPPORTED, false, with(colour, size(0, 1))},
        {JPEG_NOT_SUPPORTED, false, with(colour, size(1, 0))},
        {JPEG_NOT_SUPPORTED, false, with(colour, size(65536, 1))},
        {JPEG_NOT_SUPPORTED, false, with(colour, size(1, 65536))},
        {JPEG_OUT_OF_MEMORY, false, with({JPEG_PROGRESSIVE, JC_RGB, JC_YCBCR}, size(65535, 65535))},
        {JPEG_NOT_SUPPORTED, false, {JPEG_BASELINE, JC_GRAY, JC_GRAY, JS_444, 40, 24, 65536}},
        {JPEG_NOT_SUPPORTED, false, {JPEG_BASELINE, JC_GRAY, JC_GRAY, JS_444, 40, 24, -1}},
    };
    for (const auto& row : rows) {
        const Result result = encode(row.c);
        EXPECT_EQ(row.headerIsWritten, result.header == JPEG_OK) << "row " << &row - rows;
        EXPECT_EQ(row.error, row.headerIsWritten ? result.data : result.header) << "row " << &row - rows;
    }
}

// One object, used again and again in changing ways, writes what a new one writes.
TEST(JpegEncoder, leavesNothingBehind)
{
    const Case rows[] = {
        {JPEG_BASELINE, JC_RGB, JC_YCBCR, JS_411, 40, 24, 2},
        with(losslessGrey, lossless(8, 7, 1)),
        losslessGrey,
        {JPEG_BASELINE, JC_BGR, JC_GRAY}, // a pair without a conversion
        {JPEG_PROGRESSIVE, JC_CMYK, JC_YCCK, JS_444, 100},
        {JPEG_PROGRESSIVE, JC_GRAY, JC_GRAY, JS_444, 8},
    };
    CJPEGEncoder reused;
    for (int round = 0; round < 2; round++)
        for (const Case& c : rows) {
            EXPECT_EQ(JPEG_OK, reused.Clean());
            EXPECT_EQ(encode(c).stream, encode(reused, c, picture(c)).stream) << "row " << &c - rows;
        }

    // The coefficients of a small picture leave too little room for those of a larger one.
    const Case large = {JPEG_PROGRESSIVE, JC_GRAY, JC_GRAY, JS_444, 200, 200};
    EXPECT_EQ(encode(large).stream, encode(reused, large, picture(large)).stream);

    EXPECT_EQ(encode({JPEG_BASELINE, JC_RGB, JC_YCBCR, JS_422}).stream,
              encode({JPEG_BASELINE, JC_RGB, JC_YCBCR, JS_244}).stream);
}
