// Huffman decoders: streams made bit by bit after the flowcharts of ITU-T T.81 come back at every level, cut
// anywhere, with markers inside; other bytes do no harm and mean the same at every level.
#include "qov_testing.h"
#include "qovi.h"

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>

namespace {

typedef std::array<Qov16s, 64> Block; // zig-zag order in this file, but for the calls of the library

int naturalPlace(int k)
{
    static const std::array<int, 64> places = [] {
        std::array<int, 64> p{};
        for (int i = 0, row = 0, column = 0; i < 64; i++) {
            p[i] = row * 8 + column;
            const bool up = (row + column) % 2 == 0;
            if (up ? column == 7 : row == 7)
                up ? row++ : column++;
            else if (up ? row == 0 : column == 0)
                up ? column++ : row++;
            else
                up ? (row--, column++) : (row++, column--);
        }
        return p;
    }();
    return places[k];
}

struct Table {
    std::array<Qov8u, 16> bits{};
    std::vector<Qov8u> values;
    std::array<int, 256> code{}, length{}; // length 0: none

    void assign() // annex C
    {
        for (int n = 1, next = 0, i = 0; n <= 16; n++, next <<= 1)
            for (int j = 0; j < bits[n - 1]; j++, i++, next++) {
                code[values[i]] = next;
                length[values[i]] = n;
            }
    }
};

// Codes for these values, from a tree grown at random. The code of ones alone is used
// or not.
Table randomTable(Random& random, std::vector<Qov8u> values, bool allOnes)
{
    const size_t leaves = values.size() + (allOnes ? 0 : 1);
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
    for (size_t i = 0; i < values.size(); i++) table.bits[depths[i] - 1]++;
    for (size_t i = values.size(); i > 1; i--) std::swap(values[i - 1], values[random.in(0, int(i) - 1)]);
    table.values = values;
    table.assign();
    return table;
}

std::vector<Qov8u> firstValues(int n)
{
    std::vector<Qov8u> values(n);
    std::iota(values.begin(), values.end(), Qov8u(0));
    return values;
}

class BitWriter {
public:
    std::vector<Qov8u> bytes;

    void put(int value, int n)
    {
        for (int i = n - 1; i >= 0; i--) {
            m_last = m_last << 1 | (value >> i & 1);
            if (++m_used % 8) continue;
            bytes.push_back(Qov8u(m_last));
            if ((m_last & 0xFF) == 0xFF) bytes.push_back(0);
        }
    }
    void pad()
    {
        while (m_used % 8) put(1, 1);
    }
    size_t used() const { return m_used; } // bits, without stuffed bytes

private:
    int m_last = 0;
    size_t m_used = 0;
};

enum class Kind { sequential, one, dcFirst, dcRefine, acFirst, acRefine };
const Kind kinds[] = {Kind::sequential, Kind::one,     Kind::dcFirst,
                      Kind::dcRefine,   Kind::acFirst, Kind::acRefine};

struct Pass {
    Kind kind;
    int ss, se, al;
    Table dc, ac;
};

int sizeOf(int value)
{
    int size = 0;
    for (int magnitude = std::abs(value); magnitude; magnitude >>= 1) size++;
    return size;
}

// One segment of a pass, and behind which bit each block is complete.
class Encoder {
public:
    BitWriter out;
    std::vector<size_t> complete;

    explicit Encoder(const Pass& pass) : m_pass(pass) {}

    void add(const Block& block)
    {
        const size_t index = complete.size();
        complete.push_back(0);
        switch (m_pass.kind) {
        case Kind::sequential:
            difference(block[0]);
            band(block);
            break;
        case Kind::one: value(m_pass.dc, block[0] == -32768 ? 32768 : block[0], 0); break;
        case Kind::dcFirst: difference(block[0] >> m_pass.al); break;
        case Kind::dcRefine: out.put(block[0] >> m_pass.al, 1); break;
        case Kind::acFirst: band(block); break;
        case Kind::acRefine: refine(block); break;
        }
        if (m_run.empty() || m_run.back().first != index) complete[index] = out.used();
    }

    void finish()
    {
        endRun();
        out.pad();
    }

private:
    void symbol(const Table& table, int s)
    {
        ASSERT_NE(0, table.length[s]) << "no code for " << s;
        out.put(table.code[s], table.length[s]);
    }
    void value(const Table& table, int v, int run)
    {
        const int size = sizeOf(v);
        symbol(table, run << 4 | size);
        if (size < 16) out.put(v < 0 ? v - 1 : v, size);
    }
    void difference(int dc)
    {
        value(m_pass.dc, Qov16s(dc - m_lastDC), 0);
        m_lastDC = dc;
    }

    void band(const Block& block) // figures F.2 and G.3
    {
        int run = 0;
        for (int k = m_pass.ss; k <= m_pass.se; k++) {
            const int v = block[k] / (1 << m_pass.al);
            if (v == 0) {
                run++;
                continue;
            }
            endRun();
            for (; run > 15; run -= 16) symbol(m_pass.ac, 0xF0);
            value(m_pass.ac, v, run);
            run = 0;
        }
        if (run == 0) return;
        if (m_pass.kind == Kind::sequential)
            symbol(m_pass.ac, 0);
        else
            joinRun({});
    }

    void refine(const Block& block) // figures G.7 to G.9
    {
        int last = 0, run = 0;
        for (int k = m_pass.ss; k <= m_pass.se; k++)
            if (std::abs(block[k]) >> m_pass.al == 1) last = k;
        std::vector<int> corrections;
        auto correct = [&] {
            for (int bit : corrections) out.put(bit, 1);
            corrections.clear();
        };
        for (int k = m_pass.ss; k <= m_pass.se; k++) {
            const int magnitude = std::abs(block[k]) >> m_pass.al;
            if (magnitude > 1) {
                corrections.push_back(magnitude & 1);
                continue;
            }
            if (magnitude == 0) {
                if (++run < 16 || k > last) continue;
                endRun();
                symbol(m_pass.ac, 0xF0);
                run = 0;
            } else {
                endRun();
                symbol(m_pass.ac, run << 4 | 1);
                out.put(block[k] > 0, 1);
                run = 0;
            }
            correct();
        }
        if (run || !corrections.empty()) joinRun(corrections);
    }

    void joinRun(const std::vector<int>& corrections)
    {
        m_run.push_back({complete.size() - 1, corrections});
        if (m_run.size() == 32767) endRun();
    }
    void endRun()
    {
        if (m_run.empty()) return;
        const int exponent = sizeOf(int(m_run.size())) - 1;
        symbol(m_pass.ac, exponent << 4);
        out.put(int(m_run.size()), exponent);
        for (const auto& [index, corrections] : m_run) {
            for (int bit : corrections) out.put(bit, 1);
            complete[index] = out.used();
        }
        m_run.clear();
    }

    const Pass& m_pass;
    int m_lastDC = 0;
    std::vector<std::pair<size_t, std::vector<int>>> m_run;
};

// What stands in a block before the pass, and after it.
Block before(const Pass& pass, const Block& whole)
{
    Block block{};
    if (pass.kind == Kind::dcRefine) block[0] = Qov16s(whole[0] >> (pass.al + 1) << (pass.al + 1));
    if (pass.kind == Kind::acRefine)
        for (int k = pass.ss; k <= pass.se; k++)
            block[k] = Qov16s(whole[k] / (2 << pass.al) * (2 << pass.al));
    return block;
}

Block after(const Pass& pass, const Block& whole)
{
    Block block{};
    switch (pass.kind) {
    case Kind::sequential: return whole;
    case Kind::one: block[0] = whole[0]; break;
    case Kind::dcFirst:
    case Kind::dcRefine: block[0] = Qov16s(whole[0] >> pass.al << pass.al); break;
    default:
        for (int k = pass.ss; k <= pass.se; k++)
            block[k] = Qov16s(whole[k] / (1 << pass.al) * (1 << pass.al));
    }
    return block;
}

Pass randomPass(Random& random, Kind kind, bool allOnes = false)
{
    Pass pass{kind, 1, 63, 0, {}, {}};
    if (kind != Kind::sequential && kind != Kind::one) pass.al = random.oneIn(2) ? 0 : random.in(0, 13);
    if (kind == Kind::acFirst || kind == Kind::acRefine) {
        pass.ss = random.oneIn(2) ? 1 : random.in(1, 63);
        pass.se = random.oneIn(2) ? 63 : random.in(pass.ss, 63);
    }
    pass.dc = randomTable(random, firstValues(17), allOnes);
    pass.ac = randomTable(random, firstValues(256), allOnes);
    return pass;
}

std::vector<Block> randomBlocks(Random& random, const Pass& pass, int n)
{
    std::vector<Block> blocks(n, Block{});
    for (Block& block : blocks) {
        const int density = random.in(0, 3) ? random.in(0, 20) : random.in(0, 100), top = random.in(1, 32767);
        const bool solid = random.oneIn(6); // no zeros, of one size but for one
        for (int k = 0; k < 64; k++) {
            if (solid)
                block[k] = Qov16s((k == 50 ? 1 : random.in(2, 3)) * (random.oneIn(2) ? 1 : -1) *
                                  (1 << std::min(pass.al, 13)));
            if (solid || (random.in(1, 100) > density && k > 0)) continue;
            block[k] = Qov16s(random.in(0, 2) ? random.in(-9, 9) * (1 << std::min(pass.al, 11))
                                              : random.in(-top, top));
        }
        if (pass.kind == Kind::sequential) block[0] = Qov16s(block[0] / 2); // no difference of category 16
        if (pass.kind == Kind::one && random.oneIn(4)) block[0] = random.oneIn(2) ? -32768 : 32767;
        if (pass.kind == Kind::dcFirst && pass.al == 0) block[0] = Qov16s(block[0] / 2);
    }
    return blocks;
}

// A table, or a state, at an odd address of a block of exactly its size.
class Opaque {
public:
    explicit Opaque(const Table& table)
    {
        make(qoviDecodeHuffmanSpecGetBufSize_JPEG_8u);
        EXPECT_EQ(qovStsNoErr, qoviDecodeHuffmanSpecInit_JPEG_8u(table.bits.data(), table.values.data(),
                                                                 as<QoviDecodeHuffmanSpec>()));
    }
    Opaque()
    {
        make(qoviDecodeHuffmanStateGetBufSize_JPEG_8u);
        init();
    }
    void init() { EXPECT_EQ(qovStsNoErr, qoviDecodeHuffmanStateInit_JPEG_8u(as<QoviDecodeHuffmanState>())); }

    template <class T>
    T* as()
    {
        return reinterpret_cast<T*>(m_bytes.get() + 1);
    }

private:
    void make(QovStatus getSize(int*))
    {
        int size = 0;
        EXPECT_EQ(qovStsNoErr, getSize(&size));
        m_bytes.reset(new char[size + 1]);
    }
    std::unique_ptr<char[]> m_bytes;
};

const int noMarker = -7;

// A stream being decoded; it lies in a block of exactly its size.
class Decoder {
public:
    int pos = 0, marker = noMarker;
    Qov16s lastDC = 0;
    Opaque state;

    Decoder(const Pass& pass, const std::vector<Qov8u>& stream)
        : m_pass(pass), m_dc(pass.dc), m_ac(pass.ac), m_length(int(stream.size())),
          m_stream(new Qov8u[stream.size()])
    {
        std::copy(stream.begin(), stream.end(), m_stream.get());
    }

    QovStatus next(Block& block)
    {
        Qov16s natural[64];
        for (int k = 0; k < 64; k++) natural[naturalPlace(k)] = block[k];
        const QovStatus status = call(natural);
        for (int k = 0; k < 64; k++) block[k] = natural[naturalPlace(k)];
        return status;
    }

    void restart()
    {
        state.init();
        lastDC = 0;
        marker = noMarker;
    }

private:
    QovStatus call(Qov16s* block)
    {
        const Qov8u* src = m_stream.get();
        auto* s = state.as<QoviDecodeHuffmanState>();
        auto *dc = m_dc.as<QoviDecodeHuffmanSpec>(), *ac = m_ac.as<QoviDecodeHuffmanSpec>();
        const int n = m_length, al = m_pass.al;
        switch (m_pass.kind) {
        case Kind::sequential:
            return qoviDecodeHuffman8x8_JPEG_1u16s_C1(src, n, &pos, block, &lastDC, &marker, dc, ac, s);
        case Kind::one: return qoviDecodeHuffmanOne_JPEG_1u16s_C1(src, n, &pos, block, &marker, dc, s);
        case Kind::dcFirst:
            return qoviDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(src, n, &pos, block, &lastDC, &marker, al, dc,
                                                              s);
        case Kind::dcRefine:
            return qoviDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(src, n, &pos, block, &marker, al, s);
        case Kind::acFirst:
            return qoviDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(src, n, &pos, block, &marker, m_pass.ss,
                                                              m_pass.se, al, ac, s);
        case Kind::acRefine:
            return qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(src, n, &pos, block, &marker, m_pass.ss,
                                                               m_pass.se, al, ac, s);
        }
        return qovStsErr;
    }

    Pass m_pass;
    Opaque m_dc, m_ac;
    int m_length;
    std::unique_ptr<Qov8u[]> m_stream;
};

// What a call that runs dry makes of the block.
Block flat(const Pass& pass, const Block& given, Qov16s lastDC)
{
    Block block = given;
    if (pass.kind == Kind::sequential) block = Block{};
    if (pass.kind == Kind::one) block[0] = 0;
    if (pass.kind == Kind::sequential || pass.kind == Kind::dcFirst)
        block[0] = Qov16s(lastDC * (1 << pass.al));
    return block;
}

std::string about(const Pass& p)
{
    return "kind " + std::to_string(int(p.kind)) + ", band " + std::to_string(p.ss) + " to " +
           std::to_string(p.se) + ", al " + std::to_string(p.al);
}

// Segments between restart markers, with fill bytes before some of these; a stream that ends with or without
// a marker. Catches any wrong bit, a position or a marker not told, bits that a segment leaves to the next.
TEST(HuffmanDecode, Segments)
{
    Random random;
    for (int round = 0; round < 120; round++) {
        const Pass pass = randomPass(random, kinds[round % 6]);
        SCOPED_TRACE(about(pass));
        const bool longRuns = round % 6 >= 4 && round < 12;
        std::vector<std::vector<Block>> segments(random.in(1, 4));
        std::vector<Qov8u> stream;
        std::vector<size_t> ends;
        for (auto& blocks : segments) {
            blocks = longRuns ? std::vector<Block>(40000) : randomBlocks(random, pass, random.in(1, 60));
            if (longRuns) blocks[20] = blocks[39990] = randomBlocks(random, pass, 1)[0];
            Encoder encoder(pass);
            for (const Block& block : blocks) encoder.add(block);
            encoder.finish();
            stream.insert(stream.end(), encoder.out.bytes.begin(), encoder.out.bytes.end());
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
                EXPECT_EQ(pass.kind == Kind::dcRefine ? calls : 0, calls);
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
        const Pass pass = randomPass(random, kinds[round % 6], round % 2);
        SCOPED_TRACE(about(pass));
        const auto blocks = randomBlocks(random, pass, 12);
        Encoder encoder(pass);
        for (const Block& block : blocks) encoder.add(block);
        encoder.finish();
        const auto& whole = encoder.out.bytes;
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
                    dry = dry || encoder.complete[i] > bits;
                    ASSERT_EQ(dry ? qovStsMarker : qovStsNoErr, status) << "block " << i;
                    ASSERT_EQ(dry ? flat(pass, given, lastDC) : after(pass, blocks[i]), block)
                        << "block " << i;
                    if (!dry) lastDC = Qov16s(blocks[i][0] >> pass.al);
                }
                if (!dry) return;
                const int atEnd = pass.kind == Kind::sequential ? 0xD9 : noMarker;
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
        Pass pass = randomPass(random, kinds[round % 6], random.oneIn(2));
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
        Kind kind;
        int ss, se;
        std::vector<int> symbols; // indices into the table; 15 is no code
        QovStatus status;
    };
    Table table;
    table.bits[3] = 15;
    //               0     1     2     3     4     5     6     7     8     9     10    11    12   13   14
    table.values = {0x00, 0x01, 0xF0, 0xF1, 0x10, 0x11, 0x31, 0x02, 0xE1, 0x20, 0x21, 0x41, 16, 17, 255};
    table.assign();
    const Case cases[] = {
        {Kind::sequential, 1, 63, {0, 0}, qovStsNoErr},
        {Kind::sequential, 1, 63, {15}, qovStsData},
        {Kind::sequential, 1, 63, {0, 15}, qovStsData},
        {Kind::sequential, 1, 63, {12}, qovStsData},
        {Kind::sequential, 1, 63, {5}, qovStsData},              // a run in front of DC
        {Kind::sequential, 1, 63, {0, 2, 2, 2, 8}, qovStsNoErr}, // the last coefficient
        {Kind::sequential, 1, 63, {0, 2, 2, 2, 3}, qovStsData},
        {Kind::sequential, 1, 63, {0, 2, 2, 2, 2}, qovStsData},
        {Kind::one, 1, 63, {12}, qovStsNoErr},
        {Kind::one, 1, 63, {13}, qovStsData},
        {Kind::dcFirst, 1, 63, {12}, qovStsData},
        {Kind::acFirst, 3, 6, {6}, qovStsNoErr},
        {Kind::acFirst, 3, 6, {11}, qovStsData},
        {Kind::acFirst, 3, 6, {2}, qovStsData},
        {Kind::acFirst, 3, 6, {15}, qovStsData},
        {Kind::acRefine, 3, 6, {6}, qovStsNoErr},
        {Kind::acRefine, 3, 6, {11}, qovStsData},
        {Kind::acRefine, 3, 6, {7}, qovStsData}, // size 2
        {Kind::acRefine, 3, 6, {15}, qovStsData},
    };
    int i = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(i++);
        BitWriter out;
        for (int s : c.symbols) {
            out.put(s, 4);
            if (s < 12 && table.values[s] & 15) out.put(1, table.values[s] & 15);
        }
        for (int padding = 0; padding < 40; padding++) out.put(0x5A, 8);
        const Pass pass{c.kind, c.ss, c.se, 0, table, table};
        forEachLevel([&] {
            Decoder decoder(pass, out.bytes);
            Block block{};
            EXPECT_EQ(c.status, decoder.next(block));
        });
    }
}

TEST(HuffmanDecode, TablesAndStatuses)
{
    const Qov8u values[256] = {};
    struct Case {
        std::vector<int> bits;
        QovStatus status;
    };
    const Case cases[] = {{{}, qovStsNoErr},
                          {{2}, qovStsNoErr},
                          {{3}, qovStsTable},
                          {{1, 2}, qovStsNoErr},
                          {{1, 3}, qovStsTable},
                          {{2, 0, 0, 1}, qovStsTable},
                          {{0, 0, 0, 0, 0, 0, 0, 255, 2}, qovStsTable},
                          {{0, 0, 0, 0, 0, 0, 0, 255, 1}, qovStsNoErr},
                          {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 200, 56}, qovStsNoErr},
                          {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 200, 57}, qovStsTable}};
    for (const Case& c : cases) {
        Qov8u bits[16] = {};
        std::copy(c.bits.begin(), c.bits.end(), bits);
        QoviDecodeHuffmanSpec* spec = nullptr;
        EXPECT_EQ(c.status, qoviDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, values, &spec))
            << testing::PrintToString(c.bits);
        EXPECT_EQ(c.status == qovStsNoErr, spec != nullptr);
        if (spec) {
            EXPECT_EQ(qovStsNoErr, qoviDecodeHuffmanSpecFree_JPEG_8u(spec));
        }
    }
    EXPECT_EQ(qovStsNullPtr, qoviDecodeHuffmanSpecFree_JPEG_8u(nullptr));

    // The kind of error that comes first decides.
    Table table; // no codes at all; a pointer all the same
    table.values = {0};
    Opaque spec(table), state;
    char unmarked[8192] = {};
    Qov8u src[8] = {};
    Qov16s block[64] = {};
    int pos = 0, marker = 0;
    auto refine = [&](const Qov8u* p, int length, int position, int ss, int se, int al, void* s) {
        pos = position;
        return qoviDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(p, length, &pos, block, &marker, ss, se, al,
                                                           spec.as<QoviDecodeHuffmanSpec>(),
                                                           static_cast<QoviDecodeHuffmanState*>(s));
    };
    void* good = state.as<void>();
    EXPECT_EQ(qovStsNullPtr, refine(nullptr, 0, 9, 0, 0, 14, unmarked));
    EXPECT_EQ(qovStsSize, refine(src, 0, 9, 0, 0, 14, unmarked));
    for (int position : {-1, 9}) EXPECT_EQ(qovStsBadArg, refine(src, 8, position, 1, 63, 0, unmarked));
    for (int al : {-1, 14}) EXPECT_EQ(qovStsBadArg, refine(src, 8, 0, 1, 63, al, unmarked));
    const int bands[][2] = {{0, 63}, {1, 64}, {5, 4}};
    for (auto [ss, se] : bands) EXPECT_EQ(qovStsBadArg, refine(src, 8, 0, ss, se, 0, unmarked));
    EXPECT_EQ(qovStsContext, refine(src, 8, 0, 1, 63, 0, unmarked));
    EXPECT_EQ(qovStsContext, refine(src, 8, 0, 1, 63, 0, spec.as<void>()));
    EXPECT_EQ(qovStsData, refine(src, 8, 0, 1, 63, 0, good));
    EXPECT_EQ(qovStsMarker, refine(src, 8, 8, 1, 63, 0, (state.init(), good)));
}

} // namespace
