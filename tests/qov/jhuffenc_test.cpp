// Huffman encoders: each level against the coder of reference, and tables made from counts.
#include "jhuff_reference.h"

#include <numeric>

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

struct Spec : Opaque<QoviEncodeHuffmanSpec> {
    explicit Spec(const Table& t)
        : Opaque(qoviEncodeHuffmanSpecGetBufSize_JPEG_8u, qoviEncodeHuffmanSpecInit_JPEG_8u, t)
    {
    }
};

struct State : Opaque<QoviEncodeHuffmanState> {
    State() : Opaque(qoviEncodeHuffmanStateGetBufSize_JPEG_8u)
    {
        EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanStateInit_JPEG_8u(get()));
    }
};

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
    State state;
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
                   const std::vector<Qov8u>& expected, int dstLen, Spec& dc, Spec& ac)
{
    SCOPED_TRACE(testing::Message() << dstLen << " bytes of room for " << expected.size());
    Guarded buffer(size_t(dstLen), 5);
    Qov8u* const dst = buffer.as<Qov8u>();
    State state;
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

    Spec dc(dcTable), ac(acTable);
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
    Spec spec({{2}, {0, 1}}); // DC categories; end of block, a coefficient of size 1
    struct Case {
        Mode mode;
        int place, value;
        QovStatus status;
    };
    const Case cases[] = {
        {sequential, 0, 1, qovStsNoErr},
        {sequential, 0, 2, qovStsRange},
        {sequential, 0, -32768, qovStsRange},
        {sequential, 1, -1, qovStsNoErr},
        {sequential, 1, 3, qovStsRange},
        {sequential, 8, 1, qovStsRange},
        {sequential, 63, 1, qovStsRange},
        {sequential, 1, -32768, qovStsRange},
        {sequential, 53, -32768, qovStsRange},
        {one, 0, 1, qovStsNoErr},
        {one, 0, -2, qovStsRange},
        {one, 0, -32768, qovStsRange},
        {dcFirst, 0, 2, qovStsRange},
        {dcFirst, 0, -32768, qovStsRange},
        {acFirst, 1, 1, qovStsNoErr},
        {acFirst, 1, 2, qovStsRange},
        {acFirst, 1, -32768, qovStsRange},
        {acRefine, 1, 1, qovStsNoErr},
        {acRefine, 63, 1, qovStsRange},
    };
    forEachLevel([&] {
        for (const Case& c : cases) {
            SCOPED_TRACE(testing::Message() << about({c.mode}) << ": " << c.value << " at " << c.place);
            Block block = {};
            block[size_t(c.place)] = Qov16s(c.value);
            State state;
            Qov8u dst[1000];
            int pos = 0;
            const auto code = [&](const Block& b) {
                Qov16s last = 0;
                return encode({c.mode}, b, dst, sizeof dst, &pos, &last, spec.get(), spec.get(), state.get(),
                              false);
            };
            ASSERT_EQ(c.status, code(block));
            ASSERT_EQ(qovStsNoErr, code({}));
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
        State state;
        Counts counts = {};
        EXPECT_EQ(qovStsNoErr, qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(block.data(), counts.data(), 1,
                                                                               63, 0, state.get(), 0));
        EXPECT_EQ(Counts{}, counts);
    });
}

// The kind of fault that is looked for first decides.
TEST(HuffmanEncoder, Statuses)
{
    Counts all;
    all.fill(1);
    Spec spec(optimalTable(all));
    State state;
    Qov8u dst[2000], unmarked[4000] = {};
    auto* const badSpec = reinterpret_cast<QoviEncodeHuffmanSpec*>(unmarked);
    auto* const badState = reinterpret_cast<QoviEncodeHuffmanState*>(unmarked);
    struct Case {
        Pass pass;
        int dstLen, pos;
        QoviEncodeHuffmanSpec *dc, *ac;
        QoviEncodeHuffmanState* state;
        QovStatus status;
    };
    auto *const s = spec.get(), *const no = badSpec;
    const Case cases[] = {
        {{acFirst, 0, 0, 14}, 0, 0, s, nullptr, badState, qovStsNullPtr},
        {{acFirst, 0, 0, 14}, 0, 0, s, no, nullptr, qovStsNullPtr},
        {{acFirst, 0, 0, 14}, 0, 0, s, no, badState, qovStsSize},
        {{acFirst}, 2000, -1, s, no, badState, qovStsBadArg},
        {{acFirst}, 2000, 2001, s, no, badState, qovStsBadArg},
        {{acFirst, 0, 63, 0}, 2000, 0, s, no, badState, qovStsBadArg},
        {{acFirst, 5, 4, 0}, 2000, 0, s, no, badState, qovStsBadArg},
        {{acRefine, 1, 64, 0}, 2000, 0, s, no, badState, qovStsBadArg},
        {{acRefine, 1, 63, 14}, 2000, 0, s, no, badState, qovStsBadArg},
        {{acRefine, 1, 63, -1}, 2000, 0, s, no, badState, qovStsBadArg},
        {{acRefine}, 2000, 0, s, no, state.get(), qovStsContext},
        {{acRefine}, 2000, 0, s, s, badState, qovStsContext},
        {{sequential}, 0, 0, nullptr, s, badState, qovStsNullPtr},
        {{sequential}, 0, 0, no, s, badState, qovStsSize},
        {{sequential}, 9, 10, no, s, badState, qovStsBadArg},
        {{sequential}, 9, 0, no, s, state.get(), qovStsContext},
        {{sequential}, 9, 0, s, no, state.get(), qovStsContext},
        {{one}, 0, 0, nullptr, s, badState, qovStsNullPtr},
        {{one}, 9, 10, no, s, badState, qovStsBadArg},
        {{one}, 9, 0, no, s, state.get(), qovStsContext},
        {{dcFirst, 1, 63, 14}, 9, 0, no, s, badState, qovStsBadArg},
        {{dcFirst}, 9, 0, no, s, state.get(), qovStsContext},
        {{dcRefine, 1, 63, -1}, 9, 0, s, s, badState, qovStsBadArg},
        {{dcRefine}, 9, 0, s, s, badState, qovStsContext},
    };
    int i = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << i++ << ": " << about(c.pass));
        int pos = c.pos;
        Qov16s last = 0;
        EXPECT_EQ(c.status, encode(c.pass, {}, dst, c.dstLen, &pos, &last, c.dc, c.ac, c.state, false));
    }

    // The end of the buffer is a position. A flush needs the table only where a run is pending.
    int pos = 9;
    const auto call = [&](QoviEncodeHuffmanSpec* table, int length, bool flush) {
        return encode({acFirst}, {}, dst, length, &pos, nullptr, nullptr, table, state.get(), flush);
    };
    EXPECT_EQ(qovStsNoErr, call(nullptr, 9, true));
    EXPECT_EQ(qovStsNoErr, call(s, 9, false)); // lengthens the run
    EXPECT_EQ(qovStsNullPtr, call(nullptr, 9, true));
    EXPECT_EQ(qovStsContext, call(badSpec, 9, true));
    EXPECT_EQ(qovStsNoErr, call(s, 10, true));
    EXPECT_EQ(10, pos);
}

TEST(HuffmanEncoder, Tables)
{
    checkTables(qoviEncodeHuffmanSpecInitAlloc_JPEG_8u, qoviEncodeHuffmanSpecFree_JPEG_8u);
}

// Every counted symbol has one code, the code of ones stays free, frequent symbols have no longer codes than
// rare ones, values are in order.
void checkTable(const Counts& counts)
{
    const Counts before = counts;
    const Table t = optimalTable(counts);
    ASSERT_EQ(before, counts);
    std::vector<int> length(256);
    int k = 0, used = 0; // in units of the longest code
    for (int n = 1; n <= 16; n++)
        for (int i = 0; i < t.bits[n - 1]; i++, k++) {
            const int symbol = t.values[k];
            ASSERT_EQ(0, length[size_t(symbol)]) << "two codes for " << symbol;
            if (i > 0) {
                ASSERT_LT(t.values[k - 1], symbol);
            }
            length[size_t(symbol)] = n;
            used += 1 << (16 - n);
        }
    int longest = 16;
    while (longest > 1 && t.bits[longest - 1] == 0) longest--;
    ASSERT_LE(used, (1 << 16) - (1 << (16 - longest)));
    for (int a = 0; a < 256; a++) {
        ASSERT_EQ(counts[a] != 0, length[size_t(a)] != 0) << "symbol " << a;
        for (int b = 0; b < 256; b++)
            if (counts[b] && counts[a] > counts[b]) {
                ASSERT_LE(length[size_t(a)], length[size_t(b)]);
            }
    }
}

TEST(HuffmanRawTable, AnyCounts)
{
    Counts counts = {};
    checkTable(counts);
    counts[255] = 5;
    checkTable(counts);
    counts.fill(0x7fffffff); // their sum does not fit an int
    checkTable(counts);
    counts.fill(1);
    checkTable(counts);
    for (int first : {1, 2, 3}) { // Fibonacci's numbers make codes of all lengths, far above 16
        counts = {};
        counts[10] = counts[20] = first;
        for (int i = 3; i < 44 - first; i++)
            counts[10 * i % 256] = counts[10 * (i - 1) % 256] + counts[10 * (i - 2) % 256];
        checkTable(counts);
    }
    Random random;
    for (int round = 0; round < 300; round++) {
        const int high = random.in(0, 30);
        for (int& c : counts) c = random.oneIn(3) ? 0 : random.in(0, 1 << random.in(0, high));
        checkTable(counts);
        if (testing::Test::HasFatalFailure()) return;
    }
}

// The least sum of count x length over `n` codes with a Kraft sum up to `room` / 2^8, counts falling, lengths
// from `length` on.
int leastCost(const int* counts, int n, int length, int room)
{
    if (n == 0) return 0;
    int best = 1 << 30;
    for (int l = length; l <= 8; l++)
        if (room >= 1 << (8 - l))
            best = std::min(best, counts[0] * l + leastCost(counts + 1, n - 1, l, room - (1 << (8 - l))));
    return best;
}

// Small alphabets against all codes that there are, with the free code as a symbol of count 1 (K.2).
TEST(HuffmanRawTable, ShortestCode)
{
    Random random;
    for (int round = 0; round < 300; round++) {
        std::vector<int> sorted(size_t(random.in(1, 7)));
        Counts counts = {};
        for (size_t i = 0; i < sorted.size(); i++)
            counts[(i * 37 + 5) % 256] = sorted[i] = random.in(1, 1 << random.in(0, 6));
        const Table t = optimalTable(counts);
        int cost = 0, longest = 0, k = 0;
        for (int n = 1; n <= 16; n++)
            for (int i = 0; i < t.bits[n - 1]; i++) {
                cost += n * counts[t.values[k++]];
                longest = n;
            }
        std::sort(sorted.rbegin(), sorted.rend());
        sorted.push_back(1);
        ASSERT_EQ(leastCost(sorted.data(), int(sorted.size()), 1, 1 << 8), cost + longest);
    }
}

} // namespace
