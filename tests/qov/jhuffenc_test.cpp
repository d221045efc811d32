// Huffman encoders: each level against a coder that goes bit by bit through the flow charts of ITU-T T.81.
#include "qov_testing.h"
#include "qovi.h"

#include <algorithm>
#include <array>
#include <functional>

namespace {

typedef std::array<int, 256> Counts;
typedef std::array<Qov16s, 64> Block;

const int zigzagOrder[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                             12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                             35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                             58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

struct Table {
    Qov8u bits[16] = {}, values[256] = {};

    int sum() const
    {
        int n = 0;
        for (int b : bits) n += b;
        return n;
    }
};

Table optimalTable(const Counts& counts)
{
    Table t;
    EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanRawTableInit_JPEG_8u(counts.data(), t.bits, t.values));
    return t;
}

// A table at an odd address.
class Spec {
public:
    explicit Spec(const Table& t)
    {
        int size = 0;
        EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanSpecGetBufSize_JPEG_8u(&size));
        m_bytes.resize(size_t(size) + 3);
        const std::vector<Qov8u> values(t.values, t.values + t.sum()); // no more than these may be read
        EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanSpecInit_JPEG_8u(
                                   t.bits, values.empty() ? t.values : values.data(), get()));
    }
    QoviEncodeHuffmanSpec* get() { return reinterpret_cast<QoviEncodeHuffmanSpec*>(m_bytes.data() + 3); }

private:
    std::vector<Qov8u> m_bytes;
};

// A state that is somewhere else each time it is asked for.
class State {
public:
    State()
    {
        EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanStateGetBufSize_JPEG_8u(&m_size));
        m_bytes.resize(2 * size_t(m_size) + 16);
        EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanStateInit_JPEG_8u(get()));
    }
    QoviEncodeHuffmanState* get()
    {
        const int offset = m_offset > m_size ? m_offset % 8 : m_size + 1 + m_offset;
        std::copy_n(m_bytes.begin() + m_offset, m_size, m_bytes.begin() + offset);
        std::fill_n(m_bytes.begin() + m_offset, m_size, Qov8u(0xEE));
        m_offset = offset;
        return reinterpret_cast<QoviEncodeHuffmanState*>(m_bytes.data() + m_offset);
    }

private:
    std::vector<Qov8u> m_bytes;
    int m_size = 0, m_offset = 0;
};

enum Mode { sequential, one, dcFirst, dcRefine, acFirst, acRefine };
const char* const modeNames[] = {"sequential", "one", "DC first", "DC refine", "AC first", "AC refine"};

struct Pass {
    Mode mode;
    int ss = 1, se = 63, al = 0;
};

// The coder of reference. Without tables it only counts: DC symbols (and those of `one`), and AC symbols.
class Reference {
public:
    explicit Reference(const Pass& pass) : m_pass(pass) {}
    void useTables(const Table& dc, const Table& ac)
    {
        codesOf(dc, m_dcCodes);
        codesOf(ac, m_acCodes);
    }

    void code(const Block& block)
    {
        switch (m_pass.mode) {
        case sequential:
            codeDC(block[0]);
            codeBand(block, 1, 63, 0);
            break;
        case one: difference(block[0] == -32768 ? 32768 : block[0]); break;
        case dcFirst: codeDC(Qov16s(block[0] >> m_pass.al)); break;
        case dcRefine: put(Qov32u(block[0] >> m_pass.al) & 1, 1); break;
        case acFirst: codeBand(block, m_pass.ss, m_pass.se, m_pass.al); break;
        case acRefine: refineBand(block); break;
        }
    }
    void flush()
    {
        endRun();
        while (m_byteBits) putBit(true);
    }
    const std::vector<Qov8u>& bytes() const { return m_bytes; } // the complete ones, with stuffing

    Counts dcCounts = {}, acCounts = {};

private:
    struct Code {
        Qov32u code;
        int length;
    };
    typedef std::array<Code, 256> Codes;

    static void codesOf(const Table& t, Codes& codes)
    {
        Qov32u code = 0;
        int k = 0;
        for (int length = 1; length <= 16; length++, code *= 2)
            for (int n = 0; n < t.bits[length - 1]; n++) codes[t.values[k++]] = {code++, length};
    }
    static int sizeOf(int magnitude)
    {
        int size = 0;
        for (; magnitude; magnitude /= 2) size++;
        return size;
    }
    void put(Qov32u value, int length)
    {
        while (length-- > 0) putBit(value >> length & 1);
    }
    void putBit(bool bit)
    {
        m_byte = 2 * m_byte + bit;
        if (++m_byteBits < 8) return;
        m_bytes.push_back(Qov8u(m_byte));
        if (m_byte == 0xFF) m_bytes.push_back(0);
        m_byteBits = m_byte = 0;
    }
    void putCode(const Code& c) { put(c.code, c.length); }
    void acSymbol(int symbol)
    {
        acCounts[symbol]++;
        putCode(m_acCodes[symbol]);
    }
    void extraBits(int value, int size) { put(Qov32u(value < 0 ? value - 1 : value), size); }

    void difference(int d)
    {
        const int size = sizeOf(std::abs(d));
        dcCounts[size]++;
        putCode(m_dcCodes[size]);
        if (size < 16) extraBits(d, size);
    }
    void codeDC(Qov16s value)
    {
        difference(Qov16s(value - m_last));
        m_last = value;
    }
    // F.1.2.2, figure F.2; G.1.2.2, figure G.3.
    void codeBand(const Block& block, int ss, int se, int al)
    {
        int run = 0;
        for (int k = ss; k <= se; k++) {
            const int value = block[zigzagOrder[k]] / (1 << al);
            if (value == 0) {
                run++;
                continue;
            }
            endRun();
            for (; run > 15; run -= 16) acSymbol(0xF0);
            const int size = sizeOf(std::abs(value));
            acSymbol(16 * run + size);
            extraBits(value, size);
            run = 0;
        }
        if (run > 0 && m_pass.mode == sequential) acSymbol(0);
        if (run > 0 && m_pass.mode != sequential && ++m_eobRun == 32767) endRun();
    }
    // Figure G.7.
    void refineBand(const Block& block)
    {
        std::array<int, 64> magnitude = {};
        int lastNew = 0;
        for (int k = m_pass.ss; k <= m_pass.se; k++) {
            magnitude[k] = std::abs(block[zigzagOrder[k]]) >> m_pass.al;
            if (magnitude[k] == 1) lastNew = k;
        }
        std::vector<bool> corrections;
        const auto flushCorrections = [&] {
            for (bool bit : corrections) putBit(bit);
            corrections.clear();
        };
        int run = 0;
        for (int k = m_pass.ss; k <= m_pass.se; k++) {
            if (magnitude[k] == 0) {
                run++;
                continue;
            }
            for (; run > 15 && k <= lastNew; run -= 16) {
                endRun();
                acSymbol(0xF0);
                flushCorrections();
            }
            if (magnitude[k] > 1) {
                corrections.push_back(magnitude[k] & 1);
                continue;
            }
            endRun();
            acSymbol(16 * run + 1);
            put(block[zigzagOrder[k]] >= 0, 1);
            flushCorrections();
            run = 0;
        }
        if (run == 0 && corrections.empty()) return;
        m_eobRun++;
        m_runCorrections.insert(m_runCorrections.end(), corrections.begin(), corrections.end());
        // The library keeps at most 1024 of them.
        if (m_eobRun == 32767 || m_runCorrections.size() > 1024 - 63) endRun();
    }
    void endRun()
    {
        if (m_eobRun == 0) return;
        const int size = sizeOf(m_eobRun) - 1;
        acSymbol(16 * size);
        put(Qov32u(m_eobRun), size);
        for (bool bit : m_runCorrections) putBit(bit);
        m_runCorrections.clear();
        m_eobRun = 0;
    }

    Pass m_pass;
    Codes m_dcCodes = {}, m_acCodes = {};
    std::vector<Qov8u> m_bytes;
    int m_byte = 0, m_byteBits = 0;
    std::vector<bool> m_runCorrections;
    Qov16s m_last = 0;
    int m_eobRun = 0;
};

// The library's coder of a pass. With `flush` it gets no source and no table that the pass can do without.
QovStatus encode(const Pass& p, const Block& block, Qov8u* dst, int dstLen, int* pos, Qov16s* last, Spec& dc,
                 Spec& ac, QoviEncodeHuffmanState* state, bool flush)
{
    const Qov16s* const src = flush ? nullptr : block.data();
    const QoviEncodeHuffmanSpec *const d = flush ? nullptr : dc.get(), *const a = ac.get();
    if (flush) last = nullptr;
    switch (p.mode) {
    case sequential:
        return qoviEncodeHuffman8x8_JPEG_16s1u_C1(src, dst, dstLen, pos, last, d, a, state, flush);
    case one: return qoviEncodeHuffmanOne_JPEG_16s1u_C1(src, dst, dstLen, pos, d, state, flush);
    case dcFirst:
        return qoviEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(src, dst, dstLen, pos, last, p.al, d, state, flush);
    case dcRefine:
        return qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(src, dst, dstLen, pos, p.al, state, flush);
    case acFirst:
        return qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(src, dst, dstLen, pos, p.ss, p.se, p.al, a, state,
                                                          flush);
    default:
        return qoviEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(src, dst, dstLen, pos, p.ss, p.se, p.al, a, state,
                                                           flush);
    }
}

void compareStatistics(const Pass& p, const std::vector<Block>& blocks, const Reference& reference)
{
    Counts counts = {};
    Qov16s last = 0;
    State state;
    for (const Block& b : blocks)
        if (p.mode == dcFirst) {
            ASSERT_EQ(qovStsNoErr,
                      qoviGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(b.data(), counts.data(), &last, p.al));
        } else {
            const auto count = p.mode == acFirst ? qoviGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1
                                                 : qoviGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1;
            ASSERT_EQ(qovStsNoErr, count(b.data(), counts.data(), p.ss, p.se, p.al, state.get(), 0));
            if (&b == &blocks.back()) {
                ASSERT_EQ(qovStsNoErr, count(nullptr, counts.data(), p.ss, p.se, p.al, state.get(), 1));
            }
        }
    ASSERT_EQ(p.mode == dcFirst ? reference.dcCounts : reference.acCounts, counts);
}

// Codes the blocks into `dstLen` bytes. Every call must bring out exactly the complete bytes; when they do
// not fit, the rest of the calls and the flush must say so. `expected` holds the bytes that are complete
// after each block, and in the end those after the flush.
void compareStream(const Pass& p, const std::vector<Block>& blocks, const std::vector<int>& complete,
                   const std::vector<Qov8u>& expected, int dstLen, Spec& dc, Spec& ac)
{
    SCOPED_TRACE(testing::Message() << dstLen << " bytes of room for " << expected.size());
    Guarded buffer(size_t(dstLen), 5);
    Qov8u* const dst = buffer.as<Qov8u>();
    State state;
    Qov16s last = 0;
    int pos = 0;
    for (size_t i = 0; i <= blocks.size(); i++) {
        const bool flush = i == blocks.size();
        const QovStatus status =
            encode(p, blocks[flush ? 0 : i], dst, dstLen, &pos, &last, dc, ac, state.get(), flush);
        ASSERT_EQ(complete[i] <= dstLen ? qovStsNoErr : qovStsDstFull, status) << "block " << i;
        ASSERT_EQ(std::min(complete[i], dstLen), pos) << "block " << i;
    }
    ASSERT_TRUE(std::equal(dst, dst + pos, expected.begin()));
    ASSERT_TRUE(buffer.intact());
}

void comparePass(const Pass& p, const std::vector<Block>& blocks, bool everySymbol)
{
    SCOPED_TRACE(testing::Message() << modeNames[p.mode] << ", band " << p.ss << " to " << p.se << ", shift "
                                    << p.al);
    Reference counting(p);
    for (const Block& b : blocks) counting.code(b);
    counting.flush();
    Counts dcCounts = counting.dcCounts, acCounts = counting.acCounts;
    if (everySymbol)
        for (int i = 0; i < 256; i++) dcCounts[i]++, acCounts[i]++;
    const Table dcTable = optimalTable(dcCounts), acTable = optimalTable(acCounts);

    Reference reference(p);
    reference.useTables(dcTable, acTable);
    std::vector<int> complete;
    for (const Block& b : blocks) {
        reference.code(b);
        complete.push_back(int(reference.bytes().size()));
    }
    reference.flush();
    const std::vector<Qov8u> expected = reference.bytes();
    complete.push_back(int(expected.size()));

    Spec dc(dcTable), ac(acTable);
    forEachLevel([&] {
        if (p.mode == dcFirst || p.mode == acFirst || p.mode == acRefine)
            compareStatistics(p, blocks, counting);
        const int length = int(expected.size());
        for (int room : {length, length - 1, length / 2, length + 300, 2 * length + 3000})
            if (room > 0) compareStream(p, blocks, complete, expected, room, dc, ac);
    });
}

Block randomBlock(Random& random, const Pass& p, int density, int amplitude, Qov16s last)
{
    Block b = {};
    for (Qov16s& c : b)
        if (random.in(0, 99) < density) {
            const int size = random.in(1, amplitude), high = (1 << size) - 1;
            c = Qov16s(random.in(0, 7) ? random.in(-high, high) : random.oneIn(2) ? high : -high);
        }
    if (p.mode == one && random.oneIn(8)) b[0] = -32768;
    if (p.mode == acRefine && random.oneIn(8)) b[size_t(random.in(0, 63))] = -32768;
    // -32768 as a difference has no category of its own.
    if ((p.mode == sequential || p.mode == dcFirst) && Qov16s((b[0] >> p.al) - (last >> p.al)) == -32768)
        b[0] = last;
    return b;
}

// Catches wrong places, runs, sizes, signs and orders of bits at every density, lost or early bytes at the
// buffer's end, and states that hold an address.
TEST(HuffmanEncoder, RandomBlocks)
{
    Random random;
    for (int round = 0; round < 240; round++) {
        Pass p = {Mode(round % 6)};
        if (p.mode == acFirst || p.mode == acRefine) {
            p.ss = random.in(1, 63);
            p.se = random.in(p.ss, 63);
            if (random.oneIn(2)) p.ss = random.in(1, 5), p.se = 63;
        }
        if (p.mode != sequential && p.mode != one)
            p.al = random.oneIn(3) ? random.in(0, 13) : random.in(0, 2);
        const int density = std::array{1, 5, 20, 60, 100}[size_t(random.in(0, 4))];
        const int amplitude = random.oneIn(3) ? 15 : random.in(1, 4) + p.al;
        std::vector<Block> blocks;
        for (int i = random.in(1, 40); i > 0; i--)
            blocks.push_back(randomBlock(random, p, density, std::min(amplitude, 15),
                                         blocks.empty() ? Qov16s(0) : blocks.back()[0]));
        comparePass(p, blocks, random.oneIn(2));
        if (testing::Test::HasFatalFailure()) return;
    }
}

// Catches a run that grows past 32767 blocks or past the corrections that a state holds, and statistics that
// decide otherwise.
TEST(HuffmanEncoder, LongRuns)
{
    std::vector<Block> blocks(2 * 32767 + 5);
    blocks.back()[63] = 1;
    comparePass({acFirst}, blocks, false);
    comparePass({acRefine}, blocks, false);

    Random random;
    for (int corrections : {62, 63, 31}) {
        std::vector<Block> corrected(70);
        for (Block& b : corrected)
            for (int k = 1; k <= corrections; k++) b[zigzagOrder[k]] = Qov16s(random.in(2, 3));
        comparePass({acRefine}, corrected, false);
    }
}

// A table without the symbol that comes: nothing is written, and the coder goes on with what has a code.
TEST(HuffmanEncoder, SymbolsWithoutCode)
{
    const Table few = [] { // 0 and 1: DC categories; end of block, a coefficient of size 1
        Counts counts = {};
        counts[0] = counts[1] = 1;
        return optimalTable(counts);
    }();
    Spec spec(few);
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
            SCOPED_TRACE(testing::Message() << modeNames[c.mode] << " " << c.value << " at " << c.place);
            Block block = {};
            block[size_t(c.place)] = Qov16s(c.value);
            State state;
            Qov8u dst[1000];
            int pos = 0;
            Qov16s last = 0;
            ASSERT_EQ(c.status,
                      encode({c.mode}, block, dst, sizeof dst, &pos, &last, spec, spec, state.get(), false));
            last = 0;
            ASSERT_EQ(qovStsNoErr,
                      encode({c.mode}, {}, dst, sizeof dst, &pos, &last, spec, spec, state.get(), false));
        }
    });
}

// One wrong argument alone, then with those of later checks wrong too: the earlier kind of error decides.
TEST(HuffmanEncoder, Statuses)
{
    Counts all;
    all.fill(1);
    Spec spec(optimalTable(all));
    const Block block = {};
    Qov8u dst[2000], noContext[4000] = {};
    auto* const badSpec = reinterpret_cast<QoviEncodeHuffmanSpec*>(noContext);
    auto* const badState = reinterpret_cast<QoviEncodeHuffmanState*>(noContext);
    struct Case {
        const Qov16s* src;
        int dstLen, pos, ss, se, al;
        QoviEncodeHuffmanSpec* spec;
        bool goodState;
        QovStatus status;
    };
    const Qov16s* const b = block.data();
    const Case cases[] = {
        {b, 2000, 2000, 1, 63, 13, spec.get(), true, qovStsNoErr}, // an empty block lengthens the run
        {nullptr, 0, 0, 0, 0, 14, badSpec, false, qovStsNullPtr},
        {b, 2000, 0, 0, 0, 14, nullptr, false, qovStsNullPtr},
        {b, 0, 0, 0, 0, 14, badSpec, false, qovStsSize},
        {b, 2000, -1, 1, 63, 0, badSpec, false, qovStsBadArg},
        {b, 2000, 2001, 1, 63, 0, badSpec, false, qovStsBadArg},
        {b, 2000, 0, 0, 63, 0, badSpec, false, qovStsBadArg},
        {b, 2000, 0, 5, 4, 0, badSpec, false, qovStsBadArg},
        {b, 2000, 0, 1, 64, 0, badSpec, false, qovStsBadArg},
        {b, 2000, 0, 1, 63, 14, badSpec, false, qovStsBadArg},
        {b, 2000, 0, 1, 63, -1, badSpec, false, qovStsBadArg},
        {b, 2000, 0, 1, 63, 0, badSpec, true, qovStsContext},
        {b, 2000, 0, 1, 63, 0, spec.get(), false, qovStsContext},
    };
    int i = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(i++);
        for (const auto pass :
             {qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1, qoviEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1}) {
            State state;
            int pos = c.pos;
            EXPECT_EQ(c.status, pass(c.src, dst, c.dstLen, &pos, c.ss, c.se, c.al, c.spec,
                                     c.goodState ? state.get() : badState, 0));
        }
    }

    // The other coders share these checks; each gets one fault of each kind.
    State state;
    int pos = 0;
    Qov16s last = 0;
    auto* const good = spec.get();
    EXPECT_EQ(qovStsNullPtr,
              qoviEncodeHuffman8x8_JPEG_16s1u_C1(b, dst, 0, &pos, nullptr, badSpec, good, badState, 0));
    EXPECT_EQ(qovStsSize,
              qoviEncodeHuffman8x8_JPEG_16s1u_C1(b, dst, 0, &pos, &last, badSpec, good, badState, 0));
    EXPECT_EQ(qovStsContext,
              qoviEncodeHuffman8x8_JPEG_16s1u_C1(b, dst, 9, &pos, &last, good, badSpec, state.get(), 0));
    EXPECT_EQ(qovStsNullPtr, qoviEncodeHuffmanOne_JPEG_16s1u_C1(b, dst, 0, nullptr, good, badState, 0));
    EXPECT_EQ(qovStsContext, qoviEncodeHuffmanOne_JPEG_16s1u_C1(b, dst, 9, &pos, badSpec, state.get(), 0));
    EXPECT_EQ(qovStsBadArg,
              qoviEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(b, dst, 9, &pos, &last, 14, badSpec, badState, 0));
    EXPECT_EQ(qovStsBadArg, qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(b, dst, 9, &pos, -1, badState, 0));
    EXPECT_EQ(qovStsContext, qoviEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(b, dst, 9, &pos, 0, badState, 0));

    // A flush needs the table only where a run is pending.
    const auto flush = [&](QoviEncodeHuffmanSpec* table) {
        return qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(nullptr, dst, 2000, &pos, 0, 0, 0, table,
                                                          state.get(), 1);
    };
    EXPECT_EQ(qovStsNoErr, flush(nullptr));
    EXPECT_EQ(qovStsNoErr,
              qoviEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(b, dst, 2000, &pos, 1, 63, 0, good, state.get(), 0));
    EXPECT_EQ(qovStsNullPtr, flush(nullptr));
    EXPECT_EQ(qovStsContext, flush(badSpec));
    EXPECT_EQ(qovStsNoErr, flush(good));
    EXPECT_EQ(1, pos);
}

TEST(HuffmanSpec, Statuses)
{
    struct Case {
        std::vector<int> bits; // from length 1
        QovStatus status;
    };
    const Case cases[] = {
        {{}, qovStsNoErr},
        {{2}, qovStsNoErr}, // uses the code of ones
        {{3}, qovStsTable},
        {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2}, qovStsNoErr},
        {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 3}, qovStsTable},
        {{0, 0, 0, 0, 0, 0, 0, 0, 128, 128}, qovStsNoErr},
        {{0, 0, 0, 0, 0, 0, 0, 0, 128, 129}, qovStsTable},
    };
    for (const Case& c : cases) {
        Table t;
        std::copy(c.bits.begin(), c.bits.end(), t.bits);
        QoviEncodeHuffmanSpec* spec = nullptr;
        EXPECT_EQ(c.status, qoviEncodeHuffmanSpecInitAlloc_JPEG_8u(t.bits, t.values, &spec));
        if (c.status == qovStsNoErr) {
            EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanSpecFree_JPEG_8u(spec));
        }
    }
    Qov8u noSpec[4000] = {};
    EXPECT_EQ(qovStsNullPtr, qoviEncodeHuffmanSpecFree_JPEG_8u(nullptr));
    EXPECT_EQ(qovStsContext,
              qoviEncodeHuffmanSpecFree_JPEG_8u(reinterpret_cast<QoviEncodeHuffmanSpec*>(noSpec)));
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
