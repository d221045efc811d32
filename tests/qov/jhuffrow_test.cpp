// Huffman coding of rows and of blocks without a state: the same bytes and values as of the coders that keep
// a state, on any position, cut anywhere, and in no byte more than the code takes.
#include "jhuff_reference.h"

#include <climits>

namespace {

const int mostRows = 4;

// Rows of differences with tables of their own, and what the coder of single ones makes of them.
struct Rows {
    const int width, rows;
    std::vector<std::vector<Qov16s>> samples;
    std::vector<EncSpec> encSpecs;
    std::vector<DecSpec> decSpecs;
    const Qov16s* planes[mostRows] = {};
    const QoviEncodeHuffmanSpec* enc[mostRows] = {};
    const QoviDecodeHuffmanSpec* dec[mostRows] = {};
    std::vector<Qov8u> bytes;

    explicit Rows(Random& random)
        : width(random.in(1, 150)), rows(random.in(1, mostRows)),
          samples(size_t(rows), std::vector<Qov16s>(size_t(width))), bytes(size_t(width * rows * 8 + 8))
    {
        for (int r = 0; r < rows; r++) {
            for (Qov16s& s : samples[r]) s = Qov16s(random.value<Qov16s>() >> random.in(0, 15));
            const Table table = randomTable(random, 17, false);
            planes[r] = samples[r].data();
            enc[r] = encSpecs.emplace_back(table).get();
            dec[r] = decSpecs.emplace_back(table).get();
        }
        int pos = 0;
        EncState state;
        const auto code = [&](const Qov16s* sample, const QoviEncodeHuffmanSpec* spec) {
            EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanOne_JPEG_16s1u_C1(sample, bytes.data(), int(bytes.size()),
                                                                      &pos, spec, state.get(), !sample));
        };
        for (int x = 0; x < width; x++)
            for (int r = 0; r < rows; r++) code(planes[r] + x, enc[r]);
        code(nullptr, nullptr); // flushes
        bytes.resize(size_t(pos));
    }
};

TEST(HuffmanRow, CodesAsSampleBySampleUpToTheLastByte)
{
    Random random;
    forEachLevel([&] {
        for (int i = 0; i < 200; i++) {
            const Rows rows(random);
            const int needed = int(rows.bytes.size()), length = std::max(1, needed - random.in(0, 1));
            Guarded guarded(size_t(length), size_t(random.in(0, 7)));
            EncState state;
            int pos = 0;
            const auto code = [&](bool flush) {
                return qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(
                    flush ? nullptr : rows.planes, flush ? 0 : rows.width, flush ? 0 : rows.rows,
                    guarded.as<Qov8u>(), length, &pos, flush ? nullptr : rows.enc, state.get(), flush);
            };
            const QovStatus status = code(false);
            ASSERT_EQ(length < needed ? qovStsDstFull : qovStsNoErr, status ? status : code(true));
            ASSERT_EQ(length, pos);
            ASSERT_TRUE(std::equal(guarded.as<Qov8u>(), guarded.as<Qov8u>() + length, rows.bytes.begin()));
            ASSERT_TRUE(guarded.intact());
            if (status) {
                ASSERT_EQ(qovStsDstFull, code(false));
            }
        }
    });
}

TEST(HuffmanRow, DecodesAsSampleBySampleWhateverTheBytesAre)
{
    Random random;
    forEachLevel([&] {
        for (int i = 0; i < 300; i++) {
            const Rows rows(random);
            std::vector<Qov8u> bytes = rows.bytes;
            if (i % 3) {
                for (int n = random.in(0, 3); n > 0; n--)
                    bytes[size_t(random.in(0, int(bytes.size()) - 1))] = random.value<Qov8u>();
                bytes.resize(size_t(random.in(1, int(bytes.size()))));
            }
            const int length = int(bytes.size());

            std::vector<Guarded> guards;
            Qov16s* planes[mostRows] = {};
            for (int r = 0; r < rows.rows; r++)
                planes[r] = guards.emplace_back(size_t(rows.width) * 2, 2).as<Qov16s>();
            int pos = 0, marker = -1, onePos = 0, oneMarker = -1;
            DecState state, oneState;
            const auto decode = [&] {
                return qoviDecodeHuffmanRow_JPEG_1u16s_C1P4(bytes.data(), length, &pos, planes, rows.width,
                                                            rows.rows, &marker, rows.dec, state.get());
            };
            const QovStatus status = decode();
            QovStatus expectedStatus = qovStsNoErr;
            for (int x = 0; x < rows.width; x++)
                for (int r = 0; r < rows.rows; r++) {
                    Qov16s expected = 0;
                    if (expectedStatus == qovStsNoErr)
                        expectedStatus =
                            qoviDecodeHuffmanOne_JPEG_1u16s_C1(bytes.data(), length, &onePos, &expected,
                                                               &oneMarker, rows.dec[r], oneState.get());
                    ASSERT_EQ(expected, planes[r][x]) << x << " of row " << r;
                }
            ASSERT_EQ(expectedStatus, status);
            if (marker != -1 || status == qovStsMarker) { // else how far a reader looks ahead is its affair
                ASSERT_EQ(oneMarker, marker);
            }
            if (status == qovStsMarker) {
                ASSERT_EQ(qovStsMarker, decode());
                for (int r = 0; r < rows.rows; r++)
                    ASSERT_EQ(rows.width, std::count(planes[r], planes[r] + rows.width, 0));
            }
            for (const Guarded& guard : guards) ASSERT_TRUE(guard.intact());
        }
    });
}

// Whatever the row had before it: the call leaves nothing behind.
TEST(HuffmanRow, RefusesAValueWithoutCode)
{
    EncSpec spec({{0, 2}, {0, 1}});
    const QoviEncodeHuffmanSpec* const specs[] = {spec.get()};
    std::vector<Qov16s> samples(150, 1);
    samples.back() = 2;
    const Qov16s* const planes[] = {samples.data()};
    forEachLevel([&] {
        EncState state;
        Qov8u bytes[100];
        int pos = 0;
        const auto code = [&](int width, int flush) {
            return qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(planes, width, 1, bytes, 100, &pos, specs,
                                                        state.get(), flush);
        };
        EXPECT_EQ(qovStsNoErr, code(1, 0));
        EXPECT_EQ(qovStsRange, code(150, 0));
        EXPECT_EQ(qovStsNoErr, code(1, 0));
        EXPECT_EQ(qovStsNoErr, code(1, 1));
        ASSERT_EQ(1, pos);
        EXPECT_EQ(0b01101111, bytes[0]); // 01 1 twice, then ones
    });
}

// ---- Blocks without a state

struct Blocks {
    std::vector<Block> blocks;
    Table dc, ac;
    EncSpec encDC, encAC;
    DecSpec decDC, decAC;

    Blocks(Random& random, int n)
        : blocks(randomBlocks(random, {sequential}, n)), dc(randomTable(random, 16, false)),
          ac(randomTable(random, 256, false)), encDC(dc), encAC(ac), decDC(dc), decAC(ac)
    {
    }

    // With a state, and flushed.
    std::vector<Qov8u> bytes() const
    {
        Reference reference({sequential}, dc, ac);
        for (const Block& block : blocks) reference.code(block);
        reference.flush();
        return reference.bytes;
    }
    QovStatus encode(const Block& block, Qov8u* dst, int& bitPos, Qov16s& lastDC)
    {
        return qoviEncodeHuffman8x8_Direct_JPEG_16s1u_C1(block.data(), dst, &bitPos, &lastDC, encDC.get(),
                                                         encAC.get());
    }
};

// What the decoder's caller keeps.
struct Direct {
    int bitPos = 0, valid = 0, marker = -1;
    Qov32u prefetched = 0;
    Qov16s lastDC = 0;

    QovStatus decode(Blocks& data, const std::vector<Qov8u>& bytes, Qov16s* dst)
    {
        return qoviDecodeHuffman8x8_Direct_JPEG_1u16s_C1(bytes.data(), &bitPos, dst, &lastDC, &marker,
                                                         &prefetched, &valid, data.decDC.get(),
                                                         data.decAC.get());
    }
};

TEST(HuffmanDirect, CodesAsWithAStateAndWritesNoByteMore)
{
    Random random;
    forEachLevel([&] {
        for (int i = 0; i < 100; i++) {
            Blocks data(random, random.in(1, 6));
            const std::vector<Qov8u> expected = data.bytes();
            Guarded guarded(expected.size(), size_t(random.in(0, 7)));
            Qov8u* const bytes = guarded.as<Qov8u>();
            int bitPos = 0;
            Qov16s lastDC = 0;
            for (const Block& block : data.blocks) {
                // What stands behind the bits written is of no account.
                if (bitPos % 8) bytes[bitPos / 8] |= Qov8u(random.in(0, 0xFF >> bitPos % 8));
                ASSERT_EQ(qovStsNoErr, data.encode(block, bytes, bitPos, lastDC));
                ASSERT_EQ(block[0], lastDC);
            }
            ASSERT_EQ(expected.size(), size_t(bitPos + 7) / 8 + (bitPos % 8 && expected.back() == 0));
            const int whole = bitPos / 8, padding = 0xFF >> bitPos % 8;
            ASSERT_TRUE(std::equal(bytes, bytes + whole, expected.begin()));
            if (bitPos % 8) {
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
            std::vector<Qov8u> bytes = data.bytes();
            for (int n = i % 3 ? random.in(1, 4) : 0; n > 0; n--)
                bytes[size_t(random.in(0, int(bytes.size()) - 1))] = random.value<Qov8u>();
            bytes.insert(bytes.end(), size_t(random.in(1, 3)), 0xFF);
            bytes.push_back(Qov8u(random.in(1, 0xFE)));

            DecState state;
            Direct direct;
            int pos = 0, marker = -1;
            Qov16s lastDC = 0;
            for (size_t k = 0; k < data.blocks.size() + 8; k++) {
                Block expected;
                const QovStatus status = qoviDecodeHuffman8x8_JPEG_1u16s_C1(
                    bytes.data(), int(bytes.size()), &pos, expected.data(), &lastDC, &marker,
                    data.decDC.get(), data.decAC.get(), state.get());
                Guarded guarded(sizeof(Block), 2);
                ASSERT_EQ(status, direct.decode(data, bytes, guarded.as<Qov16s>()));
                ASSERT_TRUE(guarded.intact());
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), guarded.as<Qov16s>()));
                ASSERT_EQ(lastDC, direct.lastDC);
                if (status == qovStsMarker) {
                    ASSERT_EQ(pos * 8, direct.bitPos);
                    ASSERT_EQ(marker, direct.marker);
                } else {
                    ASSERT_LT(direct.valid, 8);
                    ASSERT_EQ(-1, direct.marker);
                }
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
            bytes[0] = 0x5A;
            bytes[1] = 0xA5;
            Direct direct;
            int& start = direct.bitPos = random.in(0, 15);
            int end = start;
            Qov16s lastDC = 0;
            for (const Block& block : data.blocks)
                ASSERT_EQ(qovStsNoErr, data.encode(block, bytes.data(), end, lastDC));
            bytes.resize(size_t(end + 7) / 8);
            direct.prefetched = random.value<Qov16u>() << 16; // of 0 bits
            for (int n = random.in(0, 32); n > 0 && bytes[size_t(start / 8)] != 0xFF && start < end; n--) {
                direct.prefetched =
                    direct.prefetched << 1 | (bytes[size_t(start / 8)] >> (7 - start % 8) & 1);
                start++, direct.valid++;
            }
            for (const Block& block : data.blocks) {
                Block decoded;
                ASSERT_EQ(qovStsNoErr, direct.decode(data, bytes, decoded.data()));
                ASSERT_EQ(block, decoded);
            }
            ASSERT_EQ((end + 7) / 8, (start + 7) / 8);
            ASSERT_EQ(-1, direct.marker);
        }
    });
}

TEST(HuffmanRowArguments, AreCheckedInOrder)
{
    const Table table = {{2}, {0, 1}};
    EncSpec enc(table);
    DecSpec dec(table);
    EncState encState;
    DecState decState;
    auto* const notEnc = reinterpret_cast<QoviEncodeHuffmanSpec*>(decState.get());
    auto* const notDec = reinterpret_cast<QoviDecodeHuffmanSpec*>(encState.get());
    Qov16s samples[64] = {}, lastDC = 0;
    Qov8u bytes[64] = {};
    int marker = 0;

    struct Case {
        QovStatus expected;
        int width, rows, length, pos;
        int given; // rows
        bool badSpec;
    };
    const Case cases[] = {
        {qovStsNoErr, 1, 1, 64, 0, 1, false},  {qovStsNullPtr, 0, 2, 0, -1, 1, true},
        {qovStsNullPtr, 0, 1, 0, -1, 0, true}, {qovStsNullPtr, 0, 5, 0, -1, 3, true},
        {qovStsSize, 0, 5, 64, -1, 4, true},   {qovStsSize, 1, 5, 0, 0, 4, true},
        {qovStsBadArg, 1, 0, 64, 0, 4, true},  {qovStsBadArg, 1, 5, 64, 0, 4, true},
        {qovStsBadArg, 1, 1, 64, 65, 1, true}, {qovStsBadArg, 1, 1, 64, -1, 1, true},
        {qovStsContext, 1, 1, 64, 0, 1, true}, {qovStsContext, 1, 4, 64, 0, 4, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        Qov16s* planes[mostRows] = {};
        for (int r = 0; r < c.given; r++) planes[r] = samples;
        const QoviEncodeHuffmanSpec* encSpecs[mostRows] = {enc.get(), enc.get(), enc.get(), enc.get()};
        const QoviDecodeHuffmanSpec* decSpecs[mostRows] = {dec.get(), dec.get(), dec.get(), dec.get()};
        if (c.badSpec && c.given) encSpecs[c.given - 1] = notEnc, decSpecs[c.given - 1] = notDec;
        int pos = c.pos;
        EXPECT_EQ(c.expected, qoviEncodeHuffmanRow_JPEG_16s1u_P4C1(planes, c.width, c.rows, bytes, c.length,
                                                                   &pos, encSpecs, encState.get(), 0));
        pos = c.pos;
        EXPECT_EQ(c.expected,
                  qoviDecodeHuffmanRow_JPEG_1u16s_C1P4(bytes, c.length, &pos, planes, c.width, c.rows,
                                                       &marker, decSpecs, decState.get()));
    }

    const auto encode = [&](int bitPos, const QoviEncodeHuffmanSpec* ac) {
        return qoviEncodeHuffman8x8_Direct_JPEG_16s1u_C1(samples, bytes, &bitPos, &lastDC, enc.get(), ac);
    };
    EXPECT_EQ(qovStsNullPtr, encode(-1, nullptr));
    EXPECT_EQ(qovStsBadArg, encode(-1, notEnc));
    EXPECT_EQ(qovStsContext, encode(0, notEnc));
    const auto decode = [&](int bitPos, int valid, const QoviDecodeHuffmanSpec* ac) {
        Qov32u prefetched = 0;
        return qoviDecodeHuffman8x8_Direct_JPEG_1u16s_C1(bytes, &bitPos, samples, &lastDC, &marker,
                                                         &prefetched, &valid, dec.get(), ac);
    };
    EXPECT_EQ(qovStsNullPtr, decode(-1, 0, nullptr));
    EXPECT_EQ(qovStsBadArg, decode(-1, 0, notDec));
    EXPECT_EQ(qovStsBadArg, decode(0, 33, notDec));
    EXPECT_EQ(qovStsBadArg, decode(0, -1, notDec));
    EXPECT_EQ(qovStsContext, decode(0, 0, notDec));
    EXPECT_EQ(qovStsMarker, decode(INT_MAX - 7, 0, dec.get())); // no byte is read behind all positions
}

} // namespace
