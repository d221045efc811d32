// The code-block decoder: held against the flow charts after every segment, on code that is whole, cut or
// nonsense.
#include "codeblock_reference.h"
#include "codeblock_samples.h"
#include "qov_testing.h"

namespace {

using plain::Bytes;

// The same steps by the flow charts.
class PlainDecoder {
public:
    PlainDecoder(QoviSize size, int band, int sfBits, int style)
        : m_block(size, band, style), m_count(size_t(size.width) * size.height), m_sfBits(sfBits),
          m_style(style)
    {
    }

    int passesOfSegment(int left) const
    {
        const int all = std::min(left, 3 * m_sfBits - 2 - m_pass);
        for (int pass = m_pass; pass < m_pass + all; pass++)
            if (plain::endsSegment(pass, m_pass + all, m_style)) return pass + 1 - m_pass;
        return 0;
    }
    bool step(const Bytes& bytes, int passes)
    {
        plain::MqDecoder mq(bytes);
        plain::RawDecoder raw(bytes);
        m_block.damaged = false;
        for (; passes; passes--, m_pass++) {
            if (m_style & qoviCodeStyleReset) m_contexts.reset();
            m_block.codePass(m_pass, m_sfBits - 1 - (m_pass + 2) / 3, [&](int context, int) {
                return context < 0 ? raw.get() : mq.code(m_contexts, context);
            });
        }
        return !m_block.damaged;
    }
    CodeBlockSamples samples() const
    {
        CodeBlockSamples all(m_count);
        for (size_t i = 0; i < m_count; i++)
            all[i] = m_block.value(int(i), !(m_style & qoviCodeStyleLossless));
        return all;
    }

private:
    plain::Block m_block;
    plain::Contexts m_contexts;
    size_t m_count;
    int m_sfBits, m_style, m_pass = 0;
};

struct Segment {
    Bytes bytes;
    int counter; // set before it, or -1
};

struct Job {
    QoviSize size;
    QoviWTSubband band;
    int sfBits, style;
    std::vector<Segment> segments;
};

std::ostream& operator<<(std::ostream& out, const Job& job)
{
    return out << job.size.width << "x" << job.size.height << " band " << job.band << " sfBits " << job.sfBits
               << " style " << job.style << ", " << job.segments.size() << " segments";
}

// A destination with space between rows, and a state of exactly its size, both at odd places.
class Decoder {
public:
    Decoder(const Job& job, int spare, int offset)
        : m_size(job.size), m_step(size_t(job.size.width + spare) * 4),
          m_dst(m_step * (job.size.height - 1) + job.size.width * 4u, size_t(offset) / 7 * 4),
          m_stateBytes(bytesOfState(job.size)), m_state(size_t(m_stateBytes), size_t(offset))
    {
        EXPECT_LE(m_stateBytes, 4 * job.size.width * job.size.height + 512);
        EXPECT_EQ(qovStsNoErr, qoviDecodeCBProgrInit_JPEG2K(state()));
        attach(job);
    }
    void attach(const Job& job)
    {
        EXPECT_EQ(qovStsNoErr, qoviDecodeCBProgrAttach_JPEG2K_32s_C1R(dst(), int(m_step), job.size, state(),
                                                                      job.band, job.sfBits, job.style));
    }
    QovStatus step(const Bytes& bytes)
    {
        return qoviDecodeCBProgrStep_JPEG2K(bytes.empty() ? nullptr : bytes.data(), int(bytes.size()),
                                            state());
    }
    void setCounter(int passes)
    {
        EXPECT_EQ(qovStsNoErr, qoviDecodeCBProgrSetPassCounter_JPEG2K(passes, state()));
    }
    int counter()
    {
        int left = -1;
        EXPECT_EQ(qovStsNoErr, qoviDecodeCBProgrGetPassCounter_JPEG2K(state(), &left));
        return left;
    }
    QovStatus decodeAtOnce(const Job& job)
    {
        Bytes all;
        std::vector<int> lengths;
        for (const Segment& segment : job.segments) {
            all.insert(all.end(), segment.bytes.begin(), segment.bytes.end());
            lengths.push_back(int(segment.bytes.size()));
        }
        all.reserve(1), lengths.reserve(1);
        return qoviDecodeCodeBlock_JPEG2K_1u32s_C1R(all.data(), dst(), int(m_step), job.size, job.band,
                                                    job.sfBits, job.segments[0].counter, lengths.data(),
                                                    int(job.segments.size()), job.style);
    }
    CodeBlockSamples samples()
    {
        CodeBlockSamples all(size_t(m_size.width) * m_size.height);
        for (int y = 0; y < m_size.height; y++)
            std::memcpy(&all[size_t(y) * m_size.width], m_dst.as<char>() + y * m_step, m_size.width * 4u);
        EXPECT_TRUE(m_dst.intact(m_step, m_size.width * 4u) && m_state.intact());
        return all;
    }

private:
    static int bytesOfState(QoviSize size)
    {
        int bytes = 0;
        EXPECT_EQ(qovStsNoErr, qoviDecodeCBProgrGetStateSize_JPEG2K(size, &bytes));
        return bytes;
    }
    QoviDecodeCBState* state() { return m_state.as<QoviDecodeCBState>(); }
    Qov32s* dst() { return m_dst.as<Qov32s>(); }

    QoviSize m_size;
    size_t m_step;
    Guarded m_dst;
    int m_stateBytes;
    Guarded m_state;
};

// Every level does every step as the flow charts; the rest of the answers follow from it.
void checkSteps(const Job& job, Random& random)
{
    const int spare = random.in(0, 5), offset = random.in(0, 63);
    struct Expected {
        QovStatus status;
        int left;
        CodeBlockSamples samples;
    };
    std::vector<Expected> expected;
    PlainDecoder plainly(job.size, job.band, job.sfBits, job.style);
    int left = 0;
    bool fits = true, good = true;
    for (const Segment& segment : job.segments) {
        if (segment.counter >= 0) left = segment.counter;
        const int passes = plainly.passesOfSegment(left);
        const bool intact = plainly.step(segment.bytes, passes);
        left -= passes;
        expected.push_back({intact ? qovStsNoErr : qovStsDamagedBlock, left, plainly.samples()});
        fits = fits && passes && (&segment == &job.segments[0] || segment.counter < 0);
        good = good && intact;
    }
    const bool oneCounter = std::all_of(job.segments.begin() + 1, job.segments.end(),
                                        [](const Segment& segment) { return segment.counter < 0; });
    const bool small = job.size.width * job.size.height <= 4096;
    forEachLevel([&] {
        Decoder decoder(job, spare, offset);
        for (size_t i = 0; i < expected.size(); i++) {
            if (job.segments[i].counter >= 0) decoder.setCounter(job.segments[i].counter);
            ASSERT_EQ(expected[i].status, decoder.step(job.segments[i].bytes)) << "segment " << i;
            ASSERT_EQ(expected[i].left, decoder.counter()) << "segment " << i;
            ASSERT_TRUE(expected[i].samples == decoder.samples()) << "segment " << i;
        }
        decoder.attach(job);
        ASSERT_TRUE(decoder.samples() == CodeBlockSamples(expected[0].samples.size()));
        ASSERT_EQ(0, decoder.counter());
        if (!small || !oneCounter) return;
        const bool whole = fits && good && left == 0;
        ASSERT_EQ(whole ? qovStsNoErr : qovStsDamagedBlock, decoder.decodeAtOnce(job));
        ASSERT_TRUE(expected.back().samples == decoder.samples());
    });
}

Job codedJob(Random& random, int style, bool predictable)
{
    Job job = {randomBlockSize(random, 4), QoviWTSubband(random.in(0, 3)), 0, style, {}};
    const auto samples =
        randomSamples(random, job.size, random.oneIn(4) ? random.in(1, 31) : random.in(1, 10));
    job.sfBits = std::max(1, bitsOf(samples));
    const int passes = 3 * job.sfBits - 2;
    for (Bytes& bytes : plain::encode(samples, job.size, job.band, style, job.sfBits, passes, predictable))
        job.segments.push_back({std::move(bytes), -1});
    job.segments[0].counter = passes;
    return job;
}

// Missing ends, lost segments, other bytes, many FF, counters that fit nothing.
void damage(Job& job, Random& random)
{
    for (Segment& segment : job.segments) {
        Bytes& bytes = segment.bytes;
        switch (random.in(0, 7)) {
        case 0: bytes.resize(size_t(random.in(0, int(bytes.size())))); break;
        case 1: bytes.clear(); break;
        case 2: bytes.resize(bytes.size() + size_t(random.in(0, 40)), Qov8u(random.in(0, 255))); break;
        case 3:
            for (Qov8u& byte : bytes)
                if (random.oneIn(9)) byte = Qov8u(random.in(0, 255));
            break;
        case 4:
            for (size_t i = 0; i < bytes.size(); i++)
                if (random.oneIn(3)) bytes[i] = Qov8u(i % 2 ? random.in(0x78, 0x90) : 0xFF);
            break;
        default: break;
        }
    }
    if (random.oneIn(3)) job.segments.resize(size_t(random.in(1, int(job.segments.size()))));
    if (random.oneIn(3)) job.segments.push_back({Bytes(size_t(random.in(0, 9)), 0xAA), -1});
    if (random.oneIn(3)) job.segments[0].counter = random.in(0, 100);
    if (random.oneIn(4))
        for (Segment& segment : job.segments) segment.counter = random.in(0, 5);
}

TEST(DecodeCodeBlock, AsTheFlowCharts)
{
    Random random;
    for (int round = 0; round < 400; round++) {
        const int style = round < 64 ? round : random.in(0, 63);
        Job job = codedJob(random, style, random.oneIn(2));
        if (round % 2) damage(job, random);
        SCOPED_TRACE(testing::Message() << "round " << round << ": " << job);
        checkSteps(job, random);
        if (testing::Test::HasFatalFailure()) return;
    }
}

// Larger than a block of the encoder can be, and one of the largest.
TEST(DecodeCodeBlock, LargeBlocks)
{
    Random random;
    for (QoviSize size : {QoviSize{131, 207}, QoviSize{1024, 1024}}) {
        Job job = {size, qoviWTSubbandHxHy, 3, qoviCodeStyleVCausal, {{Bytes(40000), 7}}};
        for (Qov8u& byte : job.segments[0].bytes) byte = Qov8u(random.in(0, 255));
        checkSteps(job, random);
    }
}

// A coder that ends segments predictably is believed, and most changes are found.
TEST(DecodeCodeBlock, PredictableEnds)
{
    Random random;
    int changed = 0, found = 0;
    for (int round = 0; round < 300; round++) {
        Job job = codedJob(random, random.in(0, 31), true);
        job.style |= qoviCodeStylePredTerm;
        SCOPED_TRACE(testing::Message() << "round " << round << ": " << job);
        const size_t bad = size_t(random.in(0, int(job.segments.size()) - 1));
        Bytes other = job.segments[bad].bytes;
        if (random.oneIn(2) && !other.empty())
            other.pop_back();
        else
            other.push_back(Qov8u(random.in(0, 0x7F)));
        forEachLevel([&] {
            ASSERT_EQ(qovStsNoErr, Decoder(job, 0, 0).decodeAtOnce(job));
            Decoder decoder(job, 0, 0);
            decoder.setCounter(job.segments[0].counter);
            for (size_t i = 0; i < bad; i++) decoder.step(job.segments[i].bytes);
            changed++;
            found += decoder.step(other) == qovStsDamagedBlock;
        });
    }
    EXPECT_GT(found, changed * 9 / 10);
}

TEST(DecodeCodeBlock, Arguments)
{
    int bytes = 0, left = 0;
    EXPECT_EQ(qovStsNullPtr, qoviDecodeCBProgrGetStateSize_JPEG2K({4, 4}, nullptr));
    for (QoviSize size : {QoviSize{0, 4}, QoviSize{4, 0}, QoviSize{1025, 1}, QoviSize{1, 1025}})
        EXPECT_EQ(qovStsSize, qoviDecodeCBProgrGetStateSize_JPEG2K(size, &bytes));
    for (int width = 1; width <= 1024; width++)
        for (int height : {1, 2, 3, 4, 5, 63, 64, 1021, 1024}) {
            ASSERT_EQ(qovStsNoErr, qoviDecodeCBProgrGetStateSize_JPEG2K({width, height}, &bytes));
            ASSERT_LE(bytes, 4 * width * height + 512);
        }

    char memory[4096] = {};
    QoviDecodeCBState* state = reinterpret_cast<QoviDecodeCBState*>(memory);
    Qov32s dst[16];
    const Qov8u src[4] = {};
    const int length = 4, negative = -1;
    const auto attach = [&](Qov32s* pDst, int step, QoviSize size, int band, int sfBits, int style) {
        return qoviDecodeCBProgrAttach_JPEG2K_32s_C1R(pDst, step, size, state, QoviWTSubband(band), sfBits,
                                                      style);
    };
    EXPECT_EQ(qovStsContext, attach(dst, 16, {4, 4}, 0, 3, 0));
    EXPECT_EQ(qovStsContext, qoviDecodeCBProgrSetPassCounter_JPEG2K(1, state));
    EXPECT_EQ(qovStsContext, qoviDecodeCBProgrGetPassCounter_JPEG2K(state, &left));
    EXPECT_EQ(qovStsContext, qoviDecodeCBProgrStep_JPEG2K(src, 4, state));
    EXPECT_EQ(qovStsNullPtr, qoviDecodeCBProgrInit_JPEG2K(nullptr));
    ASSERT_EQ(qovStsNoErr, qoviDecodeCBProgrInit_JPEG2K(state));
    EXPECT_EQ(qovStsNoErr, qoviDecodeCBProgrSetPassCounter_JPEG2K(9, state));
    EXPECT_EQ(qovStsNoErr, qoviDecodeCBProgrStep_JPEG2K(src, 4, state)); // bound to no block

    EXPECT_EQ(qovStsNullPtr, attach(nullptr, 16, {4, 4}, 0, 3, 0));
    EXPECT_EQ(qovStsSize, attach(dst, 16, {4, 1025}, 0, 3, 0));
    EXPECT_EQ(qovStsStep, attach(dst, 15, {4, 4}, 0, 3, 0));
    for (int band : {-1, 4}) EXPECT_EQ(qovStsBadArg, attach(dst, 16, {4, 4}, band, 3, 0));
    for (int sfBits : {-1, 32}) EXPECT_EQ(qovStsBadArg, attach(dst, 16, {4, 4}, 0, sfBits, 0));
    for (int style : {64, -1}) EXPECT_EQ(qovStsBadArg, attach(dst, 16, {4, 4}, 0, 3, style));
    ASSERT_EQ(qovStsNoErr, attach(dst, 16, {4, 4}, 0, 3, 0x10003F));

    EXPECT_EQ(qovStsBadArg, qoviDecodeCBProgrSetPassCounter_JPEG2K(-1, state));
    EXPECT_EQ(qovStsNullPtr, qoviDecodeCBProgrStep_JPEG2K(nullptr, 1, state));
    EXPECT_EQ(qovStsNullPtr, qoviDecodeCBProgrStep_JPEG2K(src, 1, nullptr));
    EXPECT_EQ(qovStsSize, qoviDecodeCBProgrStep_JPEG2K(src, -1, state));
    EXPECT_EQ(qovStsNullPtr, qoviDecodeCBProgrGetPassCounter_JPEG2K(state, nullptr));

    const auto decode = [&](QoviSize size, int step, int sfBits, int passes, const int* lengths, int count) {
        return qoviDecodeCodeBlock_JPEG2K_1u32s_C1R(src, dst, step, size, qoviWTSubbandLxLy, sfBits, passes,
                                                    lengths, count, 0);
    };
    EXPECT_EQ(qovStsNoErr, decode({4, 4}, 16, 3, 7, &length, 1));
    EXPECT_EQ(qovStsNoErr, decode({4, 4}, 16, 3, 0, &length, 0));
    EXPECT_EQ(qovStsDamagedBlock, decode({4, 4}, 16, 3, 8, &length, 1));
    EXPECT_EQ(qovStsDamagedBlock, decode({4, 4}, 16, 3, 0, &length, 1));
    EXPECT_EQ(qovStsDamagedBlock, decode({4, 4}, 16, 3, 1, &length, 0));
    EXPECT_EQ(qovStsNullPtr, decode({4, 4}, 16, 3, 7, nullptr, 1));
    EXPECT_EQ(qovStsSize, decode({65, 64}, 260, 3, 7, &length, 1));
    EXPECT_EQ(qovStsSize, decode({4, 4}, 16, 3, 7, &negative, 1));
    EXPECT_EQ(qovStsStep, decode({4, 4}, 15, 3, 7, &length, 1));
    EXPECT_EQ(qovStsBadArg, decode({4, 4}, 16, 32, 7, &length, 1));
    EXPECT_EQ(qovStsBadArg, decode({4, 4}, 16, 3, -1, &length, 1));
    EXPECT_EQ(qovStsBadArg, decode({4, 4}, 16, 3, 7, &length, -1));
}

} // namespace
