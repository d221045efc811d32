// The adaptive decoders of JPEG XR: calls as the input lists them, reading any bytes. Input: the count of
// calls, three bytes of each (its kind and two arguments), and the stream. px and the best level agree in all
// that a call leaves behind, what fails changes nothing but the state, and a list that was read is written
// back bit by bit.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "qovcore.h"
#include "qovivlc.h"

namespace {

// Of exactly their bytes: a sanitizer sees what lies beside them.
typedef std::vector<Qov8u> Bytes;

void require(bool condition)
{
    if (!condition) std::abort();
}

enum Kind { init, resetScan, setScan, adapt, fill, dc444, dc422, dc420, block32s, block16s, low32s, low16s };

// Arguments go one beyond what is right.
struct Call {
    Kind kind;
    Qov8u first, second;

    int which() const { return first % 4; }
    int chroma() const { return first % 3; }
    int nBits() const { return first / 3 % 17; }
    int nTrim() const { return second % 17; }
    bool low() const { return kind >= low32s; }
    bool list() const { return kind <= dc420; }
    int elemBytes() const { return kind == block16s || kind == low16s ? 2 : 4; }

    int rows() const { return list() ? 1 : 4; }
    int rowBytes() const { return elemBytes() * (!list() ? 4 : kind == dc444 ? 16 : kind == dc422 ? 14 : 6); }
    int step() const
    {
        const int beyond[] = {0, 1, 4, -1};
        return rowBytes() + elemBytes() * beyond[second / 17 % 4];
    }
};

class State {
public:
    State() : m_bytes(1 + size()) { require(qoviVLCInit_JPEGXR(get()) == qovStsNoErr); }
    // Any address will do.
    QoviVLCState_JPEGXR* get() { return reinterpret_cast<QoviVLCState_JPEGXR*>(m_bytes.data() + 1); }
    bool operator==(const State&) const = default;

private:
    static size_t size()
    {
        int bytes = 0;
        require(qoviVLCGetStateSize_JPEGXR(&bytes) == qovStsNoErr);
        return static_cast<size_t>(bytes);
    }
    Bytes m_bytes;
};

// What a call leaves behind. The place is counted from the byte that it was in.
struct Outcome {
    QovStatus status;
    State state;
    std::ptrdiff_t bytes = 0;
    int bit = 0, count = -1;
    Bytes dst = {};
    bool operator==(const Outcome&) const = default;
};

QovStatus callDecoder(const Call& call, const Qov8u** src, int* bit, void* dst, int* count,
                      QoviVLCState_JPEGXR* state)
{
    auto* const wide = static_cast<Qov32s*>(dst);
    switch (call.kind) {
    case dc444: return qoviVLCDecodeDC444_JPEGXR_1u32s(src, bit, wide, call.chroma(), count, state);
    case dc422: return qoviVLCDecodeDC422_JPEGXR_1u32s(src, bit, wide, count, state);
    case dc420: return qoviVLCDecodeDC420_JPEGXR_1u32s(src, bit, wide, count, state);
    case block32s:
        return qoviVLCDecode4x4_JPEGXR_1u32s_C1R(src, bit, wide, call.step(), call.nBits(), call.chroma(),
                                                 count, state);
    case block16s:
        return qoviVLCDecode4x4_JPEGXR_1u16s_C1R(src, bit, static_cast<Qov16s*>(dst), call.step(),
                                                 call.nBits(), call.chroma(), count, state);
    default:
        return qoviFLCDecode4x4_JPEGXR(src, bit, dst, call.step(), call.elemBytes(), call.nBits(),
                                       call.nTrim());
    }
}

QovStatus callEncoder(const Call& call, const Qov32s* src, Qov8u** dst, int* bit, int* count,
                      QoviVLCState_JPEGXR* state)
{
    std::vector<Qov32s> list(15);
    switch (call.kind) {
    case dc444:
        require(qoviVLCScan4x4DC_JPEGXR_32s(src, list.data(), state) == qovStsNoErr);
        return qoviVLCEncodeDC444_JPEGXR_32s1u(list.data(), dst, bit, call.chroma(), count, state);
    case dc422: return qoviVLCEncodeDC422_JPEGXR_32s1u(src, dst, bit, count, state);
    case dc420: return qoviVLCEncodeDC420_JPEGXR_32s1u(src, dst, bit, count, state);
    default:
        return qoviVLCEncode4x4_JPEGXR_32s1u_C1R(src, call.step(), dst, bit, 0, call.chroma(), count, state);
    }
}

// The calls at one level.
class Run {
public:
    explicit Run(const Bytes& stream) : m_stream(stream), m_block(64) {}

    Outcome next(const Call& call)
    {
        switch (call.kind) {
        case init: return {qoviVLCInit_JPEGXR(m_state.get()), m_state};
        case resetScan: return {qoviVLCScanReset_JPEGXR(m_state.get(), call.which()), m_state};
        case setScan: return {qoviVLCScanSet_JPEGXR(m_state.get(), call.chroma()), m_state};
        case adapt: return {qoviVLCAdapt_JPEGXR(m_state.get(), call.chroma(), call.second % 4), m_state};
        case fill: m_block = ahead(m_block.size()); return {qovStsNoErr, m_state};
        default: return decode(call);
        }
    }

private:
    Bytes m_stream, m_block; // decoders find what the one before has left
    size_t m_place = 0;
    int m_bit = 0;
    State m_state;

    // Behind the end of the stream are zeros.
    Bytes ahead(size_t count) const
    {
        Bytes bytes(count);
        if (m_place < m_stream.size())
            memcpy(bytes.data(), m_stream.data() + m_place, std::min(count, m_stream.size() - m_place));
        return bytes;
    }

    // Of a block, to rows of a step and from there.
    Bytes toRows(const Call& call) const
    {
        const int step = std::max(call.step(), call.rowBytes());
        Bytes dst(static_cast<size_t>((call.rows() - 1) * step + call.rowBytes()), 0xEE);
        for (int y = 0; y < call.rows(); y++)
            memcpy(&dst[size_t(y * step)], &m_block[size_t(y * call.rowBytes())], size_t(call.rowBytes()));
        return dst;
    }
    void fromRows(const Call& call, const Bytes& dst)
    {
        for (int y = 0; y < call.rows(); y++)
            memcpy(&m_block[size_t(y * call.rowBytes())], &dst[size_t(y * call.step())],
                   size_t(call.rowBytes()));
    }

    Outcome attempt(const Call& call, const Bytes& bytes) const
    {
        Outcome outcome = {qovStsNoErr, m_state};
        outcome.bit = m_bit;
        outcome.dst = toRows(call);
        const Qov8u* src = bytes.data();
        outcome.status =
            callDecoder(call, &src, &outcome.bit, outcome.dst.data(), &outcome.count, outcome.state.get());
        outcome.bytes = src - bytes.data();
        return outcome;
    }

    // As far as a decoder may reach; and then no farther than it went.
    Outcome decode(const Call& call)
    {
        const Bytes reach = ahead(call.low() ? 32 : 100);
        Outcome outcome = attempt(call, reach);
        if (outcome.status == qovStsNoErr) {
            const std::ptrdiff_t length = std::max<std::ptrdiff_t>(outcome.bytes + (outcome.bit > 0), 1);
            const Bytes exact(reach.begin(), reach.begin() + length);
            require(attempt(call, exact) == outcome);
            if (call.list() || (call.kind == block32s && call.nBits() == 0)) encodeBack(call, exact, outcome);
            m_state = outcome.state;
            m_place += static_cast<size_t>(outcome.bytes);
            m_bit = outcome.bit;
            fromRows(call, outcome.dst);
            return outcome;
        }
        require(outcome.bytes == 0 && outcome.bit == m_bit && outcome.dst == toRows(call));
        if (outcome.status == qovStsData) {
            // Of no use any more, but no danger either.
            m_state = outcome.state;
            attempt(call, reach);
            m_state = outcome.state = State();
            m_place++;
        }
        require(outcome.state == m_state);
        return outcome;
    }

    void encodeBack(const Call& call, Bytes expected, const Outcome& read) const
    {
        if (read.bit > 0) expected.back() &= Qov8u(0xFF00 >> read.bit);
        Bytes written(expected.size(), 0xFF);
        written[0] = Qov8u(expected[0] | 0xFF >> m_bit);
        Qov8u* dst = written.data();
        int bit = m_bit, count = -1;
        State state = m_state;
        std::vector<Qov32s> src((read.dst.size() + 3) / 4);
        memcpy(src.data(), read.dst.data(), read.dst.size());
        require(callEncoder(call, src.data(), &dst, &bit, &count, state.get()) == qovStsNoErr);
        require(written == expected && dst - written.data() == read.bytes && bit == read.bit);
        require(count == read.count && state == read.state);
    }
};

std::vector<Outcome> runAt(QovCpuType level, const std::vector<Call>& calls, const Bytes& stream)
{
    require(qovInitCpu(level) == qovStsNoErr);
    Run run(stream);
    std::vector<Outcome> outcomes;
    for (const Call& call : calls) outcomes.push_back(run.next(call));
    return outcomes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1 || size > 1 << 16) return 0;
    const uint8_t *at = data + 1, *const end = data + size;
    std::vector<Call> calls;
    for (; calls.size() < data[0] && end - at >= 3; at += 3)
        calls.push_back({static_cast<Kind>(at[0] % (low16s + 1)), at[1], at[2]});
    const Bytes stream(at, end);
    require(runAt(qovCpuPx, calls, stream) == runAt(qovGetCpuType(), calls, stream));
    return 0;
}
