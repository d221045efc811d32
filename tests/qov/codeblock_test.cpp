// The code-block encoder: each level against the coder of the flow charts, and every place where a block may
// be cut decoded.
#include "codeblock_reference.h"
#include "codeblock_samples.h"
#include "qov_testing.h"

#include <memory>

namespace {

using plain::Bytes;

struct FreeState {
    void operator()(QoviEncodeCBState* state) const { qoviEncodeFree_JPEG2K(state); }
};
typedef std::unique_ptr<QoviEncodeCBState, FreeState> State;

State makeState(QoviSize size)
{
    QoviEncodeCBState* state = nullptr;
    EXPECT_EQ(qovStsNoErr, qoviEncodeInitAlloc_JPEG2K(&state, size));
    return State(state);
}

struct Job {
    QoviSize size;
    QoviWTSubband band;
    int magnBits, style;
    QoviMQTermination term;
    CodeBlockSamples samples;
};

std::ostream& operator<<(std::ostream& out, const Job& job)
{
    return out << job.size.width << "x" << job.size.height << " band " << job.band << " magnBits "
               << job.magnBits << " style " << job.style << " term " << job.term;
}

struct Coded {
    int sfBits, passes, segmentCount;
    std::vector<int> rates;
    std::vector<double> dists;
    Bytes bytes;
    std::vector<Bytes> segments;

    bool operator==(const Coded&) const = default;
};

Bytes drain(QoviEncodeCBState* state, int piece)
{
    Bytes all;
    int more = 1;
    while (more) {
        Guarded bytes(size_t(piece), all.size() % 8);
        int size = piece;
        EXPECT_EQ(qovStsNoErr, qoviEncodeStoreBits_JPEG2K_1u(bytes.as<Qov8u>(), &size, state, &more));
        EXPECT_TRUE(size <= piece && (size == piece || !more) && bytes.intact());
        all.insert(all.end(), bytes.as<Qov8u>(), bytes.as<Qov8u>() + size);
    }
    return all;
}

// `spare` samples lie between rows, with bits that must not be seen.
Coded code(const Job& job, QoviEncodeCBState* state, int spare = 0, int piece = 1024)
{
    const size_t stride = size_t(job.size.width + spare),
                 last = stride * (job.size.height - 1) + job.size.width;
    std::vector<Qov32s> src(last, -1);
    for (int y = 0; y < job.size.height; y++)
        for (int x = 0; x < job.size.width; x++)
            src[y * stride + x] = Qov32s(job.samples[size_t(y) * job.size.width + x]);
    Coded coded = {};
    EXPECT_EQ(qovStsNoErr, qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R(
                               src.data(), int(stride * 4), job.size, state, job.band, job.magnBits, job.term,
                               qoviMQRateSafe, job.style, &coded.sfBits, &coded.passes, &coded.segmentCount));
    coded.rates.resize(coded.passes);
    coded.dists.resize(coded.passes);
    for (int pass = 0; pass < coded.passes; pass++) {
        EXPECT_EQ(qovStsNoErr, qoviEncodeGetRate_JPEG2K(state, pass, &coded.rates[pass]));
        EXPECT_EQ(qovStsNoErr, qoviEncodeGetDist_JPEG2K(state, pass, &coded.dists[pass]));
    }
    coded.bytes = drain(state, piece);
    size_t at = 0;
    for (int i = 0; i < coded.segmentCount; i++) {
        int length = 0;
        EXPECT_EQ(qovStsNoErr, qoviEncodeGetTermPassLen_JPEG2K(state, i, &length));
        if (length < 0 || at + length > coded.bytes.size()) {
            ADD_FAILURE() << "segment " << i << " of " << length << " bytes";
            break;
        }
        coded.segments.emplace_back(coded.bytes.begin() + at, coded.bytes.begin() + at + length);
        at += length;
    }
    EXPECT_EQ(coded.bytes.size(), at);
    return coded;
}

Job randomJob(Random& random)
{
    Job job;
    job.size = randomBlockSize(random, 4);
    job.band = QoviWTSubband(random.in(0, 3));
    const int bits = random.oneIn(6) ? random.in(0, 31) : random.in(0, 9);
    job.magnBits = random.oneIn(2) ? 31 : random.in(std::max(0, 31 - bits), 31);
    job.style = random.in(0, 31) | (random.oneIn(4) ? qoviCodeStyleLossless : 0);
    if (random.oneIn(3)) job.style = 0;
    job.term = QoviMQTermination(random.in(0, 2));
    job.samples = randomSamples(random, job.size, bits);
    return job;
}

// No FF at the end, and nothing above 8F behind one.
void expectNoMarkers(const Bytes& bytes)
{
    for (size_t i = 0; i < bytes.size(); i++)
        if (bytes[i] == 0xFF) {
            ASSERT_TRUE(i + 1 < bytes.size() && bytes[i + 1] <= 0x8F) << "at " << i << " of " << bytes.size();
        }
}

// The segments up to `length` bytes.
std::vector<Bytes> cutAt(std::vector<Bytes> segments, int length)
{
    for (Bytes& segment : segments) {
        segment.resize(std::min(segment.size(), size_t(length)));
        length -= int(segment.size());
    }
    return segments;
}

CodeBlockSamples values(const plain::Block& block, size_t count)
{
    CodeBlockSamples all(count);
    for (size_t i = 0; i < count; i++) all[i] = block.value(int(i));
    return all;
}

double errorFall(const CodeBlockSamples& truth, const CodeBlockSamples& decoded)
{
    long double fall = 0;
    for (size_t i = 0; i < truth.size(); i++) {
        const long double v = truth[i] & 0x7FFFFFFF, r = decoded[i] & 0x7FFFFFFF;
        fall += v * v - (v - r) * (v - r);
    }
    return double(fall);
}

// What holds of every coded block. Each pass is decoded from as few bytes as its rate tells; the samples must
// come out as from all bytes, the error as told.
void checkBlock(const Job& job, const Coded& coded)
{
    const int sfBits = bitsOf(job.samples);
    ASSERT_EQ(sfBits, coded.sfBits);
    const int planes = sfBits - (31 - job.magnBits);
    ASSERT_EQ(planes > 0 ? 3 * planes - 2 : 0, coded.passes);
    int segmentCount = 0;
    for (int pass = 0; pass < coded.passes; pass++)
        segmentCount += plain::endsSegment(pass, coded.passes, job.style);
    ASSERT_EQ(segmentCount, coded.segmentCount);
    if (!coded.passes) {
        ASSERT_TRUE(coded.bytes.empty());
        return;
    }
    ASSERT_EQ(int(coded.bytes.size()), coded.rates.back());
    ASSERT_GT(coded.rates[0], 0);
    ASSERT_TRUE(std::is_sorted(coded.rates.begin(), coded.rates.end()));
    for (const Bytes& segment : coded.segments) expectNoMarkers(segment);

    const size_t count = job.samples.size();
    std::vector<CodeBlockSamples> whole;
    plain::decode(coded.segments, job.size, job.band, job.style, sfBits, coded.passes, coded.passes,
                  [&](int, const plain::Block& block) {
                      ASSERT_FALSE(block.damaged);
                      whole.push_back(values(block, count));
                  });
    const Qov32u known = ~Qov32u(0) << (31 - job.magnBits);
    for (size_t i = 0; i < count; i++) {
        const Qov32u truth = job.samples[i] & known, middle = ~known & (~known ^ ~known >> 1);
        const Qov32u expected = truth & 0x7FFFFFFF ? truth | middle : 0;
        ASSERT_EQ(expected, whole.back()[i]) << "sample " << i;
    }
    size_t end = 0, segment = 0;
    for (int pass = 0; pass < coded.passes; pass++) {
        SCOPED_TRACE(testing::Message() << "pass " << pass << " rate " << coded.rates[pass]);
        const double fall = errorFall(job.samples, whole[pass]);
        ASSERT_NEAR(fall, coded.dists[pass], 1e-9 * std::abs(fall));
        ASSERT_NE(0xFF, coded.bytes[coded.rates[pass] - 1]);
        plain::decode(cutAt(coded.segments, coded.rates[pass]), job.size, job.band, job.style, sfBits,
                      pass + 1, coded.passes, [&](int at, const plain::Block& block) {
                          const bool same = at < pass || values(block, count) == whole[pass];
                          ASSERT_TRUE(same);
                      });
        if (testing::Test::HasFatalFailure()) return;
        if (!plain::endsSegment(pass, coded.passes, job.style)) continue;
        end += coded.segments[segment++].size();
        ASSERT_EQ(int(end), coded.rates[pass]);
    }
}

TEST(EncodeCodeBlock, AsTheFlowChartsAndDecodable)
{
    Random random;
    const State state = makeState({64, 64}), wide = makeState({1024, 4}), high = makeState({4, 1024});
    for (int round = 0; round < 300; round++) {
        Job job = randomJob(random);
        if (round < 64) { // every width and every height
            job.size = {round + 1, 64 - (round * 27) % 64};
            job.samples = randomSamples(random, job.size, random.in(1, 7));
        }
        SCOPED_TRACE(testing::Message() << "round " << round << ": " << job);
        QoviEncodeCBState* used = (job.size.width > 64 ? wide : job.size.height > 64 ? high : state).get();
        const int spare = random.in(0, 9), piece = random.in(1, 2000);
        Coded first;
        forEachLevel([&] {
            const Coded coded = code(job, used, spare, piece);
            if (qovGetEnabledCpuType() == qovCpuPx) first = coded;
            ASSERT_TRUE(first == coded);
        });
        checkBlock(job, first);
        if (testing::Test::HasFatalFailure()) return;
        if (first.passes == 0) continue;

        const bool predictable = job.term == qoviMQTermPredictable;
        const auto expected = plain::encode(job.samples, job.size, job.band, job.style, first.sfBits,
                                            first.passes, predictable);
        for (size_t i = 0; i < expected.size(); i++) {
            if (job.term == qoviMQTermShort)
                ASSERT_LE(first.segments[i].size(), std::max(expected[i].size(), size_t(2)))
                    << "segment " << i;
            else
                ASSERT_TRUE(expected[i] == first.segments[i]) << "segment " << i;
        }
    }
}

// What is handed out once is not handed out again, and a new block starts anew.
TEST(EncodeCodeBlock, NothingLeft)
{
    const State state = makeState({8, 8});
    for (Qov32u value : {0u, 0x80000000u, 5u, 0u}) {
        const Job job = {{8, 8}, qoviWTSubbandLxLy, 31, 0, qoviMQTermShort, CodeBlockSamples(64, value)};
        const Coded coded = code(job, state.get());
        EXPECT_EQ(value == 5 ? 7 : 0, coded.passes);
        EXPECT_EQ(value == 5 ? 1 : 0, coded.segmentCount);
        for (int i = 0; i < 2; i++) {
            Qov8u byte = 77;
            int size = 1, more = 9;
            EXPECT_EQ(qovStsNoErr, qoviEncodeStoreBits_JPEG2K_1u(&byte, &size, state.get(), &more));
            EXPECT_TRUE(size == 0 && more == 0 && byte == 77);
        }
    }
}

TEST(EncodeCodeBlock, StatusesOfInitAlloc)
{
    const auto check = [](QovStatus right, const std::vector<QoviSize>& sizes) {
        for (const QoviSize& size : sizes) {
            QoviEncodeCBState* state = reinterpret_cast<QoviEncodeCBState*>(1);
            EXPECT_EQ(right, qoviEncodeInitAlloc_JPEG2K(&state, size)) << size.width << "x" << size.height;
            EXPECT_EQ(right == qovStsNoErr, state != nullptr);
            EXPECT_EQ(qovStsNoErr, qoviEncodeFree_JPEG2K(state));
        }
    };
    check(qovStsNoErr, {{1, 1}, {64, 64}, {1024, 4}, {3, 1024}});
    check(qovStsSize, {{0, 64}, {64, -1}, {1025, 1}, {1, 1025}, {64, 65}, {1024, 5}, {0x10000, 0x10000}});
    EXPECT_EQ(qovStsNullPtr, qoviEncodeInitAlloc_JPEG2K(nullptr, {8, 8}));
}

// One wrong argument alone, then with later ones wrong too: the earlier kind of error decides.
TEST(EncodeCodeBlock, StatusesOfLoad)
{
    const State state = makeState({16, 8});
    const std::vector<Qov32s> src(16 * 16, 3);
    struct Case {
        bool noSrc;
        QoviSize size;
        int step, subband, magnBits, term, rate, style;
        QovStatus status;
    };
    const Case cases[] = {
        {false, {16, 8}, 64, 3, 31, 2, 0, 63, qovStsNoErr},
        {false, {16, 1}, 0, 0, 0, 0, 0, 0, qovStsNoErr},
        {true, {0, 8}, 0, 9, 99, 9, 9, -1, qovStsNullPtr},
        {false, {0, 8}, 0, 9, 99, 9, 9, -1, qovStsSize},
        {false, {17, 8}, 68, 0, 31, 0, 0, 0, qovStsSize},
        {false, {8, 16}, 64, 0, 31, 0, 0, 0, qovStsSize},
        {false, {16, 8}, 63, 9, 99, 9, 9, -1, qovStsStep},
        {false, {16, 8}, 64, 4, 31, 0, 0, 0, qovStsBadArg},
        {false, {16, 8}, 64, -1, 31, 0, 0, 0, qovStsBadArg},
        {false, {16, 8}, 64, 0, 32, 0, 0, 0, qovStsBadArg},
        {false, {16, 8}, 64, 0, -1, 0, 0, 0, qovStsBadArg},
        {false, {16, 8}, 64, 0, 31, 3, 0, 0, qovStsBadArg},
        {false, {16, 8}, 64, 0, 31, 0, 1, 0, qovStsBadArg},
        {false, {16, 8}, 64, 0, 31, 0, 0, 64, qovStsBadArg},
        {false, {16, 8}, 64, 0, 31, 0, 0, 0x100000, qovStsBadArg},
    };
    int i = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(i++);
        int sfBits, passes, segments;
        EXPECT_EQ(c.status, qoviEncodeLoadCodeBlock_JPEG2K_32s_C1R(
                                c.noSrc ? nullptr : src.data(), c.step, c.size, state.get(),
                                QoviWTSubband(c.subband), c.magnBits, QoviMQTermination(c.term),
                                QoviMQRate(c.rate), c.style, &sfBits, &passes, &segments));
    }
}

TEST(EncodeCodeBlock, StatusesOfTheAnswers)
{
    const State state = makeState({8, 8});
    int number = 0, more = 0;
    double dist = 0;
    Qov8u byte = 0;
    EXPECT_EQ(qovStsBadArg, qoviEncodeGetRate_JPEG2K(state.get(), 0, &number)); // no block yet
    code({{8, 8}, qoviWTSubbandLxLy, 31, 0, qoviMQTermShort, CodeBlockSamples(64, 1)}, state.get());
    for (const auto& [index, status] : {std::pair(-1, qovStsBadArg), {0, qovStsNoErr}, {1, qovStsBadArg}}) {
        EXPECT_EQ(status, qoviEncodeGetRate_JPEG2K(state.get(), index, &number)) << index;
        EXPECT_EQ(status, qoviEncodeGetDist_JPEG2K(state.get(), index, &dist)) << index;
        EXPECT_EQ(status, qoviEncodeGetTermPassLen_JPEG2K(state.get(), index, &number)) << index;
    }
    EXPECT_EQ(qovStsNullPtr, qoviEncodeGetRate_JPEG2K(nullptr, -1, &number));
    EXPECT_EQ(qovStsNullPtr, qoviEncodeGetDist_JPEG2K(state.get(), -1, nullptr));
    number = 0;
    EXPECT_EQ(qovStsSize, qoviEncodeStoreBits_JPEG2K_1u(&byte, &number, state.get(), &more));
    EXPECT_EQ(qovStsNullPtr, qoviEncodeStoreBits_JPEG2K_1u(nullptr, &number, state.get(), &more));

    Qov32u none[1024] = {}; // no state at all
    const auto wrong = reinterpret_cast<QoviEncodeCBState*>(none);
    EXPECT_EQ(qovStsContext, qoviEncodeGetRate_JPEG2K(wrong, 0, &number));
    EXPECT_EQ(qovStsContext, qoviEncodeFree_JPEG2K(wrong));
}

} // namespace
