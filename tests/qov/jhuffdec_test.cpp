// Huffman decoders: streams of the coder of reference come back at every level, cut anywhere, with markers
// inside; other bytes do no harm and mean the same at every level.
#include "jhuff_reference.h"

#include <bitset>

namespace {

// Codes for the values from 0 on, from a tree grown at random. The code of ones alone is used or not.
Table randomTable(Random& random, int values, bool allOnes)
{
    const size_t leaves = size_t(values + !allOnes);
    const int deep = random.in(0, 4); // 0: flat, but for 256 codes of 8 bits, whose count no byte holds
    std::vector<int> depths = {0};
    while (depths.size() < leaves || depths[0] == 0) {
        size_t i = random.in(0, int(depths.size()) - 1);
        if (deep == 0 && depths.size() != 255)
            i = size_t(std::min_element(depths.begin(), depths.end()) - depths.begin());
        for (int trial = 1; trial < deep || depths[i] == 16; trial++) {
            const size_t other = random.in(0, int(depths.size()) - 1);
            if (depths[i] == 16 || (depths[other] < 16 && depths[other] > depths[i])) i = other;
        }
        depths.push_back(++depths[i]);
    }
    std::sort(depths.begin(), depths.end());
    Table table;
    for (int i = 0; i < values; i++) {
        table.bits[depths[i] - 1]++;
        table.values.insert(table.values.begin() + random.in(0, i), Qov8u(i));
    }
    return table;
}

struct Coding : Pass {
    Table dc, ac;
};

Coding randomCoding(Random& random, int round, bool allOnes)
{
    return {randomPass(random, Mode(round % 6)), randomTable(random, 17, allOnes),
            randomTable(random, 256, allOnes)};
}

// What passes down to the shift `al` bring of a block.
Block broughtBy(const Pass& pass, const Block& whole, int al)
{
    if (pass.mode == sequential) return whole;
    Block block{};
    if (pass.mode < acFirst) block[0] = Qov16s(whole[0] >> al << al);
    if (pass.mode >= acFirst)
        for (int k = pass.ss; k <= pass.se; k++) {
            const int place = zigzagOrder[k];
            block[place] = Qov16s(whole[place] / (1 << al) * (1 << al));
        }
    return block;
}

// What stands in a block before the pass, and after it.
Block before(const Pass& pass, const Block& whole)
{
    const bool refines = pass.mode == dcRefine || pass.mode == acRefine;
    return refines ? broughtBy(pass, whole, pass.al + 1) : Block{};
}
Block after(const Pass& pass, const Block& whole)
{
    return broughtBy(pass, whole, pass.al);
}

// What a call that runs dry makes of the block.
Block flat(const Pass& pass, const Block& given, Qov16s lastDC)
{
    Block block = given;
    if (pass.mode == sequential) block = {};
    if (pass.mode == one) block[0] = 0;
    if (pass.mode == sequential || pass.mode == dcFirst) block[0] = Qov16s(lastDC * (1 << pass.al));
    return block;
}

struct Spec : Opaque<QoviDecodeHuffmanSpec> {
    explicit Spec(const Table& t)
        : Opaque(qoviDecodeHuffmanSpecGetBufSize_JPEG_8u, qoviDecodeHuffmanSpecInit_JPEG_8u, t)
    {
    }
};

struct State : Opaque<QoviDecodeHuffmanState> {
    State() : Opaque(qoviDecodeHuffmanStateGetBufSize_JPEG_8u) { init(); }
    void init() { EXPECT_EQ(qovStsNoErr, qoviDecodeHuffmanStateInit_JPEG_8u(get())); }
};

const int noMarker = -7;

// A stream being decoded; it lies in a block of exactly its size.
class Decoder {
public:
    int pos = 0, marker = noMarker;
    Qov16s lastDC = 0;

    Decoder(const Coding& coding, const std::vector<Qov8u>& stream)
        : m_pass(coding), m_dc(coding.dc), m_ac(coding.ac), m_length(int(stream.size())),
          m_stream(new Qov8u[stream.size()])
    {
        std::copy(stream.begin(), stream.end(), m_stream.get());
    }

    QovStatus next(Block& b)
    {
        const Qov8u* const src = m_stream.get();
        Qov16s* const block = b.data();
        auto *const dc = m_dc.get(), *const ac = m_ac.get();
        auto* const state = m_state.moved();
        const int n = m_length, ss = m_pass.ss, se = m_pass.se, al = m_pass.al;
        switch (m_pass.mode) {
        case sequential:
            return qoviDecodeHuffman8x8_JPEG_1u16s_C1(src, n, &pos, block, &lastDC, &marker, dc, ac, state);
        case one: return qoviDecodeHuffmanOne_JPEG_1u16s_C1(src, n, &pos, block, &marker, dc, state);
        case dcFirst:
            return qoviDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(src, n, &pos, block, &lastDC, &marker, al, dc,
                                                              state);
        case dcRefine:
            return qoviDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(src, n, &pos, block, &marker, al, state);
        case acFirst:
            return qoviDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(src, n, &pos, block, &marker, ss, se, al, ac,
                                                              state);
        default:
            return qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(src, n, &pos, block, &marker, ss, se, al, ac,
                                                               state);
        }
    }

    void restart()
    {
        m_state.init();
        lastDC = 0;
        marker = noMarker;
    }

private:
    Pass m_pass;
    Spec m_dc, m_ac;
    State m_state;
    int m_length;
    std::unique_ptr<Qov8u[]> m_stream;
};

// Segments between restart markers, with fill bytes before some of these; a stream that ends with or without
// a marker. Catches any wrong bit, a position or a marker not told, bits that a segment leaves to the next.
TEST(HuffmanDecode, Segments)
{
    Random random;
    for (int round = 0; round < 120; round++) {
        const Coding pass = randomCoding(random, round, false);
        SCOPED_TRACE(about(pass));
        const bool longRuns = round % 6 >= 4 && round < 12;
        std::vector<std::vector<Block>> segments(random.in(1, 4));
        std::vector<Qov8u> stream;
        std::vector<size_t> ends;
        for (auto& blocks : segments) {
            blocks = longRuns ? std::vector<Block>(40000) : randomBlocks(random, pass, random.in(1, 60));
            if (longRuns) blocks[20] = blocks[39990] = randomBlocks(random, pass, 1)[0];
            Reference reference(pass, pass.dc, pass.ac);
            for (const Block& block : blocks) reference.code(block);
            reference.flush();
            stream.insert(stream.end(), reference.bytes.begin(), reference.bytes.end());
            stream.insert(stream.end(), random.oneIn(3) ? random.in(2, 9) : 1, 0xFF);
            stream.push_back(0xD7);
            ends.push_back(stream.size());
        }
        forEachLevel([&] {
            Decoder decoder(pass, stream);
            for (size_t s = 0; s < segments.size(); s++) {
                for (const Block& whole : segments[s]) {
                    Block block = before(pass, whole);
                    ASSERT_EQ(qovStsNoErr, decoder.next(block));
                    ASSERT_EQ(after(pass, whole), block);
                }
                // No code is ones alone, but a correction of DC may take the bits that fill the last byte.
                Block given = randomBlocks(random, pass, 1)[0], block;
                int calls = 0;
                do block = given;
                while (decoder.next(block) != qovStsMarker && ++calls < 8);
                EXPECT_EQ(pass.mode == dcRefine ? calls : 0, calls);
                EXPECT_EQ(flat(pass, given, decoder.lastDC), block);
                EXPECT_EQ(0xD7, decoder.marker);
                ASSERT_EQ(ends[s], size_t(decoder.pos));
                decoder.restart();
            }
        });
        if (HasFailure()) return;
    }
}

// The bits that the first `length` bytes hold; an FF whose next byte is missing holds none.
size_t bitsIn(const std::vector<Qov8u>& stream, size_t length)
{
    size_t bytes = 0;
    for (size_t i = 0; i < length; i++)
        if (stream[i] != 0xFF || i + 1 < length) bytes += stream[i] != 0 || i == 0 || stream[i - 1] != 0xFF;
    return bytes * 8;
}

// Cut behind every byte, by the end of the data or by a marker: every block whose bits are all there comes
// whole, and from the first other one on the continuation is flat. Catches a block taken for incomplete
// because of a look-ahead, parts of blocks left behind, D9 in the wrong case, codes whose bits are all ones
// misread.
TEST(HuffmanDecode, CutAnywhere)
{
    Random random;
    for (int round = 0; round < 36; round++) {
        const Coding pass = randomCoding(random, round, round % 2);
        SCOPED_TRACE(about(pass));
        const auto blocks = randomBlocks(random, pass, 12);
        Reference reference(pass, pass.dc, pass.ac);
        for (const Block& block : blocks) reference.code(block);
        reference.flush();
        const auto& whole = reference.bytes;
        for (size_t cut = 1; cut <= whole.size(); cut++) {
            const bool marked = random.oneIn(2) && whole[cut - 1] != 0xFF;
            SCOPED_TRACE(testing::Message() << "cut at " << cut << (marked ? ", marker" : ""));
            std::vector<Qov8u> stream(whole.begin(), whole.begin() + cut);
            const size_t bits = bitsIn(whole, cut);
            if (marked) stream.insert(stream.end(), {0xFF, 0xC4, 0x12, 0x34});
            forEachLevel([&] {
                Decoder decoder(pass, stream);
                bool dry = false;
                Qov16s lastDC = 0; // of the blocks that came whole
                for (size_t i = 0; i < blocks.size(); i++) {
                    Block block = before(pass, blocks[i]);
                    const Block given = block;
                    const QovStatus status = decoder.next(block);
                    dry = dry || reference.complete[i] > bits;
                    ASSERT_EQ(dry ? qovStsMarker : qovStsNoErr, status) << "block " << i;
                    ASSERT_EQ(dry ? flat(pass, given, lastDC) : after(pass, blocks[i]), block)
                        << "block " << i;
                    if (!dry) lastDC = Qov16s(blocks[i][0] >> pass.al);
                }
                if (!dry) return;
                const int atEnd = pass.mode == sequential ? 0xD9 : noMarker;
                EXPECT_EQ(marked ? 0xC4 : atEnd, decoder.marker);
                EXPECT_EQ(marked ? cut + 2 : cut - (whole[cut - 1] == 0xFF), size_t(decoder.pos));
            });
            if (HasFailure()) return;
        }
    }
}

// Bytes that no encoder makes, rich in FF and markers, tables with holes or empty: no read outside the
// stream (address sanitizer), every status is one of three, and all levels agree on everything.
TEST(HuffmanDecode, HostileBytes)
{
    Random random;
    for (int round = 0; round < 300; round++) {
        Coding pass = randomCoding(random, round, random.oneIn(2));
        for (Table* table : {&pass.dc, &pass.ac})
            for (auto& count : table->bits)
                if (random.oneIn(5)) count = Qov8u(count / 2);
        if (random.oneIn(10)) pass.dc.bits = pass.ac.bits = {};
        std::vector<Qov8u> stream(random.in(1, 300));
        const int often = random.in(2, 60);
        for (Qov8u& byte : stream)
            byte = random.oneIn(often) ? (random.oneIn(2) ? 0xFF : 0) : random.value<Qov8u>();
        std::vector<Block> blocks(40);
        for (Block& block : blocks)
            for (Qov16s& c : block) c = random.oneIn(3) ? random.value<Qov16s>() : Qov16s(0);

        std::vector<Qov32s> expected;
        forEachLevel([&] {
            std::vector<Qov32s> got;
            Decoder decoder(pass, stream);
            decoder.pos = random.oneIn(9) ? int(stream.size()) : 0;
            if (!expected.empty()) decoder.pos = expected[0];
            got.push_back(decoder.pos);
            QovStatus last = qovStsNoErr;
            for (Block block : blocks) {
                const QovStatus status = decoder.next(block);
                ASSERT_TRUE(status == qovStsNoErr || status == qovStsMarker || status == qovStsData)
                    << status;
                ASSERT_TRUE(last != qovStsMarker || status == qovStsMarker);
                last = status;
                got.insert(got.end(), block.begin(), block.end());
                got.insert(got.end(), {status, decoder.pos, decoder.marker, decoder.lastDC});
            }
            ASSERT_TRUE(expected.empty() || expected == got);
            expected = got;
        });
        if (HasFailure()) return;
    }
}

// Single faults in the data, with a table whose symbols and codes are plain: 4 bits each, the last code free.
TEST(HuffmanDecode, WrongData)
{
    struct Case {
        Mode mode;
        int ss, se;
        std::vector<int> symbols; // indices into the table; 15 is no code
        QovStatus status;
    };
    Table table;
    table.bits[3] = 15;
    //               0     1     2     3     4     5     6     7     8     9     10    11    12   13   14
    table.values = {0x00, 0x01, 0xF0, 0xF1, 0x10, 0x11, 0x31, 0x02, 0xE1, 0x20, 0x21, 0x41, 16, 17, 0xE0};
    const Case cases[] = {
        {sequential, 1, 63, {0, 0}, qovStsNoErr},
        {sequential, 1, 63, {15}, qovStsData},
        {sequential, 1, 63, {0, 15}, qovStsData},
        {sequential, 1, 63, {0, 2, 2, 2, 14}, qovStsNoErr}, // ends the block too
        {sequential, 1, 63, {12}, qovStsData},
        {sequential, 1, 63, {5}, qovStsData},              // a run in front of DC
        {sequential, 1, 63, {0, 2, 2, 2, 8}, qovStsNoErr}, // the last coefficient
        {sequential, 1, 63, {0, 2, 2, 2, 3}, qovStsData},
        {sequential, 1, 63, {0, 2, 2, 2, 2}, qovStsData},
        {one, 1, 63, {12}, qovStsNoErr},
        {one, 1, 63, {13}, qovStsData},
        {dcFirst, 1, 63, {12}, qovStsData},
        {acFirst, 3, 6, {6}, qovStsNoErr},
        {acFirst, 3, 6, {11}, qovStsData},
        {acFirst, 3, 6, {2}, qovStsData},
        {acFirst, 3, 6, {15}, qovStsData},
        {acRefine, 3, 6, {6}, qovStsNoErr},
        {acRefine, 3, 6, {11}, qovStsData},
        {acRefine, 3, 6, {7}, qovStsData}, // size 2
        {acRefine, 3, 6, {15}, qovStsData},
    };
    int i = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(i++);
        std::string bits;
        for (int s : c.symbols) {
            const int size = s < 12 ? table.values[s] & 15 : 0;
            bits += std::bitset<4>(unsigned(s)).to_string();
            if (size) bits += std::string(size_t(size) - 1, '0') + '1';
        }
        while (bits.size() < 320) bits += "01";
        std::vector<Qov8u> bytes;
        for (size_t at = 0; at < bits.size(); at += 8)
            bytes.push_back(Qov8u(std::bitset<8>(bits, at, 8).to_ulong()));
        const Coding pass{{c.mode, c.ss, c.se}, table, table};
        forEachLevel([&] {
            Decoder decoder(pass, bytes);
            Block block{};
            EXPECT_EQ(c.status, decoder.next(block));
        });
    }
}

// A run past the band passes the coefficients first: it runs dry when bits of theirs are missing.
TEST(HuffmanDecode, RefinementPastTheBand)
{
    Table table;
    table.bits[3] = 1;
    table.values = {0xF0};
    for (const int coefficients : {4, 5}) { // there are 4 bits behind the code
        const Coding pass{{acRefine, 3, 2 + coefficients}, table, table};
        const bool dry = coefficients > 4;
        forEachLevel([&] {
            Decoder decoder(pass, {0x0F});
            Block block{}, expected{};
            for (int k = 3; k < 3 + coefficients; k++) {
                block[zigzagOrder[k]] = 2;
                expected[zigzagOrder[k]] = dry ? 2 : 3;
            }
            EXPECT_EQ(dry ? qovStsMarker : qovStsData, decoder.next(block));
            EXPECT_EQ(expected, block);
        });
    }
}

// The kind of fault that is looked for first decides.
TEST(HuffmanDecode, Statuses)
{
    const Table noCodes;
    Spec spec(noCodes);
    State state;
    char unmarked[8192] = {};
    Qov8u src[8] = {};
    Block block{};
    int pos = 0, marker = 0;
    const auto refine = [&](const Qov8u* p, int length, int position, int ss, int se, int al, void* s) {
        pos = position;
        return qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(p, length, &pos, block.data(), &marker, ss, se, al,
                                                           spec.get(),
                                                           static_cast<QoviDecodeHuffmanState*>(s));
    };
    EXPECT_EQ(qovStsNullPtr, refine(nullptr, 0, 9, 0, 0, 14, unmarked));
    EXPECT_EQ(qovStsSize, refine(src, 0, 9, 0, 0, 14, unmarked));
    for (int position : {-1, 9}) EXPECT_EQ(qovStsBadArg, refine(src, 8, position, 1, 63, 0, unmarked));
    for (int al : {-1, 14}) EXPECT_EQ(qovStsBadArg, refine(src, 8, 0, 1, 63, al, unmarked));
    const int bands[][2] = {{0, 63}, {1, 64}, {5, 4}};
    for (auto [ss, se] : bands) EXPECT_EQ(qovStsBadArg, refine(src, 8, 0, ss, se, 0, unmarked));
    EXPECT_EQ(qovStsContext, refine(src, 8, 0, 1, 63, 0, unmarked));
    EXPECT_EQ(qovStsContext, refine(src, 8, 0, 1, 63, 0, spec.get()));
    EXPECT_EQ(qovStsData, refine(src, 8, 0, 1, 63, 0, state.get()));
    state.init();
    EXPECT_EQ(qovStsMarker, refine(src, 8, 8, 1, 63, 0, state.get()));
}

TEST(HuffmanDecode, Tables)
{
    checkTables(qoviDecodeHuffmanSpecInitAlloc_JPEG_8u, qoviDecodeHuffmanSpecFree_JPEG_8u);
}

} // namespace
