// Adaptive coders of JPEG XR: known streams, and what is written comes back with the same samples, position
// and state; at every level.
#include "qov_testing.h"
#include "qovivlc.h"

#include <algorithm>
#include <functional>

namespace {

using Bytes = std::vector<Qov8u>;
using Values = std::vector<Qov32s>;

// Blocks without and with their low bits, in elements of 4 and 2 bytes; and low-pass lists.
enum Kind { plain32, plain16, flex32, flex16, dc444, dc422, dc420, kinds };

struct List {
    Kind kind;
    Values values = {};
    int nBits = 0, chroma = 0, nTrim = 0;

    bool block() const { return kind < dc444; }
    bool flex() const { return kind == flex32 || kind == flex16; }
    bool narrow() const { return kind == plain16 || kind == flex16; }
    size_t size() const { return kind == dc420 ? 6 : kind == dc422 ? 14 : 16; }
    // The first one of 16 is not coded.
    size_t first() const { return size() == 16 ? 1 : 0; }
};

// A place in a stream, and a state at an odd address, since any address will do.
class Coder {
public:
    explicit Coder(Qov8u* at, int used = 0) : start(at), place(at), bit(used), m_state(1 + stateSize())
    {
        EXPECT_EQ(qovStsNoErr, qoviVLCInit_JPEGXR(state()));
    }
    QoviVLCState_JPEGXR* state() { return reinterpret_cast<QoviVLCState_JPEGXR*>(m_state.data() + 1); }
    const Bytes& stateBytes() const { return m_state; }
    size_t bits() const { return size_t(place - start) * 8 + size_t(bit); }

    QovStatus encode(const List& list)
    {
        const Qov32s* const src = list.values.data();
        Values scanned(15);
        switch (list.kind) {
        case plain32: return encodeBlock<Qov32s>(qoviVLCEncode4x4_JPEGXR_32s1u_C1R, list);
        case plain16: return encodeBlock<Qov16s>(qoviVLCEncode4x4_JPEGXR_16s1u_C1R, list);
        case flex32: return encodeBlock<Qov32s>(qoviVLCEncode4x4Flex_JPEGXR_32s1u_C1R, list);
        case flex16: return encodeBlock<Qov16s>(qoviVLCEncode4x4Flex_JPEGXR_16s1u_C1R, list);
        case dc444:
            EXPECT_EQ(qovStsNoErr, qoviVLCScan4x4DC_JPEGXR_32s(src, scanned.data(), state()));
            return qoviVLCEncodeDC444_JPEGXR_32s1u(scanned.data(), &place, &bit, list.chroma, &count,
                                                   state());
        case dc422: return qoviVLCEncodeDC422_JPEGXR_32s1u(src, &place, &bit, &count, state());
        default: return qoviVLCEncodeDC420_JPEGXR_32s1u(src, &place, &bit, &count, state());
        }
    }
    // To the values, whose low bits alone are read if no level was coded.
    QovStatus decode(List& list, bool coded = true)
    {
        Qov32s* const dst = list.values.data();
        if (list.block())
            return list.narrow() ? decodeBlock<Qov16s>(qoviVLCDecode4x4_JPEGXR_1u16s_C1R, list, coded)
                                 : decodeBlock<Qov32s>(qoviVLCDecode4x4_JPEGXR_1u32s_C1R, list, coded);
        if (!coded) return qovStsNoErr;
        if (list.kind == dc444)
            return qoviVLCDecodeDC444_JPEGXR_1u32s(src(), &bit, dst, list.chroma, &count, state());
        const auto call =
            list.kind == dc422 ? qoviVLCDecodeDC422_JPEGXR_1u32s : qoviVLCDecodeDC420_JPEGXR_1u32s;
        return call(src(), &bit, dst, &count, state());
    }

    Qov8u *start, *place;
    int bit, count = -1;

private:
    static size_t stateSize()
    {
        int bytes = 0;
        EXPECT_EQ(qovStsNoErr, qoviVLCGetStateSize_JPEGXR(&bytes));
        return size_t(bytes);
    }
    const Qov8u** src() { return const_cast<const Qov8u**>(&place); }

    template <class T, class Call>
    QovStatus encodeBlock(Call call, const List& list)
    {
        const std::vector<T> block(list.values.begin(), list.values.end());
        const int step = 4 * sizeof(T);
        const QovStatus status =
            call(block.data(), step, &place, &bit, list.nBits, list.chroma, &count, state());
        if (status != qovStsNoErr || !list.flex()) return status;
        return qoviFLCEncode4x4_JPEGXR(block.data(), step, sizeof(T), &place, &bit, list.nBits, list.nTrim);
    }
    template <class T, class Call>
    QovStatus decodeBlock(Call call, List& list, bool coded)
    {
        std::vector<T> block(list.values.begin(), list.values.end());
        const int step = 4 * sizeof(T);
        QovStatus status = qovStsNoErr;
        if (coded) status = call(src(), &bit, block.data(), step, list.nBits, list.chroma, &count, state());
        if (status == qovStsNoErr && list.flex())
            status =
                qoviFLCDecode4x4_JPEGXR(src(), &bit, block.data(), step, sizeof(T), list.nBits, list.nTrim);
        list.values.assign(block.begin(), block.end());
        return status;
    }

    Bytes m_state;
};

class XrCoder : public testing::Test {
protected:
    using Between = std::function<void(size_t next, QoviVLCState_JPEGXR*)>;

    // Writes lists behind some used bits into bytes of ones, which must stay around them, and reads them back
    // from exactly their bytes: the address sanitizer sees what goes beyond.
    void roundTrip(
        const std::vector<List>& lists, int used = 0,
        const Between& between = [](size_t, QoviVLCState_JPEGXR*) {})
    {
        Bytes memory(lists.size() * 130 + 9, 0xFF);
        Coder writer(memory.data() + 8, used);
        std::vector<int> counts;
        for (const List& list : lists) {
            between(counts.size(), writer.state());
            ASSERT_EQ(qovStsNoErr, writer.encode(list));
            counts.push_back(writer.count);
        }
        between(counts.size(), writer.state());
        bits = writer.bits();
        const auto end = memory.begin() + 8 + std::max<ptrdiff_t>(ptrdiff_t(bits + 7) / 8, 1);
        const auto one = [](Qov8u byte) { return byte == 0xFF; };
        ASSERT_TRUE(std::all_of(memory.begin(), memory.begin() + 8, one) &&
                    std::all_of(end, memory.end(), one));
        stream.assign(memory.begin() + 8, end);
        stream.shrink_to_fit();
        ASSERT_EQ(0, ~stream[0] & 0xFF00 >> used & 0xFF);
        ASSERT_EQ(0, stream.back() & (bits > size_t(used) && writer.bit > 0 ? 0xFF >> writer.bit : 0));

        Coder reader(stream.data(), used);
        for (size_t i = 0; i < lists.size(); i++) {
            between(i, reader.state());
            ASSERT_NO_FATAL_FAILURE(readBack(lists[i], counts[i], reader));
        }
        between(lists.size(), reader.state());
        ASSERT_EQ(bits, reader.bits());
        ASSERT_EQ(writer.stateBytes(), reader.stateBytes());
    }

    Bytes stream; // what was written
    size_t bits = 0;

private:
    static void readBack(const List& list, int count, Coder& reader)
    {
        SCOPED_TRACE(testing::Message() << "kind " << list.kind << ", " << list.nBits
                                        << " low bits: " << testing::PrintToString(list.values));
        const Qov64s step = Qov64s(1) << (list.flex() ? list.nTrim : list.nBits);
        List read = list, expected = list;
        read.values.assign(list.size(), 0);
        if (list.first()) read.values[0] = expected.values[0] = 77; // not touched, nor one behind the list
        for (List* each : {&read, &expected}) each->values.push_back(77);
        int levels = 0;
        for (size_t i = list.first(); i < list.size(); i++) {
            const Qov64s x = list.values[i];
            levels += std::abs(x) >> list.nBits != 0;
            expected.values[i] = Qov32s(x / step * step);
        }
        reader.count = 0;
        ASSERT_EQ(levels, count);
        ASSERT_EQ(qovStsNoErr, reader.decode(read, levels > 0));
        ASSERT_EQ(levels, reader.count);
        ASSERT_EQ(expected.values, read.values);
    }
};

// A band's macroblocks: a list of each channel, or one of U and V.
size_t channelsOf(Kind kind)
{
    return kind == dc422 || kind == dc420 ? 1 : 3;
}

// As a band brings its blocks: scans are reset and tables adapted every 16 of them, low-pass tables for each.
std::function<void(size_t, QoviVLCState_JPEGXR*)> asInBand(Kind kind, size_t blocks)
{
    return [=](size_t next, QoviVLCState_JPEGXR* state) {
        const bool low = kind >= dc444;
        const size_t block = next / channelsOf(kind);
        if (next % channelsOf(kind) > 0) return;
        const bool adapts = block > 0 && (low || block % 16 == 1 || block == blocks);
        EXPECT_EQ(qovStsNoErr, qoviVLCAdapt_JPEGXR(state, low ? 0 : 1, adapts));
        for (int scan = low ? 2 : 0; block % 16 == 0 && scan < (low ? 3 : 2); scan++)
            EXPECT_EQ(qovStsNoErr, qoviVLCScanReset_JPEGXR(state, scan));
        EXPECT_EQ(qovStsNoErr, qoviVLCScanSet_JPEGXR(state, 1));
    };
}

// Levels that rise by 10 up to the highest and begin again, 48 of each block; of the smaller formats the
// first ones alone, U and V in turn.
std::vector<List> risingBand(Kind kind, size_t blocks)
{
    const std::vector<size_t> of420 = {1, 5, 2, 6, 3, 7};
    const std::vector<size_t> of422 = {4, 12, 1, 9, 2, 10, 3, 11, 5, 13, 6, 14, 7, 15};
    std::vector<List> lists;
    for (size_t block = 0; block < blocks; block++)
        for (size_t channel = 0; channel < channelsOf(kind); channel++) {
            List list = {kind, {}, 0, channel > 0};
            if (list.block()) list.nBits = int(list.flex() ? 1 + block % 14 : block % 15);
            for (size_t i = 0; i < list.size(); i++) {
                const size_t k = kind == dc420 ? of420[i] : kind == dc422 ? of422[i] : i;
                const size_t n = (block * 48 + channel * 16 + k) % (list.narrow() ? 3277 : 6554);
                const Qov32s x = Qov32s(10 * n + 1) + (1 << list.nBits) - 1;
                list.values.push_back(list.narrow() ? Qov16s(x) : x);
            }
            lists.push_back(list);
        }
    return lists;
}

Qov32u hashOf(const Bytes& bytes)
{
    Qov32u hash = 2166136261u;
    for (Qov8u byte : bytes) hash = (hash ^ byte) * 16777619u;
    return hash;
}

// Sparse blocks between dense ones, so that all code tables of first values come into use, and the scans
// move.
std::vector<List> sparseBlocks()
{
    struct Section {
        unsigned perMille, bigOfEight;
    };
    std::vector<List> lists;
    unsigned seed = 1;
    const auto next = [&] { return (seed = seed * 1664525 + 1013904223) >> 16; };
    for (const Section& section : {Section{999, 8}, {20, 0}, {60, 1}, {300, 1}, {150, 2}, {400, 1}})
        for (int b = 0; b < 400; b++) {
            Values block(16);
            for (size_t i = 1; i < 16; i++)
                if (next() % 1000 < (i == 4 ? 900 : section.perMille)) {
                    const unsigned v = next();
                    block[i] = v % 8 < section.bigOfEight ? int(v / 8 % 3000 + 2) : 1;
                    if (v & 0x8000) block[i] = -block[i];
                }
            lists.push_back({plain32, block, 0, lists.size() % 3 > 0});
        }
    return lists;
}

void inTurns(size_t next, QoviVLCState_JPEGXR* state)
{
    EXPECT_EQ(qovStsNoErr, qoviVLCAdapt_JPEGXR(state, 1, next > 0 && next % 4 == 0));
    EXPECT_EQ(qovStsNoErr, qoviVLCScanSet_JPEGXR(state, next / 64 % 2));
    for (int scan = 0; next % 64 == 0 && scan < 2; scan++)
        EXPECT_EQ(qovStsNoErr, qoviVLCScanReset_JPEGXR(state, scan));
}

// Catches any change of a code word, a delta, an adaptation or a scan.
TEST_F(XrCoder, LongStreams)
{
    struct Case {
        std::vector<List> lists;
        Between between;
        size_t bits;
        Qov32u hash;
    };
    std::vector<Case> cases = {{sparseBlocks(), inTurns, 176503, 0xce245695}};
    const auto add = [&](Kind kind, size_t length, Qov32u hash) {
        cases.push_back({risingBand(kind, 100), asInBand(kind, 100), length, hash});
    };
    add(flex32, 102829, 0x007c653c);
    add(plain32, 73433, 0x03cb208d);
    add(flex16, 97207, 0x33fb98f4);
    add(plain16, 67308, 0xcfee4fba);
    add(dc444, 111615, 0x7007f9ee);
    add(dc422, 34682, 0x86979492);
    add(dc420, 14971, 0x8570cf35);
    forEachLevel([&] {
        for (const Case& c : cases) {
            ASSERT_NO_FATAL_FAILURE(roundTrip(c.lists, 0, c.between));
            EXPECT_EQ(c.bits, bits) << "kind " << c.lists[0].kind;
            EXPECT_EQ(c.hash, hashOf(stream)) << "kind " << c.lists[0].kind;
        }
    });
}

// Encoder and decoder agree in all that they keep, and the levels in all that they write: single lists at any
// bit, and bands. Trimmed bits are lost towards zero.
TEST_F(XrCoder, RandomLists)
{
    Random random;
    for (int round = 0; round < 5000; round++) {
        const Kind kind = Kind(random.in(0, kinds - 1));
        const size_t blocks = size_t(random.oneIn(50) ? random.in(2, 70) : 1);
        const bool extremes = random.oneIn(4);
        const int used = random.in(0, 7), sparsity = random.in(1, 20), most = random.in(0, 30);
        std::vector<List> lists(blocks * channelsOf(kind), List{kind});
        for (List& list : lists) {
            list.chroma = &list > &lists[0];
            if (list.block()) list.nBits = random.in(0, 15);
            list.nTrim = random.in(0, list.nBits);
            for (size_t i = 0; i < list.size(); i++) {
                // Each kind of code ends around a power of two and 2. Magnitudes of the smallest values do
                // not overflow.
                const int power = 1 << random.in(0, most), edge = power + random.in(0, most < 30 ? 2 : 1);
                Qov32s x = random.oneIn(2) ? edge : random.in(0, power);
                if (extremes) x = list.nBits > 0 ? random.value<Qov32s>() : random.value<Qov16s>();
                if (!random.oneIn(sparsity)) x = 0;
                if (random.oneIn(2)) x = x == INT32_MIN ? x : -x;
                list.values.push_back(list.narrow() ? Qov16s(x) : x);
            }
            if (random.oneIn(3)) { // few bits at the end of many
                const auto end = list.values.begin() + random.in(2, int(list.size()));
                std::replace(list.values.begin(), end, 0, 1 << random.in(5, 10));
                end[-2] = random.oneIn(2) ? 2 : 40;
                end[-1] = 1;
                std::fill(end, list.values.end(), 0);
            }
        }
        Bytes ofPx;
        forEachLevel([&] {
            ASSERT_NO_FATAL_FAILURE(roundTrip(lists, used, asInBand(kind, blocks)));
            if (ofPx.empty()) ofPx = stream;
            ASSERT_EQ(ofPx, stream);
        });
        if (HasFatalFailure()) break;
    }
}

// A level that has no code leaves everything as it was.
TEST_F(XrCoder, LevelsTooHigh)
{
    forEachLevel([&] {
        for (Qov32s tooHigh : {(1 << 30) + 2, -(1 << 30) - 2, INT32_MIN}) {
            stream.assign(100, 0xFF);
            Coder coder(stream.data());
            Values block(16);
            block[1] = 3;
            block[9] = tooHigh;
            EXPECT_EQ(qovStsRange, coder.encode({plain32, block}));
            EXPECT_EQ(-1, coder.count);
            EXPECT_EQ(0u, coder.bits());
            EXPECT_EQ(Bytes(100, 0xFF), stream);
            EXPECT_EQ(Coder(nullptr).stateBytes(), coder.stateBytes());
        }
    });
}

// Each wrong argument with all later kinds of wrong ones: the earlier kind of error decides. Calls that
// differ in type or format only share their checks.
TEST_F(XrCoder, Statuses)
{
    struct Args {
        Qov32s* data;
        Qov8u** place;
        int *bit, *count;
        QoviVLCState_JPEGXR* state;
        int step = 16, nBits = 0, chroma = 0, elemBytes = 4, nTrim = 0;
        const Qov8u** src() const { return const_cast<const Qov8u**>(place); }
        Qov16s* words() const { return reinterpret_cast<Qov16s*>(data); }
    };
    Bytes zeros(1000), bytes(200);
    auto* const unmarked = reinterpret_cast<QoviVLCState_JPEGXR*>(zeros.data());
    Qov32s block[16] = {0, 1};
    Qov8u *start = bytes.data(), *none = nullptr;
    int bit = 0, below = -1, above = 8, n = 0;
    // Which arguments a call has, besides data and place.
    enum : unsigned { counted = 1, stepped = 2, chosen = 4, sized = 8 };
    struct Fault {
        Args args;
        QovStatus status;
        unsigned of; // calls with these arguments
    };
    const Fault faults[] = {
        {{nullptr, &start, &above, &n, unmarked, 7, 16, 2}, qovStsNullPtr, 0},
        {{block, nullptr, &above, &n, unmarked, 7, 16, 2}, qovStsNullPtr, 0},
        {{block, &none, &above, &n, unmarked, 7, 16, 2}, qovStsNullPtr, 0},
        {{block, &start, nullptr, &n, unmarked, 7, 16, 2}, qovStsNullPtr, 0},
        {{block, &start, &above, nullptr, unmarked, 7, 16, 2}, qovStsNullPtr, counted},
        {{block, &start, &above, &n, nullptr, 7, 16, 2}, qovStsNullPtr, counted},
        {{block, &start, &above, &n, unmarked, 7, 16, 2}, qovStsStep, stepped},
        {{block, &start, &above, &n, unmarked, -16, 16, 2}, qovStsStep, stepped},
        {{block, &start, &above, &n, unmarked, 16, 0, 0, 8}, qovStsStep, sized},
        {{block, &start, &above, &n, unmarked}, qovStsBadArg, 0},
        {{block, &start, &below, &n, unmarked}, qovStsBadArg, 0},
        {{block, &start, &bit, &n, unmarked, 16, 16}, qovStsBadArg, stepped},
        {{block, &start, &bit, &n, unmarked, 16, -1}, qovStsBadArg, stepped},
        {{block, &start, &bit, &n, unmarked, 16, 0, 2}, qovStsBadArg, chosen},
        {{block, &start, &bit, &n, unmarked, 16, 0, -1}, qovStsBadArg, chosen},
        {{block, &start, &bit, &n, unmarked, 16, 1, 0, 3}, qovStsBadArg, sized},
        {{block, &start, &bit, &n, unmarked, 16, 1, 0, -4}, qovStsBadArg, sized},
        {{block, &start, &bit, &n, unmarked, 16, 3, 0, 4, 4}, qovStsBadArg, sized},
        {{block, &start, &bit, &n, unmarked, 16, 3, 0, 4, -1}, qovStsBadArg, sized},
        {{block, &start, &bit, &n, unmarked}, qovStsContext, counted},
    };
    const auto check = [&](unsigned has, auto call) {
        for (const Fault& fault : faults)
            if ((fault.of & has) == fault.of) {
                EXPECT_EQ(fault.status, call(fault.args)) << "fault " << &fault - faults;
            }
    };
    check(counted | stepped | chosen, [](const Args& a) {
        return qoviVLCEncode4x4_JPEGXR_32s1u_C1R(a.data, a.step, a.place, a.bit, a.nBits, a.chroma, a.count,
                                                 a.state);
    });
    check(counted | stepped | chosen, [](const Args& a) {
        return qoviVLCDecode4x4_JPEGXR_1u16s_C1R(a.src(), a.bit, a.words(), a.step, a.nBits, a.chroma,
                                                 a.count, a.state);
    });
    check(counted | chosen, [](const Args& a) {
        return qoviVLCEncodeDC444_JPEGXR_32s1u(a.data, a.place, a.bit, a.chroma, a.count, a.state);
    });
    check(counted | chosen, [](const Args& a) {
        return qoviVLCDecodeDC444_JPEGXR_1u32s(a.src(), a.bit, a.data, a.chroma, a.count, a.state);
    });
    check(stepped | sized, [](const Args& a) {
        return qoviFLCEncode4x4_JPEGXR(a.data, a.step, a.elemBytes, a.place, a.bit, a.nBits, a.nTrim);
    });
    check(stepped | sized, [](const Args& a) {
        return qoviFLCDecode4x4_JPEGXR(a.src(), a.bit, a.data, a.step, a.elemBytes, a.nBits, a.nTrim);
    });
}

TEST_F(XrCoder, StatusesOfTheRest)
{
    Bytes bytes(200), zeros(1000);
    Coder coder(bytes.data());
    auto* const good = coder.state();
    auto* const unmarked = reinterpret_cast<QoviVLCState_JPEGXR*>(zeros.data());
    Qov32s block[32] = {};
    using Results = std::vector<QovStatus>;
    const auto ofState = [&](QoviVLCState_JPEGXR* state, int which) {
        return Results{qoviVLCScanReset_JPEGXR(state, which), qoviVLCScanSet_JPEGXR(state, which),
                       qoviVLCAdapt_JPEGXR(state, which)};
    };
    EXPECT_EQ(Results(3, qovStsNullPtr), ofState(nullptr, -1));
    EXPECT_EQ(Results(3, qovStsBadArg), ofState(unmarked, -1));
    EXPECT_EQ(Results(3, qovStsBadArg), ofState(good, 3));
    EXPECT_EQ((Results{qovStsNoErr, qovStsBadArg, qovStsBadArg}), ofState(good, 2));
    EXPECT_EQ(Results(3, qovStsContext), ofState(unmarked, 1));
    EXPECT_EQ(qovStsNullPtr, qoviVLCScan4x4DC_JPEGXR_32s(nullptr, block, good));
    EXPECT_EQ(qovStsNullPtr, qoviVLCScan4x4DC_JPEGXR_32s(block, nullptr, good));
    EXPECT_EQ(qovStsContext, qoviVLCScan4x4DC_JPEGXR_32s(block, block + 16, unmarked));
    EXPECT_EQ(qovStsNullPtr, qoviVLCInit_JPEGXR(nullptr));
    EXPECT_EQ(qovStsNullPtr, qoviVLCGetStateSize_JPEGXR(nullptr));
}

} // namespace
