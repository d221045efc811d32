// Huffman coding of rows and of blocks without a state: the same bytes and values as of the coders that keep
// a state, on any position, cut anywhere, and in no byte more than the code takes.
#include "qov_testing.h"
#include "qovi.h"

#include <algorithm>
#include <array>
#include <climits>

namespace {

typedef std::array<Qov16s, 64> Block;

struct Table {
    Qov8u bits[16] = {}, values[256] = {};
};

// A table for symbols below `count`, with long codes and short ones.
Table randomTable(Random& random, const std::vector<int>& symbols)
{
    int statistics[256] = {};
    for (int symbol : symbols) statistics[symbol] = 1 << random.in(0, 20);
    Table t;
    EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanRawTableInit_JPEG_8u(statistics, t.bits, t.values));
    return t;
}

std::vector<int> categories(int highest)
{
    std::vector<int> all;
    for (int c = 0; c <= highest; c++) all.push_back(c);
    return all;
}

std::vector<int> acSymbols()
{
    std::vector<int> all = {0x00, 0xF0};
    for (int run = 0; run < 16; run++)
        for (int size = 1; size < 16; size++) all.push_back(run * 16 + size);
    return all;
}

// Tables and states of both directions, at odd addresses.
template <class T>
class Opaque {
public:
    template <class GetSize, class Init>
    Opaque(GetSize getSize, Init init)
    {
        int size = 0;
        EXPECT_EQ(qovStsNoErr, getSize(&size));
        m_bytes.resize(size_t(size) + 3);
        EXPECT_EQ(qovStsNoErr, init(get()));
    }
    T* get() { return reinterpret_cast<T*>(m_bytes.data() + 3); }
    operator T*() { return get(); }

private:
    std::vector<Qov8u> m_bytes;
};

struct EncSpec : Opaque<QoviEncodeHuffmanSpec> {
    explicit EncSpec(const Table& t)
        : Opaque(qoviEncodeHuffmanSpecGetBufSize_JPEG_8u, [&](QoviEncodeHuffmanSpec* spec) {
              return qoviEncodeHuffmanSpecInit_JPEG_8u(t.bits, t.values, spec);
          })
    {
    }
};
struct DecSpec : Opaque<QoviDecodeHuffmanSpec> {
    explicit DecSpec(const Table& t)
        : Opaque(qoviDecodeHuffmanSpecGetBufSize_JPEG_8u, [&](QoviDecodeHuffmanSpec* spec) {
              return qoviDecodeHuffmanSpecInit_JPEG_8u(t.bits, t.values, spec);
          })
    {
    }
};
struct EncState : Opaque<QoviEncodeHuffmanState> {
    EncState() : Opaque(qoviEncodeHuffmanStateGetBufSize_JPEG_8u, qoviEncodeHuffmanStateInit_JPEG_8u) {}
};
struct DecState : Opaque<QoviDecodeHuffmanState> {
    DecState() : Opaque(qoviDecodeHuffmanStateGetBufSize_JPEG_8u, qoviDecodeHuffmanStateInit_JPEG_8u) {}
};

// ---- Rows

struct Rows {
    static const int most = 4;

    int width, rows;
    std::vector<std::vector<Qov16s>> samples;
    std::vector<EncSpec> encSpecs;
    std::vector<DecSpec> decSpecs;
    const Qov16s* planes[most] = {};
    const QoviEncodeHuffmanSpec* enc[most] = {};
    const QoviDecodeHuffmanSpec* dec[most] = {};

    Rows(Random& random, int w, int n) : width(w), rows(n)
    {
        for (int r = 0; r < rows; r++) {
            samples.emplace_back(width);
            for (Qov16s& s : samples.back()) s = Qov16s(random.value<Qov16s>() >> random.in(0, 15));
            const Table table = randomTable(random, categories(16));
            encSpecs.emplace_back(table);
            decSpecs.emplace_back(table);
        }
        for (int r = 0; r < rows; r++) {
            planes[r] = samples[r].data();
            enc[r] = encSpecs[r];
            dec[r] = decSpecs[r];
        }
    }

    // Sample by sample, and flushed.
    std::vector<Qov8u> oneByOne() const
    {
        std::vector<Qov8u> bytes(size_t(width) * rows * 8 + 8);
        const int length = int(bytes.size());
        int pos = 0;
        EncState state;
        for (int x = 0; x < width; x++)
            for (int r = 0; r < rows; r++)
                EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanOne_JPEG_16s1u_C1(planes[r] + x, bytes.data(), length,
                                                                          &pos, enc[r], state, 0));
        EXPECT_EQ(qovStsNoErr,
                  qoviEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, bytes.data(), length, &pos, nullptr, state, 1));
        bytes.resize(size_t(pos));
        return bytes;
    }
};

TEST(HuffmanRow, CodesAsSampleBySampleUpToTheLastByte)
{
    Random random;
    forEachLevel([&] {
        for (int i = 0; i < 200; i++) {
            const Rows rows(random, random.in(1, 150), random.in(1, 4));
            const std::vector<Qov8u> expected = rows.oneByOne();
            const int needed = int(expected.size()), length = needed - random.in(0, 1);
            if (length < 1) continue;
            Guarded guarded(size_t(length), size_t(random.in(0, 7)));
            Qov8u* const bytes = guarded.as<Qov8u>();
            EncState state;
            int pos = 0;
            QovStatus status = qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(rows.planes, rows.width, rows.rows, bytes,
                                                                    length, &pos, rows.enc, state, 0);
            if (status == qovStsNoErr)
                status = qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(nullptr, 0, 0, bytes, length, &pos, nullptr,
                                                              state, 1);
            ASSERT_EQ(length < needed ? qovStsDstFull : qovStsNoErr, status);
            ASSERT_EQ(length, pos);
            ASSERT_TRUE(std::equal(bytes, bytes + length, expected.begin()));
            ASSERT_TRUE(guarded.intact());
            if (status != qovStsNoErr) {
                ASSERT_EQ(qovStsDstFull,
                          qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(rows.planes, rows.width, rows.rows, bytes,
                                                               length, &pos, rows.enc, state, 0));
            }
        }
    });
}

TEST(HuffmanRow, DecodesAsSampleBySampleWhateverTheBytesAre)
{
    Random random;
    forEachLevel([&] {
        for (int i = 0; i < 300; i++) {
            const Rows rows(random, random.in(1, 150), random.in(1, 4));
            std::vector<Qov8u> bytes = rows.oneByOne();
            const int whole = i % 3 == 0;
            if (!whole) {
                for (int n = random.in(0, 3); n > 0; n--)
                    bytes[size_t(random.in(0, int(bytes.size()) - 1))] = random.value<Qov8u>();
                bytes.resize(size_t(random.in(1, int(bytes.size()))));
            }
            const int length = int(bytes.size());

            std::vector<Qov16s> expected(size_t(rows.width) * rows.rows);
            QovStatus expectedStatus = qovStsNoErr;
            int onePos = 0, oneMarker = -1, pos = 0, marker = -1;
            DecState oneState, state;
            for (size_t k = 0; k < expected.size() && expectedStatus == qovStsNoErr; k++)
                expectedStatus =
                    qoviDecodeHuffmanOne_JPEG_1u16s_C1(bytes.data(), length, &onePos, &expected[k],
                                                       &oneMarker, rows.dec[k % rows.rows], oneState);

            std::vector<Guarded> guards;
            Qov16s* planes[Rows::most] = {};
            for (int r = 0; r < rows.rows; r++) guards.emplace_back(size_t(rows.width) * 2, 2);
            for (int r = 0; r < rows.rows; r++) planes[r] = guards[r].as<Qov16s>();
            const QovStatus status = qoviDecodeHuffmanRow_JPEG_1u16s_C1P4(
                bytes.data(), length, &pos, planes, rows.width, rows.rows, &marker, rows.dec, state);
            ASSERT_EQ(expectedStatus, status);
            if (whole) {
                ASSERT_EQ(qovStsNoErr, status);
            }
            for (int r = 0; r < rows.rows; r++) {
                ASSERT_TRUE(guards[r].intact());
                for (int x = 0; x < rows.width; x++) {
                    ASSERT_EQ(expected[size_t(x) * rows.rows + r], planes[r][x]) << x << " of row " << r;
                    if (whole) {
                        ASSERT_EQ(rows.planes[r][x], planes[r][x]);
                    }
                }
            }
            if (marker != -1) { // how far a reader looks ahead is its own affair
                ASSERT_EQ(oneMarker, marker);
            }
            if (status == qovStsMarker) {
                ASSERT_EQ(oneMarker, marker);
                ASSERT_EQ(qovStsMarker,
                          qoviDecodeHuffmanRow_JPEG_1u16s_C1P4(bytes.data(), length, &pos, planes, rows.width,
                                                               rows.rows, &marker, rows.dec, state));
                for (int r = 0; r < rows.rows; r++)
                    ASSERT_EQ(rows.width, std::count(planes[r], planes[r] + rows.width, 0));
            }
        }
    });
}

TEST(HuffmanRow, RefusesAValueWithoutCode)
{
    Random random;
    const EncSpec small(randomTable(random, categories(3)));
    EncSpec spec = small;
    const QoviEncodeHuffmanSpec* const specs[4] = {spec, spec};
    const Qov16s good[2] = {1, 2}, bad[2] = {7, 8};
    const Qov16s* const planes[4] = {good, bad};
    Qov8u bytes[16];
    int pos = 0;
    forEachLevel([&] {
        EncState state;
        EXPECT_EQ(qovStsRange,
                  qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(planes, 2, 2, bytes, 16, &pos, specs, state, 0));
        EXPECT_EQ(qovStsNoErr,
                  qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(planes, 1, 2, bytes, 16, &pos, specs, state, 0));
    });
}

// ---- Blocks without a state

struct Blocks {
    std::vector<Block> blocks;
    EncSpec encDC, encAC;
    DecSpec decDC, decAC;

    Blocks(Random& random, int n)
        : Blocks(random, n, randomTable(random, categories(15)), randomTable(random, acSymbols()))
    {
    }

    // With a state, and flushed.
    std::vector<Qov8u> stateful()
    {
        std::vector<Qov8u> bytes(blocks.size() * 600 + 8);
        const int length = int(bytes.size());
        int pos = 0;
        Qov16s lastDC = 0;
        EncState state;
        for (const Block& block : blocks)
            EXPECT_EQ(qovStsNoErr, qoviEncodeHuffman8x8_JPEG_16s1u_C1(block.data(), bytes.data(), length,
                                                                      &pos, &lastDC, encDC, encAC, state, 0));
        EXPECT_EQ(qovStsNoErr, qoviEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, bytes.data(), length, &pos,
                                                                  nullptr, nullptr, nullptr, state, 1));
        bytes.resize(size_t(pos));
        return bytes;
    }

private:
    Blocks(Random& random, int n, const Table& dc, const Table& ac)
        : blocks(size_t(n)), encDC(dc), encAC(ac), decDC(dc), decAC(ac)
    {
        for (Block& block : blocks) {
            block.fill(0);
            block[0] = Qov16s(random.in(-16000, 16000));
            for (int k = random.in(0, 63); k > 0; k--)
                block[size_t(random.in(1, 63))] = Qov16s(random.in(-32767, 32767) >> random.in(0, 15));
        }
    }
};

TEST(HuffmanDirect, CodesAsWithAStateAndWritesNoByteMore)
{
    Random random;
    forEachLevel([&] {
        for (int i = 0; i < 100; i++) {
            Blocks data(random, random.in(1, 6));
            const std::vector<Qov8u> expected = data.stateful();
            Guarded guarded(expected.size(), size_t(random.in(0, 7)));
            Qov8u* const bytes = guarded.as<Qov8u>();
            int bitPos = 0;
            Qov16s lastDC = 0;
            for (const Block& block : data.blocks) {
                // What stands behind the bits written is of no account.
                if (bitPos % 8) bytes[bitPos / 8] |= Qov8u(random.in(0, 0xFF >> bitPos % 8));
                ASSERT_EQ(qovStsNoErr, qoviEncodeHuffman8x8_Direct_JPEG_16s1u_C1(
                                           block.data(), bytes, &bitPos, &lastDC, data.encDC, data.encAC));
                ASSERT_EQ(block[0], lastDC);
            }
            const int whole = bitPos / 8, rest = bitPos % 8;
            ASSERT_TRUE(std::equal(bytes, bytes + whole, expected.begin()));
            if (rest) {
                const int padding = 0xFF >> rest;
                ASSERT_EQ(expected[size_t(whole)] & ~padding, bytes[whole]);
            }
            ASSERT_TRUE(guarded.intact());
        }
    });
}

// Against the decoder with a state: on good streams, and on streams of any bytes before a marker. The vector
// ends with the marker, so that a reader of more is found out.
TEST(HuffmanDirect, DecodesAsWithAStateUpToAMarker)
{
    Random random;
    forEachLevel([&] {
        for (int i = 0; i < 300; i++) {
            Blocks data(random, random.in(1, 6));
            std::vector<Qov8u> bytes = data.stateful();
            const bool whole = i % 3 == 0;
            for (int n = whole ? 0 : random.in(1, 4); n > 0; n--)
                bytes[size_t(random.in(0, int(bytes.size()) - 1))] = random.value<Qov8u>();
            const int marker = random.in(1, 0xFE);
            for (int fill = random.in(1, 3); fill > 0; fill--) bytes.push_back(0xFF);
            bytes.push_back(Qov8u(marker));

            DecState state;
            int pos = 0, bitPos = 0, valid = 0, stateMarker = -1, directMarker = -1;
            Qov16s lastDC = 0, directDC = 0;
            Qov32u prefetched = 0;
            QovStatus status = qovStsNoErr;
            for (size_t k = 0; k < data.blocks.size() + 8; k++) {
                Block expected;
                status =
                    qoviDecodeHuffman8x8_JPEG_1u16s_C1(bytes.data(), int(bytes.size()), &pos, expected.data(),
                                                       &lastDC, &stateMarker, data.decDC, data.decAC, state);
                Guarded guarded(sizeof(Block), 2);
                ASSERT_EQ(status, qoviDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
                                      bytes.data(), &bitPos, guarded.as<Qov16s>(), &directDC, &directMarker,
                                      &prefetched, &valid, data.decDC, data.decAC));
                ASSERT_TRUE(guarded.intact());
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), guarded.as<Qov16s>()));
                ASSERT_EQ(lastDC, directDC);
                if (status == qovStsMarker) {
                    ASSERT_EQ(pos * 8, bitPos);
                    ASSERT_EQ(stateMarker, directMarker);
                } else {
                    ASSERT_LT(valid, 8);
                    ASSERT_EQ(-1, directMarker);
                }
                if (whole && k < data.blocks.size()) {
                    ASSERT_EQ(qovStsNoErr, status);
                    ASSERT_EQ(data.blocks[k], expected);
                }
            }
            if (whole) {
                ASSERT_EQ(marker, directMarker);
                ASSERT_EQ(int(bytes.size()) * 8, bitPos);
            }
        }
    });
}

// A position inside a byte, with any number of bits handed over beside it.
TEST(HuffmanDirect, DecodesFromAnyBit)
{
    Random random;
    forEachLevel([&] {
        for (int i = 0; i < 200; i++) {
            Blocks data(random, 2);
            std::vector<Qov8u> bytes(1300, 0xFF);
            int start = random.in(0, 15), bitPos = start;
            Qov16s lastDC = 0;
            bytes[0] = 0x5A;
            bytes[1] = 0xA5;
            for (const Block& block : data.blocks)
                ASSERT_EQ(qovStsNoErr,
                          qoviEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), bytes.data(), &bitPos,
                                                                    &lastDC, data.encDC, data.encAC));
            bytes.resize(size_t(bitPos + 7) / 8);
            Qov32u prefetched = random.value<Qov16u>() << 16; // of 0 bits
            int valid = 0, marker = -1;
            for (int n = random.in(0, 32); n > 0 && bytes[size_t(start / 8)] != 0xFF && start < bitPos; n--) {
                prefetched = prefetched << 1 | (bytes[size_t(start / 8)] >> (7 - start % 8) & 1);
                start++, valid++;
            }
            lastDC = 0;
            for (const Block& block : data.blocks) {
                Block decoded;
                ASSERT_EQ(qovStsNoErr, qoviDecodeHuffman8x8_Direct_JPEG_1u16s_C1(
                                           bytes.data(), &start, decoded.data(), &lastDC, &marker,
                                           &prefetched, &valid, data.decDC, data.decAC));
                ASSERT_EQ(block, decoded);
            }
            ASSERT_EQ((bitPos + 7) / 8 * 8, std::max(start, (start + 7) / 8 * 8));
            ASSERT_EQ(-1, marker);
        }
    });
}

// ---- Arguments

TEST(HuffmanRowArguments, AreCheckedInOrder)
{
    Random random;
    Blocks data(random, 1);
    EncState encState;
    DecState decState;
    QoviEncodeHuffmanSpec* const notEnc = reinterpret_cast<QoviEncodeHuffmanSpec*>(decState.get());
    QoviDecodeHuffmanSpec* const notDec = reinterpret_cast<QoviDecodeHuffmanSpec*>(encState.get());
    Qov16s samples[64] = {};
    Qov8u bytes[64] = {};
    Qov16s* const planes[4] = {samples};
    const QoviEncodeHuffmanSpec *const enc[4] = {data.encDC}, *const badEnc[4] = {notEnc};
    const QoviDecodeHuffmanSpec *const dec[4] = {data.decDC}, *const badDec[4] = {notDec};
    int marker = 0;

    struct Case {
        QovStatus expected;
        int width, rows, length, pos;
        bool badSpec, nullRow;
    };
    const Case cases[] = {
        {qovStsNoErr, 1, 1, 64, 0, false, false},   {qovStsSize, 0, 1, 64, 0, false, false},
        {qovStsSize, 1, 1, 0, 0, false, false},     {qovStsBadArg, 1, 0, 64, 0, false, false},
        {qovStsNullPtr, 1, 5, 64, 0, false, false}, {qovStsNullPtr, 1, 2, 64, 0, false, false},
        {qovStsBadArg, 1, 1, 64, 65, false, false}, {qovStsBadArg, 1, 1, 64, -1, false, false},
        {qovStsContext, 1, 1, 64, 0, true, false},  {qovStsBadArg, 1, 1, 64, -1, true, false},
        {qovStsNullPtr, 0, 1, 64, 0, false, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        int pos = c.pos;
        EXPECT_EQ(c.expected, qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(c.nullRow ? nullptr : planes, c.width,
                                                                   c.rows, bytes, c.length, &pos,
                                                                   c.badSpec ? badEnc : enc, encState, 0));
        pos = c.pos;
        EXPECT_EQ(c.expected, qoviDecodeHuffmanRow_JPEG_1u16s_C1P4(
                                  bytes, c.length, &pos, c.nullRow ? nullptr : planes, c.width, c.rows,
                                  &marker, c.badSpec ? badDec : dec, decState));
    }

    Qov16s lastDC = 0;
    const auto encode = [&](int bitPos, const QoviEncodeHuffmanSpec* ac) {
        return qoviEncodeHuffman8x8_Direct_JPEG_16s1u_C1(samples, bytes, &bitPos, &lastDC, data.encDC, ac);
    };
    EXPECT_EQ(qovStsNullPtr, encode(-1, nullptr));
    EXPECT_EQ(qovStsBadArg, encode(-1, notEnc));
    EXPECT_EQ(qovStsContext, encode(0, notEnc));
    const auto decode = [&](int bitPos, int valid, const QoviDecodeHuffmanSpec* ac) {
        Qov32u prefetched = 0;
        return qoviDecodeHuffman8x8_Direct_JPEG_1u16s_C1(bytes, &bitPos, samples, &lastDC, &marker,
                                                         &prefetched, &valid, data.decDC, ac);
    };
    EXPECT_EQ(qovStsNullPtr, decode(-1, 0, nullptr));
    EXPECT_EQ(qovStsBadArg, decode(-1, 0, notDec));
    EXPECT_EQ(qovStsBadArg, decode(0, 33, notDec));
    EXPECT_EQ(qovStsBadArg, decode(0, -1, notDec));
    EXPECT_EQ(qovStsContext, decode(0, 0, notDec));
    EXPECT_EQ(qovStsMarker, decode(INT_MAX - 7, 0, data.decAC)); // no byte is read behind all positions
}

} // namespace
