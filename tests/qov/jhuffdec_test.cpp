// Huffman decoders: streams of the coder of reference come back at every level, cut anywhere, with markers
// inside; other bytes do no harm and mean the same at every level.
#include "jhuff_reference.h"

#include <bitset>

namespace {

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

const int noMarker = -7;

QovStatus decode(const Pass& p, const Qov8u* src, int srcLen, int* pos, Qov16s* block, Qov16s* last,
                 int* marker, const QoviDecodeHuffmanSpec* dc, const QoviDecodeHuffmanSpec* ac,
                 QoviDecodeHuffmanState* state)
{
    switch (p.mode) {
    case sequential:
        return qoviDecodeHuffman8x8_JPEG_1u16s_C1(src, srcLen, pos, block, last, marker, dc, ac, state);
    case one: return qoviDecodeHuffmanOne_JPEG_1u16s_C1(src, srcLen, pos, block, marker, dc, state);
    case dcFirst:
        return qoviDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(src, srcLen, pos, block, last, marker, p.al, dc,
                                                          state);
    case dcRefine:
        return qoviDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(src, srcLen, pos, block, marker, p.al, state);
    case acFirst:
        return qoviDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(src, srcLen, pos, block, marker, p.ss, p.se, p.al,
                                                          ac, state);
    default:
        return qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(src, srcLen, pos, block, marker, p.ss, p.se, p.al,
                                                           ac, state);
    }
}

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
        return decode(m_pass, m_stream.get(), m_length, &pos, b.data(), &lastDC, &marker, m_dc.get(),
                      m_ac.get(), m_state.moved());
    }
    void restart()
    {
        m_state.init();
        lastDC = 0;
        marker = noMarker;
    }

private:
    Pass m_pass;
    DecSpec m_dc, m_ac;
    DecState m_state;
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
    Table table;
    table.bits[3] = 15;
    //               0     1     2     3     4     5     6     7     8     9     10    11    12   13   14
    table.values = {0x00, 0x01, 0xF0, 0xF1, 0x10, 0x11, 0x31, 0x02, 0xE1, 0x20, 0x21, 0x41, 16, 17, 0xE0};
    typedef std::vector<std::vector<int>> Codes; // indices into the table; 15 is no code
    struct Case {
        Mode mode;
        Codes good, bad;
    };
    const Case cases[] = {
        // E0 ends the block as 0 does; E1 makes the last coefficient. 11 is a run in front of DC.
        {sequential,
         {{0, 0}, {0, 2, 2, 2, 14}, {0, 2, 2, 2, 8}},
         {{15}, {0, 15}, {12}, {5}, {0, 2, 2, 2, 3}, {0, 2, 2, 2, 2}}},
        {one, {{12}}, {{13}}},
        {dcFirst, {}, {{12}}},
        {acFirst, {{6}}, {{11}, {2}, {15}}},
        {acRefine, {{6}}, {{11}, {7}, {15}}}, // 02: size 2
    };
    const auto check = [&](Mode mode, const Codes& codes, QovStatus expected) {
        for (const auto& symbols : codes) {
            SCOPED_TRACE(about({mode}) + ": " + testing::PrintToString(symbols));
            std::string bits;
            for (int s : symbols) {
                const int size = s < 12 ? table.values[s] & 15 : 0;
                bits += std::bitset<4>(unsigned(s)).to_string();
                if (size) bits += std::string(size_t(size) - 1, '0') + '1';
            }
            while (bits.size() < 320) bits += "01";
            std::vector<Qov8u> bytes;
            for (size_t at = 0; at < bits.size(); at += 8)
                bytes.push_back(Qov8u(std::bitset<8>(bits, at, 8).to_ulong()));
            Decoder decoder({{mode, 3, 6}, table, table}, bytes);
            Block block{};
            EXPECT_EQ(expected, decoder.next(block));
        }
    };
    forEachLevel([&] {
        for (const Case& c : cases) {
            check(c.mode, c.good, qovStsNoErr);
            check(c.mode, c.bad, qovStsData);
        }
    });
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

TEST(HuffmanDecode, Statuses)
{
    DecSpec spec({{2}, {0, 1}});
    DecState state;
    const Qov8u src[9] = {};
    Block block{};
    const auto call = [&](const Pass& p, int length, int pos, const QoviDecodeHuffmanSpec* dc,
                          const QoviDecodeHuffmanSpec* ac, QoviDecodeHuffmanState* s) {
        Qov16s last = 0;
        int marker = 0;
        return decode(p, src, length, &pos, block.data(), &last, &marker, dc, ac, s);
    };
    checkStatuses(spec.get(), state.get(), call);
    state.init();
    EXPECT_EQ(qovStsMarker, call({acRefine}, 9, 9, nullptr, spec.get(), state.get())); // a position
}

TEST(HuffmanDecode, Tables)
{
    checkTables(qoviDecodeHuffmanSpecInitAlloc_JPEG_8u, qoviDecodeHuffmanSpecFree_JPEG_8u);
}

} // namespace
