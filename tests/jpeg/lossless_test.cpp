// Lossless coding, sample by sample: streams put together here from the differences of T.81 annex H, which
// the decoder reads and the encoder has to write, byte by byte. All results are exact.
#include "stream_builder.h"

#include "jpegenc.h"
#include "qovi.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

// Samples of one component, at most 16 bits each.
struct Plane {
    int width, height;
    std::vector<int> samples;

    int at(int x, int y) const { return samples[static_cast<size_t>(y * width + x)]; }
    bool operator==(const Plane&) const = default;
};

// What is left of the samples after a point transform: the high bits, in their place.
Plane afterTransform(Plane p, int pt)
{
    for (int& s : p.samples) s = s >> pt << pt;
    return p;
}

enum class Content { noise, extremes, ramp };

// Noise of all values; the lowest, the highest and the middle value, which give the largest differences; and
// a slope with a wrap here and there.
Plane plane(int width, int height, int precision, Content content)
{
    static std::mt19937 random(7);
    const int top = (1 << precision) - 1, extremes[] = {0, top, (top + 1) / 2};
    Plane p{width, height, {}};
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++) {
            const int any = static_cast<int>(random() >> 8);
            p.samples.push_back(content == Content::noise      ? any & top
                                : content == Content::extremes ? extremes[any % 3]
                                                               : (x * 3 + y * 5 + any % 3) & top);
        }
    return p;
}

struct Prediction {
    int precision = 0, predictor = 0, pt = 0;

    // T.81 H.1.2 and table H.1, of the sample at (x, y) from those before it, which are shifted already.
    // firstRow: of the picture, or behind a restart.
    int of(const Plane& p, int x, int y, bool firstRow) const
    {
        if (firstRow) return x == 0 ? 1 << (precision - pt - 1) : p.at(x - 1, y);
        const int above = p.at(x, y - 1);
        if (x == 0) return above;
        const int left = p.at(x - 1, y), corner = p.at(x - 1, y - 1);
        switch (predictor) {
        case 1: return left;
        case 2: return above;
        case 3: return corner;
        case 4: return left + above - corner;
        case 5: return left + ((above - corner) >> 1);
        case 6: return above + ((left - corner) >> 1);
        default: return (left + above) >> 1;
        }
    }
};

Bytes encode(const Plane& p, int precision, int predictor, int pt)
{
    const int step = p.width + 3;
    std::vector<Qov8u> source(static_cast<size_t>(step * p.height), Qov8u(0xEE));
    for (int y = 0; y < p.height; y++)
        for (int x = 0; x < p.width; x++)
            source[static_cast<size_t>(y * step + x)] = static_cast<Qov8u>(p.at(x, y));
    std::vector<Qov8u> stream(p.samples.size() * 4 + 1024);
    CJPEGEncoder encoder;
    EXPECT_EQ(JPEG_OK, encoder.SetSource(source.data(), step, {p.width, p.height}, 1, JC_GRAY, JS_444));
    EXPECT_EQ(JPEG_OK, encoder.SetDestination(stream.data(), static_cast<int>(stream.size()), 75, JC_GRAY,
                                              JS_444, JPEG_LOSSLESS, 0));
    encoder.m_jpeg_precision = precision;
    encoder.m_predictor = predictor;
    encoder.m_pt = pt;
    EXPECT_EQ(JPEG_OK, encoder.WriteHeader());
    EXPECT_EQ(JPEG_OK, encoder.WriteData());
    return Bytes(stream.begin(), stream.begin() + encoder.GetNumOfBytes());
}

// By the decoder, into samples of 8 bits (Qov8u) or 16 (Qov16s).
template <class Sample>
Plane decode(const Bytes& stream, int expectedPrecision)
{
    CJPEGDecoder decoder;
    Plane p{0, 0, {}};
    int channels = 0, precision = 0;
    _JPEG_COLOR color = JC_UNKNOWN;
    _JPEG_SAMPLING sampling = JS_OTHER;
    EXPECT_EQ(JPEG_OK, decoder.SetSource(reinterpret_cast<const Qov8u*>(stream.data()),
                                         static_cast<int>(stream.size())));
    EXPECT_EQ(JPEG_OK, decoder.ReadHeader(&p.width, &p.height, &channels, &color, &sampling, &precision));
    EXPECT_EQ(expectedPrecision, precision);
    EXPECT_EQ(1, channels);
    std::vector<Sample> result(static_cast<size_t>(p.width * p.height));
    EXPECT_EQ(JPEG_OK, decoder.SetDestination(result.data(), p.width * static_cast<int>(sizeof(Sample)),
                                              {p.width, p.height}, 1, JC_GRAY));
    EXPECT_EQ(JPEG_OK, decoder.ReadData());
    for (const Sample s : result) p.samples.push_back(s & (sizeof(Sample) == 1 ? 0xFF : 0xFFFF));
    return p;
}

// Counts of the codes of 1, 2, ... bits, and the categories they stand for.
struct Table {
    Bytes counts, categories;
};

// Every category, 0 to 16, has a code of 5 bits.
const Table everyCategory = {bytes({0, 0, 0, 0, 17, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
                             bytes({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16})};
const Table ofEncoder = {Bytes(DefaultLuminanceDCBits, DefaultLuminanceDCBits + 16),
                         Bytes(DefaultLuminanceDCValues, DefaultLuminanceDCValues + 12)};

class Coder {
public:
    explicit Coder(const Table& t)
    {
        int size = 0;
        qoviEncodeHuffmanSpecGetBufSize_JPEG_8u(&size);
        m_table.resize(static_cast<size_t>(size));
        qoviEncodeHuffmanStateGetBufSize_JPEG_8u(&size);
        m_state.resize(static_cast<size_t>(size));
        EXPECT_EQ(0, qoviEncodeHuffmanSpecInit_JPEG_8u(data(t.counts), data(t.categories), table()));
        EXPECT_EQ(0, qoviEncodeHuffmanStateInit_JPEG_8u(state()));
    }

    void put(Qov16s difference)
    {
        m_bytes.resize(m_bytes.size() + 6);
        one(&difference, 0);
    }

    // The bytes so far; goes on as from the start.
    Bytes flush()
    {
        m_bytes.resize(m_bytes.size() + 16);
        one(nullptr, 1);
        const Bytes done(m_bytes.begin(), m_bytes.begin() + m_at);
        m_bytes.clear();
        m_at = 0;
        return done;
    }

private:
    static const Qov8u* data(const Bytes& b) { return reinterpret_cast<const Qov8u*>(b.data()); }
    QoviEncodeHuffmanSpec* table() { return reinterpret_cast<QoviEncodeHuffmanSpec*>(m_table.data()); }
    QoviEncodeHuffmanState* state() { return reinterpret_cast<QoviEncodeHuffmanState*>(m_state.data()); }
    void one(const Qov16s* difference, int flush)
    {
        EXPECT_EQ(0, qoviEncodeHuffmanOne_JPEG_16s1u_C1(difference, m_bytes.data(),
                                                        static_cast<int>(m_bytes.size()), &m_at, table(),
                                                        state(), flush));
    }

    std::vector<char> m_table, m_state;
    std::vector<Qov8u> m_bytes;
    int m_at = 0;
};

// A stream as another encoder may write it; intervalRows: rows between restarts, 0 for none. A row behind a
// restart is predicted as the first one is (H.1.2.1).
Bytes assemble(Plane p, const Prediction& prediction, int intervalRows, const Table& table = everyCategory)
{
    Bytes stream = soi + frame(JM_SOF3, p.width, p.height, {{0, 0x11}}, prediction.precision) +
                   segment(JM_DHT, bytes({0}) + table.counts + table.categories);
    if (intervalRows > 0) stream += segment(JM_DRI, word(p.width * intervalRows));
    stream += scan({0}, 0, prediction.predictor, 0, prediction.pt);
    for (int& s : p.samples) s >>= prediction.pt;
    Coder coder(table);
    for (int y = 0, restarts = 0; y < p.height; y++) {
        const bool first = y == 0 || (intervalRows > 0 && y % intervalRows == 0);
        if (first && y > 0) stream += coder.flush() + marker(JM_RST0 + restarts++ % 8);
        for (int x = 0; x < p.width; x++)
            coder.put(static_cast<Qov16s>(p.at(x, y) - prediction.of(p, x, y, first)));
    }
    return stream + coder.flush() + eoi;
}

TEST(Lossless, theEncodersStreamsAreThoseOfAnnexH)
{
    struct {
        int width, height, precision;
    } const shapes[] = {{1, 1, 8}, {1, 9, 8}, {17, 1, 8}, {33, 13, 8}, {19, 7, 4}, {19, 7, 2}};
    for (const auto& s : shapes)
        for (const Content content : {Content::noise, Content::extremes, Content::ramp})
            for (int predictor = 1; predictor <= 7; predictor++)
                for (int pt = 0; pt < s.precision; pt++) {
                    const Plane p = plane(s.width, s.height, s.precision, content);
                    const Bytes stream = encode(p, s.precision, predictor, pt);
                    const Bytes expected = assemble(p, {s.precision, predictor, pt}, 0, ofEncoder);
                    // Before the frame there is a comment.
                    ASSERT_TRUE(stream.ends_with(expected.substr(soi.size())))
                        << s.width << "x" << s.height << ", precision " << s.precision << ", content "
                        << static_cast<int>(content) << ", predictor " << predictor << ", point transform "
                        << pt;
                    ASSERT_EQ(afterTransform(p, pt), decode<Qov8u>(stream, s.precision));
                }
}

class Precision : public testing::TestWithParam<int> {};

TEST_P(Precision, everyPredictorPointTransformAndRestartIntervalGivesTheSamplesBack)
{
    const int precision = GetParam();
    for (const Content content : {Content::noise, Content::extremes, Content::ramp}) {
        const Plane p = plane(23, 12, precision, content);
        for (int predictor = 1; predictor <= 7; predictor++)
            for (int pt = 0; pt < precision; pt++)
                for (const int intervalRows : {0, 1, 5}) {
                    SCOPED_TRACE(testing::Message()
                                 << "content " << static_cast<int>(content) << ", predictor " << predictor
                                 << ", point transform " << pt << ", restarts after " << intervalRows);
                    const Bytes stream = assemble(p, {precision, predictor, pt}, intervalRows);
                    const Plane expected = afterTransform(p, pt);
                    ASSERT_EQ(expected, decode<Qov16s>(stream, precision));
                    if (precision <= 8) {
                        ASSERT_EQ(expected, decode<Qov8u>(stream, precision));
                    }
                }
    }
}

INSTANTIATE_TEST_SUITE_P(Lossless, Precision, testing::Range(2, 17));

TEST(Lossless, twelveBitsAreLimitedToEightForADestinationOfBytes)
{
    const Plane p = plane(40, 3, 12, Content::noise);
    Plane limited = p;
    for (int& s : limited.samples) s = std::min(s, 255);
    EXPECT_EQ(limited, decode<Qov8u>(assemble(p, {12, 4, 0}, 0), 12));
}

} // namespace
