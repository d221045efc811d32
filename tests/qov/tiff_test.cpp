// Rows of TIFF pictures: PackBits by examples and round trips, the planes of 16-bit samples by their formula.
#include "qov_testing.h"
#include "qovi.h"

#include <memory>

namespace {

typedef std::vector<Qov8u> Bytes;

// Bytes of exactly their number, so that the address sanitizer sees a read past them.
std::unique_ptr<Qov8u[]> block(const Bytes& bytes)
{
    auto p = std::make_unique<Qov8u[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), p.get());
    return p;
}

struct Packed {
    QovStatus status;
    Bytes bytes; // up to the position
};

Packed pack(const Bytes& row, size_t room)
{
    Guarded dst(room, 3);
    int pos = 0;
    const QovStatus status =
        qoviPackBitsRow_TIFF_8u_C1(block(row).get(), int(row.size()), dst.as<Qov8u>(), &pos, int(room));
    EXPECT_TRUE(dst.intact());
    EXPECT_LE(size_t(pos), room);
    return {status, Bytes(dst.as<Qov8u>(), dst.as<Qov8u>() + pos)};
}

struct Unpacked {
    QovStatus status;
    Bytes row;
    int pos;
};

Unpacked unpack(const Bytes& packed, size_t length, int pos = 0)
{
    Guarded dst(length, 5);
    const QovStatus status = qoviUnpackBitsRow_TIFF_8u_C1(block(packed).get(), &pos, int(packed.size()),
                                                          dst.as<Qov8u>(), int(length));
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
        {{1}, {0, 1}},
        {{1, 1}, {0xFF, 1}},
        {{1, 2, 2, 3}, {3, 1, 2, 2, 3}},
        {{1, 1, 2, 3}, {0xFF, 1, 1, 2, 3}},
        {{1, 2, 2, 3, 3, 3}, {2, 1, 2, 2, 0xFE, 3}},
        {times(128, 0), {0x81, 0}},
        {times(129, 0), {0x81, 0, 0, 0}},
        {times(130, 0), {0x81, 0, 0xFF, 0}},
        {sequence(128), Bytes{127} + sequence(128)},
        {sequence(129), Bytes{127} + sequence(128) + Bytes{0, 128}},
        {sequence(130) + times(3, 9), Bytes{127} + sequence(128) + Bytes{1, 128, 129, 0xFE, 9}},
        {Bytes{0xAA, 0xAA, 0xAA, 0x80, 0, 0x2A, 0xAA, 0xAA, 0xAA, 0xAA, 0x80, 0, 0x2A, 0x22} +
             times(10, 0xAA),
         {0xFE, 0xAA, 2, 0x80, 0, 0x2A, 0xFD, 0xAA, 3, 0x80, 0, 0x2A, 0x22, 0xF7, 0xAA}},
    };
    forEachLevel([&] {
        for (const auto& c : cases) {
            const Packed p = pack(c.row, 2 * c.row.size());
            EXPECT_EQ(qovStsNoErr, p.status);
            EXPECT_EQ(c.packed, p.bytes);
            const Unpacked u = unpack(c.packed, c.row.size());
            EXPECT_EQ(qovStsNoErr, u.status);
            EXPECT_EQ(c.row, u.row);
            EXPECT_EQ(int(c.packed.size()), u.pos);
        }
    });
}

// Runs and single bytes of few or many values, in rows around the lengths of packets and vectors.
TEST(PackBits, RoundTrip)
{
    Random random;
    Bytes stream;
    std::vector<Bytes> rows;
    for (const int values : {1, 2, 3, 256})
        for (int length = 1; length <= 300; length++) {
            Bytes row;
            while (int(row.size()) < length)
                row =
                    row + times(random.oneIn(4) ? size_t(random.in(1, 150)) : 1, Qov8u(random.in(1, values)));
            row.resize(size_t(length));
            rows.push_back(row);
        }
    forEachLevel([&] {
        const Bytes before = std::move(stream);
        stream.assign(2 * 4 * 300 * 301, 0);
        int pos = 0;
        for (const Bytes& row : rows) {
            const int start = pos, length = int(row.size());
            ASSERT_EQ(qovStsNoErr, qoviPackBitsRow_TIFF_8u_C1(block(row).get(), length, stream.data(), &pos,
                                                              int(stream.size())));
            ASSERT_LE(pos - start, length + (length + 127) / 128) << length;
        }
        stream.resize(size_t(pos));
        if (!before.empty()) {
            ASSERT_TRUE(before == stream);
        }
        pos = 0;
        for (const Bytes& row : rows) {
            const Unpacked u = unpack(stream, row.size(), pos);
            ASSERT_EQ(qovStsNoErr, u.status);
            ASSERT_EQ(row, u.row);
            pos = u.pos;
        }
        ASSERT_EQ(int(stream.size()), pos);
    });
}

// A row of four packets in every room up to its own: whole packets only, and none of them too early.
TEST(PackBits, TooLittleRoom)
{
    const Bytes row = sequence(130) + times(129, 7) + Bytes{1, 2, 3};
    forEachLevel([&] {
        const Bytes whole = pack(row, 2 * row.size()).bytes;
        for (size_t room = 1; room <= whole.size(); room++) {
            const Packed p = pack(row, room);
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
        {{0x81, 5}, 127, times(127, 5), qovStsData, 0},
        {{0xFF, 5}, 3, {5, 5}, qovStsData, 0},
        {{2, 5, 6}, 3, {5, 6}, qovStsData, 0},
        {{0, 5, 0xFF}, 3, {5}, qovStsData, 0},
        {{0, 5, 9}, 3, {5}, qovStsData, 0},
        {{128, 128}, 1, {}, qovStsData, 0},
    };
    forEachLevel([&] {
        for (const auto& c : cases) {
            SCOPED_TRACE(&c - cases);
            const Unpacked u = unpack(c.packed, c.length);
            EXPECT_EQ(c.status, u.status);
            EXPECT_EQ(c.row, Bytes(u.row.begin(), u.row.begin() + ptrdiff_t(c.row.size())));
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
        {1, 1, 2, 0, qovStsNullPtr}, {2, 1, 2, 0, qovStsNullPtr},       {4, 1, 2, 0, qovStsNullPtr},
        {7, 0, 0, 0, qovStsNullPtr}, {0, 0, 2, 0, qovStsSize},          {0, -1, 2, 0, qovStsSize},
        {0, 1, 0, 0, qovStsSize},    {0, 1, INT32_MIN, -1, qovStsSize}, {0, 1, 2, -1, qovStsBadArg},
        {0, 1, 2, 3, qovStsBadArg},  {0, 1, 2, 0, qovStsNoErr},
    };
    const Qov8u src[4] = {};
    Qov8u dst[4];
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        const Qov8u* from = c.nulls & 1 ? nullptr : src;
        Qov8u* to = c.nulls & 2 ? nullptr : dst;
        int pos = c.pos;
        EXPECT_EQ(c.status, qoviPackBitsRow_TIFF_8u_C1(from, c.rowLength, to, c.nulls & 4 ? nullptr : &pos,
                                                       c.packedLength));
        EXPECT_EQ(c.status ? c.pos : 2, pos);
        pos = c.pos;
        EXPECT_EQ(c.status, qoviUnpackBitsRow_TIFF_8u_C1(from, c.nulls & 4 ? nullptr : &pos, c.packedLength,
                                                         to, c.rowLength));
        EXPECT_EQ(c.status ? c.pos : 2, pos);
    }
}

TEST(SplitRow, AnyLength)
{
    Random random;
    for (int length = 1; length <= 300; length++) {
        const auto row = std::make_unique<Qov16u[]>(size_t(length));
        for (int i = 0; i < length; i++) row[size_t(i)] = random.value<Qov16u>();
        forEachLevel([&] {
            Guarded high(size_t(length), 7), low(size_t(length), 0), back(2 * size_t(length), 2);
            Qov8u* const planes[2] = {high.as<Qov8u>(), low.as<Qov8u>()};
            ASSERT_EQ(qovStsNoErr, qoviSplitRow_TIFF_16u8u_C1(row.get(), planes, length));
            for (int i = 0; i < length; i++) {
                ASSERT_EQ(row[size_t(i)] / 256, planes[0][i]) << length << " at " << i;
                ASSERT_EQ(row[size_t(i)] % 256, planes[1][i]) << length << " at " << i;
            }
            const auto first = block(Bytes(planes[0], planes[0] + length));
            const auto second = block(Bytes(planes[1], planes[1] + length));
            const Qov8u* const sources[2] = {first.get(), second.get()};
            ASSERT_EQ(qovStsNoErr, qoviJoinRow_TIFF_8u16u_C1(sources, back.as<Qov16u>(), length));
            ASSERT_EQ(0, std::memcmp(row.get(), back.as<Qov16u>(), 2 * size_t(length))) << length;
            ASSERT_TRUE(high.intact() && low.intact() && back.intact());
        });
        if (HasFatalFailure()) return;
    }
}

TEST(SplitRow, Statuses)
{
    Qov16u row[4] = {};
    Qov8u bytes[8] = {};
    for (int nulls = 0; nulls < 16; nulls++) {
        Qov8u* const planes[2] = {nulls & 1 ? nullptr : bytes, nulls & 2 ? nullptr : bytes + 4};
        Qov8u* const* to = nulls & 4 ? nullptr : planes;
        Qov16u* words = nulls & 8 ? nullptr : row;
        for (const int length : {4, 0, -1}) {
            const QovStatus expected = nulls ? qovStsNullPtr : length < 1 ? qovStsSize : qovStsNoErr;
            EXPECT_EQ(expected, qoviSplitRow_TIFF_16u8u_C1(words, to, length)) << nulls;
            EXPECT_EQ(expected, qoviJoinRow_TIFF_8u16u_C1(to, words, length)) << nulls;
        }
    }
}

} // namespace
