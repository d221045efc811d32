// The decoder on streams put together by hand: what each segment tells, which error each fault gives, and
// what is left of a damaged picture.
#include "stream_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace {

// A decoder on a copy of the stream that ends where its memory ends.
class Decoder : public CJPEGDecoder {
public:
    explicit Decoder(const Bytes& stream = "") { open(stream); }

    void open(const Bytes& stream)
    {
        m_copy = std::make_unique<Qov8u[]>(stream.size());
        std::memcpy(m_copy.get(), stream.data(), stream.size());
        EXPECT_EQ(JPEG_OK, SetSource(m_copy.get(), static_cast<int>(stream.size())));
    }

    _JPEG_ERROR header() { return ReadHeader(&width, &height, &channels, &color, &sampling, &precision); }

    // Grey picture of the size told, framed by bytes that have to stay.
    _JPEG_ERROR grey(int dstWidth, int dstHeight)
    {
        m_picture.assign(static_cast<size_t>(dstWidth + 1) * static_cast<size_t>(dstHeight + 1), guard);
        step = dstWidth + 1;
        EXPECT_EQ(JPEG_OK, SetDestination(m_picture.data(), step, {dstWidth, dstHeight}, 1, JC_GRAY));
        return ReadData();
    }

    Qov8u at(int x, int y) const { return m_picture[static_cast<size_t>(y * step + x)]; }

    // The first column, top to bottom; `guard` where nothing was written.
    std::vector<int> column() const
    {
        std::vector<int> values;
        for (int y = 0; y < static_cast<int>(m_picture.size()) / step; y++) values.push_back(at(0, y));
        return values;
    }

    static constexpr Qov8u guard = 0xA5;
    int width = 0, height = 0, channels = 0, precision = 0, step = 0;
    _JPEG_COLOR color = JC_UNKNOWN;
    _JPEG_SAMPLING sampling = JS_OTHER;

private:
    std::unique_ptr<Qov8u[]> m_copy;
    std::vector<Qov8u> m_picture;
};

const Bytes greyFrame = frame(JM_SOF0, 8, 8, {{1, 0x11}});
const Bytes greyScan = scan({1});

// A frame of components with these factors, and its scan.
Bytes frameAndScan(const std::vector<int>& factors, int width, int height)
{
    std::vector<Component> components;
    std::vector<int> ids;
    for (const int one : factors) {
        const int id = static_cast<int>(ids.size());
        components.push_back({id, one});
        ids.push_back(id);
    }
    return frame(JM_SOF0, width, height, components) + scan(ids);
}

// Which code each fault of a header gives.
TEST(DecoderHeader, FaultsOfSegments)
{
    const Bytes codes17 = Bytes(15, 0) + bytes({1}); // one code of 16 bits
    const struct {
        _JPEG_ERROR code;
        std::vector<std::pair<const char*, Bytes>> streams;
    } faults[] = {
        {JPEG_OK,
         {{"frame only", greyFrame + eoi},
          {"second SOI, stray RST, zeros between",
           soi + marker(0xD3) + bytes({0, 0xFF, 0, 0xFF, 0xFF, 0}) + greyFrame + greyScan},
          {"quantiser 3 of 16 bits", segment(JM_DQT, bytes({0x13}) + Bytes(128, 1)) + greyFrame + eoi},
          {"one value for one code", segment(JM_DHT, bytes({0x10}) + codes17 + bytes({5})) + greyFrame + eoi},
          {"lossless, 16 bits", frame(JM_SOF3, 8, 8, {{1, 0x11}}, 16) + greyScan}}},
        {JPEG_BUFFER_TOO_SMALL, {{"no scan", greyFrame}}},
        {JPEG_NOT_SUPPORTED,
         {{"12 bits", frame(JM_SOF1, 8, 8, {{1, 0x11}}, 12)},
          {"lossless, 2 components", frame(JM_SOF3, 8, 8, {{1, 0x11}, {2, 0x11}})},
          {"height 0", frame(JM_SOF0, 8, 0, {{1, 0x11}}) + greyScan},
          {"arithmetic", frame(JM_SOF9, 8, 8, {{1, 0x11}})},
          {"scan of one of two", frame(JM_SOF0, 8, 8, {{1, 0x11}, {2, 0x11}}) + greyScan}}},
        {JPEG_INTERNAL_ERROR, {{"three codes of one bit", huffman(0, {3}, {0, 1, 2})}}},
        {JPEG_BAD_SEGMENT_LENGTH,
         {{"quantiser one byte short", segment(JM_DQT, Bytes(64, 1)) + greyFrame + greyScan},
          {"quantiser precision 2", segment(JM_DQT, bytes({0x20}) + Bytes(128, 1)) + greyFrame + greyScan},
          {"a byte behind the table", huffman(0, {1}, {0, 0})},
          {"a byte behind an impossible table", huffman(0, {3}, {0, 1, 2, 3})},
          {"interval of 3 bytes", segment(JM_DRI, Bytes(3, 0))},
          {"Exif of 5 bytes", segment(JM_APP1, Bytes("Exif\0", 5)) + "0123456"},
          {"frame a byte long", segment(JM_SOF0, bytes({8, 0, 8, 0, 8, 1, 1, 0x11, 0, 0}))},
          {"scan a byte long", greyFrame + segment(JM_SOS, bytes({1, 1, 0, 0, 63, 0, 0}))}}},
        {JPEG_BAD_HUFFMAN_TABLE,
         {{"table 4", huffman(4, {1}, {0})},
          {"257 codes", huffman(0, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 255}, {}) + Bytes(257, 1)},
          {"one code more than values", huffman(0, {0, 2}, {0})}}},
        {JPEG_BAD_QUANT_SEGMENT, {{"quantiser 4", eights(4)}}},
        {JPEG_BAD_SCAN_SEGMENT,
         {{"scan of none", greyFrame + scan({})},
          {"scan of 5", greyFrame + scan({1, 1, 1, 1, 1})},
          {"DC table 4", greyFrame + scan({1}, 0x40)},
          {"AC table 4", greyFrame + scan({1}, 0x04)}}},
        {JPEG_BAD_FRAME_SEGMENT,
         {{"no frame", eoi},
          {"lossless, 1 bit", frame(JM_SOF3, 8, 8, {{1, 0x11}}, 1)},
          {"lossless, 17 bits", frame(JM_SOF3, 8, 8, {{1, 0x11}}, 17)},
          {"5 components", frameAndScan({0x11, 0x11, 0x11, 0x11, 0x11}, 8, 8)},
          {"no component", frame(JM_SOF0, 8, 8, {})},
          {"width 0", frame(JM_SOF0, 0, 8, {{1, 0x11}})},
          {"factor 0", frame(JM_SOF0, 8, 8, {{1, 0x10}})},
          {"factor 5", frame(JM_SOF0, 8, 8, {{1, 0x51}})},
          {"quantiser selector 4", frame(JM_SOF0, 8, 8, {{1, 0x11, 4}})}}},
        {JPEG_BAD_COMPONENT_ID,
         {{"scan before the frame", greyScan},
          {"unknown component", greyFrame + scan({2})},
          {"record without a component", greyFrame + scan({0})}}},
        {JPEG_BAD_SAMPLING, {{"grey of 2x1", frame(JM_SOF0, 8, 8, {{1, 0x21}})}}},
    };
    for (const auto& fault : faults)
        for (const auto& [name, segments] : fault.streams)
            EXPECT_EQ(fault.code, Decoder(soi + segments).header()) << name;
}

// Lengths that no segment can have, and segments that the data end inside.
TEST(DecoderHeader, LengthsAreCheckedInEverySegment)
{
    for (const int code : {0xC0, 0xC2, 0xC3, 0xC4, 0xDA, 0xDB, 0xDD, 0xE0, 0xE1, 0xE2, 0xEE, 0xFE}) {
        const Bytes start = soi + marker(code);
        for (const int length : {0, 1}) // a JFIF segment is given up, the search for markers goes on
            EXPECT_EQ(code == JM_APP0 ? JPEG_BAD_COMPONENT_ID : JPEG_BAD_SEGMENT_LENGTH,
                      Decoder(start + word(length) + greyScan).header())
                << code;
        if (code == JM_DRI) continue; // has to be 4
        for (const int there : {0, 1, 2, 40}) {
            const Bytes rest = (word(50) + "Exif" + Bytes(50, 0)).substr(0, static_cast<size_t>(there));
            EXPECT_EQ(JPEG_BUFFER_TOO_SMALL, Decoder(start + rest).header()) << code << " " << there;
        }
    }
}

TEST(DecoderHeader, ApplicationSegments)
{
    const Bytes exif = Bytes("Exif\0\0", 6);
    const Bytes hidden = segment(JM_COM, "seen"); // 8 bytes at the end of AVI1, where the search goes on
    Decoder decoder(
        soi + segment(JM_APP0, Bytes("JFIF\0", 5) + bytes({1, 2, 1, 1, 44, 0, 72, 3, 4}) + "thumb") +
        segment(JM_APP0, Bytes("JFXX\0", 5) + bytes({0x13}) + "thumb") +
        segment(JM_APP0, "AVI1" + bytes({2}) + Bytes(7, 0) + hidden) + segment(JM_APP1, exif + "MM*") +
        segment(JM_APP1, "http://") + segment(JM_APP14, "Adobe" + bytes({0, 100, 1, 2, 3, 4, 1}) + "tail") +
        greyFrame + greyScan);
    ASSERT_EQ(JPEG_OK, decoder.header());
    const auto fields = [&decoder] {
        const Decoder& d = decoder;
        return std::vector<int>{
            d.m_jfif_app0_detected,   d.m_jfif_app0_major,       d.m_jfif_app0_minor,
            d.m_jfif_app0_units,      d.m_jfif_app0_xDensity,    d.m_jfif_app0_yDensity,
            d.m_jfif_app0_thumbWidth, d.m_jfif_app0_thumbHeight, d.m_jfxx_app0_detected,
            d.m_jfxx_thumbnails_type, d.m_avi1_app0_detected,    d.m_avi1_app0_polarity,
            d.m_exif_app1_detected,   d.m_exif_app1_data_size,   d.m_jpeg_comment_detected,
            d.m_adobe_app14_detected, d.m_adobe_app14_version,   d.m_adobe_app14_flags0,
            d.m_adobe_app14_flags1,   d.m_adobe_app14_transform, d.m_jpeg_comment_size};
    };
    const std::vector<int> told = {1, 1, 2, 1, 300, 72,  3,     4,     1, 0x13, 1,
                                   2, 1, 9, 1, 1,   100, 0x102, 0x304, 1, 4};
    EXPECT_EQ(told, fields());
    EXPECT_STREQ("seen", decoder.m_jpeg_comment);
    EXPECT_EQ(Bytes("MM*") + Bytes(6, 0),
              Bytes(reinterpret_cast<char*>(decoder.m_exif_app1_data), 9)); // zeros up to the size

    ASSERT_EQ(JPEG_OK, decoder.Clean());
    EXPECT_EQ(std::vector<int>(told.size()), fields());
    EXPECT_FALSE(decoder.m_exif_app1_data || decoder.m_jpeg_comment);
}

TEST(DecoderHeader, ColourOfTheStream)
{
    const int noAdobe = -1;
    static const struct {
        size_t ncomp;
        int adobe;
        _JPEG_COLOR color;
    } cases[] = {{1, noAdobe, JC_GRAY},    {2, noAdobe, JC_UNKNOWN}, {3, noAdobe, JC_YCBCR},
                 {4, noAdobe, JC_UNKNOWN}, {1, 0, JC_GRAY},          {2, 0, JC_UNKNOWN},
                 {3, 0, JC_RGB},           {4, 0, JC_CMYK},          {3, 1, JC_YCBCR},
                 {4, 2, JC_YCCK},          {3, 3, JC_UNKNOWN}};
    for (const auto& one : cases)
        for (const bool jfif : {false, true}) {
            Bytes stream = soi;
            if (jfif) stream += segment(JM_APP0, Bytes("JFIF\0", 5) + Bytes(9, 1));
            if (one.adobe != noAdobe) stream += segment(JM_APP14, "Adobe" + Bytes(6, 0) + bytes({one.adobe}));
            Decoder decoder(stream + frameAndScan(std::vector<int>(one.ncomp, 0x11), 8, 8));
            ASSERT_EQ(JPEG_OK, decoder.header());
            EXPECT_EQ(one.color, decoder.color) << one.ncomp << " components, Adobe " << one.adobe;
        }
}

// The names of sampling patterns, and that the scan of any other is refused; the geometry of one of them.
TEST(DecoderHeader, SamplingAndGeometry)
{
    static const struct {
        std::vector<int> factors;
        _JPEG_SAMPLING sampling;
        _JPEG_ERROR data;
    } cases[] = {{{0x11, 0x11, 0x11}, JS_444, JPEG_OK},
                 {{0x21, 0x11, 0x11}, JS_422, JPEG_OK},
                 {{0x12, 0x11, 0x11}, JS_244, JPEG_OK},
                 {{0x22, 0x11, 0x11}, JS_411, JPEG_OK},
                 {{0x22, 0x21, 0x21}, JS_OTHER, JPEG_NOT_SUPPORTED},
                 {{0x22, 0x11, 0x11, 0x22}, JS_411, JPEG_OK},
                 {{0x22, 0x11, 0x11, 0x11}, JS_OTHER, JPEG_NOT_SUPPORTED},
                 {{0x31, 0x21}, JS_444, JPEG_OK}, // no pattern has two components
                 {{0x23, 0x32}, JS_444, JPEG_NOT_SUPPORTED}};
    for (const auto& one : cases) {
        Decoder decoder(soi + frameAndScan(one.factors, 17, 33) + eoi);
        ASSERT_EQ(JPEG_OK, decoder.header());
        EXPECT_EQ(one.sampling, decoder.sampling);
        if (one.sampling == JS_411) {
            const Decoder& d = decoder;
            const std::vector<int> geometry = {d.m_numxMCU, d.m_numyMCU, d.m_xPadding, d.m_yPadding};
            EXPECT_EQ((std::vector<int>{2, 3, 15, 15}), geometry);
        }
        std::vector<Qov8u> picture(17 * 33 * 4);
        ASSERT_EQ(JPEG_OK, decoder.SetDestination(picture.data(), 17 * 4, {17, 33}, 4, JC_BGR));
        EXPECT_EQ(one.data, decoder.ReadData()) << one.factors[0];
    }
}

TEST(DecoderHeader, CursorReturnsToTheScan)
{
    const Bytes head = soi + greyFrame;
    Decoder decoder(head + Bytes(3, '\xFF') + greyScan);
    ASSERT_EQ(JPEG_OK, decoder.header());
    EXPECT_EQ(static_cast<int>(head.size()) + 3, decoder.m_src.currPos);
}

// A grey stream, what ReadData says to it, and its first column.
struct Case {
    const char* name;
    _JPEG_ERROR code;
    Bytes stream;
    std::vector<int> column;
};

// By a new decoder and by one that had the cases before: Clean leaves nothing of them.
void decodeAll(const std::vector<Case>& cases, int width)
{
    Decoder reused;
    for (const Case& one : cases) {
        Decoder fresh(one.stream);
        reused.open(one.stream);
        for (Decoder* decoder : {&fresh, &reused}) {
            ASSERT_EQ(JPEG_OK, decoder->header()) << one.name;
            EXPECT_EQ(one.code, decoder->grey(width, static_cast<int>(one.column.size()))) << one.name;
            std::vector<int> column = decoder->column();
            EXPECT_EQ(Decoder::guard, column.back()) << one.name;
            column.pop_back();
            EXPECT_EQ(one.column, column) << one.name;
            ASSERT_EQ(JPEG_OK, decoder->Clean());
        }
    }
}

// Each value in 8 rows, the last one in fewer.
std::vector<int> bands(std::initializer_list<int> values, size_t lastRows = 8)
{
    std::vector<int> rows;
    for (const int value : values) rows.insert(rows.end(), 8, value);
    rows.resize(rows.size() - 8 + lastRows);
    return rows;
}

// Flat blocks of a picture 8 wide, one above the other; the tables are those a motion stream leaves out.
Bytes tall(int blocks, const Bytes& segments = "")
{
    return soi + eights() + segments + frame(JM_SOF0, 8, 8 * blocks, {{1, 0x11}}) + greyScan;
}

// What damage leaves of a sequential picture.
TEST(DecoderBaseline, DamagedData)
{
    const Bytes everyBlock = segment(JM_DRI, word(1));
    const Bytes one = Bits().flat(1), two = Bits().flat(1).flat(2), none = Bits().flat(0);
    const Bytes noCode = bytes({0xFF, 0, 0xFF, 0}); // ones alone are no code
    const std::vector<Case> cases = {
        {"no EOI", JPEG_BUFFER_TOO_SMALL, tall(2) + two, bands({129, 131})},
        {"rubbish before EOI", JPEG_OK, tall(2) + two + "rubbish" + eoi, bands({129, 131})},
        {"cut short", JPEG_OK, tall(4) + two, bands({129, 131, 131, 131})},
        {"EOI too early", JPEG_OK, tall(4) + two + eoi, bands({129, 131, 131, 131})},
        {"no data", JPEG_OK, tall(2), bands({128, 128})},
        {"restarts of any number", JPEG_OK,
         tall(3, everyBlock) + one + marker(0xD5) + one + marker(0xFE) + none + eoi, bands({129, 129, 128})},
        {"restart behind rubbish", JPEG_OK, tall(2, everyBlock) + one + "rubbish" + marker(0xD0) + none + eoi,
         bands({129, 128})},
        {"cut before a restart", JPEG_OK, tall(3, everyBlock) + one, bands({129, 129, 129})},
        // An MCU that fails does not count: the next one is looked for before the restart.
        {"bad code", JPEG_OK, tall(3, everyBlock) + one + marker(0xD0) + noCode + marker(0xD1) + one + eoi,
         bands({129, 128, 128})},
        {"second frame", JPEG_BAD_FRAME_SEGMENT, tall(2) + two + greyFrame + greyScan + none + eoi,
         bands({129, 131})},
        {"second scan", JPEG_OK, tall(2) + two + greyScan + none + eoi, bands({128, 128})},
        {"last of two frames", JPEG_OK,
         tall(2, frame(JM_SOF2, 99, 99, {{1, 0x22, 3}, {2, 0x11, 3}})) + two + eoi, bands({129, 131})},
    };
    decodeAll(cases, 8);
}

// Rows and columns that picture and destination have in common are written, and no other.
TEST(DecoderBaseline, DestinationOfAnotherSize)
{
    for (const QoviSize size : {QoviSize{5, 11}, QoviSize{20, 40}, QoviSize{8, 1}, QoviSize{0, 0}}) {
        Decoder decoder(tall(2) + Bytes(Bits().flat(1).flat(2)) + eoi);
        ASSERT_EQ(JPEG_OK, decoder.header());
        ASSERT_EQ(JPEG_OK, decoder.grey(size.width, size.height));
        for (int y = 0; y <= size.height; y++)
            for (int x = 0; x <= size.width; x++) {
                const bool inside = x < std::min(8, size.width) && y < std::min(16, size.height);
                ASSERT_EQ(inside ? (y < 8 ? 129 : 131) : Decoder::guard, decoder.at(x, y)) << x << " " << y;
            }
    }
}

// A pair of colours that needs more planes than there are, and one that has no conversion.
TEST(DecoderBaseline, PairsOfColours)
{
    const struct {
        _JPEG_COLOR color;
        _JPEG_ERROR code;
    } cases[] = {{JC_RGB, JPEG_NOT_SUPPORTED}, {JC_BGR, JPEG_NOT_SUPPORTED}, {JC_CMYK, JPEG_OK}};
    for (const auto& one : cases) {
        Decoder decoder(tall(1) + Bytes(Bits().flat(1)) + eoi);
        std::vector<Qov8u> picture(8 * 8 * 4, Decoder::guard), before = picture;
        ASSERT_EQ(JPEG_OK, decoder.header());
        ASSERT_EQ(JPEG_OK, decoder.SetDestination(picture.data(), 8 * 4, {8, 8}, 4, one.color));
        EXPECT_EQ(one.code, decoder.ReadData());
        EXPECT_EQ(before, picture);
    }
}

// The largest pictures that a header can tell of, with next to no data: over in a moment, memory by the row
// or refused.
TEST(DecoderLimits, HugePictures)
{
    Decoder sequential(soi + eights() + frame(JM_SOF0, 65535, 65535, {{1, 0x11}}) + greyScan +
                       Bytes(Bits().flat(1)) + eoi);
    ASSERT_EQ(JPEG_OK, sequential.header());
    EXPECT_EQ(JPEG_OK, sequential.grey(9, 20));
    EXPECT_EQ(129, sequential.at(8, 19));
    Decoder progressive(soi + eights() + frame(JM_SOF2, 65535, 65535, {{1, 0x11}}) + greyScan + eoi);
    ASSERT_EQ(JPEG_OK, progressive.header());
    EXPECT_EQ(JPEG_OUT_OF_MEMORY, progressive.grey(9, 20));
}

// Codes: DC category 0 "00", 1 "01"; end of band "0", end of two bands "10" and one bit more.
TEST(DecoderProgressive, RendersWhenComplete)
{
    // One block in each of two MCU rows, the second cut to 3 lines.
    const Bytes head = soi + eights() + huffman(0x00, {0, 3}, {0, 1, 2}) +
                       huffman(0x10, {1, 1}, {0x00, 0x10}) + frame(JM_SOF2, 8, 11, {{1, 0x11}});
    const Bytes dc = head + scan({1}, 0, 0, 0) + Bytes(Bits().put("011").put("011"));
    const Bytes dcAl1 = head + scan({1}, 0, 0, 0, 0x01) + Bytes(Bits().put("011").put("00"));
    const Bytes dcRefined = scan({1}, 0, 0, 0, 0x10) + Bytes(Bits().put("10"));
    const Bytes low = scan({1}, 0, 1, 5) + Bytes(Bits().put("100"));
    const Bytes high = scan({1}, 0, 6, 63) + Bytes(Bits().put("00"));
    const Bytes highAl1 = scan({1}, 0, 6, 63, 0x01) + Bytes(Bits().put("00"));
    const Bytes bad = scan({1}, 0, 6, 63) + bytes({0xFF, 0, 0xFF, 0});
    const std::vector<int> nothing(11, Decoder::guard), whole = bands({129, 130}, 3);
    const std::vector<Case> cases = {
        {"DC alone", JPEG_OK, dc + eoi, nothing},
        {"a band behind completion", JPEG_OK, dc + low + high + eoi, whole},
        {"refined", JPEG_OK, dcAl1 + low + dcRefined + eoi, bands({131, 130}, 3)},
        {"not refined", JPEG_OK, dcAl1 + low + eoi, nothing},
        {"AC not refined", JPEG_OK, dc + highAl1 + eoi, nothing},
        {"no EOI", JPEG_BUFFER_TOO_SMALL, dc + low, whole},
        {"bad code", JPEG_INTERNAL_ERROR, dc + bad + eoi, whole},
        {"band from 9 to 8", JPEG_INTERNAL_ERROR, dc + scan({1}, 0, 9, 8) + eoi, whole},
    };
    decodeAll(cases, 8);
}

// Codes: category 0 "0", 1 "10". The rows before a failure stay.
TEST(DecoderLossless, DamagedData)
{
    const Bytes head = soi + huffman(0x00, {1, 1}, {0, 1}) + frame(JM_SOF3, 2, 2, {{1, 0x11}});
    decodeAll({{"predictor 0",
                JPEG_INTERNAL_ERROR,
                head + scan({1}, 0, 0) + Bytes(Bits().put("101000")) + eoi,
                {129, Decoder::guard}},
               {"no code",
                JPEG_INTERNAL_ERROR,
                head + scan({1}, 0, 1) + Bytes(Bits().put("1010111111111111111111")) + eoi,
                {129, Decoder::guard}},
               {"cut short",
                JPEG_BUFFER_TOO_SMALL,
                head + scan({1}, 0, 1) + Bytes(Bits().put("1010")),
                {129, 129}}},
              2);
}

} // namespace
