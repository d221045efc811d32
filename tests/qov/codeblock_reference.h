// A code-block coded bit by bit, as the flow charts and tables of ITU-T T.800 (annexes C and D) have it: what
// the library's block coder is held against.
#ifndef TESTS_CODEBLOCK_REFERENCE_H
#define TESTS_CODEBLOCK_REFERENCE_H

#include "qovicodeblock.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>
#include <vector>

namespace plain {

typedef std::vector<Qov8u> Bytes;

// Table C.2.
struct Estimate {
    unsigned qe;
    int nextMps, nextLps;
    bool change;
};
inline const Estimate estimates[47] = {
    {0x5601, 1, 1, true},    {0x3401, 2, 6, false},   {0x1801, 3, 9, false},   {0x0AC1, 4, 12, false},
    {0x0521, 5, 29, false},  {0x0221, 38, 33, false}, {0x5601, 7, 6, true},    {0x5401, 8, 14, false},
    {0x4801, 9, 14, false},  {0x3801, 10, 14, false}, {0x3001, 11, 17, false}, {0x2401, 12, 18, false},
    {0x1C01, 13, 20, false}, {0x1601, 29, 21, false}, {0x5601, 15, 14, true},  {0x5401, 16, 14, false},
    {0x5101, 17, 15, false}, {0x4801, 18, 16, false}, {0x3801, 19, 17, false}, {0x3401, 20, 18, false},
    {0x3001, 21, 19, false}, {0x2801, 22, 19, false}, {0x2401, 23, 20, false}, {0x2201, 24, 21, false},
    {0x1C01, 25, 22, false}, {0x1801, 26, 23, false}, {0x1601, 27, 24, false}, {0x1401, 28, 25, false},
    {0x1201, 29, 26, false}, {0x1101, 30, 27, false}, {0x0AC1, 31, 28, false}, {0x09C1, 32, 29, false},
    {0x08A1, 33, 30, false}, {0x0521, 34, 31, false}, {0x0441, 35, 32, false}, {0x02A1, 36, 33, false},
    {0x0221, 37, 34, false}, {0x0141, 38, 35, false}, {0x0111, 39, 36, false}, {0x0085, 40, 37, false},
    {0x0049, 41, 38, false}, {0x0025, 42, 39, false}, {0x0015, 43, 40, false}, {0x0009, 44, 41, false},
    {0x0005, 45, 42, false}, {0x0001, 45, 43, false}, {0x5601, 46, 46, false},
};

enum { runContext = 17, uniformContext = 18, contextCount = 19 };

struct Contexts {
    std::array<int, contextCount> index, mps;
    Contexts() { reset(); }
    void reset()
    {
        index.fill(0);
        mps.fill(0);
        index[0] = 4;
        index[runContext] = 3;
        index[uniformContext] = 46;
    }
};

// C.2. `bytes` begins with one that is not part of the code.
class MqEncoder {
public:
    void code(Contexts& contexts, int cx, int d)
    {
        int& i = contexts.index[cx];
        int& mps = contexts.mps[cx];
        const unsigned qe = estimates[i].qe;
        m_a -= qe;
        if (d == mps) {
            if (m_a & 0x8000) {
                m_c += qe;
                return;
            }
            if (m_a < qe)
                m_a = qe;
            else
                m_c += qe;
            i = estimates[i].nextMps;
        } else {
            if (m_a < qe)
                m_c += qe;
            else
                m_a = qe;
            if (estimates[i].change) mps = 1 - mps;
            i = estimates[i].nextLps;
        }
        do {
            m_a <<= 1;
            m_c <<= 1;
            if (--m_ct == 0) byteOut();
        } while (!(m_a & 0x8000));
    }

    Bytes flush()
    {
        const unsigned beyond = m_c + m_a;
        m_c |= 0xFFFF;
        if (m_c >= beyond) m_c -= 0x8000;
        for (int i = 0; i < 2; i++) {
            m_c <<= m_ct;
            byteOut();
        }
        return code();
    }

    // D.4.2.
    Bytes flushPredictably()
    {
        for (int k = 11 - m_ct + 1; k > 0; k -= m_ct) {
            m_c <<= m_ct;
            m_ct = 0;
            byteOut();
        }
        return code();
    }

private:
    Bytes code() const
    {
        Bytes code(m_bytes.begin() + 1, m_bytes.end());
        if (!code.empty() && code.back() == 0xFF) code.pop_back();
        return code;
    }
    void byteOut()
    {
        if (m_bytes.back() != 0xFF && m_c >= 0x8000000) {
            m_bytes.back()++;
            if (m_bytes.back() == 0xFF) m_c &= 0x7FFFFFF;
        }
        if (m_bytes.back() == 0xFF) {
            m_bytes.push_back(Qov8u(m_c >> 20));
            m_c &= 0xFFFFF;
            m_ct = 7;
        } else {
            m_bytes.push_back(Qov8u(m_c >> 19));
            m_c &= 0x7FFFF;
            m_ct = 8;
        }
    }

    Bytes m_bytes = {0};
    unsigned m_a = 0x8000, m_c = 0;
    int m_ct = 12;
};

// C.3, with ones behind the code.
class MqDecoder {
public:
    explicit MqDecoder(Bytes code) : m_bytes(std::move(code))
    {
        m_c = byte(0) << 16;
        byteIn();
        m_c <<= 7;
        m_ct -= 7;
    }

    int code(Contexts& contexts, int cx)
    {
        int& i = contexts.index[cx];
        int& mps = contexts.mps[cx];
        const unsigned qe = estimates[i].qe;
        m_a -= qe;
        const bool lower = m_c >> 16 < qe, exchange = m_a < qe;
        if (!lower) {
            m_c -= qe << 16;
            if (m_a & 0x8000) return mps;
        }
        const int d = lower == exchange ? mps : 1 - mps;
        if (lower) m_a = qe;
        if (d != mps) {
            if (estimates[i].change) mps = 1 - mps;
            i = estimates[i].nextLps;
        } else {
            i = estimates[i].nextMps;
        }
        do {
            if (m_ct == 0) byteIn();
            m_a <<= 1;
            m_c <<= 1;
            m_ct--;
        } while (!(m_a & 0x8000));
        return d;
    }

private:
    unsigned byte(size_t at) const { return at < m_bytes.size() ? m_bytes[at] : 0xFF; }
    void byteIn()
    {
        if (byte(m_at) != 0xFF) {
            m_c += byte(++m_at) << 8;
            m_ct = 8;
        } else if (byte(m_at + 1) > 0x8F) {
            m_c += 0xFF00;
            m_ct = 8;
        } else {
            m_c += byte(++m_at) << 9;
            m_ct = 7;
        }
    }

    Bytes m_bytes;
    size_t m_at = 0;
    unsigned m_a = 0x8000, m_c;
    int m_ct = 0;
};

// D.6.
class RawEncoder {
public:
    void put(int bit)
    {
        if (m_room == 0) {
            m_room = !m_bytes.empty() && m_bytes.back() == 0xFF ? 7 : 8;
            m_bytes.push_back(0);
        }
        m_bytes.back() = Qov8u(m_bytes.back() | bit << --m_room);
    }
    Bytes finish(bool predictable)
    {
        if (predictable && m_room == 0 && !m_bytes.empty() && m_bytes.back() == 0xFF) {
            m_bytes.push_back(0);
            m_room = 7;
        }
        for (int bit = 0; predictable && m_room; bit = 1 - bit) put(bit);
        if (!m_bytes.empty() && m_bytes.back() == 0xFF) m_bytes.pop_back();
        return m_bytes;
    }

private:
    Bytes m_bytes;
    int m_room = 0;
};

class RawDecoder {
public:
    explicit RawDecoder(Bytes code) : m_bytes(std::move(code)) {}
    int get()
    {
        if (m_left == 0) {
            m_left = m_byte == 0xFF && m_at < m_bytes.size() ? 7 : 8;
            m_byte = m_at < m_bytes.size() ? m_bytes[m_at++] : 0xFF;
        }
        return m_byte >> --m_left & 1;
    }

private:
    Bytes m_bytes;
    size_t m_at = 0;
    int m_byte = 0, m_left = 0;
};

inline int kindOf(int pass)
{
    return (pass + 2) % 3; // 0 significance, 1 refinement, 2 cleanup
}
inline bool isRaw(int pass, int style)
{
    return (style & qoviCodeStyleBypass) && pass >= 10 && kindOf(pass) != 2;
}
// Tables D.8 and D.9.
inline bool endsSegment(int pass, int passes, int style)
{
    if (pass == passes - 1 || (style & qoviCodeStyleTermAll)) return true;
    return (style & qoviCodeStyleBypass) && pass >= 9 && kindOf(pass) != 0;
}

// A block half way: what is known of its samples. The coder of symbols is told the context and the true
// decision, or 0 where that is not known, and answers the decision.
class Block {
public:
    Block(QoviSize size, int band, int style)
        : m_size(size), m_band(band), m_style(style), m_samples(size_t(size.width) * size.height)
    {
    }

    // Bits and signs of the samples as they are; without them the block is decoded.
    void setTruth(std::vector<Qov32u> truth) { m_truth = std::move(truth); }

    // coder(context, decision), context -1 for a raw bit.
    template <class Coder>
    void codePass(int pass, int plane, Coder coder)
    {
        const int kind = kindOf(pass);
        const bool raw = isRaw(pass, m_style);
        for (int top = 0; top < m_size.height; top += 4)
            for (int x = 0; x < m_size.width; x++) {
                const int rows = std::min(4, m_size.height - top);
                int first = 0;
                if (kind == 2 && rows == 4 && isRun(x, top)) {
                    int run = 0;
                    while (run < 4 && !truth(x, top + run, plane)) run++;
                    if (!coder(runContext, run < 4)) continue;
                    first = coder(uniformContext, run >> 1) << 1;
                    first |= coder(uniformContext, run & 1);
                    makeSignificant(x, top + first++, plane, raw, coder);
                }
                for (int y = top + first; y < top + rows; y++) codeSample(x, y, plane, kind, raw, coder);
            }
        if (kind != 2) return;
        for (Sample& s : m_samples) s.visited = false;
        if (m_style & qoviCodeStyleSegSym)
            for (int bit : {1, 0, 1, 0})
                if (coder(uniformContext, bit) != bit) damaged = true;
    }

    // The magnitude, in the middle of what is known if need be, and the sign: the words that a decoder gives.
    Qov32u value(int i, bool middle = true) const
    {
        const Sample& s = m_samples[i];
        if (!s.significant) return 0;
        return Qov32u(s.negative) << 31 | s.magnitude | (middle && s.plane ? 1u << (s.plane - 1) : 0);
    }

    bool damaged = false;

private:
    struct Sample {
        bool significant = false, negative = false, refined = false, visited = false;
        int plane = 0; // the last one known
        Qov32u magnitude = 0;
    };

    Sample& at(int x, int y) { return m_samples[size_t(y) * m_size.width + x]; }
    int truth(int x, int y, int bit) const
    {
        return m_truth.empty() ? 0 : m_truth[size_t(y) * m_size.width + x] >> bit & 1;
    }

    // Is the sample dx, dy away significant, as seen from y?
    int sees(int x, int y, int dx, int dy)
    {
        const int nx = x + dx, ny = y + dy;
        if (nx < 0 || ny < 0 || nx >= m_size.width || ny >= m_size.height) return 0;
        if ((m_style & qoviCodeStyleVCausal) && ny / 4 > y / 4) return 0;
        return at(nx, ny).significant;
    }
    int sign(int x, int y, int dx, int dy)
    {
        return !sees(x, y, dx, dy) ? 0 : at(x + dx, y + dy).negative ? -1 : 1;
    }
    int diagonals(int x, int y)
    {
        return sees(x, y, -1, -1) + sees(x, y, 1, -1) + sees(x, y, -1, 1) + sees(x, y, 1, 1);
    }
    int around(int x, int y)
    {
        return sees(x, y, -1, 0) + sees(x, y, 1, 0) + sees(x, y, 0, -1) + sees(x, y, 0, 1) + diagonals(x, y);
    }
    bool isRun(int x, int top)
    {
        for (int y = top; y < top + 4; y++)
            if (at(x, y).significant || at(x, y).visited || around(x, y)) return false;
        return true;
    }

    // Table D.1.
    int zeroContext(int x, int y)
    {
        int h = sees(x, y, -1, 0) + sees(x, y, 1, 0), v = sees(x, y, 0, -1) + sees(x, y, 0, 1);
        const int d = diagonals(x, y);
        if (m_band == qoviWTSubbandHxHy) {
            if (d >= 3) return 8;
            if (d == 2) return h + v >= 1 ? 7 : 6;
            if (d == 1) return h + v >= 2 ? 5 : h + v == 1 ? 4 : 3;
            return h + v >= 2 ? 2 : h + v;
        }
        if (m_band == qoviWTSubbandHxLy) std::swap(h, v);
        if (h == 2) return 8;
        if (h == 1) return v >= 1 ? 7 : d >= 1 ? 6 : 5;
        if (v) return v == 2 ? 4 : 3;
        return d >= 2 ? 2 : d;
    }

    template <class Coder>
    void makeSignificant(int x, int y, int plane, bool raw, Coder& coder)
    {
        // Tables D.2 and D.3.
        static const int contexts[3][3] = {{13, 12, 11}, {10, 9, 10}, {11, 12, 13}};
        static const int flips[3][3] = {{1, 1, 1}, {1, 0, 0}, {0, 0, 0}};
        const int h = std::clamp(sign(x, y, -1, 0) + sign(x, y, 1, 0), -1, 1) + 1;
        const int v = std::clamp(sign(x, y, 0, -1) + sign(x, y, 0, 1), -1, 1) + 1;
        const int flip = raw ? 0 : flips[h][v];
        Sample& s = at(x, y);
        s.negative = coder(raw ? -1 : contexts[h][v], truth(x, y, 31) ^ flip) ^ flip;
        s.significant = true;
        s.magnitude = 1u << plane;
        s.plane = plane;
    }

    template <class Coder>
    void codeSample(int x, int y, int plane, int kind, bool raw, Coder& coder)
    {
        Sample& s = at(x, y);
        const int bit = truth(x, y, plane);
        if (kind == 1) {
            if (!s.significant || s.visited) return;
            const int context = s.refined ? 16 : around(x, y) ? 15 : 14;
            s.magnitude |= Qov32u(coder(raw ? -1 : context, bit)) << plane;
            s.plane = plane;
            s.refined = true;
            return;
        }
        if (s.significant || s.visited || (kind == 0 && !around(x, y))) return;
        if (kind == 0) s.visited = true;
        if (coder(raw ? -1 : zeroContext(x, y), bit)) makeSignificant(x, y, plane, raw, coder);
    }

    QoviSize m_size;
    int m_band, m_style;
    std::vector<Sample> m_samples;
    std::vector<Qov32u> m_truth;
};

// The segments of a block. Terminations Plain and Predictable.
inline std::vector<Bytes> encode(const std::vector<Qov32u>& truth, QoviSize size, int band, int style,
                                 int sfBits, int passes, bool predictable)
{
    Block block(size, band, style);
    block.setTruth(truth);
    std::vector<Bytes> segments;
    Contexts contexts;
    MqEncoder mq;
    RawEncoder raw;
    for (int pass = 0; pass < passes; pass++) {
        if (style & qoviCodeStyleReset) contexts.reset();
        block.codePass(pass, sfBits - 1 - (pass + 2) / 3, [&](int context, int bit) {
            if (context < 0)
                raw.put(bit);
            else
                mq.code(contexts, context, bit);
            return bit;
        });
        if (!endsSegment(pass, passes, style)) continue;
        if (isRaw(pass, style))
            segments.push_back(raw.finish(predictable));
        else
            segments.push_back(predictable ? mq.flushPredictably() : mq.flush());
        mq = MqEncoder();
        raw = RawEncoder();
    }
    return segments;
}

// Decodes `passes` of `allPasses` passes; visit(pass, block) is called behind each.
template <class Visit>
void decode(const std::vector<Bytes>& segments, QoviSize size, int band, int style, int sfBits, int passes,
            int allPasses, Visit visit)
{
    Block block(size, band, style);
    Contexts contexts;
    size_t segment = 0;
    MqDecoder mq(segments[0]);
    RawDecoder raw(segments[0]);
    for (int pass = 0; pass < passes; pass++) {
        if (style & qoviCodeStyleReset) contexts.reset();
        block.codePass(pass, sfBits - 1 - (pass + 2) / 3, [&](int context, int) {
            return context < 0 ? raw.get() : mq.code(contexts, context);
        });
        visit(pass, block);
        if (!endsSegment(pass, allPasses, style) || ++segment >= segments.size()) continue;
        mq = MqDecoder(segments[segment]);
        raw = RawDecoder(segments[segment]);
    }
}

} // namespace plain

#endif
