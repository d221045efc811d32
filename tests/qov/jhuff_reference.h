// Huffman coding bit by bit after the flow charts of ITU-T T.81, which the tests hold against the encoders
// and decoders; random passes and blocks for it.
#ifndef TESTS_QOV_JHUFF_REFERENCE_H
#define TESTS_QOV_JHUFF_REFERENCE_H

#include "qov_testing.h"
#include "qovi.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

typedef std::array<Qov16s, 64> Block; // natural order
typedef std::array<int, 256> Counts;

inline constexpr int zigzagOrder[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                                        12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                                        35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                                        58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

struct Table {
    std::array<Qov8u, 16> bits{};
    std::vector<Qov8u> values;
};

enum Mode { sequential, one, dcFirst, dcRefine, acFirst, acRefine };

struct Pass {
    Mode mode;
    int ss = 1, se = 63, al = 0;
};

inline std::string about(const Pass& p)
{
    const char* const modes[] = {"sequential", "one", "DC first", "DC refine", "AC first", "AC refine"};
    return std::string(modes[p.mode]) + ", band " + std::to_string(p.ss) + " to " + std::to_string(p.se) +
           ", shift " + std::to_string(p.al);
}

// One segment of a pass. Without tables it only counts.
class Reference {
public:
    std::vector<Qov8u> bytes;            // the complete ones, with stuffing
    std::vector<size_t> complete;        // the bits, without stuffing, after which each block is whole
    Counts dcCounts = {}, acCounts = {}; // DC symbols, also those of `one`, and AC symbols
    size_t mostCorrections = SIZE_MAX;   // an end-of-band run with more of them is written

    explicit Reference(const Pass& pass) : m_pass(pass) {}
    Reference(const Pass& pass, const Table& dc, const Table& ac)
        : m_pass(pass), m_dcCodes(codesOf(dc)), m_acCodes(codesOf(ac))
    {
    }

    void code(const Block& block)
    {
        complete.push_back(0);
        switch (m_pass.mode) {
        case sequential:
            codeDC(block[0]);
            codeBand(block);
            break;
        case one: difference(block[0] == -32768 ? 32768 : block[0]); break;
        case dcFirst: codeDC(block[0] >> m_pass.al); break;
        case dcRefine: put(block[0] >> m_pass.al, 1); break;
        case acFirst: codeBand(block); break;
        case acRefine: refineBand(block); break;
        }
        complete.back() = m_used; // a block in a run is whole later
    }
    void flush()
    {
        endRun();
        while (m_used % 8) put(1, 1);
    }

private:
    struct Code {
        int code = 0, length = 0;
    };
    typedef std::array<Code, 256> Codes;

    static Codes codesOf(const Table& table) // annex C
    {
        Codes codes;
        for (int n = 1, next = 0, i = 0; n <= 16; n++, next *= 2)
            for (int j = 0; j < table.bits[n - 1]; j++) codes[table.values[i++]] = {next++, n};
        return codes;
    }
    static int sizeOf(int value)
    {
        int size = 0;
        for (int magnitude = std::abs(value); magnitude; magnitude /= 2) size++;
        return size;
    }
    void put(int value, int n)
    {
        while (n-- > 0) {
            m_last = (2 * m_last + (value >> n & 1)) & 0xFF;
            if (++m_used % 8) continue;
            bytes.push_back(Qov8u(m_last));
            if (m_last == 0xFF) bytes.push_back(0);
        }
    }
    void dcSymbol(int symbol)
    {
        dcCounts[symbol]++;
        put(m_dcCodes[symbol].code, m_dcCodes[symbol].length);
    }
    void acSymbol(int symbol)
    {
        acCounts[symbol]++;
        put(m_acCodes[symbol].code, m_acCodes[symbol].length);
    }
    void extraBits(int value, int size) { put(value < 0 ? value - 1 : value, size); }

    void difference(int d)
    {
        const int size = sizeOf(d);
        dcSymbol(size);
        if (size < 16) extraBits(d, size);
    }
    void codeDC(int value)
    {
        difference(Qov16s(value - m_lastDC));
        m_lastDC = value;
    }
    void codeBand(const Block& block) // figures F.2 and G.3
    {
        int run = 0;
        for (int k = m_pass.ss; k <= m_pass.se; k++) {
            const int value = block[zigzagOrder[k]] / (1 << m_pass.al), size = sizeOf(value);
            if (value == 0) {
                run++;
                continue;
            }
            endRun();
            for (; run > 15; run -= 16) acSymbol(0xF0);
            acSymbol(run << 4 | size);
            extraBits(value, size);
            run = 0;
        }
        if (run == 0) return;
        if (m_pass.mode == sequential)
            acSymbol(0);
        else
            joinRun({});
    }
    void refineBand(const Block& block) // figures G.7 to G.9
    {
        const auto magnitude = [&](int k) { return std::abs(block[zigzagOrder[k]]) >> m_pass.al; };
        int lastNew = 0, run = 0;
        for (int k = m_pass.ss; k <= m_pass.se; k++)
            if (magnitude(k) == 1) lastNew = k;
        std::vector<bool> corrections;
        const auto correctedSymbol = [&](int symbol, int bit, int bits) {
            endRun();
            acSymbol(symbol);
            put(bit, bits);
            for (const bool correction : corrections) put(correction, 1);
            corrections.clear();
            run = 0;
        };
        for (int k = m_pass.ss; k <= m_pass.se; k++) {
            if (magnitude(k) > 1)
                corrections.push_back(magnitude(k) & 1);
            else if (magnitude(k) == 1)
                correctedSymbol(run << 4 | 1, block[zigzagOrder[k]] > 0, 1);
            else if (++run == 16 && k < lastNew)
                correctedSymbol(0xF0, 0, 0);
        }
        if (run || !corrections.empty()) joinRun(corrections);
    }
    void joinRun(const std::vector<bool>& corrections)
    {
        m_run.push_back({complete.size() - 1, corrections});
        m_corrections += corrections.size();
        if (m_run.size() == 32767 || m_corrections > mostCorrections) endRun();
    }
    void endRun()
    {
        if (m_run.empty()) return;
        const int exponent = sizeOf(int(m_run.size())) - 1;
        acSymbol(exponent << 4);
        put(int(m_run.size()), exponent);
        for (const auto& [index, corrections] : m_run) {
            for (const bool correction : corrections) put(correction, 1);
            complete[index] = m_used;
        }
        m_run.clear();
        m_corrections = 0;
    }

    Pass m_pass;
    Codes m_dcCodes = {}, m_acCodes = {};
    int m_last = 0;    // byte, being filled
    size_t m_used = 0; // bits, without stuffing
    int m_lastDC = 0;
    std::vector<std::pair<size_t, std::vector<bool>>> m_run; // blocks, with their corrections
    size_t m_corrections = 0;
};

inline Pass randomPass(Random& random, Mode mode)
{
    Pass p = {mode};
    if (mode == acFirst || mode == acRefine) {
        p.ss = random.oneIn(2) ? random.in(1, 5) : random.in(1, 63);
        p.se = random.oneIn(2) ? 63 : random.in(p.ss, 63);
    }
    if (mode != sequential && mode != one) p.al = random.oneIn(3) ? random.in(0, 13) : random.in(0, 2);
    return p;
}

// Every density and size; some blocks are all corrections but for one new coefficient.
inline std::vector<Block> randomBlocks(Random& random, const Pass& p, int n)
{
    const auto anyDensity = [&] { return std::array{1, 5, 20, 60, 100}[size_t(random.in(0, 4))]; };
    const int usual = anyDensity();
    Qov16s last = 0;
    std::vector<Block> blocks(size_t(n), Block{});
    for (Block& b : blocks) {
        const int newOne = random.oneIn(8) ? random.in(30, 63) : 0;
        const int density = random.oneIn(4) ? anyDensity() : usual;
        const int most = random.oneIn(3) ? 15 : std::min(15, random.in(1, 4) + p.al);
        for (int k = 0; k < 64; k++) {
            const int high = (1 << random.in(1, most)) - 1, sign = random.oneIn(2) ? 1 : -1;
            Qov16s& c = b[zigzagOrder[k]];
            if (newOne)
                c = Qov16s(sign * (k == newOne ? 1 : random.in(2, 3)) * (1 << p.al));
            else if (random.in(0, 99) < density)
                c = Qov16s(random.oneIn(8) ? sign * high : random.in(-high, high));
        }
        if (p.mode == one && random.oneIn(8)) b[0] = -32768;
        if (p.mode == acRefine && random.oneIn(8)) b[size_t(random.in(0, 63))] = -32768;
        // A difference of category 16 has no code.
        if ((p.mode == sequential || p.mode == dcFirst) && Qov16s((b[0] >> p.al) - (last >> p.al)) == -32768)
            b[0] = last;
        last = b[0];
    }
    return blocks;
}

// A table or a state, at an odd address of a block of exactly its size.
template <class T>
class Opaque {
public:
    explicit Opaque(QovStatus getSize(int*))
    {
        EXPECT_EQ(qovStsNoErr, getSize(&m_size));
        m_bytes.reset(new char[size_t(m_size) + 1]());
    }
    template <class Init>
    Opaque(QovStatus getSize(int*), Init init, const Table& table) : Opaque(getSize)
    {
        std::vector<Qov8u> values = table.values;
        values.reserve(1); // not null
        EXPECT_EQ(qovStsNoErr, init(table.bits.data(), values.data(), get()));
    }

    T* get() { return reinterpret_cast<T*>(m_bytes.get() + 1); }
    // Somewhere else at each call.
    T* moved()
    {
        std::unique_ptr<char[]> copy(new char[size_t(m_size) + 1]);
        std::copy_n(m_bytes.get(), m_size + 1, copy.get());
        m_bytes = std::move(copy);
        return get();
    }

private:
    int m_size = 0;
    std::unique_ptr<char[]> m_bytes;
};

struct EncSpec : Opaque<QoviEncodeHuffmanSpec> {
    explicit EncSpec(const Table& t)
        : Opaque(qoviEncodeHuffmanSpecGetBufSize_JPEG_8u, qoviEncodeHuffmanSpecInit_JPEG_8u, t)
    {
    }
};
struct DecSpec : Opaque<QoviDecodeHuffmanSpec> {
    explicit DecSpec(const Table& t)
        : Opaque(qoviDecodeHuffmanSpecGetBufSize_JPEG_8u, qoviDecodeHuffmanSpecInit_JPEG_8u, t)
    {
    }
};
struct EncState : Opaque<QoviEncodeHuffmanState> {
    EncState() : Opaque(qoviEncodeHuffmanStateGetBufSize_JPEG_8u)
    {
        EXPECT_EQ(qovStsNoErr, qoviEncodeHuffmanStateInit_JPEG_8u(get()));
    }
};
struct DecState : Opaque<QoviDecodeHuffmanState> {
    DecState() : Opaque(qoviDecodeHuffmanStateGetBufSize_JPEG_8u) { init(); }
    void init() { EXPECT_EQ(qovStsNoErr, qoviDecodeHuffmanStateInit_JPEG_8u(get())); }
};

// Codes for the values from 0 on, from a tree grown at random. The code of ones alone is used or not.
inline Table randomTable(Random& random, int values, bool allOnes)
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

// The kind of fault that is looked for first decides, in every mode. Calls call(pass, length of the data,
// cursor, DC table, AC table, state).
template <class Spec, class State, class Call>
void checkStatuses(Spec* spec, State* state, Call call)
{
    char unmarked[8192] = {};
    Spec* const bad = reinterpret_cast<Spec*>(unmarked);
    State* const badState = reinterpret_cast<State*>(unmarked);
    for (int m = sequential; m <= acRefine; m++) {
        const Mode mode = Mode(m);
        SCOPED_TRACE(about({mode}));
        const bool dc = mode <= dcFirst, ac = mode == sequential || mode >= acFirst;
        const QovStatus ofShift = mode >= dcFirst ? qovStsBadArg : qovStsContext;
        const QovStatus ofBand = mode >= acFirst ? qovStsBadArg : qovStsContext;
        const Pass wrong = {mode, 0, 64, 14};
        EXPECT_EQ(qovStsNullPtr, call(wrong, 0, -1, bad, bad, nullptr));
        EXPECT_EQ(dc ? qovStsNullPtr : qovStsSize, call(wrong, 0, -1, nullptr, bad, badState));
        EXPECT_EQ(ac ? qovStsNullPtr : qovStsSize, call(wrong, 0, -1, bad, nullptr, badState));
        for (int pos : {-1, 10}) EXPECT_EQ(qovStsBadArg, call({mode}, 9, pos, bad, bad, badState));
        for (int al : {-1, 14}) EXPECT_EQ(ofShift, call({mode, 1, 63, al}, 9, 9, bad, bad, badState));
        for (auto [ss, se] : {std::pair(0, 63), {5, 4}, {1, 64}})
            EXPECT_EQ(ofBand, call({mode, ss, se}, 9, 9, bad, bad, badState));
        EXPECT_EQ(qovStsContext, call({mode}, 9, 0, spec, spec, badState));
        EXPECT_EQ(dc ? qovStsContext : qovStsNoErr, call({mode}, 9, 0, bad, spec, state));
        EXPECT_EQ(ac ? qovStsContext : qovStsNoErr, call({mode}, 9, 0, spec, bad, state));
    }
}

// What is a table and what is not.
template <class Spec>
void checkTables(QovStatus initAlloc(const Qov8u*, const Qov8u*, Spec**), QovStatus freeSpec(Spec*))
{
    struct Case {
        std::vector<int> bits; // from length 1
        QovStatus status;
    };
    const Case cases[] = {
        {{}, qovStsNoErr},
        {{2}, qovStsNoErr}, // uses the code of ones
        {{3}, qovStsTable},
        {{2, 0, 0, 1}, qovStsTable},
        {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2}, qovStsNoErr},
        {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 3}, qovStsTable},
        {{0, 0, 0, 0, 0, 0, 0, 255, 1}, qovStsNoErr},
        {{0, 0, 0, 0, 0, 0, 0, 255, 2}, qovStsTable},
        {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 200, 57}, qovStsTable},
    };
    for (const Case& c : cases) {
        Qov8u bits[16] = {}, values[256] = {};
        std::copy(c.bits.begin(), c.bits.end(), bits);
        Spec* spec = reinterpret_cast<Spec*>(bits);
        EXPECT_EQ(c.status, initAlloc(bits, values, &spec)) << testing::PrintToString(c.bits);
        ASSERT_EQ(c.status == qovStsNoErr, spec != nullptr);
        if (spec) {
            EXPECT_EQ(qovStsNoErr, freeSpec(spec));
        }
    }
    Qov8u unmarked[8192] = {};
    EXPECT_EQ(qovStsContext, freeSpec(reinterpret_cast<Spec*>(unmarked)));
    EXPECT_EQ(qovStsNullPtr, freeSpec(nullptr));
}

#endif
