// Huffman encoders: each level against the coder of reference, and tables made from counts.
#include "jhuff_reference.h"

#include <numeric>
#include <set>

namespace {

Table optimalTable(const Counts& counts)
{
    Table t;
    t.values.resize(256);
    EXPECT_EQ(qovStsNoErr,
              qoviEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), t.bits.data(), t.values.data()));
    t.values.resize(size_t(std::accumulate(t.bits.begin(), t.bits.end(), 0)));
    return t;
}

// The library's coder of a pass. With `flush` it gets no source and no table that the pass can do without.
QovStatus encode(const Pass& p, const Block& block, Qov8u* dst, int dstLen, int* pos, Qov16s* last,
                 const QoviEncodeHuffmanSpec* dc, const QoviEncodeHuffmanSpec* ac,
                 QoviEncodeHuffmanState* state, bool flush)
{
    const Qov16s* const src = flush ? nullptr : block.data();
    if (flush) dc = nullptr, last = nullptr;
    switch (p.mode) {
    case sequential:
        return qoviEncodeHuffman8x8_JPEG_16s1u_C1(src, dst, dstLen, pos, last, dc, ac, state, flush);
    case one: return qoviEncodeHuffmanOne_JPEG_16s1u_C1(src, dst, dstLen, pos, dc, state, flush);
    case dcFirst:
        return qoviEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(src, dst, dstLen, pos, last, p.al, dc, state,
                                                          flush);
    case dcRefine:
        return qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(src, dst, dstLen, pos, p.al, state, flush);
    case acFirst:
        return qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(src, dst, dstLen, pos, p.ss, p.se, p.al, ac, state,
                                                          flush);
    default:
        return qoviEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(src, dst, dstLen, pos, p.ss, p.se, p.al, ac, state,
                                                           flush);
    }
}

void compareStatistics(const Pass& p, const std::vector<Block>& blocks, const Reference& reference)
{
    const auto count = p.mode == acFirst ? qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1
                                         : qoviGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1;
    Counts counts = {};
    Qov16s last = 0;
    EncState state;
    for (const Block& b : blocks) {
        const QovStatus status =
            p.mode == dcFirst
                ? qoviGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(b.data(), counts.data(), &last, p.al)
                : count(b.data(), counts.data(), p.ss, p.se, p.al, state.moved(), 0);
        ASSERT_EQ(qovStsNoErr, status);
    }
    if (p.mode != dcFirst) {
        ASSERT_EQ(qovStsNoErr, count(nullptr, counts.data(), p.ss, p.se, p.al, state.moved(), 1));
    }
    ASSERT_EQ(p.mode == dcFirst ? reference.dcCounts : reference.acCounts, counts);
}

// Codes the blocks into `dstLen` bytes. Every call must bring out exactly the complete bytes, of which there
// are complete[i] after block i, and in the end those of the flush; when they do not fit, the rest of the
// calls and the flush must say so. Where all fits twice it is coded twice, with a flushed state.
void compareStream(const Pass& p, const std::vector<Block>& blocks, const std::vector<int>& complete,
                   const std::vector<Qov8u>& expected, int dstLen, EncSpec& dc, EncSpec& ac)
{
    SCOPED_TRACE(testing::Message() << dstLen << " bytes of room for " << expected.size());
    Guarded buffer(size_t(dstLen), 5);
    Qov8u* const dst = buffer.as<Qov8u>();
    EncState state;
    int pos = 0;
    for (int round = 0, start = 0; round == 0 || (round == 1 && 2 * start <= dstLen); round++, start = pos) {
        Qov16s last = 0;
        for (size_t i = 0; i <= blocks.size(); i++) {
            const bool flush = i == blocks.size();
            const QovStatus status = encode(p, blocks[flush ? 0 : i], dst, dstLen, &pos, &last, dc.get(),
                                            ac.get(), state.moved(), flush);
            ASSERT_EQ(start + complete[i] <= dstLen ? qovStsNoErr : qovStsDstFull, status) << "block " << i;
            ASSERT_EQ(std::min(start + complete[i], dstLen), pos) << "block " << i;
        }
        ASSERT_TRUE(std::equal(dst + start, dst + pos, expected.begin()));
    }
    ASSERT_TRUE(buffer.intact());
}

// Codes for the symbols that come, for all of them, or for all of 15 and 16 bits.
enum class Codes { few, all, longest };

void comparePass(const Pass& p, const std::vector<Block>& blocks, Codes codes)
{
    SCOPED_TRACE(about(p));
    const size_t mostCorrections = 1024 - 63; // what the library keeps
    Reference counting(p);
    counting.mostCorrections = mostCorrections;
    for (const Block& b : blocks) counting.code(b);
    counting.flush();
    Counts dcCounts = counting.dcCounts, acCounts = counting.acCounts;
    if (codes == Codes::all)
        for (int i = 0; i < 256; i++) dcCounts[i]++, acCounts[i]++;
    Table dcTable = optimalTable(dcCounts), acTable = optimalTable(acCounts);
    if (codes == Codes::longest) {
        dcTable = {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 255}, std::vector<Qov8u>(256)};
        std::iota(dcTable.values.begin(), dcTable.values.end(), Qov8u(0));
        acTable = dcTable;
    }

    Reference reference(p, dcTable, acTable);
    reference.mostCorrections = mostCorrections;
    std::vector<int> complete;
    for (const Block& b : blocks) {
        reference.code(b);
        complete.push_back(int(reference.bytes.size()));
    }
    reference.flush();
    const int length = int(reference.bytes.size());
    complete.push_back(length);

    EncSpec dc(dcTable), ac(acTable);
    forEachLevel([&] {
        if (p.mode == dcFirst || p.mode == acFirst || p.mode == acRefine)
            compareStatistics(p, blocks, counting);
        for (int room : {length, length - 1, length / 2, length + 300, 2 * length + 3000})
            if (room > 0) compareStream(p, blocks, complete, reference.bytes, room, dc, ac);
    });
}

// Catches wrong places, runs, sizes, signs and orders of bits at every density, lost or early bytes at the
// buffer's end, and states that hold an address.
TEST(HuffmanEncoder, RandomBlocks)
{
    Random random;
    for (int round = 0; round < 240; round++) {
        const Pass p = randomPass(random, Mode(round % 6));
        comparePass(p, randomBlocks(random, p, random.in(1, 40)), Codes(round / 6 % 3));
        if (testing::Test::HasFatalFailure()) return;
    }
}

// Catches a run that grows past 32767 blocks or past the corrections that a state holds, and statistics that
// decide otherwise.
TEST(HuffmanEncoder, LongRuns)
{
    std::vector<Block> blocks(2 * 32767 + 5);
    blocks.back()[63] = 1;
    comparePass({acFirst}, blocks, Codes::few);
    comparePass({acRefine}, blocks, Codes::few);

    Random random;
    for (int corrections : {31, 37, 62, 63}) {
        std::vector<Block> corrected(70);
        for (Block& b : corrected)
            for (int k = 1; k <= corrections; k++) b[zigzagOrder[k]] = Qov16s(random.in(2, 3));
        comparePass({acRefine}, corrected, Codes::few);
    }
}

// A table without the symbol that comes: nothing is written, and the coder goes on with what has a code.
TEST(HuffmanEncoder, SymbolsWithoutCode)
{
    EncSpec spec({{2}, {0, 1}}); // DC categories; end of block, a coefficient of size 1
    typedef std::vector<std::pair<int, int>> Coefficients; // place, value
    struct Case {
        Mode mode;
        Coefficients good, bad;
    };
    const Case cases[] = {
        {sequential,
         {{0, 1}, {1, -1}},
         {{0, 2}, {0, -32768}, {1, 3}, {8, 1}, {63, 1}, {1, -32768}, {53, -32768}}},
        {one, {{0, 1}}, {{0, -2}, {0, -32768}}},
        {dcFirst, {}, {{0, 2}, {0, -32768}}},
        {acFirst, {{1, 1}}, {{1, 2}, {1, -32768}}},
        {acRefine, {{1, 1}}, {{63, 1}}},
    };
    const auto check = [&](Mode mode, const Coefficients& coefficients, QovStatus expected) {
        for (auto [place, value] : coefficients) {
            SCOPED_TRACE(testing::Message() << about({mode}) << ": " << value << " at " << place);
            Block block = {};
            block[size_t(place)] = Qov16s(value);
            EncState state;
            Qov8u dst[1000];
            int pos = 0;
            const auto code = [&](const Block& b) {
                Qov16s last = 0;
                return encode({mode}, b, dst, sizeof dst, &pos, &last, spec.get(), spec.get(), state.get(),
                              false);
            };
            ASSERT_EQ(expected, code(block));
            ASSERT_EQ(qovStsNoErr, code({}));
        }
    };
    forEachLevel([&] {
        for (const Case& c : cases) {
            check(c.mode, c.good, qovStsNoErr);
            check(c.mode, c.bad, qovStsRange);
        }
    });
}

// A size that no pass codes is no symbol either: counted as one it would be another's, or lie behind them
// all.
TEST(HuffmanEncoder, SizeThatIsNotCounted)
{
    Block block = {};
    block[zigzagOrder[1]] = block[zigzagOrder[17]] = -32768; // runs of 0 and 15
    forEachLevel([&] {
        EncState state;
        Counts counts = {};
        EXPECT_EQ(qovStsNoErr, qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(block.data(), counts.data(), 1,
                                                                               63, 0, state.get(), 0));
        EXPECT_EQ(Counts{}, counts);
    });
}

TEST(HuffmanEncoder, Statuses)
{
    EncSpec spec({{2}, {0, 1}});
    EncState state;
    Qov8u dst[9], unmarked[4] = {};
    auto* const bad = reinterpret_cast<QoviEncodeHuffmanSpec*>(unmarked);
    checkStatuses(spec.get(), state.get(),
                  [&](const Pass& p, int length, int pos, const QoviEncodeHuffmanSpec* dc,
                      const QoviEncodeHuffmanSpec* ac, QoviEncodeHuffmanState* s) {
                      Qov16s last = 0;
                      return encode(p, {}, dst, length, &pos, &last, dc, ac, s, false);
                  });

    // The end of the buffer is a position. A flush needs the table only where a run is pending.
    int pos = 8;
    EncState fresh;
    const auto call = [&](QoviEncodeHuffmanSpec* table, int length, bool flush) {
        return encode({acFirst}, {}, dst, length, &pos, nullptr, nullptr, table, fresh.get(), flush);
    };
    EXPECT_EQ(qovStsNoErr, call(nullptr, 8, true));
    EXPECT_EQ(qovStsNoErr, call(spec.get(), 8, false)); // lengthens the run
    EXPECT_EQ(qovStsNullPtr, call(nullptr, 8, true));
    EXPECT_EQ(qovStsContext, call(bad, 8, true));
    EXPECT_EQ(qovStsNoErr, call(spec.get(), 9, true));
    EXPECT_EQ(9, pos);
}

TEST(HuffmanEncoder, Tables)
{
    checkTables(qoviEncodeHuffmanSpecInitAlloc_JPEG_8u, qoviEncodeHuffmanSpecFree_JPEG_8u);
}

// Bits that the shortest code takes for symbols of these counts.
long long shortest(const Counts& counts)
{
    std::multiset<long long> weights = {1}; // of the code of ones
    for (int c : counts)
        if (c) weights.insert(c);
    long long bits = 0;
    while (weights.size() > 1) {
        const long long joined = *weights.begin() + *std::next(weights.begin());
        weights.erase(weights.begin(), std::next(weights.begin(), 2));
        weights.insert(joined);
        bits += joined;
    }
    return bits;
}

// Every counted symbol has one code, the code of ones stays free, frequent symbols have no longer codes than
// rare ones, values are in order; the code is the shortest one unless it would need more than 16 bits.
void checkTable(const Counts& counts)
{
    const Counts before = counts;
    const Table t = optimalTable(counts);
    ASSERT_EQ(before, counts);
    std::array<int, 256> length = {};
    int k = 0, used = 0, longest = 0; // used: in units of a code of 16 bits
    long long bits = 0;
    for (int n = 1; n <= 16; n++)
        for (int i = 0; i < t.bits[n - 1]; i++, k++) {
            const int symbol = t.values[k];
            ASSERT_EQ(0, length[symbol]) << "two codes for " << symbol;
            ASSERT_TRUE(i == 0 || t.values[k - 1] < symbol);
            length[symbol] = longest = n;
            used += 1 << (16 - n);
            bits += 1LL * n * counts[symbol];
        }
    ASSERT_LE(used + (1 << (16 - longest)), 1 << 16);
    for (int a = 0; a < 256; a++) {
        ASSERT_EQ(counts[a] != 0, length[a] != 0) << "symbol " << a;
        for (int b = 0; b < 256; b++)
            ASSERT_TRUE(!counts[b] || counts[a] <= counts[b] || length[a] <= length[b]);
    }
    const long long sumFor17Bits = 4181; // Fibonacci's
    if (std::accumulate(counts.begin(), counts.end(), 1LL) < sumFor17Bits) {
        ASSERT_EQ(shortest(counts), bits + longest);
    }
}

TEST(HuffmanRawTable, AnyCounts)
{
    Counts counts = {};
    checkTable(counts);
    counts[255] = 5;
    checkTable(counts);
    for (int same : {1, 0x7fffffff}) { // also a sum that fits no int
        counts.fill(same);
        checkTable(counts);
    }
    for (int first : {1, 2, 3}) { // Fibonacci's numbers make codes of all lengths, far above 16
        counts = {};
        counts[10] = counts[20] = first;
        for (int i = 3; i < 44 - first; i++)
            counts[10 * i % 256] = counts[10 * (i - 1) % 256] + counts[10 * (i - 2) % 256];
        checkTable(counts);
    }
    Random random;
    for (int round = 0; round < 400; round++) {
        const int high = random.in(0, 30), rare = random.in(1, 60);
        for (int& c : counts) c = random.oneIn(rare) ? random.in(0, 1 << random.in(0, high)) : 0;
        checkTable(counts);
        if (testing::Test::HasFatalFailure()) return;
    }
}

} // namespace
