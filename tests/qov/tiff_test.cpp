// Rows of TIFF pictures: PackBits by examples and round trips, the planes of 16-bit samples by their formula.
#include "qov_testing.h"
#include "qovi.h"

namespace {

// A copy has room for its own number of bytes only, so that the address sanitizer sees a read past them.
typedef std::vector<Qov8u> Bytes;

struct Result {
    QovStatus status;
    Bytes bytes;
    int pos;
};

// The bytes are those up to the position.
Result pack(Bytes row, size_t room)
{
    Guarded dst(room, 3);
    int pos = 0;
    const QovStatus status =
        qoviPackBitsRow_TIFF_8u_C1(row.data(), int(row.size()), dst.as<Qov8u>(), &pos, int(room));
    EXPECT_TRUE(dst.intact());
    EXPECT_LE(size_t(pos), room);
    return {status, Bytes(dst.as<Qov8u>(), dst.as<Qov8u>() + pos), pos};
}

Result unpack(Bytes packed, size_t length, int pos = 0)
{
    Guarded dst(length, 5);
    const QovStatus status =
        qoviUnpackBitsRow_TIFF_8u_C1(packed.data(), &pos, int(packed.size()), dst.as<Qov8u>(), int(length));
    EXPECT_TRUE(dst.intact());
    return {status, Bytes(dst.as<Qov8u>(), dst.as<Qov8u>() + length), pos};
}

Bytes times(size_t count, Qov8u byte)
{
    return Bytes(count, byte);
}

Bytes sequence(size_t count)
{
    Bytes bytes(count);
    for (size_t i = 0; i < count; i++) bytes[i] = Qov8u(i);
    return bytes;
}

Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

TEST(PackBits, Examples)
{
    const struct {
        Bytes row, packed;
    } cases[] = {
        {{1, 1}, {0xFF, 1}},
        {{1, 2, 2, 3}, {3, 1, 2, 2, 3}},
        {{1, 1, 2, 3}, {0xFF, 1, 1, 2, 3}},
        {times(128, 0), {0x81, 0}},
        {times(129, 0), {0x81, 0, 0, 0}},
        {times(130, 0), {0x81, 0, 0xFF, 0}},
        {sequence(129), Bytes{127} + sequence(128) + Bytes{0, 128}},
        {sequence(130) + times(3, 9), Bytes{127} + sequence(128) + Bytes{1, 128, 129, 0xFE, 9}},
        {Bytes{0xAA, 0xAA, 0xAA, 0x80, 0, 0x2A, 0xAA, 0xAA, 0xAA, 0xAA, 0x80, 0, 0x2A, 0x22} +
             times(10, 0xAA),
         {0xFE, 0xAA, 2, 0x80, 0, 0x2A, 0xFD, 0xAA, 3, 0x80, 0, 0x2A, 0x22, 0xF7, 0xAA}},
    };
    forEachLevel([&] {
        for (const auto& c : cases) {
            const Result p = pack(c.row, 2 * c.row.size());
            EXPECT_EQ(qovStsNoErr, p.status);
            EXPECT_EQ(c.packed, p.bytes);
            const Result u = unpack(c.packed, c.row.size());
            EXPECT_EQ(qovStsNoErr, u.status);
            EXPECT_EQ(c.row, u.bytes);
            EXPECT_EQ(int(c.packed.size()), u.pos);
        }
    });
}

// Runs and single bytes of few or many values, in rows around the lengths of packets and vectors: one packed
// stream, the same at every level.
TEST(PackBits, RoundTrip)
{
    Random random;
    std::vector<Bytes> rows;
    for (const int values : {1, 2, 3, 256})
        for (size_t length = 1; length <= 300; length++) {
            Bytes row;
            while (row.size() < length)
                row =
                    row + times(random.oneIn(4) ? size_t(random.in(1, 150)) : 1, Qov8u(random.in(1, values)));
            row.resize(length);
            rows.push_back(row);
        }
    Bytes first;
    forEachLevel([&] {
        Bytes stream(1 << 20);
        int end = 0, pos = 0;
        for (const Bytes& row : rows) {
            const int start = end, length = int(row.size());
            ASSERT_EQ(qovStsNoErr, qoviPackBitsRow_TIFF_8u_C1(row.data(), length, stream.data(), &end,
                                                              int(stream.size())));
            ASSERT_LE(end - start, length + (length + 127) / 128) << length;
        }
        stream.resize(size_t(end));
        if (first.empty()) first = stream;
        ASSERT_TRUE(first == stream);
        for (const Bytes& row : rows) {
            const Result u = unpack(stream, row.size(), pos);
            ASSERT_EQ(qovStsNoErr, u.status);
            ASSERT_EQ(row, u.bytes);
            pos = u.pos;
        }
        ASSERT_EQ(end, pos);
    });
}

// A row of four packets in every room up to its own: whole packets only, and none of them too early.
TEST(PackBits, TooLittleRoom)
{
    const Bytes row = sequence(130) + times(129, 7) + Bytes{1, 2, 3};
    forEachLevel([&] {
        const Bytes whole = pack(row, 2 * row.size()).bytes;
        for (size_t room = 1; room <= whole.size(); room++) {
            const Result p = pack(row, room);
            ASSERT_EQ(room < whole.size() ? qovStsDstFull : qovStsNoErr, p.status) << room;
            size_t end = 0;
            for (const size_t next : {129, 132, 134, 139})
                if (next <= room) end = next;
            ASSERT_EQ(Bytes(whole.begin(), whole.begin() + ptrdiff_t(end)), p.bytes) << room;
        }
    });
}

// What no packer makes. The row is as long as `row`; what is written is the whole row or its beginning.
TEST(PackBits, OddPackets)
{
    const struct {
        Bytes packed;
        size_t length;
        Bytes row;
        QovStatus status;
        int pos;
    } cases[] = {
        {{128, 128, 1, 5, 6, 128, 0xFF, 7}, 4, {5, 6, 7, 7}, qovStsNoErr, 8},
        {{0, 1, 128}, 1, {1}, qovStsNoErr, 2}, // no operation behind the row: the next one's
        {{2, 5, 6, 7, 0xFF, 8}, 4, {5, 6, 7, 8}, qovStsData, 0},
        {{0xFE, 5, 3, 1, 2, 3, 4}, 5, {5, 5, 5, 1, 2}, qovStsData, 0},
        {{0xFF, 5}, 3, {5, 5}, qovStsData, 0},
        {{2, 5, 6}, 3, {5, 6}, qovStsData, 0},
        {{0, 5, 0xFF}, 3, {5}, qovStsData, 0},
        {{128, 128}, 1, {}, qovStsData, 0},
    };
    forEachLevel([&] {
        for (const auto& c : cases) {
            SCOPED_TRACE(&c - cases);
            const Result u = unpack(c.packed, c.length);
            EXPECT_EQ(c.status, u.status);
            EXPECT_EQ(c.row, Bytes(u.bytes.begin(), u.bytes.begin() + ptrdiff_t(c.row.size())));
            EXPECT_EQ(c.pos, u.pos);
        }
        EXPECT_EQ(qovStsData, unpack({0, 1}, 1, 2).status);
    });
}

TEST(PackBits, Statuses)
{
    const struct {
        int nulls; // 1 source, 2 destination, 4 position
        int rowLength, packedLength, pos;
        QovStatus status;
    } cases[] = {
        {1, 1, 2, 0, qovStsNullPtr}, {2, 1, 2, 0, qovStsNullPtr}, {4, 0, 0, 0, qovStsNullPtr},
        {0, 0, 2, 0, qovStsSize},    {0, 1, 0, -1, qovStsSize},   {0, 1, 2, -1, qovStsBadArg},
        {0, 1, 2, 3, qovStsBadArg},  {0, 1, 2, 0, qovStsNoErr},
    };
    const Qov8u src[4] = {};
    Qov8u dst[4];
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        const Qov8u* from = c.nulls & 1 ? nullptr : src;
        Qov8u* to = c.nulls & 2 ? nullptr : dst;
        int written = c.pos, read = c.pos;
        EXPECT_EQ(c.status, qoviPackBitsRow_TIFF_8u_C1(from, c.rowLength, to,
                                                       c.nulls & 4 ? nullptr : &written, c.packedLength));
        EXPECT_EQ(c.status, qoviUnpackBitsRow_TIFF_8u_C1(from, c.nulls & 4 ? nullptr : &read, c.packedLength,
                                                         to, c.rowLength));
        EXPECT_EQ(c.status ? c.pos : 2, written);
        EXPECT_EQ(written, read);
    }
}

TEST(SplitRow, AnyLength)
{
    Random random;
    for (size_t length = 1; length <= 300 && !HasFatalFailure(); length++) {
        std::vector<Qov16u> row(length);
        Bytes highs(length), lows(length);
        for (size_t i = 0; i < length; i++) {
            row[i] = random.value<Qov16u>();
            highs[i] = Qov8u(row[i] / 256);
            lows[i] = Qov8u(row[i] % 256);
        }
        forEachLevel([&] {
            Guarded high(length, 7), low(length, 0), joined(2 * length, 2);
            Qov8u* const to[2] = {high.as<Qov8u>(), low.as<Qov8u>()};
            const Qov8u* const from[2] = {highs.data(), lows.data()};
            ASSERT_EQ(qovStsNoErr, qoviSplitRow_TIFF_16u8u_C1(row.data(), to, int(length)));
            ASSERT_EQ(qovStsNoErr, qoviJoinRow_TIFF_8u16u_C1(from, joined.as<Qov16u>(), int(length)));
            ASSERT_EQ(highs, Bytes(to[0], to[0] + length));
            ASSERT_EQ(lows, Bytes(to[1], to[1] + length));
            ASSERT_EQ(0, std::memcmp(row.data(), joined.as<Qov16u>(), 2 * length)) << length;
            ASSERT_TRUE(high.intact() && low.intact() && joined.intact());
        });
    }
}

TEST(SplitRow, Statuses)
{
    Qov16u row[4] = {};
    Qov8u bytes[8] = {};
    for (int nulls = 0; nulls < 16; nulls++)
        for (const int length : {4, 0}) {
            Qov8u* const planes[2] = {nulls & 1 ? nullptr : bytes, nulls & 2 ? nullptr : bytes + 4};
            Qov8u* const* to = nulls & 4 ? nullptr : planes;
            Qov16u* words = nulls & 8 ? nullptr : row;
            const QovStatus expected = nulls ? qovStsNullPtr : length < 1 ? qovStsSize : qovStsNoErr;
            EXPECT_EQ(expected, qoviSplitRow_TIFF_16u8u_C1(words, to, length)) << nulls;
            EXPECT_EQ(expected, qoviJoinRow_TIFF_8u16u_C1(to, words, length)) << nulls;
        }
}

} // namespace
