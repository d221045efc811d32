// Adaptive coders of JPEG XR: known streams, and what is written comes back with the same samples, position
// and state; at every level.
#include "qov_testing.h"
#include "qovivlc.h"

#include <algorithm>
#include <functional>

namespace {

using Bytes = std::vector<Qov8u>;

// A state at an odd address, since any address will do.
class State {
public:
    State() : m_bytes(1 + size()) { EXPECT_EQ(qovStsNoErr, qoviVLCInit_JPEGXR(get())); }
    QoviVLCState_JPEGXR* get() { return reinterpret_cast<QoviVLCState_JPEGXR*>(m_bytes.data() + 1); }
    bool operator==(const State&) const = default;

private:
    static size_t size()
    {
        int bytes = 0;
        EXPECT_EQ(qovStsNoErr, qoviVLCGetStateSize_JPEGXR(&bytes));
        return size_t(bytes);
    }
    Bytes m_bytes;
};

// A stream that is written in a buffer full of ones, and read from a buffer of exactly its length.
class Stream {
public:
    explicit Stream(size_t capacity) : m_buffer(capacity, 0xFF), m_dst(m_buffer.data()) {}
    Stream(Qov8u* p, int used) : m_dst(p), m_src(p), m_bit(used) {}
    Qov8u** dst() { return &m_dst; }
    const Qov8u** src() { return &m_src; }
    int* bit() { return &m_bit; }

    size_t length() const
    {
        return size_t((m_reading ? m_src : m_dst) - m_buffer.data()) * 8 + size_t(m_bit);
    }
    const Bytes& bytes() const { return m_buffer; }
    // From writing to reading.
    const Bytes& rewind()
    {
        m_length = length();
        m_buffer.resize((m_length + 7) / 8);
        m_buffer.shrink_to_fit();
        m_reading = true;
        m_src = m_buffer.data();
        m_bit = 0;
        return m_buffer;
    }
    bool allRead() const { return length() == m_length; }

private:
    Bytes m_buffer;
    bool m_reading = false;
    Qov8u* m_dst;
    const Qov8u* m_src = nullptr;
    int m_bit = 0;
    size_t m_length = 0;
};

QovStatus encode(const Qov32s* src, Stream& s, int nBits, int chroma, int* count, State& state,
                 bool flex = false)
{
    const auto call = flex ? qoviVLCEncode4x4Flex_JPEGXR_32s1u_C1R : qoviVLCEncode4x4_JPEGXR_32s1u_C1R;
    return call(src, 16, s.dst(), s.bit(), nBits, chroma, count, state.get());
}
QovStatus encode(const Qov16s* src, Stream& s, int nBits, int chroma, int* count, State& state,
                 bool flex = false)
{
    const auto call = flex ? qoviVLCEncode4x4Flex_JPEGXR_16s1u_C1R : qoviVLCEncode4x4_JPEGXR_16s1u_C1R;
    return call(src, 8, s.dst(), s.bit(), nBits, chroma, count, state.get());
}
QovStatus decode(Stream& s, Qov32s* dst, int nBits, int chroma, int* count, State& state)
{
    return qoviVLCDecode4x4_JPEGXR_1u32s_C1R(s.src(), s.bit(), dst, 16, nBits, chroma, count, state.get());
}
QovStatus decode(Stream& s, Qov16s* dst, int nBits, int chroma, int* count, State& state)
{
    return qoviVLCDecode4x4_JPEGXR_1u16s_C1R(s.src(), s.bit(), dst, 8, nBits, chroma, count, state.get());
}
template <class T>
QovStatus encodeLow(const T* src, Stream& s, int nBits, int nTrim)
{
    return qoviFLCEncode4x4_JPEGXR(src, 4 * sizeof(T), sizeof(T), s.dst(), s.bit(), nBits, nTrim);
}
template <class T>
QovStatus decodeLow(Stream& s, T* dst, int nBits, int nTrim)
{
    return qoviFLCDecode4x4_JPEGXR(s.src(), s.bit(), dst, 4 * sizeof(T), sizeof(T), nBits, nTrim);
}

// Lists of the low-pass coders, 15, 14 or 6 values; or a block of 16.
QovStatus encodeList(size_t size, const Qov32s* list, Stream& s, int chroma, int* count, State& state)
{
    if (size == 16) return encode(list, s, 0, chroma, count, state);
    if (size == 15)
        return qoviVLCEncodeDC444_JPEGXR_32s1u(list, s.dst(), s.bit(), chroma, count, state.get());
    if (size == 14) return qoviVLCEncodeDC422_JPEGXR_32s1u(list, s.dst(), s.bit(), count, state.get());
    return qoviVLCEncodeDC420_JPEGXR_32s1u(list, s.dst(), s.bit(), count, state.get());
}
QovStatus decodeList(size_t size, Stream& s, Qov32s* dst, int chroma, int* count, State& state)
{
    if (size == 15) return qoviVLCDecodeDC444_JPEGXR_1u32s(s.src(), s.bit(), dst, chroma, count, state.get());
    if (size == 14) return qoviVLCDecodeDC422_JPEGXR_1u32s(s.src(), s.bit(), dst, count, state.get());
    return qoviVLCDecodeDC420_JPEGXR_1u32s(s.src(), s.bit(), dst, count, state.get());
}

TEST(XrCoder, ShortStreams)
{
    struct Case {
        std::vector<Qov32s> values;
        int chroma, count;
        size_t bits;
        Bytes bytes;
    };
    const Case cases[] = {
        {{0, 5, -3, 0, 9, 0, 0, 1, -1, 0, 0, 0, 0, 0, 0, 0}, 0, 5, 33, {0xc7, 0x2f, 0xa7, 0x05, 0x00}},
        {{0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 1, 1, 6, {0x10}},
        {{3, -1, 0, 0, 20, -300}, 1, 4, 46, {0xd7, 0x78, 0x20, 0x58, 0x50, 0xa8}},
        {{3, -1, 0, 0, 20, -300, 0, 0, 0, 0, 0, 1, 70000, -2},
         1,
         7,
         90,
         {0xd7, 0x44, 0x10, 0x23, 0x0a, 0x15, 0x02, 0x70, 0x70, 0x45, 0xbb, 0x40}},
    };
    forEachLevel([&] {
        int count = -1;
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::PrintToString(c.values));
            Stream stream(200);
            State state;
            EXPECT_EQ(qovStsNoErr,
                      encodeList(c.values.size(), c.values.data(), stream, c.chroma, &count, state));
            EXPECT_EQ(c.count, count);
            EXPECT_EQ(c.bits, stream.length());
            EXPECT_EQ(c.bytes, stream.rewind());
        }
        Stream stream(200);
        State state;
        EXPECT_EQ(qovStsNoErr, encode(cases[0].values.data(), stream, 2, 0, &count, state));
        EXPECT_EQ(qovStsNoErr, encodeLow(cases[0].values.data(), stream, 2, 0));
        EXPECT_EQ(2, count);
        EXPECT_EQ(41u, stream.length());
        EXPECT_EQ((Bytes{0xca, 0x58, 0x81, 0xc0, 0x10, 0x00}), stream.rewind());
    });
}

// Blocks of three channels as a band of macroblocks brings them: their scans are reset and their tables
// adapted every 16 blocks, or for each.
struct Band {
    enum Kind { flex4x4, plain4x4, dc444, dc422, dc420 };

    Kind kind;
    int blocks;
    bool low() const { return kind >= dc444; }
    int nBits(int block) const { return kind == flex4x4 ? 1 + block % 14 : low() ? 0 : block % 15; }
    bool resets(int block) const { return block % 16 == 0; }
    bool adapts(int block) const { return low() || resets(block) || block == blocks - 1; }

    // The samples of one block; U and V of the smaller formats lie `samples` apart.
    int channels() const { return kind == dc422 || kind == dc420 ? 1 : 3; }
    size_t listSize() const { return kind == dc422 ? 14 : kind == dc420 ? 6 : 15; }
    std::vector<int> gathered() const
    {
        if (kind == dc422) return {4, 12, 1, 9, 2, 10, 3, 11, 5, 13, 6, 14, 7, 15};
        return {1, 5, 2, 6, 3, 7};
    }
};

std::vector<Qov32s> sequence(const Band& band, int highest)
{
    std::vector<Qov32s> samples(size_t(band.blocks) * 48);
    Qov32s value = 1;
    for (Qov32s& x : samples) {
        x = value;
        value += 10;
        if (value > highest) value = 1;
    }
    for (size_t i = 0; i < samples.size(); i++)
        if (!band.low()) samples[i] += (1 << band.nBits(int(i / 48))) - 1;
    return samples;
}

void prepare(const Band& band, int block, State& state)
{
    const std::vector<int> scans = band.low() ? std::vector{2} : std::vector{1, 0};
    for (int scan : scans)
        if (band.resets(block)) {
            EXPECT_EQ(qovStsNoErr, qoviVLCScanReset_JPEGXR(state.get(), scan));
        }
    EXPECT_EQ(qovStsNoErr, qoviVLCScanSet_JPEGXR(state.get(), 1));
}

void adapt(const Band& band, int block, State& state)
{
    EXPECT_EQ(qovStsNoErr, qoviVLCAdapt_JPEGXR(state.get(), band.low() ? 0 : 1, band.adapts(block)));
}

// Codes one block of 48 samples, and tells which channels have values.
template <class T>
int encodeBlock(const Band& band, int block, const T* samples, Stream& stream, State& state)
{
    int coded = 0, count = -1;
    for (int channel = 0; channel < band.channels(); channel++) {
        const T* src = samples + 16 * channel;
        const int nBits = band.nBits(block), chroma = channel > 0;
        QovStatus status = qovStsNoErr;
        if (band.low()) {
            Qov32s list[16], values[16];
            std::copy(src, src + 16, values);
            if (band.kind == Band::dc444)
                status = qoviVLCScan4x4DC_JPEGXR_32s(values, list, state.get());
            else
                for (size_t i = 0; i < band.listSize(); i++) list[i] = values[band.gathered()[i]];
            EXPECT_EQ(qovStsNoErr, status);
            status = encodeList(band.listSize(), list, stream, chroma, &count, state);
        } else {
            const bool flex = band.kind == Band::flex4x4;
            status = encode(src, stream, nBits, chroma, &count, state, flex);
            if (flex) {
                EXPECT_EQ(qovStsNoErr, encodeLow(src, stream, nBits, 0));
            }
        }
        EXPECT_EQ(qovStsNoErr, status);
        coded |= (count > 0) << channel;
    }
    return coded;
}

// Reads back what encodeBlock has coded, and compares.
template <class T>
void decodeBlock(const Band& band, int block, const T* samples, int coded, Stream& stream, State& state)
{
    for (int channel = 0; channel < band.channels(); channel++) {
        const T* src = samples + 16 * channel;
        const int nBits = band.nBits(block), chroma = channel > 0;
        const T untouched = 77;
        T decoded[16] = {untouched};
        int count = -1;
        QovStatus status = qovStsNoErr;
        if (band.low()) {
            Qov32s values[16] = {band.kind == Band::dc444 ? untouched : 0};
            if (coded >> channel & 1)
                status = decodeList(band.listSize(), stream, values, chroma, &count, state);
            if (band.kind == Band::dc444)
                std::copy(values, values + 16, decoded);
            else
                for (size_t i = 0; i < band.listSize(); i++) decoded[band.gathered()[i]] = T(values[i]);
        } else if (coded >> channel & 1) {
            status = decode(stream, decoded, nBits, chroma, &count, state);
        }
        ASSERT_EQ(qovStsNoErr, status);
        if (band.kind == Band::flex4x4) {
            ASSERT_EQ(qovStsNoErr, decodeLow(stream, decoded, nBits, 0));
        }
        for (int i = 0; i < 16; i++) {
            const bool used = band.kind < Band::dc422 || std::ranges::count(band.gathered(), i);
            const Qov64s x = src[i], step = band.kind == Band::flex4x4 ? 1 : Qov64s(1) << nBits;
            if (i == 0) {
                ASSERT_EQ(untouched, decoded[0]);
            } else if (used) {
                ASSERT_EQ(x / step * step, decoded[i]) << "element " << i << " of channel " << channel;
            }
        }
    }
}

template <class T>
void roundTrip(const Band& band, const std::vector<T>& samples, Stream& stream, const char* what)
{
    SCOPED_TRACE(testing::Message() << what << ", kind " << band.kind << ", blocks " << band.blocks);
    State writer, reader;
    std::vector<int> coded;
    for (int b = 0; b < band.blocks; b++) {
        prepare(band, b, writer);
        coded.push_back(encodeBlock(band, b, &samples[size_t(b) * 48], stream, writer));
        adapt(band, b, writer);
    }
    stream.rewind();
    for (int b = 0; b < band.blocks; b++) {
        prepare(band, b, reader);
        ASSERT_NO_FATAL_FAILURE(
            decodeBlock(band, b, &samples[size_t(b) * 48], coded[size_t(b)], stream, reader));
        adapt(band, b, reader);
    }
    EXPECT_TRUE(stream.allRead());
    EXPECT_EQ(writer, reader);
}

Qov32u hashOf(const Bytes& bytes)
{
    Qov32u hash = 2166136261u;
    for (Qov8u byte : bytes) hash = (hash ^ byte) * 16777619u;
    return hash;
}

// Catches any change of a code word, a delta, an adaptation or a scan.
TEST(XrCoder, LongStreams)
{
    struct Case {
        Band::Kind kind;
        bool words;
        size_t bits;
        Qov32u hash;
    };
    const Case cases[] = {
        {Band::flex4x4, false, 102829, 0x007c653c}, {Band::plain4x4, false, 73433, 0x03cb208d},
        {Band::flex4x4, true, 97207, 0x33fb98f4},   {Band::plain4x4, true, 67308, 0xcfee4fba},
        {Band::dc444, false, 111615, 0x7007f9ee},   {Band::dc422, false, 34682, 0x86979492},
        {Band::dc420, false, 14971, 0x8570cf35},
    };
    forEachLevel([&] {
        for (const Case& c : cases) {
            const Band band = {c.kind, 100};
            const std::vector<Qov32s> samples = sequence(band, c.words ? 32767 : 65535);
            Stream stream(size_t(band.blocks) * 400);
            if (c.words)
                roundTrip(band, std::vector<Qov16s>(samples.begin(), samples.end()), stream, "words");
            else
                roundTrip(band, samples, stream, "sequence");
            EXPECT_EQ(c.bits, stream.length());
            EXPECT_EQ(c.hash, hashOf(stream.bytes()));
        }
    });
}

// Sparse blocks between dense ones, so that all code tables of first values come into use, and the scans
// move.
TEST(XrCoder, SparseStream)
{
    struct Section {
        unsigned perMille, bigOfEight;
    };
    const Section sections[] = {{999, 8}, {20, 0}, {60, 1}, {300, 1}, {150, 2}, {400, 1}};
    forEachLevel([&] {
        Stream stream(60000);
        State state;
        unsigned seed = 1;
        const auto next = [&] { return (seed = seed * 1664525 + 1013904223) >> 16; };
        for (int b = 0; b < 2400; b++) {
            const Section& section = sections[b / 400];
            Qov32s block[16] = {};
            for (int i = 1; i < 16; i++)
                if (next() % 1000 < (i == 4 ? 900 : section.perMille)) {
                    const unsigned v = next();
                    block[i] = v % 8 < section.bigOfEight ? int(v / 8 % 3000 + 2) : 1;
                    if (v & 0x8000) block[i] = -block[i];
                }
            ASSERT_EQ(qovStsNoErr, qoviVLCScanSet_JPEGXR(state.get(), b / 64 % 2));
            for (int scan : {0, 1})
                if (b % 64 == 0) {
                    ASSERT_EQ(qovStsNoErr, qoviVLCScanReset_JPEGXR(state.get(), scan));
                }
            int count;
            ASSERT_EQ(qovStsNoErr, encode(block, stream, 0, b % 3 > 0, &count, state));
            ASSERT_EQ(qovStsNoErr, qoviVLCAdapt_JPEGXR(state.get(), 1, b % 4 == 3));
        }
        EXPECT_EQ(176503u, stream.length());
        EXPECT_EQ(0xce245695, hashOf(stream.rewind()));
    });
}

// Encoder and decoder agree in all that they keep, and the levels in all that they write.
TEST(XrCoder, RandomBands)
{
    Random random;
    for (int round = 0; round < 60; round++) {
        const Band band = {Band::Kind(random.in(0, 4)), random.in(1, 70)};
        const int zeros = random.in(0, 20), bits = random.in(1, 30);
        std::vector<Qov32s> samples(size_t(band.blocks) * 48);
        for (Qov32s& x : samples)
            if (random.in(0, zeros) <= 1) {
                const int most = int((1u << random.in(1, bits)) - 1);
                x = random.oneIn(2) ? random.in(-most, most) : random.in(-1, 1);
            }
        const std::vector<Qov16s> words(samples.begin(), samples.end());
        Bytes ofPx;
        forEachLevel([&] {
            Stream stream(size_t(band.blocks) * 400);
            if (!band.low() && round % 2)
                roundTrip(band, words, stream, "words");
            else
                roundTrip(band, samples, stream, "random");
            if (ofPx.empty()) ofPx = stream.bytes();
            ASSERT_EQ(ofPx, stream.bytes());
        });
    }
}

// One list from both of its ends, with the levels around the ends of each kind of code.
TEST(XrCoder, LevelsAtEveryPlace)
{
    std::vector<Qov32s> levels = {1, 2, (1 << 30) + 1};
    for (int first : {3, 4, 6, 10, 14, 18, 34, (1 << 8) + 2, (1 << 19) + 2, (1 << 22) + 2, (1 << 24) + 2})
        levels.insert(levels.end(), {first, first - 1, -first});
    forEachLevel([&] {
        for (size_t size : {15u, 14u, 6u})
            for (Qov32s level : levels)
                for (size_t place = 0; place < size; place++)
                    for (bool alone : {true, false}) {
                        std::vector<Qov32s> list(size, 0);
                        list[0] = alone ? 0 : -1;
                        list[place] = level;
                        SCOPED_TRACE(testing::PrintToString(list));
                        Stream stream(100);
                        State writer, reader;
                        int count = 0, read = 0;
                        ASSERT_EQ(qovStsNoErr, encodeList(size, list.data(), stream, 0, &count, writer));
                        stream.rewind();
                        Qov32s raster[16] = {};
                        ASSERT_EQ(qovStsNoErr, decodeList(size, stream, raster, 0, &read, reader));
                        ASSERT_TRUE(stream.allRead());
                        ASSERT_EQ(count, read);
                        ASSERT_EQ(count, 1 + (!alone && place > 0));
                        ASSERT_EQ(1 + (!alone && level == -1), std::ranges::count(raster, level));
                        if (size < 15) {
                            ASSERT_EQ(list, std::vector<Qov32s>(raster, raster + size));
                        }
                    }
    });
}

// Magnitudes of the smallest values do not overflow; trimmed bits are lost towards zero.
template <class T>
void checkExtremes()
{
    const T low = std::numeric_limits<T>::min(), high = std::numeric_limits<T>::max();
    const T block[16] = {low, low, high, T(low + 1), 0, 1, -1, 5, -5, 100, -100, 300, low, high, -2, 3};
    forEachLevel([&] {
        for (int nBits = sizeof(T) == 4 ? 1 : 0; nBits <= 15; nBits++)
            for (int nTrim = 0; nTrim <= nBits; nTrim++) {
                SCOPED_TRACE(testing::Message() << nBits << " low bits, trimmed by " << nTrim);
                Stream stream(200);
                State writer, reader;
                int count = 0, read = 0;
                T decoded[16] = {};
                ASSERT_EQ(qovStsNoErr, encode(block, stream, nBits, 0, &count, writer, true));
                ASSERT_EQ(qovStsNoErr, encodeLow(block, stream, nBits, nTrim));
                stream.rewind();
                ASSERT_EQ(qovStsNoErr, decode(stream, decoded, nBits, 0, &read, reader));
                ASSERT_EQ(qovStsNoErr, decodeLow(stream, decoded, nBits, nTrim));
                ASSERT_TRUE(stream.allRead());
                ASSERT_EQ(count, read);
                for (int i = 1; i < 16; i++) {
                    const Qov64s step = Qov64s(1) << nTrim;
                    ASSERT_EQ(T(block[i] / step * step), decoded[i]) << "element " << i;
                }
            }
    });
}

TEST(XrCoder, Extremes)
{
    checkExtremes<Qov16s>();
    checkExtremes<Qov32s>();
}

// A level that has no code, and an empty list, leave everything as it was.
TEST(XrCoder, NothingIsWritten)
{
    struct Case {
        Qov32s value;
        int nBits;
        QovStatus status;
    };
    const Qov32s least = std::numeric_limits<Qov32s>::min();
    const Case cases[] = {{(1 << 30) + 2, 0, qovStsRange},
                          {-(1 << 30) - 2, 0, qovStsRange},
                          {least, 0, qovStsRange},
                          {0, 0, qovStsNoErr},
                          {7, 3, qovStsNoErr}};
    forEachLevel([&] {
        for (const Case& c : cases) {
            Qov32s block[16] = {least, 3};
            block[9] = c.value;
            if (c.status == qovStsNoErr) block[1] = 0;
            Stream stream(100);
            State state;
            int count = -1;
            EXPECT_EQ(c.status, encode(block, stream, c.nBits, 0, &count, state));
            EXPECT_EQ(c.status == qovStsNoErr ? 0 : -1, count);
            EXPECT_EQ(0u, stream.length());
            EXPECT_EQ(0xFF, **stream.dst());
            EXPECT_EQ(State(), state);
        }
    });
}

// Bytes before the place and behind the last bit stay, and so do the used bits of the first byte. Nothing
// behind the last bit is read: the address sanitizer sees it.
TEST(XrCoder, KeepsWhatIsAround)
{
    Random random;
    for (int round = 0; round < 3000; round++) {
        const size_t size = random.oneIn(2) ? 15 : random.oneIn(2) ? 14 : 6;
        std::vector<Qov32s> list(size);
        const int bits = random.in(1, 30), zeros = random.in(1, 9);
        for (Qov32s& x : list)
            if (random.oneIn(zeros)) x = random.in(0, random.oneIn(3) ? 4 : int((1u << bits) - 1));
        list[size_t(random.in(0, int(size) - 1))] = -3;
        if (random.oneIn(3)) { // few bits at the end of many
            const auto end = list.begin() + random.in(2, int(size));
            std::replace(list.begin(), end, 0, 1 << random.in(5, 10));
            end[-2] = random.oneIn(2) ? 2 : 40;
            end[-1] = 1;
            std::fill(end, list.end(), 0);
        }
        const int used = random.in(0, 7);
        forEachLevel([&] {
            State writer, sameWriter, reader;
            Stream whole(100);
            int count;
            ASSERT_EQ(qovStsNoErr, encodeList(size, list.data(), whole, 1, &count, writer));
            const size_t length = whole.length(), bytes = (size_t(used) + length + 7) / 8;
            Guarded memory(bytes, size_t(random.in(0, 63)));
            Qov8u* const start = memory.as<Qov8u>();
            std::fill(start, start + bytes, Qov8u(0xFF));
            Stream shifted(start, used);
            ASSERT_EQ(qovStsNoErr, encodeList(size, list.data(), shifted, 1, &count, sameWriter));
            ASSERT_TRUE(memory.intact());
            ASSERT_EQ(start + (size_t(used) + length) / 8, *shifted.dst());
            const Bytes& expected = whole.rewind();
            const auto bitOf = [](const Qov8u* p, size_t i) { return p[i / 8] >> (7 - i % 8) & 1; };
            for (size_t i = 0; i < 8 * bytes; i++) {
                const bool before = i < size_t(used), inside = !before && i < size_t(used) + length;
                ASSERT_EQ(before || (inside && bitOf(expected.data(), i - size_t(used))), bitOf(start, i))
                    << "bit " << i;
            }
            Qov32s decoded[16];
            ASSERT_EQ(qovStsNoErr, decodeList(size, whole, decoded, 1, &count, reader));
            ASSERT_TRUE(whole.allRead());
        });
    }
}

// Any bytes are symbols: they are a list, or bad data and then nothing is written. All levels agree.
TEST(XrCoder, AnyBytes)
{
    Random random;
    int bad = 0;
    for (int round = 0; round < 4000; round++) {
        Bytes bytes(130);
        const int zeros = random.in(1, 6);
        for (Qov8u& byte : bytes) byte = Qov8u(random.oneIn(zeros) ? random.in(0, 255) : 0);
        const size_t size = random.oneIn(2) ? 16 : random.oneIn(2) ? 15 : random.oneIn(2) ? 14 : 6;
        const int nBits = random.in(0, 15), used = random.in(0, 7), chroma = random.in(0, 1);
        std::vector<Qov32s> ofPx;
        forEachLevel([&] {
            State state;
            Stream stream(bytes.data(), used);
            int count = -1;
            const size_t elements = size < 15 ? size : 16;
            Guarded memory(elements * 4, 4 * size_t(random.in(0, 15)));
            Qov32s* const dst = memory.as<Qov32s>();
            std::fill(dst, dst + elements, 77);
            const QovStatus status = size == 16 ? decode(stream, dst, nBits, chroma, &count, state)
                                                : decodeList(size, stream, dst, chroma, &count, state);
            ASSERT_TRUE(memory.intact());
            std::vector<Qov32s> result(dst, dst + elements);
            if (status != qovStsNoErr) {
                ASSERT_EQ(qovStsData, status);
                ASSERT_EQ(std::vector<Qov32s>(elements, 77), result);
                ASSERT_TRUE(*stream.src() == bytes.data() && *stream.bit() == used);
                bad++;
            }
            if (size == 16) {
                ASSERT_EQ(qovStsNoErr, decodeLow(stream, dst, nBits, nBits / 2));
                ASSERT_TRUE(memory.intact());
                result.assign(dst, dst + elements);
            }
            result.insert(result.end(), {status, count, int(*stream.src() - bytes.data()), *stream.bit()});
            if (ofPx.empty()) ofPx = result;
            ASSERT_EQ(ofPx, result);
        });
    }
    EXPECT_GT(bad, 0);
}

// Each wrong argument alone, and with all later ones wrong too: the earlier kind of error decides. Calls that
// differ in type or format only share their checks.
TEST(XrCoder, Statuses)
{
    struct Args {
        Qov32s* data;
        Qov8u** place;
        int *bit, *count;
        QoviVLCState_JPEGXR* state;
        int step = 16, nBits = 0, chroma = 0;
        const Qov8u** src() const { return const_cast<const Qov8u**>(place); }
        Qov16s* words() const { return reinterpret_cast<Qov16s*>(data); }
    };
    State good;
    Bytes zeros(1000), bytes(200);
    Qov32s block[64] = {0, 1};
    Qov8u *start = bytes.data(), *none = nullptr;
    int bit = 0, below = -1, above = 8, count = 0;
    // Which arguments a call has, besides data and place.
    enum : unsigned { counted = 1, stepped = 2, chosen = 4, all = 7 };
    struct Fault {
        std::function<void(Args&)> make;
        QovStatus status;
        unsigned of; // calls with these arguments
    };
    const Fault faults[] = {
        {[](Args& a) { a.data = nullptr; }, qovStsNullPtr, 0},
        {[](Args& a) { a.place = nullptr; }, qovStsNullPtr, 0},
        {[&](Args& a) { a.place = &none; }, qovStsNullPtr, 0},
        {[](Args& a) { a.bit = nullptr; }, qovStsNullPtr, 0},
        {[](Args& a) { a.count = nullptr; }, qovStsNullPtr, counted},
        {[](Args& a) { a.state = nullptr; }, qovStsNullPtr, counted},
        {[](Args& a) { a.step = 7; }, qovStsStep, stepped},
        {[](Args& a) { a.step = -16; }, qovStsStep, stepped},
        {[&](Args& a) { a.bit = &above; }, qovStsBadArg, 0},
        {[&](Args& a) { a.bit = &below; }, qovStsBadArg, 0},
        {[](Args& a) { a.nBits = 16; }, qovStsBadArg, stepped},
        {[](Args& a) { a.nBits = -1; }, qovStsBadArg, stepped},
        {[](Args& a) { a.chroma = 2; }, qovStsBadArg, chosen},
        {[](Args& a) { a.chroma = -1; }, qovStsBadArg, chosen},
        {[&](Args& a) { a.state = reinterpret_cast<QoviVLCState_JPEGXR*>(zeros.data()); }, qovStsContext,
         counted},
    };
    const auto check = [&](unsigned has, auto call) {
        for (const Fault& fault : faults) {
            if ((fault.of & has) != fault.of) continue;
            SCOPED_TRACE(&fault - faults);
            const Args right = {block, &start, &bit, &count, good.get()};
            Args alone = right, first = right;
            fault.make(alone);
            EXPECT_EQ(fault.status, call(alone));
            for (const Fault* later = std::end(faults); later-- > &fault;)
                if (later->status != fault.status || later == &fault) later->make(first);
            EXPECT_EQ(fault.status, call(first));
        }
    };
    check(all, [](const Args& a) {
        return qoviVLCEncode4x4_JPEGXR_32s1u_C1R(a.data, a.step, a.place, a.bit, a.nBits, a.chroma, a.count,
                                                 a.state);
    });
    check(all, [](const Args& a) {
        return qoviVLCDecode4x4_JPEGXR_1u16s_C1R(a.src(), a.bit, a.words(), a.step, a.nBits, a.chroma,
                                                 a.count, a.state);
    });
    check(counted | chosen, [](const Args& a) {
        return qoviVLCEncodeDC444_JPEGXR_32s1u(a.data, a.place, a.bit, a.chroma, a.count, a.state);
    });
    check(counted | chosen, [](const Args& a) {
        return qoviVLCDecodeDC444_JPEGXR_1u32s(a.src(), a.bit, a.data, a.chroma, a.count, a.state);
    });
    check(stepped, [](const Args& a) {
        return qoviFLCEncode4x4_JPEGXR(a.data, a.step, 4, a.place, a.bit, a.nBits, 0);
    });
    check(stepped, [](const Args& a) {
        return qoviFLCDecode4x4_JPEGXR(a.src(), a.bit, a.data, a.step, 4, a.nBits, 0);
    });
}

TEST(XrCoder, StatusesOfTheRest)
{
    State good;
    Bytes zeros(1000);
    auto* const unmarked = reinterpret_cast<QoviVLCState_JPEGXR*>(zeros.data());
    Qov32s block[64] = {};
    Qov8u stream[200] = {};
    Qov8u* dst = stream;
    const Qov8u* src = stream;
    int bit = 0;
    struct Flex {
        int elemBytes, nBits, nTrim;
        QovStatus status;
    };
    for (const Flex& c :
         {Flex{3, 1, 0, qovStsBadArg}, Flex{-4, 1, 0, qovStsBadArg}, Flex{8, 1, 0, qovStsStep},
          Flex{4, 3, 4, qovStsBadArg}, Flex{2, 3, -1, qovStsBadArg}, Flex{2, 3, 3, qovStsNoErr}}) {
        EXPECT_EQ(c.status, qoviFLCEncode4x4_JPEGXR(block, 16, c.elemBytes, &dst, &bit, c.nBits, c.nTrim));
        EXPECT_EQ(c.status, qoviFLCDecode4x4_JPEGXR(&src, &bit, block, 16, c.elemBytes, c.nBits, c.nTrim));
    }
    using Results = std::vector<QovStatus>;
    const auto ofState = [&](QoviVLCState_JPEGXR* state, int which) {
        return Results{qoviVLCScanReset_JPEGXR(state, which), qoviVLCScanSet_JPEGXR(state, which),
                       qoviVLCAdapt_JPEGXR(state, which)};
    };
    EXPECT_EQ(Results(3, qovStsNullPtr), ofState(nullptr, -1));
    EXPECT_EQ(Results(3, qovStsBadArg), ofState(unmarked, -1));
    EXPECT_EQ(Results(3, qovStsBadArg), ofState(good.get(), 3));
    EXPECT_EQ((Results{qovStsNoErr, qovStsBadArg, qovStsBadArg}), ofState(good.get(), 2));
    EXPECT_EQ(Results(3, qovStsContext), ofState(unmarked, 1));
    EXPECT_EQ(qovStsNullPtr, qoviVLCScan4x4DC_JPEGXR_32s(nullptr, block, good.get()));
    EXPECT_EQ(qovStsNullPtr, qoviVLCScan4x4DC_JPEGXR_32s(block, nullptr, good.get()));
    EXPECT_EQ(qovStsContext, qoviVLCScan4x4DC_JPEGXR_32s(block, block + 16, unmarked));
    EXPECT_EQ(qovStsNullPtr, qoviVLCInit_JPEGXR(nullptr));
    EXPECT_EQ(qovStsNullPtr, qoviVLCGetStateSize_JPEGXR(nullptr));
}

} // namespace
